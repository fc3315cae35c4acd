// A relative URI saved by one user and loaded by another, whose directories lie elsewhere.
#include "Companions/FileIO/Environment.h"
#include "DirFakes.h"
#include "Support/TemporaryDirectory.h"

#include <filesystem>
#include <fstream>

namespace KORVA
{
namespace
{
using namespace TESTS;
namespace fs = std::filesystem;

/// Two users, two homes, the real system directories.
class TwoHomes : public SerializationTest
{
protected:
    TwoHomes()
    {
        fs::create_directories(mFirst.Path() / ".config");
        mFirst.File(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n");
        fs::create_directories(mSecond.Path() / "config");
        mSecond.File("config/user-dirs.dirs", "# Elsewhere\n"
                                              "XDG_DOCUMENTS_DIR=\"$HOME/Papers/Mine\"\n"
                                              "XDG_MUSIC_DIR=\"$HOME/Sound/\"\n");
    }

    std::string First(std::string const& name) const { return mFirst.Path().string() + name; }
    std::string Second(std::string const& name) const { return mSecond.Path().string() + name; }

    void LogInFirst() const
    {
        Environment::Clear();
        Environment::Set("HOME", First(""));
    }

    void LogInSecond() const
    {
        Environment::Clear();
        Environment::Set("HOME", Second("/"));
        Environment::Set("XDG_CONFIG_HOME", Second("/config"));
        Environment::Set("XDG_DATA_HOME", Second("/data/"));
    }

    static void Write(std::string const& path, std::string_view content)
    {
        fs::create_directories(fs::path(path).parent_path());
        std::ofstream(path) << content;
    }

    static std::string BaseOf(IO::IRelativeURI const& uri)
    {
        FILE_SYS::IDir* dir = nullptr;
        uri.GetBaseDir(&dir);
        CoreString path;
        if (!dir)
            return "none";
        EXPECT_EQ(dir->GetPath(1, path), 0);
        return path.ToUTF8();
    }

private:
    Environment mEnvironment;
    TemporaryDirectory mFirst;
    TemporaryDirectory mSecond;
};

struct Row
{
    char const* name;
    int32 type;
    /// From the directory; or, with a home in front, absolute.
    char const* path;
    bool8 pathIsRelative;
    char const* relPath;
    /// All below the home of the one or the other.
    char const* first;
    char const* secondBase;
    char const* second;
};

class TwoHomesTest : public TwoHomes, public ::testing::WithParamInterface<Row>
{
};

TEST_P(TwoHomesTest, NamesTheSecondUsersFile)
{
    Row const& row = GetParam();
    auto const type = static_cast<FILE_SYS::DirType>(row.type);
    Write(First(row.first), "first");
    Write(Second(row.second), "second");

    LogInFirst();
    auto const saved = CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    CoreString const path(std::string_view(row.pathIsRelative ? std::string(row.path) : First(row.path)));
    EXPECT_EQ(saved->Init(type, CoreString(u"file"), CoreString(), 0, path, row.pathIsRelative), 0);
    EXPECT_EQ(saved->GetPath().ToUTF8(), First(row.first));
    EXPECT_EQ(Content(saved->GetPath().ToUTF8()), "first");
    Bytes const record = RecordOf(kReversed, *saved);

    LogInSecond();
    auto const loaded = Load<IO::IRelativeURI>(kReversed, record);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(BaseOf(*loaded), Second(row.secondBase));
    EXPECT_EQ(loaded->GetRelPath().ToUTF8(), row.relPath);
    EXPECT_EQ(loaded->GetPath().ToUTF8(), "/") << "the full path is not put together anew";

    auto const anew = CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    EXPECT_EQ(anew->Init(type, loaded->GetScheme(), loaded->GetHost(), loaded->GetPortNumber(),
                         loaded->GetRelPath(), true),
              0);
    EXPECT_EQ(anew->GetPath().ToUTF8(), Second(row.second));
    EXPECT_EQ(Content(anew->GetPath().ToUTF8()), "second");
    EXPECT_EQ(RecordOf(kReversed, *anew), record) << "what is stored is the same for either";

    // The first user's object is as it was.
    EXPECT_EQ(saved->GetPath().ToUTF8(), First(row.first));
}

Row const kRows[] = {
    {"InDocuments", 3, "sub/f.txt", true, "sub/f.txt", "/Documents/sub/f.txt", "/Papers/Mine",
     "/Papers/Mine/sub/f.txt"},
    {"BesideDocuments", 3, "/Notes/f.txt", false, "../Notes/f.txt", "/Notes/f.txt", "/Papers/Mine",
     "/Papers/Notes/f.txt"},
    {"InTheHome", 1, "f.txt", true, "f.txt", "/f.txt", "", "/f.txt"},
    {"InMusic", 5, "f.txt", true, "f.txt", "/Music/f.txt", "/Sound", "/Sound/f.txt"},
    {"InPictures", 6, "f.txt", true, "f.txt", "/Pictures/f.txt", "/Pictures", "/Pictures/f.txt"},
    {"InUserData", 10, "app/f.txt", true, "app/f.txt", "/.local/share/app/f.txt", "/data", "/data/app/f.txt"},
    {"InUserConfiguration", 11, "app/f.txt", true, "app/f.txt", "/.config/app/f.txt", "/config",
     "/config/app/f.txt"},
    {"InTheCache", 12, "f.txt", true, "f.txt", "/.cache/f.txt", "/.cache", "/.cache/f.txt"},
    {"InState", 13, "f.txt", true, "f.txt", "/.local/state/f.txt", "/.local/state", "/.local/state/f.txt"},
};
INSTANTIATE_TEST_SUITE_P(Rows, TwoHomesTest, ::testing::ValuesIn(kRows), RowName());

TEST_F(TwoHomes, UsedObjectKeepsTheFormerUsersPathUntilItIsInitialised)
{
    LogInFirst();
    auto const uri = CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    EXPECT_EQ(
        uri->Init(FILE_SYS::kDocumentsDir, CoreString(u"file"), CoreString(), 0, CoreString(u"f"), true), 0);
    Bytes const body = BodyOf(kNative, *uri);

    LogInSecond();
    PersistenceOf(*uri)->Read(*MakeStream(*MakeMemory(kNative, body)));
    EXPECT_EQ(uri->GetPath().ToUTF8(), First("/Documents/f"));
    EXPECT_EQ(BaseOf(*uri), Second("/Papers/Mine"));
    EXPECT_EQ(
        uri->Init(FILE_SYS::kDocumentsDir, CoreString(u"file"), CoreString(), 0, uri->GetRelPath(), true), 0);
    EXPECT_EQ(uri->GetPath().ToUTF8(), Second("/Papers/Mine/f"));
}

// Whoever takes a URI takes this one, too.
TEST_F(TwoHomes, ProviderOpensWhatItNames)
{
    LogInFirst();
    Write(First("/Documents/f.txt"), "first");
    auto const uri = CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    EXPECT_EQ(
        uri->Init(FILE_SYS::kDocumentsDir, CoreString(u"file"), CoreString(), 0, CoreString(u"f.txt"), true),
        0);
    auto const provider = CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
    ASSERT_EQ(provider->InitURIBased(*uri, IO::kStreamRead, nullptr), 0);
    EXPECT_EQ(ToHex(BytesOf(*provider)), "66 69 72 73 74");
}

TEST_F(TwoHomes, TypeWithoutADirectoryIsLogged)
{
    LogInFirst();
    auto const uri = CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    EXPECT_EQ(uri->Init(FILE_SYS::kNoDir, CoreString(u"file"), CoreString(), 0, CoreString(u"f"), true), 0);
    EXPECT_EQ(
        log.Take(),
        (std::vector<Logged>{
            {"Core/Libraries/Tessaro/Source/src/RelativeURI",
             "virtual FILE_SYS::ErrCode KORVA::IO::RelativeURI::Init(FILE_SYS::DirType, const "
             "STRING::CoreString &, const STRING::CoreString &, uint32, const STRING::CoreString &, bool8)",
             173, "ISystemDirContainer returned NULL IDir"}}));
    EXPECT_EQ(uri->GetPath().ToUTF8(), "");
}
} // namespace
} // namespace KORVA
