// Order, offsets and sizes of the fields on x86-64. A derived class begins in the tail of its base.
#include "BufferedDataProvider.h"
#include "DataProvider.h"
#include "DataProviderStream.h"
#include "DictValue.h"
#include "FileProxy.h"
#include "Mac/HandleDataProvider.h"
#include "Mac/MAsyncAggregates.h"
#include "Mac/MAsyncTask.h"
#include "Mac/MFileDataProvider.h"
#include "PersistentDictionary.h"
#include "ReadOnlyDataProvider.h"
#include "RelativeURI.h"
#include "StringDictionary.h"
#include "Support/Library.h"
#include "URI.h"
#include "URIAuthenticationChallenge.h"
#include "URICredential.h"
#include "URIRegistry.h"
#include "UniCharUtils.h"
#include <tessio/TessIO/PersistentData.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <type_traits>

namespace KORVA
{
/// The one friend that may look at fields.
struct LayoutProbe
{
    using Object = TObject<IObject>;
    static constexpr std::size_t kObjectAggregates = offsetof(Object, mAggregates);
    static constexpr std::size_t kObjectRefCount = offsetof(Object, mRefCount);
    static_assert(std::is_same_v<decltype(Object::mAggregates), std::map<GUID, IObject*>>);
    static_assert(std::is_same_v<decltype(Object::mRefCount), std::atomic<int32>>);

    using Pointer = TInterfacePtr<IObject>;
    static constexpr std::size_t kPointerInterface = offsetof(Pointer, mInterface);

    static constexpr std::size_t kProviderEndian = offsetof(IO::DataProvider, mEndian);
    static constexpr std::size_t kProviderImpl = offsetof(IO::DataProvider, mImpl);
    static_assert(sizeof(IO::IDataProvider::Endian) == 4 && sizeof(IO::IDataProvider::Offset) == 4);

    static constexpr std::size_t kReadOnlyData = offsetof(IO::ReadOnlyDataProvider, mData);
    static constexpr std::size_t kReadOnlySize = offsetof(IO::ReadOnlyDataProvider, mSize);
    static constexpr std::size_t kReadOnlyPosition = offsetof(IO::ReadOnlyDataProvider, mPosition);
    static_assert(std::is_same_v<decltype(IO::ReadOnlyDataProvider::mSize), int32>);
    static_assert(std::is_same_v<decltype(IO::ReadOnlyDataProvider::mPosition), int64>);

    static constexpr std::size_t kHandleHandle = offsetof(IO::HandleDataProvider, mHandle);
    static constexpr std::size_t kHandleMode = offsetof(IO::HandleDataProvider, mMode);
    static constexpr std::size_t kHandlePosition = offsetof(IO::HandleDataProvider, mPosition);
    static constexpr std::size_t kHandleCapacity = offsetof(IO::HandleDataProvider, mCapacity);
    static constexpr std::size_t kHandleSize = offsetof(IO::HandleDataProvider, mSize);
    static_assert(std::is_same_v<decltype(IO::HandleDataProvider::mMode), int32>);
    static_assert(std::is_same_v<decltype(IO::HandleDataProvider::mPosition), uint32>);
    static_assert(std::is_same_v<decltype(IO::HandleDataProvider::mCapacity), uint32>);
    static_assert(std::is_same_v<decltype(IO::HandleDataProvider::mSize), uint32>);

    static constexpr std::size_t kFilePathUrl = offsetof(IO::FileDataProvider, mPathUrl);
    static constexpr std::size_t kFileFile = offsetof(IO::FileDataProvider, mFile);
    static constexpr std::size_t kFileReporter = offsetof(IO::FileDataProvider, mReporter);
    static constexpr std::size_t kFileURI = offsetof(IO::FileDataProvider, mURI);
    static_assert(std::is_same_v<decltype(IO::FileDataProvider::mFile), PLATFORM::FileStream*>);
    static_assert(std::is_same_v<decltype(IO::FileDataProvider::mReporter), TInterfacePtr<IO::IReporter>>);
    static_assert(std::is_same_v<decltype(IO::FileDataProvider::mURI), TInterfacePtr<IO::IURI>>);

