#include "shell/percent_rate.h"

#include <algorithm>

namespace vexorctl {

void PercentRate::Take(std::uint64_t percent, Clock::time_point now) {
    if (seen_ && percent < *seen_) first_ = last_ = std::nullopt;  // it has started again
    if (seen_ && percent > *seen_) {
        last_ = Change{percent, now};
        if (!first_) first_ = last_;
    }
    seen_ = percent;
}

std::optional<double> PercentRate::PerSecond() const {
    if (!first_ || last_->percent == first_->percent) return std::nullopt;
    const double seconds = std::chrono::duration<double>(last_->time - first_->time).count();
    if (seconds <= 0) return std::nullopt;
    return static_cast<double>(last_->percent - first_->percent) / seconds;
}

std::optional<double> PercentRate::SecondsLeft(Clock::time_point now) const {
    const std::optional<double> rate = PerSecond();
    if (!rate) return std::nullopt;
    const double left = static_cast<double>(100 - std::min<std::uint64_t>(last_->percent, 100));
    const double since = std::chrono::duration<double>(now - last_->time).count();
    return std::max(left / *rate - since, 0.0);
}

}  // namespace vexorctl
