#include <tessio/Records/Format/Directories.h>
#include <tessio/Records/Tree/Summary.h>

#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Words.h>

#include <fmt/format.h>

namespace KORVA::RECORDS
{
namespace
{
constexpr std::size_t kShownCharacters = 144;

std::string Cut(std::string text)
{
    if (text.size() <= kShownCharacters)
        return text;
    std::size_t end = kShownCharacters;
    while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end) + " ...";
}

/// Only the beginning of what is too long to show is formatted.
std::string ShownValue(Value const& value)
{
    if (auto const* const bytes = std::get_if<Bytes>(&value.content);
        bytes && bytes->size() > kShownCharacters)
    {
        Value beginning;
        beginning.content = Bytes(bytes->begin(), bytes->begin() + kShownCharacters);
        return Shown(beginning);
    }
    if (auto const* const text = std::get_if<std::u16string>(&value.content);
        text && text->size() > kShownCharacters)
    {
        Value beginning;
        beginning.content = text->substr(0, kShownCharacters);
        return Shown(beginning);
    }
    return Shown(value);
}
} // namespace

std::string Summary(Node const& node, Paint const& paint)
{
    switch (node.kind)
    {
    case Kind::kDictionary:
    case Kind::kStrings:
        return paint(Wording::kName, ClassName(node.classId)) + ", " + Entries(node);
    case Kind::kValue:
        return paint(Wording::kName, "DictValue") + " " +
               paint(node.value.type == "text" ? Wording::kText : Wording::kNumber,
                     Cut(node.value.type +
                         (node.value.content.index() == 0 ? "" : " " + ShownValue(node.value))));
    case Kind::kStringEntry:
        return paint(Wording::kText, Cut(Quoted(node.text)));
    case Kind::kURI:
        return paint(Wording::kName, "URI") + " " + paint(Wording::kText, Cut(Quoted(node.text)));
    case Kind::kRelativeURI:
        return paint(Wording::kName, "RelativeURI") + " " +
               paint(Wording::kText, Cut(DirectoryName(node.directory) + " " + Quoted(node.text)));
    case Kind::kObject:
        return paint(Wording::kName, "object " + GUIDToText(node.classId)) +
               fmt::format(", {} {}", node.parts.size(), node.parts.size() == 1 ? "part" : "parts");
    case Kind::kUnknownClass:
        break;
    }
    return "unknown class " + GUIDToText(node.classId) + ", skipped";
}

std::string Summary(Node const& node)
{
    return Summary(node, [](Wording, std::string_view text) { return std::string(text); });
}
} // namespace KORVA::RECORDS
