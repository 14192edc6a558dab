// Tables, and lists of one field a line, for people.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "output/cell_text.h"
#include "output/report.h"

namespace vexorctl {

/// The columns of a table of at most the style's width: the one of Place::kSentence, those of
/// Place::kTable as long as they fit, and then as many of the others. One at least.
std::vector<std::size_t> ColumnsThatFit(const Report& report, const Style& style);

/// Appends the rows as a table. Where the style has a width, a sentence that is the last column
/// goes on in further lines.
void WriteTable(const Report& report, const Style& style, bool header, std::string& out);

/// Appends the rows with each field on a line of its own; a blank line stands between two rows, and
/// before the first where other rows were written before.
void WriteList(const Report& report, const Style& style, bool first, std::string& out);

}  // namespace vexorctl
