#include "Access.h"

#include "Failure.h"
#include "Output.h"
#include "System/Memory.h"
#include "System/Terminal.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IURIAuthenticationChallenge.h>
#include <tessio/TessIO/ResultCodes.h>

#include <cerrno>
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

std::string PasswordOf(std::string const& user)
{
    if (char const* const known = std::getenv(kPasswordVariable))
        return known;
    std::string password;
    if (!SYSTEM::AskSilently("Password of " + Escaped(user) + ": ", password))
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
    SYSTEM::Wipe(password.data(), password.size());
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
