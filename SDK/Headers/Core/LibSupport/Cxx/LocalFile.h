// Files to load: which one a name stands for, opened, and what it holds.
#pragma once

#include <tessio/Cxx/DataProvider.h>
#include <tessio/Cxx/File.h>
#include <tessio/Cxx/FileState.h>
#include <tessio/Cxx/Records.h>
#include <tessio/Cxx/SystemErrors.h>
#include <tessio/Cxx/URI.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace KORVA::CXX::DETAIL
{
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

inline Result<DataProvider> OpenedBy(Result<File> const& file, Task const& task)
{
    if (!file)
        return task.Failed(file.error());
    Result<Stream> const stream = file->Read();
    if (!stream)
        return task.Failed(stream.error());
    return stream->Provider();
}

/// The file's bytes. What the system says of the name comes first: the library tells less.
inline Result<DataProvider> OpenToLoad(std::filesystem::path const& path, Task const& task)
try
{
    std::error_code error;
    std::filesystem::file_status const status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found)
        return task.Failed(IO::kFileNotFound);
    if (error == std::errc::permission_denied)
        return task.Failed(IO::kOpenRefused);
    if (status.type() == std::filesystem::file_type::none)
        return SystemFailure(error.value(), IO::kFileSystemFailed, task.operation, task.subject);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return task.Failed(kNotAFile);
    return OpenedBy(File::At(path), task);
}
catch (std::bad_alloc const&)
{
    return task.Failed(kOutOfResources, "not enough memory");
}

inline Result<DataProvider> OpenToLoad(URI const& uri, Task const& task)
try
{
    if (uri.Scheme() != "file")
        return OpenedBy(File::At(uri), task);
    Result<std::filesystem::path> const path = LocalPath(uri, task);
    return path ? OpenToLoad(*path, task) : Result<DataProvider>(path.error());
}
catch (std::bad_alloc const&)
{
    return task.Failed(kOutOfResources, "not enough memory");
}

/// The state of the content that is read from the provider, whose position goes back to the start.
inline Result<FileState> StateOf(DataProvider provider)
{
    FileState state = FileState::Of({});
    std::array<std::byte, 0x10000> piece;
    for (;;)
    {
        Result<std::size_t> const count = provider.Read(piece);
        if (!count)
            return count.error();
        state.Add(std::span(piece).first(*count));
        if (*count < piece.size())
            break;
    }
    Result<void> const back = provider.Seek(0);
    return back ? Result<FileState>(state) : back.error();
}
} // namespace KORVA::CXX::DETAIL
