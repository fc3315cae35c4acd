// A host saves dictionaries to a file that a URI names, and another process reads them.
#include "Integration/HostTest.h"
#include "Support/Process.h"
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IStringDictionary.h>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;

using EndToEnd = HostTest;

TEST_F(EndToEnd, DictionariesSavedToAFileAreLoadedFromIt)
{
    auto const inner = CreateObject<IDictionary>(IO::IID_DICTIONARY);
    inner->Put(9, 2.5);
    auto const outer = CreateObject<IDictionary>(IO::IID_DICTIONARY);
    outer->Put(1, 7);
    outer->Put(2, inner.Get());
    auto const strings = CreateObject<IStringDictionary>(IO::IID_STRING_DICTIONARY);
    strings->Put(u"a", u"xy");
    Save("two.tess", {outer.Get(), strings.Get()});

    TInterfacePtr<IO::IDataProviderStream> stream;
    ASSERT_EQ(FileNamed("two.tess")->Read(stream), 0);
    TInterfacePtr<IDictionary> first;
    TInterfacePtr<IStringDictionary> second;
    *stream >> first.Out() >> second.Out();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->Size(), 2u);
    int number = 0;
    EXPECT_EQ(first->Get(1, number), 0);
    EXPECT_EQ(number, 7);
    IObject* nested = nullptr;
    ASSERT_EQ(first->Get(2)->QueryInterface(IO::IID_DICTIONARY, &nested), 0);
    double floating = 0;
    EXPECT_EQ(static_cast<IDictionary*>(nested)->Get(9, floating), 0);
    EXPECT_EQ(floating, 2.5);
    STRING::CoreString value;
    EXPECT_TRUE(second->Get(u"a", value));
    EXPECT_EQ(value.ToUTF8(), "xy");
    EXPECT_TRUE(stream->GetDataProvider()->AtEnd());
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(EndToEnd, AnotherProcessReadsWhatThisOneWrote)
{
    auto const strings = CreateObject<IStringDictionary>(IO::IID_STRING_DICTIONARY);
    strings->Put(u"greeting", u"good morning");
    Save("shared.tess", {strings.Get()});
    Outcome const outcome =
        RunProgram({TESSIO_BINARY_DIR "/bin/tessio", "strings", "get", "shared.tess", "greeting"},
                   directory.Path().string());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "good morning\n");
}

TEST_F(EndToEnd, ObjectsMayOutliveTheHost)
{
    auto strings = CreateObject<IStringDictionary>(IO::IID_STRING_DICTIONARY);
    strings->Put(u"a", u"b");
    host.reset();
    EXPECT_EQ(COREREGISTRY::GetCoreRegistry(), nullptr);
    EXPECT_EQ(strings->Size(), 1u);
    strings.Reset();
}

TEST(Example, TheHostOfTheReadmeSavesAndLoads)
{
    TemporaryDirectory const directory;
    std::string const program = TESSIO_BINARY_DIR "/bin/example_host";
    Outcome const outcome =
        RunProgram({program, (directory.Path() / "settings.tess").string()}, directory.Path().string());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "2 entries, width 640\n");
    Outcome const refused = RunProgram({program, "/no/such/place"}, directory.Path().string());
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.err, "cannot save \"/no/such/place\": no such file or directory (kFileNotFound)\n");
}
} // namespace
} // namespace KORVA::TESTS
