#include "Mac/MFileDataProvider.h"

#include "Mac/MAsyncAggregates.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/FileIO/LibUtils.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/ResultCodes.h>

#include <limits>

namespace KORVA::IO
{
namespace
{
using PLATFORM::Access;
using PLATFORM::Lock;
using PLATFORM::OpenResult;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider";
constexpr char kInit[] =
    "ErrCode KORVA::IO::FileDataProvider::Init(KORVA::IO::IURI &, StreamMode, KORVA::IO::IDataProvider *)";
constexpr char kOpenFile[] = "ErrCode KORVA::IO::FileDataProvider::OpenFile(StreamMode)";

constexpr LogSite kSiteNoFileObject{kSource, kInit, 283};
constexpr LogSite kSiteCreateFailed{kSource, kInit, 299};
constexpr LogSite kSiteNoStream{kSource, kOpenFile, 349};
constexpr LogSite kSiteOpenFailed{kSource, kOpenFile, 367};
constexpr LogSite kSiteNoPath{kSource, kOpenFile, 373};
constexpr LogSite kSiteWriteNull{
    kSource, "virtual OperationId KORVA::IO::FileDataProvider::Write(const void *, size_t)", 440};
constexpr LogSite kSiteReadNull{
    kSource, "virtual OperationId KORVA::IO::FileDataProvider::Read(void *, int32 &)", 480};

/// What the stream would have to answer for the write to count as failed.
constexpr std::size_t kWriteError = std::numeric_limits<std::size_t>::max();

struct OpenMode
{
    Access access;
    Lock lock;
    char const* stream;
};

/// Mode 3 gets a writer although it opens for reading, and no reader.
bool HasReader(StreamMode mode)
{
    return mode == kStreamRead || mode == kStreamReadWrite || mode == kStreamMode4;
}
bool HasWriter(StreamMode mode) { return mode >= kStreamWrite && mode <= kStreamMode4; }

template <class Aggregate>
void Attach(FileDataProvider& owner, IDataProvider& outer, GUID const& iid)
{
    TInterfacePtr<Aggregate> created;
    created.Adopt(new Aggregate(owner));
    outer.Aggregate(created.Get(), iid);
}

OpenMode OpenModeOf(StreamMode mode)
{
    switch (mode)
    {
    case kStreamWrite:
        // The stream asks for more than the descriptor gives; where the system checks that, opening ends in
        // 26. It stays so: clients write through mode 2 or 4.
        return {Access::kWrite, Lock::kNone, "r+b"};
    case kStreamReadWrite:
    case kStreamMode4:
        return {Access::kReadWrite, Lock::kShared, "r+b"};
    default:
        return {Access::kRead, Lock::kNone, "rb"};
    }
}

} // namespace

ErrCode CreateFileBasedDataProvider(IURI& uri, int mode, IDataProvider* outer, DataProviderImpl*& result,
                                    IReporter* reporter)
{
    auto provider = std::make_unique<FileDataProvider>(reporter);
    ErrCode const code = provider->Init(uri, mode, outer);
    if (code == kNoError)
        result = provider.release();
    return code;
}

FileDataProvider::FileDataProvider(IReporter* reporter) { mReporter.Share(reporter); }

FileDataProvider::~FileDataProvider()
{
    delete mFile;
    mPathUrl.reset();
    if (mChannel)
        mChannel->UnlockAfterWrites();
    StoreChannel({});
    mURI.Reset();
    mReporter.Reset();
}

ErrCode FileDataProvider::Init(IURI& uri, StreamMode mode, IDataProvider* outer)
{
    mURI.Share(&uri);
    mFile = nullptr;
    mPathUrl.reset();
    FILE_SYS::IFilePtr file;
    ErrCode const created =
        FILE_SYS::CreateSystemFile(COREREGISTRY::GetCoreRegistry(), file, mURI->GetPath());
    if (created != kNoError)
    {
        Log(kSiteCreateFailed, L"CreateSystemFile failed. Error = ", created);
        return created;
    }
    STRING::CoreString const path = mURI->GetPath();
    if (!path.empty())
        mPathUrl = PLATFORM::PathString::From(path.view());
    ErrCode const opened = OpenFile(mode);
    if (opened != kNoError)
        return opened;
    outer->Aggregate(mURI.Get(), IID_IURI);
    if (file)
        outer->Aggregate(file.Get(), FILE_SYS::IID_IFILE);
    else
        Log(kSiteNoFileObject, L"FILE_SYS::CreateSystemFile returned noErr but no IFile either");
    if (HasReader(mode))
        Attach<MAsyncReader>(*this, *outer, IID_ASYNC_READER);
    if (HasWriter(mode))
        Attach<MAsyncWriter>(*this, *outer, IID_ASYNC_WRITER);
    return kNoError;
}

ErrCode FileDataProvider::OpenFile(StreamMode mode)
{
    if (!mPathUrl)
    {
        Log(kSiteNoPath, L"No mPathUrl so cannot open the file.");
        return kFileNotFound;
    }
    OpenMode const how = OpenModeOf(mode);
    int descriptor = -1;
    if (mode == kStreamReadWrite)
    {
        // Only looks whether anybody else holds the file: the lock goes with the descriptor.
        OpenResult const probe = PLATFORM::OpenFile(*mPathUrl, Access::kWrite, Lock::kExclusive, descriptor);
        if (probe != OpenResult::kOpened)
            return probe == OpenResult::kLocked ? kLocked : kOpenRefused;
        PLATFORM::CloseFile(descriptor);
    }
    if (PLATFORM::OpenFile(*mPathUrl, how.access, how.lock, descriptor) != OpenResult::kOpened)
    {
        if (PLATFORM::FileExists(*mPathUrl))
            return kOpenRefused;
        Log(kSiteOpenFailed, L"open failed to open the path \"", mURI->GetPath(), L"\".");
        return kFileNotFound;
    }
    mFile = PLATFORM::FileStream::Over(descriptor, how.stream).release();
    if (!mFile)
    {
        Log(kSiteNoStream, L"NSFileHandle failed to initialize with the file descriptor for path \"",
            mURI->GetPath(), L"\".");
        return kFileNotFound;
    }
    return PLATFORM::IsDirectory(*mPathUrl) ? kFileNotFound : kNoError;
}

OperationId FileDataProvider::Write(void const* inBuffer, std::size_t count)
{
    if (!inBuffer)
    {
        Log(kSiteWriteNull, L"inBuffer == NULL");
        return kBadArgument;
    }
    auto const* from = static_cast<char const*>(inBuffer);
    OperationId result = kNoError;
    while (count > 0)
    {
        std::size_t const written = mFile->Write(from, count);
        if (written == kWriteError)
            result = kWriteFailed;
        if (count <= written)
            break;
        // A stream that takes nothing is tried again, without end.
        from += written;
        count -= written;
    }
    return result;
}

OperationId FileDataProvider::Read(void* outBuffer, int32& count)
{
    int32 const wanted = count;
    if (outBuffer)
    {
        std::size_t const delivered =
            mFile->Read(outBuffer, static_cast<std::size_t>(static_cast<int64>(wanted)));
        if (delivered > 0)
        {
            count = static_cast<int32>(delivered);
            return kNoError;
        }
    }
    else
        Log(kSiteReadNull, L"outBuffer == NULL");
    ErrCode const detail = outBuffer ? kNoError : kBadArgument;
    count = 0;
    OperationId const result = wanted > 0 ? kNoData : detail;
    if (result == kNoError)
        return result;
    if (mReporter)
        mReporter->Report(mURI.Get(), result, detail);
    return result;
}

ErrCode FileDataProvider::GetSize(int64& size) const
{
    int64 const position = GetPosition();
    mFile->Seek(0, SEEK_END);
    size = GetPosition();
    mFile->Seek(position, SEEK_SET);
    return kNoError;
}

ErrCode FileDataProvider::SetSize(int64 length)
{
    static_cast<void>(mFile->Truncate(length));
    return kNoError;
}

ErrCode FileDataProvider::SetPosition(int64 offset, IDataProvider::Offset from)
{
    switch (from)
    {
    case IDataProvider::kFromStart:
        static_cast<void>(mFile->Seek(offset, SEEK_SET));
        break;
    case IDataProvider::kFromEnd:
        static_cast<void>(mFile->Seek(offset, SEEK_END));
        break;
    case IDataProvider::kFromCurrent:
        static_cast<void>(mFile->Seek(offset, SEEK_CUR));
        break;
    }
    return kNoError;
}

int64 FileDataProvider::GetPosition() const { return mFile->Tell(); }

int64 FileDataProvider::GetLostBytes() const
{
    return static_cast<int64>(mFile->LostBytes() + mUnwritten.load());
}

int32 FileDataProvider::GetSystemError() const
{
    int const error = mFile->FirstError();
    return error != 0 ? error : mChannelError.load();
}

ErrCode FileDataProvider::WriteOut()
{
    static_cast<void>(mFile->WriteOut());
    return GetLostBytes() == 0 ? kNoError : kWriteFailed;
}

ErrCode FileDataProvider::FlushToDevice()
{
    bool const flushed = mFile->FlushToDevice();
    return flushed && GetLostBytes() == 0 ? kNoError : kWriteFailed;
}
} // namespace KORVA::IO
