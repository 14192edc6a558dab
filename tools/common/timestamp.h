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

/// Reads ISO 8601: a date (its first moment), or a date and, behind a T or a blank, hours and
/// minutes and perhaps seconds and a fraction of them. Behind these Z, UTC, +hh, +hhmm or +hh:mm;
/// without one it is local time. Throws UsageError, which names what is wrong, for a text of
/// another form, a date or time that does not exist, and a local time that the clocks skipped.
Timestamp ParseTime(std::string_view text);

/// Reads either of the two. Throws UsageError.
std::variant<Duration, Timestamp> ParseDurationOrTime(std::string_view text);

/// Seconds since 1970 as ISO 8601 with the zone: 2026-01-31T12:00:00Z, or 2026-01-31T13:00:00+01:00
/// in local time. What the system's calendar does not reach stays a number of seconds.
std::string TimeText(std::int64_t seconds, bool utc);

}  // namespace vexortools
