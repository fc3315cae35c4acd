// Object records as they are read: each costs itself at most, and the stream goes on at its end.
#include "DataProviderStream.h"

#include "Nesting.h"
#include "ObservedRecord.h"
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

/// A record whose head has been read.
struct OpenRecord
{
    IDataProviderStream& stream;
    /// The stream's own pointer: a body may give the stream another provider, and what follows is read from
    /// that.
    TInterfacePtr<IDataProvider> const& provider;
    ReadingEffort::Record& effort;
    ObservedRecord& told;
    GUID classId;
    int64 length;
    bool hasRunOutOfMemory = false;
};

/// What the observer makes of a class that nobody knows; `object` is what it gave, and empty with `kSkip`.
UnknownClass AskObserver(OpenRecord& record, TInterfacePtr<IObject>& object)
{
    if (!record.told.IsObserved() || record.told.HasCutHead())
        return UnknownClass::kSkip;
    UnknownClass answer = UnknownClass::kSkip;
    try
    {
        // The observer may read where a body may, and no further.
        Nesting const nesting;
        record.effort.BeginBody();
        ReadingEffort::ExpectBytes(*record.provider, record.length);
        int64 const start = record.provider->GetPosition();
        UnknownClass const told = record.told.Ask(record.stream, object.Out());
        int64 const position = record.provider->GetPosition();
        ReadingEffort::Reach(*record.provider, position);
        if (told == UnknownClass::kRead && position != start)
            static_cast<void>(record.provider->SetPosition(start, IDataProvider::kFromStart));
        answer = told;
    }
    catch (std::bad_alloc const&)
    {
        record.hasRunOutOfMemory = true;
    }
    catch (...)
    {}
    if (object && (answer == UnknownClass::kRead || answer == UnknownClass::kKeep))
        return answer;
    object.Reset();
    return UnknownClass::kSkip;
}

/// Makes the object and has it read body and aggregates. It has come out of its record with `kDone` and
/// `kKept` alone.
RecordOutcome ReadObject(OpenRecord& record, TInterfacePtr<IObject>& object)
{
    object = COREREGISTRY::CreateObject<IObject>(record.classId);
    if (!object)
    {
        UnknownClass const answer = AskObserver(record, object);
        if (answer != UnknownClass::kRead)
            return answer == UnknownClass::kKeep ? RecordOutcome::kKept : RecordOutcome::kUnknownClass;
    }
    IObject* found = nullptr;
    if (object->QueryInterface(IPERSISTENT_DATA, &found) != kNoError || !found)
        return RecordOutcome::kNotPersistent;
    if (record.length == 0)
        return RecordOutcome::kDone;
    RecordOutcome outcome = RecordOutcome::kTooDeep;
    try
    {
        Nesting const nesting;
        outcome = RecordOutcome::kReadInVain;
        record.effort.BeginBody();
        outcome = RecordOutcome::kBodyThrew;
        static_cast<IPersistentData*>(found)->Read(record.stream);
        outcome = RecordOutcome::kAggregatesThrew;
        ReadAggregates(record.stream, *record.provider, *object);
        return RecordOutcome::kDone;
    }
    catch (std::bad_alloc const&)
    {
        record.hasRunOutOfMemory = true;
    }
    catch (...)
    {}
    if (record.effort.IsWorthAMessage())
        Log(kSiteReadThrew, L"Object thrown expection during read.");
    return outcome;
}

/// Sets the provider to the record's end. 13 too where that is not tried any more.
ErrCode GoToEnd(OpenRecord const& record, int64 end)
{
    return record.effort.LeadsToItsEnd() ? record.provider->SetPosition(end, IDataProvider::kFromStart)
                                         : kBadArgument;
}
} // namespace

DataProviderStream& DataProviderStream::operator>>(IObject** result)
{
    if (!mProvider)
        return *this;
    IDataProviderStream& self = *this;
    ObservedRecord told(mObserver, mProvider, RecordDirection::kReading, Nesting::Depth());
    ReadingEffort::Record effort(*mProvider);
    GUID classId{};
    int64 length = 0;
    self >> classId >> length;
    *result = nullptr;
    if (!IsBelievedLength(length))
    {
        static_cast<void>(told.Begin(classId, length));
        effort.HasNoLength();
        if (effort.IsWorthAMessage())
            Log(kSiteSuspectLength, L"serializedLength of this object (", length,
                L" bytes) looks suspect. Bailing.");
        told.End(RecordOutcome::kBadLength);
        return *this;
    }
    int64 const start = mProvider->GetPosition();
    int64 const end = start + length;
    effort.HasHeader(start, end);

    OpenRecord record{self, mProvider, effort, told, classId, length};
    TInterfacePtr<IObject> object;
    RecordOutcome outcome = RecordOutcome::kLeftOut;
    if (told.Begin(classId, length) != RecordChoice::kLeaveOut)
        outcome = ReadObject(record, object);
    mHasRunOutOfMemory = mHasRunOutOfMemory || record.hasRunOutOfMemory;

    bool const isRead = outcome == RecordOutcome::kDone;
    if (isRead || outcome == RecordOutcome::kKept)
        *result = object.Detach();
    told.Stop();
    int64 const position = isRead ? mProvider->GetPosition() : 0;
    if (isRead && position != end)
    {
        outcome = position < end ? RecordOutcome::kReadTooLittle : RecordOutcome::kReadTooMuch;
        if (effort.IsWorthAMessage())
            Log(kSiteResynchronised, L"Incorrect dp position after read an IObject, currently at ", position,
                L" should be ", end);
        told.SetMoveResult(GoToEnd(record, end));
    }
    else if (!isRead)
    {
        ErrCode const moved = GoToEnd(record, end);
        if (moved == kBadArgument && effort.IsWorthASecondMessage())
            Log(kSitePreposterous, L"Trying to set the dp position to something probably preposterous (", end,
                L") bytes from start.");
        told.SetMoveResult(moved);
    }
    told.End(told.HasCutHead() ? RecordOutcome::kCutHead : outcome, *result);
    return *this;
}
} // namespace KORVA::IO
