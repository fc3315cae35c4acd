// Which folder may include which.
#include "Hygiene/Source.h"
#include "Support/Library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;

std::string const kSDK = "SDK/Headers/Core/LibSupport/";
std::string const kLibrary = "Core/Libraries/Tessaro/Source/src";

struct Area
{
    std::string folder;
    std::set<std::string> mayInclude;
    /// How the headers of the packaged libraries begin that it may include.
    std::vector<std::string> libraries = {};
    /// Whether it is where the operating system is called, or a project of its own.
    bool mayCallSystem = false;
};

std::set<std::string> SDK(std::set<std::string> const& folders)
{
    std::set<std::string> paths;
    for (std::string const& folder : folders)
        paths.insert(kSDK + folder);
    return paths;
}

std::set<std::string> With(std::set<std::string> folders, std::string const& further)
{
    folders.insert(further);
    return folders;
}

std::set<std::string> WithRecords(std::set<std::string> folders)
{
    for (char const* const room : {"Format", "Tree", "Dump", "Edit", "Salvage"})
        folders.insert(std::string("Records/") + room);
    return folders;
}

std::set<std::string> const kBasis = SDK({"ObjectModel", "CoreString", "Logger"});
std::set<std::string> const kCompanions =
    SDK({"ObjectModel", "CoreRegistry", "CoreString", "FileIO", "Logger"});
std::set<std::string> const kWholeSDK = With(With(kCompanions, kSDK + "TessIO"), kSDK + "Host");
std::set<std::string> const kPrograms = With(kWholeSDK, kSDK + "Cxx");
// The interfaces whose numbers stand in files, and what is below them.
std::set<std::string> const kRecordsBasis = SDK({"ObjectModel", "CoreString", "FileIO", "TessIO"});
std::vector<std::string> const kRecordsLibraries = {"fmt/", "nlohmann/"};
std::set<std::string> const kRecordsTree = With(kRecordsBasis, "Records/Format");
std::set<std::string> const kRecordsWork = With(kRecordsTree, "Records/Tree");

// What a folder includes of itself is its own business.
std::vector<Area> const kAreas = {
    {kSDK + "ObjectModel", {}},
    {kSDK + "CoreRegistry", kBasis},
    {kSDK + "CoreString", kBasis},
    {kSDK + "FileIO", kBasis},
    {kSDK + "Logger", kBasis},
    {kSDK + "Host", SDK({"ObjectModel", "CoreRegistry"})},
    {kSDK + "TessIO", kCompanions},
    {kSDK + "Cxx", With(kCompanions, kSDK + "TessIO")},
    {kLibrary, With(With(kCompanions, kSDK + "TessIO"), "Platform/Headers")},
    {"Core/Common/Constructs/UniCharUtils", With(SDK({"ObjectModel", "Logger"}), "Platform/Headers")},
    {"Platform/Headers", {}},
    {"Platform/Source", {"Platform/Headers", "System/Headers"}, {"unicode/"}},
    {"System/Headers", {}},
    {"System/Posix", {"System/Headers"}, {}, true},
    {"System/Linux", {"System/Headers", "System/Posix"}, {}, true},
    {"Companions/CoreRegistry", With(kCompanions, kSDK + "Host")},
    {"Companions/CoreString", With(kCompanions, kSDK + "Host"), {"unicode/"}},
    {"Companions/FileIO", With(With(kCompanions, kSDK + "Host"), "System/Headers")},
    {"Companions/Logger", With(kCompanions, kSDK + "Host"), {"spdlog/"}},
    {"Companions/Host", With(kWholeSDK, "System/Headers")},
    {"Records/Format", kRecordsBasis, kRecordsLibraries},
    {"Records/Tree", kRecordsTree, kRecordsLibraries},
    {"Records/Dump", kRecordsWork, kRecordsLibraries},
    {"Records/Edit", With(kRecordsWork, "Records/Dump"), kRecordsLibraries},
    {"Records/Salvage", kRecordsWork, kRecordsLibraries},
    {"Tools", With(WithRecords(kPrograms), "System/Headers"), {"CLI/", "fmt/", "nlohmann/"}},
    {"Examples", WithRecords(kPrograms), {}, true},
};

