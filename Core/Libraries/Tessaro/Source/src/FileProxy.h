// A file named by a URI.
#pragma once

#include <tessio/FileIO/IFile.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/IURIFile.h>

namespace KORVA::IO
{
/// Creates and binds a file object of the file-system library for each call and keeps none.
class FileProxy final : public TObject<IURIFile>
{
public:
    ErrCode Init(IURI& uri, IReporter* reporter) override;
    ErrCode Read(TInterfacePtr<IDataProviderStream>& stream) const override;
    ErrCode Write(TInterfacePtr<IDataProviderStream>& stream) const override;
    bool Exists() const override;
    ErrCode Create() override;
    ErrCode Delete() override;
    ErrCode Copy(IURIFile const& source) override;
    TInterfacePtr<IURI> GetURI() const override;
    ErrCode GetModificationDate(uint64& date) const override;
    ErrCode SetModificationDate(uint64& date) override;
    ErrCode GetCreationDate(uint64& date) const override;
    ErrCode SetCreationDate(uint64& date) override;
    ErrCode GetAttribute(FileAttribute attribute, bool& value) const override;
    ErrCode SetAttribute(FileAttribute attribute, bool value) override;
    ErrCode GetSize(uint64& size) const override;

    /// Puts a new file object, bound to the URI's path, into `file`, which adopts it; empties `file` when
    /// none can be created. Whether `file` holds one.
    bool GetIFilePtr(FILE_SYS::IFilePtr& file) const;

    /// 0 → 0, 15 → 26, 21 → 33, anything else → 35.
    static ErrCode ErrorCodeFromFileIO(int status);

private:
    friend struct KORVA::LayoutProbe;

    ~FileProxy() override;

    ErrCode Open(int32 mode, TInterfacePtr<IDataProviderStream>& stream) const;
    /// Empty before `Init`.
    STRING::CoreString Path() const;
    /// One call of a file operation on a uint64: dates and sizes.
    ErrCode Ask(FILE_SYS::ErrCode (FILE_SYS::IFile::*operation)(uint64&), uint64& value) const;

    TInterfacePtr<IURI> mURI;
    TInterfacePtr<IReporter> mReporter;
};

/// A new proxy; the caller adopts it.
IURIFile* CreateFileProxy();
} // namespace KORVA::IO
