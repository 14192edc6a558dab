// Parses virtual time.
#pragma once

#include <string_view>

#include "common/duration.h"
#include "model/hxsim_clock.h"

namespace hxsimctl {

/// Throws UsageError for a duration of more than 36500 days, so that sums of durations stay within
/// Time.
hxsim::Time TimeSpanOf(vexortools::Duration duration);

/// A duration such as 2h30m, of at most 36500 days. Throws UsageError.
hxsim::Time ParseTimeSpan(std::string_view word);

}  // namespace hxsimctl
