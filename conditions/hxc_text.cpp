// Numbers, times and sentences as texts.
#include "conditions/hxc_text.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace hxconditions {

namespace {

std::string DateText(std::int64_t seconds, char between, const char* zone) {
    using namespace std::chrono;
    const sys_seconds time{std::chrono::seconds(seconds)};
    const sys_days day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss clock{time - day};
    std::array<char, 64> text{};
    std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02u%c%02d:%02d:%02d%s", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), between,
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()), zone);
    return text.data();
}

// Calls take(text) for literal text and place(name) for each placeholder.
template <class Take, class Place>
void Walk(std::string_view text, Take take, Place place) {
    while (!text.empty()) {
        const std::size_t open = text.find('{');
        take(text.substr(0, open));
        if (open == std::string_view::npos) return;
        const std::size_t close = text.find('}', open);
        place(text.substr(open + 1, close - open - 1));
        text.remove_prefix(close + 1);
    }
}

}  // namespace

std::string Fill(std::string_view text, const Values& values) {
    std::string filled;
    Walk(
        text, [&](std::string_view part) { filled += part; },
        [&](std::string_view place) {
            const auto value = values.find(place);
            filled += value == values.end() ? "?" : value->second;
        });
    return filled;
}

std::vector<std::string> FillCommand(std::string_view command, const Values& values) {
    std::vector<std::string> words;
    while (!command.empty()) {
        const std::size_t end = command.find(' ');
        const std::string_view word = command.substr(0, end);
        bool known = true;
        Walk(
            word, [](std::string_view) {},
            [&](std::string_view place) {
                const auto value = values.find(place);
                known = known && value != values.end() && !value->second.empty();
            });
        if (!known) return {};
        words.push_back(Fill(word, values));
        command.remove_prefix(end == std::string_view::npos ? command.size() : end + 1);
    }
    return words;
}

std::string SizeText(std::uint64_t sectors) {
    constexpr const char* kUnits[] = {"KiB", "MiB", "GiB", "TiB", "PiB"};
    constexpr double kStep = 1024;
    constexpr double kFewDigits = 99.95;
    double size = static_cast<double>(sectors) / 2;
    std::size_t unit = 0;
    while (size >= kStep && unit + 1 < std::size(kUnits)) {
        size /= kStep;
        ++unit;
    }
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), size < kFewDigits ? "%.1f" : "%.0f", size);
    std::string number(text.data());
    if (number.ends_with(".0")) number.resize(number.size() - 2);
    return number + " " + kUnits[unit];
}

std::string DurationText(std::int64_t seconds) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 3600;
    constexpr std::int64_t kDay = 86400;
    if (seconds < 0) seconds = 0;
    if (seconds < kMinute) return std::to_string(seconds) + " s";
    if (seconds < kHour) return std::to_string(seconds / kMinute) + " min";
    if (seconds < 2 * kDay) return std::to_string(seconds / kHour) + " h";
    return std::to_string(seconds / kDay) + " days";
}

std::string TimeText(std::int64_t seconds) { return DateText(seconds, ' ', " UTC"); }

std::string IsoTimeText(std::int64_t seconds) { return DateText(seconds, 'T', "Z"); }

std::string Listed(const std::vector<std::string>& items) {
    constexpr std::size_t kMost = 4;
    constexpr std::size_t kWithMore = 3;
    const std::size_t named = items.size() > kMost ? kWithMore : items.size();
    std::string text;
    for (std::size_t i = 0; i < named; ++i) {
        const bool last = i + 1 == items.size();
        if (i > 0) text += last ? " and " : ", ";
        text += items[i];
    }
    if (named < items.size()) text += " and " + std::to_string(items.size() - named) + " more";
    return text;
}

std::string Shortened(std::string_view text, std::size_t most) {
    constexpr std::string_view kCut = "...";
    if (text.size() <= most) return std::string(text);
    std::size_t end = most < kCut.size() ? 0 : most - kCut.size();
    const auto continues = [&](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
    };
    while (end > 0 && continues(end)) --end;
    return std::string(text.substr(0, end)) + std::string(kCut);
}

}  // namespace hxconditions
