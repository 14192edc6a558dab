// The JSON formats.
#pragma once

#include <string>

#include "model/fault.h"
#include "output/cell_text.h"
#include "output/report.h"

namespace vexorctl {

/// The whole report: {"schema":"vexorctl/1","command":...,"items":[...],"errors":[...]}. Where
/// --columns names the columns it also has "partial":true.
std::string JsonDocument(const Report& report, const Style& style);

/// One row as one line, without a line end: {"schema":"vexorctl/1","command":...,...}.
std::string JsonLine(const Report& report, std::size_t row, const Style& style);

/// One fault as one line: {"schema":"vexorctl/1","command":...,"error":{...}}.
std::string JsonFaultLine(const std::string& command, const Fault& fault);

}  // namespace vexorctl
