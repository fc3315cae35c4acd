#include "HttpDataProvider.h"

#include "RequestURL.h"
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/ResultCodes.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

namespace HTTP
{
namespace
{
using namespace KORVA;

constexpr char kSource[] = "Examples/http/HttpDataProvider";
constexpr LogSite kSiteInit{
    kSource, "virtual ErrCode HTTP::HttpDataProvider::InitURIBased(KORVA::IO::IURI &, int, IReporter *)", 0};
constexpr LogSite kSiteInitFailed{
    kSource, "virtual HRESULT HTTP::HttpDataProvider::Init(KORVA::IO::IURI &, KORVA::IO::IReporter *)", 0};
constexpr LogSite kSiteRead{kSource, "virtual OperationId HTTP::HttpDataProvider::Read(void *, int32 &)", 0};
constexpr LogSite kSiteNotInitialized{kSource, "HTTP::HttpDataProvider", 0};

constexpr int64 kShortWay = static_cast<int64>(Window::kSize);
constexpr int64 kNoLimit = std::numeric_limits<int64>::max();
} // namespace

IO::IURICredential* CredentialOf(IO::IURI const& uri)
{
    // A URI that was read from a file may carry anything under that id.
    IObject* found = nullptr;
    return uri.QueryInterface(IO::IID_URI_CREDENTIAL, &found) == kNoError
               ? dynamic_cast<IO::IURICredential*>(found)
               : nullptr;
}

void HttpDataProvider::InitHandleBased(int) {}

ErrCode HttpDataProvider::InitReadOnlyMem(void const*, int32) { return IO::kNotAllowed; }

HRESULT HttpDataProvider::Init(IO::IURI& uri, IO::IReporter* reporter)
{
    if (InitURIBased(uri, IO::kStreamRead, reporter) == kNoError)
        return kNoError;
    Log(kSiteInitFailed, L"InitURIBased failed.");
    return IO::kURIInitFailed;
}

ErrCode HttpDataProvider::InitURIBased(IO::IURI& uri, int mode, IO::IReporter* reporter)
{
    if (mode != IO::kStreamRead && mode != IO::kStreamMode3)
        return IO::kNotAllowed;
    mTransfer.reset();
    std::string url = RequestURLOf(uri);
    if (url.empty())
        return IO::kBadArgument;
    auto transfer = std::make_unique<Transfer>();
    int const failure = transfer->Start({.url = url, .credential = CredentialOf(uri)}, &mWindow);
    mFirst = transfer->Answer();
    mHasTriedCredential = transfer->HasTriedCredential();
    Outcome const outcome = OutcomeOf(failure, mFirst);
    if (outcome.code != kNoError)
    {
        if (outcome.code == IO::kFileSystemFailed)
            Tell(kSiteInit, uri, reporter, outcome.code, outcome.detail, transfer->Message());
        return outcome.code;
    }
    mURI.Share(&uri);
    mReporter.Share(reporter);
    mURL = std::move(url);
    mTransfer = std::move(transfer);
    mSize = mFirst.Size();
    mPosition = mSeen = 0;
    mLimit = kNoLimit;
    mServesRanges = true;
    mHasFailed = false;
    Aggregate(mURI.Get(), IO::IID_IURI);
    static_cast<void>(NoteProgress());
    return kNoError;
}

OperationId HttpDataProvider::Write(void const*, std::size_t) { return IO::kNotAllowed; }

ErrCode HttpDataProvider::SetSize(int64) { return IO::kNotAllowed; }

//! [read]
OperationId HttpDataProvider::Read(void* buffer, int32& count)
{
    int32 const wanted = std::exchange(count, 0);
    if (!mTransfer)
    {
        Log(kSiteNotInitialized, L"Attempting to use a non-initialized data provider");
        return IO::kNotInitialized;
    }
    if (wanted <= 0)
        return kNoError;
    if (!buffer)
    {
        Tell(kSiteRead, *mURI, mReporter.Get(), IO::kNoData, IO::kBadArgument, "no buffer");
        return IO::kNoData;
    }
    while (count < wanted && Obtain())
    {
        std::size_t const copied = mWindow.Copy(mPosition, static_cast<char*>(buffer) + count,
                                                static_cast<std::size_t>(wanted - count));
        count += static_cast<int32>(copied);
        mPosition += static_cast<int64>(copied);
    }
    return count == 0 || mHasFailed ? IO::kNoData : kNoError;
}

bool HttpDataProvider::Obtain()
{
    while (!mWindow.Has(mPosition))
    {
        if (mHasFailed || IsBehindTheEnd())
            return false;
        int64 const way = mPosition - mWindow.End();
        bool const isNear = way >= 0 && (way < kShortWay || !mServesRanges);
        // What broke off is of no interest to somebody who has gone elsewhere.
        int const failure = mTransfer->TakeFailure();
        if (failure != 0 && isNear)
            return Fail(failure, mTransfer->Message());
        if (!(isNear && !mTransfer->HasEnded() ? Continue() : Begin(mPosition)))
            return false;
    }
    return true;
}

bool HttpDataProvider::Continue()
{
    mWindow.Forget();
    mTransfer->More();
    return NoteProgress();
}

/// Where all has come, the size is known at last; and a server that told another one must not be asked again
/// and again.
bool HttpDataProvider::NoteProgress()
{
    Reply const& answer = mTransfer->Answer();
    if (mWindow.End() > std::min(mSize.value_or(mLimit), answer.End().value_or(kNoLimit)))
        return Reject(EPROTO, "more bytes came than there are");
    mSeen = std::max(mSeen, mWindow.End());
    if (mSeen == mLimit)
        mSize = mLimit;
    if (!mTransfer->HasEnded() || mTransfer->HasFailed())
        return true;
    bool const isPiece = answer.Status() == 206;
    if (!isPiece)
        mSize = mSize.value_or(mWindow.End());
    if (mWindow.End() > mPosition || IsBehindTheEnd())
        return true;
    // A server may give less than it is asked for: what comes behind a piece is asked for in its turn.
    if (isPiece && mWindow.End() == answer.End())
        return true;
    return Fail(ECONNRESET, "fewer bytes came than there are");
}
//! [read]

bool HttpDataProvider::Begin(int64 from)
{
    if (!mServesRanges)
        from = 0;
    int const failure = mTransfer->Start(
        {.url = mURL, .from = from, .validator = mFirst.Validator(), .credential = CredentialOf(*mURI)},
        &mWindow);
    Reply const& answer = mTransfer->Answer();
    if (failure == 0 && answer.Status() == 416 && !mSize)
        return NoteLimit(from, answer.Size());
    if (failure != 0 || !answer.IsGranted())
        return Reject(CauseOf(failure, answer), mTransfer->Message());
    if (!mFirst.Agrees(answer))
        return Reject(ESTALE, "the file changed");
    auto const start = answer.Start();
    if (!start || *start != (answer.Status() == 206 ? from : 0))
        return Reject(EPROTO, "another range than was asked for");
    // The whole file instead of the rest: what comes first is passed over.
    mServesRanges = mServesRanges && (from == 0 || answer.Status() == 206);
    return NoteProgress();
}

bool HttpDataProvider::NoteLimit(int64 from, std::optional<int64> size)
{
    if (from < mSeen || (size && (*size < mSeen || *size > from)))
        return Reject(ESTALE, "the file changed");
    // Without a size this is the end only where the bytes before have been seen.
    mLimit = from;
    mSize = from == mSeen ? from : size;
    return true;
}

bool HttpDataProvider::Reject(int detail, char const* message)
{
    mTransfer->Stop();
    static_cast<void>(mTransfer->TakeFailure());
    // Bytes of another file must not be found.
    mWindow.Restart(0);
    return Fail(detail, message);
}

bool HttpDataProvider::Fail(int detail, char const* message)
{
    mHasFailed = true;
    Tell(kSiteRead, *mURI, mReporter.Get(), IO::kNoData, detail, message);
    return false;
}

int64 HttpDataProvider::Size() const
{
    return mTransfer ? mSize.value_or(std::max(mSeen, mWindow.End())) : 0;
}

ErrCode HttpDataProvider::SetPosition(int64 offset, Offset origin)
{
    if (!mTransfer)
    {
        Log(kSiteNotInitialized, L"Attempting to use a non-initialized data provider");
        return IO::kNotInitialized;
    }
    int64 target = offset;
    bool outOfRange = false;
    switch (origin)
    {
    case kFromStart:
        break;
    case kFromCurrent:
        outOfRange = __builtin_add_overflow(mPosition, offset, &target);
        break;
    case kFromEnd:
        outOfRange = !mSize || __builtin_sub_overflow(*mSize, offset, &target);
        break;
    default:
        outOfRange = true;
    }
    if (outOfRange || target < 0 || (mSize && target > *mSize))
        return IO::kBadArgument;
    mPosition = target;
    mHasFailed = false;
    return kNoError;
}

bool HttpDataProvider::AtEnd()
{
    if (mTransfer && mSize && !mHasFailed)
        return IsBehindTheEnd();
    return !mTransfer || !Obtain();
}
} // namespace HTTP
