// Sees what the typed stream does not report.
#pragma once

#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/ResultCodes.h>

#include <cstddef>

namespace KORVA::CXX::DETAIL
{
/// Passes everything on to another provider, shared, and notes what went wrong. The stream answers nothing, a
/// record that was not read as it was written is set straight without a word; here both can be seen.
class WatchedProvider final : public TObject<IO::IDataProvider>
{
public:
    explicit WatchedProvider(IO::IDataProvider& provider) { mProvider.Share(&provider); }

    /// The first result of a write that was not 0, or `kWriteFailed` where the position could not be set.
    OperationId WriteResult() const { return mWriteResult; }
    /// The same of a record that somebody else wrote to this provider in between.
    void OnFailure(ErrCode code)
    {
        if (mWriteResult == kNoError)
            mWriteResult = code;
    }
    /// Whether a read brought less than was asked for.
    bool HasShortRead() const { return mHasShortRead; }
    /// Whether the position was set to another place than where it stood, or right behind the head of a
    /// record: where an object can't be made, the stream goes to the end of its record, and an empty one ends
    /// there.
    bool HasMoved() const { return mHasMoved; }

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
        if (mWriteResult == kNoError)
            mWriteResult = result;
        return result;
    }

    OperationId Read(void* buffer, int32& count) override
    {
        int32 const wanted = count;
        OperationId const result = mProvider->Read(buffer, count);
        mHasShortRead = mHasShortRead || count < wanted;
        // The stream reads the second half of a class id byte by byte, then the length.
        mIsBehindHead = count == 8 && mSingleBytes == 8;
        mSingleBytes = count == 1 ? mSingleBytes + 1 : 0;
        return result;
    }

    ErrCode SetPosition(int64 offset, Offset origin) override
    {
        int64 const before = mProvider->GetPosition();
        ErrCode const result = mProvider->SetPosition(offset, origin);
        mHasMoved = mHasMoved || result != kNoError || mProvider->GetPosition() != before || mIsBehindHead;
        // A length is put in its place by going back: elsewhere it would be written over something else.
        bool const isThere = origin != kFromStart || mProvider->GetPosition() == offset;
        if (mWriteResult == kNoError && (result != kNoError || !isThere))
            mWriteResult = IO::kWriteFailed;
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
    bool mHasMoved = false;
    int mSingleBytes = 0;
    bool mIsBehindHead = false;
};
} // namespace KORVA::CXX::DETAIL
