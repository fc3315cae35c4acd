#include "Outcome.h"

#include "TessIO/ResultCodes.h"

namespace HTTP
{
using namespace KORVA;

Outcome OutcomeOf(int failure, Reply const& reply)
{
    if (failure != 0)
        return {IO::kFileSystemFailed, failure};
    if (reply.IsGranted())
        return {};
    if (reply.IsMissing())
        return {IO::kFileNotFound, 0};
    if (reply.IsRefused())
        return {IO::kOpenRefused, 0};
    return {IO::kFileSystemFailed, reply.Status()};
}

void Tell(LogSite const& site, IO::IURI& uri, IO::IReporter* reporter, OperationId result, ErrCode detail,
          char const* message)
{
    Log(site, uri.GetAbsoluteString(), L": ", STRING::CoreString(message), L" (", detail, L")");
    if (reporter)
        reporter->Report(&uri, result, detail);
}
} // namespace HTTP
