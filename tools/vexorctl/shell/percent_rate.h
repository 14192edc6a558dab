// How fast a percentage grows, as seen from outside.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace vexorctl {

/// Measures from one change of the whole number to another: between two changes it has grown by
/// exactly the difference, while the first look comes anywhere between them.
class PercentRate {
public:
    using Clock = std::chrono::steady_clock;

    void Take(std::uint64_t percent, Clock::time_point now);

    /// Percent a second; null before two changes were seen.
    std::optional<double> PerSecond() const;
    /// From now to 100 percent.
    std::optional<double> SecondsLeft(Clock::time_point now) const;

private:
    struct Change {
        std::uint64_t percent;
        Clock::time_point time;
    };
    std::optional<std::uint64_t> seen_;
    std::optional<Change> first_, last_;
};

}  // namespace vexorctl
