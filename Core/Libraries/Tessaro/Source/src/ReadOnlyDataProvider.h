// The provider over memory that the caller owns.
#pragma once

#include "DataProviderImpl.h"

namespace KORVA::IO
{
/// Reads `size` bytes (at least 1) at `data`, borrowed, and refuses every change. A read that meets the end
/// is not an error here: it answers 0 with fewer bytes, or none.
class ReadOnlyDataProvider final : public DataProviderImpl
{
public:
    ReadOnlyDataProvider(void const* data, int32 size);

    OperationId Write(void const* data, std::size_t count) override;
    OperationId Read(void* buffer, int32& count) override;
    ErrCode GetSize(int64& size) const override;
    ErrCode SetSize(int64 size) override;
    ErrCode SetPosition(int64 offset, IDataProvider::Offset origin) override;
    int64 GetPosition() const override;

private:
    friend struct KORVA::LayoutProbe;

    unsigned char const* mData;
    int32 mSize;
    /// Between 0 and the size, both included.
    int64 mPosition = 0;
};
} // namespace KORVA::IO
