#include <tessio/Records/Tree/Path.h>

#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Value.h>
#include <tessio/Records/Format/Words.h>

#include <fmt/format.h>

#include <limits>
#include <utility>

namespace KORVA::RECORDS
{
namespace
{
using STRING::CoreString;

/// A key or an index.
std::optional<uint32> Number(std::string_view text)
{
    auto const number = NumberOf(text);
    return number && *number <= std::numeric_limits<uint32>::max()
               ? std::optional(static_cast<uint32>(*number))
               : std::nullopt;
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
    /// The rest of a text behind its opening quote, as it is shown.
    std::optional<CoreString> QuotedText()
    {
        CoreString text;
        return Unquote(mText, text) ? std::nullopt : std::optional(std::move(text));
    }

private:
    std::string_view mText;
};

std::optional<Label> Component(Scanner& scanner)
{
    Label label;
    if (scanner.Accept("dict["))
    {
        label.type = Label::Type::kKey;
        auto const key = Number(scanner.Until("]"));
        if (!key || !scanner.Accept("]"))
            return std::nullopt;
        label.number = *key;
        return label;
    }
    if (scanner.Accept("record["))
    {
        label.type = Label::Type::kPart;
        auto const index = Number(scanner.Until("]"));
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
    auto const key = Number(word);
    if (!key)
        return std::nullopt;
    label.type = Label::Type::kKey;
    label.number = *key;
    return label;
}

std::optional<Path> PathOf(std::string_view text)
{
    Scanner scanner(text);
    Path path;
    if (!scanner.Accept("/"))
        return std::nullopt;
    auto const index = Number(scanner.Until("/"));
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

Node const* Child(Node const& node, Label const& label)
{
    auto const& children = label.type == Label::Type::kInterface ? node.aggregates : node.entries;
    for (auto child = children.rbegin(); child != children.rend(); ++child)
        if (child->label == label)
            return &*child;
    return nullptr;
}
} // namespace

Result<Path> ParsePath(std::string_view text)
{
    if (std::optional<Path> path = PathOf(text))
        return *std::move(path);
    return Error{ErrorCode::kImpossible, kNoOffset,
                 Quoted(text) + " is no path; paths look like /0, /0/dict[42]/dict[7], /0/{GUID}, "
                                "/0/strings[\"NAME\"]"};
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

Result<Node const*> NodeAt(RecordTree const& tree, Path const& path)
{
    std::size_t found = 0;
    if (Node const* const node = FindNode(tree, path, found))
        return node;
    if (found == 0)
        return Error{ErrorCode::kNotFound, kNoOffset,
                     fmt::format("has no record {}; it has {}", path.front().number, tree.records.size())};
    Path const way(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(found));
    return Error{ErrorCode::kNotFound, kNoOffset,
                 fmt::format("has nothing at {}: {} holds no {}", PathText(path), PathText(way),
                             Segment(path[found]))};
}
} // namespace KORVA::RECORDS
