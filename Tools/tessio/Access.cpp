#include "Access.h"

#include "Failure.h"
#include "Output.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IURIAuthenticationChallenge.h>
#include <tessio/TessIO/ResultCodes.h>

#include <fcntl.h>
#include <poll.h>
#include <string.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace TOOL
{
namespace
{
using namespace KORVA;

constexpr int kFirstStatus = 400;
constexpr int kForbidden = 403;
constexpr char kPasswordVariable[] = "TESSIO_PASSWORD";

std::string WordsOf(int detail)
{
    switch (detail)
    {
    case ETIMEDOUT:
        return "timed out";
    case ECONNREFUSED:
        return "connection refused";
    case ECONNRESET:
        return "the transfer broke off";
    case EHOSTUNREACH:
        return "no such host, or no way there";
    case EKEYREJECTED:
        return "the server's certificate is not trusted";
    case EPROTO:
        return "the server's answer makes no sense";
    case ELOOP:
        return "too many redirections";
    case EPROTONOSUPPORT:
        return "redirected to a protocol that is not allowed";
    case ESTALE:
        return "the file changed meanwhile";
    default:
        return detail >= kFirstStatus ? "the server answers " + std::to_string(detail)
                                      : std::generic_category().message(detail);
    }
}

volatile std::sig_atomic_t sInterrupted = 0;

/// A terminal that does not show what is typed, until it is as it was before, whatever interrupts.
class SilentTerminal
{
public:
    SilentTerminal() : mDescriptor(open("/dev/tty", O_RDWR | O_CLOEXEC))
    {
        if (mDescriptor < 0 || tcgetattr(mDescriptor, &mBefore) != 0)
            return;
        struct sigaction action
        {
        };
        action.sa_handler = [](int signal) { sInterrupted = signal; };
        sigset_t held;
        sigemptyset(&held);
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
        {
            sigaddset(&held, kSignals[i]);
            sigaction(kSignals[i], &action, &mActions[i]);
        }
        // They arrive while it waits for a key, and at no other time.
        sigprocmask(SIG_BLOCK, &held, &mMask);
        mIsGuarded = true;
        termios silent = mBefore;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        mIsSilent = tcsetattr(mDescriptor, TCSAFLUSH, &silent) == 0;
    }
    SilentTerminal(SilentTerminal const&) = delete;
    SilentTerminal& operator=(SilentTerminal const&) = delete;
    ~SilentTerminal()
    {
        if (mIsSilent)
        {
            tcsetattr(mDescriptor, TCSAFLUSH, &mBefore);
            Say("\n");
        }
        if (mIsGuarded)
        {
            for (std::size_t i = 0; i < std::size(kSignals); ++i)
                sigaction(kSignals[i], &mActions[i], nullptr);
            sigprocmask(SIG_SETMASK, &mMask, nullptr);
        }
        if (mDescriptor >= 0)
            close(mDescriptor);
        if (sInterrupted != 0)
            std::raise(sInterrupted);
    }

    bool IsThere() const { return mIsSilent; }

    /// A line without its end; false when there is none.
    bool Ask(std::string const& question, std::string& line) const
    {
        Say(question);
        char byte = 0;
        pollfd key{mDescriptor, POLLIN, 0};
        while (ppoll(&key, 1, nullptr, &mMask) == 1 && read(mDescriptor, &byte, 1) == 1)
        {
            if (byte == '\n')
                return true;
            line += byte;
        }
        return false;
    }

private:
    void Say(std::string const& text) const
    {
        static_cast<void>(!write(mDescriptor, text.data(), text.size()));
    }

    static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    int mDescriptor;
    bool mIsGuarded = false;
    bool mIsSilent = false;
    sigset_t mMask{};
    termios mBefore{};
    struct sigaction mActions[std::size(kSignals)] = {};
};

std::string PasswordOf(std::string const& user)
{
    if (char const* const known = std::getenv(kPasswordVariable))
        return known;
    std::string password;
    SilentTerminal const terminal;
    if (!terminal.IsThere() || !terminal.Ask("Password of " + Escaped(user) + ": ", password))
        throw Failure(Exit::kUsage, std::string("there is no password for the user ") + Quoted(user) +
                                        ": set " + kPasswordVariable);
    return password;
}
} // namespace

void LastFailure::Report(IO::IURI*, OperationId, ErrCode detail)
{
    // The end of a file is no failure, and a null buffer is not what people want to hear of.
    if (detail != 0 && detail != IO::kBadArgument)
        mDetail = detail;
}

std::string LastFailure::Take()
{
    int const detail = std::exchange(mDetail, 0);
    return detail == 0 ? "" : WordsOf(detail);
}

void AddUserOption(Command const& command, std::string& user)
{
    command
        .Option("--user", user,
                std::string("Who asks a server; the password comes from the environment variable ") +
                    kPasswordVariable + " or is asked for on the terminal")
        .Names("NAME");
}

IO::IURICredentialPtr CredentialOf(std::string const& user)
{
    if (user.empty())
        return {};
    auto const name = TextArgument(user, "user name");
    std::string password = PasswordOf(user);
    auto const text = STRING::CoreString::FromUTF8(password);
    explicit_bzero(password.data(), password.size());
    if (!text)
        throw Failure(Exit::kUsage, "the password is not valid UTF-8");
    auto credential = COREREGISTRY::CreateObject<IO::IURICredential>(IO::IID_URI_CREDENTIAL);
    if (credential)
        credential->Init(name, *text);
    return credential;
}

std::string RefusalOf(IO::IURIFile const& file)
{
    IObject* found = nullptr;
    if (file.QueryInterface(IO::IID_URI_AUTHENTICATION_CHALLENGE, &found) != kNoError)
        return {};
    auto const& challenge = static_cast<IO::IURIAuthenticationChallenge const&>(*found);
    if (challenge.GetPreviousFailureError() == kForbidden)
        return "the server refuses access";
    return challenge.GetProposedCredential() ? "the server refuses the user name or the password"
                                             : "the server asks for a user name and password";
}
} // namespace TOOL
