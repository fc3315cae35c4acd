// The examples' plug-ins leave memory when they are unloaded.
#include "Integration/HostTest.h"
#include "Support/RowName.h"

#include <dlfcn.h>
#include <elf.h>

#include <cstring>

namespace KORVA::TESTS
{
namespace
{
/// How many symbols of a shared object for this system are to be one in the whole process; -1 where it has no
/// symbols. The loader keeps in memory for ever what has one.
int UniqueSymbols(std::string const& file)
{
    std::string const bytes = Content(file);
    Elf64_Ehdr header{};
    if (bytes.size() < sizeof header)
        return -1;
    std::memcpy(&header, bytes.data(), sizeof header);
    int count = -1;
    for (std::size_t i = 0; i < header.e_shnum; ++i)
    {
        Elf64_Shdr section{};
        std::memcpy(&section, bytes.data() + header.e_shoff + i * header.e_shentsize, sizeof section);
        if (section.sh_type != SHT_DYNSYM)
            continue;
        count = 0;
        for (std::size_t at = 0; at < section.sh_size; at += section.sh_entsize)
        {
            Elf64_Sym symbol{};
            std::memcpy(&symbol, bytes.data() + section.sh_offset + at, sizeof symbol);
            count += ELF64_ST_BIND(symbol.st_info) == STB_GNU_UNIQUE;
        }
    }
    return count;
}

bool IsInMemory(std::string const& file)
{
    void* const handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

struct Row
{
    char const* name;
    char const* file;
};

class ExampleUnload : public HostTest, public ::testing::WithParamInterface<Row>
{
};

TEST_P(ExampleUnload, LeavesMemory)
{
    std::string const file = GetParam().file;
    std::string error;
    ASSERT_TRUE(host->LoadPlugIn(file, error)) << error;
    EXPECT_TRUE(IsInMemory(file));
    EXPECT_TRUE(host->UnloadPlugIn(file, error));
    EXPECT_EQ(error, "");
    EXPECT_FALSE(IsInMemory(file));
}

TEST_P(ExampleUnload, HasNoSymbolThatWouldKeepIt) { EXPECT_EQ(UniqueSymbols(GetParam().file), 0); }

Row const kRows[] = {{"Bookmark", TESSIO_BOOKMARK_PLUGIN}, {"Http", TESSIO_HTTP_PLUGIN}};

INSTANTIATE_TEST_SUITE_P(PlugIns, ExampleUnload, ::testing::ValuesIn(kRows), RowName());

TEST(UniqueSymbols, AreSeenWhereTheyAre)
{
    // g++'s own library has them.
    Dl_info library{};
    void* const handle = dlopen("libstdc++.so.6", RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_TRUE(handle);
    ASSERT_NE(dladdr(dlsym(handle, "_ZSt9terminatev"), &library), 0);
    EXPECT_GT(UniqueSymbols(library.dli_fname), 0);
    dlclose(handle);
}
} // namespace
} // namespace KORVA::TESTS
