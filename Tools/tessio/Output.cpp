#include "Output.h"

#include "Failure.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace TOOL
{
using KORVA::STRING::CoreString;

namespace
{
constexpr int kSchema = 1;
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
} // namespace

void ChooseColour(std::string const& when)
{
    auto const isSet = [](char const* name) {
        char const* const value = std::getenv(name);
        return value && *value != '\0';
    };
    char const* const terminal = std::getenv("TERM");
    bool const canShow = terminal && std::string_view(terminal) != "dumb" && isatty(STDOUT_FILENO) != 0;
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

void PrintJson(Json const& document)
{
    Json whole = {{"schema", kSchema}};
    whole.update(document);
    Print(whole.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

std::string Escaped(CoreString const& text) { return Escape(text.ToWide(), false); }

std::string EscapedWide(std::wstring_view text) { return Escape(text, false); }

std::string Escaped(std::string_view utf8) { return Escape(CoreString(utf8).ToWide(), false); }

std::string Quoted(CoreString const& text) { return '"' + Escape(text.ToWide(), true) + '"'; }

std::string Quoted(std::string_view utf8) { return Quoted(CoreString(utf8)); }

CoreString TextArgument(std::string const& argument, std::string const& what)
{
    std::optional<CoreString> text = CoreString::FromUTF8(argument);
    if (!text)
        throw Failure(Exit::kUsage, what + " " + Quoted(argument) + " is not valid UTF-8");
    return *text;
}
} // namespace TOOL
