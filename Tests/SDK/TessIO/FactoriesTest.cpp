// Which class each id makes, and how a new object looks.
#include "BufferedDataProvider.h"
#include "DataProvider.h"
#include "DataProviderStream.h"
#include "DictValue.h"
#include "FileProxy.h"
#include "PersistentDictionary.h"
#include "RelativeURI.h"
#include "SDK/TessIO/RecordingRegistry.h"
#include "SDK/Tracked.h"
#include "StringDictionary.h"
#include "Support/Library.h"
#include "URI.h"
#include "URIAuthenticationChallenge.h"
#include "URICredential.h"
#include "URIRegistry.h"
#include <tessio/FileIO/ISystemDirContainer.h>
#include <tessio/TessIO/TessIO.h>

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
template <class Class>
bool Is(IObject& object)
{
    return dynamic_cast<Class*>(&object) != nullptr;
}

/// A class id that a factory serves: the factory's place in the order of registration, the class that it
/// makes, and whether a new object comes with its persistence adapter.
struct Row
{
    char const* name;
    std::size_t factory;
    GUID id;
    bool (*is)(IObject&);
    bool persistent;
};

Row const kRows[] = {
    {"URI",
     0,
     {0x2517B49E, 0xBCE5, 0x404C, {0x85, 0x24, 0x3A, 0x6E, 0xC3, 0xC3, 0xB6, 0x33}},
     &Is<IO::URI>,
     true},
    {"RelativeURI",
     1,
     {0x4E278406, 0x081C, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}},
     &Is<IO::RelativeURI>,
     true},
    {"BufferedDataProvider",
     2,
     {0xB314BCA1, 0x7409, 0x40EF, {0x92, 0xF9, 0x03, 0x66, 0x4D, 0x0D, 0x76, 0x62}},
     &Is<IO::BufferedDataProvider>,
     false},
    {"DataProvider",
     3,
     {0x2932BFBD, 0x9AA3, 0x454F, {0xBE, 0xFF, 0xEB, 0xC9, 0xBE, 0xEF, 0x0F, 0x0F}},
     &Is<IO::DataProvider>,
     false},
    {"DataProviderStream",
     3,
     {0xB775B78D, 0x0AC0, 0x4CE6, {0x8A, 0x59, 0x36, 0x34, 0xC5, 0xA5, 0x42, 0x59}},
     &Is<IO::DataProviderStream>,
     false},
    {"PersistentDictionary",
     4,
     {0x73E90C1F, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}},
     &Is<IO::PersistentDictionary>,
     true},
    {"Dictionary",
     4,
     {0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}},
     &Is<IO::PersistentDictionary>,
     true},
    {"DictionaryValue",
     4,
     {0x73E90C21, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}},
     &Is<IO::DictValue>,
     true},
    {"StringDictionary",
     5,
     {0xCD210A56, 0x284C, 0x4B7C, {0x81, 0x3F, 0x42, 0xAD, 0xDF, 0x77, 0x48, 0x53}},
     &Is<IO::StringDictionary>,
     true},
    {"URIRegistry",
     6,
     {0xF4D121D7, 0xC7AD, 0x494F, {0x8A, 0xF8, 0xE0, 0x87, 0x59, 0xD9, 0x6F, 0x64}},
     &Is<IO::URIRegistry>,
     false},
    {"FileProxy",
     7,
     {0x845E72C2, 0x6EE2, 0x4128, {0xA8, 0x76, 0xC4, 0x6F, 0x45, 0xA4, 0x3A, 0x8F}},
     &Is<IO::FileProxy>,
     false},
    {"URICredential",
     8,
     {0x5554EEC2, 0xD85B, 0x4276, {0x91, 0x97, 0x6E, 0x2A, 0x61, 0x00, 0x77, 0xE6}},
     &Is<IO::URICredential>,
     false},
    {"URIAuthenticationChallenge",
     9,
     {0xF669429A, 0x9331, 0x4DBE, {0x89, 0xAA, 0x07, 0x43, 0x95, 0x95, 0x3D, 0x8B}},
     &Is<IO::URIAuthenticationChallenge>,
     false},
};

/// The library's factories as `Init` registers them.
class Factories
{
protected:
    Factories()
    {
        mRegistry.Adopt(new RecordingRegistry);
        IO::Init(mRegistry.Get());
    }

    IClassFactory& At(std::size_t place) { return *mRegistry->factories.at(place); }
    std::size_t Count() const { return mRegistry->factories.size(); }

    LogCapture log;

private:
    TInterfacePtr<RecordingRegistry> mRegistry;
};

class FactoryRow : public Factories, public ::testing::TestWithParam<Row>
{
protected:
    void ExpectRefused(std::size_t place, GUID const& id)
    {
        IObject* out = &At(place);
        EXPECT_EQ(At(place).CreateInstance(id, &out), -1004);
        EXPECT_EQ(out, nullptr);
    }
};

