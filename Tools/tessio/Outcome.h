// What the records library answers, as the end of a command.
#pragma once

#include "Failure.h"
#include "Names.h"
#include <tessio/Records/Format/Result.h>

#include <string>
#include <utility>

namespace TOOL
{
/// The exit code that such a failure ends a command with.
Exit ExitOf(ErrorCode code);

/// The value. Ends the command where there is none, with the library's words behind `subject`.
template <class T>
T ValueOf(Result<T> result, std::string const& subject = {})
{
    if (!result)
        throw Failure(ExitOf(result.error().code), subject + result.error().words);
    return *std::move(result);
}
} // namespace TOOL
