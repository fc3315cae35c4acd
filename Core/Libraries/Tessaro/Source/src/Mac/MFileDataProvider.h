// The provider over a file.
#pragma once

#include "CoreString/CoreString.h"
#include "DataProviderImpl.h"
#include "ObjectModel/TInterfacePtr.h"
#include "Platform/FileStream.h"
#include "TessIO/IReporter.h"
#include "TessIO/IURI.h"

#include <cstdio>
#include <memory>

namespace KORVA::IO
{
/// Opens an existing file once, as a buffered stream, and keeps it open for its whole life.
class FileDataProvider final : public DataProviderImpl
{
public:
    /// Shares the reporter, which may be null.
    explicit FileDataProvider(IReporter* reporter);
    FileDataProvider(FileDataProvider const&) = delete;
    FileDataProvider& operator=(FileDataProvider const&) = delete;
    ~FileDataProvider() override;

    /// Opens the file that `uri` (shared) names and aggregates the URI and the file object on `outer`. To be
    /// called once. 0, or a code of `IDataProvider::InitURIBased` and nothing aggregated.
    ErrCode Init(IURI& uri, StreamMode mode, IDataProvider* outer);

    /// 13 for a null buffer. Repeats until all is written: on a stream that can't be written to it never
    /// returns. Open for writing, and make room, before writing.
    OperationId Write(void const* inBuffer, std::size_t count) override;
    OperationId Read(void* outBuffer, int32& count) override;
    ErrCode GetSize(int64& size) const override;
    /// Cuts or extends the file at once, past what the stream still buffers.
    ErrCode SetSize(int64 length) override;
    /// `kFromEnd` adds the offset to the end.
    ErrCode SetPosition(int64 offset, IDataProvider::Offset from) override;
    int64 GetPosition() const override;

private:
    friend struct KORVA::LayoutProbe;

    ErrCode OpenFile(StreamMode mode);

    std::unique_ptr<PLATFORM::PathString> mPathUrl;
    std::FILE* mFile = nullptr;
    TInterfacePtr<IReporter> mReporter;
    TInterfacePtr<IURI> mURI;
};
} // namespace KORVA::IO