/// The headers of the language's own library, but for signals, which are the system's to send and to hold.
bool IsStandard(std::string const& header)
{
    static std::set<std::string> const kHeaders = {"algorithm",
                                                   "any",
                                                   "array",
                                                   "atomic",
                                                   "barrier",
                                                   "bit",
                                                   "bitset",
                                                   "cassert",
                                                   "cctype",
                                                   "cerrno",
                                                   "cfenv",
                                                   "cfloat",
                                                   "charconv",
                                                   "chrono",
                                                   "cinttypes",
                                                   "climits",
                                                   "clocale",
                                                   "cmath",
                                                   "codecvt",
                                                   "compare",
                                                   "complex",
                                                   "concepts",
                                                   "condition_variable",
                                                   "coroutine",
                                                   "csetjmp",
                                                   "cstdarg",
                                                   "cstddef",
                                                   "cstdint",
                                                   "cstdio",
                                                   "cstdlib",
                                                   "cstring",
                                                   "ctime",
                                                   "cuchar",
                                                   "cwchar",
                                                   "cwctype",
                                                   "deque",
                                                   "exception",
                                                   "execution",
                                                   "filesystem",
                                                   "format",
                                                   "forward_list",
                                                   "fstream",
                                                   "functional",
                                                   "future",
                                                   "initializer_list",
                                                   "iomanip",
                                                   "ios",
                                                   "iosfwd",
                                                   "iostream",
                                                   "istream",
                                                   "iterator",
                                                   "latch",
                                                   "limits",
                                                   "list",
                                                   "locale",
                                                   "map",
                                                   "memory",
                                                   "memory_resource",
                                                   "mutex",
                                                   "new",
                                                   "numbers",
                                                   "numeric",
                                                   "optional",
                                                   "ostream",
                                                   "queue",
                                                   "random",
                                                   "ranges",
                                                   "ratio",
                                                   "regex",
                                                   "scoped_allocator",
                                                   "semaphore",
                                                   "set",
                                                   "shared_mutex",
                                                   "source_location",
                                                   "span",
                                                   "sstream",
                                                   "stack",
                                                   "stdexcept",
                                                   "stop_token",
                                                   "streambuf",
                                                   "string",
                                                   "string_view",
                                                   "syncstream",
                                                   "system_error",
                                                   "thread",
                                                   "tuple",
                                                   "type_traits",
                                                   "typeindex",
                                                   "typeinfo",
                                                   "unordered_map",
                                                   "unordered_set",
                                                   "utility",
                                                   "valarray",
                                                   "variant",
                                                   "vector",
                                                   "version"};
    return kHeaders.contains(header);
}

/// A file of the records library as if its public headers stood beside its sources.
std::string Room(std::string const& file)
{
    for (std::string const start : {"Records/Headers/tessio/Records/", "Records/Source/"})
        if (file.starts_with(start))
            return "Records/" + file.substr(start.size());
    return file;
}

Area const* AreaOf(std::string const& path)
{
    std::string const file = Room(path);
    for (Area const& area : kAreas)
        if (file.starts_with(area.folder + "/"))
            return &area;
    return nullptr;
}

