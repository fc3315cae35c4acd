#include "SharedObject.h"

#include <dlfcn.h>

#include <filesystem>
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
} // namespace

bool SharedObject::Load(std::string const& file, std::string& error)
{
    mHandle = dlopen(Located(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!mHandle)
        error = dlerror();
    return mHandle != nullptr;
}

void SharedObject::Unload()
{
    if (void* const handle = std::exchange(mHandle, nullptr))
        dlclose(handle);
}

void* SharedObject::Symbol(char const* name) const { return mHandle ? dlsym(mHandle, name) : nullptr; }
} // namespace KORVA::HOST
