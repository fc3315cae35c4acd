// Sees the reads and writes that fail under a stream.
#pragma once

#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/ResultCodes.h>

#include <cstddef>

namespace KORVA::CXX::DETAIL
{
/// Passes everything on to another provider, shared, and notes what the stream over it drops: results of
/// writes, and counts of reads.
class CheckedProvider final : public TObject<IO::IDataProvider>
{
public:
    explicit CheckedProvider(IO::IDataProvider& provider) { mProvider.Share(&provider); }

    /// The first result of a write that was not 0, or `kWriteFailed` where the position could not be set.
    OperationId WriteResult() const { return mWriteResult; }
    /// Whether a read brought less than was asked for.
    bool HasShortRead() const { return mHasShortRead; }

    /// Of a record that was written to this provider, or read from it, by a layer of its own in between.
    ///@{
    void OnWriteFailure(ErrCode code)
    {
        if (mWriteResult == kNoError)
            mWriteResult = code;
    }
    void OnDamage() { mHasDamage = true; }
    bool HasDamage() const { return mHasDamage; }
    ///@}

    /// What is found on the provider is found here.
    ErrCode QueryInterface(GUID const& iid, IObject** out) const override
    {
        return mProvider->QueryInterface(iid, out);
    }
    AggregateMap const& GetAggregates() const override { return mProvider->GetAggregates(); }
    void Aggregate(IObject* object, GUID iid) override { mProvider->Aggregate(object, iid); }
    void UnAggregate(GUID const& iid) override { mProvider->UnAggregate(iid); }
    void ClearAggregates() override { mProvider->ClearAggregates(); }

    void InitHandleBased(int mode) override { mProvider->InitHandleBased(mode); }
    ErrCode InitReadOnlyMem(void const* data, int32 size) override
    {
        return mProvider->InitReadOnlyMem(data, size);
    }
    ErrCode InitURIBased(IO::IURI& uri, int mode, IO::IReporter* reporter) override
    {
        return mProvider->InitURIBased(uri, mode, reporter);
    }

    OperationId Write(void const* data, std::size_t count) override
    {
        OperationId const result = mProvider->Write(data, count);
        if (result != kNoError)
            OnWriteFailure(result);
        return result;
    }

    OperationId Read(void* buffer, int32& count) override
    {
        int32 const wanted = count;
        OperationId const result = mProvider->Read(buffer, count);
        mHasShortRead = mHasShortRead || count < wanted;
        return result;
    }

    ErrCode SetPosition(int64 offset, Offset origin) override
    {
        ErrCode const result = mProvider->SetPosition(offset, origin);
        // A length is put in its place by going back: elsewhere it would be written over something else.
        bool const isThere = origin != kFromStart || mProvider->GetPosition() == offset;
        if (result != kNoError || !isThere)
            OnWriteFailure(IO::kWriteFailed);
        return result;
    }

    int64 Size() const override { return mProvider->Size(); }
    ErrCode SetSize(int64 size) override { return mProvider->SetSize(size); }
    int64 GetPosition() const override { return mProvider->GetPosition(); }
    Endian GetEndian() const override { return mProvider->GetEndian(); }
    bool IsNative() const override { return mProvider->IsNative(); }
    void SetEndian(Endian endian) override { mProvider->SetEndian(endian); }
    bool AtEnd() override { return mProvider->AtEnd(); }
    ErrCode Flush() override { return mProvider->Flush(); }
    bool GetAutoFlush() override { return mProvider->GetAutoFlush(); }
    void SetAutoFlush(bool autoFlush) override { mProvider->SetAutoFlush(autoFlush); }

private:
    TInterfacePtr<IO::IDataProvider> mProvider;
    OperationId mWriteResult = kNoError;
    bool mHasShortRead = false;
    bool mHasDamage = false;
};
} // namespace KORVA::CXX::DETAIL
