// What is logged and answered, and what stays, where a relative URI can't be anchored.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/RelativeURI";
constexpr char kInitSignature[] =
    "virtual FILE_SYS::ErrCode KORVA::IO::RelativeURI::Init(FILE_SYS::DirType, const STRING::CoreString &, "
    "const STRING::CoreString &, uint32, const STRING::CoreString &, bool8)";

Logged NoContainer(std::string const& code)
{
    return {kSource, kInitSignature, 143, "RelativeURI could not be manufactured. FILE_SYS::ErrCode " + code};
}

Logged NoDirectory() { return {kSource, kInitSignature, 173, "ISystemDirContainer returned NULL IDir"}; }

using Messages = std::vector<Logged>;

class RelativeURIFailuresTest : public RelativeURITest
{
protected:
    static FILE_SYS::ErrCode InitOther(IO::IRelativeURI& uri, FILE_SYS::DirType type, bool8 pathIsRelative)
    {
        return uri.Init(type, CoreString(u"ftp"), CoreString(u"other"), 21,
                        CoreString(u"/Users/u/Desktop/new"), pathIsRelative);
    }
};

TEST_F(RelativeURIFailuresTest, InitByTextChangesNothing)
{
    Messages const expected{{kSource, "virtual void KORVA::IO::RelativeURI::Init(const STRING::CoreString &)",
                             47, "Invalid init for a relative URI"}};
    auto const uri = NewRelative();
    RelativeState const before = StateOf(*uri);
    for (char16_t const* const text : {u"/Users/u/f", u"file:///f", u""})
    {
        uri->Init(CoreString(text));
        EXPECT_EQ(log.Take(), expected);
        EXPECT_EQ(StateOf(*uri), before);
    }

    auto const used = Beside(kDocuments, "/Users/u/Desktop/f");
    used->Init(CoreString(u"/Users/u/g"));
    EXPECT_EQ(log.Take(), expected);
    EXPECT_EQ(StateOf(*used), (RelativeState{"file", "h", 80, "/Users/u/Desktop/f", "../Desktop/f",
                                             "/Users/u/Documents", 3}));
    EXPECT_EQ(script.containersMade, 1);
}

TEST_F(RelativeURIFailuresTest, InitRelativeChangesNothing)
{
    Messages const expected{{kSource,
                             "virtual void KORVA::IO::RelativeURI::InitRelative(const KORVA::IO::IURI &, "
                             "const STRING::CoreString &)",
                             52, "Invalid init for a relative URI"}};
    auto const uri = NewRelative();
    RelativeState const before = StateOf(*uri);
    uri->InitRelative(*MakeURI("/Users/u"), CoreString(u"f"));
    EXPECT_EQ(log.Take(), expected);
    EXPECT_EQ(StateOf(*uri), before);

    auto const used = Beside(kDocuments, "/Users/u/Desktop/f");
    used->InitRelative(*used, CoreString(u"g"));
    EXPECT_EQ(log.Take(), expected);
    EXPECT_EQ(StateOf(*used), (RelativeState{"file", "h", 80, "/Users/u/Desktop/f", "../Desktop/f",
                                             "/Users/u/Documents", 3}));
    EXPECT_EQ(script.containersMade, 1);
}

TEST_F(RelativeURIFailuresTest, BaseInterfaceReachesThem)
{
    auto const uri = Below(kDocuments, "f");
    IO::IURI& base = *uri;
    base.Init(CoreString(u"/g"));
    base.InitRelative(base, CoreString(u"g"));
    auto const messages = log.Take();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].line, 47);
    EXPECT_EQ(messages[1].line, 52);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/Users/u/Documents/f");
}

struct CodeRow
{
    char const* name;
    ErrCode code;
    char const* text;
    bool8 pathIsRelative;
};

class NoContainerTest : public RelativeURIFailuresTest, public ::testing::WithParamInterface<CodeRow>
{
};

