#include "Output.h"

#include "Failure.h"
#include "System/StandardStreams.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace TOOL
{
using KORVA::STRING::CoreString;

namespace
{
/// In the order of the styles.
constexpr char const* kCodes[] = {"", "2", "1", "36", "35", "32", "32", "31", "33", "1;31", "33"};
bool sColour = false;

std::string Escape(std::wstring_view text, bool quotes)
{
    std::string result;
    for (wchar_t const wide : text)
    {
        auto const c = static_cast<char32_t>(wide);
        if (c == U'\n')
            result += "\\n";
        else if (c == U'\t')
            result += "\\t";
        else if (c == U'\\' && quotes)
            result += "\\\\";
        else if (c == U'"' && quotes)
            result += "\\\"";
        // Besides the control characters those that turn the direction of text, and half surrogates.
        else if (c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 0x202A && c <= 0x202E) || c == 0x061C ||
                 c == 0x200E || c == 0x200F || c == 0x2028 || c == 0x2029 || (c >= 0x2066 && c <= 0x2069) ||
                 (c >= 0xD800 && c < 0xE000))
            result += fmt::format("\\u{{{:X}}}", static_cast<unsigned>(c));
        else if (c < 0x10000)
        {
            auto const unit = static_cast<char16_t>(c);
            result += CoreString(&unit, 1).ToUTF8();
        }
        else
        {
            char16_t const pair[] = {static_cast<char16_t>(0xD7C0 + (c >> 10)),
                                     static_cast<char16_t>(0xDC00 + (c & 0x3FF))};
            result += CoreString(pair, 2).ToUTF8();
        }
    }
    return result;
}

/// A character from behind its backslash. Null, or why not.
char const* Unescape(std::string_view& rest, CoreString& text)
{
    constexpr std::string_view kMarks = "nt\"\\";
    constexpr char16_t kMeanings[] = u"\n\t\"\\";
    char const mark = rest.empty() ? '\0' : rest.front();
    if (auto const known = kMarks.find(mark); known != std::string_view::npos)
    {
        text.push_back(kMeanings[known]);
        rest.remove_prefix(1);
        return nullptr;
    }
    if (mark != 'u')
        return R"(after a backslash in a text stand n, t, ", \ or u{...})";
    std::size_t const end = rest.find('}');
    KORVA::uint32 value = 0;
    bool const isBraced = rest.starts_with("u{") && end != std::string_view::npos;
    auto const [stop, error] =
        std::from_chars(rest.data() + (isBraced ? 2 : 0), rest.data() + (isBraced ? end : 0), value, 16);
    if (!isBraced || error != std::errc() || stop != rest.data() + end || value > 0x10FFFF)
        return R"(\u stands before a hexadecimal number up to 10FFFF in braces)";
    if (value >= 0x10000)
        text.push_back(static_cast<char16_t>(0xD7C0 + (value >> 10)));
    text.push_back(static_cast<char16_t>(value >= 0x10000 ? 0xDC00 + (value & 0x3FF) : value));
    rest.remove_prefix(end + 1);
    return nullptr;
}
} // namespace

void ChooseColour(std::string const& when)
{
    auto const isSet = [](char const* name) {
        char const* const value = std::getenv(name);
        return value && *value != '\0';
    };
    char const* const terminal = std::getenv("TERM");
    bool const canShow = terminal && std::string_view(terminal) != "dumb" &&
                         KORVA::SYSTEM::IsTerminal(KORVA::SYSTEM::StandardStream::kOutput);
    sColour = when == "always" || (when == "auto" && canShow && !isSet("NO_COLOR"));
}

std::string Styled(Style style, std::string_view text)
{
    if (!sColour || style == Style::kPlain || text.empty())
        return std::string(text);
    return fmt::format("\x1B[{}m{}\x1B[0m", kCodes[static_cast<std::size_t>(style)], text);
}

void Print(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        throw Failure(Exit::kInputOutput,
                      std::string("cannot write to standard output: ") + std::strerror(errno));
}

std::string JsonText(Json const& document)
{
    Json whole = {{"schema", kSchema}};
    whole.update(document);
    return whole.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

int Indent(int depth)
{
    constexpr int kDeepestIndent = 64;
    return 2 * std::min(depth, kDeepestIndent);
}

void PrintJson(Json const& document) { Print(JsonText(document)); }

std::string Escaped(CoreString const& text) { return Escape(text.ToWide(), false); }

std::string EscapedWide(std::wstring_view text) { return Escape(text, false); }

std::string Escaped(std::string_view utf8) { return Escape(CoreString(utf8).ToWide(), false); }

std::string Quoted(CoreString const& text) { return '"' + Escape(text.ToWide(), true) + '"'; }

std::string Quoted(std::string_view utf8) { return Quoted(CoreString(utf8)); }

char const* Unquote(std::string_view& rest, CoreString& text)
{
    for (;;)
    {
        std::size_t const plain = rest.find_first_of("\\\"\n");
        if (plain == std::string_view::npos)
            return "a text is not closed";
        if (rest[plain] == '\n')
            return "a text is not closed on its line";
        auto const piece = CoreString::FromUTF8(rest.substr(0, plain));
        if (!piece)
            return "a text is not valid UTF-8";
        text.append(*piece);
        bool const isEnd = rest[plain] == '"';
        rest.remove_prefix(plain + 1);
        if (isEnd)
            return nullptr;
        if (char const* const why = Unescape(rest, text))
            return why;
    }
}

std::string ByteCount(KORVA::int64 count) { return fmt::format("{} byte{}", count, count == 1 ? "" : "s"); }

CoreString TextArgument(std::string const& argument, std::string const& what)
{
    std::optional<CoreString> text = CoreString::FromUTF8(argument);
    if (!text)
        throw Failure(Exit::kUsage, what + " " + Quoted(argument) + " is not valid UTF-8");
    return *text;
}
} // namespace TOOL