TEST_P(FactoryRow, MakesItsClass)
{
    Row const& row = GetParam();
    TInterfacePtr<IObject> object;
    EXPECT_EQ(At(row.factory).CreateInstance(row.id, object.Out()), 0);
    ASSERT_TRUE(object);
    EXPECT_TRUE(row.is(*object));
    EXPECT_EQ(CountOf(*object), 1);
    EXPECT_EQ(object->GetAggregates().size(), row.persistent ? 1u : 0u);
    EXPECT_EQ(object->QueryInterface(IO::IPERSISTENT_DATA, nullptr), row.persistent ? 0 : -1004);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_P(FactoryRow, MakesANewObjectEachTime)
{
    Row const& row = GetParam();
    TInterfacePtr<IObject> first;
    TInterfacePtr<IObject> second;
    EXPECT_EQ(At(row.factory).CreateInstance(row.id, first.Out()), 0);
    EXPECT_EQ(At(row.factory).CreateInstance(row.id, second.Out()), 0);
    EXPECT_NE(first.Get(), second.Get());
}

TEST_P(FactoryRow, IsServedByNoOtherFactory)
{
    ASSERT_EQ(Count(), 10u);
    for (std::size_t place = 0; place < 10; ++place)
    {
        if (place != GetParam().factory)
            ExpectRefused(place, GetParam().id);
    }
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_P(FactoryRow, ComparesEveryWord)
{
    GUID const& id = GetParam().id;
    GUID const others[] = {
        {id.Data1 ^ 1u,
         id.Data2,
         id.Data3,
         {id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6],
          id.Data4[7]}},
        {id.Data1,
         static_cast<std::uint16_t>(id.Data2 ^ 1u),
         id.Data3,
         {id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6],
          id.Data4[7]}},
        {id.Data1,
         id.Data2,
         id.Data3,
         {static_cast<std::uint8_t>(id.Data4[0] ^ 1u), id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4],
          id.Data4[5], id.Data4[6], id.Data4[7]}},
        {id.Data1,
         id.Data2,
         id.Data3,
         {id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6],
          static_cast<std::uint8_t>(id.Data4[7] ^ 1u)}},
    };
    for (GUID const& other : others)
        ExpectRefused(GetParam().factory, other);
    EXPECT_EQ(log.Take(), kNothing) << "an unknown id is no failure to log";
}

INSTANTIATE_TEST_SUITE_P(Classes, FactoryRow, ::testing::ValuesIn(kRows), RowName());

class FactoriesTest : public Factories, public ::testing::Test
{
};

TEST_F(FactoriesTest, TheNeighbourOfTheDictionaryIdsIsUnknown)
{
    GUID const neighbour{0x73E90C22, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}};
    IObject* out = &At(4);
    EXPECT_EQ(At(4).CreateInstance(neighbour, &out), -1004);
    EXPECT_EQ(out, nullptr);
}

TEST_F(FactoriesTest, InterfaceIdsAreNoClassIds)
{
    for (std::size_t place = 0; place < Count(); ++place)
    {
        for (GUID const& id :
             {IO::IPERSISTENT_DATA, IO::IPERSISTENT_DATA_EX, IO::IID_ASYNC_READER, IO::IID_ASYNC_WRITER,
              FILE_SYS::IID_IFILE, FILE_SYS::IID_SYSTEM_DIR_CONTAINER, GUID{}})
        {
            IObject* out = &At(place);
            EXPECT_EQ(At(place).CreateInstance(id, &out), -1004);
            EXPECT_EQ(out, nullptr);
        }
    }
}

TEST_F(FactoriesTest, ANewProviderIsNotInitialised)
{
    TInterfacePtr<IO::IDataProvider> provider;
    EXPECT_EQ(At(3).CreateInstance(IO::IID_IDATAPROVIDER, provider.Out()), 0);
    EXPECT_EQ(provider->GetEndian(), 1);
    EXPECT_EQ(provider->Size(), 0);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{{"Core/Libraries/Tessaro/Source/src/DataProvider",
                                                "virtual int64 KORVA::IO::DataProvider::Size() const", 201,
                                                "Attempting to use a non-initialized data provider"}}));
}

TEST_F(FactoriesTest, ANewStreamHasNoProvider)
{
    TInterfacePtr<IO::IDataProviderStream> stream;
    EXPECT_EQ(At(3).CreateInstance(IO::IID_DATAPROVIDERSTREAM, stream.Out()), 0);
    EXPECT_FALSE(stream->GetDataProvider());
}

TEST_F(FactoriesTest, ADictionaryAnswersItsInterfaceIdUnderBothClassIds)
{
    for (GUID const& id : {IO::IID_PERSISTENT_DICTIONARY, IO::IID_DICTIONARY})
    {
        TInterfacePtr<IObject> dictionary;
        EXPECT_EQ(At(4).CreateInstance(id, dictionary.Out()), 0);
        IObject* out = nullptr;
        EXPECT_EQ(dictionary->QueryInterface(IO::IID_DICTIONARY, &out), 0);
        EXPECT_EQ(out, dictionary.Get());
        EXPECT_EQ(CountOf(*dictionary), 1);
    }
}
} // namespace
} // namespace KORVA::TESTS
