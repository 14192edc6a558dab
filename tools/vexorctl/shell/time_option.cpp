#include "shell/time_option.h"

#include <algorithm>
#include <chrono>
#include <variant>

#include "common/duration.h"
#include "common/timestamp.h"

namespace vexorctl {

std::uint64_t SecondsSince1970(const std::string& text) {
    using vexortools::Duration;
    using vexortools::Timestamp;
    const auto typed = vexortools::ParseDurationOrTime(text);
    const auto* const ago = std::get_if<Duration>(&typed);
    const auto now = std::chrono::floor<Duration>(std::chrono::system_clock::now());
    const auto time = ago == nullptr ? std::get<Timestamp>(typed) : now - *ago;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch();
    return static_cast<std::uint64_t>(std::max<std::int64_t>(seconds.count(), 0));
}

}  // namespace vexorctl
