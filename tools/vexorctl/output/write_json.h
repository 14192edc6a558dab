// The JSON formats.
#pragma once

#include <string>

#include "model/fault.h"
#include "output/cell_text.h"
#include "output/report.h"

namespace vexorctl {

/// The whole report: {"schema":"vexorctl/1","command":...,"items":[...],"errors":[...]}.
std::string JsonDocument(const Report& report, const Style& style);

/// One row as one line, without a line end.
std::string JsonLine(const Report& report, std::size_t row, const Style& style);

/// One fault as one line: {"error":{...}}.
std::string JsonFaultLine(const Fault& fault);

}  // namespace vexorctl
