// A provider that counts how often it is read.
#pragma once

#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProvider.h>

#include <utility>

namespace TOOL
{
/// Passes everything on to another provider, which it shares.
class CountingProvider final : public KORVA::TObject<KORVA::IO::IDataProvider>
{
public:
    explicit CountingProvider(KORVA::TInterfacePtr<KORVA::IO::IDataProvider> provider)
        : mProvider(std::move(provider))
    {}

    KORVA::uint64 Reads() const { return mReads; }
    KORVA::uint64 BytesRead() const { return mBytesRead; }

    void InitHandleBased(int mode) override { mProvider->InitHandleBased(mode); }
    KORVA::ErrCode InitReadOnlyMem(void const* data, KORVA::int32 size) override
    {
        return mProvider->InitReadOnlyMem(data, size);
    }
    KORVA::ErrCode InitURIBased(KORVA::IO::IURI& uri, int mode, KORVA::IO::IReporter* reporter) override
    {
        return mProvider->InitURIBased(uri, mode, reporter);
    }
    KORVA::OperationId Write(void const* data, std::size_t count) override
    {
        return mProvider->Write(data, count);
    }
    KORVA::OperationId Read(void* buffer, KORVA::int32& count) override
    {
        KORVA::OperationId const result = mProvider->Read(buffer, count);
        ++mReads;
        mBytesRead += static_cast<KORVA::uint64>(count);
        return result;
    }
    KORVA::int64 Size() const override { return mProvider->Size(); }
    KORVA::ErrCode SetSize(KORVA::int64 size) override { return mProvider->SetSize(size); }
    KORVA::ErrCode SetPosition(KORVA::int64 offset, Offset origin) override
    {
        return mProvider->SetPosition(offset, origin);
    }
    KORVA::int64 GetPosition() const override { return mProvider->GetPosition(); }
    Endian GetEndian() const override { return mProvider->GetEndian(); }
    bool IsNative() const override { return mProvider->IsNative(); }
    void SetEndian(Endian endian) override { mProvider->SetEndian(endian); }
    bool AtEnd() override { return mProvider->AtEnd(); }
    KORVA::ErrCode Flush() override { return mProvider->Flush(); }
    bool GetAutoFlush() override { return mProvider->GetAutoFlush(); }
    void SetAutoFlush(bool autoFlush) override { mProvider->SetAutoFlush(autoFlush); }

private:
    KORVA::TInterfacePtr<KORVA::IO::IDataProvider> mProvider;
    KORVA::uint64 mReads = 0;
    KORVA::uint64 mBytesRead = 0;
};
} // namespace TOOL
