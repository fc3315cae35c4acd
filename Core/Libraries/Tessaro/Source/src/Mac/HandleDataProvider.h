// The provider over a growable memory block.
#pragma once

#include "DataProviderImpl.h"
#include "Platform/MemoryBlock.h"

namespace KORVA::IO
{
/// Grows by what a write needs and a further 512 KiB, so that small writes resize rarely; shrinks by
/// `SetSize` only. Positions are bounded by what is allocated, not by the size; bytes that nobody wrote are
/// zero. Where the first 512 KiB are refused, writes and resizes answer 27, and what needs no memory works.
class HandleDataProvider final : public DataProviderImpl
{
public:
    explicit HandleDataProvider(int mode);
    HandleDataProvider(HandleDataProvider const&) = delete;
    HandleDataProvider& operator=(HandleDataProvider const&) = delete;
    ~HandleDataProvider() override;

    OperationId Write(void const* data, std::size_t count) override;
    OperationId Read(void* buffer, int32& count) override;
    ErrCode GetSize(int64& size) const override;
    ErrCode SetSize(int64 size) override;
    ErrCode SetPosition(int64 offset, IDataProvider::Offset origin) override;
    int64 GetPosition() const override;

private:
    friend struct KORVA::LayoutProbe;

    PLATFORM::Handle mHandle;
    StreamMode mMode;
    uint32 mPosition = 0;
    uint32 mCapacity;
    uint32 mSize = 0;
};
} // namespace KORVA::IO