/// The file of the project that the include names, or "" for none. Searched as the build does: beside the
/// including file, then at the include roots.
std::string Resolve(std::string const& file, std::string const& header)
{
    fs::path const root = TESSIO_SOURCE_DIR;
    std::string const beside = fs::path(file).parent_path().string();
    if (header.starts_with("tessio/Records/") && fs::exists(root / "Records/Headers" / header))
        return "Records/Headers/" + header;
    if (header.starts_with("tessio/") && fs::exists(root / kSDK / header.substr(7)))
        return kSDK + header.substr(7);
    std::vector<std::string> roots{beside,           "Platform/Headers", "System/Headers",
                                   "Records/Source", kLibrary,           "Tools/tessio"};
    for (std::string const& start : roots)
    {
        fs::path const candidate = (fs::path(start) / header).lexically_normal();
        if (fs::exists(root / candidate))
            return candidate.string();
    }
    return "";
}

/// Why `file` must not include `header`, or "".
std::string Objection(std::string const& file, std::string const& header)
{
    Area const* const area = AreaOf(file);
    if (!area)
        return "a folder without a rule";
    if (IsStandard(header))
        return "";
    std::string const target = Resolve(file, header);
    auto const begins = [&header](std::string const& library) { return header.starts_with(library); };
    if (target.empty())
        return area->mayCallSystem || std::ranges::any_of(area->libraries, begins)
                   ? ""
                   : "neither the standard library's, nor the project's, nor of a library named for its "
                     "folder";
    Area const* const other = AreaOf(target);
    if (!other)
        return "outside every folder with a rule";
    return other == area || area->mayInclude.contains(other->folder) ? "" : "not an arrow: " + other->folder;
}

struct Include
{
    std::string file;
    std::string header;
    std::string line;
};

/// Every include of the sources in these folders.
std::vector<Include> const& Includes()
{
    static std::vector<Include> const sIncludes = [] {
        std::regex const include(R"re(^\s*#\s*include\s*(["<])([^">]+)[">])re");
        std::vector<Include> all;
        for (char const* const folder :
             {"SDK", "Core", "Platform", "System", "Companions", "Records", "Tools", "Examples"})
            for (fs::path const& file : SourcesBelow(folder))
                for (std::string const& line : LinesOf(file))
                    if (std::smatch match; std::regex_search(line, match, include))
                        all.push_back({file.string(), match[2], line});
        return all;
    }();
    return sIncludes;
}

TEST(Includes, FollowTheArrows)
{
    std::map<std::string, int> seen;
    for (Include const& include : Includes())
    {
        ++seen[include.file.substr(0, include.file.find('/'))];
        EXPECT_EQ(Objection(include.file, include.header), "") << include.file << ": " << include.line;
    }
    for (char const* const folder : {"SDK", "Core", "Platform", "System", "Companions", "Records"})
        EXPECT_GE(seen[folder], 10) << folder;
}

/// Who includes whom.
using Graph = std::map<std::string, std::set<std::string>>;

/// Looks for a way from the last of `path` back to any on it. `done` are those that no circle can be reached
/// from.
bool FindsCircle(Graph const& graph, std::vector<std::string>& path, std::set<std::string>& done)
{
    auto const found = graph.find(path.back());
    if (found == graph.end() || done.contains(path.back()))
        return false;
    for (std::string const& next : found->second)
    {
        bool const isOnPath = std::ranges::find(path, next) != path.end();
        path.push_back(next);
        if (isOnPath || FindsCircle(graph, path, done))
            return true;
        path.pop_back();
    }
    done.insert(path.back());
    return false;
}

/// A circle, "a > b > a", or "".
std::string CircleIn(Graph const& graph)
{
    std::set<std::string> done;
    for (auto const& [start, others] : graph)
    {
        std::vector<std::string> path{start};
        if (!FindsCircle(graph, path, done))
            continue;
        std::string text = path.back();
        for (auto step = std::ranges::find(path, path.back()) + 1; step != path.end(); ++step)
            text += " > " + *step;
        return text;
    }
    return "";
}

