#include "Records/Path.h"

#include "Failure.h"
#include "ObjectModel/GUIDText.h"
#include "Output.h"

#include <fmt/format.h>

#include <charconv>

namespace TOOL
{
namespace
{
using namespace KORVA;
using STRING::CoreString;

std::optional<uint32> NumberOf(std::string_view text)
{
    int base = 10;
    if (text.size() > 2 && text.front() == '0')
    {
        char const mark = text[1];
        base = mark == 'x' || mark == 'X'   ? 16
               : mark == 'o' || mark == 'O' ? 8
               : mark == 'b' || mark == 'B' ? 2
                                            : 10;
        if (base != 10)
            text.remove_prefix(2);
    }
    uint32 number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

/// Takes paths apart from the front.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : mText(text) {}

    bool AtEnd() const { return mText.empty(); }
    bool Accept(std::string_view text)
    {
        if (!mText.starts_with(text))
            return false;
        mText.remove_prefix(text.size());
        return true;
    }
    /// What stands before the first of these characters, or all that is left.
    std::string_view Until(std::string_view characters)
    {
        std::string_view const piece = mText.substr(0, mText.find_first_of(characters));
        mText.remove_prefix(piece.size());
        return piece;
    }
    std::optional<CoreString> QuotedText();

private:
    std::string_view mText;
};

/// The rest of a text behind its opening quote, as it is shown.
std::optional<CoreString> Scanner::QuotedText()
{
    CoreString text;
    while (!mText.empty())
    {
        std::string_view const plain = Until("\\\"");
        std::optional<CoreString> const piece = CoreString::FromUTF8(plain);
        if (!piece)
            return std::nullopt;
        text.append(*piece);
        if (Accept("\""))
            return text;
        if (Accept("\\n"))
            text.push_back(u'\n');
        else if (Accept("\\t"))
            text.push_back(u'\t');
        else if (Accept("\\\""))
            text.push_back(u'"');
        else if (Accept("\\\\"))
            text.push_back(u'\\');
        else if (Accept("\\u{"))
        {
            std::string_view const digits = Until("}");
            uint32 value = 0;
            if (digits.empty() || !Accept("}") ||
                std::from_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr !=
                    digits.data() + digits.size() ||
                value > 0xFFFF)
                return std::nullopt;
            text.push_back(static_cast<char16_t>(value));
        }
        else
            return std::nullopt;
    }
    return std::nullopt;
}

std::optional<Label> Component(Scanner& scanner)
{
    Label label;
    if (scanner.Accept("dict["))
    {
        label.type = Label::Type::kKey;
        auto const key = NumberOf(scanner.Until("]"));
        if (!key || !scanner.Accept("]"))
            return std::nullopt;
        label.number = *key;
        return label;
    }
    if (scanner.Accept("record["))
    {
        label.type = Label::Type::kPart;
        auto const index = NumberOf(scanner.Until("]"));
        if (!index || !scanner.Accept("]"))
            return std::nullopt;
        label.number = *index;
        return label;
    }
    if (scanner.Accept("strings["))
    {
        label.type = Label::Type::kText;
        auto const key =
            scanner.Accept("\"") ? scanner.QuotedText() : CoreString::FromUTF8(scanner.Until("]"));
        if (!key || !scanner.Accept("]"))
            return std::nullopt;
        label.text = *key;
        return label;
    }
    std::string_view const word = scanner.Until("/");
    if (auto const id = word.starts_with('{') ? GUIDFromText(word) : std::nullopt)
    {
        label.type = Label::Type::kInterface;
        label.id = *id;
        return label;
    }
    auto const key = NumberOf(word);
    if (!key)
        return std::nullopt;
    label.type = Label::Type::kKey;
    label.number = *key;
    return label;
}

Node const* Child(Node const& node, Label const& label)
{
    auto const& children = label.type == Label::Type::kInterface ? node.aggregates : node.entries;
    for (auto child = children.rbegin(); child != children.rend(); ++child)
        if (child->label == label)
            return &*child;
    return nullptr;
}
} // namespace

std::optional<Path> ParsePath(std::string_view text)
{
    Scanner scanner(text);
    Path path;
    if (!scanner.Accept("/"))
        return std::nullopt;
    auto const index = NumberOf(scanner.Until("/"));
    if (!index)
        return std::nullopt;
    path.push_back({.type = Label::Type::kIndex, .number = *index, .text = {}, .id = {}});
    while (!scanner.AtEnd())
    {
        if (!scanner.Accept("/"))
            return std::nullopt;
        std::optional<Label> label = Component(scanner);
        if (!label)
            return std::nullopt;
        path.push_back(std::move(*label));
    }
    return path;
}

Path PathArgument(std::string const& text)
{
    std::optional<Path> path = ParsePath(text);
    if (!path)
        throw Failure(Exit::kUsage, Quoted(text) + " is no path; paths look like /0, /0/dict[42]/dict[7], "
                                                   "/0/{GUID}, /0/strings[\"NAME\"]");
    return *path;
}

std::string PathText(Path const& path)
{
    std::string text;
    for (Label const& label : path)
        text += "/" + Segment(label);
    return text;
}

Node const* FindNode(RecordTree const& tree, Path const& path, std::size_t& found)
{
    found = 0;
    if (path.front().number >= tree.records.size())
        return nullptr;
    Node const* node = &tree.records[path.front().number];
    for (found = 1; found < path.size(); ++found)
    {
        Node const* const child = Child(*node, path[found]);
        if (!child)
            return nullptr;
        node = child;
    }
    return node;
}

Node const& NodeAt(RecordTree const& tree, std::string const& path, std::string const& file)
{
    Path const components = PathArgument(path);
    std::size_t found = 0;
    if (Node const* const node = FindNode(tree, components, found))
        return *node;
    if (found == 0)
        throw Failure(Exit::kNotFound, fmt::format("{} has no record {}; it has {}", Quoted(file),
                                                   components.front().number, tree.records.size()));
    Path const way(components.begin(), components.begin() + static_cast<std::ptrdiff_t>(found));
    throw Failure(Exit::kNotFound,
                  fmt::format("{} has nothing at {}: {} holds no {}", Quoted(file), PathText(components),
                              PathText(way), Segment(components[found])));
}
} // namespace TOOL
