#include "HttpFile.h"

#include "HttpDataProvider.h"
#include "RequestURL.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IURIAuthenticationChallenge.h>
#include <tessio/TessIO/ResultCodes.h>

#include <utility>

namespace HTTP
{
namespace
{
using namespace KORVA;
using COREREGISTRY::CreateObject;

constexpr char kSource[] = "Examples/http/HttpFile";
constexpr LogSite kSiteAsk{kSource, "bool HTTP::HttpFile::Ask(HTTP::Reply &) const", 0};
constexpr LogSite kSiteGetUnknown{
    kSource, "virtual ErrCode HTTP::HttpFile::GetAttribute(FileAttribute, bool &) const", 0};
constexpr LogSite kSiteSetUnknown{kSource,
                                  "virtual ErrCode HTTP::HttpFile::SetAttribute(FileAttribute, bool)", 0};

/// Servers that do not know the question, or don't want it for this file.
bool IsQuestionRefused(Reply const& reply)
{
    return reply.Status() == 400 || reply.Status() == 405 || reply.Status() == 501;
}
} // namespace

ErrCode HttpFile::Init(IO::IURI& uri, IO::IReporter* reporter)
{
    mReporter.Share(reporter);
    mURI.Share(&uri);
    // What is known of another file says nothing of this one.
    mTransfer.reset();
    mRefusals = 0;
    UnAggregate(IO::IID_URI_AUTHENTICATION_CHALLENGE);
    return kNoError;
}

ErrCode HttpFile::Read(StreamPtr& stream) const
{
    if (!mURI)
        return IO::kBadArgument;
    TInterfacePtr<HttpDataProvider> provider;
    provider.Adopt(new HttpDataProvider);
    ErrCode const opened = provider->InitURIBased(*mURI, IO::kStreamRead, mReporter.Get());
    NoteAccess(provider->FirstAnswer(), provider->HasTriedCredential() ? CredentialOf(*mURI) : nullptr);
    if (opened != kNoError)
        return opened;
    auto created = CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
    if (!created)
        return IO::kNoObject;
    ErrCode const initialised = created->Init(*provider.Get());
    if (initialised == kNoError)
        stream = std::move(created);
    return initialised;
}

ErrCode HttpFile::Write(StreamPtr&) const { return IO::kNotAllowed; }

//! [ask]
bool HttpFile::Ask(Reply& reply) const
{
    Request request{.url = mURI ? RequestURLOf(*mURI) : std::string(), .kind = Request::Kind::kHead};
    if (request.url.empty())
        return false;
    if (!mTransfer)
        mTransfer = std::make_unique<Transfer>();
    request.credential = CredentialOf(*mURI);
    int failure = mTransfer->Start(request, nullptr);
    if (failure == 0 && IsQuestionRefused(mTransfer->Answer()))
    {
        request.kind = Request::Kind::kFirstByte;
        failure = mTransfer->Start(request, nullptr);
    }
    // A server that serves no ranges sends the whole file.
    mTransfer->Stop();
    reply = mTransfer->Answer();
    // A file without a first byte is there all the same.
    bool const isEmpty = failure == 0 && reply.Status() == 416 && reply.Size() == 0;
    Outcome const outcome = isEmpty ? Outcome() : OutcomeOf(failure, reply);
    // Before somebody is told, who may give the URI another credential.
    NoteAccess(reply, mTransfer->HasTriedCredential() ? request.credential : nullptr);
    if (outcome.code == IO::kFileSystemFailed)
        Tell(kSiteAsk, *mURI, mReporter.Get(), outcome.code, outcome.detail, mTransfer->Message());
    return outcome.code == kNoError;
}
//! [ask]

//! [challenge]
void HttpFile::NoteAccess(Reply const& reply, IO::IURICredential* tried) const
{
    // Asking changes nothing that a caller could see but this.
    auto& self = const_cast<HttpFile&>(*this);
    if (reply.IsGranted())
    {
        mRefusals = 0;
        self.UnAggregate(IO::IID_URI_AUTHENTICATION_CHALLENGE);
    }
    if (!reply.IsRefused())
        return;
    ++mRefusals;
    auto const challenge =
        CreateObject<IO::IURIAuthenticationChallenge>(IO::IID_URI_AUTHENTICATION_CHALLENGE);
    if (!challenge)
        return;
    challenge->Init(mRefusals, reply.Status(), tried);
    self.Aggregate(challenge.Get(), IO::IID_URI_AUTHENTICATION_CHALLENGE);
}
//! [challenge]

bool HttpFile::Exists() const
{
    Reply reply;
    return Ask(reply);
}

ErrCode HttpFile::GetSize(uint64& size) const
{
    Reply reply;
    if (!Ask(reply) || !reply.Size())
        return IO::kFileNotFound;
    size = static_cast<uint64>(*reply.Size());
    return kNoError;
}

ErrCode HttpFile::GetModificationDate(uint64& date) const
{
    Reply reply;
    if (!Ask(reply) || !reply.ModificationDate())
        return IO::kFileNotFound;
    date = static_cast<uint64>(*reply.ModificationDate());
    return kNoError;
}

ErrCode HttpFile::GetAttribute(IO::FileAttribute attribute, bool& value) const
{
    if (!Exists())
        return IO::kFileNotFound;
    if (attribute > IO::kAttributeOthersExecute)
    {
        Log(kSiteGetUnknown, L"File Attribute not found.");
        return IO::kUnknownAttribute;
    }
    value = attribute == IO::kAttributeOwnerRead || attribute == IO::kAttributeGroupRead ||
            attribute == IO::kAttributeOthersRead;
    return kNoError;
}

ErrCode HttpFile::SetAttribute(IO::FileAttribute attribute, bool)
{
    if (!Exists())
        return IO::kFileNotFound;
    if (attribute <= IO::kAttributeOthersExecute)
        return IO::kNotPermitted;
    Log(kSiteSetUnknown, L"File Attribute not found.");
    return IO::kUnknownAttribute;
}

ErrCode HttpFile::Create() { return Exists() ? kNoError : IO::kCreateFailed; }

ErrCode HttpFile::Delete() { return mURI ? IO::kDeleteFailed : IO::kBadArgument; }

ErrCode HttpFile::Copy(IO::IURIFile const&) { return IO::kCopyFailed; }

ErrCode HttpFile::SetModificationDate(uint64&) { return IO::kFileNotFound; }

ErrCode HttpFile::GetCreationDate(uint64&) const { return IO::kFileNotFound; }

ErrCode HttpFile::SetCreationDate(uint64&) { return IO::kFileNotFound; }
} // namespace HTTP
