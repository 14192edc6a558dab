// Points in time as people and logs write them: 2026-01-31, 2026-01-31T12:00:00+01:00.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "common/duration.h"

namespace vexortools {

/// Since 1970, UTC.
using Timestamp = std::chrono::sys_time<std::chrono::milliseconds>;

/// Reads ISO 8601: a date (its first moment), or a date, a T or a blank, hours and minutes, and
/// optionally seconds with a fraction. Then may follow Z, UTC, +hh, +hhmm or +hh:mm; otherwise it
/// is local time. Throws UsageError, which names the error, for a text of another form, an
/// impossible date or time, and a local time that the clocks skipped.
Timestamp ParseTime(std::string_view text);

/// Reads a duration or a time. Throws UsageError.
std::variant<Duration, Timestamp> ParseDurationOrTime(std::string_view text);

/// Seconds since 1970 as ISO 8601 with the zone: 2026-01-31T12:00:00Z, or 2026-01-31T13:00:00+01:00
/// in local time. A time that the system's calendar cannot express stays a number of seconds.
std::string TimeText(std::int64_t seconds, bool utc);

}  // namespace vexortools
