#include "common/timestamp.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <optional>

#include "common/failure.h"

namespace vexortools {

namespace {

using std::chrono::sys_days;
using std::chrono::sys_seconds;

// Reads a text from its front and throws at the first error, so that the message names it.
class Reader {
public:
    explicit Reader(std::string_view text) : text_(text), rest_(text) {}

    bool IsAtEnd() const { return rest_.empty(); }

    bool Take(std::string_view prefix) {
        if (!rest_.starts_with(prefix)) return false;
        rest_.remove_prefix(prefix.size());
        return true;
    }

    void Require(std::string_view prefix) {
        if (!Take(prefix)) ThrowNoTime();
    }

    /// A number of `least` to `most` digits.
    unsigned Number(std::size_t least, std::size_t most) {
        const std::string_view digits = Digits(most);
        if (digits.size() < least) ThrowNoTime();
        unsigned number = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
        return number;
    }

    /// The digits that come next, at most so many.
    std::string_view Digits(std::size_t most) {
        std::size_t length = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
        length = std::min(length, most);
        const std::string_view digits = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return digits;
    }

    [[noreturn]] void ThrowNoTime() const {
        throw UsageError(Quoted(text_) +
                         " is no time; write one such as 2026-01-31, 2026-01-31T12:00:00 (local "
                         "time), 2026-01-31T12:00:00Z or 2026-01-31T12:00:00+01:00");
    }

    [[noreturn]] void ThrowImpossible(const std::string& reason) const {
        throw UsageError(Quoted(text_) + " is no time: " + reason);
    }

    void RequireAtMost(unsigned number, unsigned most, const std::string& unit) const {
        if (number <= most) return;
        ThrowImpossible("there is no " + unit + " " + std::to_string(number) + "; the last is " +
                        std::to_string(most));
    }

private:
    std::string_view text_;
    std::string_view rest_;
};

std::chrono::year_month_day ReadDate(Reader& reader) {
    const unsigned year = reader.Number(4, 4);
    reader.Require("-");
    const unsigned month = reader.Number(1, 2);
    reader.Require("-");
    const unsigned day = reader.Number(1, 2);
    if (month < 1 || month > 12) {
        reader.ThrowImpossible("there is no month " + std::to_string(month));
    }
    const std::chrono::year_month first{std::chrono::year(static_cast<int>(year)),
                                        std::chrono::month(month)};
    const auto days = static_cast<unsigned>((first / std::chrono::last).day());
    if (day < 1 || day > days) {
        reader.ThrowImpossible("there is no day " + std::to_string(day) + " in month " +
                               std::to_string(month) + " of " + std::to_string(year) +
                               ", which has " + std::to_string(days) + " days");
    }
    return first / std::chrono::day(day);
}

struct TimeOfDay {
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;
    unsigned millisecond = 0;
};

// The first three digits of a fraction; further ones are cut off.
unsigned ReadFraction(Reader& reader) {
    std::string digits(reader.Digits(std::string_view::npos));
    if (digits.empty()) reader.ThrowNoTime();
    digits.resize(3, '0');
    unsigned milliseconds = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), milliseconds);
    return milliseconds;
}

TimeOfDay ReadTimeOfDay(Reader& reader) {
    TimeOfDay time;
    time.hour = reader.Number(1, 2);
    reader.Require(":");
    time.minute = reader.Number(1, 2);
    if (reader.Take(":")) {
        time.second = reader.Number(1, 2);
        if (reader.Take(".") || reader.Take(",")) time.millisecond = ReadFraction(reader);
    }
    reader.RequireAtMost(time.hour, 23, "hour");
    reader.RequireAtMost(time.minute, 59, "minute");
    reader.RequireAtMost(time.second, 59, "second");
    return time;
}

