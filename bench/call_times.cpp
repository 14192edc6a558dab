// How long a call of the built library takes, as its callers make it.
//
// usage: call_times COMMAND CALLS    prints the nanoseconds of the processor that
// one call takes, a mean of CALLS
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "vexorapi.h"

namespace {

char result[VEXORAPI_MAX_RESULT];

// In nanoseconds.
double ProcessorTime() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return 1e9 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec);
}

}  // namespace

int main(int argc, char** argv) {
    const long calls = argc == 3 ? std::strtol(argv[2], nullptr, 10) : 0;
    if (calls <= 0) {
        std::fputs("usage: call_times COMMAND CALLS\n", stderr);
        return 2;
    }
    vexorApiInit();
    const auto call = [&] { return vexorApi(argv[1], result, sizeof result) == 1; };
    bool is_taken = call();
    const double start = ProcessorTime();
    for (long i = 0; i < calls; ++i) is_taken = call() && is_taken;
    const double taken = ProcessorTime() - start;
    vexorApiShutdown();
    if (!is_taken || *result == '\0') {
        std::fputs("call_times: the library does not take the command\n", stderr);
        return 1;
    }
    std::printf("%.1f\n", taken / static_cast<double>(calls));
    return 0;
}
