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

std::string Painted(Wording wording, std::string_view text)
{
    return Styled(wording == Wording::kName     ? Style::kName
                  : wording == Wording::kNumber ? Style::kNumber
                                                : Style::kText,
                  text);
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

void PrintJson(Json const& document) { Print(JsonText(document)); }

void PrintJson(std::function<void(JsonPrinter&)> const& write)
{
    JsonPrinter printer(&Print);
    printer.BeginObject();
    printer.Members({{"schema", kSchema}});
    write(printer);
    printer.End();
    printer.Finish();
}

CoreString TextArgument(std::string const& argument, std::string const& what)
{
    std::optional<CoreString> text = CoreString::FromUTF8(argument);
    if (!text)
        throw Failure(Exit::kUsage, what + " " + Quoted(argument) + " is not valid UTF-8");
    return *text;
}
} // namespace TOOL
