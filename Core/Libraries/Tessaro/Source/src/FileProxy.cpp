#include "FileProxy.h"

#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/ResultCodes.h>

namespace KORVA::IO
{
namespace
{
using FILE_SYS::IFile;
using FILE_SYS::IFilePtr;
using STRING::CoreString;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/FileProxy";
constexpr char kDelete[] = "virtual ErrCode KORVA::IO::FileProxy::Delete()";
constexpr char kSetAttribute[] = "virtual ErrCode KORVA::IO::FileProxy::SetAttribute(FileAttribute, bool)";

constexpr LogSite kSiteDeleteNoURI{kSource, kDelete, 307};
constexpr LogSite kSiteDeleteNoFile{kSource, kDelete, 324};
constexpr LogSite kSiteGetUnknown{
    kSource, "virtual ErrCode KORVA::IO::FileProxy::GetAttribute(FileAttribute, bool &) const", 491};
constexpr LogSite kSiteSetHidden{kSource, kSetAttribute, 523};
constexpr LogSite kSiteSetUnknown{kSource, kSetAttribute, 540};

/// An object that comes counts, whatever code comes with it.
template <class I>
TInterfacePtr<I> CreateObject(GUID const& classId)
{
    TInterfacePtr<I> object;
    if (COREREGISTRY::ICoreRegistry* const registry = COREREGISTRY::GetCoreRegistry())
        static_cast<void>(registry->CreateInstance(classId, object.Out()));
    return object;
}

bool IsPermission(FileAttribute attribute)
{
    return attribute >= kAttributeOwnerRead && attribute <= kAttributeOthersExecute;
}

/// Three bytes for owner, group and others, each with the bits read 4, write 2, execute 1.
bool HasPermission(uchar const (&permissions)[3], FileAttribute attribute)
{
    FileAttribute const index = attribute - kAttributeOwnerRead;
    return (permissions[index / 3] & (4 >> (index % 3))) != 0;
}
} // namespace

IURIFile* CreateFileProxy() { return new FileProxy; }

FileProxy::~FileProxy()
{
    mReporter.Reset();
    mURI.Reset();
}

ErrCode FileProxy::Init(IURI& uri, IReporter* reporter)
{
    mReporter.Share(reporter);
    mURI.Share(&uri);
    return kNoError;
}

CoreString FileProxy::Path() const { return mURI ? mURI->GetPath() : CoreString(); }

bool FileProxy::GetIFilePtr(IFilePtr& file) const
{
    file = CreateObject<IFile>(FILE_SYS::IID_IFILE);
    if (file)
        static_cast<void>(file->BindPath(Path()));
    return static_cast<bool>(file);
}

ErrCode FileProxy::ErrorCodeFromFileIO(int status)
{
    switch (status)
    {
    case FILE_SYS::kDone:
        return kNoError;
    case FILE_SYS::kNotFound:
        return kFileNotFound;
    case FILE_SYS::kNotPermitted:
        return kNotPermitted;
    default:
        return kFileSystemFailed;
    }
}

ErrCode FileProxy::Read(TInterfacePtr<IDataProviderStream>& stream) const
{
    return Open(kStreamRead, stream);
}

ErrCode FileProxy::Write(TInterfacePtr<IDataProviderStream>& stream) const
{
    return Open(kStreamReadWrite, stream);
}

ErrCode FileProxy::Open(int32 mode, TInterfacePtr<IDataProviderStream>& stream) const
{
    if (!mURI)
        return kBadArgument;
    auto const provider = CreateObject<IDataProvider>(IID_IDATAPROVIDER);
    if (!provider)
        return kNoObject;
    ErrCode const opened = provider->InitURIBased(*mURI, mode, mReporter.Get());
    if (opened != kNoError)
        return opened;
    auto created = CreateObject<IDataProviderStream>(IID_DATAPROVIDERSTREAM);
    if (!created)
        return kNoObject;
    ErrCode const initialised = created->Init(*provider);
    if (initialised == kNoError)
        stream = std::move(created);
    return initialised;
}

bool FileProxy::Exists() const
{
    auto const file = CreateObject<IFile>(FILE_SYS::IID_IFILE);
    return file && file->BindPath(Path()) && file->Exists();
}

ErrCode FileProxy::Create()
{
    auto const file = CreateObject<IFile>(FILE_SYS::IID_IFILE);
    if (!file)
        return kNoObject;
    if (!file->BindPath(Path()))
        return kBadArgument;
    FILE_SYS::ErrCode const status = file->Create();
    return status == FILE_SYS::kDone || status == FILE_SYS::kAlreadyThere ? kNoError : kCreateFailed;
}

ErrCode FileProxy::Delete()
{
    if (!mURI)
    {
        Log(kSiteDeleteNoURI, L"No URI.");
        return kBadArgument;
    }
    IFilePtr file;
    if (!GetIFilePtr(file))
    {
        Log(kSiteDeleteNoFile, L"Could not create IFile");
        return kNoObject;
    }
    return file->Delete() == FILE_SYS::kDone ? kNoError : kDeleteFailed;
}

ErrCode FileProxy::Copy(IURIFile const& source)
{
    TInterfacePtr<IURI> const from = source.GetURI();
    if (!mURI || !from || !(mURI->GetScheme() == from->GetScheme()))
        return kCopyFailed;
    auto const file = CreateObject<IFile>(FILE_SYS::IID_IFILE);
    if (!file)
        return kCopyFailed;
    static_cast<void>(file->BindPath(from->GetPath()));
    return file->CopyTo(Path()) == FILE_SYS::kDone ? kNoError : kCopyFailed;
}

TInterfacePtr<IURI> FileProxy::GetURI() const { return mURI; }

ErrCode FileProxy::Ask(FILE_SYS::ErrCode (IFile::*operation)(uint64&), uint64& value) const
{
    IFilePtr file;
    return GetIFilePtr(file) && (file.Get()->*operation)(value) == FILE_SYS::kDone ? kNoError : kFileNotFound;
}

ErrCode FileProxy::GetModificationDate(uint64& date) const { return Ask(&IFile::GetModificationDate, date); }

ErrCode FileProxy::SetModificationDate(uint64& date) { return Ask(&IFile::SetModificationDate, date); }

ErrCode FileProxy::GetCreationDate(uint64& date) const { return Ask(&IFile::GetCreationDate, date); }

ErrCode FileProxy::SetCreationDate(uint64& date) { return Ask(&IFile::SetCreationDate, date); }

ErrCode FileProxy::GetSize(uint64& size) const { return Ask(&IFile::GetSize, size); }

ErrCode FileProxy::GetAttribute(FileAttribute attribute, bool& value) const
{
    IURIFile const& self = *this;
    IFilePtr file;
    if (!self.Exists() || !GetIFilePtr(file))
        return kFileNotFound;
    uchar permissions[3] = {};
    static_cast<void>(file->ReadPermissions(permissions));
    if (attribute == kAttributeHidden)
    {
        uchar flag = 0;
        static_cast<void>(file->QueryFlag(flag));
        value = flag == 1;
        return kNoError;
    }
    if (IsPermission(attribute))
    {
        value = HasPermission(permissions, attribute);
        return kNoError;
    }
    Log(kSiteGetUnknown, L"File Attribute not found.");
    return kUnknownAttribute;
}

ErrCode FileProxy::SetAttribute(FileAttribute attribute, bool)
{
    IFilePtr file;
    if (!GetIFilePtr(file))
        return kFileSystemFailed;
    if (!file->Exists())
        return kFileNotFound;
    uchar permissions[3] = {};
    if (FILE_SYS::ErrCode const status = file->ReadPermissions(permissions); status != FILE_SYS::kDone)
        return ErrorCodeFromFileIO(status);
    if (IsPermission(attribute))
        return kNotPermitted;
    if (attribute == kAttributeHidden)
    {
        Log(kSiteSetHidden, L"To be implemented.");
        return kNotPermitted;
    }
    Log(kSiteSetUnknown, L"File Attribute not found.");
    return kUnknownAttribute;
}
} // namespace KORVA::IO
