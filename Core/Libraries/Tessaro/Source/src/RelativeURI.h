// A file named from a system directory.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IRelativeURI.h>

namespace KORVA::IO
{
class RelativeURI final : public TObject<IRelativeURI>
{
public:
    RelativeURI();

    void Init(STRING::CoreString const& location) override;
    void InitRelative(IURI const& base, STRING::CoreString const& relative) override;
    STRING::CoreString GetScheme() const override;
    STRING::CoreString GetHost() const override;
    uint32 GetPortNumber() const override;
    STRING::CoreString GetPath() const override;
    STRING::CoreString GetQuery() const override;
    STRING::CoreString GetAbsoluteString() const override;
    void GetName(STRING::CoreString& name) const override;
    bool operator==(IURI const& other) const override;

    FILE_SYS::ErrCode Init(FILE_SYS::DirType dirType, STRING::CoreString const& scheme,
                           STRING::CoreString const& host, uint32 port, STRING::CoreString const& path,
                           bool8 pathIsRelative) override;
    void Init(IURI const& uri, int dirType) override;
    STRING::CoreString const& GetRelPath() const override;
    void GetBaseDir(FILE_SYS::IDir** dir) const override;

    static GUID const& GetClassId() { return IID_IRELATIVE_URI; }
    /// Finds the directory but does not rebuild the full path.
    IDataProviderStream& Read(IDataProviderStream& stream);
    IDataProviderStream& Write(IDataProviderStream& stream) const;

private:
    friend struct KORVA::LayoutProbe;

    /// The path of the base directory; empty without one.
    STRING::CoreString BaseDirPath() const;
    /// Appends the way from the base directory to `target` to the relative path.
    void FindRelPath(STRING::CoreString const& target);
    /// Removes dot segments from the full path. Not where it ends in one: then the kept components come in
    /// front of the whole earlier text.
    void ResolvePath();
    /// Nothing to do: there are no drives here.
    void FixPathForDrives();

    STRING::CoreString mScheme;
    STRING::CoreString mHost;
    uint32 mPort = 0;
    STRING::CoreString mFullPath;
    STRING::CoreString mRelPath;
    FILE_SYS::IDirPtr mBaseDir;
    FILE_SYS::DirType mDirType = FILE_SYS::kNoDir;
    STRING::CoreString mQuery;
};
} // namespace KORVA::IO
