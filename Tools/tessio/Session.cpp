#include "Session.h"

#include "Failure.h"
#include "Output.h"
#include <tessio/ObjectModel/GUIDText.h>

#include <cstdio>
#include <new>
#include <string>

namespace TOOL
{
Session::Session(Common const& common, std::string const& user)
    : mVerbose(common.verbose), mLimits(common.limits)
{
    mFailures.Adopt(new LastFailure);
    KORVA::KLoggerLibInterface::InstallSink(this);
    std::string error;
    mHost = KORVA::HOST::Host::Boot(error);
    if (!mHost)
        throw Failure(Exit::kInputOutput, "cannot load the library: " + error);
    for (std::string const& plugIn : common.plugIns)
    {
        // The system's search is for libraries; what a person names is a file.
        std::string const file = plugIn.find('/') == std::string::npos ? "./" + plugIn : plugIn;
        if (!mHost->LoadPlugIn(file, error))
            throw Failure(Exit::kInputOutput,
                          "cannot load the plug-in " + Quoted(plugIn) + ": " + Escaped(error));
    }
    mCredential = CredentialOf(user);
}

Session::~Session()
{
    mHost.reset();
    KORVA::KLoggerLibInterface::InstallSink(nullptr);
}

bool Session::OnMessage(KORVA::KLogRecord const& record) noexcept
{
    // A command reports what matters itself; the messages are for whoever asks for them, not for a log file.
    if (!mVerbose)
        return false;
    try
    {
        std::fprintf(stderr, "tessio: %s:%d: %s\n", record.sourcePath, record.line,
                     EscapedWide(record.message).c_str());
    }
    catch (std::bad_alloc const&)
    {
        // Without memory for the message there is none.
    }
    return false;
}

void Session::Missing(GUID const& classId)
{
    throw Failure(Exit::kInputOutput, "no component makes " + KORVA::GUIDToText(classId));
}
} // namespace TOOL
