// Locks by name, on whatever file the name stands for.
#pragma once

#include "System/Descriptor.h"
#include <tessio/FileIO/IFileAccess.h>
#include <tessio/ObjectModel/TObject.h>

namespace KORVA::FILE_SYS
{
class FileAccess final : public TObject<IFileAccess>
{
public:
    ErrCode Lock(STRING::CoreString const& path, uint32 waitMilliseconds) override;
    void Unlock() override;
    ErrCode TryOpen(STRING::CoreString const& path, bool8 forWriting) override;
    int32 GetSystemError() const override { return mSystemError; }

protected:
    ~FileAccess() override { Unlock(); }

private:
    ErrCode Failed(SYSTEM::ErrorNumber systemError);

    SYSTEM::Descriptor mLocked;
    SYSTEM::ErrorNumber mSystemError = 0;
};
} // namespace KORVA::FILE_SYS