TEST_P(NoContainerTest, AnswersTheRegistrysCode)
{
    CodeRow const& row = GetParam();
    auto const uri = NewRelative();
    auto const used = Below(kDocuments, "a/f");
    script.registryCode = row.code;

    EXPECT_EQ(InitOther(*uri, kDesktop, row.pathIsRelative), row.code);
    EXPECT_EQ(log.Take(), Messages{NoContainer(row.text)});
    EXPECT_EQ(StateOf(*uri), (RelativeState{"ftp", "other", 21, "", "", "none", 2}));

    EXPECT_EQ(InitOther(*used, kDesktop, row.pathIsRelative), row.code);
    EXPECT_EQ(log.Take(), Messages{NoContainer(row.text)});
    EXPECT_EQ(StateOf(*used),
              (RelativeState{"ftp", "other", 21, "/Users/u/Documents/a/f", "a/f", "/Users/u/Documents", 2}));

    // It is no worse for it.
    script.registryCode = 0;
    InitBelow(*used, kDesktop, "g");
    EXPECT_EQ(StateOf(*used),
              (RelativeState{"file", "h", 80, "/Users/u/Desktop/g", "g", "/Users/u/Desktop", 2}));
}

CodeRow const kCodes[] = {
    {"UnknownClass", -1004, "-1004", true},
    {"UnknownClassAbsolute", -1004, "-1004", false},
    {"Positive", 35, "35", true},
    {"PositiveAbsolute", 35, "35", false},
    {"Greatest", 2147483647, "2147483647", true},
    {"Least", -2147483647 - 1, "-2147483648", false},
};
INSTANTIATE_TEST_SUITE_P(Codes, NoContainerTest, ::testing::ValuesIn(kCodes), RowName());

TEST_F(RelativeURIFailuresTest, RealRegistryWithoutTheFileSystem)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> empty;
    empty.Adopt(COREREGISTRY::CreateCoreRegistry());
    auto const uri = NewRelative();
    TInterfacePtr<COREREGISTRY::ICoreRegistry> before;
    before.Share(COREREGISTRY::GetCoreRegistry());
    COREREGISTRY::InstallCoreRegistry(empty.Get());
    EXPECT_EQ(InitOther(*uri, kDesktop, true), -1004);
    COREREGISTRY::InstallCoreRegistry(before.Get());
    EXPECT_EQ(log.Take(), Messages{NoContainer("-1004")});
}

TEST_F(RelativeURIFailuresTest, NoRegistryAtAll)
{
    auto const uri = Below(kDocuments, "a/f");
    {
        NoRegistry const none;
        EXPECT_EQ(InitOther(*uri, kDesktop, true), 12);
        EXPECT_EQ(InitOther(*uri, kDesktop, false), 12);
    }
    EXPECT_EQ(log.Take(), (Messages{NoContainer("12"), NoContainer("12")}));
    EXPECT_EQ(StateOf(*uri),
              (RelativeState{"ftp", "other", 21, "/Users/u/Documents/a/f", "a/f", "/Users/u/Documents", 2}));
}

TEST_F(RelativeURIFailuresTest, RegistryThatGivesNothing)
{
    script.givesNothing = true;
    auto const uri = NewRelative();
    EXPECT_EQ(InitOther(*uri, kDesktop, true), 12);
    EXPECT_EQ(log.Take(), Messages{NoContainer("12")});
    EXPECT_EQ(StateOf(*uri), (RelativeState{"ftp", "other", 21, "", "", "none", 2}));
}

// Success is answered all the same.
TEST_F(RelativeURIFailuresTest, NoDirectoryOfThatType)
{
    for (bool8 const pathIsRelative : {true, false})
    {
        auto const uri = NewRelative();
        EXPECT_EQ(InitOther(*uri, kUnknown, pathIsRelative), 0);
        EXPECT_EQ(log.Take(), Messages{NoDirectory()});
        EXPECT_EQ(StateOf(*uri), (RelativeState{"ftp", "other", 21, "", "", "none", 77}));
        EXPECT_EQ(script.containersAlive, 0);

        auto const used = Below(kDocuments, "a/f");
        EXPECT_EQ(InitOther(*used, kUnknown, pathIsRelative), 0);
        EXPECT_EQ(log.Take(), Messages{NoDirectory()});
        EXPECT_EQ(StateOf(*used), (RelativeState{"ftp", "other", 21, "/Users/u/Documents/a/f", "a/f",
                                                 "/Users/u/Documents", 77}));
        EXPECT_EQ(script.containersAlive, 0);
    }
}

