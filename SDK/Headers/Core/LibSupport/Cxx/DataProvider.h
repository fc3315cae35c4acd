// Bytes with a position.
#pragma once

#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/SystemErrors.h>
#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/IDataProviderStatus.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <limits>
#include <ranges>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace KORVA::CXX
{
/// The order of the bytes of numbers in a stream or file.
enum class ByteOrder
{
    /// The most significant byte first.
    kBig,
    /// The least significant byte first.
    kLittle,
    /// That of this machine.
    kNative = std::endian::native == std::endian::little ? kLittle : kBig
};

/// A range that takes its elements away when the expression ends: a vector, not a span.
template <class Range>
concept OwningTemporary = !std::is_lvalue_reference_v<Range> && std::ranges::contiguous_range<Range> &&
                          !std::ranges::borrowed_range<Range>;

/// Owns a data provider. Copies share it and its position. Used by one thread at a time.
class DataProvider : public Handle<IO::IDataProvider>
{
public:
    using Handle::Handle;

    /// A new memory block to write to and read from, which grows as needed.
    static Result<DataProvider> Memory(ByteOrder order = ByteOrder::kNative)
    {
        Result<DataProvider> created = CXX::Create<DataProvider>(IO::IID_IDATAPROVIDER);
        if (created)
        {
            (*created)->InitHandleBased(IO::kStreamReadWrite);
            created->SetOrder(order);
        }
        return created;
    }

    /// Reads the caller's bytes, borrowed: they must outlive the provider. `kIllegalArgument` for no bytes,
    /// which the interface refuses; `kTooLarge`.
    static Result<DataProvider> Over(std::span<std::byte const> bytes, ByteOrder order = ByteOrder::kNative)
    {
        if (bytes.empty())
            return Error(kIllegalArgument, "read memory", {}, "it is empty");
        if (bytes.size() > kPiece)
            return Error(kTooLarge, "read memory");
        Result<DataProvider> created = CXX::Create<DataProvider>(IO::IID_IDATAPROVIDER);
        if (!created)
            return created;
        ErrCode const code = (*created)->InitReadOnlyMem(bytes.data(), static_cast<int32>(bytes.size()));
        if (code != kNoError)
            return Error(code, "read memory");
        created->SetOrder(order);
        return created;
    }
    /// The same over other bytes.
    static Result<DataProvider> Over(std::span<unsigned char const> bytes,
                                     ByteOrder order = ByteOrder::kNative)
    {
        return Over(std::as_bytes(bytes), order);
    }
    /// A temporary that owns its bytes would take them away.
    template <OwningTemporary Range>
    static Result<DataProvider> Over(Range&& bytes, ByteOrder order = ByteOrder::kNative) = delete;

    /// In bytes.
    int64 Size() const { return (*this)->Size(); }
    /// In bytes from the start.
    int64 Position() const { return (*this)->GetPosition(); }
    /// Whether the position has reached the size.
    bool AtEnd() const { return (*this)->AtEnd(); }

    /// Cuts or extends. `kBadArgument` for a negative size, else the provider's code; `kResizeFailed` where
    /// the size is another afterwards. A memory block can't be made empty.
    Result<void> SetSize(int64 size)
    {
        if (size < 0)
            return Error(IO::kBadArgument, "set the size");
        ErrCode const code = (*this)->SetSize(size);
        return ResultOf(code != kNoError || Size() == size ? code : IO::kResizeFailed, "set the size");
    }

    /// Goes to a position counted from the start. `kBadArgument`, and the position is unchanged, where the
    /// provider does not go there.
    Result<void> Seek(int64 position)
    {
        int64 const before = Position();
        ErrCode const code = (*this)->SetPosition(position, IO::IDataProvider::kFromStart);
        if (code == kNoError && Position() == position)
            return {};
        static_cast<void>((*this)->SetPosition(before, IO::IDataProvider::kFromStart));
        return Error(code == kNoError ? IO::kBadArgument : code, "set the position");
    }

    /// The byte order in which streams read and write numbers.
    ByteOrder Order() const { return (*this)->IsNative() ? ByteOrder::kLittle : ByteOrder::kBig; }
    /// Takes effect at the next number.
    void SetOrder(ByteOrder order)
    {
        (*this)->SetEndian(order == ByteOrder::kBig ? IO::IDataProvider::kBigEndian
                                                    : IO::IDataProvider::kLittleEndian);
    }

    /// Reads to `buffer` and gives the number of bytes: fewer than asked for at the end of the data, where no
    /// provider's own code counts as a failure. Else the provider's code, or `kNoData` where it gives nothing
    /// though more should be there; of a file, `kDeviceFailed` and what else the system says.
    Result<std::size_t> Read(std::span<std::byte> buffer)
    {
        std::size_t done = 0;
        while (done < buffer.size())
        {
            auto const wanted = static_cast<int32>(std::min(buffer.size() - done, kPiece));
            int32 count = wanted;
            OperationId const code = (*this)->Read(buffer.data() + done, count);
            bool const atEnd = code == IO::kEndOfData || (code == IO::kNoData && AtEnd());
            if (code != kNoError && !atEnd)
                return ReadFailure(code);
            done += static_cast<std::size_t>(std::clamp(count, 0, wanted));
            if (count < wanted && (atEnd || AtEnd() || Position() >= Size()))
                break;
            if (count <= 0)
                return ReadFailure(IO::kNoData);
        }
        return done;
    }

    /// Writes all bytes. The provider's code, or `kWriteFailed` where the position did not advance by as
    /// much. A file holds back what is written, and what the device then has no room for is lost although
    /// this was a success: `Flush` tells. Don't write to a file opened for reading: that never returns.
    Result<void> Write(std::span<std::byte const> bytes)
    {
        if (bytes.empty())
            return {};
        int64 const before = Position();
        OperationId const code = (*this)->Write(bytes.data(), bytes.size());
        bool const whole = Position() - before == static_cast<int64>(bytes.size());
        return ResultOf(code != kNoError || whole ? code : IO::kWriteFailed, "write");
    }

    /// Hands all that is held back to the system. What could not be written, now or before, is lost:
    /// `kNoSpace`, `kDeviceFailed` or `kWriteFailed`, with the number of bytes. The provider's own code where
    /// it is not one of the library's. It may not be on the disk yet. `subject` is what messages are to name.
    Result<void> Flush(std::string const& subject = {})
    {
        auto* const status = dynamic_cast<IO::IDataProviderStatus*>(&**this);
        if (!status)
            return ResultOf((*this)->Flush(), "flush", subject);
        ErrCode const code = status->WriteOut();
        if (code == kNoError)
            return {};
        int const number = status->GetSystemError();
        int64 const lost = status->GetLostBytes();
        std::string detail = std::to_string(lost) + (lost == 1 ? " byte is lost" : " bytes are lost");
        if (number != 0)
            detail += ": " + DETAIL::WordsOfSystemError(number);
        return Error(DETAIL::CodeOfSystemError(number, code), "flush", subject,
                     lost > 0 ? detail : std::string());
    }

    /// Everything there is, from the start; the position is left where it was. `kTooLarge`; `kEndOfData`
    /// where less came than there should be.
    Result<std::vector<std::byte>> Bytes()
    {
        int64 const size = Size();
        if (size > static_cast<int64>(kPiece))
            return Error(kTooLarge, "read the bytes");
        std::vector<std::byte> bytes(static_cast<std::size_t>(size));
        int64 const before = Position();
        static_cast<void>((*this)->SetPosition(0, IO::IDataProvider::kFromStart));
        Result<std::size_t> const count = Read(bytes);
        static_cast<void>((*this)->SetPosition(before, IO::IDataProvider::kFromStart));
        if (!count)
            return count.error();
        if (*count != bytes.size())
            return Error(IO::kEndOfData, "read the bytes");
        return bytes;
    }

private:
    Error ReadFailure(ErrCode code) const
    {
        int const number = DETAIL::SystemErrorOf(**this);
        return number == 0 ? Error(code, "read")
                           : DETAIL::SystemFailure(number, IO::kFileSystemFailed, "read");
    }

    static constexpr std::size_t kPiece = std::numeric_limits<int32>::max();
};
} // namespace KORVA::CXX
