// File objects as a client gets them, in a directory of the test's own.
#pragma once

#include "Support/LogCapture.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/FileIO/IFile.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

extern "C" int KorvaPlugInInit(KORVA::COREREGISTRY::ICoreRegistry*);
extern "C" int KorvaPlugInShutdown(KORVA::COREREGISTRY::ICoreRegistry*);

namespace KORVA::TESTS
{
namespace fs = std::filesystem;

class FileTest : public ::testing::Test
{
protected:
    FileTest()
    {
        registry.Adopt(COREREGISTRY::CreateCoreRegistry());
        COREREGISTRY::InstallCoreRegistry(registry.Get());
        EXPECT_EQ(KorvaPlugInInit(registry.Get()), 0);
        // Files get exactly the permissions that a test gives them.
        umask(022);
    }

    ~FileTest() override
    {
        KorvaPlugInShutdown(registry.Get());
        COREREGISTRY::InstallCoreRegistry(nullptr);
    }

    fs::path Path(std::string const& name) const { return directory.Path() / name; }

    static STRING::CoreString Text(fs::path const& path)
    {
        return STRING::CoreString(std::string_view(path.native()));
    }

    /// A file object that is not bound.
    static FILE_SYS::IFilePtr Unbound()
    {
        return COREREGISTRY::CreateObject<FILE_SYS::IFile>(FILE_SYS::IID_IFILE);
    }

    static FILE_SYS::IFilePtr At(fs::path const& path)
    {
        FILE_SYS::IFilePtr file = Unbound();
        EXPECT_TRUE(file->BindPath(Text(path)));
        return file;
    }

    FILE_SYS::IFilePtr Bound(std::string const& name) const { return At(Path(name)); }

    static mode_t ModeOf(fs::path const& path)
    {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_mode & 07777;
    }

    static ino_t InodeOf(fs::path const& path)
    {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_ino;
    }

    /// What the directory holds, sorted: a temporary left behind would be among it.
    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (auto const& entry : fs::directory_iterator(directory.Path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    using List = std::vector<std::string>;

    LogCapture log;
    TemporaryDirectory directory;
    TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
};
} // namespace KORVA::TESTS
