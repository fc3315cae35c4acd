// Reading what web servers send.
#include "Examples/HttpTest.h"
#include "Support/RowName.h"
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IURIDataProvider.h>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;
using IO::IDataProvider;

struct Way
{
    char const* name;
    char const* prefix;
    bool tls = false;
    bool tellsSize = true;
    bool servesRanges = true;
    bool byProxy = false;
};

class HttpReading : public HttpTest, public ::testing::WithParamInterface<Way>
{
protected:
    TInterfacePtr<IDataProvider> Open(std::string const& name) const
    {
        Way const& way = GetParam();
        if (way.byProxy)
            GoByProxy();
        std::string const path = way.prefix + name;
        return HttpTest::Open(way.tls ? server.Https(path) : server.Http(path));
    }
};

TEST_P(HttpReading, GivesTheFile)
{
    std::string const content = Pattern(3'000'000);
    server.File("large", content);
    auto const provider = Open("large");
    ASSERT_TRUE(provider);
    if (GetParam().tellsSize)
    {
        EXPECT_EQ(provider->Size(), 3'000'000);
    }
    std::string read;
    while (!provider->AtEnd())
        read += Read(*provider, 100'000);
    EXPECT_TRUE(read == content);
    EXPECT_EQ(provider->Size(), 3'000'000);
    EXPECT_EQ(provider->GetPosition(), 3'000'000);
    EXPECT_EQ(Read(*provider, 1, 3), "");
    EXPECT_EQ(reporter->text, "");
}

TEST_P(HttpReading, EndsWhereTheFileEnds)
{
    auto const provider = Open("text");
    EXPECT_EQ(Read(*provider, 4), "0123");
    EXPECT_FALSE(provider->AtEnd());
    EXPECT_EQ(Read(*provider, 100), "456789");
    EXPECT_TRUE(provider->AtEnd());
    EXPECT_EQ(provider->Size(), 10);
    EXPECT_EQ(Read(*provider, 100, 3), "");
    EXPECT_EQ(provider->SetPosition(2, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(Read(*provider, 100), "89");
    EXPECT_EQ(provider->SetPosition(11, IDataProvider::kFromStart), 13);
    EXPECT_EQ(provider->GetPosition(), 10);
    EXPECT_EQ(reporter->text, "");
}

TEST_P(HttpReading, AnEmptyFileHasNothing)
{
    server.File("empty", "");
    auto const provider = Open("empty");
    EXPECT_TRUE(provider->AtEnd());
    EXPECT_EQ(provider->Size(), 0);
    EXPECT_EQ(Read(*provider, 5, 3), "");
}

/// Forwards and backwards, near and far, in the window and out of it.
TEST_P(HttpReading, GivesEveryPlace)
{
    std::string const content = Pattern(2'000'000);
    server.File("large", content);
    auto const provider = Open("large");
    for (int64 const place : {0, 100, 50, 5'000, 1'999'990, 0, 300'000, 299'000, 900'000, 1'500'000,
                              1'499'999, 250'000, 1'000'000, 3})
    {
        SCOPED_TRACE(place);
        EXPECT_EQ(provider->SetPosition(place, IDataProvider::kFromStart), 0);
        EXPECT_EQ(provider->GetPosition(), place);
        EXPECT_FALSE(provider->AtEnd());
        EXPECT_EQ(Read(*provider, 10), content.substr(static_cast<std::size_t>(place), 10));
    }
    EXPECT_EQ(provider->SetPosition(-13, IDataProvider::kFromCurrent), 0);
    EXPECT_EQ(Read(*provider, 10), content.substr(0, 10));
    EXPECT_EQ(provider->SetPosition(-11, IDataProvider::kFromCurrent), 13);
    EXPECT_EQ(provider->SetPosition(0, static_cast<IDataProvider::Offset>(7)), 13);
    EXPECT_EQ(provider->GetPosition(), 10);
    // Where ranges are served, the far places are asked for.
    bool const asked = server.Requests().find("large 206") != std::string::npos;
    EXPECT_EQ(asked, GetParam().servesRanges);
    EXPECT_EQ(reporter->text, "");
}

TEST_P(HttpReading, FindsObjects)
{
    Save("objects", {});
    {
        auto const dictionary = CreateObject<IDictionary>(IO::IID_DICTIONARY);
        dictionary->Put(1, 31);
        Save("record", {dictionary.Get(), dictionary.Get()});
    }
    server.File("record", Content(directory.Path() / "record"));
    auto const provider = Open("record");
    auto const stream = CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    stream->Init(*provider);
    for (int i = 0; i < 2; ++i)
    {
        TInterfacePtr<IDictionary> loaded;
        *stream >> loaded.Out();
        ASSERT_TRUE(loaded);
        int value = 0;
        EXPECT_EQ(loaded->Get(1, value), 0);
        EXPECT_EQ(value, 31);
    }
    EXPECT_TRUE(provider->AtEnd());
}

Way const kWays[] = {{.name = "Plain", .prefix = "/plain/"},
                     {.name = "TLS", .prefix = "/plain/", .tls = true},
                     {.name = "ByProxy", .prefix = "/plain/", .tls = true, .byProxy = true},
                     {.name = "NoRanges", .prefix = "/noranges/", .servesRanges = false},
                     {.name = "Chunked", .prefix = "/chunked/", .tellsSize = false, .servesRanges = false}};

INSTANTIATE_TEST_SUITE_P(Ways, HttpReading, ::testing::ValuesIn(kWays), RowName());

TEST_F(HttpTest, NearPlacesAreNotAskedFor)
{
    server.File("large", Pattern(600'000));
    auto const provider = Open(server.Http("/plain/large"));
    EXPECT_EQ(Read(*provider, 24).size(), 24u);
    for (int64 const place : {0, 5'000, 3'000, 200'000, 400'000})
    {
        EXPECT_EQ(provider->SetPosition(place, IDataProvider::kFromStart), 0);
        EXPECT_EQ(Read(*provider, 24).size(), 24u);
    }
    while (!provider->AtEnd())
        Read(*provider, 65536);
    EXPECT_EQ(server.Requests(), "GET /plain/large 200\n");
}

/// As readers of records do: look at a piece, go back, take it. The end of a window is in some of the pieces.
TEST_F(HttpTest, APieceThatWasJustReadIsNotAskedForAgain)
{
    server.File("large", Pattern(1'000'000));
    auto const provider = Open(server.Http("/plain/large"));
    while (!provider->AtEnd())
    {
        std::string const seen = Read(*provider, 999);
        EXPECT_EQ(provider->SetPosition(-static_cast<int64>(seen.size()), IDataProvider::kFromCurrent), 0);
        EXPECT_TRUE(Read(*provider, 999) == seen);
    }
    EXPECT_EQ(server.Requests(), "GET /plain/large 200\n");
}

/// Of two lengths the one of the pieces holds.
TEST_F(HttpTest, ALengthBesidePiecesIsPassedOver)
{
    OddServer const odd([](OddServer::Client const& client, std::string const&) {
        client.Send("HTTP/1.1 200 OK\r\nContent-Length: 3\r\nTransfer-Encoding: chunked\r\n\r\n"
                    "5\r\n01234\r\n0\r\n\r\n");
    });
    auto const provider = Open(odd.URL("/x"));
    EXPECT_EQ(Read(*provider, 100), "01234");
    EXPECT_EQ(provider->Size(), 5);
    EXPECT_TRUE(provider->AtEnd());
}

TEST_F(HttpTest, ASlowServerIsWaitedFor)
{
    // Shorter than the whole takes.
    setenv(HTTP::kStallTimeoutVariable, "3000", 1);
    std::string const content = Pattern(300'000);
    server.File("large", content);
    auto const provider = Open(server.Http("/slow/large"));
    EXPECT_TRUE(Read(*provider, 300'000) == content);
    EXPECT_EQ(reporter->text, "");
}

TEST_F(HttpTest, AChangedFileIsNotMixed)
{
    server.File("large", std::string(2'000'000, 'a'));
    auto const provider = Open(server.Http("/plain/large"));
    EXPECT_EQ(Read(*provider, 10), "aaaaaaaaaa");
    server.File("large", std::string(2'000'001, 'b'));
    EXPECT_EQ(provider->SetPosition(1'500'000, IDataProvider::kFromStart), 0);
    EXPECT_EQ(Read(*provider, 10, 3), "");
    EXPECT_EQ(reporter->text, "3 116");
    EXPECT_EQ(log.Take().size(), 1u);
}

TEST_F(HttpTest, AProviderIsThereForReadingOnly)
{
    auto const provider = CreateObject<IO::IURIDataProvider>(HTTP::IID_HTTP_DATAPROVIDER);
    ASSERT_TRUE(provider);
    IO::IURIPtr const uri = URIOf(server.Http("/plain/text"));
    IO::IURIPtr const missing = URIOf(server.Http("/plain/nothing"));
    char byte = 0;
    int32 count = 1;
    EXPECT_EQ(provider->Read(&byte, count), 29);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromStart), 29);
    EXPECT_EQ(provider->Size(), 0);
    EXPECT_TRUE(provider->AtEnd());
    EXPECT_EQ(log.Take().size(), 2u);
    EXPECT_EQ(provider->InitReadOnlyMem(&byte, 1), 30);
    EXPECT_EQ(provider->InitURIBased(*uri, 1, nullptr), 30);
    EXPECT_EQ(provider->InitURIBased(*uri, 2, nullptr), 30);
    EXPECT_EQ(provider->InitURIBased(*uri, 4, nullptr), 30);
    EXPECT_EQ(provider->InitURIBased(*missing, 0, nullptr), 26);
    EXPECT_EQ(log.Take(), kNothing);
    EXPECT_EQ(provider->Init(*missing, nullptr), -1000);
    EXPECT_EQ(log.Take().size(), 1u);
    EXPECT_EQ(provider->InitURIBased(*uri, 3, nullptr), 0);
    EXPECT_EQ(provider->Init(*uri, nullptr), 0);
    EXPECT_EQ(provider->Write("x", 1), 30);
    EXPECT_EQ(provider->SetSize(1), 30);
    EXPECT_EQ(provider->Flush(), 0);
    EXPECT_EQ(provider->GetEndian(), IDataProvider::kLittleEndian);
    EXPECT_TRUE(provider->IsNative());
    provider->SetEndian(IDataProvider::kBigEndian);
    EXPECT_FALSE(provider->IsNative());
    count = 0;
    EXPECT_EQ(provider->Read(&byte, count), 0);
    count = 1;
    EXPECT_EQ(provider->Read(nullptr, count), 3);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(log.Take().size(), 1u);
    EXPECT_EQ(Read(*provider, 10), "0123456789");
}

struct Trouble
{
    char const* name;
    /// What the server sends to the first request, before it closes the connection or stalls.
    std::string answer;
    bool stalls;
    /// What opening and reading 100 bytes give.
    ErrCode open;
    char const* read;
    char const* reported;
};

class HttpTrouble : public HttpTest, public ::testing::WithParamInterface<Trouble>
{
};

TEST_P(HttpTrouble, IsReportedOnce)
{
    Trouble const& row = GetParam();
    if (row.stalls)
    {
        setenv(HTTP::kConnectTimeoutVariable, "1000", 1);
        setenv(HTTP::kStallTimeoutVariable, "1000", 1);
    }
    OddServer const odd([&](OddServer::Client const& client, std::string const&) {
        client.Send(row.answer);
        if (row.stalls)
            client.Stall();
    });
    auto const provider = Open(odd.URL("/x"), row.open);
    if (provider)
    {
        EXPECT_EQ(Read(*provider, 100, 3), row.read);
        EXPECT_EQ(provider->GetPosition(), static_cast<int64>(std::string(row.read).size()));
        EXPECT_EQ(Read(*provider, 100, 3), "");
        EXPECT_TRUE(provider->AtEnd());
    }
    EXPECT_EQ(reporter->text, row.reported);
    EXPECT_EQ(log.Take().size(), 1u);
    EXPECT_EQ(odd.Requests().size(), 1u);
}

#define OK_ "HTTP/1.1 200 OK\r\n"
Trouble const kTrouble[] = {
    {"CutBody", OK_ "Content-Length: 20\r\n\r\n01234", false, 0, "01234", "3 104"},
    {"CutBeforeTheBody", OK_ "Content-Length: 20\r\n\r\n", false, 0, "", "3 104"},
    {"CutChunk", OK_ "Transfer-Encoding: chunked\r\n\r\n8\r\n01234", false, 0, "01234", "3 104"},
    {"CutBetweenChunks", OK_ "Transfer-Encoding: chunked\r\n\r\n5\r\n01234\r\n", false, 0, "01234", "3 104"},
    {"BadChunk", OK_ "Transfer-Encoding: chunked\r\n\r\n5\r\n01234\r\nzz\r\n", false, 0, "01234", "3 104"},
    {"StalledBody", OK_ "Content-Length: 20\r\n\r\n01234", true, 0, "01234", "3 110"},
    {"StalledBeforeTheAnswer", "", true, 35, "", "35 110"},
    {"StalledInARedirection", "HTTP/1.1 302 There\r\nLocation: /y\r\nContent-Length: 5\r\n\r\n", true, 35, "",
     "35 110"},
    {"StalledInTheHeaders", OK_ "Content-Le", true, 35, "", "35 110"},
    {"Closed", "", false, 35, "", "35 104"},
    {"ClosedInTheHeaders", OK_ "Content-Le", false, 35, "", "35 104"},
    {"NoStatusLine", "Good day, what can I do for you?\r\n\r\n", false, 35, "", "35 71"},
    {"RedirectedNowhere", "HTTP/1.1 302 There\r\nContent-Length: 0\r\n\r\n", false, 35, "", "35 71"},
    {"NotModified", "HTTP/1.1 304 Same\r\n\r\n", false, 35, "", "35 71"},
    {"BadLength", OK_ "Content-Length: many\r\n\r\n01234", false, 35, "", "35 71"},
    {"NegativeLength", OK_ "Content-Length: -5\r\n\r\n01234", false, 35, "", "35 71"},
};
#undef OK_

INSTANTIATE_TEST_SUITE_P(Servers, HttpTrouble, ::testing::ValuesIn(kTrouble), RowName());

struct BadRange
{
    char const* name;
    /// What answers the request for the bytes from 1000000 on.
    std::string answer;
    char const* reported;
};

class HttpBadRange : public HttpTest, public ::testing::WithParamInterface<BadRange>
{
};

TEST_P(HttpBadRange, IsNoDataAndCanBeTriedAgain)
{
    std::string const whole = "HTTP/1.1 200 OK\r\nContent-Length: 2000000\r\nETag: \"1\"\r\n\r\n";
    int asked = 0;
    OddServer const odd([&](OddServer::Client const& client, std::string const& request) {
        if (request.find("\r\nRange: bytes=1000000-\r\n") == std::string::npos)
            client.Send(whole + std::string(2'000'000, 'a'));
        else if (++asked == 1)
            client.Send(GetParam().answer);
        else
            client.Send("HTTP/1.1 206 Part\r\nContent-Range: bytes 1000000-1999999/2000000\r\n"
                        "Content-Length: 1000000\r\n\r\n" +
                        std::string(1'000'000, 'c'));
    });
    auto const provider = Open(odd.URL("/x"));
    EXPECT_EQ(Read(*provider, 5), "aaaaa");
    EXPECT_EQ(provider->SetPosition(1'000'000, IDataProvider::kFromStart), 0);
    EXPECT_EQ(Read(*provider, 5, 3), "");
    EXPECT_EQ(Read(*provider, 5, 3), "");
    EXPECT_EQ(reporter->text, GetParam().reported);
    EXPECT_EQ(log.Take().size(), 1u);
    EXPECT_EQ(asked, 1);
    EXPECT_NE(odd.Requests().back().find("\r\nIf-Range: \"1\"\r\n"), std::string::npos);
    EXPECT_EQ(provider->SetPosition(1'000'000, IDataProvider::kFromStart), 0);
    EXPECT_EQ(Read(*provider, 5), "ccccc");
}

BadRange const kBadRanges[] = {
    {"AnotherPlace",
     "HTTP/1.1 206 Part\r\nContent-Range: bytes 5-9/2000000\r\nContent-Length: 5\r\n\r\nxxxxx", "3 71"},
    {"NoRange", "HTTP/1.1 206 Part\r\nContent-Length: 5\r\n\r\nxxxxx", "3 71"},
    {"Nonsense", "HTTP/1.1 206 Part\r\nContent-Range: bytes x-9/y\r\nContent-Length: 5\r\n\r\nxxxxx", "3 71"},
    {"AnotherSize",
     "HTTP/1.1 206 Part\r\nContent-Range: bytes 1000000-1000004/3000000\r\nContent-Length: 5\r\n\r\nxxxxx",
     "3 116"},
    {"AnotherTag",
     "HTTP/1.1 206 Part\r\nContent-Range: bytes 1000000-1000004/2000000\r\nETag: \"2\"\r\n"
     "Content-Length: 5\r\n\r\nxxxxx",
     "3 116"},
    {"Nothing", "HTTP/1.1 206 Part\r\nContent-Range: bytes 1000000-1999999/2000000\r\n\r\n", "3 104"},
    {"AnotherLength",
     "HTTP/1.1 206 Part\r\nContent-Range: bytes 1000000-1000004/2000000\r\nContent-Length: 10\r\n\r\n"
     "xxxxxxxxxx",
     "3 71"},
    {"MoreThanTheRange",
     "HTTP/1.1 206 Part\r\nContent-Range: bytes 1000000-1000004/2000000\r\n\r\nxxxxxxxxxx", "3 71"},
    {"Refused", "HTTP/1.1 401 No\r\nContent-Length: 0\r\n\r\n", "3 401"},
    {"Gone", "HTTP/1.1 404 Gone\r\nContent-Length: 0\r\n\r\n", "3 404"},
    {"RedirectedNowhere", "HTTP/1.1 302 There\r\nContent-Length: 0\r\n\r\n", "3 71"},
    {"Trouble", "HTTP/1.1 500 Ouch\r\nContent-Length: 4\r\n\r\nouch", "3 500"},
};

INSTANTIATE_TEST_SUITE_P(Servers, HttpBadRange, ::testing::ValuesIn(kBadRanges), RowName());

/// A position never gets behind the size.
TEST_F(HttpTest, BytesBehindTheEndAreNoBytes)
{
    OddServer const odd([](OddServer::Client const& client, std::string const& request) {
        bool const isPiece = request.find("\r\nRange: bytes=1999990-\r\n") != std::string::npos;
        client.Send(isPiece
                        ? "HTTP/1.1 206 Part\r\nContent-Range: bytes 1999990-1999999/2000000\r\n"
                          "Transfer-Encoding: chunked\r\n\r\n14\r\n" +
                              std::string(20, 'x') + "\r\n0\r\n\r\n"
                        : "HTTP/1.1 200 OK\r\nContent-Length: 2000000\r\n\r\n" + std::string(2'000'000, 'a'));
    });
    auto const provider = Open(odd.URL("/x"));
    EXPECT_EQ(provider->SetPosition(1'999'990, IDataProvider::kFromStart), 0);
    EXPECT_EQ(Read(*provider, 20, 3), "");
    EXPECT_EQ(provider->GetPosition(), 1'999'990);
    EXPECT_EQ(reporter->text, "3 71");
    EXPECT_EQ(log.Take().size(), 1u);
}

/// Positions that can't be counted on from are refused.
TEST_F(HttpTest, ASizeBeyondAllNumbersIsNone)
{
    OddServer const odd([](OddServer::Client const& client, std::string const& request) {
        bool const isPiece = request.find("\r\nRange: bytes=9223372036854775806-\r\n") != std::string::npos;
        client.Send(isPiece ? "HTTP/1.1 206 Part\r\nContent-Range: bytes "
                              "9223372036854775806-9223372036854775806/9223372036854775807\r\n\r\nxxxxx"
                            : "HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775807\r\n\r\n01234");
    });
    uint64 size = 7;
    EXPECT_EQ(FileAt(odd.URL("/x"))->GetSize(size), 26);
    EXPECT_EQ(size, 7u);
    auto const provider = Open(odd.URL("/x"));
    EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromEnd), 13);
    EXPECT_EQ(provider->SetPosition(9'223'372'036'854'775'806, IDataProvider::kFromStart), 0);
    EXPECT_EQ(Read(*provider, 5, 3), "");
    EXPECT_EQ(reporter->text, "3 71");
    EXPECT_EQ(log.Take().size(), 1u);
}

TEST_F(HttpTest, ASizeThatIsNotToldIsLearntWithTheEnd)
{
    server.File("large", Pattern(700'000));
    auto const provider = Open(server.Http("/chunked/large"));
    EXPECT_EQ(provider->SetPosition(1, IDataProvider::kFromEnd), 13);
    EXPECT_EQ(Read(*provider, 10), "line 0\nlin");
    EXPECT_GE(provider->Size(), 10);
    EXPECT_LT(provider->Size(), 700'000);
    // Behind the end, wherever that is.
    EXPECT_EQ(provider->SetPosition(800'000, IDataProvider::kFromStart), 0);
    EXPECT_TRUE(provider->AtEnd());
    EXPECT_EQ(Read(*provider, 10, 3), "");
    EXPECT_EQ(provider->Size(), 700'000);
    EXPECT_EQ(provider->SetPosition(700'000, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(Read(*provider, 10), "line 0\nlin");
    EXPECT_EQ(reporter->text, "");
}

/// Serves `content` in pieces of its choice, and tells its size nobody.
std::string PieceOf(std::string const& content, std::string const& request, std::size_t longest)
{
    constexpr std::string_view kRange = "\r\nRange: bytes=";
    std::size_t const at = request.find(kRange);
    if (at == std::string::npos)
    {
        char length[32];
        std::snprintf(length, sizeof length, "%zx\r\n", content.size());
        return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + (length + content) + "\r\n0\r\n\r\n";
    }
    std::size_t const from = std::stoul(request.substr(at + kRange.size()));
    if (from >= content.size())
        return "HTTP/1.1 416 None\r\nContent-Length: 0\r\n\r\n";
    std::string const piece = content.substr(from, longest);
    return "HTTP/1.1 206 Part\r\nContent-Range: bytes " + std::to_string(from) + "-" +
           std::to_string(from + piece.size() - 1) + "/*\r\nContent-Length: " + std::to_string(piece.size()) +
           "\r\n\r\n" + piece;
}

struct Pieces
{
    char const* name;
    std::size_t longest;
    /// Where something is looked for, before everything is read from `from` on.
    int64 first;
    int64 from;
};

class HttpPieces : public HttpTest, public ::testing::WithParamInterface<Pieces>
{
};

TEST_P(HttpPieces, OfNoKnownSizeAreReadToTheEnd)
{
    Pieces const& row = GetParam();
    std::string const content = Pattern(1 << 20);
    OddServer const odd([&](OddServer::Client const& client, std::string const& request) {
        client.Send(PieceOf(content, request, row.longest));
    });
    auto const provider = Open(odd.URL("/x"));
    EXPECT_EQ(Read(*provider, 10), content.substr(0, 10));
    EXPECT_EQ(provider->SetPosition(row.first, IDataProvider::kFromStart), 0);
    bool const isThere = row.first < (1 << 20);
    EXPECT_EQ(Read(*provider, 10, isThere ? 0 : 3).size(), isThere ? 10u : 0u);
    EXPECT_EQ(provider->AtEnd(), !isThere);
    EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromEnd), 13);
    EXPECT_EQ(provider->SetPosition(row.from, IDataProvider::kFromStart), 0);
    std::string read;
    while (!provider->AtEnd())
        read += Read(*provider, 65536);
    EXPECT_TRUE(read == content.substr(static_cast<std::size_t>(row.from)));
    EXPECT_EQ(provider->Size(), 1 << 20);
    EXPECT_EQ(provider->SetPosition(0, IDataProvider::kFromEnd), 0);
    EXPECT_EQ(reporter->text, "");
}

Pieces const kPieces[] = {
    {"FarBehindTheEnd", 1 << 20, 50'000'000, 0},
    {"AtTheEnd", 1 << 20, 1 << 20, 0},
    {"InTheMiddle", 1 << 20, 600'000, 300'000},
    {"ShortPieces", 100'000, 600'000, 300'000},
    {"BehindTheEndAndShortPieces", 100'000, 50'000'000, 300'000},
};

INSTANTIATE_TEST_SUITE_P(Servers, HttpPieces, ::testing::ValuesIn(kPieces), RowName());

TEST_F(HttpTest, BytesOutliveTheirFileObjectAndTheHost)
{
    auto provider = Open(server.Http("/plain/text"));
    reporter.Reset();
    host.reset();
    EXPECT_EQ(Read(*provider, 10), "0123456789");
    provider.Reset();
}
} // namespace
} // namespace KORVA::TESTS
