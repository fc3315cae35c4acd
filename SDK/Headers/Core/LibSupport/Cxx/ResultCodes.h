// What can go wrong beyond the library's own result codes.
#pragma once

#include <tessio/ObjectModel/Types.h>

/// The friendly layer for C++ programs: header-only over the interfaces.
namespace KORVA::CXX
{
/// There is no entry under that key.
inline constexpr ErrCode kNoEntry = 2001;
/// A dictionary keeps no buffer and no text without content.
inline constexpr ErrCode kEmptyValue = 2002;
/// More bytes than one buffer, object or file may have here: 2 GiB.
inline constexpr ErrCode kTooLarge = 2003;
/// A number that the type asked for can't hold, or only without its fraction.
inline constexpr ErrCode kOutOfRange = 2004;
/// A text that is not well-formed UTF-8 or UTF-16.
inline constexpr ErrCode kBadText = 2005;
/// An object that would contain itself.
inline constexpr ErrCode kOwnContainer = 2006;
/// The object has no persistence interface.
inline constexpr ErrCode kNotPersistent = 2011;
/// The object did not write itself to the end.
inline constexpr ErrCode kNotSerialized = 2012;
/// Nothing that serves the URI's scheme or host can do that.
inline constexpr ErrCode kNotServed = 2013;
/// A directory, a pipe or a device where a regular file is needed.
inline constexpr ErrCode kNotAFile = 2014;
/// The device, quota or size limit is reached.
inline constexpr ErrCode kNoSpace = 2015;
/// The device, or the way to it, fails.
inline constexpr ErrCode kDeviceFailed = 2016;
/// Memory, descriptors or other resources of the system have run out.
inline constexpr ErrCode kOutOfResources = 2017;
/// The file has its new content, whole. Only that its name is on the disk could not be confirmed: a power cut
/// may bring the old content back.
inline constexpr ErrCode kNotFlushed = 2018;
/// The file is not in the state any more that is expected: somebody else has changed it.
inline constexpr ErrCode kChanged = 2019;
/// The bytes are no object record in any byte order.
inline constexpr ErrCode kNotARecord = 2021;
/// The data ends inside of a record.
inline constexpr ErrCode kTruncated = 2022;
/// Nothing makes objects of the record's class.
inline constexpr ErrCode kUnknownClass = 2023;
/// The record is of another class than the one asked for.
inline constexpr ErrCode kOtherClass = 2024;
/// Something in the record was not read as it was written, or is of a class that nothing makes.
inline constexpr ErrCode kDamaged = 2025;
/// There is more behind the record.
inline constexpr ErrCode kMoreRecords = 2026;
} // namespace KORVA::CXX
