// A directory for the files of one test.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace KORVA::TESTS
{
/// Made on construction, open to every user, removed with all that is in it on destruction.
class TemporaryDirectory
{
public:
    TemporaryDirectory();
    TemporaryDirectory(TemporaryDirectory const&) = delete;
    TemporaryDirectory& operator=(TemporaryDirectory const&) = delete;
    ~TemporaryDirectory();

    std::filesystem::path const& Path() const { return mPath; }

    /// Writes a file of that name and gives its path.
    std::filesystem::path File(std::string const& name, std::string_view content) const;

private:
    std::filesystem::path mPath;
};

/// The whole file.
std::string Content(std::filesystem::path const& path);
} // namespace KORVA::TESTS