    static constexpr std::size_t kFileChannel = offsetof(IO::FileDataProvider, mChannel);
    static constexpr std::size_t kFileAsyncEnabled = offsetof(IO::FileDataProvider, mAsyncEnabled);
    static_assert(std::is_same_v<decltype(IO::FileDataProvider::mAsyncEnabled), std::atomic<bool8>>);

    static constexpr std::size_t kTaskDone = offsetof(IO::MAsyncTask, mDone);
    static constexpr std::size_t kTaskStatus = offsetof(IO::MAsyncTask, mStatus);
    static constexpr std::size_t kTaskCompleted = offsetof(IO::MAsyncTask, mCompleted);
    static_assert(sizeof(IO::MAsyncTask::mDone) == 8);
    static_assert(std::is_same_v<decltype(IO::MAsyncTask::mStatus), std::atomic<int32>>);
    static_assert(std::is_same_v<decltype(IO::MAsyncTask::mCompleted), std::atomic<bool8>>);

    static constexpr std::size_t kReaderOwner = offsetof(IO::MAsyncReader, mOwner);
    static constexpr std::size_t kReaderInitialized = offsetof(IO::MAsyncReader, mInitialized);
    static constexpr std::size_t kReaderProc = offsetof(IO::MAsyncReader, mProc);
    static constexpr std::size_t kWriterOwner = offsetof(IO::MAsyncWriter, mOwner);
    static constexpr std::size_t kWriterInitialized = offsetof(IO::MAsyncWriter, mInitialized);
    static constexpr std::size_t kWriterProc = offsetof(IO::MAsyncWriter, mProc);
    static_assert(std::is_same_v<decltype(IO::MAsyncReader::mOwner), IO::FileDataProvider*>, "uncounted");
    static_assert(std::is_same_v<decltype(IO::MAsyncWriter::mOwner), IO::FileDataProvider*>, "uncounted");
    static_assert(sizeof(IO::MAsyncReader::mInitialized) == 1 && sizeof(IO::MAsyncWriter::mInitialized) == 1);
    static_assert(sizeof(IO::MAsyncReader::mProc) == 8 && sizeof(IO::MAsyncWriter::mProc) == 8);
    static_assert(!std::is_polymorphic_v<IO::BaseAsyncLockable>);

    using Buffered = IO::BufferedDataProvider;
    static constexpr std::size_t kBufferedProvider = offsetof(Buffered, mProvider);
    static constexpr std::size_t kBufferedBufferSize = offsetof(Buffered, mBufferSize);
    static constexpr std::size_t kBufferedMode = offsetof(Buffered, mMode);
    static constexpr std::size_t kBufferedBuffer = offsetof(Buffered, mBuffer);
    static constexpr std::size_t kBufferedDirty = offsetof(Buffered, mDirty);
    static constexpr std::size_t kBufferedAutoFlush = offsetof(Buffered, mAutoFlush);
    static constexpr std::size_t kBufferData = offsetof(Buffered::Buffer, mData);
    static constexpr std::size_t kBufferCursor = offsetof(Buffered::Buffer, mCursor);
    static constexpr std::size_t kBufferLength = offsetof(Buffered::Buffer, mLength);
    static constexpr std::size_t kBufferStart = offsetof(Buffered::Buffer, mStart);
    static_assert(std::is_same_v<decltype(Buffered::mProvider), TInterfacePtr<IO::IDataProvider>>);
    static_assert(std::is_same_v<decltype(Buffered::mBufferSize), int32>);
    static_assert(sizeof(Buffered::mMode) == 4 && sizeof(Buffered::mDirty) == 1 &&
                  sizeof(Buffered::mAutoFlush) == 1);
    static_assert(std::is_same_v<decltype(Buffered::Buffer::mCursor), int64>);
    static_assert(std::is_same_v<decltype(Buffered::Buffer::mLength), int64>);
    static_assert(std::is_same_v<decltype(Buffered::Buffer::mStart), int64>);

    static constexpr std::size_t kStreamProvider = offsetof(IO::DataProviderStream, mProvider);
    static_assert(
        std::is_same_v<decltype(IO::DataProviderStream::mProvider), TInterfacePtr<IO::IDataProvider>>);

