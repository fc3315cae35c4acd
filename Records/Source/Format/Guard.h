// How failures travel inside of the library.
#pragma once

#include <tessio/Records/Format/Result.h>

#include <utility>

namespace KORVA::RECORDS
{
/// Thrown deep inside of an operation, and caught where the operation answers: callers never see it.
struct Raised
{
    Error error;
};

[[noreturn]] inline void Raise(ErrorCode code, int64 offset, std::string words)
{
    throw Raised{{code, offset, std::move(words)}};
}

/// What `function` gives, or the error that was raised in it.
template <class Function>
auto Guarded(Function&& function) -> Result<decltype(function())>
{
    try
    {
        return function();
    }
    catch (Raised& raised)
    {
        return std::move(raised.error);
    }
}

/// The value of a result; its error is raised.
template <class T>
T ValueOrRaise(Result<T> result)
{
    if (!result)
        throw Raised{result.error()};
    return *std::move(result);
}
} // namespace KORVA::RECORDS
