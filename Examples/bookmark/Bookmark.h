// The class behind IBookmark.
#pragma once

#include "IBookmark.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProviderStream.h>

namespace BOOKMARKS
{
class Bookmark final : public KORVA::TObject<IBookmark>
{
public:
    Bookmark();

    KORVA::STRING::CoreString const& GetTitle() const override { return mTitle; }
    void SetTitle(KORVA::STRING::CoreString const& title) override { mTitle = title; }
    KORVA::int64 GetDate() const override { return mDate; }
    void SetDate(KORVA::int64 date) override { mDate = date; }
    KORVA::IO::IRelativeURI* GetPlace() const override { return mPlace.Get(); }
    void SetPlace(KORVA::IO::IRelativeURI* place) override { mPlace.Share(place); }
    KORVA::ErrCode GetPath(KORVA::STRING::CoreString& path) const override;
    KORVA::IDictionary* GetRemarks() const override { return mRemarks.Get(); }

    // What the persistence adapter calls.
    static GUID const& GetClassId() { return IID_BOOKMARK; }
    KORVA::IO::IDataProviderStream& Read(KORVA::IO::IDataProviderStream& stream);
    KORVA::IO::IDataProviderStream& Write(KORVA::IO::IDataProviderStream& stream) const;

private:
    KORVA::STRING::CoreString mTitle;
    KORVA::int64 mDate = 0;
    KORVA::IO::IRelativeURIPtr mPlace;
    KORVA::TInterfacePtr<KORVA::IDictionary> mRemarks;
};
} // namespace BOOKMARKS
