#include "ObservedRecord.h"

#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/RecordFormat.h>

namespace KORVA::IO
{
namespace
{
/// -1 where the provider throws: watching must not make a record fail.
int64 PositionOf(IDataProvider const& provider)
try
{
    return provider.GetPosition();
}
catch (...)
{
    return -1;
}
} // namespace

ObservedRecord::ObservedRecord(IRecordObserver* observer, TInterfacePtr<IDataProvider> const& provider,
                               RecordDirection direction, int depth)
    : mProvider(provider)
{
    if (!observer)
        return;
    mObserver.Share(observer);
    mEvent.direction = direction;
    mEvent.depth = depth;
    mEvent.place = PositionOf(*provider);
}

ObservedRecord::~ObservedRecord()
{
    if (!mIsOpen)
        return;
    Stop();
    End(RecordOutcome::kAbandoned);
}

RecordChoice ObservedRecord::Begin(GUID const& classId, int64 length, IObject const* object)
{
    if (!mObserver)
        return RecordChoice::kGoOn;
    mIsOpen = true;
    mEvent.classId = classId;
    mEvent.length = length;
    mEvent.object = object;
    Stop();
    mHasCutHead = mEvent.direction == RecordDirection::kReading && mEvent.place >= 0 &&
                  mEvent.position >= 0 && mEvent.position - mEvent.place < kRecordHeadSize;
    try
    {
        return mObserver->OnRecordBegin(mEvent);
    }
    catch (...)
    {
        return RecordChoice::kGoOn;
    }
}

UnknownClass ObservedRecord::Ask(IDataProviderStream& stream, IObject** object)
{
    return mObserver->OnUnknownClass(mEvent, stream, object);
}

void ObservedRecord::Stop()
{
    if (mObserver)
        mEvent.position = PositionOf(*mProvider);
}

void ObservedRecord::End(RecordOutcome outcome, IObject const* object)
{
    if (!mObserver)
        return;
    mIsOpen = false;
    mEvent.outcome = outcome;
    if (mEvent.direction == RecordDirection::kReading)
        mEvent.object = object;
    try
    {
        mObserver->OnRecordEnd(mEvent);
    }
    catch (...)
    {}
}
} // namespace KORVA::IO