TEST(Includes, GoInNoCircles)
{
    Graph files;
    Graph folders;
    for (Include const& include : Includes())
    {
        std::string const target = Resolve(include.file, include.header);
        if (target.empty())
            continue;
        files[include.file].insert(target);
        Area const* const from = AreaOf(include.file);
        Area const* const to = AreaOf(target);
        if (from && to && from != to)
            folders[from->folder].insert(to->folder);
    }
    EXPECT_GE(files.size(), 100u);
    EXPECT_GE(folders.size(), 10u);
    EXPECT_EQ(CircleIn(files), "");
    EXPECT_EQ(CircleIn(folders), "");
}

struct CircleRow
{
    char const* name;
    Graph graph;
    char const* circle;
};

class CircleSearch : public ::testing::TestWithParam<CircleRow>
{
};

TEST_P(CircleSearch, FindsThem) { EXPECT_EQ(CircleIn(GetParam().graph), GetParam().circle); }

CircleRow const kCircles[] = {
    {"Nothing", {}, ""},
    {"Chain", {{"a", {"b"}}, {"b", {"c"}}}, ""},
    {"TwoWays", {{"a", {"b", "c"}}, {"b", {"d"}}, {"c", {"d"}}, {"d", {"e"}}}, ""},
    {"Itself", {{"a", {"b"}}, {"b", {"b"}}}, "b > b"},
    {"Two", {{"a", {"b"}}, {"b", {"a"}}}, "a > b > a"},
    {"ThreeBehindAWayIn", {{"a", {"b"}}, {"b", {"x", "c"}}, {"c", {"d"}}, {"d", {"b"}}}, "b > c > d > b"},
    {"BehindADeadEnd", {{"a", {"b", "c"}}, {"b", {"e"}}, {"c", {"b", "d"}}, {"d", {"c"}}}, "c > d > c"},
};

INSTANTIATE_TEST_SUITE_P(Graphs, CircleSearch, ::testing::ValuesIn(kCircles), RowName());

struct Row
{
    char const* name;
    std::string file;
    char const* header;
    bool allowed;
};