    static constexpr std::size_t kValueTag = offsetof(IO::DictValue, mTag);
    static constexpr std::size_t kValueInteger = offsetof(IO::DictValue, mInteger);
    static constexpr std::size_t kValueFloating = offsetof(IO::DictValue, mFloating);
    static constexpr std::size_t kValueBuffer = offsetof(IO::DictValue, mBuffer);
    static constexpr std::size_t kValueBufferLength = offsetof(IO::DictValue, mBufferLength);
    static_assert(std::is_same_v<std::underlying_type_t<decltype(IO::DictValue::mTag)>, uint32>);
    static_assert(sizeof(IO::DictValue::mInteger) == 8);
    static_assert(std::is_same_v<decltype(IO::DictValue::mFloating), double>);
    static_assert(std::is_same_v<decltype(IO::DictValue::mBufferLength), int32>);

    static constexpr std::size_t kDictionaryEntries = offsetof(IO::PersistentDictionary, mEntries);
    static_assert(
        std::is_same_v<decltype(IO::PersistentDictionary::mEntries), std::map<unsigned int, IObject*>>);

    static constexpr std::size_t kStringsEntries = offsetof(IO::StringDictionary, mEntries);
    static_assert(std::is_same_v<decltype(IO::StringDictionary::mEntries),
                                 std::map<STRING::CoreString, STRING::CoreString>>);

    static constexpr std::size_t kURIURL = offsetof(IO::URI, mURL);

    static constexpr std::size_t kRelativeScheme = offsetof(IO::RelativeURI, mScheme);
    static constexpr std::size_t kRelativeHost = offsetof(IO::RelativeURI, mHost);
    static constexpr std::size_t kRelativePort = offsetof(IO::RelativeURI, mPort);
    static constexpr std::size_t kRelativeFullPath = offsetof(IO::RelativeURI, mFullPath);
    static constexpr std::size_t kRelativeRelPath = offsetof(IO::RelativeURI, mRelPath);
    static constexpr std::size_t kRelativeBaseDir = offsetof(IO::RelativeURI, mBaseDir);
    static constexpr std::size_t kRelativeDirType = offsetof(IO::RelativeURI, mDirType);
    static constexpr std::size_t kRelativeQuery = offsetof(IO::RelativeURI, mQuery);
    static_assert(std::is_same_v<decltype(IO::RelativeURI::mPort), uint32>);
    static_assert(std::is_same_v<decltype(IO::RelativeURI::mBaseDir), TInterfacePtr<FILE_SYS::IDir>>);
    static_assert(std::is_same_v<std::underlying_type_t<FILE_SYS::DirType>, int32>);

    static constexpr std::size_t kCredentialUsername = offsetof(IO::URICredential, mUsername);
    static constexpr std::size_t kCredentialPassword = offsetof(IO::URICredential, mPassword);
    static_assert(std::is_same_v<decltype(IO::URICredential::mUsername), STRING::CoreString>);
    static_assert(std::is_same_v<decltype(IO::URICredential::mPassword), STRING::CoreString>);

    using Challenge = IO::URIAuthenticationChallenge;
    static constexpr std::size_t kChallengeCount = offsetof(Challenge, mPreviousFailureCount);
    static constexpr std::size_t kChallengeError = offsetof(Challenge, mPreviousFailureError);
    static constexpr std::size_t kChallengeCredential = offsetof(Challenge, mProposedCredential);
    static_assert(std::is_same_v<decltype(Challenge::mPreviousFailureCount), uint32>);
    static_assert(std::is_same_v<decltype(Challenge::mPreviousFailureError), int32>);
    static_assert(
        std::is_same_v<decltype(Challenge::mProposedCredential), TInterfacePtr<IO::IURICredential>>);

    static constexpr std::size_t kWrapperString = offsetof(CFMutableStringWrapper, mString);
    static constexpr std::size_t kWrapperUniCopy = offsetof(CFMutableStringWrapper, mUniCopy);
    static constexpr std::size_t kWrapperCCopy = offsetof(CFMutableStringWrapper, mCCopy);
    static constexpr std::size_t kWrapperDirty = offsetof(CFMutableStringWrapper, mDirty);
    static_assert(sizeof(CFMutableStringWrapper::mDirty) == 1);

