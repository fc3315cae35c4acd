// The well-known directories, as objects.
#pragma once

#include <tessio/FileIO/ISystemDirContainer.h>
#include <tessio/ObjectModel/TObject.h>

#include <map>

namespace KORVA::FILE_SYS
{
class SystemDirContainer final : public TObject<ISystemDirContainer>
{
public:
    IDir* GetDir(DirType type) override;

private:
    /// What has been lent.
    std::map<DirType, IDirPtr> mDirs;
};
} // namespace KORVA::FILE_SYS
