// The slot of every operation in the tables of virtual functions: the binary contract of each interface.
#include "DataProviderImpl.h"
#include "Support/Library.h"
#include <tessio/CoreRegistry/ICoreRegistry.h>
#include <tessio/FileIO/ICopyProgress.h>
#include <tessio/FileIO/IFile.h>
#include <tessio/FileIO/IFileAccess.h>
#include <tessio/FileIO/ISystemDirContainer.h>
#include <tessio/Logger/KLoggerLibInterface.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IAsyncReader.h>
#include <tessio/TessIO/IAsyncTask.h>
#include <tessio/TessIO/IAsyncWriter.h>
#include <tessio/TessIO/IBufferedDataProvider.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IDictionary.h>
#include <tessio/TessIO/IPersistentData.h>
#include <tessio/TessIO/IRecordObserver.h>
#include <tessio/TessIO/IRelativeURI.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/IStringDictionary.h>
#include <tessio/TessIO/IURIAuthenticationChallenge.h>
#include <tessio/TessIO/IURICredential.h>
#include <tessio/TessIO/IURIDataProvider.h>
#include <tessio/TessIO/IURIFile.h>
#include <tessio/TessIO/IURIRegistry.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace KORVA::TESTS
{
namespace
{
using IO::IAsyncReader;
using IO::IAsyncTask;
using IO::IAsyncWriter;
using IO::IBufferedDataProvider;
using IO::IDataProvider;
using IO::IDataProviderStream;
using IO::IPersistentData;
using IO::IRelativeURI;
using IO::IURI;
using IO::IURIAuthenticationChallenge;
using IO::IURICredential;
using IO::IURIFile;
using STRING::CoreString;

/// The slot that a pointer to a virtual member function carries: one more than its offset in bytes, and no
/// adjustment of `this`. -1 for any other function.
template <class Function>
int SlotOf(Function function)
{
    std::int64_t words[2] = {};
    static_assert(sizeof function == sizeof words);
    std::memcpy(words, &function, sizeof words);
    return words[0] % 8 == 1 && words[1] == 0 ? static_cast<int>(words[0] / 8) : -1;
}

/// The operation of the given type among those of one name.
template <class Function, class Class>
int Slot(Function Class::*function)
{
    return SlotOf(function);
}

struct Row
{
    char const* name;
    int slot;
    int expected;
};

class Slots : public ::testing::TestWithParam<Row>
{
};

TEST_P(Slots, AreFixed) { EXPECT_EQ(GetParam().slot, GetParam().expected); }

using Stream = IDataProviderStream;

template <class Value>
int Reads()
{
    return Slot<Stream&(Value)>(&Stream::operator>>);
}

template <class Value>
int Writes()
{
    return Slot<Stream&(Value)>(&Stream::operator<<);
}

template <class... Arguments>
int Puts()
{
    return Slot<void(unsigned int, Arguments...)>(&IDictionary::Put);
}

template <class... Arguments>
int Gets()
{
    return Slot<ErrCode(unsigned int, Arguments...) const>(&IDictionary::Get);
}

Row const kObjectRows[] = {
    {"QueryInterface", SlotOf(&IObject::QueryInterface), 0},
    {"AddRef", SlotOf(&IObject::AddRef), 1},
    {"Release", SlotOf(&IObject::Release), 2},
    {"Aggregate", SlotOf(&IObject::Aggregate), 3},
    {"UnAggregate", SlotOf(&IObject::UnAggregate), 4},
    {"ClearAggregates", SlotOf(&IObject::ClearAggregates), 5},
    {"GetAggregates", SlotOf(&IObject::GetAggregates), 6},
};
INSTANTIATE_TEST_SUITE_P(IObject, Slots, ::testing::ValuesIn(kObjectRows), RowName());

Row const kClassFactoryRows[] = {{"CreateInstance", SlotOf(&IClassFactory::CreateInstance), 9}};
INSTANTIATE_TEST_SUITE_P(IClassFactory, Slots, ::testing::ValuesIn(kClassFactoryRows), RowName());

Row const kCoreRegistryRows[] = {
    {"CreateInstance", SlotOf(&COREREGISTRY::ICoreRegistry::CreateInstance), 9},
    {"RegisterFactory", SlotOf(&COREREGISTRY::ICoreRegistry::RegisterFactory), 10},
    {"UnregisterFactory", SlotOf(&COREREGISTRY::ICoreRegistry::UnregisterFactory), 11},
};
INSTANTIATE_TEST_SUITE_P(ICoreRegistry, Slots, ::testing::ValuesIn(kCoreRegistryRows), RowName());

Row const kFileRows[] = {
    {"BindPath", SlotOf(&FILE_SYS::IFile::BindPath), 9},
    {"Exists", SlotOf(&FILE_SYS::IFile::Exists), 10},
    {"QueryFlag", SlotOf(&FILE_SYS::IFile::QueryFlag), 11},
    {"ReadPermissions", SlotOf(&FILE_SYS::IFile::ReadPermissions), 12},
    {"Create", SlotOf(&FILE_SYS::IFile::Create), 13},
    {"Delete", SlotOf(&FILE_SYS::IFile::Delete), 14},
    {"GetSize", SlotOf(&FILE_SYS::IFile::GetSize), 15},
    {"GetModificationDate", SlotOf(&FILE_SYS::IFile::GetModificationDate), 16},
    {"SetModificationDate", SlotOf(&FILE_SYS::IFile::SetModificationDate), 17},
    {"GetCreationDate", SlotOf(&FILE_SYS::IFile::GetCreationDate), 18},
    {"SetCreationDate", SlotOf(&FILE_SYS::IFile::SetCreationDate), 19},
    {"CopyTo", SlotOf(&FILE_SYS::IFile::CopyTo), 20},
    {"MoveTo", SlotOf(&FILE_SYS::IFile::MoveTo), 21},
    {"Sync", SlotOf(&FILE_SYS::IFile::Sync), 22},
    {"Replace", SlotOf(&FILE_SYS::IFile::Replace), 23},
};
INSTANTIATE_TEST_SUITE_P(IFile, Slots, ::testing::ValuesIn(kFileRows), RowName());

Row const kFileAccessRows[] = {
    {"Lock", SlotOf(&FILE_SYS::IFileAccess::Lock), 9},
    {"Unlock", SlotOf(&FILE_SYS::IFileAccess::Unlock), 10},
    {"TryOpen", SlotOf(&FILE_SYS::IFileAccess::TryOpen), 11},
    {"GetSystemError", SlotOf(&FILE_SYS::IFileAccess::GetSystemError), 12},
};
INSTANTIATE_TEST_SUITE_P(IFileAccess, Slots, ::testing::ValuesIn(kFileAccessRows), RowName());

Row const kDirRows[] = {
    {"GetPath", SlotOf(&FILE_SYS::IDir::GetPath), 9},
};
INSTANTIATE_TEST_SUITE_P(IDir, Slots, ::testing::ValuesIn(kDirRows), RowName());

Row const kSystemDirContainerRows[] = {
    {"GetDir", SlotOf(&FILE_SYS::ISystemDirContainer::GetDir), 9},
};
INSTANTIATE_TEST_SUITE_P(ISystemDirContainer, Slots, ::testing::ValuesIn(kSystemDirContainerRows), RowName());

Row const kDataProviderRows[] = {
    {"InitHandleBased", SlotOf(&IDataProvider::InitHandleBased), 9},
    {"InitReadOnlyMem", SlotOf(&IDataProvider::InitReadOnlyMem), 10},
    {"InitURIBased", SlotOf(&IDataProvider::InitURIBased), 11},
    {"Write", SlotOf(&IDataProvider::Write), 12},
    {"Read", SlotOf(&IDataProvider::Read), 13},
    {"Size", SlotOf(&IDataProvider::Size), 14},
    {"SetSize", SlotOf(&IDataProvider::SetSize), 15},
    {"SetPosition", SlotOf(&IDataProvider::SetPosition), 16},
    {"GetPosition", SlotOf(&IDataProvider::GetPosition), 17},
    {"GetEndian", SlotOf(&IDataProvider::GetEndian), 18},
    {"IsNative", SlotOf(&IDataProvider::IsNative), 19},
    {"SetEndian", SlotOf(&IDataProvider::SetEndian), 20},
    {"AtEnd", SlotOf(&IDataProvider::AtEnd), 21},
    {"Flush", SlotOf(&IDataProvider::Flush), 22},
    {"GetAutoFlush", SlotOf(&IDataProvider::GetAutoFlush), 23},
    {"SetAutoFlush", SlotOf(&IDataProvider::SetAutoFlush), 24},
};
INSTANTIATE_TEST_SUITE_P(IDataProvider, Slots, ::testing::ValuesIn(kDataProviderRows), RowName());

Row const kURIDataProviderRows[] = {{"Init", SlotOf(&IO::IURIDataProvider::Init), 25}};
INSTANTIATE_TEST_SUITE_P(IURIDataProvider, Slots, ::testing::ValuesIn(kURIDataProviderRows), RowName());

Row const kBufferedDataProviderRows[] = {
    {"Write", SlotOf(&IBufferedDataProvider::Write), 12},
    {"SetAutoFlush", SlotOf(&IBufferedDataProvider::SetAutoFlush), 24},
    {"Init", SlotOf(&IBufferedDataProvider::Init), 25},
    {"GetBufferSize", SlotOf(&IBufferedDataProvider::GetBufferSize), 26},
    {"SetBufferSize", SlotOf(&IBufferedDataProvider::SetBufferSize), 27},
};
INSTANTIATE_TEST_SUITE_P(IBufferedDataProvider, Slots, ::testing::ValuesIn(kBufferedDataProviderRows),
                         RowName());

Row const kAsyncTaskRows[] = {
    {"WaitForCompletion", SlotOf(&IAsyncTask::WaitForCompletion), 9},
    {"IsCompleted", SlotOf(&IAsyncTask::IsCompleted), 10},
    {"GetStatus", SlotOf(&IAsyncTask::GetStatus), 11},
    {"CancelTask", SlotOf(&IAsyncTask::CancelTask), 12},
};
INSTANTIATE_TEST_SUITE_P(IAsyncTask, Slots, ::testing::ValuesIn(kAsyncTaskRows), RowName());

Row const kAsyncReaderRows[] = {
    {"ReadAsync", SlotOf(&IAsyncReader::ReadAsync), 9},
    {"ReadSync", SlotOf(&IAsyncReader::ReadSync), 10},
};
INSTANTIATE_TEST_SUITE_P(IAsyncReader, Slots, ::testing::ValuesIn(kAsyncReaderRows), RowName());

Row const kAsyncWriterRows[] = {
    {"WriteAsync", SlotOf(&IAsyncWriter::WriteAsync), 9},
    {"WriteSync", SlotOf(&IAsyncWriter::WriteSync), 10},
};
INSTANTIATE_TEST_SUITE_P(IAsyncWriter, Slots, ::testing::ValuesIn(kAsyncWriterRows), RowName());

Row const kStreamRows[] = {
    {"Init", SlotOf(&Stream::Init), 9},
    {"GetDataProvider", SlotOf(&Stream::GetDataProvider), 10},
    {"ReadSignedChar", Reads<signed char&>(), 11},
    {"ReadUnsignedChar", Reads<unsigned char&>(), 12},
    {"ReadShort", Reads<short&>(), 13},
    {"ReadUnsignedShort", Reads<unsigned short&>(), 14},
    {"ReadInt", Reads<int&>(), 15},
    {"ReadUnsignedInt", Reads<unsigned int&>(), 16},
    {"ReadLongLong", Reads<long long&>(), 17},
    {"ReadUnsignedLongLong", Reads<unsigned long long&>(), 18},
    {"ReadBool", Reads<bool&>(), 19},
    {"ReadFloat", Reads<float&>(), 20},
    {"ReadDouble", Reads<double&>(), 21},
    {"ReadString", Reads<CoreString&>(), 22},
    {"ReadObject", Reads<IObject**>(), 23},
    {"ReadGUID", Reads<GUID&>(), 24},
    {"WriteSignedChar", Writes<signed char>(), 25},
    {"WriteUnsignedChar", Writes<unsigned char>(), 26},
    {"WriteString", Writes<CoreString const&>(), 27},
    {"WriteShort", Writes<short>(), 28},
    {"WriteUnsignedShort", Writes<unsigned short>(), 29},
    {"WriteInt", Writes<int>(), 30},
    {"WriteUnsignedInt", Writes<unsigned int>(), 31},
    {"WriteLongLong", Writes<long long>(), 32},
    {"WriteUnsignedLongLong", Writes<unsigned long long>(), 33},
    {"WriteFloat", Writes<float>(), 34},
    {"WriteDouble", Writes<double>(), 35},
    {"WriteBool", Writes<bool>(), 36},
    {"WriteObject", Writes<IObject const&>(), 37},
    {"WriteGUID", Writes<GUID const&>(), 38},
    {"Write", SlotOf(&Stream::Write), 39},
    {"Read", SlotOf(&Stream::Read), 40},
};
INSTANTIATE_TEST_SUITE_P(IDataProviderStream, Slots, ::testing::ValuesIn(kStreamRows), RowName());

Row const kPersistentDataRows[] = {
    {"GetObj", SlotOf(&IPersistentData::GetObj), 9},
    {"Read", SlotOf(&IPersistentData::Read), 10},
    {"Write", SlotOf(&IPersistentData::Write), 11},
    {"GetUID", SlotOf(&IPersistentData::GetUID), 12},
    {"ExGetUIDFor", SlotOf(&IO::IPersistentDataEx::GetUIDFor), 13},
};
INSTANTIATE_TEST_SUITE_P(IPersistentData, Slots, ::testing::ValuesIn(kPersistentDataRows), RowName());

Row const kDictionaryRows[] = {
    {"Clone", SlotOf(&IDictionary::Clone), 9},
    {"Clear", SlotOf(&IDictionary::Clear), 10},
    {"Remove", SlotOf(&IDictionary::Remove), 11},
    {"PutSignedChar", Puts<signed char>(), 12},
    {"PutUnsignedChar", Puts<unsigned char>(), 13},
    {"PutShort", Puts<short>(), 14},
    {"PutUnsignedShort", Puts<unsigned short>(), 15},
    {"PutInt", Puts<int>(), 16},
    {"PutUnsignedInt", Puts<unsigned int>(), 17},
    {"PutLongLong", Puts<long long>(), 18},
    {"PutUnsignedLongLong", Puts<unsigned long long>(), 19},
    {"PutFloat", Puts<float>(), 20},
    {"PutDouble", Puts<double>(), 21},
    {"PutGUID", Puts<GUID>(), 22},
    {"PutBytes", Puts<unsigned char const*, int>(), 23},
    {"PutUnits", Puts<UniChar const*, int>(), 24},
    {"PutObject", Puts<IObject*>(), 25},
    {"GetSignedChar", Gets<signed char&>(), 26},
    {"GetUnsignedChar", Gets<unsigned char&>(), 27},
    {"GetShort", Gets<short&>(), 28},
    {"GetUnsignedShort", Gets<unsigned short&>(), 29},
    {"GetInt", Gets<int&>(), 30},
    {"GetUnsignedInt", Gets<unsigned int&>(), 31},
    {"GetLongLong", Gets<long long&>(), 32},
    {"GetUnsignedLongLong", Gets<unsigned long long&>(), 33},
    {"GetFloat", Gets<float&>(), 34},
    {"GetDouble", Gets<double&>(), 35},
    {"GetGUID", Gets<GUID&>(), 36},
    {"GetBytes", Gets<unsigned char const**, int&>(), 37},
    {"GetUnits", Gets<UniChar const**, int&>(), 38},
    {"GetObject", Slot<IObject*(unsigned int) const>(&IDictionary::Get), 39},
    {"Size", SlotOf(&IDictionary::Size), 40},
    {"Equals", SlotOf(&IDictionary::Equals), 41},
    {"SubSet", SlotOf(&IDictionary::SubSet), 42},
    {"ForEach", SlotOf(&IDictionary::ForEach), 43},
};
INSTANTIATE_TEST_SUITE_P(IDictionary, Slots, ::testing::ValuesIn(kDictionaryRows), RowName());

Row const kStringDictionaryRows[] = {
    {"Put", SlotOf(&IStringDictionary::Put), 9},          {"Get", SlotOf(&IStringDictionary::Get), 10},
    {"Has", SlotOf(&IStringDictionary::Has), 11},         {"Remove", SlotOf(&IStringDictionary::Remove), 12},
    {"Clear", SlotOf(&IStringDictionary::Clear), 13},     {"Size", SlotOf(&IStringDictionary::Size), 14},
    {"ForEach", SlotOf(&IStringDictionary::ForEach), 15},
};
INSTANTIATE_TEST_SUITE_P(IStringDictionary, Slots, ::testing::ValuesIn(kStringDictionaryRows), RowName());

Row const kURIRows[] = {
    {"Init", SlotOf(&IURI::Init), 9},
    {"InitRelative", SlotOf(&IURI::InitRelative), 10},
    {"GetScheme", SlotOf(&IURI::GetScheme), 11},
    {"GetHost", SlotOf(&IURI::GetHost), 12},
    {"GetPortNumber", SlotOf(&IURI::GetPortNumber), 13},
    {"GetPath", SlotOf(&IURI::GetPath), 14},
    {"GetQuery", SlotOf(&IURI::GetQuery), 15},
    {"GetAbsoluteString", SlotOf(&IURI::GetAbsoluteString), 16},
    {"GetName", SlotOf(&IURI::GetName), 17},
    {"Equality", SlotOf(&IURI::operator==), 18},
};
INSTANTIATE_TEST_SUITE_P(IURI, Slots, ::testing::ValuesIn(kURIRows), RowName());

using InitFromDirectory = FILE_SYS::ErrCode(FILE_SYS::DirType, CoreString const&, CoreString const&, uint32,
                                            CoreString const&, bool8);

// The inherited operations stay where they are.
Row const kRelativeURIRows[] = {
    {"InitFromText", Slot<void(CoreString const&)>(&IRelativeURI::Init), 9},
    {"InitRelative", SlotOf(&IRelativeURI::InitRelative), 10},
    {"GetName", SlotOf(&IRelativeURI::GetName), 17},
    {"Equality", SlotOf(&IRelativeURI::operator==), 18},
    {"InitFromDirectory", Slot<InitFromDirectory>(&IRelativeURI::Init), 19},
    {"InitFromURI", Slot<void(IURI const&, int)>(&IRelativeURI::Init), 20},
    {"GetRelPath", SlotOf(&IRelativeURI::GetRelPath), 21},
    {"GetBaseDir", SlotOf(&IRelativeURI::GetBaseDir), 22},
};
INSTANTIATE_TEST_SUITE_P(IRelativeURI, Slots, ::testing::ValuesIn(kRelativeURIRows), RowName());

Row const kURIFileRows[] = {
    {"Init", SlotOf(&IURIFile::Init), 9},
    {"Read", SlotOf(&IURIFile::Read), 10},
    {"Write", SlotOf(&IURIFile::Write), 11},
    {"Exists", SlotOf(&IURIFile::Exists), 12},
    {"Create", SlotOf(&IURIFile::Create), 13},
    {"Delete", SlotOf(&IURIFile::Delete), 14},
    {"Copy", SlotOf(&IURIFile::Copy), 15},
    {"GetURI", SlotOf(&IURIFile::GetURI), 16},
    {"GetModificationDate", SlotOf(&IURIFile::GetModificationDate), 17},
    {"SetModificationDate", SlotOf(&IURIFile::SetModificationDate), 18},
    {"GetCreationDate", SlotOf(&IURIFile::GetCreationDate), 19},
    {"SetCreationDate", SlotOf(&IURIFile::SetCreationDate), 20},
    {"GetAttribute", SlotOf(&IURIFile::GetAttribute), 21},
    {"SetAttribute", SlotOf(&IURIFile::SetAttribute), 22},
    {"GetSize", SlotOf(&IURIFile::GetSize), 23},
};
INSTANTIATE_TEST_SUITE_P(IURIFile, Slots, ::testing::ValuesIn(kURIFileRows), RowName());

Row const kURIRegistryRows[] = {
    {"Register", SlotOf(&IO::IURIRegistry::Register), 9},
    {"Create", SlotOf(&IO::IURIRegistry::Create), 10},
    {"SetDefaultReporter", SlotOf(&IO::IURIRegistry::SetDefaultReporter), 11},
};
INSTANTIATE_TEST_SUITE_P(IURIRegistry, Slots, ::testing::ValuesIn(kURIRegistryRows), RowName());

Row const kURICredentialRows[] = {
    {"Init", SlotOf(&IURICredential::Init), 9},
    {"GetUsername", SlotOf(&IURICredential::GetUsername), 10},
    {"GetPassword", SlotOf(&IURICredential::GetPassword), 11},
};
INSTANTIATE_TEST_SUITE_P(IURICredential, Slots, ::testing::ValuesIn(kURICredentialRows), RowName());

Row const kURIAuthenticationChallengeRows[] = {
    {"Init", SlotOf(&IURIAuthenticationChallenge::Init), 9},
    {"GetPreviousFailureCount", SlotOf(&IURIAuthenticationChallenge::GetPreviousFailureCount), 10},
    {"GetPreviousFailureError", SlotOf(&IURIAuthenticationChallenge::GetPreviousFailureError), 11},
    {"GetProposedCredential", SlotOf(&IURIAuthenticationChallenge::GetProposedCredential), 12},
};
INSTANTIATE_TEST_SUITE_P(IURIAuthenticationChallenge, Slots,
                         ::testing::ValuesIn(kURIAuthenticationChallengeRows), RowName());

// What hosts implement or call beside the interfaces above.
Row const kHostRows[] = {
    {"ReporterReport", SlotOf(&IO::IReporter::Report), 9},
    {"RecordObserverOnRecordBegin", SlotOf(&IO::IRecordObserver::OnRecordBegin), 9},
    {"RecordObserverOnRecordEnd", SlotOf(&IO::IRecordObserver::OnRecordEnd), 10},
    {"RecordObserverOnUnknownClass", SlotOf(&IO::IRecordObserver::OnUnknownClass), 11},
    {"CopyProgressOnCopied", SlotOf(&FILE_SYS::ICopyProgress::OnCopied), 9},
    {"LoggerKLogMessage", SlotOf(&KLoggerLibInterface::KLogMessage), 0},
    {"LogSinkOnMessage", SlotOf(&KLogSink::OnMessage), 0},
    {"DictionaryFunctorOnEntry", SlotOf(&IDictionary::IDictionaryFunctor::OnEntry), 2},
    {"ForEachFunctorOnEntry", SlotOf(&IStringDictionary::IForEachFunctor::OnEntry), 2},
};
INSTANTIATE_TEST_SUITE_P(Host, Slots, ::testing::ValuesIn(kHostRows), RowName());

// Not a component: no slots of IObject before its own, the destructor at the end.
Row const kProviderImplRows[] = {
    {"Write", SlotOf(&IO::DataProviderImpl::Write), 0},
    {"Read", SlotOf(&IO::DataProviderImpl::Read), 1},
    {"GetSize", SlotOf(&IO::DataProviderImpl::GetSize), 2},
    {"SetSize", SlotOf(&IO::DataProviderImpl::SetSize), 3},
    {"SetPosition", SlotOf(&IO::DataProviderImpl::SetPosition), 4},
    {"GetPosition", SlotOf(&IO::DataProviderImpl::GetPosition), 5},
};
INSTANTIATE_TEST_SUITE_P(DataProviderImpl, Slots, ::testing::ValuesIn(kProviderImplRows), RowName());

/// Tells which of the two destructor entries ran.
class Witness final : public TObject<IObject>
{
public:
    explicit Witness(int& deaths) : mDeaths(deaths) {}
    ~Witness() override { ++mDeaths; }
    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void* operator new(std::size_t, void* place) { return place; }
    static void operator delete(void* memory)
    {
        ++sDeletions;
        ::operator delete(memory);
    }
    static int sDeletions;

private:
    int& mDeaths;
};

int Witness::sDeletions = 0;

using Entry = void (*)(void*);

Entry EntryOf(IObject* object, std::size_t slot)
{
    Entry const* table = nullptr;
    std::memcpy(&table, static_cast<void*>(object), sizeof table);
    return table[slot];
}

TEST(DestructorSlots, TheCompleteObjectFormComesFirst)
{
    int deaths = 0;
    Witness::sDeletions = 0;
    alignas(Witness) unsigned char place[sizeof(Witness)];
    IObject* const object = new (place) Witness(deaths);
    EntryOf(object, 7)(object);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(Witness::sDeletions, 0);
}

TEST(DestructorSlots, TheDeletingFormComesSecond)
{
    int deaths = 0;
    Witness::sDeletions = 0;
    IObject* const object = new Witness(deaths);
    EntryOf(object, 8)(object);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(Witness::sDeletions, 1);
}

template <class Interface>
constexpr bool kDerivesFromIObject = std::is_base_of_v<IObject, Interface> &&
                                     sizeof(Interface) == sizeof(void*);

static_assert(kDerivesFromIObject<IClassFactory> && kDerivesFromIObject<COREREGISTRY::ICoreRegistry>);
static_assert(kDerivesFromIObject<FILE_SYS::IFile> && kDerivesFromIObject<FILE_SYS::ICopyProgress>);
static_assert(kDerivesFromIObject<IDataProvider> && std::is_base_of_v<IDataProvider, IO::IURIDataProvider>);
static_assert(kDerivesFromIObject<IO::IURIDataProvider> && kDerivesFromIObject<IDataProviderStream>);
static_assert(kDerivesFromIObject<IPersistentData> && kDerivesFromIObject<IO::IPersistentDataEx>);
static_assert(std::is_base_of_v<IPersistentData, IO::IPersistentDataEx>);
static_assert(kDerivesFromIObject<IDictionary> && kDerivesFromIObject<IStringDictionary>);
static_assert(kDerivesFromIObject<IURI> && kDerivesFromIObject<IURIFile> &&
              kDerivesFromIObject<IO::IURIRegistry>);
static_assert(kDerivesFromIObject<IO::IReporter> && kDerivesFromIObject<IO::IRecordObserver>);
static_assert(kDerivesFromIObject<IBufferedDataProvider> &&
              std::is_base_of_v<IDataProvider, IBufferedDataProvider>);
static_assert(kDerivesFromIObject<IRelativeURI> && std::is_base_of_v<IURI, IRelativeURI>);
static_assert(kDerivesFromIObject<IAsyncTask> && kDerivesFromIObject<IAsyncReader> &&
              kDerivesFromIObject<IAsyncWriter>);
static_assert(kDerivesFromIObject<IURICredential> && kDerivesFromIObject<IURIAuthenticationChallenge>);
static_assert(kDerivesFromIObject<FILE_SYS::IDir> && kDerivesFromIObject<FILE_SYS::ISystemDirContainer>);
} // namespace
} // namespace KORVA::TESTS