Row const kRows[] = {
    {"StandardFromTheBottom", kSDK + "ObjectModel/X.h", "map", true},
    {"SystemFromTheBottom", kSDK + "ObjectModel/X.h", "unistd.h", false},
    {"LoggerFromTheBottom", kSDK + "ObjectModel/X.h", "tessio/Logger/LogSite.h", false},
    {"BottomFromACompanion", kSDK + "FileIO/X.h", "tessio/ObjectModel/IObject.h", true},
    {"ItselfFromACompanion", kSDK + "FileIO/X.h", "tessio/FileIO/IFile.h", true},
    {"RegistryFromAnotherCompanion", kSDK + "FileIO/X.h", "tessio/CoreRegistry/CoreRegistry.h", false},
    {"LibraryFromACompanion", kSDK + "Logger/X.h", "tessio/TessIO/IURI.h", false},
    {"CompanionFromTheLibrarysHeaders", kSDK + "TessIO/X.h", "tessio/CoreRegistry/CoreRegistry.h", true},
    {"PlatformFromTheLibrarysHeaders", kSDK + "TessIO/X.h", "Platform/URL.h", false},
    {"HostFromTheLibrarysHeaders", kSDK + "TessIO/X.h", "tessio/Host/Host.h", false},
    {"LayerFromTheLibrarysHeaders", kSDK + "TessIO/X.h", "tessio/Cxx/Dictionary.h", false},
    {"LayerFromTheHostsHeader", kSDK + "Host/X.h", "tessio/Cxx/Dictionary.h", false},
    {"LibraryFromTheLayer", kSDK + "Cxx/X.h", "tessio/TessIO/IURI.h", true},
    {"HostFromTheLayer", kSDK + "Cxx/X.h", "tessio/Host/Host.h", false},
    {"SystemFromTheLayer", kSDK + "Cxx/X.h", "unistd.h", false},
    {"RegistryFromTheHostsHeader", kSDK + "Host/X.h", "tessio/CoreRegistry/CoreRegistry.h", true},
    {"StringsFromTheHostsHeader", kSDK + "Host/X.h", "tessio/CoreString/CoreString.h", false},
    {"PlatformFromTheLibrary", kLibrary + "/X.cpp", "Platform/URL.h", true},
    {"PrivateFromTheLibrarysSubfolder", kLibrary + "/Mac/X.cpp", "DataProviderImpl.h", true},
    {"SystemFromTheLibrary", kLibrary + "/X.cpp", "unistd.h", false},
    {"SystemInAFolderFromTheLibrary", kLibrary + "/Mac/X.cpp", "sys/stat.h", false},
    {"IcuFromTheLibrary", kLibrary + "/X.cpp", "unicode/ustring.h", false},
    {"CompanionsSourceFromTheLibrary", kLibrary + "/X.cpp", "../../../../../Companions/FileIO/File.h", false},
    {"LibraryFromTheStringUtilities", "Core/Common/Constructs/UniCharUtils/X.cpp", "tessio/TessIO/IURI.h",
     false},
    {"LoggerFromTheStringUtilities", "Core/Common/Constructs/UniCharUtils/X.cpp", "tessio/Logger/LogSite.h",
     true},
    {"SDKFromThePlatform", "Platform/Headers/Platform/X.h", "tessio/ObjectModel/Types.h", false},
    {"SystemFromThePlatformsContract", "Platform/Headers/Platform/X.h", "dirent.h", false},
    {"SystemFromThePlatform", "Platform/Source/X.cpp", "dirent.h", false},
    {"SystemsContractFromThePlatform", "Platform/Source/X.cpp", "System/Files.h", true},
    {"SystemsContractFromThePlatformsContract", "Platform/Headers/Platform/X.h", "System/Files.h", false},
    {"IcuFromThePlatform", "Platform/Source/X.cpp", "unicode/ustring.h", true},
    {"LoggingLibraryFromThePlatform", "Platform/Source/X.cpp", "spdlog/logger.h", false},
    {"SDKFromThePlatformsImplementation", "Platform/Source/X.cpp", "tessio/ObjectModel/Types.h", false},
    {"SDKFromTheSystem", "System/Headers/System/X.h", "tessio/ObjectModel/Types.h", false},
    {"OSFromTheSystemsContract", "System/Headers/System/X.h", "unistd.h", false},
    {"OSFromTheSystem", "System/Posix/X.cpp", "unistd.h", true},
    {"SignalsFromTheSystem", "System/Posix/X.cpp", "csignal", true},
    {"PosixFromLinux", "System/Linux/X.cpp", "../Posix/Retry.h", true},
    {"LinuxFromPosix", "System/Posix/X.cpp", "../Linux/AccessList.h", false},
    {"SystemsContractFromTheSystem", "System/Linux/X.cpp", "System/Files.h", true},
    {"SDKFromTheSystemsImplementation", "System/Linux/X.cpp", "tessio/ObjectModel/Types.h", false},
    {"SystemsContractFromTheLibrary", kLibrary + "/X.cpp", "System/Files.h", false},
    {"SystemsContractFromTheFiles", "Companions/FileIO/X.cpp", "System/Files.h", true},
    {"SystemsContractFromTheHost", "Companions/Host/X.cpp", "System/Loading.h", true},
    {"SystemsContractFromTheRegistry", "Companions/CoreRegistry/X.cpp", "System/Files.h", false},
    {"SystemsContractFromATool", "Tools/tessio/X.cpp", "System/Files.h", true},
    {"SystemFromTheFiles", "Companions/FileIO/X.cpp", "sys/stat.h", false},
    {"SystemFromTheHost", "Companions/Host/X.cpp", "dlfcn.h", false},
    {"SystemFromATool", "Tools/tessio/X.cpp", "unistd.h", false},
    {"SignalsFromATool", "Tools/tessio/X.cpp", "csignal", false},
    {"ErrorNumbersFromATool", "Tools/tessio/X.cpp", "cerrno", true},
    {"SystemFromAnExample", "Examples/host/X.cpp", "unistd.h", true},
    {"LibraryFromACompanionsSource", "Companions/FileIO/X.cpp", "tessio/TessIO/IURI.h", false},
    {"PlatformFromACompanionsSource", "Companions/FileIO/X.cpp", "Platform/URL.h", false},
    {"AnotherCompanionsSource", "Companions/FileIO/X.cpp", "../Logger/LogFile.h", false},
    {"PackagedLibraryFromACompanion", "Companions/Logger/X.cpp", "spdlog/logger.h", true},
    {"PackagedLibraryOfAnotherCompanion", "Companions/FileIO/X.cpp", "spdlog/logger.h", false},
    {"PackagedLibraryFromATool", "Tools/tessio/X.cpp", "nlohmann/json.hpp", true},
    {"PackagedLibraryOfACompanionFromATool", "Tools/tessio/X.cpp", "unicode/ustring.h", false},
    {"LayerFromTheLibrary", kLibrary + "/X.cpp", "tessio/Cxx/Dictionary.h", false},
    {"LayerFromACompanionsSource", "Companions/Host/X.cpp", "tessio/Cxx/Dictionary.h", false},
    {"LayerFromAnExample", "Examples/host/X.cpp", "tessio/Cxx/Dictionary.h", true},
    {"SDKFromATool", "Tools/tessio/X.cpp", "tessio/TessIO/IURI.h", true},
    {"PlatformFromATool", "Tools/tessio/X.cpp", "Platform/URL.h", false},
    {"PrivateHeaderFromATool", "Tools/tessio/X.cpp", "DataProviderImpl.h", false},
    {"ClassIdsFromTheRecords", "Records/Source/Format/X.cpp", "tessio/TessIO/ClassIds.h", true},
    {"LayerFromTheRecords", "Records/Source/Format/X.cpp", "tessio/Cxx/Dictionary.h", false},
    {"RegistryFromTheRecords", "Records/Source/Tree/X.cpp", "tessio/CoreRegistry/CoreRegistry.h", false},
    {"ToolFromTheRecords", "Records/Source/Tree/X.cpp", "../../../Tools/tessio/Failure.h", false},
    {"FormatFromTheTree", "Records/Source/Tree/X.cpp", "tessio/Records/Format/Bytes.h", true},
    {"TreeFromTheFormat", "Records/Headers/tessio/Records/Format/X.h", "tessio/Records/Tree/Node.h", false},
    {"DumpFromTheTree", "Records/Source/Tree/X.cpp", "tessio/Records/Dump/Text.h", false},
    {"EditFromSalvage", "Records/Source/Salvage/X.cpp", "tessio/Records/Edit/Edit.h", false},
    {"DumpFromTheEdit", "Records/Source/Edit/X.cpp", "tessio/Records/Dump/Text.h", true},
    {"PrivateHeaderFromItsNeighbour", "Records/Source/Salvage/X.cpp", "Tree/Decoder.h", true},
    {"RecordsFromATool", "Tools/tessio/X.cpp", "tessio/Records/Salvage/Salvage.h", true},
    {"RecordsFromTheLibrary", kLibrary + "/X.cpp", "tessio/Records/Format/Bytes.h", false},
    {"UnknownFolder", "Elsewhere/X.cpp", "map", false},
};

class IncludeRule : public ::testing::TestWithParam<Row>
{
};

TEST_P(IncludeRule, IsKept)
{
    Row const& row = GetParam();
    std::string const objection = Objection(row.file, row.header);
    EXPECT_EQ(objection.empty(), row.allowed) << objection;
}

INSTANTIATE_TEST_SUITE_P(Rules, IncludeRule, ::testing::ValuesIn(kRows), RowName());
} // namespace
} // namespace KORVA::TESTS
