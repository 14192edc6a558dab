// One look at everything as a screen of text.
#pragma once

#include <cstddef>
#include <string>

#include "codes/code_table.h"
#include "conditions/hxc_overview.h"
#include "model/health_answers.h"
#include "output/cell_text.h"

namespace vexorctl {

/// The width of text that goes to no terminal.
inline constexpr std::size_t kPipeWidth = 80;

/// The adapters, the enclosures and what is in their bays, the virtual disks, what goes on in the
/// background, and what needs attention, the worst first. No line is wider than the style's width.
std::string OverviewScreen(const MachineLook& look, const hxconditions::Overview& overview,
                           const hxcodes::CodeTable& codes, const Style& style);

}  // namespace vexorctl
