// Object records as they are written: self-delimiting, around what objects write of themselves.
#include "DataProviderStream.h"

#include "Nesting.h"
#include "ObservedRecord.h"
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

/// Overwrites a number laid down at `at` and comes back. The first refusal of a position, or 0.
template <class Number>
ErrCode Patch(IDataProviderStream& stream, IDataProvider& provider, int64 at, Number value)
{
    int64 const end = provider.GetPosition();
    ErrCode const there = provider.SetPosition(at, IDataProvider::kFromStart);
    stream << value;
    ErrCode const back = provider.SetPosition(end, IDataProvider::kFromStart);
    return there != kNoError ? there : back;
}

/// What `Patch` answers of the count.
ErrCode WriteAggregates(IDataProviderStream& stream, IDataProvider& provider, IObject const& object)
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
    return count > 0 ? Patch(stream, provider, countAt, count) : kNoError;
}

/// The interface through which the object is written, with the class id for this stream; null without one.
IPersistentData* FindPersistence(IObject const& object, IDataProviderStream& stream, GUID& classId)
{
    IObject* found = nullptr;
    if (object.QueryInterface(IPERSISTENT_DATA_EX, &found) == kNoError && found)
    {
        auto* const extended = static_cast<IPersistentDataEx*>(found);
        classId = extended->GetUIDFor(stream);
        return extended;
    }
    if (object.QueryInterface(IPERSISTENT_DATA, &found) != kNoError || !found)
        return nullptr;
    auto* const persistence = static_cast<IPersistentData*>(found);
    classId = persistence->GetUID();
    return persistence;
}
} // namespace

DataProviderStream& DataProviderStream::operator<<(IObject const& object)
{
    if (!mProvider)
        return *this;
    IDataProviderStream& self = *this;
    GUID classId{};
    IPersistentData* const persistence = FindPersistence(object, self, classId);
    ObservedRecord told(mObserver, mProvider, RecordDirection::kWriting, Nesting::Depth());
    RecordChoice const choice = told.Begin(classId, 0, &object);
    if (!persistence)
    {
        Log(kSiteNotPersistent, L"Trying to save an IObject that doesn't have the persistent interface.");
        told.End(RecordOutcome::kNotPersistent);
        return *this;
    }
    if (choice == RecordChoice::kLeaveOut)
    {
        told.End(RecordOutcome::kLeftOut);
        return *this;
    }
    self << classId;
    int64 const lengthAt = mProvider->GetPosition();
    self << int64{0};
    RecordOutcome outcome = RecordOutcome::kTooDeep;
    ErrCode moved = kNoError;
    try
    {
        Nesting const nesting;
        outcome = RecordOutcome::kBodyThrew;
        persistence->Write(self);
        outcome = RecordOutcome::kAggregatesThrew;
        if (choice != RecordChoice::kBodyAlone)
            moved = WriteAggregates(self, *mProvider, object);
        outcome = RecordOutcome::kDone;
    }
    catch (...)
    {
        Log(kSiteWriteThrew, L"Object thrown expection during write.");
    }
    told.Stop();
    int64 const length = mProvider->GetPosition() - lengthAt - kLengthSize;
    if (length > 0)
    {
        ErrCode const patched = Patch(self, *mProvider, lengthAt, length);
        moved = moved != kNoError ? moved : patched;
    }
    if (outcome == RecordOutcome::kDone && !IsBelievedLength(length))
        outcome = RecordOutcome::kBadLength;
    told.SetLength(length);
    told.SetMoveResult(moved);
    told.End(outcome);
    return *this;
}
} // namespace KORVA::IO
