// The peer of the file's channel: the system's positional read, nothing around it.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace PEERS
{
class PlainFile
{
public:
    explicit PlainFile(std::string const& path) : mDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    PlainFile(PlainFile const&) = delete;
    PlainFile& operator=(PlainFile const&) = delete;
    ~PlainFile() { close(mDescriptor); }

    bool Read(std::int64_t offset, void* buffer, std::size_t length) const
    {
        return pread(mDescriptor, buffer, length, offset) == static_cast<ssize_t>(length);
    }

private:
    int mDescriptor;
};
} // namespace PEERS
