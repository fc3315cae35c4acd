// Object records: one object written, one object read, and what was the matter.
#pragma once

#include <tessio/Cxx/CheckedProvider.h>
#include <tessio/Cxx/DataProvider.h>
#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/RecordWatch.h>
#include <tessio/Cxx/SystemErrors.h>
#include <tessio/ObjectModel/GUIDText.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IDataProviderStreamStatus.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/IRecordObserver.h>
#include <tessio/TessIO/RecordFormat.h>

#include <string>
#include <utility>

namespace KORVA::CXX::DETAIL
{
/// What is under way, for the errors that come of it.
struct Task
{
    std::string operation;
    std::string subject;

    Error Failed(ErrCode code, std::string detail = {}) const
    {
        return {code, operation, subject, std::move(detail)};
    }

    /// Because of another failure, whose code and detail are told.
    Error Failed(Error const& cause) const { return Failed(cause.Code(), cause.Detail()); }
};

/// A new stream over a provider.
inline Result<TInterfacePtr<IO::IDataProviderStream>> StreamOver(IO::IDataProvider& provider)
{
    auto stream = CreateComponent<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    if (!stream)
        return Error(IO::kNoObject, "create an object of class", GUIDToText(IO::IID_DATAPROVIDERSTREAM));
    ErrCode const code = stream->Init(provider);
    if (code != kNoError)
        return Error(code, "set up the stream");
    return stream;
}

/// The observer that a program has put on a stream, borrowed; null where there is none.
inline IO::IRecordObserver* ObserverOn(IO::IDataProviderStream const& stream)
{
    IObject* found = nullptr;
    bool const isThere = stream.QueryInterface(IO::IID_RECORD_OBSERVER, &found) == kNoError;
    return isThere ? static_cast<IO::IRecordObserver*>(found) : nullptr;
}

/// A stream of its own over a provider, for one record, and all that looks on.
struct WatchedStream
{
    TInterfacePtr<CheckedProvider> provider;
    TInterfacePtr<RecordWatch> watch;
    TInterfacePtr<IO::IDataProviderStream> stream;

    /// Shares the provider and the program's observer, which may be null.
    static Result<WatchedStream> Over(IO::IDataProvider& provider, IO::IRecordObserver* observer)
    {
        WatchedStream watched;
        watched.provider.Adopt(new CheckedProvider(provider));
        watched.watch.Adopt(new RecordWatch(*watched.provider, observer));
        Result<TInterfacePtr<IO::IDataProviderStream>> stream = StreamOver(*watched.provider);
        if (!stream)
            return stream.error();
        watched.stream = *std::move(stream);
        watched.stream->Aggregate(watched.watch.Get(), IO::IID_RECORD_OBSERVER);
        return watched;
    }
};

/// Writes the record of `object` at the provider's position. On failure something may have been written. The
/// observer is told of it, where one is given.
inline Result<void> WriteRecord(IO::IDataProvider& provider, IObject const& object, Task const& task,
                                IO::IRecordObserver* observer)
{
    if (object.QueryInterface(IO::IPERSISTENT_DATA_EX, nullptr) != kNoError &&
        object.QueryInterface(IO::IPERSISTENT_DATA, nullptr) != kNoError)
        return task.Failed(kNotPersistent);
    Result<WatchedStream> const watched = WatchedStream::Over(provider, observer);
    if (!watched)
        return watched.error();
    int64 const start = provider.GetPosition();
    *watched->stream << object;
    int64 const length = provider.GetPosition() - start - IO::kRecordHeadSize;
    ErrCode code = watched->provider->WriteResult();
    if (code == kNoError && length > IO::kGreatestLength)
        code = kTooLarge;
    if (code == kNoError && (length < 0 || !watched->watch->IsWhole()))
        code = kNotSerialized;
    if (code == kNoError)
        return {};
    // Of a body that writes on the side, through a stream of its own.
    if (auto* const around = dynamic_cast<CheckedProvider*>(&provider))
        around->OnWriteFailure(code);
    return task.Failed(code);
}

/// What stands before a body.
struct RecordHead
{
    GUID classId{};
    int64 length = 0;
    /// Whether all of it could be read.
    bool isWhole = false;

