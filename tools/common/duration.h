// Durations as people write them: 2h30m, 90s, 1w.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace vexortools {

using Duration = std::chrono::milliseconds;

/// Numbers with the units w, d, h, m, s and ms, one behind the other, added up; a number that
/// stands alone is seconds. Null when the text is not of this form. Throws UsageError for a
/// duration that is longer than a Duration can hold.
std::optional<Duration> ReadDuration(std::string_view text);

/// The same; throws UsageError, with examples, when the text is not of this form.
Duration ParseDuration(std::string_view text);

/// The shortest text that ParseDuration reads as this duration, without weeks: 36h is 1d12h, none
/// is 0s. It must not be negative.
std::string DurationText(Duration duration);

}  // namespace vexortools
