// A data provider under another one: it writes down what reaches it and answers what a test wants.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProvider.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace KORVA::TESTS
{
using Calls = std::vector<std::string>;

/// Text that grows, gaps filled with dots. Positions may lie anywhere but before the start. Every call goes
/// to `calls` with its arguments, a `Write` with the bytes.
class WatchedProvider final : public TObject<IO::IDataProvider>
{
public:
    std::string bytes;
    int64 position = 0;
    Endian endian = kBigEndian;
    bool native = false;
    bool atEnd = false;

    /// Where set, `Size` answers it, and reading finds the digits of the positions at any place before it.
    std::optional<int64> claimedSize;
    /// The most bytes that one `Read` delivers.
    int32 deliversAtMost = 0x7FFFFFFF;
    /// Answered by the next writes, which then write nothing unless it is 0.
    std::deque<OperationId> writeResults;
    OperationId readResult = 0;
    /// Where not 0, `SetPosition` moves nothing.
    ErrCode moveResult = 0;
    ErrCode sizeResult = 0;
    ErrCode flushResult = 0;

    /// Shared by providers whose calls are to be told apart by their `name`.
    std::shared_ptr<Calls> calls = std::make_shared<Calls>();
    std::string name;
    /// Whether `AddRef` and `Release` are written down.
    bool tellsReferences = false;
    /// The callers' memory, in order.
    std::vector<void const*> memory;

    int32 AddRef() override
    {
        if (tellsReferences)
            Called("AddRef");
        return TObject::AddRef();
    }

    int32 Release() override
    {
        if (tellsReferences)
            Called("Release");
        return TObject::Release();
    }

    void InitHandleBased(int) override { Called("InitHandleBased"); }

    ErrCode InitReadOnlyMem(void const*, int32) override
    {
        Called("InitReadOnlyMem");
        return -1;
    }

    ErrCode InitURIBased(IO::IURI&, int, IO::IReporter*) override
    {
        Called("InitURIBased");
        return -1;
    }

    OperationId Write(void const* data, std::size_t count) override
    {
        memory.push_back(data);
        // No memory holds that many: a negative count.
        if (count > static_cast<std::size_t>(kMostBytes))
        {
            Called("Write far too much");
            return 27;
        }
        std::string const text(static_cast<char const*>(data), count);
        Called("Write " + text);
        OperationId result = 0;
        if (!writeResults.empty())
        {
            result = writeResults.front();
            writeResults.pop_front();
        }
        if (result != 0 || count == 0)
            return result;
        if (position > kMostBytes)
            return 27;
        auto const at = static_cast<std::size_t>(position);
        bytes.resize(std::max(bytes.size(), at + count), '.');
        bytes.replace(at, count, text);
        position += static_cast<int64>(count);
        return 0;
    }

    OperationId Read(void* buffer, int32& count) override
    {
        Called("Read " + std::to_string(count));
        memory.push_back(buffer);
        int64 const left = std::max<int64>(0, Length() - position);
        count = static_cast<int32>(std::min<int64>({std::max(count, 0), deliversAtMost, left}));
        for (int32 i = 0; i < count; ++i, ++position)
            static_cast<char*>(buffer)[i] = claimedSize ? static_cast<char>('0' + position % 10)
                                                        : bytes[static_cast<std::size_t>(position)];
        return readResult;
    }

    int64 Size() const override
    {
        Called("Size");
        return Length();
    }

    ErrCode SetSize(int64 size) override
    {
        Called("SetSize " + std::to_string(size));
        return sizeResult;
    }

    ErrCode SetPosition(int64 offset, Offset origin) override
    {
        Called("SetPosition " + std::to_string(offset) + (origin == kFromStart ? "" : " not from the start"));
        if (moveResult != 0)
            return moveResult;
        if (offset < 0)
            return 13;
        position = offset;
        return 0;
    }

    int64 GetPosition() const override
    {
        Called("GetPosition");
        return position;
    }

    Endian GetEndian() const override
    {
        Called("GetEndian");
        return endian;
    }

    bool IsNative() const override
    {
        Called("IsNative");
        return native;
    }

    void SetEndian(Endian value) override
    {
        Called("SetEndian " + std::to_string(value));
        endian = value;
    }

    bool AtEnd() override
    {
        Called("AtEnd");
        return atEnd;
    }

    ErrCode Flush() override
    {
        Called("Flush");
        return flushResult;
    }

    bool GetAutoFlush() override
    {
        Called("GetAutoFlush");
        return true;
    }

    void SetAutoFlush(bool) override { Called("SetAutoFlush"); }

private:
    static constexpr int64 kMostBytes = 0x7FFFFFFF;

    int64 Length() const { return claimedSize.value_or(static_cast<int64>(bytes.size())); }

    void Called(std::string const& call) const { calls->push_back(name + call); }
};
} // namespace KORVA::TESTS
