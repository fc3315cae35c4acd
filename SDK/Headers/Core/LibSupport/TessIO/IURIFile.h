// A file named by a URI.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IURI.h>

namespace KORVA::IO
{
class IReporter;

/// What `IURIFile::GetAttribute` can ask for.
///@{
using FileAttribute = uint32;
inline constexpr FileAttribute kAttributeHidden = 0;
inline constexpr FileAttribute kAttributeOwnerRead = 1;
inline constexpr FileAttribute kAttributeOwnerWrite = 2;
inline constexpr FileAttribute kAttributeOwnerExecute = 3;
inline constexpr FileAttribute kAttributeGroupRead = 4;
inline constexpr FileAttribute kAttributeGroupWrite = 5;
inline constexpr FileAttribute kAttributeGroupExecute = 6;
inline constexpr FileAttribute kAttributeOthersRead = 7;
inline constexpr FileAttribute kAttributeOthersWrite = 8;
inline constexpr FileAttribute kAttributeOthersExecute = 9;
///@}

/// Created by the URI registry for a URI's scheme. Holds nothing but the URI and the reporter: every call
/// looks at the file anew. Dates are nanoseconds since 1970-01-01T00:00:00Z, sizes bytes. Out-parameters
/// are unchanged on failure unless said otherwise. Used by one thread at a time.
class TESSIO_EXPORT IURIFile : public IObject
{
public:
    /// Shares both (the reporter may be null) and releases what was held. Always 0.
    virtual ErrCode Init(IURI& uri, IReporter* reporter) = 0;

    /// Opens a stream for reading (mode 0) or for reading and writing (mode 2) on the existing file;
    /// `stream` adopts it. 0; 12 nothing could be created; 13 no URI; else the code of
    /// `IDataProvider::InitURIBased`.
    ///@{
    virtual ErrCode Read(TInterfacePtr<IDataProviderStream>& stream) const = 0;
    virtual ErrCode Write(TInterfacePtr<IDataProviderStream>& stream) const = 0;
    ///@}

    /// Whether anything of that name is there.
    virtual bool Exists() const = 0;
    /// Makes an empty file. 0, also when it is there already; 12 no file-system library; 13 no usable path;
    /// 25 it failed.
    virtual ErrCode Create() = 0;
    /// 0; 12 no file-system library; 13 no URI; 24 it failed.
    virtual ErrCode Delete() = 0;
    /// Copies the file of `source` to this one, replacing it whole. 0; 31 other schemes, or it failed.
    virtual ErrCode Copy(IURIFile const& source) = 0;
    /// With a reference of its own; empty before `Init`.
    virtual TInterfacePtr<IURI> GetURI() const = 0;

    /// 0, or 26 whatever the cause. A creation date can't be set, and not every file system keeps one.
    ///@{
    virtual ErrCode GetModificationDate(uint64& date) const = 0;
    virtual ErrCode SetModificationDate(uint64& date) = 0;
    virtual ErrCode GetCreationDate(uint64& date) const = 0;
    virtual ErrCode SetCreationDate(uint64& date) = 0;
    ///@}

    /// 0; 26 no such file; 32 (logged) no such attribute.
    virtual ErrCode GetAttribute(FileAttribute attribute, bool& value) const = 0;
    /// Changes nothing. 33 for an attribute that `GetAttribute` knows, 32 (logged) for another; 26 no such
    /// file; 35 no file-system library.
    virtual ErrCode SetAttribute(FileAttribute attribute, bool value) = 0;

    /// 0 or 26.
    virtual ErrCode GetSize(uint64& size) const = 0;
};

/// Holds a file of a URI.
using IURIFilePtr = TInterfacePtr<IURIFile>;
} // namespace KORVA::IO
