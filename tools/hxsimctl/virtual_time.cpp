#include "virtual_time.h"

#include <chrono>

#include "failure.h"

namespace hxsimctl {

hxsim::Time TimeSpanOf(vexortools::Duration duration) {
    constexpr std::chrono::days kLongest(36500);
    if (duration > kLongest) {
        throw UsageError(vexortools::DurationText(duration) +
                         " are too long; let at most 36500 days pass at once");
    }
    return duration.count();
}

hxsim::Time ParseTimeSpan(std::string_view word) {
    return TimeSpanOf(vexortools::ParseDuration(word));
}

}  // namespace hxsimctl
