#include "Session.h"

#include "Failure.h"
#include "ObjectModel/GUIDText.h"
#include "Output.h"

#include <cstdio>
#include <string>

namespace TOOL
{
Session::Session(Common const& common) : mVerbose(common.verbose)
{
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
}

Session::~Session()
{
    mHost.reset();
    KORVA::KLoggerLibInterface::InstallSink(nullptr);
}

bool Session::OnMessage(KORVA::KLogRecord const& record) noexcept
{
    // A command reports what matters itself; the messages are for whoever asks for them, not for a log file.
    if (mVerbose)
        std::fprintf(stderr, "tessio: %s:%d: %ls\n", record.sourcePath, record.line, record.message);
    return false;
}

void Session::Missing(GUID const& classId)
{
    throw Failure(Exit::kInputOutput, "no component makes " + KORVA::GUIDToText(classId));
}
} // namespace TOOL
