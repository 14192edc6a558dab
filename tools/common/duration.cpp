#include "common/duration.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>

#include "common/failure.h"

namespace vexortools {

namespace {

struct DurationUnit {
    std::string_view name;
    std::uint64_t milliseconds;
};
constexpr DurationUnit kDurationUnits[] = {
    {"w", 604800000}, {"d", 86400000}, {"h", 3600000}, {"m", 60000}, {"s", 1000}, {"ms", 1},
};
constexpr std::uint64_t kLongest = Duration::max().count();

[[noreturn]] void ThrowTooLong(std::string_view text) {
    throw UsageError(Quoted(text) + " is too long a duration; the longest that can be counted is " +
                     std::to_string(kLongest / kDurationUnits[1].milliseconds) + "d");
}

// Takes the unit at the front of the text, up to the next digit; null when it is none. A number
// without a unit is seconds only when it is the whole text.
const DurationUnit* TakeUnit(std::string_view& text, bool is_first) {
    const std::string_view name =
        text.substr(0, std::min(text.find_first_of("0123456789"), text.size()));
    text.remove_prefix(name.size());
    const bool is_alone = is_first && text.empty();
    const auto* const unit = std::ranges::find(
        kDurationUnits, name.empty() && is_alone ? "s" : name, &DurationUnit::name);
    return unit == std::end(kDurationUnits) ? nullptr : unit;
}

}  // namespace

std::optional<Duration> ReadDuration(std::string_view text) {
    std::string_view rest = text;
    std::uint64_t sum = 0;
    // Throw only after reading the rest: the text may be no duration at all.
    bool is_too_long = false;
    do {
        std::uint64_t number = 0;
        const bool is_first = rest.size() == text.size();
        const auto [stop, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
        if (error == std::errc::invalid_argument) return std::nullopt;
        rest.remove_prefix(static_cast<std::size_t>(stop - rest.data()));
        const DurationUnit* const unit = TakeUnit(rest, is_first);
        if (unit == nullptr) return std::nullopt;
        is_too_long = is_too_long || error == std::errc::result_out_of_range ||
                      number > (kLongest - sum) / unit->milliseconds;
        if (!is_too_long) sum += number * unit->milliseconds;
    } while (!rest.empty());
    if (is_too_long) ThrowTooLong(text);
    return Duration(static_cast<Duration::rep>(sum));
}

Duration ParseDuration(std::string_view text) {
    if (const std::optional<Duration> duration = ReadDuration(text)) return *duration;
    throw UsageError(Quoted(text) + " is no duration; write one such as 2h30m, 90s or 1w");
}

std::string DurationText(Duration duration) {
    std::string text;
    auto rest = static_cast<std::uint64_t>(duration.count());
    for (const DurationUnit& unit : kDurationUnits) {
        if (unit.name == "w" || rest < unit.milliseconds) continue;
        text.append(std::to_string(rest / unit.milliseconds)).append(unit.name);
        rest %= unit.milliseconds;
    }
    return text.empty() ? "0s" : text;
}

}  // namespace vexortools
