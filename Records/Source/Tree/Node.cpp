#include <tessio/Records/Tree/Node.h>

#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/Records/Format/Words.h>

#include <fmt/format.h>

#include <algorithm>

namespace KORVA::RECORDS
{
char const* SeverityName(Severity severity)
{
    switch (severity)
    {
    case Severity::kNote:
        return "note";
    case Severity::kWarning:
        return "warning";
    case Severity::kError:
        break;
    }
    return "error";
}

std::string Segment(Label const& label)
{
    switch (label.type)
    {
    case Label::Type::kIndex:
        return std::to_string(label.number);
    case Label::Type::kKey:
        return fmt::format("dict[{}]", label.number);
    case Label::Type::kText:
        return "strings[" + Quoted(label.text) + "]";
    case Label::Type::kInterface:
        return KORVA::GUIDToText(label.id);
    case Label::Type::kPart:
        break;
    }
    return fmt::format("record[{}]", label.number);
}

std::string Problem(Node const& node)
{
    for (Finding const& finding : node.findings)
        if (finding.severity == Severity::kError)
            return finding.words;
    return "";
}

std::string Entries(Node const& node)
{
    return fmt::format("{} {}", node.entryCount, node.entryCount == 1 ? "entry" : "entries");
}

bool IsDamaged(Node const& node)
{
    return !Problem(node).empty() || std::ranges::any_of(node.entries, &IsDamaged) ||
           std::ranges::any_of(node.aggregates, &IsDamaged);
}

Node const* FirstFragile(Node const& node)
{
    if (node.kind == Kind::kUnknownClass || !Problem(node).empty() || node.value.type == "unknown")
        return &node;
    for (auto const* const children : {&node.entries, &node.aggregates})
        for (Node const& child : *children)
            if (Node const* const found = FirstFragile(child))
                return found;
    return nullptr;
}
} // namespace KORVA::RECORDS
