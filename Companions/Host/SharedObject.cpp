#include "SharedObject.h"

#include <dlfcn.h>

#include <utility>

namespace KORVA::HOST
{
bool SharedObject::Load(std::string const& file, std::string& error)
{
    mHandle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
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
