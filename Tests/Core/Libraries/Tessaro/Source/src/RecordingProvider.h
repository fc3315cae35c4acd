// A data provider of the tests' own: it writes down every call and fails when it is told to.
#pragma once

#include "Support/Bytes.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProvider.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace KORVA::TESTS
{
/// Memory that grows. `calls` names each operation with its arguments, in order.
class RecordingProvider final : public TObject<IO::IDataProvider>
{
public:
    /// What the calls that the plan names do instead of their work: answer a failure code and deliver or
    /// change nothing, or throw.
    enum class Failure
    {
        kNone,
        kCode,
        kThrow
    };

    Bytes bytes;
    std::size_t position = 0;
    bool native = true;
    /// Answers of `IsNative`, used up first.
    mutable std::deque<bool> nativeAnswers;
    /// What `Size` answers in place of the truth.
    std::optional<int64> claimedSize;
    /// What `SetPosition` answers where it refuses.
    ErrCode refusal = 13;
    /// Whether it refuses every position.
    bool refusesPositions = false;

    Failure failure = Failure::kNone;
    /// Counted over `Read`, `Write`, `SetPosition`, and for exceptions also `GetPosition` and `IsNative`.
    int failAt = 0;
    bool failForEver = false;

    /// Asked first by `Read`, which fails when this answers true.
    std::function<bool()> failsRead;

    mutable std::vector<std::string> calls;
    /// The greatest number of bytes that one `Read` asked for.
    int32 greatestRead = 0;

    std::vector<std::string> TakeCalls() { return std::exchange(calls, {}); }

    void InitHandleBased(int) override { calls.emplace_back("InitHandleBased"); }
    ErrCode InitReadOnlyMem(void const*, int32) override { return Unexpected("InitReadOnlyMem"); }
    ErrCode InitURIBased(IO::IURI&, int, IO::IReporter*) override { return Unexpected("InitURIBased"); }

    OperationId Write(void const* data, std::size_t count) override
    {
        calls.push_back("Write " + std::to_string(count));
        if (Fails())
            return 30;
        // A count that no memory can hold comes from a negative one.
        if (count > 0x7FFFFFFF)
            return 27;
        bytes.resize(std::max(bytes.size(), position + count));
        auto const* const from = static_cast<unsigned char const*>(data);
        std::copy(from, from + count, bytes.begin() + static_cast<std::ptrdiff_t>(position));
        position += count;
        return 0;
    }

    OperationId Read(void* buffer, int32& count) override
    {
        calls.push_back("Read " + std::to_string(count));
        greatestRead = std::max(greatestRead, count);
        if ((failsRead && failsRead()) || Fails())
        {
            count = 0;
            return 3;
        }
        std::size_t const left = bytes.size() - std::min(position, bytes.size());
        auto const delivered = std::min(static_cast<std::size_t>(std::max(count, 0)), left);
        auto const from = bytes.begin() + static_cast<std::ptrdiff_t>(position);
        if (delivered > 0)
            std::copy(from, from + static_cast<std::ptrdiff_t>(delivered),
                      static_cast<unsigned char*>(buffer));
        position += delivered;
        OperationId const result = static_cast<int32>(delivered) == count ? 0 : 28;
        count = static_cast<int32>(delivered);
        return result;
    }

    int64 Size() const override
    {
        calls.emplace_back("Size");
        return claimedSize.value_or(static_cast<int64>(bytes.size()));
    }

    ErrCode SetSize(int64) override { return Unexpected("SetSize"); }

    ErrCode SetPosition(int64 offset, Offset origin) override
    {
        calls.push_back("SetPosition " + std::to_string(offset) + " from " + std::to_string(origin));
        if (Fails() || refusesPositions || origin != kFromStart || offset < 0 ||
            offset > static_cast<int64>(bytes.size()))
            return refusal;
        position = static_cast<std::size_t>(offset);
        return 0;
    }

    int64 GetPosition() const override
    {
        calls.emplace_back("GetPosition");
        MayThrow();
        return static_cast<int64>(position);
    }

    Endian GetEndian() const override { return native ? kLittleEndian : kBigEndian; }

    bool IsNative() const override
    {
        calls.emplace_back("IsNative");
        MayThrow();
        if (nativeAnswers.empty())
            return native;
        bool const answer = nativeAnswers.front();
        nativeAnswers.pop_front();
        return answer;
    }

    void SetEndian(Endian endian) override { native = endian == kLittleEndian; }
    bool AtEnd() override { return position >= bytes.size(); }
    ErrCode Flush() override { return Unexpected("Flush"); }
    bool GetAutoFlush() override { return true; }
    void SetAutoFlush(bool) override { calls.emplace_back("SetAutoFlush"); }

    /// How many calls the plan has counted.
    int Counted() const { return mCounted; }

private:
    bool IsNext() const
    {
        int const at = mCounted++;
        return failure != Failure::kNone && (at == failAt || (failForEver && at > failAt));
    }

    bool Fails() const
    {
        if (!IsNext())
            return false;
        if (failure == Failure::kThrow)
            throw std::runtime_error("planned");
        return true;
    }

    void MayThrow() const
    {
        if (failure == Failure::kThrow && IsNext())
            throw std::runtime_error("planned");
    }

    ErrCode Unexpected(char const* name)
    {
        calls.emplace_back(name);
        return -1;
    }

    mutable int mCounted = 0;
};
} // namespace KORVA::TESTS
