#include "Reply.h"

#include "Window.h"

#include <curl/curl.h>

#include <algorithm>
#include <charconv>
#include <limits>

namespace HTTP
{
namespace
{
using KORVA::int64;

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view kBlank = " \t\r\n";
    std::size_t const first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

bool IsName(std::string_view name, std::string_view wanted)
{
    if (name.size() != wanted.size())
        return false;
    for (std::size_t i = 0; i < name.size(); ++i)
        if ((name[i] >= 'A' && name[i] <= 'Z' ? name[i] - 'A' + 'a' : name[i]) != wanted[i])
            return false;
    return true;
}

/// So that nobody who counts on from a position gets beyond what there are numbers for.
constexpr int64 kLargest = std::numeric_limits<int64>::max() - static_cast<int64>(Window::kSize);

/// Digits alone, no sign; nothing that is too large for a position.
std::optional<int64> NumberOf(std::string_view text)
{
    int64 value = 0;
    auto const [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || stop != text.data() + text.size() || text.front() == '-' || value > kLargest)
        return std::nullopt;
    return value;
}
} // namespace

void Reply::Add(std::string_view line)
{
    if (line.starts_with("HTTP/"))
    {
        *this = Reply();
        std::string_view const status = line.substr(std::min(line.find(' '), line.size() - 1) + 1, 3);
        mStatus = static_cast<int>(NumberOf(status).value_or(0));
        return;
    }
    std::size_t const colon = line.find(':');
    if (colon == std::string_view::npos)
        return;
    std::string_view const name = line.substr(0, colon);
    struct
    {
        char const* name;
        std::string* field;
    } const fields[] = {{"etag", &mTag},
                        {"last-modified", &mDate},
                        {"content-length", &mLength},
                        {"content-range", &mRange},
                        {"transfer-encoding", &mCoding}};
    for (auto const& [wanted, field] : fields)
        if (IsName(name, wanted))
            *field = Trimmed(line.substr(colon + 1));
}

/// `bytes FIRST-LAST/SIZE`, where the size may be `*`; `bytes */SIZE` where nothing could be served.
std::optional<Reply::Range> Reply::ContentRange() const
{
    std::string_view text = mRange;
    if (!text.starts_with("bytes "))
        return std::nullopt;
    text = Trimmed(text.substr(6));
    std::size_t const slash = text.find('/');
    std::size_t const dash = text.find('-');
    if (slash == std::string_view::npos)
        return std::nullopt;
    Range range;
    if (std::string_view const size = text.substr(slash + 1); size != "*")
        range.size = NumberOf(size).value_or(-2);
    if (text.substr(0, slash) != "*")
    {
        if (dash > slash)
            return std::nullopt;
        range.first = NumberOf(text.substr(0, dash)).value_or(-2);
        range.last = NumberOf(text.substr(dash + 1, slash - dash - 1)).value_or(-2);
        if (range.first < 0 || range.last < range.first || (range.size >= 0 && range.last >= range.size))
            return std::nullopt;
        if (!mLength.empty() && mCoding.empty() && NumberOf(mLength) != range.last - range.first + 1)
            return std::nullopt;
    }
    return range.size == -2 ? std::nullopt : std::optional(range);
}

std::optional<int64> Reply::Start() const
{
    if (mStatus != 206)
        return 0;
    auto const range = ContentRange();
    return range && range->first >= 0 ? std::optional(range->first) : std::nullopt;
}

std::optional<int64> Reply::End() const
{
    if (mStatus != 206)
        return Size();
    auto const range = ContentRange();
    return range && range->first >= 0 ? std::optional(range->last + 1) : std::nullopt;
}

std::optional<int64> Reply::Size() const
{
    if (mStatus != 206 && mStatus != 416)
        return mLength.empty() || !mCoding.empty() ? std::nullopt : NumberOf(mLength);
    auto const range = ContentRange();
    return range && range->size >= 0 ? std::optional(range->size) : std::nullopt;
}

std::optional<int64> Reply::ModificationDate() const
{
    constexpr int64 kSecond = 1'000'000'000;
    time_t const seconds = mDate.empty() ? -1 : curl_getdate(mDate.c_str(), nullptr);
    if (seconds < 0 || seconds > std::numeric_limits<int64>::max() / kSecond)
        return std::nullopt;
    return seconds * kSecond;
}

std::string const& Reply::Validator() const
{
    // A weak tag says that two contents are as good as each other, not that their bytes are the same.
    return mTag.empty() || mTag.starts_with("W/") ? mDate : mTag;
}

bool Reply::Agrees(Reply const& other) const
{
    // An answer about a piece of a file may leave out what an earlier one has told.
    auto const agree = [](std::string const& a, std::string const& b) {
        return a.empty() || b.empty() || a == b;
    };
    auto const mine = Size();
    auto const its = other.Size();
    return agree(mTag, other.mTag) && agree(mDate, other.mDate) && (!mine || !its || *mine == *its);
}
} // namespace HTTP
