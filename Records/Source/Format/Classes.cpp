#include <tessio/Records/Format/Classes.h>

#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/RecordFormat.h>

namespace KORVA::RECORDS
{
namespace
{

constexpr KnownClass kClasses[] = {
    {IO::IID_DICTIONARY, "PersistentDictionary", Kind::kDictionary},
    {IO::IID_IDICTIONARY_VALUE, "DictValue", Kind::kValue},
    {IO::IID_STRING_DICTIONARY, "StringDictionary", Kind::kStrings},
    {IO::IID_IURI, "URI", Kind::kURI},
    {IO::IID_IRELATIVE_URI, "RelativeURI", Kind::kRelativeURI},
    {IO::IID_PERSISTENT_DICTIONARY, "PersistentDictionary", Kind::kDictionary},
};

constexpr uint32 Tag(IO::ValueTag tag) { return static_cast<uint32>(tag); }

constexpr ValueType kTypes[] = {{Tag(IO::ValueTag::kNone), "none"},     {Tag(IO::ValueTag::kInt8), "int8"},
                                {Tag(IO::ValueTag::kUInt8), "uint8"},   {Tag(IO::ValueTag::kInt16), "int16"},
                                {Tag(IO::ValueTag::kUInt16), "uint16"}, {Tag(IO::ValueTag::kInt32), "int32"},
                                {Tag(IO::ValueTag::kUInt32), "uint32"}, {Tag(IO::ValueTag::kInt64), "int64"},
                                {Tag(IO::ValueTag::kUInt64), "uint64"}, {Tag(IO::ValueTag::kFloat), "float"},
                                {Tag(IO::ValueTag::kDouble), "double"}, {Tag(IO::ValueTag::kGUID), "guid"},
                                {Tag(IO::ValueTag::kBytes), "bytes"},   {Tag(IO::ValueTag::kUnits), "text"}};
} // namespace

std::span<KnownClass const> KnownClasses() { return kClasses; }

KnownClass const* FindClass(GUID const& id)
{
    for (KnownClass const& row : kClasses)
        if (row.id == id)
            return &row;
    return nullptr;
}

std::string ClassName(GUID const& classId)
{
    KnownClass const* const known = FindClass(classId);
    return known ? known->name : "";
}

ValueType const* FindType(uint32 tag)
{
    for (ValueType const& row : kTypes)
        if (row.tag == tag)
            return &row;
    return nullptr;
}

ValueType const* FindType(std::string_view name)
{
    for (ValueType const& row : kTypes)
        if (row.name == name)
            return &row;
    return nullptr;
}
} // namespace KORVA::RECORDS
