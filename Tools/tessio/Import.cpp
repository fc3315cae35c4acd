#include "Import.h"

#include "Failure.h"
#include "Output.h"

#include <fmt/format.h>

namespace TOOL
{
namespace
{
/// One line's value, taken apart from its start.
class ValueParser
{
public:
    ValueParser(std::string_view text, std::string where) : mRest(text), mWhere(std::move(where)) {}

    std::string Parse()
    {
        std::string value;
        while (!mRest.empty())
        {
            char const c = Next();
            if (c == '\'')
                value += Quoted();
            else if (c == '"')
                value += DoubleQuoted();
            else if (c == '\\')
                value += Need();
            else if (c == ' ' || c == '\t')
            {
                if (mRest.find_first_not_of(" \t") != std::string_view::npos)
                    Fail("blanks must be quoted");
                return value;
            }
            else if (std::string_view("$`;&|<>()").find(c) != std::string_view::npos)
                Fail(std::string("'") + c + "' must be quoted");
            else
                value += c;
        }
        return value;
    }

private:
    [[noreturn]] void Fail(std::string const& why) const { throw Failure(Exit::kInputOutput, mWhere + why); }

    char Next()
    {
        char const c = mRest.front();
        mRest.remove_prefix(1);
        return c;
    }

    char Need()
    {
        if (mRest.empty())
            Fail("a quote is not closed");
        return Next();
    }

    std::string Quoted()
    {
        std::string value;
        for (char c = Need(); c != '\''; c = Need())
            value += c;
        return value;
    }

    std::string DoubleQuoted()
    {
        std::string value;
        for (char c = Need(); c != '"'; c = Need())
        {
            if (c == '$' || c == '`')
                Fail(std::string("'") + c + "' must be escaped: nothing is expanded");
            if (c == '\\')
            {
                char const escaped = Need();
                if (std::string_view("\"$\\`").find(escaped) == std::string_view::npos)
                    value += '\\';
                c = escaped;
            }
            value += c;
        }
        return value;
    }

    std::string_view mRest;
    std::string mWhere;
};

bool IsName(std::string_view text)
{
    if (text.empty() || (text.front() >= '0' && text.front() <= '9'))
        return false;
    for (char const c : text)
        if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_'))
            return false;
    return true;
}
} // namespace

std::vector<std::pair<std::string, std::string>> ParseAssignments(std::string_view text,
                                                                  std::string const& source)
{
    std::vector<std::pair<std::string, std::string>> assignments;
    int number = 0;
    if (constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF"; text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    while (!text.empty())
    {
        ++number;
        std::size_t const end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        std::size_t const start = line.find_first_not_of(" \t");
        if (start == std::string_view::npos || line[start] == '#')
            continue;
        line.remove_prefix(start);
        std::string const where = fmt::format("{}:{}: ", Escaped(source), number);
        if (!KORVA::STRING::CoreString::FromUTF8(line))
            throw Failure(Exit::kInputOutput, where + "not valid UTF-8");
        std::size_t const equals = line.find('=');
        if (equals == std::string_view::npos || !IsName(line.substr(0, equals)))
            throw Failure(Exit::kInputOutput, where + "not of the form KEY=value");
        assignments.emplace_back(line.substr(0, equals), ValueParser(line.substr(equals + 1), where).Parse());
    }
    return assignments;
}
} // namespace TOOL
