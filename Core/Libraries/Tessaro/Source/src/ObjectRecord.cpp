// The object operators of the stream: self-delimiting records around what objects write of themselves.
#include "DataProviderStream.h"

#include "ReadingEffort.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/RecordFormat.h>
#include <tessio/TessIO/ResultCodes.h>

#include <new>
#include <stdexcept>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/DataProviderStream";
constexpr char kReading[] =
    "virtual KORVA::IO::DataProviderStream &KORVA::IO::DataProviderStream::operator>>(KORVA::IObject **)";
constexpr char kWriting[] = "virtual KORVA::IO::DataProviderStream "
                            "&KORVA::IO::DataProviderStream::operator<<(const KORVA::IObject &)";

constexpr LogSite kSiteSuspectLength{kSource, kReading, 300};
constexpr LogSite kSiteReadThrew{kSource, kReading, 341};
constexpr LogSite kSitePreposterous{kSource, kReading, 354};
constexpr LogSite kSiteResynchronised{kSource, kReading, 361};
constexpr LogSite kSiteWriteThrew{kSource, kWriting, 435};
constexpr LogSite kSiteNotPersistent{kSource, kWriting, 452};

/// Counts the records that are open on this thread. One too deep counts as a body that threw, so that a
/// crafted or cyclic structure costs one record and not the stack.
class Nesting
{
public:
    Nesting()
    {
        if (++sDepth > kMostNestedRecords)
        {
            --sDepth;
            throw std::length_error("records nested too deep");
        }
    }
    Nesting(Nesting const&) = delete;
    Nesting& operator=(Nesting const&) = delete;
    ~Nesting() { --sDepth; }

private:
    static thread_local int sDepth;
};

thread_local int Nesting::sDepth = 0;

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
