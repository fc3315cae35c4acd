// The tool on names: well-known directories, relative names, references, and names kept in dictionaries.
#include "Integration/ToolRun.h"
#include "Support/RowName.h"

#include <unistd.h>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

constexpr char kDirectories[] =
    "home, desktop, documents, downloads, music, pictures, videos, templates, public, data, config, cache, "
    "state, temporary, system-data, system-config";

/// A home that no path can be made of, so that no directory in it is known.
constexpr char kNoHome[] = "HOME=/\xFF";

class ToolNames : public ToolRun
{
protected:
    /// Refused as wrong usage, in whatever words, with nothing printed and no file made.
    void RefusesUsage(std::vector<std::string> const& arguments) const
    {
        Outcome const outcome = Do(arguments);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.starts_with("tessio: ")) << outcome.err;
        EXPECT_EQ(Names(), "");
    }
};

TEST_F(ToolNames, DirsShowsEveryDirectoryAndWhetherItIsThere)
{
    std::string const root = directory.Path().string();
    fs::create_directories(Path("home/.config"));
    fs::create_directories(Path("home/Music"));
    fs::create_directory(Path("tmp"));
    directory.File("home/Desktop", "a file is no directory");
    environment = {"HOME=" + root + "/home", "TMPDIR=" + root + "/tmp", "XDG_DATA_DIRS=" + root + ":/none",
                   "XDG_CONFIG_DIRS=" + root + "/none", "XDG_STATE_HOME=/none/state"};
    Succeeds({"dirs"}, "home          " + root + "/home\n" +                               //
                           "desktop       " + root + "/home/Desktop  (not there)\n" +      //
                           "documents     " + root + "/home/Documents  (not there)\n" +    //
                           "downloads     " + root + "/home/Downloads  (not there)\n" +    //
                           "music         " + root + "/home/Music\n" +                     //
                           "pictures      " + root + "/home/Pictures  (not there)\n" +     //
                           "videos        " + root + "/home/Videos  (not there)\n" +       //
                           "templates     " + root + "/home/Templates  (not there)\n" +    //
                           "public        " + root + "/home/Public  (not there)\n" +       //
                           "data          " + root + "/home/.local/share  (not there)\n" + //
                           "config        " + root + "/home/.config\n" +                   //
                           "cache         " + root + "/home/.cache  (not there)\n" +       //
                           "state         /none/state  (not there)\n" +                    //
                           "temporary     " + root + "/tmp\n" +                            //
                           "system-data   " + root + "\n" +                                //
                           "system-config " + root + "/none  (not there)\n");
}

TEST_F(ToolNames, DirsShowsThoseAskedForInTheirOrder)
{
    environment = {"HOME=/home/ada/", "XDG_CONFIG_HOME=/none"};
    Succeeds({"dirs", "music", "config", "music"}, "music         /home/ada/Music  (not there)\n"
                                                   "config        /none  (not there)\n"
                                                   "music         /home/ada/Music  (not there)\n");
    Succeeds({"dirs", "--json", "config"}, "{\n"
                                           "  \"schema\": 1,\n"
                                           "  \"directories\": [\n"
                                           "    {\n"
                                           "      \"name\": \"config\",\n"
                                           "      \"path\": \"/none\",\n"
                                           "      \"exists\": false\n"
                                           "    }\n"
                                           "  ]\n"
                                           "}\n");
}

TEST_F(ToolNames, DirsFollowsWhatTheUserHasConfigured)
{
    directory.File("user-dirs.dirs", "# a comment\n"
                                     "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                                     "XDG_DESKTOP_DIR=\"/abs dir\"\n"
                                     "XDG_VIDEOS_DIR=\"relative\"\n"
                                     "XDG_PICTURES_DIR=\"$HOME/a\\\"b\"\n");
    environment = {"HOME=/home/ada", "XDG_CONFIG_HOME=" + directory.Path().string()};
    Succeeds({"dirs", "documents", "desktop", "videos", "pictures", "music"},
             "documents     /home/ada/Dokumente  (not there)\n"
             "desktop       /abs dir  (not there)\n"
             "videos        /home/ada/Videos  (not there)\n"
             "pictures      /home/ada/a\"b  (not there)\n"
             "music         /home/ada/Music  (not there)\n");
    Succeeds({"uri", "--relative-to", "documents", "/home/ada/Dokumente/a"},
             "/home/ada/Dokumente/a\n"
             "  directory documents\n"
             "  at        /home/ada/Dokumente\n"
             "  relative  a\n"
             "  path      /home/ada/Dokumente/a\n"
             "  name      a\n");
}

