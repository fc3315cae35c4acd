// Inline helpers of the file-system library.
#pragma once

#include <tessio/FileIO/IFile.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/ObjectModel/IClassFactory.h>

namespace KORVA::FILE_SYS
{
/// Where `CreateSystemFile` logs.
inline constexpr LogSite kSiteCreateSystemFileNoFactory{
    "../../../../SDK/Headers/Core/LibSupport/FileIO/LibUtils",
    "ErrCode KORVA::FILE_SYS::CreateSystemFile(KORVA::IClassFactory *, IFilePtr &, const STRING::CoreString "
    "&)",
    147};

/// Creates a file object through `factory` and binds it to `path`.
/// Result 0 and the object in `file`, which adopts it (releasing what it held), also when the path could
/// not be bound; 1 and `file` unchanged when `factory` is null (logged) or creates nothing.
inline ErrCode CreateSystemFile(IClassFactory* factory, TInterfacePtr<IFile>& file,
                                STRING::CoreString const& path)
{
    if (!factory)
    {
        Log(kSiteCreateSystemFileNoFactory, L"Attempted to use a library util without a factory pointer");
        return 1;
    }
    IObject* object = nullptr;
    static_cast<void>(factory->CreateInstance(IID_IFILE, &object));
    if (!object)
        return 1;
    file.Adopt(static_cast<IFile*>(object));
    static_cast<void>(file->BindPath(path));
    return 0;
}
} // namespace KORVA::FILE_SYS
