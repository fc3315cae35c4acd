// A value, or the reason why there is none.
#pragma once

#include <tessio/Cxx/Error.h>

#include <concepts>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace KORVA::CXX
{
template <class T>
class Result;

/// What a result of `T` can be made of, beside an error.
template <class U, class T>
concept ResultValue = std::is_convertible_v<U, T> && !std::is_same_v<std::remove_cvref_t<U>, Result<T>> &&
                      !std::is_same_v<std::remove_cvref_t<U>, Error>;

/// What an operation that can fail answers. Look at it: the compiler warns where a result is dropped.
///
///     if (auto const width = settings.Get<int>(1))
///         Resize(*width);
///     else
///         Complain(width.error().Message());
///
/// Asking a failed result for its value throws `BadResult`; nothing else here throws of its own accord.
template <class T>
class [[nodiscard]] Result
{
    static_assert(std::is_object_v<T> && !std::is_same_v<T, Error>, "a result holds a value");

public:
    /// The type of the value.
    using value_type = T;

    /// A success, from whatever the value can be made of without a cast.
    template <ResultValue<T> U = T>
    Result(U&& value) : mContent(std::in_place_index<0>, std::forward<U>(value))
    {}

    /// A failure.
    Result(Error error) : mContent(std::in_place_index<1>, std::move(error)) {}

    /// Whether there is a value.
    explicit operator bool() const noexcept { return mContent.index() == 0; }
    /// The same by name.
    bool has_value() const noexcept { return mContent.index() == 0; }

    /// The value, borrowed from this result. Throws `BadResult` when there is none.
    T& value() &
    {
        Check();
        return *std::get_if<0>(&mContent);
    }
    /// The same of a result that does not change.
    T const& value() const&
    {
        Check();
        return *std::get_if<0>(&mContent);
    }
    /// Of a temporary: the value itself, so that `for (auto entry : Load<Dictionary>(path).value())` is safe.
    T value() &&
    {
        Check();
        return std::move(*std::get_if<0>(&mContent));
    }

    /// The same as `value`.
    T& operator*() & { return value(); }
    /// The same as `value`.
    T const& operator*() const& { return value(); }
    /// The same as `value`.
    T operator*() && { return std::move(*this).value(); }
    /// Into the value; throws as `value` does. What a temporary result lends this way dies with it.
    T* operator->() { return &value(); }
    /// Into the value; throws as `value` does.
    T const* operator->() const { return &value(); }

    /// The value, or `other` where there is none.
    template <std::convertible_to<T> U>
    T value_or(U&& other) const&
    {
        return has_value() ? value() : static_cast<T>(std::forward<U>(other));
    }
    /// The value, moved out, or `other` where there is none.
    template <std::convertible_to<T> U>
    T value_or(U&& other) &&
    {
        return has_value() ? std::move(*this).value() : static_cast<T>(std::forward<U>(other));
    }

    /// Why there is no value; `kNoError` where there is one.
    Error const& error() const&
    {
        static Error const sNone(kNoError, "fail");
        Error const* const error = std::get_if<1>(&mContent);
        return error ? *error : sNone;
    }
    /// Of a temporary: a copy.
    Error error() && { return static_cast<Result const&>(*this).error(); }

    /// What `next`, which answers a result, makes of the value; this error where there is none.
    template <class Next>
    auto and_then(Next&& next) const& -> std::remove_cvref_t<std::invoke_result_t<Next, T const&>>
    {
        if (!has_value())
            return error();
        return std::invoke(std::forward<Next>(next), value());
    }
    /// The same of a temporary, whose value is moved out.
    template <class Next>
    auto and_then(Next&& next) && -> std::remove_cvref_t<std::invoke_result_t<Next, T>>
    {
        if (!has_value())
            return error();
        return std::invoke(std::forward<Next>(next), std::move(*this).value());
    }

    /// A result of what `function` makes of the value; this error where there is none.
    template <class Function>
    auto transform(
        Function&& function) const& -> Result<std::remove_cvref_t<std::invoke_result_t<Function, T const&>>>
    {
        if (!has_value())
            return error();
        return std::invoke(std::forward<Function>(function), value());
    }
    /// The same of a temporary, whose value is moved out.
    template <class Function>
    auto transform(Function&& function) && -> Result<std::remove_cvref_t<std::invoke_result_t<Function, T>>>
    {
        if (!has_value())
            return error();
        return std::invoke(std::forward<Function>(function), std::move(*this).value());
    }

private:
    void Check() const
    {
        if (Error const* const error = std::get_if<1>(&mContent))
            throw BadResult(*error);
    }

    std::variant<T, Error> mContent;
};

/// Whether something was done, or why not.
template <>
class [[nodiscard]] Result<void>
{
public:
    /// There is none.
    using value_type = void;

    /// A success.
    Result() = default;
    /// A failure.
    Result(Error error) : mError(std::move(error)) {}

    /// Whether it was done.
    explicit operator bool() const noexcept { return !mError; }
    /// The same by name.
    bool has_value() const noexcept { return !mError; }

    /// Throws `BadResult` when it was not done.
    void value() const
    {
        if (mError)
            throw BadResult(*mError);
    }

    /// Why it was not done; `kNoError` where it was.
    Error const& error() const&
    {
        static Error const sNone(kNoError, "fail");
        return mError ? *mError : sNone;
    }
    /// Of a temporary: a copy.
    Error error() && { return static_cast<Result const&>(*this).error(); }

    /// What `next`, which answers a result, comes to once this was done; this error where it was not.
    template <class Next>
    auto and_then(Next&& next) const -> std::remove_cvref_t<std::invoke_result_t<Next>>
    {
        if (mError)
            return *mError;
        return std::invoke(std::forward<Next>(next));
    }

private:
    std::optional<Error> mError;
};

/// A success for 0, else a failure with that code.
inline Result<void> ResultOf(ErrCode code, std::string operation, std::string subject = {})
{
    if (code == kNoError)
        return {};
    return Error(code, std::move(operation), std::move(subject));
}
} // namespace KORVA::CXX
