// The friendly layer is in its headers and nowhere else.
#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
std::string const kProgram = TESSIO_BINARY_DIR "/bin/cxx_layer_program";

std::vector<std::string> LinesFrom(std::string const& command)
{
    std::vector<std::string> lines;
    std::FILE* const pipe = popen(command.c_str(), "r");
    if (!pipe)
        return lines;
    std::array<char, 8192> line{};
    while (std::fgets(line.data(), static_cast<int>(line.size()), pipe))
        lines.emplace_back(line.data());
    EXPECT_EQ(pclose(pipe), 0);
    return lines;
}

TEST(Layer, LinksNothingMore)
{
    static std::set<std::string> const kKnown = {"libKorvaCoreRegistry.so.1", "libKorvaCoreString.so.1",
                                                 "libKorvaLogger.so.1", "libstdc++.so.6", "libm.so.6",
                                                 "libgcc_s.so.1", "libc.so.6",
                                                 // The compiler's own, under the sanitizers.
                                                 "libasan.so.8", "libubsan.so.1", "libtsan.so.2"};
    int needed = 0;
    for (std::string const& line : LinesFrom("readelf -d '" + kProgram + "'"))
    {
        std::size_t const open = line.find('[');
        if (line.find("(NEEDED)") == std::string::npos || open == std::string::npos)
            continue;
        ++needed;
        std::string const library = line.substr(open + 1, line.find(']') - open - 1);
        EXPECT_TRUE(kKnown.contains(library)) << library;
    }
    EXPECT_GE(needed, 4);
}

TEST(Layer, DefinesNothingThatTwoSourcesWouldBothDefine)
{
    int weak = 0;
    for (std::string const& line : LinesFrom("nm --defined-only '" + kProgram + "'"))
    {
        std::istringstream in(line);
        std::string address;
        std::string type;
        std::string name;
        in >> address >> type >> name;
        if (name.find("5KORVA3CXX") == std::string::npos)
            continue;
        // Weak, unique, or of one source alone.
        weak += type == "W" || type == "V" || type == "u";
        EXPECT_TRUE(type != "T" && type != "D" && type != "B" && type != "R") << line;
    }
    EXPECT_GE(weak, 50) << "the program does not use the layer";
}
} // namespace
} // namespace KORVA::TESTS
