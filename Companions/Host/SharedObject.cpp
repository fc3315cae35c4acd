#include "SharedObject.h"

#include "LinkedObjects.h"

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <set>
#include <utility>

namespace KORVA::HOST
{
namespace
{
/// A plain name stands for the file beside this companion, if there is one; otherwise the system looks for
/// it.
std::string Located(std::string const& file)
{
    std::string const self = SYSTEM::FileAround(reinterpret_cast<void const*>(&Located));
    if (file.find('/') != std::string::npos || self.empty())
        return file;
    std::error_code error;
    std::filesystem::path const beside = std::filesystem::path(self).parent_path() / file;
    return std::filesystem::exists(beside, error) ? beside.string() : file;
}

/// Loadings that nobody answers for any more. Each keeps its file in memory. Never destroyed: a host may end
/// last.
struct LeftObjects
{
    std::mutex mutex;
    std::multiset<SYSTEM::LoadedObject> objects;
};

LeftObjects& Left()
{
    static LeftObjects& sLeft = *new LeftObjects;
    return sLeft;
}

/// The same file, loaded again, is the same object: a loading that was left is worth nothing then.
void CloseLeft(SYSTEM::LoadedObject object)
{
    LeftObjects& left = Left();
    std::lock_guard const lock(left.mutex);
    for (std::size_t count = left.objects.erase(object); count > 0; --count)
        SYSTEM::CloseObject(object);
}
} // namespace

bool SharedObject::Load(std::string const& file, std::string& error)
{
    if (std::ranges::find(LinkedFunctions(), file, &LinkedFunction::file) != LinkedFunctions().end())
    {
        mLinked = file;
        return true;
    }
    mObject = SYSTEM::LoadObject(Located(file), error);
    if (!mObject)
        return false;
    CloseLeft(mObject);
    mRange = SYSTEM::RangeOf(mObject);
    return true;
}

bool SharedObject::Unload()
{
    mLinked.clear();
    mRange = {};
    SYSTEM::LoadedObject const object = std::exchange(mObject, nullptr);
    if (!object)
        return true;
    std::string const name = SYSTEM::NameOf(object);
    SYSTEM::CloseObject(object);
    return name.empty() || !SYSTEM::IsLoaded(name);
}

void SharedObject::LeaveLoaded()
{
    mLinked.clear();
    mRange = {};
    SYSTEM::LoadedObject const object = std::exchange(mObject, nullptr);
    if (!object)
        return;
    LeftObjects& left = Left();
    std::lock_guard const lock(left.mutex);
    left.objects.insert(object);
}

SharedObject::AnyFunction* SharedObject::Symbol(char const* name) const
{
    if (mObject)
    {
        void* const found = SYSTEM::FindSymbol(mObject, name);
        return mRange.Has(found) ? reinterpret_cast<AnyFunction*>(found) : nullptr;
    }
    for (LinkedFunction const& linked : LinkedFunctions())
        if (linked.file == mLinked && linked.name == name)
            return linked.function;
    return nullptr;
}
} // namespace KORVA::HOST
