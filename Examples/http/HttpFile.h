// The file object for a file of a web server.
#pragma once

#include "Outcome.h"
#include "Transfer.h"
#include <tessio/ObjectModel/TInterfacePtr.h>
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IURICredential.h>
#include <tessio/TessIO/IURIFile.h>

namespace HTTP
{
/// See `IID_HTTP_FILE` for how it behaves.
class HttpFile final : public KORVA::TObject<KORVA::IO::IURIFile>
{
public:
    using StreamPtr = KORVA::TInterfacePtr<KORVA::IO::IDataProviderStream>;

    KORVA::ErrCode Init(KORVA::IO::IURI& uri, KORVA::IO::IReporter* reporter) override;
    KORVA::ErrCode Read(StreamPtr& stream) const override;
    KORVA::ErrCode Write(StreamPtr& stream) const override;
    bool Exists() const override;
    KORVA::ErrCode Create() override;
    KORVA::ErrCode Delete() override;
    KORVA::ErrCode Copy(KORVA::IO::IURIFile const& source) override;
    KORVA::TInterfacePtr<KORVA::IO::IURI> GetURI() const override { return mURI; }
    KORVA::ErrCode GetModificationDate(KORVA::uint64& date) const override;
    KORVA::ErrCode SetModificationDate(KORVA::uint64& date) override;
    KORVA::ErrCode GetCreationDate(KORVA::uint64& date) const override;
    KORVA::ErrCode SetCreationDate(KORVA::uint64& date) override;
    KORVA::ErrCode GetAttribute(KORVA::IO::FileAttribute attribute, bool& value) const override;
    KORVA::ErrCode SetAttribute(KORVA::IO::FileAttribute attribute, bool value) override;
    KORVA::ErrCode GetSize(KORVA::uint64& size) const override;

private:
    /// What the server says of the file now. False, told to whom it concerns, where it has none for us.
    bool Ask(Reply& reply) const;
    /// Sets or takes away the challenge that callers find. `tried` is what the server refused; may be null.
    void NoteAccess(Reply const& reply, KORVA::IO::IURICredential* tried) const;

    KORVA::IO::IURIPtr mURI;
    KORVA::TInterfacePtr<KORVA::IO::IReporter> mReporter;
    /// Kept for its connection.
    std::unique_ptr<Transfer> mutable mTransfer;
    KORVA::uint32 mutable mRefusals = 0;
};
} // namespace HTTP
