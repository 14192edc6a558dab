// What one field of one object holds, and what a column of such fields is called. The columns of a
// noun stand in one table each; every output format, --help, the manual pages and the JSON schema
// are made from it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codes/code_table.h"
#include "codes/named.h"

namespace vexorctl {

/// How a field is written. In JSON kBytes, kNumber and kRatio are numbers; kCode and kBits are
/// objects that keep the number beside the name.
enum class Kind {
    kText,
    kNumber,
    kBool,
    kBytes,    // a size; GiB in tables
    kRatio,    // 0 to 1; percent in tables
    kTime,     // seconds since 1970; ISO 8601 everywhere
    kCode,     // a number with a name
    kBits,     // a number whose bits have names
    kTexts,    // a list of texts
    kNumbers,  // a list of numbers
};

struct Cell {
    enum class State {
        kUnknown,  // it should be there and could not be read; "?" for people
        kNone,     // there is nothing to know; "-" for people
        kKnown,
    };
    State state = State::kUnknown;
    std::uint64_t number = 0;
    double ratio = 0;
    std::string text;
    std::vector<std::string> texts;
    std::vector<std::uint64_t> numbers;

    bool IsKnown() const { return state == State::kKnown; }
};

Cell Unknown();
Cell None();

// Makers, one for each kind. What is null is unknown.
Cell TextCell(std::optional<std::string> text);
Cell NumberCell(
    std::optional<std::uint64_t> number);  // kNumber, kBool, kBytes, kTime, kCode, kBits
Cell SectorsCell(std::optional<std::uint64_t> sectors);
Cell PercentCell(std::optional<std::uint64_t> percent);  // kRatio
Cell TextsCell(std::optional<std::vector<std::string>> texts);
Cell NumbersCell(std::optional<std::vector<std::uint64_t>> numbers);
/// A code of vexorctl's own; those of the controller get their names by their column.
Cell CodeCell(std::span<const hxcodes::Named> names, std::uint64_t code);

/// Where a column is shown without being asked for. Everything but the table shows all of them.
enum class Place {
    kTable,
    kSentence,  // in tables as well, as the last of their columns; it may take several lines
    kWide,
};

/// The names of a kCode or kBits in the table of codes.
using CodeNames = std::span<const hxcodes::Named> hxcodes::CodeTable::*;

struct ColumnInfo {
    std::string_view key;     // in JSON, in --columns and --sort; with its unit
    std::string_view header;  // in tables
    Kind kind;
    Place place;
    std::string_view help;
    CodeNames names = nullptr;
};

template <class Record>
struct Column : ColumnInfo {
    Cell (*get)(const Record&);
};

/// Puts the names of the codes into a cell of the column.
void NameCodes(const ColumnInfo& column, const hxcodes::CodeTable& codes, Cell& cell);

}  // namespace vexorctl
