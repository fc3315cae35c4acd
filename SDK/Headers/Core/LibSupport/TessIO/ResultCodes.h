// The result codes of the library's operations. 0, -50 and -1004 stand in ObjectModel/Types.h.
#pragma once

#include <tessio/ObjectModel/Types.h>

namespace KORVA::IO
{
/// Initialisation from a URI failed.
inline constexpr ErrCode kURIInitFailed = -1000;
/// A write failed.
inline constexpr ErrCode kWriteFailed = 2;
/// A read found no data, or failed.
inline constexpr ErrCode kNoData = 3;
/// A dictionary value is of another type than the getter asks for.
inline constexpr ErrCode kWrongType = 10;
/// There is nothing to write.
inline constexpr ErrCode kNothingToWrite = 11;
/// There is no registry, or it made no object.
inline constexpr ErrCode kNoObject = 12;
/// A bad argument: null buffer, position out of range, unbound path, no URI.
inline constexpr ErrCode kBadArgument = 13;
/// No file-system path, platform URL or file reference can be made.
inline constexpr ErrCode kNoConversion = 14;
/// A file could not be removed.
inline constexpr ErrCode kDeleteFailed = 24;
/// A file could not be made.
inline constexpr ErrCode kCreateFailed = 25;
/// No path, no such file, or a directory.
inline constexpr ErrCode kFileNotFound = 26;
/// A resize was refused or failed.
inline constexpr ErrCode kResizeFailed = 27;
/// A read met the end of the data before the requested count.
inline constexpr ErrCode kEndOfData = 28;
/// The object has no data provider yet.
inline constexpr ErrCode kNotInitialized = 29;
/// Read-only data, or a mode that forbids the operation.
inline constexpr ErrCode kNotAllowed = 30;
/// A copy failed or would cross schemes.
inline constexpr ErrCode kCopyFailed = 31;
/// There is no such file attribute.
inline constexpr ErrCode kUnknownAttribute = 32;
/// A file attribute can't be set; the system does not permit it.
inline constexpr ErrCode kNotPermitted = 33;
/// Another failure of the file system.
inline constexpr ErrCode kFileSystemFailed = 35;
/// A buffered provider does not buffer in that direction.
inline constexpr ErrCode kWrongDirection = 35;
/// A file can't, or can't any more, be read and written at explicit positions.
inline constexpr ErrCode kNoChannel = 35;
/// The file is there but the system refused to open it.
inline constexpr ErrCode kOpenRefused = 36;
/// Somebody else holds a lock on the file.
inline constexpr ErrCode kLocked = 40;
} // namespace KORVA::IO
