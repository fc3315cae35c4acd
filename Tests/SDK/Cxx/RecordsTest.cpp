// What goes into a record and comes out of it when somebody watches.
#include "Core/Libraries/Tessaro/Source/src/WatchedProvider.h"
#include "SDK/Cxx/Note.h"
#include "Support/Library.h"
#include <tessio/Cxx/CheckedProvider.h>
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/Load.h>
#include <tessio/Cxx/Save.h>
#include <tessio/Cxx/Stream.h>

namespace KORVA::TESTS
{
namespace
{
using CXX::Dictionary;
using CXX::Object;

constexpr GUID kFacet{0x11223344, 0x5566, 0x7788, {1, 2, 3, 4, 5, 6, 7, 8}};

class CxxRecords : public LibraryTest
{
protected:
    CxxRecords() { COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry()); }
};

TEST_F(CxxRecords, HoldTheAggregates)
{
    Dictionary facet = Dictionary::Create().value();
    facet.Set(1, 7);
    CXX::Handle<INote> const note = MakeNote(5);
    note->Aggregate(&*facet, kFacet);
    auto const bytes = CXX::ToBytes(note).value();
    EXPECT_EQ(bytes.size(), 36u + 16u + 84u);
    auto const loaded = CXX::FromBytes<CXX::Handle<INote>>(bytes).value();
    EXPECT_EQ(loaded->Number(), 5);
    IObject* found = nullptr;
    ASSERT_EQ(loaded->QueryInterface(kFacet, &found), 0);
    EXPECT_EQ(CXX::As<Dictionary>(Object(*found))->Get<int>(1).value(), 7);
}

TEST_F(CxxRecords, AggregateOfAnUnknownClassIsDamage)
{
    CXX::Handle<INote> const note = MakeNote(5);
    note->Aggregate(&*MakeNote(6), kFacet);
    auto bytes = CXX::ToBytes(note).value();
    // The class id of the aggregate's record, which stands behind 32 bytes of the note, a count and a key.
    bytes[52] = std::byte{0xAA};
    EXPECT_EQ(CXX::FromBytes<Object>(bytes).error().Code(), 2025);
    auto const kept = CXX::FromBytes<Object>(bytes, {.keepDamaged = true}).value();
    EXPECT_EQ(kept->QueryInterface(kFacet, nullptr), -1004);
}

/// Stands for a class that chooses its class id by the stream, and may throw.
class Choosing final : public TObject<IO::IPersistentDataEx>
{
public:
    explicit Choosing(bool throws) : mThrows(throws) {}

    IObject* GetObj() const override { return nullptr; }
    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream) override { return stream; }
    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const override
    {
        stream << static_cast<unsigned char>(0xEE);
        if (mThrows)
            throw std::runtime_error("not to be written");
        return stream;
    }
    GUID const& GetUID() const override { return IO::IID_DICTIONARY; }
    GUID GetUIDFor(IO::IDataProviderStream&) override { return IID_NOTE; }

private:
    bool mThrows;
};

TEST_F(CxxRecords, OfAClassThatChoosesItsIdCarryIt)
{
    TInterfacePtr<IObject> object;
    object.Adopt(new Mute);
    TInterfacePtr<IObject> adapter;
    adapter.Adopt(new Choosing(false));
    object->Aggregate(adapter.Get(), IO::IPERSISTENT_DATA_EX);
    auto const bytes = CXX::ToBytes(*object, {.order = CXX::ByteOrder::kLittle}).value();
    ASSERT_EQ(bytes.size(), 29u);
    EXPECT_EQ(bytes[0], std::byte{0x77}) << "the first byte of the chosen id";
    EXPECT_EQ(bytes[24], std::byte{0xEE});
    EXPECT_EQ(CXX::ClassIdOf(Object(*object)).value(), IO::IID_DICTIONARY) << "its usual id";
    adapter.Adopt(new Choosing(true));
    object->Aggregate(adapter.Get(), IO::IPERSISTENT_DATA_EX);
    EXPECT_EQ(CXX::ToBytes(*object).error().Code(), 2012);
    log.Take();
}

