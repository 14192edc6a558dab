// Comma-separated values.
#pragma once

#include <string>

#include "output/cell_text.h"
#include "output/report.h"

namespace vexorctl {

/// Appends the rows, a line each, below the keys of the columns when `header` says so.
void WriteCsv(const Report& report, const Style& style, bool header, std::string& out);

}  // namespace vexorctl
