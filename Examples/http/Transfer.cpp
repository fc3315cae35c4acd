#include "Transfer.h"

#include "RequestURL.h"

#include <string.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace HTTP
{
namespace
{
using KORVA::STRING::CoreString;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr long kRedirections = 10;

template <class Value>
void Set(CURL* handle, CURLoption option, Value value)
{
    // Options that this build of the transfer library does not know must not be passed over: some of them
    // forbid things.
    if (curl_easy_setopt(handle, option, value) != CURLE_OK)
        throw std::runtime_error("an option of the transfer library is missing");
}

/// Hands a text over and overwrites the copy that was made for it.
void SetSecret(CURL* handle, CURLoption option, CoreString const& text)
{
    std::string copy = text.ToUTF8();
    Set(handle, option, copy.c_str());
    explicit_bzero(copy.data(), copy.size());
}

int FailureOf(CURLcode code, CURL* handle, Reply const& reply)
{
    long number = 0;
    switch (code)
    {
    case CURLE_OK:
        return 0;
    case CURLE_OPERATION_TIMEDOUT:
        return ETIMEDOUT;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return EHOSTUNREACH;
    case CURLE_COULDNT_CONNECT:
        static_cast<void>(curl_easy_getinfo(handle, CURLINFO_OS_ERRNO, &number));
        return number == ECONNREFUSED ? ECONNREFUSED : number == ETIMEDOUT ? ETIMEDOUT : EHOSTUNREACH;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
        return EKEYREJECTED;
    case CURLE_RECV_ERROR:
        // Also what a proxy that refuses to lead there is called.
        static_cast<void>(curl_easy_getinfo(handle, CURLINFO_HTTP_CONNECTCODE, &number));
        return number >= 300 ? EHOSTUNREACH : ECONNRESET;
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
        return ECONNRESET;
    case CURLE_TOO_MANY_REDIRECTS:
        return ELOOP;
    case CURLE_LOGIN_DENIED:
        // A redirection to a name with a user in it.
        return EPROTONOSUPPORT;
    case CURLE_UNSUPPORTED_PROTOCOL:
        // Also what an answer without a status line is called.
        return reply.Status() / 100 == 3 ? EPROTONOSUPPORT : EPROTO;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_URL_MALFORMAT:
        return EPROTO;
    case CURLE_OUT_OF_MEMORY:
        return ENOMEM;
    default:
        return EIO;
    }
}
} // namespace

Transfer::Transfer() : mMulti(curl_multi_init()), mEasy(curl_easy_init()), mSettings(SettingsOfEnvironment())
{}

Transfer::~Transfer() { Stop(); }

void Transfer::Stop()
{
    // Nothing happens when it is not part of it.
    if (mMulti && mEasy)
        static_cast<void>(curl_multi_remove_handle(mMulti.get(), mEasy.get()));
    mHasEnded = true;
}

void Transfer::Say(char const* message)
{
    static_cast<void>(std::snprintf(mMessage, sizeof mMessage, "%s", message));
}

//! [setup]
void Transfer::SetUp(Request const& request)
{
    CURL* const easy = mEasy.get();
    curl_easy_reset(easy);
    Set(easy, CURLOPT_ERRORBUFFER, mMessage);
    Set(easy, CURLOPT_URL, request.url.c_str());
    Set(easy, CURLOPT_USERAGENT, "TessIO-http");
    // A plug-in leaves its host's signals alone.
    Set(easy, CURLOPT_NOSIGNAL, 1L);
    // One connection, one transfer: whoever stops reading stops the server, and nothing is buffered in
    // between.
    Set(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    Set(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    Set(easy, CURLOPT_REDIR_PROTOCOLS_STR, request.url.starts_with("https:") ? "https" : "http,https");
    Set(easy, CURLOPT_FOLLOWLOCATION, 1L);
    Set(easy, CURLOPT_MAXREDIRS, kRedirections);
    Set(easy, CURLOPT_UNRESTRICTED_AUTH, 0L);
    Set(easy, CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
    Set(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    Set(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    // Besides the system's directory of certificates, which stays as it is.
    if (!mSettings.caFile.empty())
        Set(easy, CURLOPT_CAINFO, mSettings.caFile.c_str());
    Set(easy, CURLOPT_CONNECTTIMEOUT_MS, mSettings.connectTimeout);
    // What a proxy says of the way there is no answer of the server.
    Set(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    Set(easy, CURLOPT_HEADERFUNCTION, &Transfer::OnHeader);
    Set(easy, CURLOPT_HEADERDATA, this);
    Set(easy, CURLOPT_WRITEFUNCTION, &Transfer::OnBytes);
    Set(easy, CURLOPT_WRITEDATA, this);
    if (request.credential)
    {
        Set(easy, CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST));
        SetSecret(easy, CURLOPT_USERNAME, request.credential->GetUsername());
        SetSecret(easy, CURLOPT_PASSWORD, request.credential->GetPassword());
    }
    if (request.kind == Request::Kind::kHead)
        Set(easy, CURLOPT_NOBODY, 1L);
    if (request.kind == Request::Kind::kFirstByte)
        Set(easy, CURLOPT_RANGE, "0-0");
    if (request.kind == Request::Kind::kBytes && request.from > 0)
        Set(easy, CURLOPT_RANGE, (std::to_string(request.from) + "-").c_str());
    mHeaders.reset();
    if (request.from > 0 && !request.validator.empty())
        mHeaders.reset(curl_slist_append(nullptr, ("If-Range: " + request.validator).c_str()));
    Set(easy, CURLOPT_HTTPHEADER, mHeaders.get());
}
//! [setup]

int Transfer::Start(Request const& request, Window* window)
{
    Stop();
    mWindow = window;
    mReply = Reply();
    mURL = request.url;
    mHasHead = mIsSentOn = mWasAsked = mHasAnswer = mHasBytes = mIsPaused = false;
    mFailure = 0;
    mMessage[0] = '\0';
    if (!mMulti || !mEasy)
        return ENOMEM;
    try
    {
        SetUp(request);
    }
    catch (std::exception const& error)
    {
        Say(error.what());
        return EIO;
    }
    if (curl_multi_add_handle(mMulti.get(), mEasy.get()) != CURLM_OK)
        return ENOMEM;
    mHasEnded = false;
    // A connection can be used again once the answer is there to its last byte.
    Wait(request.kind == Request::Kind::kHead ? mHasEnded : mHasAnswer);
    // What breaks behind the answer is for whoever wants the bytes.
    int const failure = mHasAnswer ? 0 : TakeFailure();
    // What was said on the way to an answer that never came is none.
    if (failure != 0)
        mReply = Reply();
    return failure;
}

void Transfer::More()
{
    mHasBytes = false;
    if (std::exchange(mIsPaused, false) && curl_easy_pause(mEasy.get(), CURLPAUSE_CONT) != CURLE_OK)
        mFailure = ECONNRESET;
    Wait(mHasBytes);
}

//! [wait]
void Transfer::Wait(bool const& done)
{
    milliseconds const stall(mSettings.stallTimeout);
    milliseconds const connecting(mSettings.connectTimeout);
    Clock::time_point deadline = Clock::now() + stall;
    while (!done && !mHasEnded && mFailure == 0)
    {
        int running = 0;
        if (curl_multi_perform(mMulti.get(), &running) != CURLM_OK)
            mFailure = EIO;
        Collect();
        if (done || mHasEnded || mFailure != 0)
            break;
        if (RequestTime() > mSentOnAt)
            mIsAlive |= std::exchange(mIsSentOn, false);
        // Connecting has a limit of its own, also where an answer sends us on.
        if (std::exchange(mIsAlive, false) || RequestTime() == 0)
            deadline = Clock::now() + stall + (mIsSentOn ? connecting : milliseconds(0));
        auto const left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        if (left <= milliseconds(0))
        {
            mFailure = ETIMEDOUT;
            Say("nothing came any more");
        }
        else
            static_cast<void>(curl_multi_poll(mMulti.get(), nullptr, 0,
                                              static_cast<int>(std::min(left, milliseconds(1000)).count()),
                                              nullptr));
    }
    if (mFailure != 0)
        Stop();
}
//! [wait]

void Transfer::Collect()
{
    int left = 0;
    while (CURLMsg const* const message = curl_multi_info_read(mMulti.get(), &left))
    {
        if (message->msg != CURLMSG_DONE)
            continue;
        CURLcode const code = message->data.result;
        mHasEnded = true;
        // What was not wanted was answered all the same.
        if (code == CURLE_WRITE_ERROR && mHasAnswer)
            continue;
        // An answer that ends in the middle of a header is not always noticed.
        bool const isCut = code == CURLE_OK && !mHasHead;
        if (mFailure == 0)
            mFailure = isCut ? ECONNRESET : FailureOf(code, mEasy.get(), mReply);
        if (code != CURLE_OK && mMessage[0] == '\0')
            Say(curl_easy_strerror(code));
    }
}

curl_off_t Transfer::RequestTime() const
{
    curl_off_t time = 0;
    static_cast<void>(curl_easy_getinfo(mEasy.get(), CURLINFO_PRETRANSFER_TIME_T, &time));
    return time;
}

bool Transfer::HasTriedCredential() const
{
    char const* url = nullptr;
    return mWasAsked && curl_easy_getinfo(mEasy.get(), CURLINFO_EFFECTIVE_URL, &url) == CURLE_OK && url &&
           IsSameServer(mURL.c_str(), url);
}

std::size_t Transfer::OnHeader(char* line, std::size_t size, std::size_t count, void* self)
{
    Transfer& transfer = *static_cast<Transfer*>(self);
    std::string_view const text(line, size * count);
    transfer.mIsAlive = true;
    // Behind the bytes there may be more lines, which say nothing of the file.
    if (transfer.mHasAnswer)
        return text.size();
    if (text.starts_with("HTTP/") && transfer.mReply.Status() == 401)
        transfer.mWasAsked = true;
    try
    {
        transfer.mReply.Add(text);
    }
    catch (std::exception const&)
    {
        return 0;
    }
    char const* url = nullptr;
    if (curl_easy_getinfo(transfer.mEasy.get(), CURLINFO_EFFECTIVE_URL, &url) == CURLE_OK && url &&
        std::string_view(url).starts_with("https:"))
        // What was once protected stays so, wherever it leads.
        static_cast<void>(curl_easy_setopt(transfer.mEasy.get(), CURLOPT_REDIR_PROTOCOLS_STR, "https"));
    transfer.mHasHead = text == "\r\n" || text == "\n";
    transfer.mIsSentOn = transfer.mHasHead && transfer.mReply.LeadsOn();
    if (transfer.mIsSentOn)
        transfer.mSentOnAt = transfer.RequestTime();
    if (!transfer.mHasHead)
        return text.size();
    if (transfer.mReply.IsGranted())
    {
        transfer.mHasAnswer = true;
        if (transfer.mWindow)
            transfer.mWindow->Restart(transfer.mReply.Start().value_or(0));
    }
    return text.size();
}

std::size_t Transfer::OnBytes(char* bytes, std::size_t size, std::size_t count, void* self)
{
    Transfer& transfer = *static_cast<Transfer*>(self);
    transfer.mIsAlive = true;
    // The page that comes with a refusal, or a file that nobody wants: the transfer ends here.
    transfer.mHasAnswer = true;
    if (!transfer.mReply.IsGranted() || !transfer.mWindow)
        return 0;
    if (!transfer.mWindow->Append(bytes, size * count))
    {
        transfer.mIsPaused = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    transfer.mHasBytes = true;
    return size * count;
}
} // namespace HTTP
