#include "Dates.h"

#include "Failure.h"
#include "Output.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <cstdio>

namespace TOOL
{
namespace
{
using KORVA::uint64;
namespace chrono = std::chrono;

constexpr uint64 kNanoseconds = 1'000'000'000;

[[noreturn]] void NoDate(std::string const& text)
{
    throw Failure(Exit::kUsage,
                  Quoted(text) +
                      " is no date: write YYYY-MM-DDTHH:MM:SS[.fraction]Z, or nanoseconds since 1970");
}

/// Takes a run of digits off the text.
int Digits(std::string_view& rest, std::size_t count, std::string const& text)
{
    int value = 0;
    if (rest.size() < count || rest.front() == '-')
        NoDate(text);
    auto const [end, error] = std::from_chars(rest.data(), rest.data() + count, value);
    if (error != std::errc() || end != rest.data() + count || value < 0)
        NoDate(text);
    rest.remove_prefix(count);
    return value;
}

void Skip(std::string_view& rest, std::string_view allowed, std::string const& text)
{
    if (rest.empty() || allowed.find(rest.front()) == std::string_view::npos)
        NoDate(text);
    rest.remove_prefix(1);
}

uint64 Fraction(std::string_view& rest, std::string const& text)
{
    uint64 fraction = 0;
    uint64 unit = kNanoseconds;
    if (!rest.starts_with('.'))
        return 0;
    rest.remove_prefix(1);
    while (!rest.empty() && rest.front() >= '0' && rest.front() <= '9' && unit > 1)
    {
        unit /= 10;
        fraction += unit * static_cast<uint64>(rest.front() - '0');
        rest.remove_prefix(1);
    }
    if (unit == kNanoseconds)
        NoDate(text);
    return fraction;
}

/// Minutes east of Greenwich.
int Zone(std::string_view rest, std::string const& text)
{
    if (rest == "Z" || rest == "z")
        return 0;
    bool const west = rest.starts_with('-');
    Skip(rest, "+-", text);
    int const hours = Digits(rest, 2, text);
    Skip(rest, ":", text);
    int const minutes = Digits(rest, 2, text);
    if (!rest.empty() || hours > 23 || minutes > 59)
        NoDate(text);
    return (west ? -1 : 1) * (hours * 60 + minutes);
}
} // namespace

std::string DateText(uint64 date)
{
    chrono::sys_seconds const seconds{chrono::seconds(static_cast<long long>(date / kNanoseconds))};
    auto const day = chrono::floor<chrono::days>(seconds);
    chrono::year_month_day const ymd(day);
    chrono::hh_mm_ss const time(seconds - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:09}Z", static_cast<int>(ymd.year()),
                       static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count(),
                       date % kNanoseconds);
}

uint64 DateFromText(std::string const& text)
{
    std::string_view rest = text;
    uint64 number = 0;
    if (auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        error == std::errc() && end == text.data() + text.size())
        return number;
    chrono::year const year(Digits(rest, 4, text));
    Skip(rest, "-", text);
    chrono::month const month(static_cast<unsigned>(Digits(rest, 2, text)));
    Skip(rest, "-", text);
    chrono::day const day(static_cast<unsigned>(Digits(rest, 2, text)));
    Skip(rest, "Tt ", text);
    int const hours = Digits(rest, 2, text);
    Skip(rest, ":", text);
    int const minutes = Digits(rest, 2, text);
    Skip(rest, ":", text);
    int const seconds = Digits(rest, 2, text);
    uint64 const fraction = Fraction(rest, text);
    chrono::year_month_day const date(year, month, day);
    if (!date.ok() || hours > 23 || minutes > 59 || seconds > 59)
        NoDate(text);
    auto const since = chrono::sys_days(date).time_since_epoch() + chrono::hours(hours) +
                       chrono::minutes(minutes - Zone(rest, text)) + chrono::seconds(seconds);
    long long const count = chrono::duration_cast<chrono::seconds>(since).count();
    // What 64 bits of nanoseconds hold ends in 2554.
    if (count < 0 || static_cast<uint64>(count) > UINT64_MAX / kNanoseconds - 1)
        throw Failure(Exit::kUsage, Quoted(text) + " lies outside 1970 to 2554");
    return static_cast<uint64>(count) * kNanoseconds + fraction;
}

uint64 Now()
{
    auto const since = chrono::system_clock::now().time_since_epoch();
    return static_cast<uint64>(chrono::duration_cast<chrono::nanoseconds>(since).count());
}
} // namespace TOOL
