// Changing what a file holds, without losing what others change.
#pragma once

#include <tessio/Cxx/Handle.h>
#include <tessio/Cxx/Load.h>
#include <tessio/Cxx/LocalFile.h>
#include <tessio/Cxx/LockedFile.h>
#include <tessio/Cxx/Save.h>
#include <tessio/Cxx/URI.h>

#include <concepts>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

namespace KORVA::CXX
{
/// What changes an object: called with it, it answers nothing, or a `Result<void>`.
template <class F, class T>
concept ChangeOf = std::invocable<F, T&> &&
    (std::is_void_v<std::invoke_result_t<F, T&>> || std::same_as<std::invoke_result_t<F, T&>, Result<void>>);

namespace DETAIL
{
inline Task UpdateTask(std::filesystem::path const& path) { return {"update", Quoted(path.string())}; }
inline Task UpdateTask(URI const& uri) { return {"update", Quoted(uri.AbsoluteText())}; }

template <HandleType T, ChangeOf<T> Change>
Result<void> UpdateFile(std::filesystem::path const& path, Change&& change, LoadOptions options,
                        Task const& task)
{
    Result<LockedFile> const file = LockedFile::Lock(path, LockedFile::Need::kAlways, task);
    if (!file)
        return file.error();
    // What stood behind the record would be lost.
    options.ignoreRest = false;
    FileState state;
    options.state = options.state ? options.state : &state;
    Result<DataProvider> const provider = OpenToLoad(path, task);
    Result<T> object = LoadOne<T>(provider, options, task);
    if (!object)
        return object.error();
    if constexpr (std::is_void_v<std::invoke_result_t<Change, T&>>)
        std::invoke(std::forward<Change>(change), *object);
    else
    {
        Result<void> const changed = std::invoke(std::forward<Change>(change), *object);
        if (!changed)
            return changed;
    }
    IObject const* const objects[] = {&**object};
    Result<std::vector<std::byte>> const bytes =
        Serialize(objects, provider->Order(), task, options.observer);
    return bytes ? file->Replace(*bytes, options.state, task) : Result<void>(bytes.error());
}
} // namespace DETAIL

/// Loads the object of the file as `Load<T>` does, has `change` change it, and saves it as `Save` does, in
/// the byte order of the file. The file is locked all the while: whatever others do to it by `Update`,
/// `Append` and `Save`, in this process or another, no change is lost.
///
///     auto const counted = Update<Dictionary>(path, [](Dictionary& counts) {
///         counts.Set(1, counts.Get<int>(1).value_or(0) + 1);
///     });
///
/// Errors of `Load` and `Save`, and the one that `change` answers; the file is then as it was, but for
/// `kNotFlushed`. What `change` throws is passed on, and nothing is saved. `kFileSystemFailed` where files
/// can't be locked. A file that is not there is `kFileNotFound`; save a first one with a `FileState` that
/// nobody set, and whoever comes second is told.
///
/// `change` is called once, on this thread, and should be short: others wait for half a minute, then they get
/// `kLocked`. A `change` that saves to the same file waits for itself and gets `kLocked`. Nothing of this
/// holds against others that make, remove or rename the file meanwhile by other means, `File::Create` among
/// them.
template <HandleType T, ChangeOf<T> Change>
Result<void> Update(std::filesystem::path const& path, Change&& change, LoadOptions const& options = {})
{
    return DETAIL::UpdateFile<T>(path, std::forward<Change>(change), options, DETAIL::UpdateTask(path));
}
/// The same of the local file that a URI names. `kNotServed` for any other.
template <HandleType T, ChangeOf<T> Change>
Result<void> Update(URI const& uri, Change&& change, LoadOptions const& options = {})
{
    DETAIL::Task const task = DETAIL::UpdateTask(uri);
    if (uri.Scheme() != "file")
        return task.Failed(kNotServed, "only local files are written safely");
    Result<std::filesystem::path> const path = DETAIL::LocalPath(uri, task);
    return path ? DETAIL::UpdateFile<T>(*path, std::forward<Change>(change), options, task)
                : Result<void>(path.error());
}
} // namespace KORVA::CXX
