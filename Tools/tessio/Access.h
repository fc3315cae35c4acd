// Who asks a server, and why it did not give what was asked for.
#pragma once

#include "ObjectModel/TObject.h"
#include "TessIO/IReporter.h"
#include "TessIO/IURICredential.h"
#include "TessIO/IURIFile.h"

#include <CLI/CLI.hpp>

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

/// A stream that was opened to be read answers its `LastFailure` under this id.
inline constexpr GUID IID_LAST_FAILURE{
    0x2C9A1F0B, 0x7E44, 0x4F0D, {0x9B, 0x52, 0x6A, 0xE1, 0x3C, 0x88, 0xD4, 0x17}};

/// Adds --user.
void AddUserOption(CLI::App& command, std::string& user);

/// The user with the password that the environment has or, on a terminal, is asked for. Empty for no user;
/// ends the command when there is no password.
KORVA::IO::IURICredentialPtr CredentialOf(std::string const& user);

/// In words, when the file's server refuses access; else empty.
std::string RefusalOf(KORVA::IO::IURIFile const& file);
} // namespace TOOL
