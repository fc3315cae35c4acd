// The facade over the concrete data providers.
#pragma once

#include "DataProviderImpl.h"
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProviderStatus.h>
#include <tessio/TessIO/IURIDataProvider.h>

namespace KORVA::IO
{
/// Each `Init…` installs a provider; none removes the one installed before.
class DataProvider final : public TObject<IURIDataProvider>, public IDataProviderStatus
{
public:
    /// `kNativeEndian` stands for the native order here, and only here.
    explicit DataProvider(Endian endian);

    void InitHandleBased(int mode) override;
    ErrCode InitReadOnlyMem(void const* data, int32 size) override;
    ErrCode InitURIBased(IURI& uri, int mode, IReporter* reporter) override;
    OperationId Write(void const* data, std::size_t count) override;
    OperationId Read(void* buffer, int32& count) override;
    int64 Size() const override;
    ErrCode SetSize(int64 size) override;
    ErrCode SetPosition(int64 offset, Offset origin) override;
    int64 GetPosition() const override;
    Endian GetEndian() const override;
    bool IsNative() const override;
    void SetEndian(Endian endian) override;
    bool AtEnd() override;
    ErrCode Flush() override;
    bool GetAutoFlush() override;
    void SetAutoFlush(bool autoFlush) override;
    HRESULT Init(IURI& uri, IReporter* reporter) override;

    int64 GetLostBytes() const override;
    int32 GetSystemError() const override;
    ErrCode WriteOut() override;
    ErrCode FlushToDevice() override;

private:
    friend struct KORVA::LayoutProbe;

    ~DataProvider() override;

    Endian mEndian;
    DataProviderImpl* mImpl = nullptr;
};
} // namespace KORVA::IO
