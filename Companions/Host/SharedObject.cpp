#include "SharedObject.h"

#include "LinkedObjects.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <set>
#include <span>
#include <string_view>
#include <utility>

namespace KORVA::HOST
{
namespace
{
/// A plain name stands for the file beside this companion, if there is one; otherwise the system looks for
/// it.
std::string Located(std::string const& file)
{
    Dl_info self;
    if (file.find('/') != std::string::npos || dladdr(reinterpret_cast<void*>(&Located), &self) == 0)
        return file;
    std::error_code error;
    std::filesystem::path const beside = std::filesystem::path(self.dli_fname).parent_path() / file;
    return std::filesystem::exists(beside, error) ? beside.string() : file;
}

link_map const* MapOf(void* handle)
{
    link_map* map = nullptr;
    return handle && dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 ? map : nullptr;
}

MemoryRange RangeOf(link_map const& map)
{
    struct Search
    {
        std::string_view name;
        std::uintptr_t base;
        MemoryRange range;
    } search{map.l_name, map.l_addr, {}};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            Search& sought = *static_cast<Search*>(data);
            if (info->dlpi_addr != sought.base || info->dlpi_name != sought.name)
                return 0;
            for (auto const& part : std::span(info->dlpi_phdr, info->dlpi_phnum))
                if (part.p_type == PT_LOAD)
                    sought.range.end = std::max(sought.range.end, sought.base + part.p_vaddr + part.p_memsz);
            sought.range.begin = sought.base;
            return 1;
        },
        &search);
    return search.range;
}

/// Handles that nobody answers for any more. Each keeps its file in memory. Never destroyed: a host may end
/// last.
struct LeftHandles
{
    std::mutex mutex;
    std::multiset<void*> handles;
};

LeftHandles& Left()
{
    static LeftHandles& sLeft = *new LeftHandles;
    return sLeft;
}

/// The same file, loaded again, has the same handle: one that was left is worth nothing then.
void CloseLeft(void* handle)
{
    LeftHandles& left = Left();
    std::lock_guard const lock(left.mutex);
    for (std::size_t count = left.handles.erase(handle); count > 0; --count)
        dlclose(handle);
}
} // namespace

bool SharedObject::Load(std::string const& file, std::string& error)
{
    if (std::ranges::find(LinkedFunctions(), file, &LinkedFunction::file) != LinkedFunctions().end())
    {
        mLinked = file;
        return true;
    }
    mHandle = dlopen(Located(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!mHandle)
        error = dlerror();
    CloseLeft(mHandle);
    link_map const* const map = MapOf(mHandle);
    mRange = map ? RangeOf(*map) : MemoryRange();
    return mHandle != nullptr;
}

bool SharedObject::Unload()
{
    mLinked.clear();
    mRange = {};
    void* const handle = std::exchange(mHandle, nullptr);
    link_map const* const map = MapOf(handle);
    if (!map)
        return true;
    std::string const name = map->l_name;
    dlclose(handle);
    void* const left = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (left)
        dlclose(left);
    return !left;
}

void SharedObject::LeaveLoaded()
{
    mLinked.clear();
    mRange = {};
    void* const handle = std::exchange(mHandle, nullptr);
    if (!handle)
        return;
    LeftHandles& left = Left();
    std::lock_guard const lock(left.mutex);
    left.handles.insert(handle);
}

SharedObject::AnyFunction* SharedObject::Symbol(char const* name) const
{
    if (mHandle)
    {
        void* const found = dlsym(mHandle, name);
        return mRange.Has(found) ? reinterpret_cast<AnyFunction*>(found) : nullptr;
    }
    for (LinkedFunction const& linked : LinkedFunctions())
        if (linked.file == mLinked && linked.name == name)
            return linked.function;
    return nullptr;
}
} // namespace KORVA::HOST
