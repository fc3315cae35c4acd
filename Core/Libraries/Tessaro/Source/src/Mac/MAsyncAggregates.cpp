#include "Mac/MAsyncAggregates.h"

#include "Mac/MFileDataProvider.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/ResultCodes.h>

namespace KORVA::IO
{
namespace
{
constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/Mac/MFileDataProvider";

constexpr LogSite kSiteReader{kSource, "void KORVA::IO::MAsyncReader::EnableAsync()", 121};
constexpr LogSite kSiteWriter{kSource, "void KORVA::IO::MAsyncWriter::EnableAsync()", 172};

/// The writer has it too.
constexpr wchar_t kCantEnable[] = L"Unable to enable asynchronous reading for file.";
} // namespace

MAsyncReader::MAsyncReader(FileDataProvider& owner) : mOwner(&owner) {}

void MAsyncReader::EnableAsync()
{
    Lock const lock(*this);
    if (mInitialized)
        return;
    if (mOwner->EnableAsync() != kNoError)
    {
        Log(kSiteReader, kCantEnable);
        return;
    }
    mInitialized = true;
    mProc = &InitializedReadProc;
}

ErrCode MAsyncReader::UninitializedReadProc(MAsyncReader& reader, Operation const& operation)
{
    reader.EnableAsync();
    return reader.mInitialized ? operation() : kNoData;
}

ErrCode MAsyncReader::InitializedReadProc(MAsyncReader&, Operation const& operation) { return operation(); }

// The operations are wrapped by reference: a callable of their size would be allocated at each call.

ErrCode MAsyncReader::ReadAsync(int64 offset, void* buffer, std::size_t length, IAsyncTaskPtr& task)
{
    auto const operation = [&] { return mOwner->ReadAsync(offset, buffer, length, task); };
    return mProc.load()(*this, std::ref(operation));
}

ErrCode MAsyncReader::ReadSync(int64 offset, void* buffer, std::size_t length)
{
    auto const operation = [&] { return mOwner->ReadSync(offset, buffer, length); };
    return mProc.load()(*this, std::ref(operation));
}

MAsyncWriter::MAsyncWriter(FileDataProvider& owner) : mOwner(&owner) {}

void MAsyncWriter::EnableAsync()
{
    Lock const lock(*this);
    if (mInitialized)
        return;
    if (mOwner->EnableAsync() != kNoError)
    {
        Log(kSiteWriter, kCantEnable);
        return;
    }
    mInitialized = true;
    mProc = &InitializedWriteProc;
}

ErrCode MAsyncWriter::UninitializedWriteProc(MAsyncWriter& writer, Operation const& operation)
{
    writer.EnableAsync();
    return writer.mInitialized ? operation() : kNoData;
}

ErrCode MAsyncWriter::InitializedWriteProc(MAsyncWriter&, Operation const& operation) { return operation(); }

ErrCode MAsyncWriter::WriteAsync(int64 offset, void const* buffer, std::size_t length, IAsyncTaskPtr& task)
{
    auto const operation = [&] { return mOwner->WriteAsync(offset, buffer, length, task); };
    return mProc.load()(*this, std::ref(operation));
}

ErrCode MAsyncWriter::WriteSync(int64 offset, void const* buffer, std::size_t length)
{
    auto const operation = [&] { return mOwner->WriteSync(offset, buffer, length); };
    return mProc.load()(*this, std::ref(operation));
}
} // namespace KORVA::IO
