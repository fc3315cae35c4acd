// Names of table-driven tests.
#pragma once

#include <string>

namespace KORVA::TESTS
{
/// Names the tests of a table by the rows' `name` (letters, digits and underscores).
struct RowName
{
    template <class Info>
    std::string operator()(Info const& info) const
    {
        return info.param.name;
    }
};
} // namespace KORVA::TESTS
