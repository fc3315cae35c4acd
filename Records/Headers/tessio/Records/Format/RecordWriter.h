// From values to the bytes of records.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/Records/Format/Bytes.h>

#include <optional>
#include <string_view>

namespace KORVA::RECORDS
{
/// Appends records to a block of bytes and fills in lengths and counts as soon as they are known.
class RecordWriter
{
public:
    explicit RecordWriter(Order order) : mOrder(order) {}

    /// Writes a header. What follows until `End` is the record's.
    void Begin(GUID const& classId);
    /// Fills in the length: that of what was written, unless another one is given.
    void End(std::optional<int64> declared = {});

    template <class Number>
    void Put(Number number)
    {
        mBytes.resize(mBytes.size() + sizeof(Number));
        Store(mBytes.data() + mBytes.size() - sizeof(Number), number, mOrder);
    }
    void Put(GUID const& id);
    void Put(STRING::CoreString const& text);
    void Put(ByteView bytes) { mBytes.insert(mBytes.end(), bytes.begin(), bytes.end()); }

    /// Leaves room for a count of 32 bits, which `Fill` puts there.
    std::size_t Room();
    void Fill(std::size_t room, uint32 count);

    /// Takes back what was written since it had that size; no record may have begun and not ended since.
    void Cut(std::size_t size) { mBytes.resize(size); }

    /// What there is so far; lengths of open records are still missing. Until something else is written.
    ByteView Written() const { return mBytes; }
    std::size_t Size() const { return mBytes.size(); }
    Order GetOrder() const { return mOrder; }
    Bytes Take() { return std::move(mBytes); }

private:
    Order mOrder;
    Bytes mBytes;
    /// Where the lengths of the records that are open stand.
    std::vector<std::size_t> mOpen;
};
} // namespace KORVA::RECORDS
