// The data provider over a file of a web server.
#pragma once

#include "Outcome.h"
#include "Transfer.h"
#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IURIDataProvider.h>

#include <optional>

namespace HTTP
{
/// See `IID_HTTP_DATAPROVIDER` for how it behaves.
class HttpDataProvider final : public KORVA::TObject<KORVA::IO::IURIDataProvider>
{
public:
    void InitHandleBased(int mode) override;
    KORVA::ErrCode InitReadOnlyMem(void const* data, KORVA::int32 size) override;
    KORVA::ErrCode InitURIBased(KORVA::IO::IURI& uri, int mode, KORVA::IO::IReporter* reporter) override;
    KORVA::OperationId Write(void const* data, std::size_t count) override;
    KORVA::OperationId Read(void* buffer, KORVA::int32& count) override;
    KORVA::int64 Size() const override;
    KORVA::ErrCode SetSize(KORVA::int64 size) override;
    KORVA::ErrCode SetPosition(KORVA::int64 offset, Offset origin) override;
    KORVA::int64 GetPosition() const override { return mPosition; }
    Endian GetEndian() const override { return mEndian; }
    bool IsNative() const override { return mEndian == kLittleEndian; }
    void SetEndian(Endian endian) override { mEndian = endian; }
    bool AtEnd() override;
    KORVA::ErrCode Flush() override { return KORVA::kNoError; }
    bool GetAutoFlush() override { return true; }
    void SetAutoFlush(bool) override {}
    KORVA::HRESULT Init(KORVA::IO::IURI& uri, KORVA::IO::IReporter* reporter) override;

    /// What the server said first; empty where it did not answer.
    Reply const& FirstAnswer() const { return mFirst; }
    /// Whether the server that said so had been sent the URI's credential.
    bool HasTriedCredential() const { return mHasTriedCredential; }

private:
    /// Waits for the byte at the position. False at the end, and after a failure.
    bool Obtain();
    bool Begin(KORVA::int64 from);
    bool Continue();
    bool NoteProgress();
    /// Where a server has nothing from `from` on.
    bool NoteLimit(KORVA::int64 from, std::optional<KORVA::int64> size);
    bool IsBehindTheEnd() const { return mPosition >= mSize.value_or(mLimit); }
    /// Always false.
    bool Fail(int detail, char const* message);
    /// The same for an answer whose bytes are not wanted.
    bool Reject(int detail, char const* message);

    Endian mEndian = kLittleEndian;
    KORVA::IO::IURIPtr mURI;
    KORVA::TInterfacePtr<KORVA::IO::IReporter> mReporter;
    std::string mURL;
    Window mWindow;
    std::unique_ptr<Transfer> mTransfer;
    Reply mFirst;
    std::optional<KORVA::int64> mSize;
    /// The furthest byte seen, where the size is not told.
    KORVA::int64 mSeen = 0;
    /// Then also where there is nothing any more, though the end may be in front of it.
    KORVA::int64 mLimit = 0;
    KORVA::int64 mPosition = 0;
    bool mHasTriedCredential = false;
    bool mServesRanges = true;
    bool mHasFailed = false;
};

/// The credential that the URI carries, borrowed; null when there is none.
KORVA::IO::IURICredential* CredentialOf(KORVA::IO::IURI const& uri);
} // namespace HTTP
