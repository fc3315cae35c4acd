// Where the bytes of a record file come from.
#pragma once

#include <tessio/Records/Format/Bytes.h>
#include <tessio/Records/Format/Error.h>

#include <cstring>
#include <optional>
#include <span>

namespace KORVA::RECORDS
{
/// Bytes by their offsets, of any size. Readers of several threads may use one source at a time.
class Source
{
public:
    virtual ~Source() = default;

    /// In bytes; does not change while somebody reads.
    virtual int64 Size() const = 0;

    /// Copies the bytes from `offset` on, as many as `to` takes; the source has so many there. Nothing, or
    /// why that failed; the content of `to` is undefined then.
    virtual std::optional<Error> Read(int64 offset, std::span<unsigned char> to) const = 0;

    /// All bytes where they are in memory anyway, borrowed from the source; null otherwise.
    virtual unsigned char const* Memory() const { return nullptr; }
};

/// Bytes that are in memory. Borrows them.
class MemorySource final : public Source
{
public:
    explicit MemorySource(ByteView content) : mContent(content) {}

    int64 Size() const override { return static_cast<int64>(mContent.size()); }
    std::optional<Error> Read(int64 offset, std::span<unsigned char> to) const override
    {
        std::memcpy(to.data(), mContent.data() + offset, to.size());
        return std::nullopt;
    }
    unsigned char const* Memory() const override { return mContent.data(); }

private:
    ByteView mContent;
};
} // namespace KORVA::RECORDS
