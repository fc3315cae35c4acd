#include "System/Loading.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <span>
#include <string_view>

namespace KORVA::SYSTEM
{
namespace
{
link_map const* MapOf(LoadedObject object)
{
    link_map* map = nullptr;
    return dlinfo(object, RTLD_DI_LINKMAP, &map) == 0 ? map : nullptr;
}

struct Search
{
    std::string_view name;
    std::uintptr_t base;
    MemoryRange range;
};

/// Called for each loaded object, until it answers 1.
int Measure(dl_phdr_info* info, std::size_t, void* data)
{
    Search& sought = *static_cast<Search*>(data);
    if (info->dlpi_addr != sought.base || info->dlpi_name != sought.name)
        return 0;
    for (auto const& part : std::span(info->dlpi_phdr, info->dlpi_phnum))
        if (part.p_type == PT_LOAD)
            sought.range.end = std::max(sought.range.end, sought.base + part.p_vaddr + part.p_memsz);
    sought.range.begin = sought.base;
    return 1;
}
} // namespace

bool IsLoaded(std::string const& name)
{
    void* const found = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (found)
        dlclose(found);
    return found != nullptr;
}

std::string NameOf(LoadedObject object)
{
    link_map const* const map = MapOf(object);
    return map ? map->l_name : "";
}

MemoryRange RangeOf(LoadedObject object)
{
    link_map const* const map = MapOf(object);
    if (!map)
        return {};
    Search search{map->l_name, map->l_addr, {}};
    dl_iterate_phdr(&Measure, &search);
    return search.range;
}

std::string FileAround(void const* address)
{
    Dl_info found;
    return dladdr(address, &found) != 0 ? found.dli_fname : "";
}
} // namespace KORVA::SYSTEM
