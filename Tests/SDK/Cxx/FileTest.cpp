// URIs and files behind the friendly layer.
#include <tessio/Cxx/File.h>

#include "Platform/Source/ChildProcess.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/ObjectModel/TObject.h>

#include <array>

namespace KORVA::TESTS
{
namespace
{
using CXX::File;
using CXX::URI;
using namespace std::chrono_literals;

class CxxFile : public LibraryTest
{
protected:
    std::filesystem::path Path(std::string const& name) const { return directory.Path() / name; }

    TemporaryDirectory directory;
};

TEST_F(CxxFile, URIsTellTheirParts)
{
    URI const uri = URI::FromText("http://h.example:8080/a/b%20c?d=1").value();
    EXPECT_EQ(uri.Scheme(), "http");
    EXPECT_EQ(uri.Host(), "h.example");
    EXPECT_EQ(uri.Port(), 8080u);
    EXPECT_EQ(uri.Query(), "d=1");
    EXPECT_EQ(URI::FromText(u"http://h.example/a")->Port(), std::nullopt);
    EXPECT_EQ(uri.Resolve("../e")->AbsoluteText(), "http://h.example:8080/e");
    EXPECT_TRUE(uri == URI::FromText("http://h.example:8080/a/b%20c?d=1").value());
    EXPECT_FALSE(uri == URI::FromText("http://h.example/").value());
}

/// A class of a client's own, equal to everything.
class OwnURI final : public TObject<IO::IURI>
{
public:
    void Init(STRING::CoreString const&) override {}
    void InitRelative(IO::IURI const&, STRING::CoreString const&) override {}
    STRING::CoreString GetScheme() const override { return {}; }
    STRING::CoreString GetHost() const override { return {}; }
    uint32 GetPortNumber() const override { return 0; }
    STRING::CoreString GetPath() const override { return {}; }
    STRING::CoreString GetQuery() const override { return {}; }
    STRING::CoreString GetAbsoluteString() const override { return {}; }
    void GetName(STRING::CoreString&) const override {}
    bool operator==(IO::IURI const&) const override { return true; }
};

TEST_F(CxxFile, TheLeftURIDecidesOnEquality)
{
    URI const left = URI::FromText("http://h.example/").value();
    TInterfacePtr<OwnURI> own;
    own.Adopt(new OwnURI);
    EXPECT_TRUE(*left == *own) << "the language turns the two round";
    EXPECT_FALSE(*left == static_cast<IO::IURI const&>(*own));
    EXPECT_FALSE(left == URI(static_cast<IO::IURI&>(*own)));
}

TEST_F(CxxFile, URIsOfFilesKeepEveryCharacter)
{
    URI const uri = URI::FromPath("/tmp/what?;%20#").value();
    EXPECT_EQ(uri.Scheme(), "file");
    EXPECT_EQ(uri.Path(), "/tmp/what?;%20#");
    EXPECT_EQ(uri.Name(), "what?;%20#");
    EXPECT_EQ(uri.FilePath().value(), "/tmp/what?;%20#");
}

TEST_F(CxxFile, URIsThatCannotBeAreErrors)
{
    EXPECT_EQ(URI::FromPath("").error().Code(), 13);
    EXPECT_EQ(URI::FromPath("/\xFF").error().Code(), 13);
    EXPECT_EQ(URI::FromText("").error().Code(), 14);
    EXPECT_EQ(URI::FromText("\xFF").error().Code(), 2005);
    EXPECT_EQ(URI::FromText("http://h.example")->FilePath().error().Code(), 13);
}

TEST_F(CxxFile, IsMadeCopiedAndRemoved)
{
    File file = File::At(Path("a")).value();
    EXPECT_FALSE(file.Exists());
    EXPECT_EQ(file.Size().error().Code(), 26);
    EXPECT_EQ(file.Size().error().Message(), "cannot tell the size of " + CXX::Quoted(Path("a").string()) +
                                                 ": no such file or directory (kFileNotFound)");
    ASSERT_TRUE(file.Create());
    ASSERT_TRUE(file.Create()) << "it is there already";
    EXPECT_EQ(file.Size().value(), 0u);
    directory.File("b", "text");
    ASSERT_TRUE(file.CopyFrom(File::At(Path("b")).value()));
    EXPECT_EQ(Content(Path("a")), "text");
    EXPECT_EQ(file.CopyFrom(File::At(Path("missing")).value()).error().Code(), 31);
    ASSERT_TRUE(file.Delete());
    EXPECT_FALSE(file.Exists());
    EXPECT_EQ(file.Delete().error().Code(), 24);
    EXPECT_EQ(File::At(Path("no/such"))->Create().error().Code(), 25);
    EXPECT_EQ(file.Location()->FilePath().value(), Path("a"));
    log.Take();
}

TEST_F(CxxFile, HasDates)
{
    File file = File::At(directory.File("a", "text")).value();
    // 2001-02-03T04:05:06.000000007Z
    CXX::FileTime const date{981173106s + 7ns};
    ASSERT_TRUE(file.SetModificationDate(date));
    EXPECT_EQ(file.ModificationDate().value(), date);
    EXPECT_EQ(file.SetModificationDate(CXX::FileTime(-1ns)).error().Code(), 2004);
    EXPECT_EQ(file.ModificationDate().value(), date);
    EXPECT_EQ(File::At(Path("missing"))->ModificationDate().error().Code(), 26);
    EXPECT_EQ(File::At(Path("missing"))->CreationDate().error().Code(), 26);
    EXPECT_EQ(File::At(Path("missing"))->SetModificationDate(date).error().Code(), 26);
}

TEST_F(CxxFile, IsReadAndWrittenInPlace)
{
    File const file = File::At(directory.File("a", "abcd")).value();
    {
        CXX::Stream writer = file.Write().value();
        ASSERT_TRUE(writer.Write(std::as_bytes(std::span("XY", 2))));
    }
    EXPECT_EQ(Content(Path("a")), "XYcd");
    CXX::Stream reader = file.Read().value();
    std::array<std::byte, 8> bytes{};
    EXPECT_EQ(reader.Read(bytes).value(), 4u);
    EXPECT_EQ(reader.Read(bytes).value(), 0u) << "the end is no failure";
    EXPECT_EQ(bytes[3], std::byte{'d'});
    reader << 7;
    EXPECT_EQ(reader.Status().error().Code(), 30) << "it would never return";
    EXPECT_EQ(reader.Provider()->SetSize(1).error().Code(), 27) << "the provider itself says nothing";
}

TEST_F(CxxFile, ThatCannotBeOpenedSaysWhy)
{
    EXPECT_EQ(File::At(Path("missing"))->Read().error().Code(), 26);
    EXPECT_EQ(File::At(directory.Path())->Read().error().Code(), 26);
    File const file = File::At(directory.File("a", "abcd")).value();
    LockHolder const holder(Path("a"), LOCK_EX);
    EXPECT_EQ(file.Write().error().Message(),
              "cannot write " + CXX::Quoted(Path("a").string()) + ": locked by somebody else (kLocked)");
    log.Take();
}

TEST_F(CxxFile, OfASchemeThatNobodyServesIsAnError)
{
    EXPECT_EQ(
        File::At(URI::FromText("http://h.example/a").value()).error().Message(),
        "cannot use \"http://h.example/a\": nothing that serves its scheme or host can do that (kNotServed)");
}

TEST_F(CxxFile, TextIsAPath) { EXPECT_EQ(File::At("/tmp/a?b")->Location()->Path(), "/tmp/a?b"); }
} // namespace
} // namespace KORVA::TESTS
