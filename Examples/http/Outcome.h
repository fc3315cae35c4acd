// What an answer, or the lack of one, means to a caller.
#pragma once

#include "Reply.h"
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/IReporter.h>
#include <tessio/TessIO/IURI.h>

#include <string>

namespace HTTP
{
struct Outcome
{
    /// 0, 26 missing, 36 refused, 35 anything else.
    KORVA::ErrCode code = 0;
    /// With 35: an error number of the system, or the server's status.
    KORVA::ErrCode detail = 0;
};

/// `failure` is a transfer's; 0 when there was an answer.
Outcome OutcomeOf(int failure, Reply const& reply);

/// Why there is no file: `failure`, or else the status, from 400 on; EPROTO where that says nothing.
KORVA::ErrCode CauseOf(int failure, Reply const& reply);

/// Logs a failure, and reports it: once for each.
void Tell(KORVA::LogSite const& site, KORVA::IO::IURI& uri, KORVA::IO::IReporter* reporter,
          KORVA::OperationId result, KORVA::ErrCode detail, char const* message);
} // namespace HTTP
