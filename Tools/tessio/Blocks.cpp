#include "Blocks.h"

#include <tessio/TessIO/ClassIds.h>

namespace TOOL
{
using namespace KORVA;

IO::IAsyncReader* ReaderOf(IO::IDataProvider const& provider)
{
    IObject* found = nullptr;
    return provider.QueryInterface(IO::IID_ASYNC_READER, &found) == kNoError
               ? static_cast<IO::IAsyncReader*>(found)
               : nullptr;
}

IO::IAsyncWriter* WriterOf(IO::IDataProvider const& provider)
{
    IObject* found = nullptr;
    return provider.QueryInterface(IO::IID_ASYNC_WRITER, &found) == kNoError
               ? static_cast<IO::IAsyncWriter*>(found)
               : nullptr;
}

bool Block::BeginRead(IO::IAsyncReader& reader, int64 offset, std::size_t length)
{
    mOffset = offset;
    mLength = length;
    return reader.ReadAsync(offset, mBytes.data(), length, mTask) == kNoError;
}

bool Block::BeginWrite(IO::IAsyncWriter& writer)
{
    return writer.WriteAsync(mOffset, mBytes.data(), mLength, mTask) == kNoError;
}

bool Block::Wait()
{
    if (!mTask)
        return true;
    IO::IAsyncTaskPtr const task = std::move(mTask);
    static_cast<void>(task->WaitForCompletion());
    return task->GetStatus() == kNoError;
}
} // namespace TOOL
