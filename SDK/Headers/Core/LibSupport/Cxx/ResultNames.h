// The names of result codes, and what they mean in words.
#pragma once

#include <tessio/Cxx/ResultCodes.h>
#include <tessio/TessIO/ResultCodes.h>

#include <string>
#include <string_view>

namespace KORVA::CXX
{
/// A result code as people read it.
struct ResultName
{
    /// The value.
    ErrCode code;
    /// The constant's name, as it stands in the header.
    std::string_view name;
    /// What it means, to stand behind a colon.
    std::string_view meaning;
};

/// Every constant. Several share the value 35; the first one of them names it.
inline constexpr ResultName kResultNames[] = {
    {kNoError, "kNoError", "done"},
    {kIllegalArgument, "kIllegalArgument", "illegal argument"},
    {kIdNotFound, "kIdNotFound", "nothing is known under that identifier or scheme"},
    {IO::kURIInitFailed, "kURIInitFailed", "the resource can't be opened"},
    {IO::kWriteFailed, "kWriteFailed", "writing failed"},
    {IO::kNoData, "kNoData", "no data, or reading failed"},
    {IO::kWrongType, "kWrongType", "a value of another type"},
    {IO::kNothingToWrite, "kNothingToWrite", "there is nothing to write"},
    {IO::kNoObject, "kNoObject", "no registry, or nothing makes such an object"},
    {IO::kBadArgument, "kBadArgument", "bad argument"},
    {IO::kNoConversion, "kNoConversion", "can't be converted"},
    {IO::kDeleteFailed, "kDeleteFailed", "deleting failed"},
    {IO::kCreateFailed, "kCreateFailed", "creating failed"},
    {IO::kFileNotFound, "kFileNotFound", "no such file or directory"},
    {IO::kResizeFailed, "kResizeFailed", "a resize was refused or failed"},
    {IO::kEndOfData, "kEndOfData", "the data ends before"},
    {IO::kNotInitialized, "kNotInitialized", "not initialised"},
    {IO::kNotAllowed, "kNotAllowed", "read-only, or opened in a mode that forbids it"},
    {IO::kCopyFailed, "kCopyFailed", "copying failed"},
    {IO::kUnknownAttribute, "kUnknownAttribute", "no such attribute"},
    {IO::kNotPermitted, "kNotPermitted", "permission denied"},
    {IO::kFileSystemFailed, "kFileSystemFailed", "the file system failed"},
    {IO::kWrongDirection, "kWrongDirection", "not buffered in that direction"},
    {IO::kNoChannel, "kNoChannel", "no access at explicit positions"},
    {IO::kOpenRefused, "kOpenRefused", "the system refused to open it"},
    {IO::kLocked, "kLocked", "locked by somebody else"},
    {kNoEntry, "kNoEntry", "no such entry"},
    {kEmptyValue, "kEmptyValue", "a dictionary keeps no empty buffers and texts"},
    {kTooLarge, "kTooLarge", "larger than 2 GiB"},
    {kOutOfRange, "kOutOfRange", "the number does not fit the type asked for"},
    {kBadText, "kBadText", "not well-formed text"},
    {kOwnContainer, "kOwnContainer", "it would contain itself"},
    {kNotPersistent, "kNotPersistent", "the object is not persistent"},
    {kNotSerialized, "kNotSerialized", "the object did not write itself to the end"},
    {kNotServed, "kNotServed", "nothing that serves its scheme or host can do that"},
    {kNotAFile, "kNotAFile", "not a regular file"},
    {kNoSpace, "kNoSpace", "no space left"},
    {kDeviceFailed, "kDeviceFailed", "the device, or the way to it, fails"},
    {kOutOfResources, "kOutOfResources", "memory, descriptors or other resources have run out"},
    {kNotFlushed, "kNotFlushed", "the new content is there, but a power cut may bring the old one back"},
    {kChanged, "kChanged", "somebody else has changed the file"},
    {kNotARecord, "kNotARecord", "not a record"},
    {kTruncated, "kTruncated", "the data ends inside of a record"},
    {kUnknownClass, "kUnknownClass", "nothing makes objects of its class"},
    {kOtherClass, "kOtherClass", "the record is of another class"},
    {kDamaged, "kDamaged", "the record is damaged, or holds objects of an unknown class"},
    {kMoreRecords, "kMoreRecords", "there is more behind the record"},
};

/// The row of a code, or null.
constexpr ResultName const* FindResultName(ErrCode code)
{
    for (ResultName const& row : kResultNames)
        if (row.code == code)
            return &row;
    return nullptr;
}

/// "kLocked"; "error 77" for a code without a name.
inline std::string NameOfResult(ErrCode code)
{
    ResultName const* const row = FindResultName(code);
    return row ? std::string(row->name) : "error " + std::to_string(code);
}
} // namespace KORVA::CXX
