// The classes whose bodies the tool knows, and the types of values.
#pragma once

#include <tessio/ObjectModel/GUID.h>
#include <tessio/ObjectModel/Types.h>

#include <span>
#include <string>
#include <string_view>

namespace KORVA::RECORDS
{
/// What a record or a part of one is to the tool.
enum class Kind
{
    kDictionary,
    kValue,
    kStrings,
    /// An entry of a string dictionary: no record of its own.
    kStringEntry,
    kURI,
    kRelativeURI,
    /// An object of a plug-in's class, whose parts the plug-in itself read.
    kObject,
    kUnknownClass
};

struct KnownClass
{
    GUID id;
    char const* name;
    Kind kind;
};

/// All of them; the ids under which the library writes come before those that it only reads.
std::span<KnownClass const> KnownClasses();

/// Null for any other id.
KnownClass const* FindClass(GUID const& id);

/// The name of a class of this library; empty for any other id.
std::string ClassName(GUID const& classId);

/// A type of plain values and the tag by which files know it.
struct ValueType
{
    uint32 tag;
    char const* name;
};

/// By tag: its first character is the most significant byte. Null for a tag that nobody knows.
ValueType const* FindType(uint32 tag);
ValueType const* FindType(std::string_view name);
} // namespace KORVA::RECORDS