/// Notes the stream that it is written to, and what that carries.
class Inner final : public TObject<IO::IPersistentDataEx>
{
public:
    explicit Inner(bool writesMute) : mWritesMute(writesMute) {}

    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        if (!(iid == IO::IPERSISTENT_DATA_EX) && !(iid == IO::IPERSISTENT_DATA))
            return TObject::QueryInterface(iid, out);
        if (out)
            *out = const_cast<Inner*>(this);
        return kNoError;
    }
    IObject* GetObj() const override { return const_cast<Inner*>(this); }
    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream) override { return stream; }
    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const override
    {
        EXPECT_EQ(&stream, streamOfId) << "one stream for both";
        IObject* carried = nullptr;
        EXPECT_EQ(stream.QueryInterface(kFacet, &carried), wantsCarried ? 0 : -1004);
        if (mWritesMute)
        {
            TInterfacePtr<IObject> mute;
            mute.Adopt(new Mute);
            stream << *mute;
        }
        if (child)
        {
            stream.Aggregate(child.Get(), kFacet);
            stream << *child;
            stream.UnAggregate(kFacet);
        }
        return stream << 7;
    }
    GUID const& GetUID() const override { return IID_NOTE; }
    GUID GetUIDFor(IO::IDataProviderStream& stream) override
    {
        streamOfId = &stream;
        return IID_NOTE;
    }

    TInterfacePtr<Inner> child;
    bool wantsCarried = false;
    IO::IDataProviderStream* streamOfId = nullptr;

private:
    bool mWritesMute;
};

TEST_F(CxxRecords, OneStreamWritesAnObjectAndAllInIt)
{
    TInterfacePtr<Inner> outer;
    outer.Adopt(new Inner(false));
    outer->child.Adopt(new Inner(false));
    outer->child->wantsCarried = true;
    auto const bytes = CXX::ToBytes(*outer);
    ASSERT_TRUE(bytes) << bytes.error().Message();
    EXPECT_EQ(bytes->size(), 2u * (24 + 4 + 4));
    EXPECT_EQ(outer->streamOfId, outer->child->streamOfId);
}

TEST_F(CxxRecords, WhatIsNotPersistentIsLeftOutWithAMessage)
{
    TInterfacePtr<Inner> outer;
    outer.Adopt(new Inner(true));
    auto const bytes = CXX::ToBytes(*outer);
    ASSERT_TRUE(bytes) << bytes.error().Message();
    EXPECT_EQ(bytes->size(), 24u + 4 + 4);
    EXPECT_EQ(log.Take().size(), 1u);
}

/// Writes another object on the side, through a stream of its own, and does not look at how that goes.
class Sideways final : public TObject<IO::IPersistentDataEx>
{
public:
    IObject* GetObj() const override { return nullptr; }
    IO::IDataProviderStream& Read(IO::IDataProviderStream& stream) override { return stream; }
    IO::IDataProviderStream& Write(IO::IDataProviderStream& stream) const override
    {
        CXX::DataProvider const provider(*stream.GetDataProvider());
        CXX::Stream side = CXX::Stream::Over(provider).value();
        side << MakeNote(1, Fault::kThrowsInWrite);
        return stream;
    }
    GUID const& GetUID() const override { return IID_NOTE; }
    GUID GetUIDFor(IO::IDataProviderStream&) override { return IID_NOTE; }
};

TEST_F(CxxRecords, WhatIsLostOnTheSideIsSeen)
{
    TInterfacePtr<IObject> object;
    object.Adopt(new Mute);
    TInterfacePtr<IObject> adapter;
    adapter.Adopt(new Sideways);
    object->Aggregate(adapter.Get(), IO::IPERSISTENT_DATA_EX);
    EXPECT_EQ(CXX::ToBytes(*object).error().Code(), 2012);
    log.Take();
}

TEST_F(CxxRecords, BodiesFindWhatTheProviderHas)
{
    auto const memory = MakeMemory();
    CXX::Handle<INote> const note = MakeNote(5);
    memory->Aggregate(&*note, kFacet);
    TInterfacePtr<CXX::DETAIL::CheckedProvider> checked;
    checked.Adopt(new CXX::DETAIL::CheckedProvider(*memory));
    IObject* found = nullptr;
    EXPECT_EQ(checked->QueryInterface(kFacet, &found), 0);
    EXPECT_EQ(found, &*note);
    EXPECT_EQ(checked->GetAggregates().size(), 1u);
}

TEST_F(CxxRecords, WritesThatFailAreSeen)
{
    auto const readOnly = CXX::Create<CXX::DataProvider>(IO::IID_IDATAPROVIDER).value();
    unsigned char const bytes[] = {1, 2, 3};
    ASSERT_EQ(readOnly->InitReadOnlyMem(bytes, 3), 0);
    CXX::Stream stream = CXX::Stream::Over(readOnly).value();
    stream << MakeNote(5);
    EXPECT_EQ(stream.Status().error().Code(), 30);
    log.Take();
}

TEST_F(CxxRecords, APositionThatCannotBeSetIsSeen)
{
    TInterfacePtr<WatchedProvider> provider;
    provider.Adopt(new WatchedProvider);
    provider->moveResult = 13;
    CXX::Stream stream = CXX::Stream::Over(CXX::DataProvider(*provider)).value();
    stream << MakeNote(5);
    EXPECT_EQ(stream.Status().error().Code(), 2) << "its length would stand somewhere else";
}
} // namespace
} // namespace KORVA::TESTS
