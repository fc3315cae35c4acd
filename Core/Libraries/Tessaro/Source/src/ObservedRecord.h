// What a stream tells of one record.
#pragma once

#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/TessIO/IRecordObserver.h>

namespace KORVA::IO
{
class IDataProvider;
class IDataProviderStream;

/// Tells the observer of the stream, if there is one, how a record begins and ends. Without one it does
/// nothing, and asks the provider nothing. Nothing comes out that an observer throws, but from `Ask`.
class ObservedRecord
{
public:
    /// Shares the observer, which may be null; borrows the stream's pointer to its provider, which stands
    /// where the record does. A body may give the stream another provider: the position is asked of the one
    /// that it has then.
    ObservedRecord(IRecordObserver* observer, TInterfacePtr<IDataProvider> const& provider,
                   RecordDirection direction, int depth);
    ObservedRecord(ObservedRecord const&) = delete;
    ObservedRecord& operator=(ObservedRecord const&) = delete;
    /// Tells of a record that has begun and not ended that it is abandoned.
    ~ObservedRecord();

    bool IsObserved() const { return static_cast<bool>(mObserver); }

    /// The class id and, when reading, the length are known, and the provider stands where the event says.
    RecordChoice Begin(GUID const& classId, int64 length, IObject const* object = nullptr);

    /// Whether the record began with a head of which bytes are missing, as far as an observer is there.
    bool HasCutHead() const { return mHasCutHead; }

    /// What to make of the class, of which nobody makes objects. Throws what the observer throws.
    UnknownClass Ask(IDataProviderStream& stream, IObject** object);

    /// Notes where body and aggregates have left the provider.
    void Stop();
    void SetLength(int64 length) { mEvent.length = length; }
    void SetMoveResult(ErrCode result) { mEvent.moveResult = result; }

    /// The record has ended; what came of it when reading.
    void End(RecordOutcome outcome, IObject const* object = nullptr);

private:
    TInterfacePtr<IRecordObserver> mObserver;
    TInterfacePtr<IDataProvider> const& mProvider;
    RecordEvent mEvent;
    bool mIsOpen = false;
    bool mHasCutHead = false;
};
} // namespace KORVA::IO
