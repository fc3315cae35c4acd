#include "System/Loading.h"

#include <dlfcn.h>

namespace KORVA::SYSTEM
{
LoadedObject LoadObject(std::string const& file, std::string& error)
{
    void* const object = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!object)
        error = dlerror();
    return object;
}

void CloseObject(LoadedObject object) { dlclose(object); }

void* FindSymbol(LoadedObject object, char const* name) { return dlsym(object, name); }
} // namespace KORVA::SYSTEM
