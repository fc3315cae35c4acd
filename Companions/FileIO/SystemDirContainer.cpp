#include "SystemDirContainer.h"

#include "SystemDirs.h"

#include <optional>
#include <string>
#include <utility>

namespace KORVA::FILE_SYS
{
namespace
{
using STRING::CoreString;

class Dir final : public TObject<IDir>
{
public:
    explicit Dir(CoreString path) : mPath(std::move(path)) {}

    ErrCode GetPath(int, CoreString& path) const override
    {
        path = mPath;
        return kDone;
    }

private:
    CoreString mPath;
};
} // namespace

IDir* SystemDirContainer::GetDir(DirType type)
{
    if (auto const lent = mDirs.find(type); lent != mDirs.end())
        return lent->second.Get();
    // A name that is no text could only be told wrongly.
    std::optional<CoreString> const path = CoreString::FromUTF8(SystemDirPath(type));
    if (!path || path->empty())
        return nullptr;
    IDirPtr& dir = mDirs[type];
    dir.Adopt(new Dir(*path));
    return dir.Get();
}
} // namespace KORVA::FILE_SYS