// How far ahead of UTC the zone is; null for local time, whose offset depends on the date.
std::optional<std::chrono::minutes> ReadZone(Reader& reader) {
    if (reader.IsAtEnd()) return std::nullopt;
    reader.Take(" ");
    if (reader.Take("Z") || reader.Take("z") || reader.Take("UTC")) return std::chrono::minutes(0);
    const bool is_behind = reader.Take("-");
    if (!is_behind) reader.Require("+");
    const unsigned hours = reader.Number(2, 2);
    unsigned minutes = 0;
    if (reader.Take(":") || !reader.IsAtEnd()) minutes = reader.Number(2, 2);
    if (hours > 24) reader.ThrowImpossible("no zone is more than 24 hours from UTC");
    reader.RequireAtMost(minutes, 59, "minute");
    const auto offset = std::chrono::minutes(hours * 60 + minutes);
    return is_behind ? -offset : offset;
}

// mktime knows the rules of the zone but silently moves a non-existent time, so its result is
// compared with the input.
sys_seconds LocalTime(Reader& reader, const std::chrono::year_month_day& date,
                      const TimeOfDay& time) {
    std::tm wanted{};
    wanted.tm_year = static_cast<int>(date.year()) - 1900;
    wanted.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    wanted.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    wanted.tm_hour = static_cast<int>(time.hour);
    wanted.tm_min = static_cast<int>(time.minute);
    wanted.tm_sec = static_cast<int>(time.second);
    wanted.tm_isdst = -1;
    std::tm found = wanted;
    found.tm_wday = -1;  // unchanged when mktime fails
    const std::time_t seconds = std::mktime(&found);
    if (found.tm_wday == -1) {
        reader.ThrowImpossible("local time does not reach so far; write it with Z or an offset");
    }
    if (found.tm_hour != wanted.tm_hour || found.tm_min != wanted.tm_min ||
        found.tm_mday != wanted.tm_mday) {
        reader.ThrowImpossible(
            "the clocks of the local time zone skipped it; write another, or one with an offset");
    }
    return sys_seconds(std::chrono::seconds(seconds));
}

// "+0100" of strftime as "+01:00".
std::string WithColon(std::string_view offset) {
    return std::string(offset.substr(0, 3)).append(":").append(offset.substr(3));
}

}  // namespace

Timestamp ParseTime(std::string_view text) {
    Reader reader(text);
    const std::chrono::year_month_day date = ReadDate(reader);
    TimeOfDay time;
    std::optional<std::chrono::minutes> offset;
    if (!reader.IsAtEnd()) {
        if (!reader.Take("T") && !reader.Take("t")) reader.Require(" ");
        time = ReadTimeOfDay(reader);
        offset = ReadZone(reader);
        if (!reader.IsAtEnd()) reader.ThrowNoTime();
    }
    const std::chrono::milliseconds fraction(time.millisecond);
    if (!offset) return LocalTime(reader, date, time) + fraction;
    return sys_days(date) + std::chrono::hours(time.hour) + std::chrono::minutes(time.minute) +
           std::chrono::seconds(time.second) - *offset + fraction;
}

std::variant<Duration, Timestamp> ParseDurationOrTime(std::string_view text) {
    if (const std::optional<Duration> duration = ReadDuration(text)) return *duration;
    const std::string_view year = text.substr(0, text.find('-'));
    if (year.size() == 4 && year.find_first_not_of("0123456789") == std::string_view::npos) {
        return ParseTime(text);
    }
    throw UsageError(
        Quoted(text) +
        " is neither a duration such as 2h30m, 90s or 1w nor a time such as 2026-01-31 "
        "or 2026-01-31T12:00:00+01:00");
}

std::string TimeText(std::int64_t seconds, bool utc) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    const bool is_known =
        utc ? gmtime_r(&time, &parts) != nullptr : localtime_r(&time, &parts) != nullptr;
    if (!is_known) return std::to_string(seconds);
    char text[64];
    std::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", &parts);
    if (utc) return std::string(text) + "Z";
    char zone[8];
    std::strftime(zone, sizeof(zone), "%z", &parts);
    return text + WithColon(zone);
}

}  // namespace vexortools
