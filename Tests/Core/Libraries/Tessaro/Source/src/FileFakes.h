// File objects that answer what a test wants and remember what they were asked.
#pragma once

#include "Support/Library.h"

#include "FileProxy.h"
#include <tessio/FileIO/IFile.h>
#include <tessio/ObjectModel/IClassFactory.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/TessIO.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace KORVA::TESTS
{
/// What all the file objects of a test answer, and what became of them.
struct FileScript
{
    /// How many objects the factory makes before it refuses.
    int supply = 1000;
    /// The first object whose path can't be bound; 0 for none.
    int unboundFrom = 0;
    bool exists = true;
    /// The status of every operation that has no answer of its own below.
    FILE_SYS::ErrCode status = 0;
    FILE_SYS::ErrCode permissionStatus = 0;
    uchar permissions[3] = {0, 0, 0};
    FILE_SYS::ErrCode flagStatus = 0;
    uchar flag = 0;
    /// What dates and sizes become.
    uint64 value = 0;

    int made = 0;
    int alive = 0;
    /// "1 bind /a": the object's number, the operation and its path.
    std::vector<std::string> calls;
    /// The caller's variable as the last operation on a date or size saw it.
    uint64 const* variable = nullptr;
    uint64 before = 0;
};

class FakeFile final : public TObject<FILE_SYS::IFile>
{
public:
    explicit FakeFile(FileScript& script) : mScript(script), mNumber(++script.made) { ++mScript.alive; }

    bool BindPath(STRING::CoreString const& path) override
    {
        Called("bind " + path.ToUTF8());
        return mScript.unboundFrom == 0 || mNumber < mScript.unboundFrom;
    }
    bool Exists() override
    {
        Called("exists");
        return mScript.exists;
    }
    FILE_SYS::ErrCode QueryFlag(uchar& flag) override
    {
        // What the caller left in it comes from nowhere else.
        Called(flag == 0 ? "flag" : "flag into a byte that was set");
        flag = mScript.flag;
        return mScript.flagStatus;
    }
    FILE_SYS::ErrCode ReadPermissions(uchar (&permissions)[3]) override
    {
        bool const clear = permissions[0] == 0 && permissions[1] == 0 && permissions[2] == 0;
        Called(clear ? "permissions" : "permissions into bytes that were set");
        for (int i = 0; i < 3; ++i)
            permissions[i] = mScript.permissions[i];
        return mScript.permissionStatus;
    }
    FILE_SYS::ErrCode Create() override { return Status("create"); }
    FILE_SYS::ErrCode Delete() override { return Status("delete"); }
    FILE_SYS::ErrCode GetSize(uint64& size) override { return Status("size", size); }
    FILE_SYS::ErrCode GetModificationDate(uint64& date) override { return Status("get modification", date); }
    FILE_SYS::ErrCode SetModificationDate(uint64& date) override { return Status("set modification", date); }
    FILE_SYS::ErrCode GetCreationDate(uint64& date) override { return Status("get creation", date); }
    FILE_SYS::ErrCode SetCreationDate(uint64& date) override { return Status("set creation", date); }
    FILE_SYS::ErrCode CopyTo(STRING::CoreString const& target) override
    {
        return Status("copy " + target.ToUTF8());
    }
    FILE_SYS::ErrCode MoveTo(STRING::CoreString const& target) override
    {
        return Status("move " + target.ToUTF8());
    }
    FILE_SYS::ErrCode Sync() override { return Status("sync"); }
    FILE_SYS::ErrCode Replace(void const*, uint64) override { return Status("replace"); }

private:
    ~FakeFile() override { --mScript.alive; }

    void Called(std::string const& what) { mScript.calls.push_back(std::to_string(mNumber) + " " + what); }

    FILE_SYS::ErrCode Status(std::string const& what)
    {
        Called(what);
        return mScript.status;
    }

    FILE_SYS::ErrCode Status(std::string const& what, uint64& value)
    {
        mScript.variable = &value;
        mScript.before = value;
        value = mScript.value;
        return Status(what);
    }

    FileScript& mScript;
    int mNumber;
};

class FakeFileFactory final : public TObject<IClassFactory>
{
public:
    explicit FakeFileFactory(FileScript& script) : mScript(script) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        bool const makes = classId == FILE_SYS::IID_IFILE && mScript.made < mScript.supply;
        *out = makes ? new FakeFile(mScript) : nullptr;
        return makes ? 0 : -1004;
    }

private:
    FileScript& mScript;
};

/// A reporter that can be counted.
class CountedReporter final : public TObject<IO::IReporter>
{
public:
    void Report(IO::IURI* uri, OperationId result, ErrCode detail) override
    {
        ++reports;
        lastURI = uri;
        lastResult = result;
        lastDetail = detail;
    }

    int reports = 0;
    IO::IURI* lastURI = nullptr;
    OperationId lastResult = 0;
    ErrCode lastDetail = 0;
};

/// How many references there are to an object.
inline int32 CountOf(IObject& object)
{
    object.AddRef();
    return object.Release();
}

inline TInterfacePtr<IO::IURIFile> NewProxy()
{
    TInterfacePtr<IO::IURIFile> proxy;
    proxy.Adopt(IO::CreateFileProxy());
    return proxy;
}

inline TInterfacePtr<IO::IURIFile> ProxyFor(IO::IURI& uri, IO::IReporter* reporter = nullptr)
{
    auto proxy = NewProxy();
    EXPECT_EQ(proxy->Init(uri, reporter), 0);
    return proxy;
}

/// The library in a registry whose file objects are fakes.
class FakeFileTest : public LibraryTest
{
protected:
    FakeFileTest()
    {
        TInterfacePtr<IClassFactory> factory;
        factory.Adopt(new FakeFileFactory(script));
        mRegistry.Adopt(COREREGISTRY::CreateCoreRegistry());
        EXPECT_EQ(mRegistry->RegisterFactory(factory.Get()), 0);
        EXPECT_EQ(IO::Init(mRegistry.Get()), 0);
        COREREGISTRY::InstallCoreRegistry(mRegistry.Get());
    }
    ~FakeFileTest() override { EXPECT_EQ(script.alive, 0) << "file objects that nobody released"; }

    TInterfacePtr<IO::IURIFile> Proxy() { return ProxyFor(*MakeURI("/a")); }

    FileScript script;

private:
    TInterfacePtr<COREREGISTRY::ICoreRegistry> mRegistry;
};
} // namespace KORVA::TESTS
