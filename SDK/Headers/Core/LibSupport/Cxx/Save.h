// Saving objects so that a crash leaves the old file or the new one.
#pragma once

#include "Cxx/DataProvider.h"
#include "Cxx/Handle.h"
#include "Cxx/Records.h"
#include "Cxx/URI.h"
#include "FileIO/IFile.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
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
};

namespace DETAIL
{
/// The codes of this layer for the statuses of the file-system library.
inline ErrCode CodeOfFileStatus(FILE_SYS::ErrCode status)
{
    switch (status)
    {
    case FILE_SYS::kDone:
        return kNoError;
    case FILE_SYS::kNotFound:
        return IO::kFileNotFound;
    case FILE_SYS::kNotPermitted:
        return IO::kNotPermitted;
    case FILE_SYS::kNoSpace:
        return kNoSpace;
    default:
        return IO::kFileSystemFailed;
    }
}

/// The local file that a URI of the scheme "file" names. A name on another machine, or one with a query, is
/// refused rather than taken for the file that its path alone would name.
inline Result<std::filesystem::path> LocalPath(URI const& uri, Task const& task)
{
    std::string const host = uri.Host();
    if (!host.empty() && host != "localhost")
        return task.Failed(kNotServed, "the file is on another machine");
    // A query may be empty, and stands in the text even so.
    std::string const text = uri.AbsoluteText();
    std::string_view rest = text;
    rest.remove_prefix(std::min(rest.size(), rest.find(':') + 1));
    if (rest.starts_with("//"))
        rest.remove_prefix(std::min(rest.size(), rest.find('/', 2)));
    std::string const name = uri.Path();
    if (!text.empty() && rest != name && rest != name + "/")
        return task.Failed(IO::kBadArgument, "its path does not say everything");
    std::filesystem::path path;
    if (IO::FilePathOf(*uri, path) != kNoError)
        return task.Failed(IO::kBadArgument, "its path is no file name");
    return path;
}

/// Holds the library's lock on a file while it is replaced. Two that begin at the same moment may both get
/// it.
class SaveLock
{
public:
    /// Waits for a second. Others that save hold it for as long as that takes them.
    explicit SaveLock(std::filesystem::path const& path)
    {
        constexpr int kAttempts = 100;
        constexpr int kAttemptsRefused = 5;
        constexpr std::chrono::milliseconds kPause{10};
        IO::IURIPtr uri;
        if (IO::CreateFileURI(COREREGISTRY::GetCoreRegistry(), uri, path) != kNoError)
            return;
        for (int attempt = 0; attempt < kAttempts; ++attempt)
        {
            mFile = COREREGISTRY::CreateObject<IO::IDataProvider>(IO::IID_IDATAPROVIDER);
            ErrCode const code =
                mFile ? mFile->InitURIBased(*uri, IO::kStreamReadWrite, nullptr) : IO::kNoObject;
            mIsRefused = code == IO::kLocked;
            // Refused is an opening also while somebody else looks whether it is locked.
            if (!mIsRefused && (code != IO::kOpenRefused || attempt == kAttemptsRefused))
                return;
            std::this_thread::sleep_for(kPause);
        }
    }

    /// Whether somebody else holds it. Where files can't be locked nobody does.
    bool IsRefused() const { return mIsRefused; }

private:
    TInterfacePtr<IO::IDataProvider> mFile;
    bool mIsRefused = false;
};

/// Makes `bytes` the whole content of the file, at once or not at all.
inline Result<void> ReplaceFile(std::filesystem::path const& path, std::span<std::byte const> bytes,
                                Task const& task)
{
    std::optional<STRING::CoreString> const name = STRING::CoreString::FromUTF8(path.string());
    if (!name)
        return task.Failed(kBadText, "the path is not UTF-8");
    std::error_code error;
    std::filesystem::file_status const status = std::filesystem::status(path, error);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return task.Failed(kNotAFile);
    auto const file = COREREGISTRY::CreateObject<FILE_SYS::IFile>(FILE_SYS::IID_IFILE);
    if (!file)
        return task.Failed(IO::kNoObject);
    if (!file->BindPath(*name))
        return task.Failed(IO::kBadArgument);
    std::optional<SaveLock> lock;
    if (std::filesystem::exists(status))
    {
        // A file that may not be written is not to be replaced by one that may.
        errno = 0;
        if (!std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) &&
            (errno == EACCES || errno == EPERM || errno == EROFS))
            return task.Failed(IO::kNotPermitted);
        if (lock.emplace(path).IsRefused())
            return task.Failed(IO::kLocked);
    }
    ErrCode const code = CodeOfFileStatus(file->Replace(bytes.data(), bytes.size()));
    return code == kNoError ? Result<void>() : task.Failed(code);
}

/// The records of the objects, one after the other.
inline Result<std::vector<std::byte>> Serialize(std::span<IObject const* const> objects, ByteOrder order,
                                                Task const& task)
{
    Result<DataProvider> memory = DataProvider::Memory(order);
    if (!memory)
        return task.Failed(memory.error().Code());
    for (IObject const* const object : objects)
    {
        Result<void> const written = WriteRecord(**memory, *object, task);
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
        Serialize(objects, options.order.value_or(ByteOrder::kNative), task);
    return bytes ? ReplaceFile(path, *bytes, task) : Result<void>(bytes.error());
}

inline Task SaveTask(std::filesystem::path const& path) { return {"save", Quoted(path.string())}; }
inline Task SaveTask(URI const& uri) { return {"save", Quoted(uri.AbsoluteText())}; }
} // namespace DETAIL

/// The record of an object. `kNotPersistent`; `kNotSerialized` when its writing threw, or that of anything in
/// it; `kTooLarge`.
inline Result<std::vector<std::byte>> ToBytes(IObject const& object, SaveOptions const& options = {})
{
    IObject const* const objects[] = {&object};
    return DETAIL::Serialize(objects, options.order.value_or(ByteOrder::kNative), {"write", "the object"});
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
/// Before anything is touched: `kNotPersistent`; `kNotSerialized` when the object's writing threw or that of
/// anything in it, or objects are nested more than 1,000 deep, in a circle for one; `kTooLarge`; `kNotAFile`;
/// `kLocked` when somebody holds the library's lock on the file for more than a second, as `File::Write`
/// does, also in another process; `kNotPermitted` for a file that may not be written; `kBadText` for a path
/// that is not UTF-8. With the old file left: `kFileNotFound` (no such directory), `kNoSpace`. After
/// `kNotPermitted` and `kFileSystemFailed` it is the old one or the new one: the last thing that can fail is
/// to wait for the new name to be on the disk.
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
