// What a program implements to see the records that a stream writes and reads.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>

namespace KORVA::IO
{
class IDataProviderStream;

/// What is done with a record.
enum class RecordDirection : int32
{
    kReading = 0,
    kWriting = 1
};

/// How a record ended. Later versions may have more: take one that you don't know for a failure.
enum class RecordOutcome : int32
{
    /// It has begun, and has no outcome yet.
    kOpen = 0,
    /// Read: there is an object, and it ended where its record does. Written: whole.
    kDone = 1,
    /// The observer did not want it: skipped, or not written.
    kLeftOut = 2,
    /// Read: nothing makes objects of its class; skipped.
    kUnknownClass = 3,
    /// Read: nothing makes objects of its class; one that the observer gave stands for the record.
    kKept = 4,
    /// The object has no persistence. Read: skipped. Written: nothing was, and the class id is all zeros.
    kNotPersistent = 5,
    /// The body threw. Read: skipped. Written: cut short there.
    kBodyThrew = 6,
    /// The body did not throw, but something in the section of aggregates. Read: skipped. Written: cut short.
    kAggregatesThrew = 7,
    /// It stands in more records than are allowed. Read: skipped. Written: its head alone.
    kTooDeep = 8,
    /// Read: there is an object, and its body and aggregates ended before the record did.
    kReadTooLittle = 9,
    /// Read: there is an object, and its body and aggregates ended behind the record.
    kReadTooMuch = 10,
    /// Its length is one that no reader believes. Read: the stream goes on behind the length.
    kBadLength = 11,
    /// Read: not all bytes of its head were there. What was missing counts as 0.
    kCutHead = 12,
    /// Read: it stands behind the end of the record around it, where too much was read already; skipped.
    kReadInVain = 13,
    /// Something threw that the stream does not catch (the provider under the head, the registry) and has
    /// left the stream's operator.
    kAbandoned = 14
};

/// What an observer is told of one record. Borrowed for the call.
struct RecordEvent
{
    /// Of this structure in bytes, as the stream knows it. Later versions have more fields behind these: look
    /// only at fields that lie within.
    uint64 size = sizeof(RecordEvent);
    /// Whether the record is read or written.
    RecordDirection direction = RecordDirection::kReading;
    /// `kOpen` but when the record has ended.
    RecordOutcome outcome = RecordOutcome::kOpen;
    /// How many records are open around it on this thread: 0 for an outermost one.
    int32 depth = 0;
    /// What the provider answered where it was to be set to the record's end, or, when writing, to where a
    /// length or a count is put in its place; 0 where it was not. 13 is an end out of range, also one to
    /// which the stream did not try to go any more.
    ErrCode moveResult = kNoError;
    /// Of the object, as it stands in the record.
    GUID classId{};
    /// The provider's position before the class id. Every position is -1 where the provider threw when it was
    /// asked.
    int64 place = 0;
    /// Read: as it stands in the record. Written: 0 at the beginning, then the number of bytes behind the
    /// head.
    int64 length = 0;
    /// The provider's position: at the beginning behind the head (read) or before it (written). At the end
    /// where body and aggregates left it, before the stream sets it to the record's end.
    int64 position = 0;
    /// Written: the object. Read: at the end the one that came of it, and null before, or where none did.
    IObject const* object = nullptr;
};

/// What is done with a record that begins.
enum class RecordChoice : int32
{
    /// One that is read is skipped, one that is written leaves nothing behind. An object around it does not
    /// know: a dictionary writes the key and counts it. So choose this when writing only where what is
    /// written is thrown away.
    kLeaveOut = 0,
    /// As without an observer.
    kGoOn = 1,
    /// Written: what the object writes is all of the record, its aggregates included; the stream adds none,
    /// and no count of them. For objects that keep the bytes of records. Read: the same as `kGoOn`.
    kBodyAlone = 2
};

/// What becomes of a record whose class nothing makes.
enum class UnknownClass : int32
{
    /// It is skipped and gives no object.
    kSkip = 0,
    /// The object reads the record, body and aggregates, as one that the registry had made: the class has
    /// another id here.
    kRead = 1,
    /// The object stands for the record as it is, and nothing more is read. For objects that keep the bytes
    /// of records whose plug-in is missing, to write them again under the same class id: see `RecordChoice`.
    kKeep = 2
};

/// A program aggregates its observer on a stream of the library under `IID_RECORD_OBSERVER`; the stream
/// shares it like any aggregate:
///
///     stream->Aggregate(observer.Get(), IO::IID_RECORD_OBSERVER);
///     *stream >> object.Out();
///     stream->UnAggregate(IO::IID_RECORD_OBSERVER);
///
/// From then on it is told of each record that is written to this stream or read from it, those inside others
/// included: of each beginning and of each end, in pairs that nest as the records do. What objects write and
/// read through streams of their own it is not told. A record stays with the observer with which it began,
/// which is shared until then, even when another one is aggregated meanwhile. There is one place: put back
/// who was there before, and pass on to him what you are told.
///
/// Observing changes neither bytes nor objects nor messages, but for what the two answers ask for. The
/// provider's position is asked for more often, which one that was never initialised logs. Without an
/// observer a stream makes no call for it.
///
/// Called on the thread that uses the stream. The stream and its provider must be left alone, except as
/// `OnUnknownClass` says. Exceptions don't come out: one from `OnRecordBegin` counts as `kGoOn`, one
/// from `OnUnknownClass` as `kSkip`, where `std::bad_alloc` shows in `IDataProviderStreamStatus` besides.
class TESSIO_EXPORT IRecordObserver : public IObject
{
public:
    /// A record begins: its head has been read, or is going to be written.
    virtual RecordChoice OnRecordBegin(RecordEvent const& event) = 0;

    /// The record has ended; called once for each beginning. The stream stands at the record's end.
    virtual void OnRecordEnd(RecordEvent const& event) = 0;

    /// Nothing makes objects of the class of the record that just began. The provider of `stream` stands at
    /// the body, `event.length` bytes are the record's, as far as they are there: the length may be false, so
    /// compare it with what the provider has left before making room. The observer may read, and need not
    /// come back. `*object` is null; the stream adopts what is put there, whatever the answer, and null
    /// counts as `kSkip`. Not called for records nested too deep, nor where the head was cut or too
    /// much was read in vain.
    virtual UnknownClass OnUnknownClass(RecordEvent const& event, IDataProviderStream& stream,
                                        IObject** object) = 0;
};
} // namespace KORVA::IO
