// Prints what a command has found as its options say: which rows and columns, in which order and
// format.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "codes/code_table.h"
#include "model/exit_code.h"
#include "model/fault.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/report.h"
#include "output/write_table.h"
#include "shell/invocation.h"

namespace vexorctl {

/// The style that the options ask for; `otherwise` is the format when they do not say.
Style StyleOf(const Invocation& invocation, std::string_view otherwise);

/// A report of the records, whose codes get the names that the controller's codes have.
template <class Record, std::size_t n>
Report Tabulated(Invocation& invocation, const Column<Record> (&columns)[n],
                 const std::vector<Record>& records) {
    // A report without codes does not need the controller's identity.
    const bool has_codes = std::ranges::any_of(
        columns, [](const ColumnInfo& column) { return column.names != nullptr; });
    Report report{.command = invocation.row().Name(), .columns = {}, .rows = {}, .faults = {}};
    Tabulate(report, columns, records,
             has_codes ? invocation.controller().codes().table() : hxcodes::NoCodes());
    return report;
}

/// Picks and orders the columns and sorts the rows as the options say. Throws UsageError for a key
/// that is no column's.
void Arrange(const Invocation& invocation, const Style& style, Report& report);

/// One line on standard error for each.
void ReportFaults(const std::vector<Fault>& faults);

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
/// "serial". Where no format is named, verbs print tables, and "show" a list.
Exit Show(Invocation& invocation, Report report, std::string_view format = {});

/// Prints the report as it is, all its rows, with the controller's faults.
Exit Present(Invocation& invocation, Report report, std::string_view format = "table");

/// Prints a report whose rows come in pieces, so that a long one is never held as a whole. Formats
/// that go on line by line are printed as they come, and of a table the texts are kept; everything
/// else (a JSON or XML document, rows to be sorted, a table that is to fit on a terminal) has to be
/// collected all the same.
class PiecewiseReport {
public:
    explicit PiecewiseReport(Invocation& invocation);
    /// Prints or keeps the rows. At least one piece is needed, which may be without rows.
    void Add(Report piece);
    /// Prints what was kept, and the controller's faults.
    Exit End();

private:
    Invocation& invocation_;
    Style style_;
    bool is_whole_;  // whether the pieces are collected
    bool first_ = true;
    Report whole_;
    GrowingTable table_;
};

/// Restricts the controller to the adapters that the targets and --adapter name.
void SelectAdapters(Invocation& invocation);

}  // namespace vexorctl
