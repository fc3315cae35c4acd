// Saving objects so that a crash leaves the old file or the new one.
#pragma once

#include <tessio/Cxx/DataProvider.h>
#include <tessio/Cxx/FileState.h>
#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/LocalFile.h>
#include <tessio/Cxx/LockedFile.h>
#include <tessio/Cxx/Records.h>
#include <tessio/Cxx/URI.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <ranges>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace KORVA::CXX
{
/// Handles of any kind, to go over.
template <class Range>
concept RangeOfHandles = std::ranges::input_range<Range> && HandleType<std::ranges::range_value_t<Range>>;

/// How objects are written.
struct SaveOptions
{
    /// The byte order; by default this machine's, and for `Append` that of the file.
    std::optional<ByteOrder> order = std::nullopt;
    /// Where given, the state in which the file must be; else it is left alone: `kChanged`. `Load` tells the
    /// state of what it loads; one that nobody set stands for no file, so that only a new one is made. When
    /// the file has its new content this becomes its state. Borrowed.
    FileState* state = nullptr;
    /// Where given, told of each record that is written, before anything is in the file: places count from
    /// the beginning of what is written. What it leaves out makes the saving fail. Shared while they are
    /// written.
    IO::IRecordObserver* observer = nullptr;
};

namespace DETAIL
{
/// The records of the objects, one after the other.
inline Result<std::vector<std::byte>> Serialize(std::span<IObject const* const> objects, ByteOrder order,
                                                Task const& task, IO::IRecordObserver* observer)
{
    Result<DataProvider> memory = DataProvider::Memory(order);
    if (!memory)
        return task.Failed(memory.error().Code());
    for (IObject const* const object : objects)
    {
        Result<void> const written = WriteRecord(**memory, *object, task, observer);
        if (!written)
            return written.error().Code() == IO::kResizeFailed ? task.Failed(kTooLarge) : written.error();
    }
    Result<std::vector<std::byte>> bytes = memory->Bytes();
    return bytes ? std::move(bytes) : task.Failed(bytes.error().Code());
}

inline Result<void> SaveObjects(std::filesystem::path const& path, std::span<IObject const* const> objects,
                                SaveOptions const& options, Task const& task)
{
    Result<std::vector<std::byte>> const bytes =
        Serialize(objects, options.order.value_or(ByteOrder::kNative), task, options.observer);
    if (!bytes)
        return bytes.error();
    Result<LockedFile> const file = LockedFile::Lock(path, LockedFile::Need::kWherePossible, task);
    return file ? file->Replace(*bytes, options.state, task) : Result<void>(file.error());
}

inline Task SaveTask(std::filesystem::path const& path) { return {"save", Quoted(path.string())}; }
inline Task SaveTask(URI const& uri) { return {"save", Quoted(uri.AbsoluteText())}; }
} // namespace DETAIL

/// The record of an object. `kNotPersistent`; `kNotSerialized` when its writing threw, or that of anything in
/// it; `kTooLarge`.
inline Result<std::vector<std::byte>> ToBytes(IObject const& object, SaveOptions const& options = {})
{
    IObject const* const objects[] = {&object};
    return DETAIL::Serialize(objects, options.order.value_or(ByteOrder::kNative), {"write", "the object"},
                             options.observer);
}
/// The same of what a handle holds.
template <class I>
Result<std::vector<std::byte>> ToBytes(Handle<I> const& object, SaveOptions const& options = {})
{
    return ToBytes(*object, options);
}

/// Makes the record of `object` the whole content of the file at `path`. It is first written to memory, then
/// to a temporary file beside the target (its name begins with a dot), which is flushed to the disk and takes
/// the target's name: whatever fails, and wherever the process dies, the file is the old one or the new one,
/// whole. A process that is killed may leave the temporary behind. Permissions of a replaced file are kept;
/// the new one belongs to who saves, unless that user may give files away. A symbolic link is followed.
///
/// With the old file left: `kNotPersistent`; `kNotSerialized` when the object's writing threw or that of
/// anything in it, or objects are nested more than 1,000 deep, in a circle for one; `kTooLarge`; `kNotAFile`;
/// `kLocked` when somebody, also in another process, has it open by `File::Write` for more than a second, or
/// saves or updates it for more than half a minute; `kChanged` when the file is not in the state that the
/// options tell; `kNotPermitted`, also for a file that may not be written; `kBadText` for a path that is not
/// UTF-8; `kFileNotFound` (no such directory); `kNoSpace`; `kDeviceFailed`; `kOutOfResources`;
/// `kFileSystemFailed`.
///
/// With the new file in its place: a success, and `kNotFlushed`, when its name could not be confirmed to be
/// on the disk. Every program sees the new file then; after a power cut it may be the old one.
///
/// Any text is a path here: name a URL by a `URI`.
inline Result<void> Save(std::filesystem::path const& path, IObject const& object,
                         SaveOptions const& options = {})
{
    IObject const* const objects[] = {&object};
    return DETAIL::SaveObjects(path, objects, options, DETAIL::SaveTask(path));
}
/// The same of what a handle holds.
template <class I>
Result<void> Save(std::filesystem::path const& path, Handle<I> const& object, SaveOptions const& options = {})
{
    return Save(path, *object, options);
}
/// The same to the file that a URI names. `kNotServed` for anything but a local file: through no other scheme
/// can a file be replaced safely. `kBadArgument` for a URI with a query.
inline Result<void> Save(URI const& uri, IObject const& object, SaveOptions const& options = {})
{
    DETAIL::Task const task = DETAIL::SaveTask(uri);
    if (uri.Scheme() != "file")
        return task.Failed(kNotServed, "only local files are written safely");
    Result<std::filesystem::path> const path = DETAIL::LocalPath(uri, task);
    if (!path)
        return path.error();
    IObject const* const objects[] = {&object};
    return DETAIL::SaveObjects(*path, objects, options, task);
}
/// The same to the file that a URI names, of what a handle holds.
template <class I>
Result<void> Save(URI const& uri, Handle<I> const& object, SaveOptions const& options = {})
{
    return Save(uri, *object, options);
}

/// Makes the records of all `objects` (a range of handles), one after the other, the whole content of the
/// file. Errors as of `Save`; no object at all makes an empty file.
template <RangeOfHandles Range>
Result<void> SaveAll(std::filesystem::path const& path, Range&& objects, SaveOptions const& options = {})
{
    std::vector<Object> held;
    for (auto const& object : objects)
        held.push_back(Object(*object));
    std::vector<IObject const*> pointers;
    for (Object const& object : held)
        pointers.push_back(&*object);
    return DETAIL::SaveObjects(path, pointers, options, DETAIL::SaveTask(path));
}
} // namespace KORVA::CXX
