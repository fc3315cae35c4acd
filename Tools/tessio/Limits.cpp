#include "Commands.h"
#include "Failure.h"
#include "Output.h"

#include <charconv>

namespace TOOL
{
using KORVA::int64;

Limits LimitsOf(std::vector<std::string> const& texts)
{
    struct Row
    {
        std::string_view name;
        int64 Limits::*bound;
    };
    constexpr Row kRows[] = {
        {"depth=", &Limits::depth}, {"count=", &Limits::count}, {"bytes=", &Limits::bytes}};
    Limits limits;
    for (std::string const& text : texts)
    {
        bool understood = false;
        for (Row const& row : kRows)
        {
            if (!text.starts_with(row.name))
                continue;
            int64 value = -1;
            char const* const end = text.data() + text.size();
            auto const [stop, error] = std::from_chars(text.data() + row.name.size(), end, value);
            understood = error == std::errc() && stop == end && value >= 0;
            limits.*row.bound = value;
        }
        if (!understood)
            throw Failure(Exit::kUsage, Quoted(text) + " is no bound: write depth=N, count=N or bytes=N");
    }
    return limits;
}
} // namespace TOOL
