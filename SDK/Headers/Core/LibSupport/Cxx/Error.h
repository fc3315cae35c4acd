// Why something could not be done.
#pragma once

#include <tessio/Cxx/ResultNames.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace KORVA::CXX
{
/// A result code and what it is about. A value: copy it, keep it, pass it on.
class Error
{
public:
    /// `operation` stands behind "cannot": load, get. `subject` is what it concerned, as a message shows it:
    /// a path in quotes, a key. `detail` is said beside the code's own meaning.
    Error(ErrCode code, std::string operation, std::string subject = {}, std::string detail = {})
        : mCode(code), mOperation(std::move(operation)), mSubject(std::move(subject)),
          mDetail(std::move(detail))
    {}

    /// Of TessIO/ResultCodes.h, Cxx/ResultCodes.h or ObjectModel/Types.h, or a component's own.
    ErrCode Code() const { return mCode; }

    /// "kLocked"; "error 77" for a code without a name.
    std::string Name() const { return NameOfResult(mCode); }

    /// What could not be done.
    std::string const& Operation() const { return mOperation; }

    /// What it concerned; may be empty.
    std::string const& Subject() const { return mSubject; }

    /// What is said beside the code's own meaning; may be empty.
    std::string const& Detail() const { return mDetail; }

    /// One line for people: cannot load "/a/b": no such file or directory (kFileNotFound)
    std::string Message() const
    {
        ResultName const* const row = FindResultName(mCode);
        std::string text = "cannot " + mOperation;
        if (!mSubject.empty())
            text += " " + mSubject;
        text += ": ";
        if (row)
            text += std::string(row->meaning) + " (" + std::string(row->name) + ")";
        else
            text += Name();
        return mDetail.empty() ? text : text + ": " + mDetail;
    }

    /// Same code, operation, subject and detail.
    friend bool operator==(Error const&, Error const&) = default;

private:
    ErrCode mCode;
    std::string mOperation;
    std::string mSubject;
    std::string mDetail;
};

/// Thrown where the value of a failed result is asked for; the one exception of this layer.
class BadResult : public std::logic_error
{
public:
    /// The message is that of `error`.
    explicit BadResult(Error error) : std::logic_error(error.Message()), mError(std::move(error)) {}

    /// Why there is no value.
    Error const& Why() const { return mError; }

private:
    Error mError;
};

/// The text in quotes; quotes, backslashes and control characters in it are escaped, so that a message stays
/// one line.
inline std::string Quoted(std::string_view text)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string quoted = "\"";
    for (char const c : text)
    {
        auto const byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F)
            quoted += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 0xF]};
        else if (c == '"' || c == '\\')
            quoted += {'\\', c};
        else
            quoted += c;
    }
    return quoted + '"';
}
} // namespace KORVA::CXX
