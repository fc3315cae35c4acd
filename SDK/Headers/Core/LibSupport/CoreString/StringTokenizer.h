// Splits a text at delimiter characters.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/Export.h>

#include <vector>

namespace KORVA::STRING
{
/// The non-empty pieces of a text between any of the delimiter characters; empty pieces don't count.
class TESSIO_EXPORT StringTokenizer
{
public:
    /// `flag` is reserved and must be 0.
    StringTokenizer(CoreString const& text, CoreString const& delimiters, int flag);

    /// How many pieces there are.
    int32 NumTokens() const;
    /// The token at `index`, counted from 0; empty when there is none.
    CoreString Get(int32 index) const;

private:
    std::vector<CoreString> mTokens;
};
} // namespace KORVA::STRING
