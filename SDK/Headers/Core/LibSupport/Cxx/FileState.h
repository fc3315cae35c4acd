// What a file held when somebody looked.
#pragma once

#include <tessio/ObjectModel/Types.h>

#include <cstddef>
#include <span>

namespace KORVA::CXX
{
/// Stands for the whole content of a file at one moment, or for there being no file. A value: copy it, keep
/// it, compare it.
///
///     FileState state;
///     auto const settings = Load<Dictionary>(path, {.state = &state});
///     …
///     auto const saved = Save(path, *settings, {.state = &state});
///     if (saved.error().Code() == kChanged) … // somebody else saved meanwhile: load again
///
/// Two contents count as the same that have one length and one 64-bit sum. The sum is no protection against
/// somebody who wants to deceive.
class FileState
{
public:
    /// There is no file.
    FileState() = default;

    /// A file of these bytes.
    static FileState Of(std::span<std::byte const> bytes)
    {
        FileState state;
        state.mIsThere = true;
        state.Add(bytes);
        return state;
    }

    /// Whether there is a file.
    bool IsThere() const { return mIsThere; }

    /// More bytes of the same content.
    void Add(std::span<std::byte const> bytes)
    {
        constexpr uint64 kPrime = 0x100000001B3;
        for (std::byte const byte : bytes)
            mSum = (mSum ^ std::to_integer<uint64>(byte)) * kPrime;
        mSize += bytes.size();
    }

    /// The same content, or no file twice.
    friend bool operator==(FileState const&, FileState const&) = default;

private:
    bool mIsThere = false;
    uint64 mSize = 0;
    uint64 mSum = 0xCBF29CE484222325;
};
} // namespace KORVA::CXX
