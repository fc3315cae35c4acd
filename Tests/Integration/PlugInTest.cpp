// A class of an outside author: saved, skipped exactly while its plug-in is not loaded, loaded when it is.
#include "Integration/HostTest.h"
#include "Integration/IBookmark.h"
#include <tessio/TessIO/IDictionary.h>

namespace KORVA::TESTS
{
namespace
{
using COREREGISTRY::CreateObject;

class PlugIn : public HostTest
{
protected:
    PlugIn()
    {
        std::string error;
        EXPECT_TRUE(host->LoadPlugIn(TESSIO_TEST_PLUGIN, error)) << error;
        auto const bookmark = CreateObject<IBookmark>(IID_BOOKMARK);
        bookmark->Set(u"Chapter", 31);
        auto const before = CreateObject<IDictionary>(IO::IID_DICTIONARY);
        before->Put(1, 11);
        auto const after = CreateObject<IDictionary>(IO::IID_DICTIONARY);
        after->Put(1, 22);
        // As a record of its own, as an entry between others, and as an aggregate.
        auto const mixed = CreateObject<IDictionary>(IO::IID_DICTIONARY);
        mixed->Put(1, 33);
        mixed->Put(2, bookmark.Get());
        mixed->Put(3, 44);
        mixed->Aggregate(bookmark.Get(), IID_BOOKMARK);
        Save("bookmarks.tess", {before.Get(), bookmark.Get(), mixed.Get(), after.Get()});
    }

    struct Loaded
    {
        TInterfacePtr<IDictionary> before;
        TInterfacePtr<IBookmark> bookmark;
        TInterfacePtr<IDictionary> mixed;
        TInterfacePtr<IDictionary> after;
    };

    Loaded Load() const
    {
        TInterfacePtr<IO::IDataProviderStream> stream;
        EXPECT_EQ(FileNamed("bookmarks.tess")->Read(stream), 0);
        Loaded loaded;
        *stream >> loaded.before.Out() >> loaded.bookmark.Out() >> loaded.mixed.Out() >> loaded.after.Out();
        EXPECT_TRUE(stream->GetDataProvider()->AtEnd());
        return loaded;
    }

    static int ValueOf(IDictionary const& dictionary, unsigned int key)
    {
        int value = -1;
        EXPECT_EQ(dictionary.Get(key, value), 0);
        return value;
    }
};

TEST_F(PlugIn, ItsObjectsAreLoadedWhileItIs)
{
    Loaded const loaded = Load();
    ASSERT_TRUE(loaded.bookmark);
    EXPECT_EQ(loaded.bookmark->Title().ToUTF8(), "Chapter");
    EXPECT_EQ(loaded.bookmark->Page(), 31);
    ASSERT_TRUE(loaded.mixed);
    EXPECT_EQ(loaded.mixed->Size(), 3u);
    IObject* aggregate = nullptr;
    ASSERT_EQ(loaded.mixed->QueryInterface(IID_BOOKMARK, &aggregate), 0);
    EXPECT_EQ(static_cast<IBookmark*>(aggregate)->Page(), 31);
    EXPECT_EQ(ValueOf(*loaded.before, 1), 11);
    EXPECT_EQ(ValueOf(*loaded.after, 1), 22);
}

TEST_F(PlugIn, ItsRecordsAreSkippedExactlyWhileItIsNot)
{
    std::string error;
    ASSERT_TRUE(host->UnloadPlugIn(TESSIO_TEST_PLUGIN, error)) << error;
    Loaded const loaded = Load();
    EXPECT_FALSE(loaded.bookmark);
    ASSERT_TRUE(loaded.mixed && loaded.before && loaded.after);
    EXPECT_EQ(loaded.mixed->Size(), 2u);
    EXPECT_EQ(ValueOf(*loaded.mixed, 1), 33);
    EXPECT_EQ(ValueOf(*loaded.mixed, 3), 44);
    EXPECT_EQ(loaded.mixed->QueryInterface(IID_BOOKMARK, nullptr), kIdNotFound);
    EXPECT_EQ(ValueOf(*loaded.before, 1), 11);
    EXPECT_EQ(ValueOf(*loaded.after, 1), 22);
}

TEST_F(PlugIn, ItsObjectsAreBackWhenItIs)
{
    std::string error;
    ASSERT_TRUE(host->UnloadPlugIn(TESSIO_TEST_PLUGIN, error)) << error;
    ASSERT_TRUE(host->LoadPlugIn(TESSIO_TEST_PLUGIN, error)) << error;
    Loaded const loaded = Load();
    ASSERT_TRUE(loaded.bookmark);
    EXPECT_EQ(loaded.bookmark->Page(), 31);
}
} // namespace
} // namespace KORVA::TESTS
