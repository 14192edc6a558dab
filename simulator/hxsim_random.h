// The generator that serial numbers and the like are drawn from.
#ifndef HXSIM_RANDOM_H
#define HXSIM_RANDOM_H

#include <cstdint>

namespace hxsim {

/// The next number of the generator splitmix64, whose whole state is one number, as a machine keeps
/// it (Machine::random). It begins with the machine's seed.
constexpr std::uint64_t Draw(std::uint64_t& state) {
    state += 0x9E3779B97F4A7C15;
    std::uint64_t drawn = state;
    drawn = (drawn ^ drawn >> 30) * 0xBF58476D1CE4E5B9;
    drawn = (drawn ^ drawn >> 27) * 0x94D049BB133111EB;
    return drawn ^ drawn >> 31;
}

}  // namespace hxsim

#endif