TEST_F(ToolNames, WhatNobodyKnowsIsUnknown)
{
    environment = {kNoHome, "XDG_CONFIG_HOME=/none"};
    Succeeds({"dirs", "documents", "config"}, "documents     unknown\n"
                                              "config        /none  (not there)\n");
    Succeeds({"dirs", "--json", "documents"}, "{\n"
                                              "  \"schema\": 1,\n"
                                              "  \"directories\": [\n"
                                              "    {\n"
                                              "      \"name\": \"documents\",\n"
                                              "      \"path\": null,\n"
                                              "      \"exists\": false\n"
                                              "    }\n"
                                              "  ]\n"
                                              "}\n");
    Fails({"uri", "--relative-to", "documents", "/a"}, 1,
          "tessio: the directory documents is unknown here\n");
}

TEST_F(ToolNames, AHomeThatIsNoPathIsNotOne)
{
    for (char const* const home : {"HOME=", "HOME=relative"})
    {
        environment = {home, "XDG_CONFIG_HOME=relative", "XDG_DATA_HOME=", "TMPDIR=relative"};
        for (char const* const name : {"home", "documents", "config", "data", "temporary"})
        {
            // Somebody's home there is, whoever runs this; never a path from the current directory.
            std::string const out = Do({"dirs", name}).out;
            EXPECT_TRUE(out.size() > 14 && (out[14] == '/' || out.substr(14) == "unknown\n")) << out;
        }
    }
}

TEST_F(ToolNames, LinesInANameDoNotBreakTheList)
{
    environment = {"HOME=/a\nb", "XDG_CONFIG_HOME=/none"};
    Succeeds({"dirs", "music"}, "music         /a\\nb/Music  (not there)\n");
}

struct RefusalRow
{
    char const* name;
    std::vector<std::string> arguments;
    std::string err;
};

class ToolNamesRefusal : public ToolNames, public ::testing::WithParamInterface<RefusalRow>
{
};

TEST_P(ToolNamesRefusal, IsSaidWithWordsAndMakesNothing)
{
    Fails(GetParam().arguments, 2, "tessio: " + GetParam().err + "\n");
    EXPECT_EQ(Names(), "");
}

std::string const kMore = "\nRun it with --help for more information.";

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolNamesRefusal,
    ::testing::Values(
        RefusalRow{"NoSuchDirectory",
                   {"dirs", "home", "attic"},
                   std::string("there is no directory \"attic\"; there are ") + kDirectories},
        RefusalRow{"DirectoryOfNoName",
                   {"dirs", ""},
                   std::string("there is no directory \"\"; there are ") + kDirectories},
        RefusalRow{"RelativeToNoSuchDirectory",
                   {"uri", "--relative-to", "Documents", "/a"},
                   std::string("there is no directory \"Documents\"; there are ") + kDirectories},
        RefusalRow{
            "RelativeToNothing", {"uri", "--relative-to"}, "--relative-to: 1 required TEXT missing" + kMore},
        RefusalRow{"NothingRelative", {"uri", "--relative-to", "documents"}, "LOCATION is required" + kMore},
        RefusalRow{"RelativeAndResolved",
                   {"uri", "--relative-to", "home", "--resolve", "http://h/", "a"},
                   "--relative-to excludes --resolve" + kMore},
        RefusalRow{"RelativePathNotUTF8",
                   {"uri", "--relative-to", "documents", "a\xFF"},
                   "location \"a\uFFFD\" is not valid UTF-8"},
        RefusalRow{"AbsolutePathNotUTF8",
                   {"uri", "--relative-to", "documents", "/a\xFF"},
                   "path \"/a\uFFFD\" is not valid UTF-8"},
        RefusalRow{"BaseNotUTF8", {"uri", "--resolve", "\xFF", "a"}, "base \"\uFFFD\" is not valid UTF-8"},
        RefusalRow{
            "ReferenceWithABlank",
            {"uri", "--resolve", "http://h/a", "b c"},
            "cannot resolve \"b c\" against \"http://h/a\": a reference must be escaped, a blank as %20"},
        RefusalRow{
            "ReferenceWithHalfAnEscape",
            {"uri", "--resolve", "http://h/a", "b%2"},
            "cannot resolve \"b%2\" against \"http://h/a\": a reference must be escaped, a blank as %20"},
        RefusalRow{"RelativeValueWithoutDirectory",
                   {"dict", "set", "d", "1", "relative", "a.txt"},
                   "\"a.txt\" names no file from a directory, as documents:notes/a.txt does"},
        RefusalRow{"RelativeValueMissing",
                   {"dict", "set", "d", "1", "relative"},
                   "\"\" names no file from a directory, as documents:notes/a.txt does"},
        RefusalRow{"RelativeValueFromNoSuchDirectory",
                   {"dict", "set", "d", "1", "relative", "attic:a"},
                   std::string("there is no directory \"attic\"; there are ") + kDirectories},
        RefusalRow{"RelativeValueFromADirectoryOfNoName",
                   {"dict", "set", "d", "1", "relative", ":a"},
                   std::string("there is no directory \"\"; there are ") + kDirectories},
        RefusalRow{"RelativeValueNotUTF8",
                   {"dict", "set", "d", "1", "relative", "documents:\xFF"},
                   "path \"\uFFFD\" is not valid UTF-8"},
        RefusalRow{
            "URIValueMissing", {"dict", "set", "d", "1", "uri"}, "\"\" is no uri: nothing can be made of it"},
        RefusalRow{"URIValueNotUTF8",
                   {"dict", "set", "d", "1", "uri", "\xFF"},
                   "location \"\uFFFD\" is not valid UTF-8"},
        RefusalRow{"TwoURIValues",
                   {"dict", "set", "d", "1", "uri", "/a", "/b"},
                   "The following argument was not expected: /b" + kMore}),
    RowName());

