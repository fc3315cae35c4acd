// Loading objects, and telling why that is not possible.
#pragma once

#include "Cxx/DataProvider.h"
#include "Cxx/File.h"
#include "Cxx/Handle.h"
#include "Cxx/Records.h"
#include "Cxx/Save.h"
#include "Cxx/URI.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>
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
    /// there is damaged or of a class that nothing makes. Saving it again loses what is not in it. A class
    /// that moves the position while it reads itself needs this.
    bool keepDamaged = false;
    /// Whether `Load` leaves alone what stands behind the record.
    bool ignoreRest = false;
};

namespace DETAIL
{
inline Result<DataProvider> OpenedBy(Result<File> const& file, Task const& task)
{
    if (!file)
        return task.Failed(file.error().Code());
    Result<Stream> const stream = file->Read();
    if (!stream)
        return task.Failed(stream.error().Code());
    return stream->Provider();
}

/// The file's bytes. What the system says of the name comes first: the library tells less.
inline Result<DataProvider> OpenToLoad(std::filesystem::path const& path, Task const& task)
{
    std::error_code error;
    std::filesystem::file_status const status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        return task.Failed(IO::kFileNotFound);
    if (error == std::errc::permission_denied)
        return task.Failed(IO::kOpenRefused);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return task.Failed(kNotAFile);
    return OpenedBy(File::At(path), task);
}

inline Result<DataProvider> OpenToLoad(URI const& uri, Task const& task)
{
    if (uri.Scheme() != "file")
        return OpenedBy(File::At(uri), task);
    Result<std::filesystem::path> const path = LocalPath(uri, task);
    return path ? OpenToLoad(*path, task) : Result<DataProvider>(path.error());
}

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

template <HandleType T>
Result<T> LoadOne(Result<DataProvider> provider, LoadOptions const& options, Task const& task)
{
    if (!provider)
        return provider.error();
    Result<void> const order = SetOrder(*provider, options, task);
    if (!order)
        return order.error();
    Result<T> object = ReadRecord<T>(**provider, provider->Size(), task, options.keepDamaged);
    if (object && !options.ignoreRest && !provider->AtEnd())
        return task.Failed(kMoreRecords);
    return object;
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
    /// that can't be.
    std::optional<Error> stopped;
    /// In which the file is.
    ByteOrder order = ByteOrder::kNative;
};

namespace DETAIL
{
template <HandleType T>
Result<Loaded<T>> LoadEvery(Result<DataProvider> provider, LoadOptions const& options, Task const& task)
{
    if (!provider)
        return provider.error();
    Result<void> const order = SetOrder(*provider, options, task);
    if (!order)
        return order.error();
    Loaded<T> loaded;
    loaded.order = provider->Order();
    int64 const size = provider->Size();
    for (int64 before = provider->Position(); before < size; before = provider->Position())
    {
        Task const one{task.operation, "the record at " + std::to_string(before) + " of " + task.subject};
        Result<T> object = ReadRecord<T>(**provider, size, one, options.keepDamaged);
        if (object)
            loaded.objects.push_back(*std::move(object));
        else if (provider->Position() > before)
            loaded.skipped.push_back(object.error());
        else
        {
            loaded.stopped = object.error();
            break;
        }
    }
    return loaded;
}
} // namespace DETAIL

/// Loads the object whose record is the whole content of the file, as a handle of type `T`: `Dictionary`,
/// `Handle<IBookmark>`, or `Object` for any class.
///
/// - `kFileNotFound`; `kNotAFile`; `kOpenRefused` (no permission, say); `kLocked` where the scheme looks at
///   locks: local files are read whoever has them open for writing;
/// - `kNotARecord`, an empty file included; `kTruncated`;
/// - `kUnknownClass`, with its id in the message; `kNotPersistent`; `kOtherClass`, when its objects are no
///   `T`: nothing of it has been read then;
/// - `kDamaged`, when the object threw or anything in its record was not read as it was written. That
///   includes objects inside of it whose class nothing makes: they would be lost at the next saving;
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

/// Puts the record of `object` behind those in the file, in their byte order, or makes the file. The whole
/// file is written anew, as safely as by `Save`, and all errors are its or those of `Load`; the records that
/// are there keep their bytes, whatever their classes. `kTruncated`, `kDamaged` or `kNotARecord` where they
/// don't end with the file: what is put behind would not be found again. What another process appends
/// meanwhile is lost.
inline Result<void> Append(std::filesystem::path const& path, IObject const& object,
                           SaveOptions const& options = {})
{
    DETAIL::Task const task{"append to", Quoted(path.string())};
    IObject const* const objects[] = {&object};
    std::error_code error;
    if (std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found)
        return DETAIL::SaveObjects(path, objects, options, task);
    Result<DataProvider> provider = DETAIL::OpenToLoad(path, task);
    if (!provider)
        return provider.error();
    ByteOrder order = options.order.value_or(ByteOrder::kNative);
    int64 const size = provider->Size();
    for (int64 at = 0; at < size; at = provider->Position())
    {
        if (at == 0 && !options.order)
        {
            Result<void> const found = DETAIL::FindOrder(**provider, task);
            if (!found)
                return found;
            order = provider->Order();
        }
        provider->SetOrder(order);
        Result<DETAIL::RecordHead> const head = DETAIL::PeekHead(**provider);
        if (!head)
            return head.error();
        Result<void> const checked = DETAIL::CheckHead(*head, size - at, task);
        if (!checked)
            return checked;
        Result<void> const moved = provider->Seek(at + DETAIL::kRecordHeader + head->length);
        if (!moved)
            return moved;
    }
    Result<std::vector<std::byte>> content = provider->Bytes();
    if (!content)
        return task.Failed(content.error().Code());
    Result<std::vector<std::byte>> const record = DETAIL::Serialize(objects, order, task);
    if (!record)
        return record.error();
    content->insert(content->end(), record->begin(), record->end());
    return DETAIL::ReplaceFile(path, *content, task);
}
/// The same of what a handle holds.
template <class I>
Result<void> Append(std::filesystem::path const& path, Handle<I> const& object,
                    SaveOptions const& options = {})
{
    return Append(path, *object, options);
}
} // namespace KORVA::CXX
