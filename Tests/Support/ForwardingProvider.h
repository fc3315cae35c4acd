// A data provider over another one, for tests that change a few operations.
#pragma once

#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProvider.h>

#include <utility>

namespace KORVA::TESTS
{
/// Hands every call on.
class ForwardingProvider : public TObject<IO::IDataProvider>
{
public:
    explicit ForwardingProvider(TInterfacePtr<IO::IDataProvider> below) : mBelow(std::move(below)) {}

    void InitHandleBased(int mode) override { mBelow->InitHandleBased(mode); }
    ErrCode InitReadOnlyMem(void const* data, int32 size) override
    {
        return mBelow->InitReadOnlyMem(data, size);
    }
    ErrCode InitURIBased(IO::IURI& uri, int mode, IO::IReporter* reporter) override
    {
        return mBelow->InitURIBased(uri, mode, reporter);
    }
    OperationId Write(void const* data, std::size_t count) override { return mBelow->Write(data, count); }
    OperationId Read(void* buffer, int32& count) override { return mBelow->Read(buffer, count); }
    int64 Size() const override { return mBelow->Size(); }
    ErrCode SetSize(int64 size) override { return mBelow->SetSize(size); }
    ErrCode SetPosition(int64 offset, Offset origin) override { return mBelow->SetPosition(offset, origin); }
    int64 GetPosition() const override { return mBelow->GetPosition(); }
    Endian GetEndian() const override { return mBelow->GetEndian(); }
    bool IsNative() const override { return mBelow->IsNative(); }
    void SetEndian(Endian endian) override { mBelow->SetEndian(endian); }
    bool AtEnd() override { return mBelow->AtEnd(); }
    ErrCode Flush() override { return mBelow->Flush(); }
    bool GetAutoFlush() override { return mBelow->GetAutoFlush(); }
    void SetAutoFlush(bool autoFlush) override { mBelow->SetAutoFlush(autoFlush); }

private:
    TInterfacePtr<IO::IDataProvider> mBelow;
};
} // namespace KORVA::TESTS