    static constexpr std::size_t kProxyURI = offsetof(IO::FileProxy, mURI);
    static constexpr std::size_t kProxyReporter = offsetof(IO::FileProxy, mReporter);
    static_assert(std::is_same_v<decltype(IO::FileProxy::mURI), TInterfacePtr<IO::IURI>>);
    static_assert(std::is_same_v<decltype(IO::FileProxy::mReporter), TInterfacePtr<IO::IReporter>>);

    using Adapter = IO::PersistentData<IO::StringDictionary>;
    static constexpr std::size_t kAdapterObject = offsetof(Adapter, mObject);
    static_assert(std::is_same_v<decltype(Adapter::mObject), IO::StringDictionary*>, "an uncounted pointer");
};

namespace TESTS
{
namespace
{
using Probe = LayoutProbe;

// The base, which every class without fields of its own equals in size.
constexpr std::size_t kBaseSize = 64;

struct Row
{
    char const* name;
    std::size_t actual;
    std::size_t expected;
};

Row const kRows[] = {
    {"TObjectAggregates", Probe::kObjectAggregates, 8},
    {"TObjectRefCount", Probe::kObjectRefCount, 56},
    {"TObjectSize", sizeof(TObject<IObject>), 64},
    {"TObjectOfAnotherInterfaceSize", sizeof(TObject<IO::IURIFile>), 64},
    {"TInterfacePtrInterface", Probe::kPointerInterface, 8},
    {"TInterfacePtrSize", sizeof(TInterfacePtr<IObject>), 16},
    {"DataProviderEndian", Probe::kProviderEndian, 72},
    {"DataProviderImpl", Probe::kProviderImpl, 80},
    {"DataProviderSize", sizeof(IO::DataProvider), 88},
    {"DataProviderImplHasNoFields", sizeof(IO::DataProviderImpl), 8},
    {"ReadOnlyData", Probe::kReadOnlyData, 8},
    {"ReadOnlySize", Probe::kReadOnlySize, 16},
    {"ReadOnlyPosition", Probe::kReadOnlyPosition, 24},
    {"ReadOnlyDataProviderSize", sizeof(IO::ReadOnlyDataProvider), 32},
    {"HandleHandle", Probe::kHandleHandle, 8},
    {"HandleMode", Probe::kHandleMode, 16},
    {"HandlePosition", Probe::kHandlePosition, 20},
    {"HandleCapacity", Probe::kHandleCapacity, 24},
    {"HandleSize", Probe::kHandleSize, 28},
    {"HandleDataProviderSize", sizeof(IO::HandleDataProvider), 32},
    {"FilePathUrl", Probe::kFilePathUrl, 8},
    {"FileFile", Probe::kFileFile, 16},
    {"FileReporter", Probe::kFileReporter, 24},
    {"FileURI", Probe::kFileURI, 40},
    {"FileChannel", Probe::kFileChannel, 56},
    {"FileAsyncEnabled", Probe::kFileAsyncEnabled, 64},
    {"FileDataProviderSize", sizeof(IO::FileDataProvider), 88},
    {"TaskDone", Probe::kTaskDone, 64},
    {"TaskStatus", Probe::kTaskStatus, 72},
    {"TaskCompleted", Probe::kTaskCompleted, 76},
    {"AsyncTaskSize", sizeof(IO::MAsyncTask), 80},
    {"AsyncLockableSize", sizeof(IO::BaseAsyncLockable), 8},
    {"ReaderOwner", Probe::kReaderOwner, 72},
    {"ReaderInitialized", Probe::kReaderInitialized, 80},
    {"ReaderProc", Probe::kReaderProc, 88},
    {"AsyncReaderSize", sizeof(IO::MAsyncReader), 96},
    {"WriterOwner", Probe::kWriterOwner, 72},
    {"WriterInitialized", Probe::kWriterInitialized, 80},
    {"WriterProc", Probe::kWriterProc, 88},
    {"AsyncWriterSize", sizeof(IO::MAsyncWriter), 96},
    {"BufferedProvider", Probe::kBufferedProvider, 72},
    {"BufferedBufferSize", Probe::kBufferedBufferSize, 88},
    {"BufferedMode", Probe::kBufferedMode, 92},
    {"BufferedBuffer", Probe::kBufferedBuffer, 96},
    {"BufferedDirty", Probe::kBufferedDirty, 128},
    {"BufferedAutoFlush", Probe::kBufferedAutoFlush, 129},
    {"BufferedDataProviderSize", sizeof(IO::BufferedDataProvider), 144},
    {"BufferData", Probe::kBufferData, 0},
    {"BufferCursor", Probe::kBufferCursor, 8},
    {"BufferLength", Probe::kBufferLength, 16},
    {"BufferStart", Probe::kBufferStart, 24},
    {"BufferSize", sizeof(IO::BufferedDataProvider::Buffer), 32},
    {"StreamProvider", Probe::kStreamProvider, 72},
    {"DataProviderStreamSize", sizeof(IO::DataProviderStream), 104},
    {"ValueTag", Probe::kValueTag, 60},
    {"ValueInteger", Probe::kValueInteger, 64},
    {"ValueFloating", Probe::kValueFloating, 72},
    {"ValueBuffer", Probe::kValueBuffer, 80},
    {"ValueBufferLength", Probe::kValueBufferLength, 88},
    {"DictValueSize", sizeof(IO::DictValue), 96},
    {"DictionaryEntries", Probe::kDictionaryEntries, 64},
    {"PersistentDictionarySize", sizeof(IO::PersistentDictionary), 112},
    {"StringsEntries", Probe::kStringsEntries, 64},
    {"StringDictionarySize", sizeof(IO::StringDictionary), 112},
    {"URIURL", Probe::kURIURL, 64},
    {"URISize", sizeof(IO::URI), 72},
    {"RelativeScheme", Probe::kRelativeScheme, 64},
    {"RelativeHost", Probe::kRelativeHost, 96},
    {"RelativePort", Probe::kRelativePort, 128},
    {"RelativeFullPath", Probe::kRelativeFullPath, 136},
    {"RelativeRelPath", Probe::kRelativeRelPath, 168},
    {"RelativeBaseDir", Probe::kRelativeBaseDir, 200},
    {"RelativeDirType", Probe::kRelativeDirType, 216},
    {"RelativeQuery", Probe::kRelativeQuery, 224},
    {"RelativeURISize", sizeof(IO::RelativeURI), 256},
    {"CredentialUsername", Probe::kCredentialUsername, 64},
    {"CredentialPassword", Probe::kCredentialPassword, 96},
    {"URICredentialSize", sizeof(IO::URICredential), 128},
    {"ChallengeCount", Probe::kChallengeCount, 60},
    {"ChallengeError", Probe::kChallengeError, 64},
    {"ChallengeCredential", Probe::kChallengeCredential, 72},
    {"URIAuthenticationChallengeSize", sizeof(IO::URIAuthenticationChallenge), 88},
    {"WrapperString", Probe::kWrapperString, 0},
    {"WrapperUniCopy", Probe::kWrapperUniCopy, 8},
    {"WrapperCCopy", Probe::kWrapperCCopy, 16},
    {"WrapperDirty", Probe::kWrapperDirty, 24},
    {"MutableStringWrapperSize", sizeof(CFMutableStringWrapper), 32},
    {"ProxyURI", Probe::kProxyURI, 64},
    {"ProxyReporter", Probe::kProxyReporter, 80},
    {"FileProxySize", sizeof(IO::FileProxy), 96},
    {"URIRegistryHasNoFields", sizeof(IO::URIRegistry), kBaseSize},
    {"AdapterObject", Probe::kAdapterObject, 64},
    {"PersistentDataSize", sizeof(Probe::Adapter), 72},
};

class Layout : public ::testing::TestWithParam<Row>
{
};

TEST_P(Layout, IsFixed) { EXPECT_EQ(GetParam().actual, GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(Fields, Layout, ::testing::ValuesIn(kRows), RowName());

TEST(LayoutOfBases, TheInterfaceLiesAtTheObjectsStart)
{
    TInterfacePtr<IO::IURIDataProvider> provider;
    provider.Adopt(new IO::DataProvider(IO::IDataProvider::kLittleEndian));
    void const* const start = dynamic_cast<void*>(provider.Get());
    EXPECT_EQ(start, static_cast<void*>(provider.Get()));
    EXPECT_EQ(start, static_cast<void*>(static_cast<IO::IDataProvider*>(provider.Get())));
    EXPECT_EQ(start, static_cast<void*>(static_cast<IObject*>(provider.Get())));
}
} // namespace
} // namespace TESTS
} // namespace KORVA
