// Virtual time, as it follows from real time.
#include "model/hxsim_clock.h"

#include <ctime>

namespace hxsim {
namespace {

// A clock that was set far ahead or runs very fast saturates instead of wrapping.
Time Plus(Time time, Time more) {
    Time sum = 0;
    if (!__builtin_add_overflow(time, more, &sum)) return sum;
    return more > 0 ? INT64_MAX : INT64_MIN;
}

Time Minus(Time time, Time less) {
    Time difference = 0;
    if (!__builtin_sub_overflow(time, less, &difference)) return difference;
    return less < 0 ? INT64_MAX : INT64_MIN;
}

// Neither number is negative.
Time Times(Time time, Time factor) {
    Time product = 0;
    return __builtin_mul_overflow(time, factor, &product) ? INT64_MAX : product;
}

}  // namespace

Time Now(const Clock& clock, Time real) {
    // A real clock that is set back never makes virtual time earlier than the start.
    const Time passed = Minus(real, clock.real);
    if (passed <= 0 || clock.speed <= 0) return clock.start;
    return Plus(clock.start, Times(passed, clock.speed));
}

Time RealNow() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return Time{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

Time RealTimeOf(const Clock& clock, Time time) {
    if (clock.speed <= 0 || time == kNever) return kNever;
    if (time <= clock.start) return clock.real;
    const Time wait = Minus(time, clock.start);
    return Plus(clock.real, wait / clock.speed + (wait % clock.speed != 0));
}

}  // namespace hxsim
