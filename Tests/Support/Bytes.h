// Bytes written as people read them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KORVA::TESTS
{
using Bytes = std::vector<unsigned char>;

/// From hexadecimal pairs, blanks between them as one likes: Hex("04 00 00 00 41 00").
Bytes Hex(std::string_view text);

/// "04 00 41", for failure messages that can be read.
std::string ToHex(Bytes const& bytes);
} // namespace KORVA::TESTS