// No directory, no path of it: nothing shared, nothing to go up from.
TEST_F(RelativeURIFailuresTest, InitByURIWithoutADirectoryIsSilent)
{
    auto const uri = Below(kDocuments, "a/f");
    uri->Init(*MakeURI("http://o:5/Users/u/g"), 77);
    EXPECT_EQ(log.Take(), kNothing);
    EXPECT_EQ(BaseOf(*uri), nullptr);
    EXPECT_EQ(uri->GetScheme().ToUTF8(), "http");
    EXPECT_EQ(uri->GetHost().ToUTF8(), "o");
    EXPECT_EQ(uri->GetPortNumber(), 5u);
    EXPECT_EQ(uri->GetRelPath().ToUTF8(), "a/f");
    EXPECT_EQ(StateOf(*uri).type, 77);
}

TEST_F(RelativeURIFailuresTest, InitByURIWithoutAContainerIsSilent)
{
    auto const ends = [this](IO::IRelativeURI& uri) {
        uri.Init(*MakeURI("http://o:5/Users/u/g"), 77);
        EXPECT_EQ(log.Take(), kNothing);
        EXPECT_EQ(uri.GetScheme().ToUTF8(), "http");
        EXPECT_EQ(uri.GetHost().ToUTF8(), "o");
        EXPECT_EQ(uri.GetPortNumber(), 5u);
        EXPECT_EQ(StateOf(uri).type, 77);
    };
    for (ErrCode const code : {-1004, 35})
    {
        script.registryCode = code;
        ends(*NewRelative());
    }
    script.registryCode = 0;
    script.givesNothing = true;
    ends(*NewRelative());
}

TEST_F(RelativeURIFailuresTest, InitByURIWithoutARegistryIsSilent)
{
    auto const source = MakeURI("http://o:5/Users/u/g");
    auto const uri = NewRelative();
    {
        NoRegistry const none;
        uri->Init(*source, 77);
    }
    EXPECT_EQ(log.Take(), kNothing);
    EXPECT_EQ(uri->GetScheme().ToUTF8(), "http");
    EXPECT_EQ(BaseOf(*uri), nullptr);
}

constexpr char kBody[] = "02 00 00 00 73 00 02 00 00 00 74 00 05 00 00 00 02 00 00 00 66 00 4D 00 00 00";

TEST_F(RelativeURIFailuresTest, ReadingWithoutADirectoryIsSilent)
{
    auto const uri = Below(kDocuments, "a/g");
    PersistenceOf(*uri)->Read(*MakeStream(*MakeMemory(kNative, Hex(kBody))));
    EXPECT_EQ(log.Take(), kNothing);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"s", "t", 5, "/Users/u/Documents/a/g", "f", "none", 77}));
}

TEST_F(RelativeURIFailuresTest, ReadingWithoutAContainerIsSilent)
{
    for (ErrCode const code : {-1004, 35})
    {
        auto const uri = NewRelative();
        script.registryCode = code;
        PersistenceOf(*uri)->Read(*MakeStream(*MakeMemory(kNative, Hex(kBody))));
        EXPECT_EQ(log.Take(), kNothing);
        EXPECT_EQ(StateOf(*uri), (RelativeState{"s", "t", 5, "/", "f", "none", 77}));
    }
}

TEST_F(RelativeURIFailuresTest, ReadingWithoutARegistryIsSilent)
{
    auto const uri = NewRelative();
    auto const stream = MakeStream(*MakeMemory(kNative, Hex(kBody)));
    {
        NoRegistry const none;
        PersistenceOf(*uri)->Read(*stream);
    }
    EXPECT_EQ(log.Take(), kNothing);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"s", "t", 5, "/", "f", "none", 77}));
}
} // namespace
} // namespace KORVA
