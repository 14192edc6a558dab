// Tables, and lists of one field a line, for people.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "output/cell_text.h"
#include "output/report.h"

namespace vexorctl {

/// The columns of a table of at most the style's width: the one of Place::kSentence, those of
/// Place::kTable as long as they fit, those of Place::kIfRoom, and then as many of the others. One
/// at least.
std::vector<std::size_t> ColumnsThatFit(const Report& report, const Style& style);

/// A table whose rows come in pieces. They are kept as the texts that are shown, which take a
/// thirtieth of what their records and cells take, until the widths of all are known.
class GrowingTable {
public:
    /// Adds the report's rows. Each piece has the same columns.
    void Add(const Report& piece, const Style& style);
    /// Hands the table to `take`, a piece at a time.
    void Write(const Style& style, bool header,
               const std::function<void(std::string_view)>& take) const;

private:
    std::vector<ColumnInfo> columns_;
    std::vector<std::size_t> widths_;  // of the rows' texts
    std::vector<std::string> texts_;   // of each piece; a line end behind each cell's
};

/// Appends the rows as a table. Where the style has a width, a sentence that is the last column
/// goes on in further lines.
void WriteTable(const Report& report, const Style& style, bool header, std::string& out);

/// Appends the rows with each field on a line of its own; a blank line stands between two rows, and
/// before the first where other rows were written before.
void WriteList(const Report& report, const Style& style, bool first, std::string& out);

}  // namespace vexorctl
