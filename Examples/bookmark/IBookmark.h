// What the plug-in of this folder offers: a bookmark that lives in record files.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IRelativeURI.h>

namespace BOOKMARKS
{
//! [interface]
/// Class id of the bookmark. It is written into files: it may never change.
inline constexpr GUID IID_BOOKMARK{
    0x4B719763, 0x66CA, 0x444E, {0xBA, 0x4F, 0x50, 0xDB, 0x75, 0xE4, 0x53, 0x11}};

/// A place in a file, when it was marked, and what there is to say about it. Persistent; a damaged or foreign
/// record in it costs that member only. Used by one thread at a time.
class TESSIO_EXPORT IBookmark : public KORVA::IObject
{
public:
    /// Valid until it is set anew or the object dies.
    virtual KORVA::STRING::CoreString const& GetTitle() const = 0;
    virtual void SetTitle(KORVA::STRING::CoreString const& title) = 0;

    /// Nanoseconds since 1970-01-01T00:00:00Z; 0 when never set.
    virtual KORVA::int64 GetDate() const = 0;
    virtual void SetDate(KORVA::int64 date) = 0;

    /// The file, named from a well-known directory; borrowed, null when there is none.
    virtual KORVA::IO::IRelativeURI* GetPlace() const = 0;
    /// Shares `place`; null forgets it.
    virtual void SetPlace(KORVA::IO::IRelativeURI* place) = 0;
    /// Where the file is on this machine, for this user: 0; 26 and `path` unchanged without a place, or where
    /// its directory is not known here.
    virtual KORVA::ErrCode GetPath(KORVA::STRING::CoreString& path) const = 0;

    /// Borrowed, to be read and filled; never null while the library is loaded.
    virtual KORVA::IDictionary* GetRemarks() const = 0;
};
//! [interface]
} // namespace BOOKMARKS
