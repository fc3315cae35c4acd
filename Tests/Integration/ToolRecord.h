// Record files for the tool.
#pragma once

#include "Integration/ToolRun.h"
#include "Support/Laid.h"

namespace KORVA::TESTS
{
class ToolRecord : public ToolRun
{
protected:
    static std::string Text(Order order, std::string_view words)
    {
        Bytes const bytes = Laid(order, words);
        return {bytes.begin(), bytes.end()};
    }
    void Put(std::string const& name, Order order, std::string_view words) const
    {
        directory.File(name, Text(order, words));
    }
    bool Is(std::string const& name, Order order, std::string_view words) const
    {
        return Content(Path(name)) == Text(order, words);
    }
    /// With something to read from standard input.
    Outcome Feed(std::vector<std::string> const& arguments, std::string const& input) const
    {
        return RunProgram(Command(arguments), directory.Path().string(), input);
    }
};
} // namespace KORVA::TESTS
