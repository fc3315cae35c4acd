// The base of the concrete data providers, and how the facade makes them.
#pragma once

#include <tessio/TessIO/IDataProvider.h>

namespace KORVA::IO
{
/// What the facade forwards to. Not a component: the facade owns its one provider outright.
class DataProviderImpl
{
public:
    virtual OperationId Write(void const* data, std::size_t count) = 0;
    virtual OperationId Read(void* buffer, int32& count) = 0;
    virtual ErrCode GetSize(int64& size) const = 0;
    virtual ErrCode SetSize(int64 size) = 0;
    virtual ErrCode SetPosition(int64 offset, IDataProvider::Offset origin) = 0;
    virtual int64 GetPosition() const = 0;
    virtual ~DataProviderImpl() = default;

    // As of `IDataProviderStatus`; what holds nothing back loses nothing.
    virtual int64 GetLostBytes() const { return 0; }
    virtual int32 GetSystemError() const { return 0; }
    virtual ErrCode WriteOut() { return kNoError; }
    virtual ErrCode FlushToDevice() { return kNoError; }
};

/// A growable memory block opened with `mode`; the caller owns it.
DataProviderImpl* CreateHandleDataProvider(int mode);

/// The file that `uri` names. `outer`, the facade that will own the provider, gets the aggregates. 0 and the
/// provider, which the caller owns, in `result`; on failure `result` is unchanged and nothing aggregated.
ErrCode CreateFileBasedDataProvider(IURI& uri, int mode, IDataProvider* outer, DataProviderImpl*& result,
                                    IReporter* reporter);
} // namespace KORVA::IO
