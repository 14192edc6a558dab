#include "model/duration.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string>

namespace vexorctl {

namespace {

struct Unit {
    std::string_view name;
    std::uint64_t factor;
};
constexpr Unit kTimes[] = {{"", 1}, {"s", 1}, {"m", 60}, {"h", 3600}, {"d", 86400}};
constexpr Unit kSizes[] = {
    {"", 1},
    {"B", 1},
    {"kB", 1000},
    {"MB", 1000000},
    {"GB", 1000000000},
    {"TB", 1000000000000},
    {"KiB", 1024},
    {"MiB", 1024 * 1024},
    {"GiB", 1024 * 1024 * 1024},
    {"TiB", std::uint64_t{1} << 40},
};

}  // namespace

std::optional<std::uint64_t> ParseDuration(std::string_view text) {
    std::uint64_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    const std::string_view name = text.substr(static_cast<std::size_t>(stop - text.data()));
    for (const Unit& unit : kTimes) {
        if (unit.name == name && number <= UINT64_MAX / unit.factor) return number * unit.factor;
    }
    return std::nullopt;
}

std::optional<std::uint64_t> ParseTime(std::string_view text) {
    std::tm parts{};
    char zone = 0;
    int used = 0;
    const std::string copy(text);
    const int fields = std::sscanf(copy.c_str(), "%4d-%2d-%2d%n", &parts.tm_year, &parts.tm_mon,
                                   &parts.tm_mday, &used);
    if (fields != 3) return std::nullopt;
    std::string rest = copy.substr(static_cast<std::size_t>(used));
    if (!rest.empty()) {
        used = 0;
        if (std::sscanf(rest.c_str(), "T%2d:%2d:%2d%n", &parts.tm_hour, &parts.tm_min,
                        &parts.tm_sec, &used) != 3) {
            return std::nullopt;
        }
        rest.erase(0, static_cast<std::size_t>(used));
        if (rest == "Z") zone = 'Z';
        if (!rest.empty() && zone == 0) return std::nullopt;
    }
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    parts.tm_isdst = -1;
    const std::time_t time = zone == 'Z' ? timegm(&parts) : std::mktime(&parts);
    if (time < 0) return std::nullopt;
    return static_cast<std::uint64_t>(time);
}

std::optional<std::uint64_t> ParseSize(std::string_view text) {
    double number = 0;
    const auto [stop, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (error != std::errc() || !(number >= 0)) return std::nullopt;
    const std::string_view name = text.substr(static_cast<std::size_t>(stop - text.data()));
    for (const Unit& unit : kSizes) {
        if (unit.name != name) continue;
        const double bytes = number * static_cast<double>(unit.factor);
        if (bytes >= 9e18) return std::nullopt;
        return static_cast<std::uint64_t>(std::llround(bytes));
    }
    return std::nullopt;
}

}  // namespace vexorctl
