// What the pages show is what the code is and does.
#include "Integration/HostTest.h"
#include "Support/Bytes.h"
#include "Support/Process.h"
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IRelativeURI.h>
#include <tessio/TessIO/IStringDictionary.h>

#include <map>
#include <sstream>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;
using IO::IDataProvider;

/// The fenced blocks of a page by what stands behind the opening fence.
std::map<std::string, std::string> Blocks(std::string const& page)
{
    std::istringstream lines(Content(std::string(TESSIO_SOURCE_DIR "/") + page));
    std::map<std::string, std::string> blocks;
    std::string* block = nullptr;
    for (std::string line; std::getline(lines, line);)
    {
        if (!line.starts_with("```"))
        {
            if (block)
                *block += line + "\n";
        }
        else
            block = block ? nullptr : &blocks[line.substr(3)];
    }
    return blocks;
}

/// The lines between the two markers "//! [name]" (or "#! [name]") of a source; all of it without a name.
std::string Region(std::string const& source, std::string const& name)
{
    std::istringstream lines(Content(TESSIO_SOURCE_DIR "/" + source));
    std::string region;
    bool inside = name.empty();
    for (std::string line; std::getline(lines, line);)
    {
        if (line == "//! " + name || line == "#! " + name)
            inside = !inside;
        else if (inside)
            region += line + "\n";
    }
    return region;
}

/// Runs the commands of a page's console block in one shell, so that later ones see what earlier ones made,
/// and compares what they print with what stands there.
void ExpectConsole(std::string const& page, std::vector<std::string> const& programs)
{
    TemporaryDirectory const directory;
    std::filesystem::create_directory(directory.Path() / "bin");
    for (std::string const& program : programs)
        std::filesystem::create_symlink(TESSIO_BINARY_DIR "/bin/" + program,
                                        directory.Path() / "bin" / program);
    auto const blocks = Blocks(page);
    ASSERT_EQ(blocks.count("console"), 1u);
    std::string script = "PATH=" + (directory.Path() / "bin").string() + ":$PATH\n";
    std::string expected;
    std::istringstream lines(blocks.at("console"));
    for (std::string line; std::getline(lines, line);)
    {
        if (line.starts_with("$ "))
            script += line.substr(2) + "\n";
        else
            expected += line + "\n";
    }
    Outcome const outcome = RunProgram({"/bin/sh", "-c", script}, directory.Path().string());
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, expected);
    EXPECT_EQ(outcome.err, "");
}

/// Makes the objects that the page on the format shows the bytes of.
TInterfacePtr<IObject> Sample(std::string const& name)
{
    TInterfacePtr<IObject> object;
    if (name == "value" || name == "dictionary")
    {
        auto dictionary = CreateObject<IDictionary>(IO::IID_DICTIONARY);
        dictionary->Put(1, 7);
        object.Share(name == "value" ? dictionary->Get(1) : dictionary.Get());
    }
    else if (name == "bytes")
    {
        auto const dictionary = CreateObject<IDictionary>(IO::IID_DICTIONARY);
        unsigned char const bytes[] = {0x0A, 0x0B};
        dictionary->Put(1, bytes, 2);
        object.Share(dictionary->Get(1));
    }
    else if (name == "strings")
    {
        auto const strings = CreateObject<IStringDictionary>(IO::IID_STRING_DICTIONARY);
        strings->Put(u"a", u"xy");
        object.Share(strings.Get());
    }
    else if (name == "uri")
    {
        auto const uri = CreateObject<IO::IURI>(IO::IID_IURI);
        uri->Init(u"/a");
        object.Share(uri.Get());
    }
    else if (name == "relative")
    {
        auto const uri = CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
        uri->Init(FILE_SYS::kDocumentsDir, u"file", u"", 0, u"a", true);
        object.Share(uri.Get());
    }
    return object;
}

using Docs = HostTest;

TEST_F(Docs, FormatShowsTheBytesThatTheLibraryWrites)
{
    int shown = 0;
    for (auto const& [header, text] : Blocks("Docs/Format.md"))
    {
        // ```bytes NAME ORDER
        std::istringstream words(header);
        std::string kind;
        std::string name;
        std::string order;
        words >> kind >> name >> order;
        if (kind != "bytes")
            continue;
        SCOPED_TRACE(header);
        // Everything behind a bar explains.
        std::string hex;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            hex += line.substr(0, line.find('|')) + " ";
        TInterfacePtr<IObject> const object = Sample(name);
        ASSERT_TRUE(object);
        auto const memory = CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
        memory->InitHandleBased(IO::kStreamReadWrite);
        memory->SetEndian(order == "big-endian" ? IDataProvider::kBigEndian : IDataProvider::kLittleEndian);
        auto const stream = CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
        stream->Init(*memory);
        *stream << *object;
        Bytes written(static_cast<std::size_t>(memory->Size()));
        auto count = static_cast<int32>(written.size());
        memory->SetPosition(0, IDataProvider::kFromStart);
        ASSERT_EQ(memory->Read(written.data(), count), 0);
        EXPECT_EQ(ToHex(written), ToHex(Hex(hex)));
        ++shown;
    }
    EXPECT_EQ(shown, 10);
}

TEST(Readme, ShowsTheExampleHostAsItIs)
{
    auto const blocks = Blocks("README.md");
    ASSERT_EQ(blocks.count("cpp"), 1u);
    EXPECT_EQ(blocks.at("cpp"), Content(TESSIO_SOURCE_DIR "/Examples/host/main.cpp"));
}

TEST(Readme, ShowsWhatTheToolPrints) { ExpectConsole("README.md", {"tessio"}); }

TEST(Guide, ShowsTheSourcesAsTheyAre)
{
    int shown = 0;
    for (auto const& [header, text] : Blocks("Docs/Guide.md"))
    {
        SCOPED_TRACE(header);
        // ```LANGUAGE SOURCE [REGION]
        std::istringstream words(header);
        std::string language;
        std::string source;
        std::string name;
        words >> language >> source >> name;
        EXPECT_TRUE(!source.empty() || language == "sh" || language == "console");
        if (source.empty())
            continue;
        EXPECT_NE(text, "");
        EXPECT_EQ(text, Region(source, name));
        ++shown;
    }
    EXPECT_EQ(shown, 22);
}

TEST(Guide, ShowsWhatTheProgramsPrint) { ExpectConsole("Docs/Guide.md", {"tessio", "example_walk"}); }

TEST(ToolTour, ShowsWhatTheToolPrints) { ExpectConsole("Docs/Tool.md", {"tessio"}); }
} // namespace
} // namespace KORVA::TESTS
