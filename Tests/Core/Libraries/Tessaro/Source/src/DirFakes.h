// System directories that lie where a test wants them, and relative URIs in them.
#pragma once

#include "Serialization.h"
#include <tessio/FileIO/ISystemDirContainer.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IRelativeURI.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
/// The directory types of these tests; what lies behind them is the fake's business alone.
inline constexpr auto kDesktop = static_cast<FILE_SYS::DirType>(2);
inline constexpr auto kDocuments = static_cast<FILE_SYS::DirType>(3);
inline constexpr auto kUnknown = static_cast<FILE_SYS::DirType>(77);

/// What the registry and the container of a test answer, and what became of the objects.
struct DirScript
{
    /// The registry's answer to whom wants a container; one is made where it is 0.
    ErrCode registryCode = 0;
    /// The registry answers 0 and gives nothing.
    bool givesNothing = false;
    /// No directory for any other type.
    std::map<int32, std::string> paths = {{2, "/Users/u/Desktop"}, {3, "/Users/u/Documents"}};
    /// Given in place of a new directory where it is set.
    FILE_SYS::IDirPtr shared;

    int containersMade = 0;
    int containersAlive = 0;
    int dirsAlive = 0;
    /// The types that containers were asked for, in order.
    std::vector<int32> asked;
    /// The flags that came with a question for a path, other than 1.
    std::vector<int> oddFlags;
};

class FakeDir final : public TObject<FILE_SYS::IDir>
{
public:
    FakeDir(DirScript& script, std::string path) : mScript(script), mPath(std::move(path))
    {
        ++mScript.dirsAlive;
    }

    ErrCode GetPath(int flag, CoreString& path) const override
    {
        if (flag != 1)
            mScript.oddFlags.push_back(flag);
        path = CoreString(std::string_view(mPath));
        return 0;
    }

private:
    ~FakeDir() override { --mScript.dirsAlive; }

    DirScript& mScript;
    std::string mPath;
};

/// Owns the directories that it gives away: who wants to keep one longer takes a reference.
class FakeContainer final : public TObject<FILE_SYS::ISystemDirContainer>
{
public:
    explicit FakeContainer(DirScript& script) : mScript(script)
    {
        ++mScript.containersMade;
        ++mScript.containersAlive;
    }

    FILE_SYS::IDir* GetDir(FILE_SYS::DirType type) override
    {
        mScript.asked.push_back(type);
        if (mScript.shared)
            return mScript.shared.Get();
        auto const found = mScript.paths.find(type);
        if (found == mScript.paths.end())
            return nullptr;
        mDirs.emplace_back().Adopt(new FakeDir(mScript, found->second));
        return mDirs.back().Get();
    }

private:
    ~FakeContainer() override { --mScript.containersAlive; }

    DirScript& mScript;
    std::vector<FILE_SYS::IDirPtr> mDirs;
};

/// Makes directory containers by the script and anything else as the registry behind it.
class FakeRegistry final : public TObject<COREREGISTRY::ICoreRegistry>
{
public:
    FakeRegistry(DirScript& script, COREREGISTRY::ICoreRegistry* behind) : mScript(script)
    {
        mBehind.Share(behind);
    }

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        constexpr GUID kContainer{
            0xAEEF6E20, 0x3F08, 0x41B5, {0xB4, 0x60, 0xBA, 0x2E, 0x28, 0x8A, 0x76, 0x51}};
        if (!(classId == kContainer))
            return mBehind->CreateInstance(classId, out);
        bool const makes = mScript.registryCode == 0 && !mScript.givesNothing;
        *out = makes ? new FakeContainer(mScript) : nullptr;
        return mScript.registryCode;
    }

    int RegisterFactory(IClassFactory* factory) override { return mBehind->RegisterFactory(factory); }
    int UnregisterFactory(IClassFactory* factory) override { return mBehind->UnregisterFactory(factory); }

private:
    DirScript& mScript;
    TInterfacePtr<COREREGISTRY::ICoreRegistry> mBehind;
};

/// All that a relative URI holds and shows.
struct RelativeState
{
    std::string scheme;
    std::string host;
    uint32 port = 0;
    std::string path;
    std::string relPath;
    /// The directory's path; "none" without one.
    std::string base = "none";
    int32 type = 0;

    friend bool operator==(RelativeState const&, RelativeState const&) = default;

    friend std::ostream& operator<<(std::ostream& out, RelativeState const& state)
    {
        return out << "\n  {scheme " << state.scheme << " | host " << state.host << " | port " << state.port
                   << " | path " << state.path << " | relative " << state.relPath << " | base " << state.base
                   << " | type " << state.type << "}";
    }
};

