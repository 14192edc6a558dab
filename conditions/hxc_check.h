// What a monitoring plugin prints: the first line with performance data, and the long output.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_overview.h"

namespace hxconditions {

inline constexpr std::size_t kLongestFirstLine = 240;         // bytes before the bar
inline constexpr std::size_t kLongestPerformanceData = 3000;  // bytes, of whole items

/// "CRITICAL: DATA (a0/vd0) has no redundancy left: ...; and 2 more".
std::string FirstLine(const Overview& overview, const Counts& counts);

/// "vds=2 vds_offline=0;;0 ...": items that are known, the worst virtual disk first.
std::string PerformanceData(const Answers& answers, const Overview& overview);

/// One line for each head, with its sentence (unless the first line has it whole), its folded ones
/// and its next step beneath it.
std::vector<std::string> LongOutput(const Overview& overview, std::string_view first_line);

/// "1 adapter, 2 virtual disks, ? disks".
std::string CountsText(const Counts& counts);

}  // namespace hxconditions
