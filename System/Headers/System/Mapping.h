// Files in memory without reading them.
#pragma once

#include "System/ErrorNumber.h"

#include <cstddef>
#include <span>
#include <utility>

namespace KORVA::SYSTEM
{
/// The content of a regular file, for reading. Pages come from the file when they are touched, and the system
/// takes them back when it needs the room: a file larger than the memory will do.
///
/// What others write to the file meanwhile may be seen. A file that is cut meanwhile ends the process where
/// it touches a page behind the end (SIGBUS), and so does a device that fails: whoever can't exclude both
/// reads with `ReadAllAt` instead. A file that is replaced by another stays what it was.
class Mapping
{
public:
    /// Empty.
    Mapping() = default;
    Mapping(Mapping&& other) noexcept : mBytes(std::exchange(other.mBytes, {})) {}
    Mapping& operator=(Mapping&& other) noexcept
    {
        std::swap(mBytes, other.mBytes);
        return *this;
    }
    ~Mapping();

    /// Maps the whole file, as long as it is now. The descriptor is borrowed, open for reading, and may be
    /// closed afterwards. Empty for an empty file, and on failure with the reason in `error`: `EISDIR` for a
    /// directory, `ENODEV` for whatever else is no regular file.
    static Mapping Of(int descriptor, ErrorNumber& error);

    /// Valid as long as this object, also when it is moved.
    std::span<std::byte const> Bytes() const { return mBytes; }

private:
    explicit Mapping(std::span<std::byte const> bytes) : mBytes(bytes) {}

    std::span<std::byte const> mBytes;
};
} // namespace KORVA::SYSTEM