/// The library with system directories of the test's own.
class RelativeURITest : public SerializationTest
{
protected:
    RelativeURITest()
    {
        TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
        registry.Adopt(new FakeRegistry(script, Registry()));
        COREREGISTRY::InstallCoreRegistry(registry.Get());
    }

    ~RelativeURITest() override
    {
        script.shared.Reset();
        COREREGISTRY::InstallCoreRegistry(Registry());
        EXPECT_EQ(script.containersAlive, 0) << "containers that nobody released";
        EXPECT_EQ(script.dirsAlive, 0) << "directories that nobody released";
        EXPECT_EQ(script.oddFlags, std::vector<int>());
    }

    /// Without any registry, as long as it lives.
    class NoRegistry
    {
    public:
        NoRegistry()
        {
            mBefore.Share(COREREGISTRY::GetCoreRegistry());
            COREREGISTRY::InstallCoreRegistry(nullptr);
        }
        NoRegistry(NoRegistry const&) = delete;
        NoRegistry& operator=(NoRegistry const&) = delete;
        ~NoRegistry() { COREREGISTRY::InstallCoreRegistry(mBefore.Get()); }

    private:
        TInterfacePtr<COREREGISTRY::ICoreRegistry> mBefore;
    };

    static IO::IRelativeURIPtr NewRelative()
    {
        constexpr GUID kRelative{
            0x4E278406, 0x081C, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}};
        return CreateObject<IO::IRelativeURI>(kRelative);
    }

    /// Anchored at the directory, by a relative path.
    static IO::IRelativeURIPtr Below(FILE_SYS::DirType type, std::string_view path)
    {
        auto uri = NewRelative();
        EXPECT_EQ(uri->Init(type, CoreString(u"file"), CoreString(u"h"), 80, CoreString(path), true), 0);
        return uri;
    }

    /// Anchored at the directory, by an absolute path.
    static IO::IRelativeURIPtr Beside(FILE_SYS::DirType type, std::string_view path)
    {
        auto uri = NewRelative();
        InitBeside(*uri, type, path);
        return uri;
    }

    static void InitBelow(IO::IRelativeURI& uri, FILE_SYS::DirType type, std::string_view path)
    {
        EXPECT_EQ(uri.Init(type, CoreString(u"file"), CoreString(u"h"), 80, CoreString(path), true), 0);
    }

    static void InitBeside(IO::IRelativeURI& uri, FILE_SYS::DirType type, std::string_view path)
    {
        EXPECT_EQ(uri.Init(type, CoreString(u"file"), CoreString(u"h"), 80, CoreString(path), false), 0);
    }

    static FILE_SYS::IDir* BaseOf(IO::IRelativeURI const& uri)
    {
        FILE_SYS::IDir* dir = nullptr;
        uri.GetBaseDir(&dir);
        return dir;
    }

    static std::string NameOf(IO::IURI const& uri)
    {
        CoreString name(u"what stood here before");
        uri.GetName(name);
        return name.ToUTF8();
    }

    static RelativeState StateOf(IO::IRelativeURI const& uri)
    {
        EXPECT_EQ(uri.GetAbsoluteString().ToUTF8(), "");
        EXPECT_EQ(uri.GetQuery().ToUTF8(), "");
        RelativeState state;
        state.scheme = uri.GetScheme().ToUTF8();
        state.host = uri.GetHost().ToUTF8();
        state.port = uri.GetPortNumber();
        state.path = uri.GetPath().ToUTF8();
        state.relPath = uri.GetRelPath().ToUTF8();
        if (FILE_SYS::IDir const* const dir = BaseOf(uri))
        {
            CoreString path;
            EXPECT_EQ(dir->GetPath(1, path), 0);
            state.base = path.ToUTF8();
        }
        // Nothing but the last four bytes of the body tells the type.
        Bytes const body = BodyOf(kNative, uri);
        if (body.size() < 20)
            ADD_FAILURE() << "body of " << body.size() << " bytes";
        else
            for (std::size_t i = 0; i < 4; ++i)
                state.type |= static_cast<int32>(static_cast<uint32>(body[body.size() - 4 + i]) << (8 * i));
        return state;
    }

    DirScript script;
};

template <class Row>
class RelativeURITestWith : public RelativeURITest, public ::testing::WithParamInterface<Row>
{
};
} // namespace KORVA::TESTS
