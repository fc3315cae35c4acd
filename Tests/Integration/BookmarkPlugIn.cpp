// A plug-in with one persistent class, for the tests of plug-ins.
#include "Integration/IBookmark.h"
#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/CoreString/CoreString.h>
#include <tessio/Host/PlugIn.h>
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/PersistentData.h>

namespace
{
using namespace KORVA;
using TESTS::IBookmark;
using TESTS::IID_BOOKMARK;

class Bookmark final : public TObject<IBookmark>
{
public:
    Bookmark() { IO::SetupPersistence(*this); }

    void Set(STRING::CoreString const& title, int32 page) override
    {
        mTitle = title;
        mPage = page;
    }
    STRING::CoreString Title() const override { return mTitle; }
    int32 Page() const override { return mPage; }

    static GUID const& GetClassId() { return IID_BOOKMARK; }
    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream) { return stream >> mTitle >> mPage; }
    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const
    {
        return stream << mTitle << mPage;
    }

private:
    STRING::CoreString mTitle;
    int32 mPage = 0;
};

/// Holds an object, and, where `KeepsLength`, how many bytes its record has.
template <bool KeepsLength>
class Holder final : public TObject<IObject>
{
public:
    Holder() { IO::SetupPersistence(*this); }

    static GUID const& GetClassId() { return KeepsLength ? TESTS::IID_SHELF : TESTS::IID_BOX; }

    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream)
    {
        int32 length = 0;
        if (KeepsLength)
            stream >> length;
        int64 const start = stream.GetDataProvider()->GetPosition();
        stream >> mHeld.Out();
        mLength = static_cast<int32>(stream.GetDataProvider()->GetPosition() - start);
        if (KeepsLength && length != mLength)
            mHeld.Reset();
        return stream;
    }
    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const
    {
        if (KeepsLength)
            stream << mLength;
        return mHeld ? stream << *mHeld : stream;
    }

private:
    TInterfacePtr<IObject> mHeld;
    int32 mLength = 0;
};

using BookmarkFactory =
    TClassFactory<Makes<&New<Bookmark>, IID_BOOKMARK>, Makes<&New<Holder<true>>, TESTS::IID_SHELF>,
                  Makes<&New<Holder<false>>, TESTS::IID_BOX>>;

IClassFactory* sFactory = nullptr;
} // namespace

extern "C" TESSIO_EXPORT int KorvaPlugInInit(COREREGISTRY::ICoreRegistry* registry)
{
    sFactory = new BookmarkFactory;
    return registry->RegisterFactory(sFactory);
}

extern "C" TESSIO_EXPORT int KorvaPlugInShutdown(COREREGISTRY::ICoreRegistry* registry)
{
    int const result = registry->UnregisterFactory(sFactory);
    sFactory->Release();
    sFactory = nullptr;
    return result;
}