    bool IsPlausible(int64 left) const
    {
        return isWhole && IO::IsBelievedLength(length) && length <= left - IO::kRecordHeadSize;
    }
};

/// Looks at the head of the record at the provider's position, which stays. Zeros where there is none.
inline Result<RecordHead> PeekHead(IO::IDataProvider& provider)
{
    auto const stream = StreamOver(provider);
    if (!stream)
        return stream.error();
    RecordHead head;
    int64 const start = provider.GetPosition();
    **stream >> head.classId >> head.length;
    head.isWhole = provider.GetPosition() - start == IO::kRecordHeadSize;
    static_cast<void>(provider.SetPosition(start, IO::IDataProvider::kFromStart));
    return head;
}

/// An object of that class, to see what it is; empty when nothing makes it. The stream, which makes the
/// object that is read, wants the code 0 with it, so this does too.
inline TInterfacePtr<IObject> Probe(GUID const& classId)
{
    return COREREGISTRY::CreateObject<IObject>(classId);
}

/// Finds out in which byte order a record begins at the provider's position, and sets the provider to it. A
/// class id that the registry knows decides, else a length that the data has room for. `kNotARecord` when
/// neither is there in any order.
inline Result<void> FindOrder(IO::IDataProvider& provider, Task const& task)
{
    int64 const left = provider.Size() - provider.GetPosition();
    if (left <= 0)
        return task.Failed(kNotARecord, "there is nothing in it");
    IO::IDataProvider::Endian const before = provider.GetEndian();
    IO::IDataProvider::Endian plausible = IO::IDataProvider::kNativeEndian;
    for (auto const order : {IO::IDataProvider::kLittleEndian, IO::IDataProvider::kBigEndian})
    {
        provider.SetEndian(order);
        Result<RecordHead> const head = PeekHead(provider);
        if (!head)
            return head.error();
        if (left >= IO::kClassIdSize && Probe(head->classId))
            return {};
        if (plausible == IO::IDataProvider::kNativeEndian && !(head->classId == GUID{}) &&
            head->IsPlausible(left))
            plausible = order;
    }
    provider.SetEndian(plausible == IO::IDataProvider::kNativeEndian ? before : plausible);
    if (plausible == IO::IDataProvider::kNativeEndian)
        return task.Failed(kNotARecord);
    return {};
}

/// Whether a whole record with that head stands in the `left` bytes that are there: `kNotARecord`,
/// `kTruncated`, or `kDamaged` for a length that can't be.
inline Result<void> CheckHead(RecordHead const& head, int64 left, Task const& task)
{
    if (head.IsPlausible(left))
        return {};
    if (left < IO::kClassIdSize || !Probe(head.classId))
        return task.Failed(kNotARecord);
    if (head.isWhole && !IO::IsBelievedLength(head.length))
        return task.Failed(kDamaged, "its length is " + std::to_string(head.length));
    return task.Failed(kTruncated);
}

/// How a record is read.
struct ReadOptions
{
    bool keepDamaged = false;
    /// The program's, borrowed; null where there is none.
    IO::IRecordObserver* observer = nullptr;
};

/// As `ReadRecord`, but for what the system says.
template <HandleType T>
Result<T> ReadRecordAsItStands(IO::IDataProvider& provider, int64 size, Task const& task,
                               ReadOptions const& options)
{
    int64 const start = provider.GetPosition();
    int64 const left = size - start;
    if (left <= 0)
        return task.Failed(IO::kEndOfData);
    Result<RecordHead> const head = PeekHead(provider);
    if (!head)
        return head.error();
    Result<void> const checked = CheckHead(*head, left, task);
    if (!checked)
        return checked.error();

    int64 const end = start + IO::kRecordHeadSize + head->length;
    std::string const classText = GUIDToText(head->classId);
    auto const skip = [&provider, end, &task](ErrCode code, std::string detail) {
        static_cast<void>(provider.SetPosition(end, IO::IDataProvider::kFromStart));
        return task.Failed(code, std::move(detail));
    };
    TInterfacePtr<IObject> probe = Probe(head->classId);
    // An observer may know what to make of an unknown class.
    if (!probe && !options.observer)
        return skip(kUnknownClass, classText);
    if (probe && probe->QueryInterface(IO::IPERSISTENT_DATA, nullptr) != kNoError)
        return skip(kNotPersistent, classText);
    if (probe && !As<T>(Object(std::move(probe))))
        return skip(kOtherClass, classText);

    Result<WatchedStream> const watched = WatchedStream::Over(provider, options.observer);
    if (!watched)
        return watched.error();
    TInterfacePtr<IObject> object;
    *watched->stream >> object.Out();
    auto const* const status = dynamic_cast<IO::IDataProviderStreamStatus const*>(watched->stream.Get());
    if (status && status->HasRunOutOfMemory())
        return skip(kOutOfResources, "not enough memory");
    if (watched->watch->Outcome() == IO::RecordOutcome::kUnknownClass)
        return skip(kUnknownClass, classText);
    bool const isWhole =
        watched->watch->IsWhole() && !watched->provider->HasShortRead() && !watched->provider->HasDamage();
    if (!object || (!options.keepDamaged && !isWhole))
        return skip(kDamaged, {});
    Result<T> found = As<T>(Object(std::move(object)));
    return found ? std::move(found) : skip(kOtherClass, classText);
}

/// Reads the record at the provider's position as a `T`. The position is the record's end afterwards, on
/// failure too where that is known, else it stays. With `keepDamaged`, an object that did not come out of
/// its record quite as it should is a success. `size` is the provider's: a file is slow to tell it. What the
/// system could not read is no damage: the failure is the system's then.
template <HandleType T>
Result<T> ReadRecord(IO::IDataProvider& provider, int64 size, Task const& task, ReadOptions const& options)
{
    int const before = SystemErrorOf(provider);
    Result<T> object = ReadRecordAsItStands<T>(provider, size, task, options);
    // Of a body that reads on the side, through a stream of its own.
    auto* const around = object ? nullptr : dynamic_cast<CheckedProvider*>(&provider);
    if (around && object.error().Code() != IO::kEndOfData)
        around->OnDamage();
    int const number = SystemErrorOf(provider);
    if (before == 0 && number != 0)
        return SystemFailure(number, IO::kFileSystemFailed, task.operation, task.subject);
    return object;
}
} // namespace KORVA::CXX::DETAIL
