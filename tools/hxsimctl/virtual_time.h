// Virtual time, as it is typed.
#pragma once

#include <string_view>

#include "common/duration.h"
#include "model/hxsim_clock.h"

namespace hxsimctl {

/// Refuses a duration of more than 36500 days, which keeps sums of durations far from the end of
/// Time. Throws UsageError.
hxsim::Time TimeSpanOf(vexortools::Duration duration);

/// A duration such as 2h30m, of at most 36500 days. Throws UsageError.
hxsim::Time ParseTimeSpan(std::string_view word);

}  // namespace hxsimctl
