// Loading objects, and telling why that is not possible.
#pragma once

#include <tessio/Cxx/DataProvider.h>
#include <tessio/Cxx/FileState.h>
#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/LocalFile.h>
#include <tessio/Cxx/LockedFile.h>
#include <tessio/Cxx/Records.h>
#include <tessio/Cxx/Save.h>
#include <tessio/Cxx/URI.h>

#include <cstddef>
#include <filesystem>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace KORVA::CXX
{
/// How objects are read.
struct LoadOptions
{
    /// The byte order. By default it is found out: files don't tell, but in one order only is the first
    /// record's class id known, or, where it is unknown in both, its length believable.
    std::optional<ByteOrder> order = std::nullopt;
    /// Whether an object is taken that did not come out of its record as it should, because something in
    /// there is damaged or of a class that nothing makes. Saving it again loses what is not in it.
    bool keepDamaged = false;
    /// Whether `Load` leaves alone what stands behind the record.
    bool ignoreRest = false;
    /// Where given, becomes the state of the file that is read, or of there being none, for `SaveOptions`. It
    /// stays where the file can't be read. Borrowed.
    FileState* state = nullptr;
    /// Where given, told of each record that is read, and by `Update` of each that is written, and asked what
    /// to make of unknown classes: an object that it gives counts as read. Not told of records that are
    /// refused for their class or length. What it leaves out counts as damaged. Shared meanwhile.
    IO::IRecordObserver* observer = nullptr;
};

namespace DETAIL
{
inline Task LoadTask(std::filesystem::path const& path) { return {"load", Quoted(path.string())}; }
inline Task LoadTask(URI const& uri) { return {"load", Quoted(uri.AbsoluteText())}; }

inline Result<void> SetOrder(DataProvider& provider, LoadOptions const& options, Task const& task)
{
    if (!options.order)
        return FindOrder(*provider, task);
    provider.SetOrder(*options.order);
    if (provider.AtEnd())
        return task.Failed(kNotARecord, "there is nothing in it");
    return {};
}

/// What `read` makes of the data. Where that fails because the system failed, the failure is the system's:
/// the data, of which only a part came, is not to be judged.
template <class Value, class Read>
Result<Value> ReadFrom(Result<DataProvider> provider, LoadOptions const& options, Task const& task,
                       Read const& read)
try
{
    if (!provider)
    {
        if (options.state && provider.error().Code() == IO::kFileNotFound)
            *options.state = FileState();
        return provider.error();
    }
    if (options.state)
    {
        Result<FileState> const state = StateOf(*provider);
        if (!state)
            return task.Failed(state.error());
        *options.state = *state;
    }
    Result<void> const order = SetOrder(*provider, options, task);
    Result<Value> value = order ? read(*provider) : Result<Value>(order.error());
    int const number = SystemErrorOf(**provider);
    if (!value && number != 0)
        return SystemFailure(number, IO::kFileSystemFailed, task.operation, task.subject);
    return value;
}
catch (std::bad_alloc const&)
{
    return task.Failed(kOutOfResources, "not enough memory");
}

template <HandleType T>
Result<T> LoadOne(Result<DataProvider> provider, LoadOptions const& options, Task const& task)
{
    return ReadFrom<T>(std::move(provider), options, task, [&](DataProvider& data) -> Result<T> {
        Result<T> object = ReadRecord<T>(*data, data.Size(), task, {options.keepDamaged, options.observer});
        if (object && !options.ignoreRest && !data.AtEnd())
            return task.Failed(kMoreRecords);
        return object;
    });
}
} // namespace DETAIL

/// What `LoadAll` found.
template <HandleType T>
struct Loaded
{
    /// The objects, in the order of the file.
    std::vector<T> objects;
    /// Why each record that gave no object was skipped: `kUnknownClass`, `kOtherClass`, `kNotPersistent` or
    /// `kDamaged`.
    std::vector<Error> skipped;
    /// Why reading ended before the file did, if so: `kTruncated`, `kNotARecord`, or `kDamaged` for a length
    /// that can't be; `kDeviceFailed`, `kOutOfResources` and what else the system says.
    std::optional<Error> stopped;
    /// In which the file is.
    ByteOrder order = ByteOrder::kNative;
};

namespace DETAIL
{
template <HandleType T>
Result<Loaded<T>> LoadEvery(Result<DataProvider> provider, LoadOptions const& options, Task const& task)
{
    return ReadFrom<Loaded<T>>(std::move(provider), options, task, [&](DataProvider& data) {
        Loaded<T> loaded;
        loaded.order = data.Order();
        int64 const size = data.Size();
        for (int64 before = data.Position(); before < size; before = data.Position())
        {
            Task const one{task.operation, "the record at " + std::to_string(before) + " of " + task.subject};
            Result<T> object = ReadRecord<T>(*data, size, one, {options.keepDamaged, options.observer});
            if (object)
                loaded.objects.push_back(*std::move(object));
            else if (data.Position() > before && SystemErrorOf(*data) == 0 &&
                     object.error().Code() != kOutOfResources)
                loaded.skipped.push_back(object.error());
            else
            {
                loaded.stopped = object.error();
                break;
            }
        }
        return Result<Loaded<T>>(std::move(loaded));
    });
}
} // namespace DETAIL

/// Loads the object whose record is the whole content of the file, as a handle of type `T`: `Dictionary`,
/// `Handle<IBookmark>`, or `Object` for any class.
///
/// - `kFileNotFound`; `kNotAFile`; `kOpenRefused` (no permission, say); `kLocked` where the scheme looks at
///   locks: local files are read whoever has them open for writing;
/// - `kDeviceFailed`; `kOutOfResources`, for memory too; `kFileSystemFailed`, with the system's words.
///   Nothing is said of the file then;
/// - `kNotARecord`, an empty file included; `kTruncated`;
/// - `kUnknownClass`, with its id in the message; `kNotPersistent`; `kOtherClass`, when its objects are no
///   `T`: nothing of it has been read then;
/// - `kDamaged`, when the object threw or anything in its record was not read as it was written. That
///   includes objects inside of it whose class nothing makes and that no observer keeps: they would be lost
///   at the next saving;
/// - `kMoreRecords`, which saving would lose: `LoadAll` reads them.
///
/// Any text is a path here: name a URL by a `URI`.
template <HandleType T>
Result<T> Load(std::filesystem::path const& path, LoadOptions const& options = {})
{
    DETAIL::Task const task = DETAIL::LoadTask(path);
    return DETAIL::LoadOne<T>(DETAIL::OpenToLoad(path, task), options, task);
}
/// The same from the file that a URI names, of any scheme that is served. `kNotServed`, for a file on another
/// machine too; `kBadArgument` for a local one with a query.
template <HandleType T>
Result<T> Load(URI const& uri, LoadOptions const& options = {})
{
    DETAIL::Task const task = DETAIL::LoadTask(uri);
    return DETAIL::LoadOne<T>(DETAIL::OpenToLoad(uri, task), options, task);
}

/// The object whose record the bytes are. Errors as of `Load`.
template <HandleType T>
Result<T> FromBytes(std::span<std::byte const> bytes, LoadOptions const& options = {})
{
    DETAIL::Task const task{"read", "the object"};
    if (bytes.empty())
        return task.Failed(kNotARecord, "there is nothing in it");
    return DETAIL::LoadOne<T>(DataProvider::Over(bytes), options, task);
}

/// Loads every record of the file whose object is a `T`. Fails as `Load` does where the file can't be opened
/// or does not begin with a record; what is the matter further on stands in the result, with the objects that
/// could be read.
template <HandleType T = Object>
Result<Loaded<T>> LoadAll(std::filesystem::path const& path, LoadOptions const& options = {})
{
    DETAIL::Task const task = DETAIL::LoadTask(path);
    return DETAIL::LoadEvery<T>(DETAIL::OpenToLoad(path, task), options, task);
}
/// The same from the file that a URI names.
template <HandleType T = Object>
Result<Loaded<T>> LoadAll(URI const& uri, LoadOptions const& options = {})
{
    DETAIL::Task const task = DETAIL::LoadTask(uri);
    return DETAIL::LoadEvery<T>(DETAIL::OpenToLoad(uri, task), options, task);
}

namespace DETAIL
{
/// All bytes of a file of records, and in `order` its byte order, which stays where there is none.
inline Result<std::vector<std::byte>> RecordsOf(std::filesystem::path const& path,
                                                std::optional<ByteOrder>& order, Task const& task)
{
    Result<DataProvider> provider = OpenToLoad(path, task);
    if (!provider && provider.error().Code() == IO::kFileNotFound)
        return std::vector<std::byte>();
    if (!provider)
        return provider.error();
    if (provider->Size() == 0 && SystemErrorOf(**provider) == 0)
        return std::vector<std::byte>();
    LoadOptions const options{.order = order};
    return ReadFrom<std::vector<std::byte>>(
        *provider, options, task, [&](DataProvider& data) -> Result<std::vector<std::byte>> {
            order = data.Order();
            int64 const size = data.Size();
            for (int64 at = 0; at < size; at = data.Position())
            {
                Result<RecordHead> const head = PeekHead(*data);
                if (!head)
                    return head.error();
                Result<void> const checked = CheckHead(*head, size - at, task);
                if (!checked)
                    return checked.error();
                Result<void> const moved = data.Seek(at + IO::kRecordHeadSize + head->length);
                if (!moved)
                    return moved.error();
            }
            Result<std::vector<std::byte>> content = data.Bytes();
            return content ? std::move(content) : task.Failed(content.error());
        });
}
} // namespace DETAIL

/// Puts the record of `object` behind those in the file, in their byte order, or makes the file. The whole
/// file is written anew, as safely as by `Save`, and all errors are its or those of `Load`; the records that
/// are there keep their bytes, whatever their classes. `kTruncated`, `kDamaged` or `kNotARecord` where they
/// don't end with the file: what is put behind would not be found again.
///
/// The file is locked from before it is read until it is replaced, so nothing is lost that others put there
/// by `Append`, `Update` and `Save`. `kFileSystemFailed` where files can't be locked.
inline Result<void> Append(std::filesystem::path const& path, IObject const& object,
                           SaveOptions const& options = {})
{
    DETAIL::Task const task{"append to", Quoted(path.string())};
    Result<DETAIL::LockedFile> const file =
        DETAIL::LockedFile::Lock(path, DETAIL::LockedFile::Need::kAlways, task);
    if (!file)
        return file.error();
    std::optional<ByteOrder> order = options.order;
    Result<std::vector<std::byte>> content = DETAIL::RecordsOf(path, order, task);
    if (!content)
        return content.error();
    IObject const* const objects[] = {&object};
    Result<std::vector<std::byte>> const record =
        DETAIL::Serialize(objects, order.value_or(ByteOrder::kNative), task, options.observer);
    if (!record)
        return record.error();
    content->insert(content->end(), record->begin(), record->end());
    return file->Replace(*content, options.state, task);
}
/// The same of what a handle holds.
template <class I>
Result<void> Append(std::filesystem::path const& path, Handle<I> const& object,
                    SaveOptions const& options = {})
{
    return Append(path, *object, options);
}
} // namespace KORVA::CXX
