// The file object on the real file system.
#pragma once

#include <tessio/FileIO/IFile.h>
#include <tessio/ObjectModel/TObject.h>

#include <string>

namespace KORVA::FILE_SYS
{
class File final : public TObject<IFile>
{
public:
    bool BindPath(STRING::CoreString const& path) override;
    bool Exists() override;
    ErrCode QueryFlag(uchar& flag) override;
    ErrCode ReadPermissions(uchar (&permissions)[3]) override;
    ErrCode Create() override;
    ErrCode Delete() override;
    ErrCode GetSize(uint64& size) override;
    ErrCode GetModificationDate(uint64& date) override;
    ErrCode SetModificationDate(uint64& date) override;
    ErrCode GetCreationDate(uint64& date) override;
    ErrCode SetCreationDate(uint64& date) override;
    ErrCode CopyTo(STRING::CoreString const& target) override;
    ErrCode MoveTo(STRING::CoreString const& target) override;
    ErrCode Sync() override;
    ErrCode Replace(void const* data, uint64 count) override;

private:
    /// UTF-8; empty while unbound, which the system answers as a file that is not there.
    std::string mPath;
};
} // namespace KORVA::FILE_SYS
