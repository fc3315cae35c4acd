#include "SharedObject.h"

#include "LinkedObjects.h"

#include <dlfcn.h>

#include <algorithm>
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
    if (std::ranges::find(LinkedFunctions(), file, &LinkedFunction::file) != LinkedFunctions().end())
    {
        mLinked = file;
        return true;
    }
    mHandle = dlopen(Located(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!mHandle)
        error = dlerror();
    return mHandle != nullptr;
}

void SharedObject::Unload()
{
    mLinked.clear();
    if (void* const handle = std::exchange(mHandle, nullptr))
        dlclose(handle);
}

SharedObject::AnyFunction* SharedObject::Symbol(char const* name) const
{
    if (mHandle)
        return reinterpret_cast<AnyFunction*>(dlsym(mHandle, name));
    for (LinkedFunction const& linked : LinkedFunctions())
        if (linked.file == mLinked && linked.name == name)
            return linked.function;
    return nullptr;
}
} // namespace KORVA::HOST
