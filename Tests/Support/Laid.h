// Record files laid out by hand, field by field, in either byte order.
#pragma once

#include "Support/Bytes.h"
#include <tessio/TessIO/IDataProvider.h>

#include <string_view>

namespace KORVA::TESTS
{
using Order = IO::IDataProvider::Endian;

inline constexpr Order kLittle = IO::IDataProvider::kLittleEndian;
inline constexpr Order kBig = IO::IDataProvider::kBigEndian;
inline constexpr Order kOrders[] = {kLittle, kBig};

/// Bytes from words with blanks between them; lengths and counts are whatever stands there.
///
///     Dict Value Strings URI Relative     the id of such a class
///     {XXXXXXXX-...}                      any other id
///     24:8                                a number (decimal, 0x or negative) of 8 bytes
///     'S32V                               a type tag
///     "hi" ^D800^0041                     units of a text, plain or as hexadecimal numbers
///     =0A0B                               bytes as they are, whatever the order
Bytes Laid(Order order, std::string_view words);

/// A file with one of each class, a class that nobody knows inside another record and beside it, an
/// aggregate: 442 bytes.
extern char const kEvery[];
} // namespace KORVA::TESTS
