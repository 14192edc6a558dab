// What one field of one object holds, and what a column of such fields is called. The columns of a
// noun stand in one table each; every output format, --help, the manual pages and the JSON schema
// are made from it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace hxcodes {
struct Named;
}

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
    bool known = false;  // null otherwise
    std::uint64_t number = 0;
    double ratio = 0;
    std::string text;
    std::vector<std::string> texts;
    std::vector<std::uint64_t> numbers;
};

// Makers, one for each kind.
Cell Unknown();
Cell TextCell(std::string text);
Cell NumberCell(std::uint64_t number);  // kNumber, kBool, kBytes, kTime
Cell SectorsCell(std::uint64_t sectors);
Cell RatioCell(double ratio);
Cell CodeCell(std::span<const hxcodes::Named> names, std::uint64_t code);
Cell BitsCell(std::span<const hxcodes::Named> names, std::uint64_t bits);
Cell TextsCell(std::vector<std::string> texts);
Cell NumbersCell(std::vector<std::uint64_t> numbers);

/// Where a column is shown without being asked for. Everything but the table shows all of them.
enum class Place { kTable, kWide };

struct ColumnInfo {
    std::string_view key;     // in JSON, in --columns and --sort; with its unit
    std::string_view header;  // in tables
    Kind kind;
    Place place;
    std::string_view help;
};

template <class Record>
struct Column : ColumnInfo {
    Cell (*get)(const Record&);
};

}  // namespace vexorctl
