// The file proxy on real files.
#include "FileFakes.h"

#include "Support/TemporaryDirectory.h"
#include <tessio/TessIO/ClassIds.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace KORVA
{
namespace
{
namespace fs = std::filesystem;
using STRING::CoreString;
using TESTS::Content;
using TESTS::CountedReporter;
using TESTS::CountOf;
using TESTS::Logged;
using TESTS::NewProxy;
using TESTS::ProxyFor;

Logged DeleteNoURI()
{
    return {"Core/Libraries/Tessaro/Source/src/FileProxy", "virtual ErrCode KORVA::IO::FileProxy::Delete()",
            307, "No URI."};
}

class FileProxyTest : public TESTS::LibraryTest
{
protected:
    static TInterfacePtr<IO::IURIFile> Proxy(fs::path const& path)
    {
        return ProxyFor(*MakeURI(path.string()));
    }

    /// Nanoseconds since the epoch.
    static void SetModified(fs::path const& path, long long seconds, long nanoseconds)
    {
        timespec const times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(seconds), nanoseconds}};
        EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }

    TESTS::TemporaryDirectory directory;
};

TEST_F(FileProxyTest, NewOneHasOneReferenceAndHoldsNothing)
{
    auto const proxy = NewProxy();
    EXPECT_EQ(CountOf(*proxy), 1);
    EXPECT_FALSE(proxy->GetURI());
    EXPECT_EQ(proxy->QueryInterface(IO::IID_FILEPROXY, nullptr), -1004);
    EXPECT_EQ(proxy->GetAggregates().size(), 0u);

    auto const created = COREREGISTRY::CreateObject<IO::IURIFile>(IO::IID_FILEPROXY);
    ASSERT_TRUE(created);
    EXPECT_EQ(CountOf(*created), 1);
    EXPECT_FALSE(created->GetURI());
}

TEST_F(FileProxyTest, HoldsURIAndReporterByOneReferenceEach)
{
    auto const uri = MakeURI("/a");
    TInterfacePtr<CountedReporter> reporter;
    reporter.Adopt(new CountedReporter);
    {
        auto const proxy = ProxyFor(*uri, reporter.Get());
        EXPECT_EQ(CountOf(*uri), 2);
        EXPECT_EQ(CountOf(*reporter), 2);
        {
            auto const held = proxy->GetURI();
            EXPECT_EQ(held.Get(), uri.Get());
            EXPECT_EQ(CountOf(*uri), 3);
        }
        EXPECT_EQ(CountOf(*uri), 2);
    }
    EXPECT_EQ(CountOf(*uri), 1);
    EXPECT_EQ(CountOf(*reporter), 1);
}

TEST_F(FileProxyTest, InitAgainReplacesBoth)
{
    auto const first = MakeURI("/a");
    auto const second = MakeURI("/b");
    TInterfacePtr<CountedReporter> one;
    one.Adopt(new CountedReporter);
    TInterfacePtr<CountedReporter> other;
    other.Adopt(new CountedReporter);
    auto const proxy = ProxyFor(*first, one.Get());
    EXPECT_EQ(proxy->Init(*second, other.Get()), 0);
    EXPECT_EQ(CountOf(*first), 1);
    EXPECT_EQ(CountOf(*one), 1);
    EXPECT_EQ(CountOf(*second), 2);
    EXPECT_EQ(CountOf(*other), 2);
    EXPECT_EQ(proxy->GetURI().Get(), second.Get());
    // The same again, then without a reporter.
    EXPECT_EQ(proxy->Init(*second, other.Get()), 0);
    EXPECT_EQ(CountOf(*second), 2);
    EXPECT_EQ(CountOf(*other), 2);
    EXPECT_EQ(proxy->Init(*second, nullptr), 0);
    EXPECT_EQ(CountOf(*other), 1);
}

TEST_F(FileProxyTest, Exists)
{
    EXPECT_TRUE(Proxy(directory.File("a b%20#.txt", ""))->Exists());
    EXPECT_TRUE(Proxy(directory.Path())->Exists());
    EXPECT_FALSE(Proxy(directory.Path() / "missing")->Exists());
    EXPECT_FALSE(ProxyFor(*MakeURI(""))->Exists());
    // The last question separates a query, which is no part of the path.
    fs::path const question = directory.File("what?", "");
    EXPECT_FALSE(Proxy(question)->Exists());
    EXPECT_TRUE(Proxy(question.string() + "?")->Exists());
}

TEST_F(FileProxyTest, CreateMakesAnEmptyFile)
{
    fs::path const path = directory.Path() / "new";
    EXPECT_EQ(Proxy(path)->Create(), 0);
    EXPECT_EQ(Content(path), "");
}

