// Prints what a command has found, in any of the formats.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/exit_code.h"
#include "output/cell.h"
#include "shell/command.h"

struct Style {
    std::string_view format = "table";
    bool header = true;
    bool bytes = false;
    bool si = false;
    bool utc = false;
    bool colour = false;
};

/// The style that the options ask for; `otherwise` is the format when they do not say.
Style StyleOf(const Invocation& invocation, std::string_view otherwise);

/// Picks and orders the columns and sorts the rows as the options say. Throws UsageError for a key
/// that is no column's.
void Arrange(const Invocation& invocation, const Style& style, Report& report);

/// Prints the report and one line on standard error for each fault. Throws OutputError.
void Print(const Report& report, const Style& style);

/// Prints the document of a command that ended early, with the fault in it, where a format for
/// scripts was asked for and no document was printed yet. The line on standard error is the
/// caller's.
void PrintEarlyEnd(const Invocation& invocation, const Fault& fault);

/// Prints rows that follow others of the same report: no heading again, no closing. For the formats
/// that can be continued, which `CanContinue` tells.
bool CanContinue(const Style& style);
void PrintMore(const Report& report, const Style& style, bool first);

/// Keeps the rows that the targets name (all when there are none), notes a fault for each target
/// that names none, and prints the rest. Rows are known by their columns "address", "name" and
/// "serial".
Exit Show(Invocation& invocation, Report report, std::string_view format);

/// Prints the report as it is, all its rows, with the controller's faults.
Exit Present(Invocation& invocation, Report report, std::string_view format);

/// Restricts the controller to the adapters that the targets and --adapter name.
void SelectAdapters(Invocation& invocation);

/// A size as tables show it.
std::string SizeText(std::uint64_t bytes, const Style& style);

/// ISO 8601 with the zone.
std::string TimeText(std::uint64_t seconds, bool utc);

/// A cell as tables show it.
std::string CellText(const ColumnInfo& column, const Cell& cell, const Style& style);
