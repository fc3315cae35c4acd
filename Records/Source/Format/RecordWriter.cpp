#include <tessio/Records/Format/RecordWriter.h>

namespace KORVA::RECORDS
{

void RecordWriter::Begin(GUID const& classId)
{
    Put(classId);
    mOpen.push_back(mBytes.size());
    Put(int64{0});
}

void RecordWriter::End(std::optional<int64> declared)
{
    std::size_t const at = mOpen.back();
    mOpen.pop_back();
    Store(mBytes.data() + at, declared.value_or(static_cast<int64>(mBytes.size() - at) - 8), mOrder);
}

void RecordWriter::Put(GUID const& id)
{
    auto const bytes = StoredId(id, mOrder);
    mBytes.insert(mBytes.end(), bytes.begin(), bytes.end());
}

void RecordWriter::Put(STRING::CoreString const& text)
{
    Put(static_cast<int32>(2 * text.size()));
    for (char16_t const unit : text.view())
        Put(unit);
}

std::size_t RecordWriter::Room()
{
    Put(uint32{0});
    return mBytes.size() - 4;
}

void RecordWriter::Fill(std::size_t room, uint32 count) { Store(mBytes.data() + room, count, mOrder); }
} // namespace KORVA::RECORDS
