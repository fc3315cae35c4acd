// Object records as they are read: each costs itself at most, and the stream goes on at its end.
#include "DataProviderStream.h"

#include "Nesting.h"
#include "ReadingEffort.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/RecordFormat.h>
#include <tessio/TessIO/ResultCodes.h>

#include <new>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/DataProviderStream";
constexpr char kReading[] =
    "virtual KORVA::IO::DataProviderStream &KORVA::IO::DataProviderStream::operator>>(KORVA::IObject **)";

constexpr LogSite kSiteSuspectLength{kSource, kReading, 300};
constexpr LogSite kSiteReadThrew{kSource, kReading, 341};
constexpr LogSite kSitePreposterous{kSource, kReading, 354};
constexpr LogSite kSiteResynchronised{kSource, kReading, 361};

/// The interfaces that records themselves are read and written through. No writer puts them into a file as
/// aggregates; taking them from one would put an object of any class in their place.
bool IsPersistenceId(GUID const& iid) { return iid == IPERSISTENT_DATA || iid == IPERSISTENT_DATA_EX; }

void ReadAggregates(IDataProviderStream& stream, IDataProvider& provider, IObject& object)
{
    int count = 0;
    stream >> count;
    for (int i = 0; i < count; ++i)
    {
        int64 const before = provider.GetPosition();
        ReadingEffort::Reach(provider, before);
        GUID iid{};
        TInterfacePtr<IObject> aggregate;
        stream >> iid;
        ReadingEffort::CountBytes(provider, kInterfaceIdSize);
        stream >> aggregate.Out();
        if (aggregate && !IsPersistenceId(iid))
            object.Aggregate(aggregate.Get(), iid);
        // Nothing was there to read, so nothing more will come, whatever a damaged count says.
        if (provider.GetPosition() == before || ReadingEffort::EndsHere(provider))
            break;
    }
}
} // namespace

DataProviderStream& DataProviderStream::operator>>(IObject** result)
{
    if (!mProvider)
        return *this;
    IDataProviderStream& self = *this;
    ReadingEffort::Record record(*mProvider);
    GUID classId{};
    int64 length = 0;
    self >> classId >> length;
    *result = nullptr;
    if (!IsBelievedLength(length))
    {
        record.HasNoLength();
        if (record.IsWorthAMessage())
            Log(kSiteSuspectLength, L"serializedLength of this object (", length,
                L" bytes) looks suspect. Bailing.");
        return *this;
    }
    int64 const start = mProvider->GetPosition();
    int64 const end = start + length;
    record.HasHeader(start, end);

    auto object = COREREGISTRY::CreateObject<IObject>(classId);
    IObject* found = nullptr;
    bool complete = false;
    if (object && object->QueryInterface(IPERSISTENT_DATA, &found) == kNoError && found)
    {
        if (length == 0)
            complete = true;
        else
        {
            try
            {
                Nesting const nesting;
                record.BeginBody();
                static_cast<IPersistentData*>(found)->Read(self);
                ReadAggregates(self, *mProvider, *object);
                complete = true;
            }
            catch (std::bad_alloc const&)
            {
                mHasRunOutOfMemory = true;
            }
            catch (...)
            {}
            if (!complete && record.IsWorthAMessage())
                Log(kSiteReadThrew, L"Object thrown expection during read.");
        }
    }

    if (complete)
    {
        *result = object.Detach();
        int64 const position = mProvider->GetPosition();
        if (position != end)
        {
            if (record.IsWorthAMessage())
                Log(kSiteResynchronised, L"Incorrect dp position after read an IObject, currently at ",
                    position, L" should be ", end);
            if (record.LeadsToItsEnd())
                static_cast<void>(mProvider->SetPosition(end, IDataProvider::kFromStart));
        }
        return *this;
    }
    if (record.LeadsToItsEnd() && mProvider->SetPosition(end, IDataProvider::kFromStart) == kBadArgument &&
        record.IsWorthASecondMessage())
        Log(kSitePreposterous, L"Trying to set the dp position to something probably preposterous (", end,
            L") bytes from start.");
    return *this;
}
} // namespace KORVA::IO
