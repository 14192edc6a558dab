// How a cell is written where people or scripts read it as text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "output/cell.h"

namespace vexorctl {

struct Style {
    std::string_view format = "table";
    bool header = true;
    bool formulas = true;  // csv cells may begin as formulas of spreadsheets do
    bool bytes = false;
    bool si = false;
    bool utc = false;
    bool colour = false;
    std::size_t width = 0;  // of the terminal that a table is for; 0: no limit
};

/// A size as tables show it.
std::string SizeText(std::uint64_t bytes, const Style& style);

/// The same of sectors in a sentence.
std::string SectorsText(std::optional<std::uint64_t> sectors);

/// A text in a sentence; "?" when it is unknown.
std::string Shown(const std::optional<std::string>& text);

/// A cell as tables show it: "?" when it is unknown, and empty when there is nothing to know.
std::string CellText(const ColumnInfo& column, const Cell& cell, const Style& style);

/// A cell as scripts take it: sizes as whole bytes, ratios unrounded, no units.
std::string PlainText(const ColumnInfo& column, const Cell& cell, const Style& style);

/// The texts with `between` between them.
std::string Joined(const std::vector<std::string>& texts, std::string_view between);

}  // namespace vexorctl
