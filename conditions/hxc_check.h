// The output of a monitoring plugin: the first line, performance data and long output.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_overview.h"

namespace hxconditions {

inline constexpr std::size_t kLongestFirstLine = 240;         // bytes before the "|"
inline constexpr std::size_t kLongestPerformanceData = 3000;  // bytes, of whole items

/// "CRITICAL: DATA (a0/vd0) has no redundancy left: ...; and 2 more".
std::string FirstLine(const Overview& overview, const Counts& counts);

/// "vds=2 vds_offline=0;;0 ...": only known items, the worst virtual disk first.
std::string PerformanceData(const Answers& answers, const Overview& overview);

/// For each head a line with its sentence (unless the first line contains it completely), then its
/// folded conditions and its next step.
std::vector<std::string> LongOutput(const Overview& overview, std::string_view first_line);

/// "1 adapter, 2 virtual disks, ? disks".
std::string CountsText(const Counts& counts);

}  // namespace hxconditions
