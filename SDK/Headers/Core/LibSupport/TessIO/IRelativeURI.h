// A file named from a well-known directory.
#pragma once

#include <tessio/FileIO/DirType.h>
#include <tessio/FileIO/IDir.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IURI.h>

namespace KORVA::IO
{
/// A system directory and a path from there, so that a stored name survives where the directory lies
/// elsewhere. Class id `IID_RELATIVE_URI`. What is persisted is the directory's type and the relative path,
/// never the absolute one. An object is filled by one thread and may then be read by several.
///
/// After reading, `GetPath` does not give the file: scheme, host, port, the directory's type and the relative
/// path are there, and the directory, found anew. Join the two, or `Init` another object with `GetRelPath`
/// and `pathIsRelative` set.
///
/// How it differs from what `IURI` says: `Init(CoreString)` and `InitRelative` log and change nothing;
/// `GetPath` is plain text, never unescaped; `GetAbsoluteString` and `GetQuery` are always empty; `GetName`
/// leaves `:` as it is; equal are objects of this class whose ports, schemes, hosts and full paths are equal,
/// wherever they are anchored.
class TESSIO_EXPORT IRelativeURI : public IURI
{
public:
    using IURI::Init;

    /// Anchors the path at the directory of type `dirType`.
    ///
    /// With `pathIsRelative` the path is taken from there, `..` on the way included. Don't end it in `..` or
    /// `.`: the full path is of no use then. An empty one names the directory, and keeps the relative path
    /// that there was: initialise an object once. Otherwise `path` is absolute and its way from the directory
    /// is worked out, regardless of case, and appended to what the relative path held. That way is only found
    /// to a file that lies beside the directory: one inside of it, or the directory itself or one above it,
    /// gives the directory, and one that does not even share the first component gives only the steps up. Use
    /// `pathIsRelative` for what lies inside.
    ///
    /// 0; the code of the registry, 12 where it has none (logged), when it makes no directory container, with
    /// only scheme, host, port and type stored; 0 as well (logged) when there is no directory of that type,
    /// and again no path is set.
    virtual FILE_SYS::ErrCode Init(FILE_SYS::DirType dirType, STRING::CoreString const& scheme,
                                   STRING::CoreString const& host, uint32 port,
                                   STRING::CoreString const& path, bool8 pathIsRelative) = 0;

    /// The same with scheme, host, port and (absolute) path of `uri`, borrowed. Tells of no failure: without
    /// a directory the path is of no use.
    virtual void Init(IURI const& uri, int dirType) = 0;

    /// From the directory, as it was given or read; `/` between components where it was worked out. Valid
    /// until the object changes.
    virtual STRING::CoreString const& GetRelPath() const = 0;

    /// Sets `*dir` to the directory, borrowed; null when there is none.
    virtual void GetBaseDir(FILE_SYS::IDir** dir) const = 0;
};

/// Holds a relative URI.
using IRelativeURIPtr = TInterfacePtr<IRelativeURI>;
} // namespace KORVA::IO