TEST_F(FileProxyTest, CreateLeavesAnExistingFile)
{
    fs::path const path = directory.File("old", "content");
    EXPECT_EQ(Proxy(path)->Create(), 0);
    EXPECT_EQ(Content(path), "content");
}

TEST_F(FileProxyTest, CreateFailures)
{
    EXPECT_EQ(Proxy(directory.Path() / "no" / "such" / "directory")->Create(), 25);
    EXPECT_EQ(ProxyFor(*MakeURI(""))->Create(), 13);
    EXPECT_EQ(NewProxy()->Create(), 13);
}

TEST_F(FileProxyTest, Delete)
{
    fs::path const path = directory.File("old", "content");
    auto const proxy = Proxy(path);
    EXPECT_EQ(proxy->Delete(), 0);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(proxy->Delete(), 24);
    EXPECT_EQ(Proxy(directory.Path())->Delete(), 24);
    EXPECT_TRUE(fs::exists(directory.Path()));
    // A URI that names no path is not the same as no URI.
    EXPECT_EQ(ProxyFor(*MakeURI(""))->Delete(), 24);
}

TEST_F(FileProxyTest, DeleteWithoutURIIsLogged)
{
    EXPECT_EQ(NewProxy()->Delete(), 13);
    EXPECT_EQ(log.Take(), std::vector{DeleteNoURI()});
}

TEST_F(FileProxyTest, Copy)
{
    fs::path const from = directory.File("from", "content");
    fs::path const to = directory.Path() / "to";
    auto const source = Proxy(from);
    auto const target = Proxy(to);
    EXPECT_EQ(target->Copy(*source), 0);
    EXPECT_EQ(Content(to), "content");
    EXPECT_EQ(Content(from), "content");
    // Onto a file that is there.
    std::ofstream(from) << "other";
    EXPECT_EQ(target->Copy(*source), 0);
    EXPECT_EQ(Content(to), "other");
}

TEST_F(FileProxyTest, CopyFailures)
{
    fs::path const here = directory.File("here", "content");
    auto const missing = Proxy(directory.Path() / "missing");
    auto const present = Proxy(here);
    EXPECT_EQ(present->Copy(*missing), 31);
    EXPECT_EQ(Content(here), "content");
    EXPECT_EQ(Proxy(directory.Path() / "no" / "directory")->Copy(*present), 31);
    EXPECT_EQ(Proxy(directory.Path() / "new")->Copy(*Proxy(directory.Path())), 31);
    EXPECT_FALSE(fs::exists(directory.Path() / "new"));
}

TEST_F(FileProxyTest, CopyAcrossSchemesTouchesNeitherFile)
{
    fs::path const from = directory.File("from", "source");
    fs::path const to = directory.File("to", "target");
    auto const source = ProxyFor(*MakeURI("other://" + from.string()));
    auto const target = Proxy(to);
    EXPECT_EQ(target->Copy(*source), 31);
    EXPECT_EQ(source->Copy(*target), 31);
    EXPECT_EQ(Content(from), "source");
    EXPECT_EQ(Content(to), "target");
    // Case counts, too.
    EXPECT_EQ(target->Copy(*ProxyFor(*MakeURI("FILE://" + from.string()))), 31);
    EXPECT_EQ(Content(to), "target");
}

TEST_F(FileProxyTest, CopyWithinAnotherScheme)
{
    fs::path const from = directory.File("from", "source");
    fs::path const to = directory.Path() / "to";
    EXPECT_EQ(
        ProxyFor(*MakeURI("other://" + to.string()))->Copy(*ProxyFor(*MakeURI("other://" + from.string()))),
        0);
    EXPECT_EQ(Content(to), "source");
}

TEST_F(FileProxyTest, ModificationDate)
{
    fs::path const path = directory.File("f", "");
    auto const proxy = Proxy(path);
    SetModified(path, 1000000000, 123456789);
    uint64 date = 0;
    EXPECT_EQ(proxy->GetModificationDate(date), 0);
    EXPECT_EQ(date, 1000000000123456789u);
    date = 1234567890987654321u;
    EXPECT_EQ(proxy->SetModificationDate(date), 0);
    EXPECT_EQ(date, 1234567890987654321u);
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1234567890);
    EXPECT_EQ(status.st_mtim.tv_nsec, 987654321);
}

TEST_F(FileProxyTest, CreationDateCanBeReadOnly)
{
    fs::path const path = directory.File("f", "");
    struct statx status;
    ASSERT_EQ(statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME, &status), 0);
    bool const kept = (status.stx_mask & STATX_BTIME) != 0;
    auto const proxy = Proxy(path);
    uint64 date = 5;
    EXPECT_EQ(proxy->GetCreationDate(date), kept ? 0 : 26);
    EXPECT_EQ(date,
              kept ? static_cast<uint64>(status.stx_btime.tv_sec) * 1000000000u + status.stx_btime.tv_nsec
                   : uint64{5});
    EXPECT_EQ(proxy->SetCreationDate(date), 26);
}

