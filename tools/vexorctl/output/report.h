// What a command has found: the columns, a row of cells for each object, and what went wrong.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "codes/code_table.h"
#include "model/fault.h"
#include "output/cell.h"

namespace vexorctl {

/// What a command has found.
struct Report {
    std::string command;  // "disk list"
    std::vector<ColumnInfo> columns;
    std::vector<std::vector<Cell>> rows;
    std::vector<Fault> faults;
    std::string more{};    // further keys of the JSON document, as an object
    bool partial = false;  // only the columns that --columns names are there
};

template <class Record, std::size_t n>
std::vector<ColumnInfo> InfoOf(const Column<Record> (&columns)[n]) {
    return {std::begin(columns), std::end(columns)};
}

/// Makes the columns, and a row of each record, whose codes get the names of the table.
template <class Record, std::size_t n>
void Tabulate(Report& report, const Column<Record> (&columns)[n],
              const std::vector<Record>& records, const hxcodes::CodeTable& codes) {
    report.columns = InfoOf(columns);
    for (const Record& record : records) {
        std::vector<Cell>& row = report.rows.emplace_back();
        row.reserve(n);
        for (const Column<Record>& column : columns) {
            row.push_back(column.get(record));
            NameCodes(column, codes, row.back());
        }
    }
}

/// Leaves the columns of these indices, in this order.
inline void KeepColumns(Report& report, const std::vector<std::size_t>& kept) {
    const auto keep = [&](auto& cells) {
        std::remove_reference_t<decltype(cells)> left;
        for (const std::size_t i : kept) left.push_back(cells[i]);
        cells = std::move(left);
    };
    keep(report.columns);
    for (std::vector<Cell>& row : report.rows) keep(row);
}

}  // namespace vexorctl
