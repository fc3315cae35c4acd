#include "Outcome.h"

#include <tessio/TessIO/ResultCodes.h>

#include <cerrno>

namespace HTTP
{
using namespace KORVA;

Outcome OutcomeOf(int failure, Reply const& reply)
{
    if (failure == 0 && reply.IsGranted())
        return {};
    if (failure == 0 && reply.IsMissing())
        return {IO::kFileNotFound, 0};
    if (failure == 0 && reply.IsRefused())
        return {IO::kOpenRefused, 0};
    return {IO::kFileSystemFailed, CauseOf(failure, reply)};
}

ErrCode CauseOf(int failure, Reply const& reply)
{
    if (failure != 0)
        return failure;
    // A redirection that leads nowhere, say, is no answer.
    return reply.Status() < 400 ? EPROTO : reply.Status();
}

void Tell(LogSite const& site, IO::IURI& uri, IO::IReporter* reporter, OperationId result, ErrCode detail,
          char const* message)
{
    Log(site, uri.GetAbsoluteString(), L": ", STRING::CoreString(message), L" (", detail, L")");
    if (reporter)
        reporter->Report(&uri, result, detail);
}
} // namespace HTTP
