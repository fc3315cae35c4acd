// One request after the other, and the bytes that answer it.
#pragma once

#include "Reply.h"
#include "Settings.h"
#include "Window.h"
#include <tessio/TessIO/IURICredential.h>

#include <curl/curl.h>

#include <memory>
#include <string>
#include <utility>

namespace HTTP
{
struct Request
{
    enum class Kind
    {
        /// Everything from `from` on.
        kBytes,
        /// What the server says of the file, and no bytes.
        kHead,
        /// The same from a server that refuses the question: one byte is asked for, and not taken.
        kFirstByte
    };

    std::string url;
    Kind kind = Kind::kBytes;
    KORVA::int64 from = 0;
    /// Of the first answer: the server sends the whole file if it is another one now. May be empty.
    std::string validator{};
    /// Borrowed until the answer is there; may be null.
    KORVA::IO::IURICredential* credential = nullptr;
};

/// Works on the caller's thread, and only while one of the waiting operations runs. Failures are error
/// numbers of the system, as in HttpScheme.h.
class Transfer
{
public:
    Transfer();
    Transfer(Transfer const&) = delete;
    Transfer& operator=(Transfer const&) = delete;
    ~Transfer();

    /// Ends what is under way, sends a request and waits for its answer. The bytes go to `window`, borrowed
    /// until the next request; null where none are wanted. 0, or why there is no answer.
    int Start(Request const& request, Window* window);

    /// Waits until there are more bytes in the window than before, which must have room for them, or no more
    /// come.
    void More();

    /// Ends what is under way.
    void Stop();

    /// Whether no more bytes come.
    bool HasEnded() const { return mHasEnded; }
    /// Whether they ended too early.
    bool HasFailed() const { return mFailure != 0; }
    /// Why they did, told once; 0 when they did not.
    int TakeFailure() { return std::exchange(mFailure, 0); }
    /// Empty where there is none.
    Reply const& Answer() const { return mReply; }
    /// Whether the server that gave it was sent the credential. One that does not ask is not, nor is
    /// another one that a redirection leads to.
    bool HasTriedCredential() const;
    /// What went wrong, for the log.
    char const* Message() const { return mMessage; }

private:
    /// The library that transfers is there as long as anybody uses it: an object may outlive the plug-in's
    /// shutdown.
    struct Use
    {
        Use() { static_cast<void>(curl_global_init(CURL_GLOBAL_DEFAULT)); }
        Use(Use const&) = delete;
        Use& operator=(Use const&) = delete;
        ~Use() { curl_global_cleanup(); }
    };
    struct EasyDeleter
    {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    struct MultiDeleter
    {
        void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
    };
    struct ListDeleter
    {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static std::size_t OnHeader(char* line, std::size_t size, std::size_t count, void* self);
    static std::size_t OnBytes(char* bytes, std::size_t size, std::size_t count, void* self);

    void SetUp(Request const& request);
    /// Until the flag is set or the transfer has ended.
    void Wait(bool const& done);
    void Collect();
    void Say(char const* message);
    /// Of the latest request: it grows with each that goes out, and is 0 before the first one.
    curl_off_t RequestTime() const;

    Use const mUse;
    std::unique_ptr<CURLM, MultiDeleter> mMulti;
    std::unique_ptr<CURL, EasyDeleter> mEasy;
    std::unique_ptr<curl_slist, ListDeleter> mHeaders;
    Settings mSettings;
    std::string mURL;
    Window* mWindow = nullptr;
    Reply mReply;
    bool mHasHead = false;
    /// The last answer may lead to another connection, which is not made yet.
    bool mIsSentOn = false;
    /// A server asked who is there, before the last answer.
    bool mWasAsked = false;
    bool mHasAnswer = false;
    bool mHasBytes = false;
    bool mIsPaused = false;
    bool mHasEnded = true;
    /// Something came since the clock was set.
    bool mIsAlive = false;
    /// When the request that was sent on had gone out.
    curl_off_t mSentOnAt = 0;
    int mFailure = 0;
    char mMessage[CURL_ERROR_SIZE] = {};
};
} // namespace HTTP
