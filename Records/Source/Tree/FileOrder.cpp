#include <tessio/Records/Tree/FileOrder.h>

#include <tessio/Records/Format/Classes.h>
#include <tessio/Records/Tree/Reader.h>

#include <algorithm>

namespace KORVA::RECORDS
{
namespace
{

/// How much of a file looks like top-level records in that order: 2 for one of a known class, 1 for records
/// of unknown classes that end exactly where the file does, 0 otherwise.
int Likeliness(ByteView content, Order order)
{
    auto const size = static_cast<int64>(content.size());
    for (int64 at = 0; at < size;)
    {
        if (size - at < IO::kRecordHeadSize)
            return 0;
        if (FindClass(LoadId(content.data() + at, order)))
            return 2;
        auto const length = Load<int64>(content.data() + at + 16, order);
        if (length < 0 || length > IO::kGreatestLength || length > size - at - IO::kRecordHeadSize)
            return 0;
        at += IO::kRecordHeadSize + length;
    }
    return size == 0 ? 0 : 1;
}

/// How many class ids of known classes stand in the bytes, in that order.
std::size_t KnownIds(ByteView content, Order order)
{
    std::size_t count = 0;
    for (KnownClass const& known : KnownClasses())
    {
        auto const id = StoredId(known.id, order);
        for (auto at = content.begin();; ++at, ++count)
        {
            at = std::search(at, content.end(), id.begin(), id.end());
            if (at == content.end())
                break;
        }
    }
    return count;
}
} // namespace

std::optional<Order> FindOrder(ByteView content)
{
    int const little = Likeliness(content, IO::IDataProvider::kLittleEndian);
    int const big = Likeliness(content, IO::IDataProvider::kBigEndian);
    if (little == 0 && big == 0)
        return std::nullopt;
    return big > little ? IO::IDataProvider::kBigEndian : IO::IDataProvider::kLittleEndian;
}

Result<Order> OrderOf(ByteView content)
{
    if (std::optional<Order> const order = FindOrder(content))
        return *order;
    std::size_t const little = KnownIds(content, IO::IDataProvider::kLittleEndian);
    std::size_t const big = KnownIds(content, IO::IDataProvider::kBigEndian);
    if (little == 0 && big == 0)
        return Error{ErrorCode::kNoRecords, kNoOffset,
                     content.empty() ? "is not a record file: it is empty" : "is not a record file"};
    return big > little ? IO::IDataProvider::kBigEndian : IO::IDataProvider::kLittleEndian;
}
} // namespace KORVA::RECORDS