TEST_F(FileProxyTest, Size)
{
    uint64 size = 99;
    EXPECT_EQ(Proxy(directory.File("empty", ""))->GetSize(size), 0);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(Proxy(directory.File("seven", "1234567"))->GetSize(size), 0);
    EXPECT_EQ(size, 7u);
    fs::path const large = directory.File("large", "");
    fs::resize_file(large, 5'000'000'000u);
    EXPECT_EQ(Proxy(large)->GetSize(size), 0);
    EXPECT_EQ(size, 5'000'000'000u);
}

TEST_F(FileProxyTest, DatesAndSizeOfAMissingFile)
{
    auto const proxy = Proxy(directory.Path() / "missing");
    uint64 value = 5;
    EXPECT_EQ(proxy->GetModificationDate(value), 26);
    EXPECT_EQ(proxy->SetModificationDate(value), 26);
    EXPECT_EQ(proxy->GetCreationDate(value), 26);
    EXPECT_EQ(proxy->SetCreationDate(value), 26);
    EXPECT_EQ(proxy->GetSize(value), 26);
    EXPECT_EQ(value, 5u);
    EXPECT_FALSE(fs::exists(directory.Path() / "missing"));
}

TEST_F(FileProxyTest, NothingIsKeptBetweenCalls)
{
    fs::path const path = directory.Path() / "f";
    auto const proxy = Proxy(path);
    uint64 size = 0;
    EXPECT_FALSE(proxy->Exists());
    std::ofstream(path) << "four";
    EXPECT_TRUE(proxy->Exists());
    EXPECT_EQ(proxy->GetSize(size), 0);
    EXPECT_EQ(size, 4u);
    // The URI may be told another place.
    proxy->GetURI()->Init(CoreString(std::string_view((directory.Path() / "g").native())));
    EXPECT_FALSE(proxy->Exists());
}

TEST_F(FileProxyTest, UninitialisedOneAnswers)
{
    auto const proxy = NewProxy();
    auto const other = Proxy(directory.File("f", "content"));
    TInterfacePtr<IO::IDataProviderStream> stream;
    uint64 value = 5;
    bool flag = true;
    EXPECT_FALSE(proxy->Exists());
    EXPECT_EQ(proxy->Read(stream), 13);
    EXPECT_EQ(proxy->Write(stream), 13);
    EXPECT_FALSE(stream);
    EXPECT_NE(proxy->Create(), 0);
    EXPECT_EQ(proxy->Copy(*other), 31);
    EXPECT_EQ(other->Copy(*proxy), 31);
    EXPECT_EQ(proxy->Copy(*proxy), 31);
    EXPECT_EQ(proxy->GetModificationDate(value), 26);
    EXPECT_EQ(proxy->SetModificationDate(value), 26);
    EXPECT_EQ(proxy->GetCreationDate(value), 26);
    EXPECT_EQ(proxy->SetCreationDate(value), 26);
    EXPECT_EQ(proxy->GetSize(value), 26);
    EXPECT_EQ(proxy->GetAttribute(1, flag), 26);
    EXPECT_EQ(proxy->SetAttribute(1, flag), 26);
    EXPECT_EQ(Content(directory.Path() / "f"), "content");
}

struct StatusRow
{
    char const* name;
    int status;
    ErrCode code;
};

class FileStatusTest : public ::testing::TestWithParam<StatusRow>
{
};

TEST_P(FileStatusTest, IsMapped)
{
    EXPECT_EQ(IO::FileProxy::ErrorCodeFromFileIO(GetParam().status), GetParam().code);
}

StatusRow const kStatuses[] = {
    {"Done", 0, 0},
    {"NotFound", 15, 26},
    {"NotPermitted", 21, 33},
    {"AlreadyThere", 9, 35},
    {"One", 1, 35},
    {"MinusOne", -1, 35},
    {"MinusFifteen", -15, 35},
    {"BeforeNotFound", 14, 35},
    {"AfterNotFound", 16, 35},
    {"BeforeNotPermitted", 20, 35},
    {"AfterNotPermitted", 22, 35},
    {"OwnNotFound", 26, 35},
    {"OwnNotPermitted", 33, 35},
    {"Largest", 2147483647, 35},
    {"Smallest", -2147483647 - 1, 35},
};
INSTANTIATE_TEST_SUITE_P(Rows, FileStatusTest, ::testing::ValuesIn(kStatuses), TESTS::RowName());
} // namespace
} // namespace KORVA
