// Who asks a server, and why it did not give what was asked for.
#pragma once

#include "CommandLine.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/IURICredential.h>
#include <tessio/TessIO/IURIFile.h>

#include <string>

namespace TOOL
{
/// Hears of failures and keeps the last one. Plug-ins tell the cause as an error number of the system or,
/// from 400 on, as what their server answered.
class LastFailure final : public KORVA::TObject<KORVA::IO::IReporter>
{
public:
    void Report(KORVA::IO::IURI* uri, KORVA::OperationId result, KORVA::ErrCode detail) override;

    /// The cause in words, which is then forgotten; empty when there was none.
    std::string Take();

private:
    KORVA::ErrCode mDetail = 0;
};

/// Adds --user.
void AddUserOption(Command const& command, std::string& user);

/// The user with the password that the environment has or, on a terminal, is asked for. Empty for no user;
/// ends the command when there is no password.
KORVA::IO::IURICredentialPtr CredentialOf(std::string const& user);

/// In words, when the file's server refuses access; else empty.
std::string RefusalOf(KORVA::IO::IURIFile const& file);
} // namespace TOOL
