// What the tests of the stream and of the persistent classes share.
#pragma once

#include "RecordingProvider.h"
#include "Support/Library.h"
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/IStringDictionary.h>
#include <tessio/TessIO/PersistentData.h>

#include <functional>
#include <string_view>

namespace KORVA::TESTS
{
using COREREGISTRY::CreateObject;
using IO::IDataProvider;
using IO::IDataProviderStream;
using STRING::CoreString;

inline constexpr IDataProvider::Endian kNative = IDataProvider::kLittleEndian;
inline constexpr IDataProvider::Endian kReversed = IDataProvider::kBigEndian;

inline constexpr char kStreamSource[] = "Core/Libraries/Tessaro/Source/src/DataProviderStream";
inline constexpr char kReading[] =
    "virtual KORVA::IO::DataProviderStream &KORVA::IO::DataProviderStream::operator>>(KORVA::IObject **)";
inline constexpr char kWriting[] = "virtual KORVA::IO::DataProviderStream "
                                   "&KORVA::IO::DataProviderStream::operator<<(const KORVA::IObject &)";

inline Logged ReadThrew() { return {kStreamSource, kReading, 341, "Object thrown expection during read."}; }

inline Logged NoMoreMessages()
{
    return {kStreamSource, kReading, 0,
            "Too many records are read from where none can be, or claim to end there. Further messages about "
            "such "
            "records are left out."};
}

inline Logged WriteThrew() { return {kStreamSource, kWriting, 435, "Object thrown expection during write."}; }

/// The number of references held to the object.
inline int32 References(IObject& object)
{
    object.AddRef();
    return object.Release();
}

inline CoreString Text(std::u16string_view units) { return CoreString(units.data(), units.size()); }

/// An object without persistence.
class Plain final : public TObject<IObject>
{
public:
    Plain() { ++sAlive; }
    ~Plain() override { --sAlive; }

    inline static int sAlive = 0;
};

inline constexpr GUID kScriptedId{0x0A0B0C0D, 0x0E0F, 0x1011, {1, 2, 3, 4, 5, 6, 7, 8}};

/// A persistent class whose bodies and constructor do what the test says.
class Scripted final : public TObject<IObject>
{
public:
    using Body = std::function<void(IDataProviderStream&)>;

    Scripted()
    {
        ++sAlive;
        IO::SetupPersistence(*this);
        if (sOnCreate)
            sOnCreate(*this);
    }
    ~Scripted() override { --sAlive; }

    static GUID const& GetClassId() { return kScriptedId; }

    IDataProviderStream& Read(IDataProviderStream& stream)
    {
        ++sReads;
        if (sOnRead)
            sOnRead(stream);
        return stream;
    }

    IDataProviderStream& Write(IDataProviderStream& stream) const
    {
        if (sOnWrite)
            sOnWrite(stream);
        return stream;
    }

    static void Forget()
    {
        sOnRead = nullptr;
        sOnWrite = nullptr;
        sOnCreate = nullptr;
        sReads = 0;
    }

    inline static Body sOnRead;
    inline static Body sOnWrite;
    inline static std::function<void(Scripted&)> sOnCreate;
    inline static int sReads = 0;
    inline static int sAlive = 0;
};

using ScriptedFactory = TClassFactory<Makes<&New<Scripted>, kScriptedId>>;

/// The library with the scripted class registered, and a balance of all test objects at the end.
class SerializationTest : public LibraryTest
{
protected:
    SerializationTest()
    {
        Scripted::Forget();
        COREREGISTRY::RegisterNewFactory<ScriptedFactory>(Registry());
    }

    ~SerializationTest() override
    {
        Scripted::Forget();
        EXPECT_EQ(Scripted::sAlive, 0);
        EXPECT_EQ(Plain::sAlive, 0);
    }

    using LibraryTest::MakeMemory;

    static TInterfacePtr<IDataProvider> MakeMemory(IDataProvider::Endian endian, Bytes const& content = {})
    {
        auto provider = LibraryTest::MakeMemory(content);
        provider->SetEndian(endian);
        return provider;
    }

    /// Borrows the bytes, as the provider does.
    static TInterfacePtr<IDataProvider> MakeReadOnly(IDataProvider::Endian endian, Bytes const& content)
    {
        auto provider = CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
        EXPECT_EQ(provider->InitReadOnlyMem(content.data(), static_cast<int32>(content.size())), 0);
        provider->SetEndian(endian);
        return provider;
    }

    static TInterfacePtr<IDataProvider> MakeReadOnly(IDataProvider::Endian, Bytes const&&) = delete;

    /// What `write` leaves in a new memory block.
    template <class Write>
    static Bytes Written(IDataProvider::Endian endian, Write const& write)
    {
        auto const provider = MakeMemory(endian);
        auto const stream = MakeStream(*provider);
        write(*stream);
        return BytesOf(*provider);
    }

    static Bytes RecordOf(IDataProvider::Endian endian, IObject const& object)
    {
        return Written(endian, [&object](IDataProviderStream& stream) { stream << object; });
    }

    /// The next object on the stream.
    template <class I = IObject>
    static TInterfacePtr<I> ReadObject(IDataProviderStream& stream)
    {
        TInterfacePtr<I> object;
        stream >> object.Out();
        return object;
    }

    /// The object in the only record of `bytes`.
    template <class I = IObject>
    static TInterfacePtr<I> Load(IDataProvider::Endian endian, Bytes const& bytes)
    {
        auto const provider = MakeMemory(endian, bytes);
        return ReadObject<I>(*MakeStream(*provider));
    }

    static TInterfacePtr<IO::IPersistentData> PersistenceOf(IObject const& object)
    {
        IObject* found = nullptr;
        EXPECT_EQ(object.QueryInterface(IO::IPERSISTENT_DATA, &found), 0);
        TInterfacePtr<IO::IPersistentData> persistence;
        persistence.Share(static_cast<IO::IPersistentData*>(found));
        return persistence;
    }

    /// What the object writes of itself, without the record around it.
    static Bytes BodyOf(IDataProvider::Endian endian, IObject const& object)
    {
        return Written(endian,
                       [&object](IDataProviderStream& stream) { PersistenceOf(object)->Write(stream); });
    }

    static TInterfacePtr<IDictionary> MakeDictionary()
    {
        return CreateObject<IDictionary>(IO::IID_DICTIONARY);
    }

    static TInterfacePtr<IStringDictionary> MakeStrings()
    {
        return CreateObject<IStringDictionary>(IO::IID_STRING_DICTIONARY);
    }

    template <class T>
    static TInterfacePtr<T> Make()
    {
        TInterfacePtr<T> object;
        object.Adopt(new T);
        return object;
    }
};

template <class Row>
class SerializationTestWith : public SerializationTest, public ::testing::WithParamInterface<Row>
{
};
} // namespace KORVA::TESTS
