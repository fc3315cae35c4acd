// A program's observer in Load, Save and streams, and what they see without one.
#include "Core/Libraries/Tessaro/Source/src/RecordTeller.h"
#include "SDK/Cxx/Note.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/Load.h>
#include <tessio/Cxx/Save.h>
#include <tessio/Cxx/Stream.h>
#include <tessio/Cxx/Update.h>

namespace KORVA::TESTS
{
namespace
{
using CXX::Dictionary;
using CXX::Object;
using Lines = std::vector<std::string>;

std::vector<std::byte> BytesOfHex(std::string const& hex)
{
    std::vector<std::byte> bytes;
    for (unsigned char const byte : Hex(hex))
        bytes.push_back(std::byte{byte});
    return bytes;
}

constexpr char kDictionary[] = "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 ";
std::string const kUnknownRecord = "66 66 66 66 66 66 66 66 66 66 66 66 66 66 66 66 04 00 00 00 00 00 00 00 "
                                   "01 02 03 04 ";
/// Key 1 with a record whose class nobody makes.
std::string const kHolder = std::string(kDictionary) + "28 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 " +
                            kUnknownRecord + "00 00 00 00";
constexpr char kUnknownName[] = "{66666666-6666-6666-6666-666666666666}";

class CxxObserver : public SerializationTest
{
protected:
    CxxObserver() { COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry()); }

    ~CxxObserver() override
    {
        teller.Reset();
        EXPECT_EQ(RecordTeller::sAlive, 0);
    }

    void KeepUnknown()
    {
        teller->onUnknown = [](IO::RecordEvent const&, IDataProviderStream&, IObject** object) {
            *object = new Scripted;
            return IO::UnknownClass::kKeep;
        };
    }

    CXX::LoadOptions Loading() { return {.order = CXX::ByteOrder::kLittle, .observer = teller.Get()}; }
    CXX::SaveOptions Saving() { return {.order = CXX::ByteOrder::kLittle, .observer = teller.Get()}; }

