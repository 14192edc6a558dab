// The random generator for serial numbers and similar values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace hxsim {

/// The next number of the generator splitmix64. Its whole state is one number (Machine::random),
/// which starts as the machine's seed.
constexpr std::uint64_t Draw(std::uint64_t& state) {
    state += 0x9E3779B97F4A7C15;
    std::uint64_t drawn = state;
    drawn = (drawn ^ drawn >> 30) * 0xBF58476D1CE4E5B9;
    drawn = (drawn ^ drawn >> 27) * 0x94D049BB133111EB;
    return drawn ^ drawn >> 31;
}

/// A serial number: the prefix of its series and `digits` random digits.
inline std::string DrawSerial(std::uint64_t& state, std::string_view series, unsigned digits) {
    // Without the letters I and O, which look like digits.
    constexpr std::string_view kDigits = "0123456789ABCDEFGHJKLMNPQRSTUVWXYZ";
    std::string serial(series);
    std::uint64_t drawn = Draw(state);
    for (unsigned i = 0; i < digits; ++i) {
        serial += kDigits[static_cast<std::size_t>(drawn % kDigits.size())];
        drawn /= kDigits.size();
    }
    return serial;
}

}  // namespace hxsim
