// What the benches share: the loop that measures, the check that both sides of a ratio do the same,
// and the commands and records that they work on.
#pragma once

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <string>
#include <string_view>
#include <vector>

#include "hxraid.h"

namespace bench {

/// As the command tool sends it: a request with two parameters, as most are, and a status as its
/// whole result.
inline constexpr std::string_view kSmallRequest =
    "<HX_PD_FreeHD2GlobalSpare type=\"function\"><AdapterID>0</AdapterID><HD_ID>11</HD_ID>"
    "</HX_PD_FreeHD2GlobalSpare>";

/// A request without parameters, for which the controller is asked a single number.
inline constexpr std::string_view kSmallestRequest =
    "<HX_Adapter_GetCount type=\"function\"></HX_Adapter_GetCount>";

/// A command of `bytes` bytes or a few more: parameters, one a line, over and over.
std::string LongCommand(std::size_t bytes);

/// The request for a list of `disks` disks.
std::string DiskListCommand(unsigned disks);

/// An adapter with all its ports, as a controller tells it.
Adapter_Info SampleAdapter();

/// Disks behind an expander, no two the same.
std::vector<HD_Info> SampleDisks(unsigned count);

/// Disk groups of eight disks with two virtual disks each; most of their arrays is unused.
std::vector<DG_Info> SampleDiskGroups(unsigned count);

/// Scripts the controller: two adapters, whose disks are `SampleDisks(400)`. Calls are not noted.
void PrepareController();

/// Ends the program when the two sides of a ratio have not written the same text.
void RequireSame(const char* what, std::string_view ours, std::string_view theirs);

/// The pages that the process has had mapped in so far.
inline long PageFaults() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

/// Does `work` once an iteration and counts the page faults of one.
template <class Work>
void Measure(benchmark::State& state, Work work) {
    const long before = PageFaults();
    for ([[maybe_unused]] auto iteration : state) work();
    const auto faults = static_cast<double>(PageFaults() - before);
    state.counters["page_faults"] = benchmark::Counter(faults, benchmark::Counter::kAvgIterations);
}

}  // namespace bench