    TInterfacePtr<RecordTeller> teller = Make<RecordTeller>();
    TemporaryDirectory directory;
    std::filesystem::path path = directory.Path() / "a";
};

// Save to a file, Load and LoadAll from it, Append to it and Update: each tells what it writes and reads.
TEST_F(CxxObserver, IsToldWhateverIsSavedAndLoaded)
{
    Dictionary dictionary = Dictionary::Create().value();
    dictionary.Set(1, 7);
    Lines const written = {"begin write Dictionary depth 0 place 0 length 0 at 0 move 0 open object",
                           "begin write Value depth 1 place 32 length 0 at 32 move 0 open object",
                           "end write Value depth 1 place 32 length 24 at 80 move 0 done object",
                           "end write Dictionary depth 0 place 0 length 60 at 84 move 0 done object"};
    Lines const read = {"begin read Dictionary depth 0 place 0 length 60 at 24 move 0 open",
                        "begin read Value depth 1 place 32 length 24 at 56 move 0 open",
                        "end read Value depth 1 place 32 length 24 at 80 move 0 done object",
                        "end read Dictionary depth 0 place 0 length 60 at 84 move 0 done object"};
    Lines both = read;
    both.insert(both.end(), written.begin(), written.end());

    EXPECT_TRUE(CXX::Save(path, dictionary, Saving()));
    EXPECT_EQ(teller->Take(), written);
    EXPECT_TRUE(CXX::Load<Dictionary>(path, Loading()));
    EXPECT_EQ(teller->Take(), read);
    EXPECT_EQ(CXX::LoadAll<Dictionary>(path, Loading())->objects.size(), 1u);
    EXPECT_EQ(teller->Take(), read);
    EXPECT_TRUE(CXX::Update<Dictionary>(
        path, [](Dictionary&) {}, Loading()));
    EXPECT_EQ(teller->Take(), both);
    EXPECT_TRUE(CXX::Append(path, dictionary, Saving()));
    EXPECT_EQ(teller->Take(), written);
    EXPECT_EQ(References(*teller), 1);
}

// The stream's own observer hears of what the layer writes and reads through streams of its own, and stays.
TEST_F(CxxObserver, OfAStreamIsToldAndStays)
{
    auto const memory = LibraryTest::MakeMemory({});
    CXX::Stream stream = CXX::Stream::Over(CXX::DataProvider(*memory)).value();
    stream->Aggregate(teller.Get(), IO::IID_RECORD_OBSERVER);
    stream << Dictionary::Create().value();
    ASSERT_TRUE(stream.Status());
    EXPECT_EQ(teller->Take(),
              (Lines{"begin write Dictionary depth 0 place 0 length 0 at 0 move 0 open object",
                     "end write Dictionary depth 0 place 0 length 8 at 32 move 0 done object"}));
    ASSERT_EQ(memory->SetPosition(0, IDataProvider::kFromStart), 0);
    EXPECT_TRUE(stream.Read<Dictionary>());
    EXPECT_EQ(teller->Take(),
              (Lines{"begin read Dictionary depth 0 place 0 length 8 at 24 move 0 open",
                     "end read Dictionary depth 0 place 0 length 8 at 32 move 0 done object"}));
    IObject* found = nullptr;
    ASSERT_EQ(stream->QueryInterface(IO::IID_RECORD_OBSERVER, &found), 0);
    EXPECT_EQ(found, teller.Get());
    EXPECT_EQ(References(*teller), 2);
}

// A body writes through the friendly layer to the stream that it was given.
TEST_F(CxxObserver, IsToldOfRecordsThatBodiesWriteAndReadByTheLayer)
{
    Scripted::sOnWrite = [](IDataProviderStream& body) {
        TInterfacePtr<IDataProviderStream> shared;
        shared.Share(&body);
        CXX::Stream(std::move(shared)) << MakeNote(5);
    };
    auto const bytes = CXX::ToBytes(*Make<Scripted>(), Saving());
    ASSERT_TRUE(bytes) << bytes.error().Message();
    std::string const note = GUIDToText(IID_NOTE);
    EXPECT_EQ(teller->Take(),
              (Lines{"begin write Scripted depth 0 place 0 length 0 at 0 move 0 open object",
                     "begin write " + note + " depth 1 place 24 length 0 at 24 move 0 open object",
                     "end write " + note + " depth 1 place 24 length 12 at 60 move 0 done object",
                     "end write Scripted depth 0 place 0 length 40 at 64 move 0 done object"}));
    Scripted::sOnRead = [](IDataProviderStream& body) {
        TInterfacePtr<IDataProviderStream> shared;
        shared.Share(&body);
        EXPECT_EQ(CXX::Stream(std::move(shared)).Read<CXX::Handle<INote>>().value()->Number(), 5);
    };
    EXPECT_TRUE(CXX::FromBytes<Object>(*bytes, Loading()));
    EXPECT_EQ(teller->Take(),
              (Lines{"begin read Scripted depth 0 place 0 length 40 at 24 move 0 open",
                     "begin read " + note + " depth 1 place 24 length 12 at 48 move 0 open",
                     "end read " + note + " depth 1 place 24 length 12 at 60 move 0 done object",
                     "end read Scripted depth 0 place 0 length 40 at 64 move 0 done object"}));
}

TEST_F(CxxObserver, WhatItKeepsIsNoDamage)
{
    EXPECT_EQ(CXX::FromBytes<Dictionary>(BytesOfHex(kHolder)).error().Code(), 2025);
    EXPECT_EQ(CXX::FromBytes<Dictionary>(BytesOfHex(kHolder), Loading()).error().Code(), 2025)
        << "one that skips it";
    KeepUnknown();
    auto const loaded = CXX::FromBytes<Dictionary>(BytesOfHex(kHolder), Loading());
    ASSERT_TRUE(loaded) << loaded.error().Message();
    EXPECT_TRUE((*loaded)->Get(1));
}

TEST_F(CxxObserver, IsAskedAboutAnOutermostClassToo)
{
    auto const bytes = BytesOfHex(kUnknownRecord);
    EXPECT_EQ(CXX::FromBytes<Object>(bytes).error().Code(), 2023);
    auto const skipped = CXX::FromBytes<Object>(bytes, Loading());
    EXPECT_EQ(skipped.error().Code(), 2023);
    EXPECT_NE(skipped.error().Message().find(kUnknownName), std::string::npos);
    KeepUnknown();
    EXPECT_TRUE(CXX::FromBytes<Object>(bytes, Loading()));
    EXPECT_EQ(CXX::FromBytes<Dictionary>(bytes, Loading()).error().Code(), 2024);
}

TEST_F(CxxObserver, WhatItLeavesOutIsMissing)
{
    Dictionary dictionary = Dictionary::Create().value();
    dictionary.Set(1, 7);
    auto const bytes = CXX::ToBytes(dictionary, {.order = CXX::ByteOrder::kLittle}).value();
    teller->choices = {IO::RecordChoice::kGoOn, IO::RecordChoice::kLeaveOut};
    EXPECT_EQ(CXX::FromBytes<Dictionary>(bytes, Loading()).error().Code(), 2025);
    teller->choices = {IO::RecordChoice::kGoOn, IO::RecordChoice::kLeaveOut};
    EXPECT_EQ(CXX::ToBytes(dictionary, Saving()).error().Code(), 2012);
    teller->choices = {IO::RecordChoice::kLeaveOut};
    EXPECT_EQ(CXX::ToBytes(dictionary, Saving()).error().Code(), 2012);
}

TEST_F(CxxObserver, WhatItThrowsChangesNothing)
{
    Dictionary dictionary = Dictionary::Create().value();
    dictionary.Set(1, 7);
    teller->onBegin = teller->onEnd = [](IO::RecordEvent const&) { throw std::runtime_error("observer"); };
    auto const bytes = CXX::ToBytes(dictionary, Saving());
    ASSERT_TRUE(bytes) << bytes.error().Message();
    auto const loaded = CXX::FromBytes<Dictionary>(*bytes, Loading());
    ASSERT_TRUE(loaded) << loaded.error().Message();
    EXPECT_EQ(loaded->Get<int>(1).value(), 7);
    EXPECT_EQ(teller->told.size(), 8u);
}

struct BodyRow
{
    char const* name;
    Scripted::Body onRead;
    /// 0 where the object is taken for whole.
    ErrCode code;
};

IO::IDataProvider& ProviderOf(IDataProviderStream& body) { return *body.GetDataProvider(); }

void ReadEight(IDataProviderStream& body)
{
    long long number = 0;
    body >> number;
}

// The body is eight bytes long, and a record whose class nobody makes stands in front of them.
BodyRow const kBodies[] = {
    {"LooksAheadAndBehind",
     [](IDataProviderStream& body) {
         int64 const start = ProviderOf(body).GetPosition();
         static_cast<void>(ProviderOf(body).SetPosition(start + 5, IDataProvider::kFromStart));
         static_cast<void>(ProviderOf(body).SetPosition(start, IDataProvider::kFromStart));
         ReadEight(body);
     },
     0},
    {"ReadsBytesOneByOneThenEight",
     [](IDataProviderStream& body) {
         int64 const start = ProviderOf(body).GetPosition();
         unsigned char byte = 0;
         for (int i = 0; i < 8; ++i)
             body >> byte;
         static_cast<void>(ProviderOf(body).SetPosition(start, IDataProvider::kFromStart));
         ReadEight(body);
     },
     0},
    {"ReadsTooLittle", [](IDataProviderStream&) {}, 2025},
    {"ReadsTooMuch",
     [](IDataProviderStream& body) {
         ReadEight(body);
         unsigned char byte = 0;
         body >> byte;
     },
     2025},
    {"Throws", [](IDataProviderStream&) { throw std::runtime_error("body"); }, 2025},
    {"ReadsAnUnknownClassOnTheSide",
     [](IDataProviderStream& body) {
         int64 const start = ProviderOf(body).GetPosition();
         static_cast<void>(ProviderOf(body).SetPosition(start - 52, IDataProvider::kFromStart));
         CXX::Stream side = CXX::Stream::Over(CXX::DataProvider(ProviderOf(body))).value();
         EXPECT_EQ(side.Read<Object>().error().Code(), 2023);
         static_cast<void>(ProviderOf(body).SetPosition(start, IDataProvider::kFromStart));
         ReadEight(body);
     },
     2025},
};

class CxxBody : public CxxObserver, public ::testing::WithParamInterface<BodyRow>
{
};

TEST_P(CxxBody, IsTakenForWholeOrNot)
{
    Scripted::sOnRead = GetParam().onRead;
    // Zeros follow, so that no read comes back short.
    auto const file = BytesOfHex(kUnknownRecord + "0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08 "
                                                  "0C 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                                  "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
    CXX::DataProvider data = CXX::DataProvider::Over(file).value();
    data.SetOrder(CXX::ByteOrder::kLittle);
    ASSERT_TRUE(data.Seek(28));
    CXX::Stream stream = CXX::Stream::Over(data).value();
    auto const object = stream.Read<Object>();
    EXPECT_EQ(object ? 0 : object.error().Code(), GetParam().code);
    EXPECT_EQ(data.Position(), 64);
    log.Take();
}

INSTANTIATE_TEST_SUITE_P(CxxObserver, CxxBody, ::testing::ValuesIn(kBodies), RowName());
} // namespace
} // namespace KORVA::TESTS
