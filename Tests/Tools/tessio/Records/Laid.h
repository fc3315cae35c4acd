// Record files laid out by hand, field by field, in either byte order.
#pragma once

#include "Records/Decoder.h"
#include "Support/Bytes.h"

#include <string_view>

namespace KORVA::TESTS
{
inline constexpr TOOL::Order kLittle = IO::IDataProvider::kLittleEndian;
inline constexpr TOOL::Order kBig = IO::IDataProvider::kBigEndian;
inline constexpr TOOL::Order kOrders[] = {kLittle, kBig};

/// Bytes from words with blanks between them; lengths and counts are whatever stands there.
///
///     Dict Value Strings URI Relative     the id of such a class
///     {XXXXXXXX-...}                      any other id
///     24:8                                a number (decimal, 0x or negative) of 8 bytes
///     'S32V                               a type tag
///     "hi" ^D800^0041                     units of a text, plain or as hexadecimal numbers
///     =0A0B                               bytes as they are, whatever the order
Bytes Laid(TOOL::Order order, std::string_view words);

/// The tree of a file in that order, without limits.
TOOL::RecordTree Read(TOOL::Order order, Bytes const& content);
} // namespace KORVA::TESTS
