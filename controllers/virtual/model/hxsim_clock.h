// Virtual time, as it follows from real time.
#pragma once

#include <cstdint>

namespace hxsim {

using Time = std::int64_t;  // milliseconds of virtual time since 1970-01-01 00:00 UTC

inline constexpr Time kNever = INT64_MAX;

/// Virtual time: it was `start` at the real time `real` and advances `speed` virtual milliseconds
/// for each real one. With speed 0 the clock stands still.
struct Clock {
    Time start = 0;
    Time real = 0;  // milliseconds of real time since 1970
    std::int64_t speed = 1;
};

/// The virtual time at a real time. Saturates at the ends of Time instead of wrapping.
Time Now(const Clock& clock, Time real);

/// Real time now, in milliseconds since 1970-01-01 00:00 UTC.
Time RealNow();

/// The real time at which the clock will show `time`; kNever when it stands still.
Time RealTimeOf(const Clock& clock, Time time);

}  // namespace hxsim
