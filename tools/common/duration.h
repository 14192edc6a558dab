// Durations as people write them: 2h30m, 90s, 1w.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace vexortools {

using Duration = std::chrono::milliseconds;

/// Reads the sum of numbers with the units w, d, h, m, s and ms; a single number without a unit is
/// seconds. Null when the text does not have this form. Throws UsageError for a duration that a
/// Duration cannot hold.
std::optional<Duration> ReadDuration(std::string_view text);

/// The same; throws UsageError, with examples, when the text does not have this form.
Duration ParseDuration(std::string_view text);

/// The shortest text that ParseDuration reads as this duration, without weeks: 36h is 1d12h, zero
/// is 0s. The duration must not be negative.
std::string DurationText(Duration duration);

}  // namespace vexortools
