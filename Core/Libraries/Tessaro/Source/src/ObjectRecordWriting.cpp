// Object records as they are written: self-delimiting, around what objects write of themselves.
#include "DataProviderStream.h"

#include "Nesting.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/RecordFormat.h>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/DataProviderStream";
constexpr char kWriting[] = "virtual KORVA::IO::DataProviderStream "
                            "&KORVA::IO::DataProviderStream::operator<<(const KORVA::IObject &)";

constexpr LogSite kSiteWriteThrew{kSource, kWriting, 435};
constexpr LogSite kSiteNotPersistent{kSource, kWriting, 452};

/// Overwrites a number laid down at `at` and comes back.
template <class Number>
void Patch(IDataProviderStream& stream, IDataProvider& provider, int64 at, Number value)
{
    int64 const end = provider.GetPosition();
    static_cast<void>(provider.SetPosition(at, IDataProvider::kFromStart));
    stream << value;
    static_cast<void>(provider.SetPosition(end, IDataProvider::kFromStart));
}

void WriteAggregates(IDataProviderStream& stream, IDataProvider& provider, IObject const& object)
{
    AggregateMap const& aggregates = object.GetAggregates();
    int64 const countAt = provider.GetPosition();
    stream << int{0};
    int count = 0;
    for (auto const& [iid, aggregate] : aggregates)
    {
        // The object's own adapter is in the table too; it aggregates nothing and so does not answer.
        if (aggregate->QueryInterface(IPERSISTENT_DATA, nullptr) != kNoError)
            continue;
        stream << iid << *aggregate;
        ++count;
    }
    if (count > 0)
        Patch(stream, provider, countAt, count);
}
} // namespace

DataProviderStream& DataProviderStream::operator<<(IObject const& object)
{
    if (!mProvider)
        return *this;
    IObject* found = nullptr;
    IPersistentDataEx* extended = nullptr;
    IPersistentData* persistence = nullptr;
    if (object.QueryInterface(IPERSISTENT_DATA_EX, &found) == kNoError && found)
        persistence = extended = static_cast<IPersistentDataEx*>(found);
    else if (object.QueryInterface(IPERSISTENT_DATA, &found) == kNoError && found)
        persistence = static_cast<IPersistentData*>(found);
    else
    {
        Log(kSiteNotPersistent, L"Trying to save an IObject that doesn't have the persistent interface.");
        return *this;
    }
    IDataProviderStream& self = *this;
    if (extended)
        self << extended->GetUIDFor(self);
    else
        self << persistence->GetUID();
    int64 const lengthAt = mProvider->GetPosition();
    self << int64{0};
    try
    {
        Nesting const nesting;
        persistence->Write(self);
        WriteAggregates(self, *mProvider, object);
    }
    catch (...)
    {
        Log(kSiteWriteThrew, L"Object thrown expection during write.");
    }
    int64 const length = mProvider->GetPosition() - lengthAt - kLengthSize;
    if (length > 0)
        Patch(self, *mProvider, lengthAt, length);
    return *this;
}
} // namespace KORVA::IO
