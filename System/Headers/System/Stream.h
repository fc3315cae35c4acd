// What a C stream does beyond the language's own library.
#pragma once

#include "System/ErrorNumber.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace KORVA::SYSTEM
{
/// A stream over the descriptor, which it adopts: `fclose` ends both. Null with the reason in `error`, and
/// the descriptor stays the caller's, when `mode` (as of fopen) does not match what it was opened for:
/// `EINVAL`.
std::FILE* OpenStream(int descriptor, char const* mode, ErrorNumber& error);

/// Borrowed.
int DescriptorOf(std::FILE* stream);

/// As fseek and ftell with 64 bits.
///@{
ErrorNumber SeekStream(std::FILE* stream, std::int64_t offset, int whence);
ErrorNumber ReadStreamPosition(std::FILE* stream, std::int64_t& position);
///@}

/// How many written bytes the stream holds that the system does not have yet.
std::size_t HeldBack(std::FILE* stream);
} // namespace KORVA::SYSTEM
