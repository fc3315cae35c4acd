// Files for schemes of a test's own.
#pragma once

#include "FileFakes.h"

#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IURIRegistry.h>

namespace KORVA::TESTS
{
inline constexpr GUID kOneClass{0x0A000001, 0x1111, 0x4222, {0x83, 0x33, 0x44, 0x44, 0x44, 0x44, 0x44, 0x01}};
inline constexpr GUID kOtherClass{
    0x0A000001, 0x1111, 0x4222, {0x83, 0x33, 0x44, 0x44, 0x44, 0x44, 0x44, 0x02}};
inline constexpr GUID kUnmadeClass{
    0x0A000001, 0x1111, 0x4222, {0x83, 0x33, 0x44, 0x44, 0x44, 0x44, 0x44, 0x03}};

/// What the served files of a test answer, and what became of them.
struct ServedFiles
{
    ErrCode initResult = 0;
    int alive = 0;
    int inits = 0;
    IO::IURI* uri = nullptr;
    IO::IReporter* reporter = nullptr;
};

class ServedFile final : public TObject<IO::IURIFile>
{
public:
    ServedFile(ServedFiles& files, GUID const& servedClass) : classId(servedClass), mFiles(files)
    {
        ++mFiles.alive;
    }

    ErrCode Init(IO::IURI& uri, IO::IReporter* reporter) override
    {
        ++mFiles.inits;
        mFiles.uri = &uri;
        mFiles.reporter = reporter;
        return mFiles.initResult;
    }
    ErrCode Read(TInterfacePtr<IO::IDataProviderStream>&) const override { return 1; }
    ErrCode Write(TInterfacePtr<IO::IDataProviderStream>&) const override { return 1; }
    bool Exists() const override { return false; }
    ErrCode Create() override { return 1; }
    ErrCode Delete() override { return 1; }
    ErrCode Copy(IURIFile const&) override { return 1; }
    TInterfacePtr<IO::IURI> GetURI() const override { return {}; }
    ErrCode GetModificationDate(uint64&) const override { return 1; }
    ErrCode SetModificationDate(uint64&) override { return 1; }
    ErrCode GetCreationDate(uint64&) const override { return 1; }
    ErrCode SetCreationDate(uint64&) override { return 1; }
    ErrCode GetAttribute(IO::FileAttribute, bool&) const override { return 1; }
    ErrCode SetAttribute(IO::FileAttribute, bool) override { return 1; }
    ErrCode GetSize(uint64&) const override { return 1; }

    GUID const classId;

private:
    ~ServedFile() override { --mFiles.alive; }

    ServedFiles& mFiles;
};

class ServingFactory final : public TObject<IClassFactory>
{
public:
    explicit ServingFactory(ServedFiles& files) : mFiles(files) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        bool const makes = classId == kOneClass || classId == kOtherClass;
        *out = makes ? new ServedFile(mFiles, classId) : nullptr;
        return makes ? 0 : -1004;
    }

private:
    ServedFiles& mFiles;
};

/// The library, and a factory of files for the two classes.
class ServedFilesTest : public LibraryTest
{
protected:
    ServedFilesTest() : uriRegistry(COREREGISTRY::CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY))
    {
        TInterfacePtr<IClassFactory> factory;
        factory.Adopt(new ServingFactory(served));
        EXPECT_EQ(Registry()->RegisterFactory(factory.Get()), 0);
    }
    ~ServedFilesTest() override
    {
        EXPECT_EQ(uriRegistry->SetDefaultReporter(nullptr), 0);
        EXPECT_EQ(served.alive, 0) << "files that nobody released";
    }

    /// The scheme, mapped to the class by this test or an earlier run of it.
    void Map(char const* scheme, GUID const& classId) const
    {
        EXPECT_EQ(uriRegistry->Register(STRING::CoreString(scheme), classId), 0);
    }

    static GUID ClassOf(IO::IURIFilePtr const& file)
    {
        auto const* const known = dynamic_cast<ServedFile const*>(file.Get());
        return known ? known->classId : GUID{};
    }

    ServedFiles served;
    TInterfacePtr<IO::IURIRegistry> uriRegistry;
};
} // namespace KORVA::TESTS
