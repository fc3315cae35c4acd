#include "Support/TemporaryDirectory.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace KORVA::TESTS
{
namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory()
{
    std::string name = (fs::temp_directory_path() / "tessio-test-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary directory");
    // Short and without links, so that tests can compare paths.
    mPath = fs::canonical(name);
    fs::permissions(mPath, fs::perms::all);
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

fs::path TemporaryDirectory::File(std::string const& name, std::string_view content) const
{
    fs::path const path = mPath / name;
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
    return path;
}

std::string Content(fs::path const& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
} // namespace KORVA::TESTS
