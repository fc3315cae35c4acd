// Fixed-size types and library-wide result codes shared by every component.
#pragma once

#include <cstdint>

/// The component system: interfaces, their implementation template and the pointers that hold components.
namespace KORVA
{
/// Of the width that the name says.
///@{
using int32 = std::int32_t;
using uint32 = std::uint32_t;
using int64 = long long;
using uint64 = unsigned long long;
///@}
/// One byte in every interface.
using bool8 = bool;
/// A byte.
using uchar = unsigned char;
/// Defined by tests alone, which pin field layouts through it.
struct LayoutProbe;

/// One UTF-16 code unit.
using UniChar = char16_t;

/// Signed 32-bit results; 0 is success.
///@{
using ErrCode = int32;
using OperationId = int32;
using HRESULT = int32;
///@}

static_assert(sizeof(int64) == 8 && sizeof(uint64) == 8);
static_assert(sizeof(bool8) == 1, "bool8 is one byte in every interface");

/// The operation did what it says.
inline constexpr ErrCode kNoError = 0;
/// A null or otherwise illegal argument to an initialisation.
inline constexpr ErrCode kIllegalArgument = -50;
/// No class, interface or scheme is known under the id asked for.
inline constexpr ErrCode kIdNotFound = -1004;
} // namespace KORVA
