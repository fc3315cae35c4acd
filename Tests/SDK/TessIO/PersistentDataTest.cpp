// Making a class of one's own persistent.
#include <tessio/TessIO/PersistentData.h>

#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/ObjectModel/ClassFactory.h>

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
using IO::IDataProviderStream;
using IO::IPersistentData;

constexpr GUID kPointId{0x0D15EA5E, 0x0001, 0x0002, {1, 2, 3, 4, 5, 6, 7, 8}};

class Point final : public TObject<IObject>
{
public:
    Point() { IO::SetupPersistence(*this); }

    static GUID const& GetClassId() { return kPointId; }
    IDataProviderStream& Read(IDataProviderStream& stream) { return stream >> x >> y; }
    IDataProviderStream& Write(IDataProviderStream& stream) const { return stream << x << y; }

    int x = 0;
    short y = 0;
};

class PersistentDataTest : public LibraryTest
{
protected:
    PersistentDataTest()
    {
        point.Adopt(new Point);
        COREREGISTRY::RegisterNewFactory<TClassFactory<Makes<&New<Point>, kPointId>>>(Registry());
    }

    IPersistentData* Adapter() const
    {
        IObject* found = nullptr;
        EXPECT_EQ(point->QueryInterface(IO::IPERSISTENT_DATA, &found), 0);
        return static_cast<IPersistentData*>(found);
    }

    TInterfacePtr<Point> point;
};

TEST_F(PersistentDataTest, AdapterIsHeldByTheAggregateTableAlone)
{
    EXPECT_EQ(CountOf(*Adapter()), 1);
    EXPECT_EQ(point->GetAggregates().size(), 1u);
}

TEST_F(PersistentDataTest, AdapterBorrowsItsObject)
{
    EXPECT_EQ(Adapter()->GetObj(), point.Get());
    EXPECT_EQ(CountOf(*point), 1);
}

TEST_F(PersistentDataTest, AdapterGivesTheClassId) { EXPECT_EQ(&Adapter()->GetUID(), &kPointId); }

TEST_F(PersistentDataTest, AdapterAggregatesNothingItself)
{
    EXPECT_TRUE(Adapter()->GetAggregates().empty());
    EXPECT_EQ(Adapter()->QueryInterface(IO::IPERSISTENT_DATA, nullptr), -1004);
}

TEST_F(PersistentDataTest, AdapterForwardsToTheObject)
{
    auto const provider = MakeMemory(Hex("07 00 00 00 FE FF"));
    auto const stream = MakeStream(*provider);
    EXPECT_EQ(&Adapter()->Read(*stream), stream.Get());
    EXPECT_EQ(point->x, 7);
    EXPECT_EQ(point->y, -2);
    auto const written = MakeMemory();
    auto const out = MakeStream(*written);
    EXPECT_EQ(&Adapter()->Write(*out), out.Get());
    EXPECT_EQ(ToHex(BytesOf(*written)), "07 00 00 00 FE FF");
}

TEST_F(PersistentDataTest, ObjectGoesOutAndComesBackAsARecord)
{
    point->x = 0x01020304;
    point->y = -2;
    auto const provider = MakeMemory();
    auto const stream = MakeStream(*provider);
    *stream << static_cast<IObject const&>(*point);
    EXPECT_EQ(ToHex(BytesOf(*provider)), "5E EA 15 0D 01 00 02 00 01 02 03 04 05 06 07 08 "
                                         "0A 00 00 00 00 00 00 00 04 03 02 01 FE FF 00 00 00 00");
    EXPECT_EQ(provider->SetPosition(0, IO::IDataProvider::kFromStart), 0);
    IObject* read = nullptr;
    *stream >> &read;
    TInterfacePtr<IObject> copy;
    copy.Adopt(read);
    auto* const found = dynamic_cast<Point*>(read);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->x, 0x01020304);
    EXPECT_EQ(found->y, -2);
    EXPECT_EQ(CountOf(*found), 1);
}

TEST_F(PersistentDataTest, AdapterDiesWithItsObject)
{
    TInterfacePtr<Point> mortal;
    mortal.Adopt(new Point);
    Events events;
    auto* const witness = new Tracked("witness", events);
    IObject* adapter = nullptr;
    EXPECT_EQ(mortal->QueryInterface(IO::IPERSISTENT_DATA, &adapter), 0);
    adapter->Aggregate(witness, GUID{});
    witness->Release();
    events.clear();
    mortal.Reset();
    EXPECT_EQ(events, (Events{"-witness", "~witness"}));
}
} // namespace
} // namespace KORVA::TESTS
