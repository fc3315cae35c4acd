// A value, or why there is none.
#pragma once

#include <tessio/Records/Format/Error.h>

#include <utility>
#include <variant>

namespace KORVA::RECORDS
{
/// What an operation answers that can fail. Ask whether it succeeded before using the value.
template <class T>
class [[nodiscard]] Result
{
public:
    /// A success.
    Result(T value) : mContent(std::in_place_index<0>, std::move(value)) {}
    /// A failure.
    Result(Error error) : mContent(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const noexcept { return mContent.index() == 0; }

    /// The value; throws `std::bad_variant_access` where there is none.
    T& operator*() & { return std::get<0>(mContent); }
    T const& operator*() const& { return std::get<0>(mContent); }
    T&& operator*() && { return std::get<0>(std::move(mContent)); }
    T* operator->() { return &std::get<0>(mContent); }
    T const* operator->() const { return &std::get<0>(mContent); }

    /// Why there is no value; throws `std::bad_variant_access` where there is one.
    Error const& error() const { return std::get<1>(mContent); }

private:
    std::variant<T, Error> mContent;
};
} // namespace KORVA::RECORDS
