// The tool on files of web servers.
#include "Examples/OddServer.h"
#include "Examples/WebServer.h"
#include "Support/RowName.h"
#include "Support/Terminal.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace KORVA::TESTS
{
namespace
{
constexpr char kRight[] = "TESSIO_PASSWORD=Gr\xC3\xBC\xC3\x9F"
                          "e!";

class HttpTool : public ToolRun
{
protected:
    HttpTool()
    {
        environment.insert(environment.end(), {"no_proxy=*", "KORVA_HTTP_CA_FILE=" + server.Certificate(),
                                               "KORVA_HTTP_STALL_TIMEOUT=1000"});
        server.File("text", "0123456789");
        std::filesystem::last_write_time(server.PathOf("text"),
                                         std::filesystem::file_time_type::clock::from_sys(
                                             std::chrono::sys_seconds(std::chrono::seconds(1'700'000'000))));
    }

    /// {http}, {https} and {odd} stand for where the servers are.
    std::string Filled(std::string text) const
    {
        auto const fill = [&text](std::string const& what, std::string const& with) {
            for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what))
                text.replace(at, what.size(), with);
        };
        fill("{http}", server.Http(""));
        fill("{https}", server.Https(""));
        fill("{odd}", odd.URL(""));
        return text;
    }

    std::vector<std::string> WithPlugIn(std::vector<std::string> const& arguments) const
    {
        std::vector<std::string> all{"--plugin", TESSIO_HTTP_PLUGIN};
        for (std::string const& argument : arguments)
            all.push_back(Filled(argument));
        return all;
    }

    WebServer server;
    OddServer odd{[](OddServer::Client const& client, std::string const& request) {
        bool const isHead = request.starts_with("HEAD");
        std::string const path = request.substr(request.find('/'), request.find(" HTTP") - request.find('/'));
        if (path == "/cut")
            client.Send("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n" + std::string(isHead ? "" : "01234"));
        else if (path == "/cutchunk")
            client.Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" +
                        std::string(isHead ? "" : "5\r\n01234\r\n"));
        else if (path == "/stalled")
        {
            client.Send("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n" + std::string(isHead ? "" : "01234"));
            if (!isHead)
                client.Stall();
        }
        else if (path == "/asks" && request.find("\r\nAuthorization: ") == std::string::npos)
            client.Send("HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"r\"\r\n"
                        "Content-Length: 0\r\nConnection: close\r\n\r\n");
        else if (path == "/nohead" && !isHead)
            client.Send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n01234");
        else
            client.Stall();
    }};
};

struct Row
{
    char const* name;
    std::vector<std::string> arguments;
    std::string environment = {};
    int exitCode = 0;
    std::string out = {};
    std::string err = {};
    /// The names in the directory afterwards, and what is in the file "copy".
    std::string names = {};
    std::string copy = {};
};

class HttpToolRow : public HttpTool, public ::testing::WithParamInterface<Row>
{
};

TEST_P(HttpToolRow, Does)
{
    Row const& row = GetParam();
    if (!row.environment.empty())
        environment.push_back(row.environment);
    Outcome const outcome = Do(WithPlugIn(row.arguments));
    EXPECT_EQ(outcome.exitCode, row.exitCode);
    EXPECT_EQ(outcome.out, Filled(row.out));
    EXPECT_EQ(outcome.err, Filled(row.err));
    EXPECT_EQ(Names(), row.names);
    if (row.names == "copy")
    {
        EXPECT_EQ(Content(Path("copy")), row.copy);
    }
}

Row const kRows[] = {
    {.name = "Cat", .arguments = {"cat", "{http}/plain/text"}, .out = "0123456789"},
    {.name = "CatTLS", .arguments = {"cat", "{https}/plain/text"}, .out = "0123456789"},
    {.name = "CatOfNoSize", .arguments = {"cat", "{http}/chunked/text"}, .out = "0123456789"},
    {.name = "CatBuffered",
     .arguments = {"cat", "--buffer", "4K", "{http}/plain/text", "{http}/chunked/text"},
     .out = "01234567890123456789"},
    {.name = "CatBufferedWhereHeadIsNotAnswered",
     .arguments = {"cat", "--buffer", "4K", "{odd}/nohead"},
     .out = "01234"},
    {.name = "CatAhead", .arguments = {"cat", "--async", "{http}/plain/text"}, .out = "0123456789"},
    {.name = "CatForAUser",
     .arguments = {"cat", "--user", "ada", "{https}/auth/text"},
     .environment = kRight,
     .out = "0123456789"},
    {.name = "CatForNobody",
     .arguments = {"cat", "{http}/auth/text"},
     .exitCode = 3,
     .err = "tessio: cannot open \"{http}/auth/text\": the server asks for a user name and password\n"},
    {.name = "CatWithAWrongPassword",
     .arguments = {"cat", "--user", "ada", "{http}/auth/text"},
     .environment = "TESSIO_PASSWORD=wrong",
     .exitCode = 3,
     .err = "tessio: cannot open \"{http}/auth/text\": the server refuses the user name or the password\n"},
    {.name = "CatWithoutAPassword",
     .arguments = {"cat", "--user", "ada", "{http}/auth/text"},
     .exitCode = 2,
     .err = "tessio: there is no password for the user \"ada\": set TESSIO_PASSWORD\n"},
    {.name = "CatWithABadPassword",
     .arguments = {"cat", "--user", "ada", "{http}/auth/text"},
     .environment = "TESSIO_PASSWORD=\xFF",
     .exitCode = 2,
     .err = "tessio: the password is not valid UTF-8\n"},
    {.name = "CatOfTheForbidden",
     .arguments = {"cat", "{http}/forbidden/text"},
     .exitCode = 3,
     .err = "tessio: cannot open \"{http}/forbidden/text\": the server refuses access\n"},
    {.name = "CatOfNothing",
     .arguments = {"cat", "{http}/plain/nothing"},
     .exitCode = 1,
     .err = "tessio: cannot open \"{http}/plain/nothing\": no such file\n"},
    {.name = "CatFromAServerInTrouble",
     .arguments = {"cat", "{http}/error"},
     .exitCode = 3,
     .err = "tessio: cannot open \"{http}/error\": the server answers 503\n"},
    {.name = "CatCut",
     .arguments = {"cat", "{odd}/cut"},
     .exitCode = 3,
     .out = "01234",
     .err = "tessio: cannot read \"{odd}/cut\": the transfer broke off after 5 of 20 bytes\n"},
    {.name = "CatCutOfNoSize",
     .arguments = {"cat", "{odd}/cutchunk"},
     .exitCode = 3,
     .out = "01234",
     .err = "tessio: cannot read \"{odd}/cutchunk\": the transfer broke off after 5 bytes\n"},
    {.name = "CatStalled",
     .arguments = {"cat", "{odd}/stalled"},
     .exitCode = 3,
     .out = "01234",
     .err = "tessio: cannot read \"{odd}/stalled\": timed out after 5 of 20 bytes\n"},
    {.name = "CatUnanswered",
     .arguments = {"cat", "{odd}/nothing"},
     .exitCode = 3,
     .err = "tessio: cannot open \"{odd}/nothing\": timed out\n"},
    {.name = "CatUnansweredForAUser",
     .arguments = {"cat", "--user", "ada", "{odd}/asks"},
     .environment = kRight,
     .exitCode = 3,
     .err = "tessio: cannot open \"{odd}/asks\": timed out\n"},
    {.name = "CatUntrusted",
     .arguments = {"cat", "{https}/plain/text"},
     .environment = "KORVA_HTTP_CA_FILE=",
     .exitCode = 3,
     .err = "tessio: cannot open \"{https}/plain/text\": the server's certificate is not trusted\n"},
    {.name = "CatOfALocalFileForAUser",
     .arguments = {"cat", "--user", "ada", "/dev/null/x"},
     .environment = kRight,
     .exitCode = 1,
     .err = "tessio: cannot open \"/dev/null/x\": no such file\n"},
    {.name = "StatForAUser",
     .arguments = {"stat", "--user", "ada", "{https}/auth/text"},
     .environment = kRight,
     .out = "{https}/auth/text\n"
            "  path         /auth/text\n"
            "  size         10\n"
            "  modified     2023-11-14T22:13:20.000000000Z\n"
            "  created      unknown\n"
            "  permissions  r--r--r--\n"
            "  hidden       no\n"},
    {.name = "StatOfNoSize",
     .arguments = {"stat", "--json", "{http}/chunked/text"},
     .out = "{\n"
            "  \"schema\": 1,\n"
            "  \"files\": [\n"
            "    {\n"
            "      \"location\": \"{http}/chunked/text\",\n"
            "      \"scheme\": \"http\",\n"
            "      \"path\": \"/chunked/text\",\n"
            "      \"size\": null,\n"
            "      \"modified\": null,\n"
            "      \"created\": null,\n"
            "      \"permissions\": \"r--r--r--\",\n"
            "      \"hidden\": false\n"
            "    }\n"
            "  ]\n"
            "}\n"},
    {.name = "StatForNobody",
     .arguments = {"stat", "{http}/auth/text"},
     .exitCode = 3,
     .err = "tessio: cannot stat \"{http}/auth/text\": the server asks for a user name and password\n"},
    {.name = "StatUnanswered",
     .arguments = {"stat", "{odd}/nothing"},
     .exitCode = 3,
     .err = "tessio: cannot stat \"{odd}/nothing\": timed out\n"},
    {.name = "Copy", .arguments = {"cp", "{http}/plain/text", "copy"}, .names = "copy", .copy = "0123456789"},
    {.name = "CopyForAUser",
     .arguments = {"cp", "--user", "ada", "{https}/auth/text", "copy"},
     .environment = kRight,
     .names = "copy",
     .copy = "0123456789"},
    {.name = "CopyOfNoSize",
     .arguments = {"cp", "{http}/chunked/text", "copy"},
     .names = "copy",
     .copy = "0123456789"},
    {.name = "CopyIntoADirectory", .arguments = {"cp", "{http}/plain/text", "."}, .names = "text"},
    {.name = "CopyCut",
     .arguments = {"cp", "{odd}/cut", "copy"},
     .exitCode = 3,
     .err = "tessio: cannot read \"{odd}/cut\": the transfer broke off after 5 of 20 bytes\n"},
    {.name = "CopyCutOfNoSize",
     .arguments = {"cp", "{odd}/cutchunk", "copy"},
     .exitCode = 3,
     .err = "tessio: cannot read \"{odd}/cutchunk\": the transfer broke off after 5 bytes\n"},
    {.name = "CopyForNobody",
     .arguments = {"cp", "{http}/auth/text", "copy"},
     .exitCode = 3,
     .err = "tessio: cannot copy \"{http}/auth/text\": the server asks for a user name and password\n"},
    {.name = "CopyToAServer",
     .arguments = {"cp", "/etc/passwd", "{http}/plain/copy"},
     .exitCode = 2,
     .err = "tessio: cannot copy \"/etc/passwd\" to \"{http}/plain/copy\": only files of this system can be "
            "written\n"},
    {.name = "CopyCloned",
     .arguments = {"cp", "--clone", "{http}/plain/text", "copy"},
     .exitCode = 2,
     .err =
         "tessio: cannot copy \"{http}/plain/text\" to \"copy\": only files of this system can be cloned\n"},
    {.name = "Remove",
     .arguments = {"rm", "{http}/plain/text"},
     .exitCode = 3,
     .err = "tessio: cannot remove \"{http}/plain/text\": permission denied\n"},
    {.name = "ImportCutOfNoSize",
     .arguments = {"strings", "import", "copy", "{odd}/cutchunk"},
     .exitCode = 3,
     .err = "tessio: cannot read \"{odd}/cutchunk\": the transfer broke off after 5 bytes\n"},
};

INSTANTIATE_TEST_SUITE_P(Commands, HttpToolRow, ::testing::ValuesIn(kRows), RowName());

TEST_F(HttpTool, ReadsRecordsFromServers)
{
    Succeeds({"dict", "set", "a.tess", "1", "int32", "7"});
    server.File("a.tess", Content(Path("a.tess")));
    Outcome const outcome = Do(WithPlugIn({"dict", "list", "{https}/plain/a.tess"}));
    EXPECT_EQ(outcome.out, "1 int32 7\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(HttpTool, ACopyHasTheDateAndKeepsTheTargetsPermissions)
{
    directory.File("copy", "old");
    std::filesystem::permissions(Path("copy"), std::filesystem::perms(0600));
    EXPECT_EQ(Do(WithPlugIn({"cp", "{http}/plain/text", "copy"})).err, "");
    EXPECT_EQ(Content(Path("copy")), "0123456789");
    EXPECT_EQ(std::filesystem::status(Path("copy")).permissions(), std::filesystem::perms(0600));
    auto const date =
        std::filesystem::file_time_type::clock::to_sys(std::filesystem::last_write_time(Path("copy")));
    EXPECT_EQ(date.time_since_epoch(), std::chrono::seconds(1'700'000'000));
}

TEST_F(HttpTool, APasswordIsAskedForWhereNobodySeesIt)
{
    Terminal const terminal;
    if (!terminal.IsOpen())
        GTEST_SKIP() << terminal.Why();
    std::string const question = "Password of ada: ";
    // Runs the tool and types once it asks.
    auto const exitCodeAfter = [&](std::string const& answer) {
        Running tool(Command(WithPlugIn({"cat", "--user", "ada", "{http}/auth/text"})), Path("").string(),
                     [&terminal] { terminal.Take(); });
        EXPECT_EQ(terminal.ShownUpTo(question), question);
        terminal.Type(answer);
        return tool.Wait().exitCode;
    };
    EXPECT_EQ(exitCodeAfter(std::string(kRight).substr(16) + "\n"), 0);
    EXPECT_EQ(terminal.Shown(), "\r\n0123456789");
    // Interrupted, with ^C.
    EXPECT_EQ(exitCodeAfter("\3"), 128 + SIGINT);
}

/// The most memory that the tool ever has had, in KiB, while it prints the file.
long PeakOfCat(std::vector<std::string> const& command)
{
    std::vector<char*> arguments;
    for (std::string const& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int bytes[2];
    if (pipe(bytes) != 0)
        return -1;
    pid_t const child = fork();
    if (child == 0)
    {
        dup2(bytes[1], 1);
        EndWithParent();
        closefrom(3);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    close(bytes[1]);
    std::vector<char> piece(std::size_t{1} << 20);
    while (read(bytes[0], piece.data(), piece.size()) > 0)
        continue;
    close(bytes[0]);
    int status = -1;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    EXPECT_EQ(status, 0);
    return usage.ru_maxrss;
}

TEST_F(HttpTool, MemoryDoesNotGrowWithTheFile)
{
    if (TESSIO_TEST_SANITIZED)
        GTEST_SKIP() << "the sanitizers keep what is freed";
    for (char const* const prefix : {"{http}/plain/", "{https}/plain/", "{http}/chunked/"})
    {
        SCOPED_TRACE(prefix);
        server.File("large", "");
        std::filesystem::resize_file(server.PathOf("large"), 1 << 20);
        long const small = PeakOfCat(Command(WithPlugIn({"cat", prefix + std::string("large")})));
        std::filesystem::resize_file(server.PathOf("large"), 256 << 20);
        long const large = PeakOfCat(Command(WithPlugIn({"cat", prefix + std::string("large")})));
        EXPECT_GT(small, 1000);
        EXPECT_LT(large, small + 1024) << small;
    }
}
} // namespace
} // namespace KORVA::TESTS
