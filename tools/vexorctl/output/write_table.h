// Tables, and lists of one field a line, for people.
#pragma once

#include <string>

#include "output/cell_text.h"
#include "output/report.h"

namespace vexorctl {

/// Appends the rows as a table.
void WriteTable(const Report& report, const Style& style, bool header, std::string& out);

/// Appends the rows with each field on a line of its own; a blank line stands between two rows, and
/// before the first where other rows were written before.
void WriteList(const Report& report, const Style& style, bool first, std::string& out);

}  // namespace vexorctl