TEST_F(ToolNames, AnEmptyBaseOrDirectoryIsNotNone)
{
    RefusesUsage({"uri", "--resolve", "", "a"});
    RefusesUsage({"uri", "--relative-to", "", "/a"});
}

struct RelativeRow
{
    char const* name;
    char const* location;
    char const* relative;
    char const* path;
    char const* last;
};

class ToolRelative : public ToolNames, public ::testing::WithParamInterface<RelativeRow>
{
};

TEST_P(ToolRelative, IsShownFromTheDirectory)
{
    RelativeRow const& row = GetParam();
    std::string const relative = *row.relative ? std::string("  ") + row.relative : "";
    Succeeds({"uri", "--relative-to", "documents", row.location},
             std::string(row.location) +
                 "\n  directory documents\n  at        /home/ada/Documents\n  relative" + relative +
                 "\n  path      " + row.path + "\n  name      " + row.last + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRelative,
    ::testing::Values(
        RelativeRow{"Inside", "/home/ada/Documents/n/a", "n/a", "/home/ada/Documents/n/a", "a"},
        RelativeRow{"Itself", "/home/ada/Documents", "", "/home/ada/Documents", "Documents"},
        RelativeRow{"ItselfWithASlash", "/home/ada/Documents/", "", "/home/ada/Documents", "Documents"},
        RelativeRow{"Beside", "/home/ada/Music/b", "../Music/b", "/home/ada/Music/b", "b"},
        RelativeRow{"BeginsAlike", "/home/ada/Documents2/b", "../Documents2/b", "/home/ada/Documents2/b",
                    "b"},
        RelativeRow{"AnotherCase", "/home/ada/documents/b", "../documents/b", "/home/ada/documents/b", "b"},
        RelativeRow{"FarAway", "/x", "../../../x", "/x", "x"},
        RelativeRow{"RoundAbout", "/home/ada/Documents/../b//c/./d", "../b/c/d", "/home/ada/b/c/d", "d"},
        RelativeRow{"FileURL", "file:///home/ada/x", "../x", "/home/ada/x", "x"},
        RelativeRow{"FromThere", "n/a.txt", "n/a.txt", "/home/ada/Documents/n/a.txt", "a.txt"},
        RelativeRow{"FromThereUpwards", "../b", "../b", "/home/ada/b", "b"},
        RelativeRow{"EveryCharacter", "/home/ada/Documents/a b%20?#:e\u0301", "a b%20?#:e\u0301",
                    "/home/ada/Documents/a b%20?#:e\u0301", "a b%20?#:e\u0301"}),
    RowName());

struct AnotherPathRow
{
    char const* name;
    char const* location;
    /// Where it really is.
    char const* path;
};

class ToolRelativePath : public ToolNames, public ::testing::WithParamInterface<AnotherPathRow>
{
};

TEST_P(ToolRelativePath, IsTheRightOneOrNone)
{
    Outcome const outcome = Do({"uri", "--relative-to", "documents", GetParam().location});
    if (outcome.exitCode == 0)
        EXPECT_NE(outcome.out.find(std::string("\n  path      ") + GetParam().path + "\n"), std::string::npos)
            << outcome.out;
    else
        EXPECT_EQ(outcome.out, "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolRelativePath,
    ::testing::Values(AnotherPathRow{"Root", "/", "/"}, AnotherPathRow{"Above", "/home", "/home"},
                      AnotherPathRow{"Here", ".", "/home/ada/Documents"},
                      AnotherPathRow{"HereWithASlash", "./", "/home/ada/Documents"},
                      AnotherPathRow{"Up", "..", "/home/ada"},
                      AnotherPathRow{"UpWithASlash", "../", "/home/ada"},
                      AnotherPathRow{"DownAndUpWithASlash", "a/../", "/home/ada/Documents"},
                      AnotherPathRow{"Backslash", "/home/ada/Documents/a\\b", "/home/ada/Documents/a\\b"},
                      AnotherPathRow{"OnAnotherHost", "http://h.example/x", "nowhere on this system"},
                      AnotherPathRow{"FileOnAnotherHost", "file://h.example/x", "nowhere on this system"}),
    RowName());

struct ResolvedRow
{
    char const* name;
    char const* base;
    char const* reference;
    char const* absolute;
};

class ToolResolved : public ToolNames, public ::testing::WithParamInterface<ResolvedRow>
{
};

TEST_P(ToolResolved, IsShownAbsolute)
{
    Outcome const outcome = Do({"uri", "--resolve", GetParam().base, GetParam().reference});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.out.starts_with(std::string(GetParam().reference) + "\n  scheme    ")) << outcome.out;
    EXPECT_TRUE(outcome.out.ends_with(std::string("\n  absolute  ") + GetParam().absolute + "\n"))
        << outcome.out;
    EXPECT_EQ(outcome.err, "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolResolved,
    ::testing::Values(ResolvedRow{"Beside", "http://h/a/b", "c", "http://h/a/c"},
                      ResolvedRow{"Upwards", "http://h/a/b/c", "../d", "http://h/a/d"},
                      ResolvedRow{"FromTheRoot", "http://u@h:8080/a/b?q", "/x", "http://u@h:8080/x"},
                      ResolvedRow{"AnotherHost", "http://h/a", "//o/x", "http://o/x"},
                      ResolvedRow{"AnotherScheme", "http://h/a", "ftp://o/x", "ftp://o/x"},
                      ResolvedRow{"AnotherQuery", "http://h/a?q", "?r", "http://h/a?r"},
                      ResolvedRow{"Nothing", "http://h/a?q", "", "http://h/a?q"},
                      ResolvedRow{"Escaped", "http://h/a", "b%20c", "http://h/b c"},
                      ResolvedRow{"AgainstAPath", "/a/b", "c", "file:///a/c"},
                      ResolvedRow{"AgainstADrive", "C:\\a\\b", "c", "file:///C:/a/c"}),
    RowName());

TEST_F(ToolNames, ABaseWithoutASchemeGivesNoHost)
{
    // The first part of a path must not be taken for somebody's machine.
    Outcome const outcome = Do({"uri", "--resolve", "plain", "c/d"});
    EXPECT_EQ(outcome.out.find("absolute  //c/d"), std::string::npos) << outcome.out;
}

TEST_F(ToolNames, ResolvedAndRelativePrintJson)
{
    Succeeds({"uri", "--json", "--resolve", "http://h/a", "b\?c", "d"},
             "{\n"
             "  \"schema\": 1,\n"
             "  \"uris\": [\n"
             "    {\n"
             "      \"location\": \"b?c\",\n"
             "      \"scheme\": \"http\",\n"
             "      \"host\": \"h\",\n"
             "      \"port\": 0,\n"
             "      \"path\": \"/b\",\n"
             "      \"query\": \"c\",\n"
             "      \"name\": \"b\",\n"
             "      \"absolute\": \"http://h/b?c\"\n"
             "    },\n"
             "    {\n"
             "      \"location\": \"d\",\n"
             "      \"scheme\": \"http\",\n"
             "      \"host\": \"h\",\n"
             "      \"port\": 0,\n"
             "      \"path\": \"/d\",\n"
             "      \"query\": \"\",\n"
             "      \"name\": \"d\",\n"
             "      \"absolute\": \"http://h/d\"\n"
             "    }\n"
             "  ]\n"
             "}\n");
    Succeeds({"uri", "--json", "--relative-to", "music", "a\"b"},
             "{\n"
             "  \"schema\": 1,\n"
             "  \"uris\": [\n"
             "    {\n"
             "      \"location\": \"a\\\"b\",\n"
             "      \"directory\": \"music\",\n"
             "      \"at\": \"/home/ada/Music\",\n"
             "      \"relative\": \"a\\\"b\",\n"
             "      \"path\": \"/home/ada/Music/a\\\"b\",\n"
             "      \"name\": \"a\\\"b\"\n"
             "    }\n"
             "  ]\n"
             "}\n");
}
} // namespace
} // namespace KORVA::TESTS
