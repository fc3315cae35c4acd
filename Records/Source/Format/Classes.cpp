#include <tessio/Records/Format/Classes.h>

#include <tessio/TessIO/ClassIds.h>

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

constexpr uint32 Tag(char const (&text)[5])
{
    uint32 value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(text[i]);
    return value;
}

constexpr ValueType kTypes[] = {{Tag("UNNT"), "none"},   {Tag("S8VL"), "int8"},   {Tag("U8VL"), "uint8"},
                                {Tag("S16V"), "int16"},  {Tag("U16V"), "uint16"}, {Tag("S32V"), "int32"},
                                {Tag("U32V"), "uint32"}, {Tag("S64V"), "int64"},  {Tag("U64V"), "uint64"},
                                {Tag("FL32"), "float"},  {Tag("FL64"), "double"}, {Tag("GUID"), "guid"},
                                {Tag("CHAR"), "bytes"},  {Tag("UNIC"), "text"}};
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
