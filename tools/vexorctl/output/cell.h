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

/// How a field is written. In JSON kBytes, kRate, kSeconds, kNumber and kRatio are numbers; kCode
/// and kBits are objects that keep the number beside the name. The JSON schema says what each of
/// them can be.
enum class Kind {
    kText,
    kAddress,    // of the object that the row is about, which is always known: "a0/vd1"
    kReference,  // the address of another object
    kHex,        // bytes as hexadecimal digits
    kWord,       // one of the words that the column lists
    kNumber,
    kBool,
    kBytes,      // a size in whole sectors; GiB in tables
    kRate,       // bytes per second
    kSeconds,    // a duration; with units and rounded in tables
    kRatio,      // 0 to 1; percent in tables
    kTime,       // seconds since 1970; ISO 8601 everywhere
    kCode,       // a number with a name
    kBits,       // a number whose bits have names
    kTexts,      // a list of texts that hold no comma
    kSentences,  // a list of texts that may hold anything; a line each in csv
    kAddresses,  // a list of addresses
    kNumbers,    // a list of numbers
    kSizes,      // a list of sizes
    kItems,      // a list of objects, whose fields the column describes
};

/// Whether a cell of the kind has its value in `text`, or in `texts`.
constexpr bool IsText(Kind kind) {
    return kind == Kind::kText || kind == Kind::kAddress || kind == Kind::kReference ||
           kind == Kind::kHex || kind == Kind::kWord;
}
constexpr bool IsTexts(Kind kind) {
    return kind == Kind::kTexts || kind == Kind::kSentences || kind == Kind::kAddresses;
}

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
    std::vector<std::vector<Cell>> items;

    bool IsKnown() const { return state == State::kKnown; }
};

Cell Unknown();
Cell None();

// Makers, one for each kind. What is null is unknown, and an empty text is none.
Cell TextCell(std::optional<std::string> text);
Cell NumberCell(std::optional<std::uint64_t>
                    number);  // kNumber, kBool, kBytes, kRate, kSeconds, kTime, kCode, kBits
Cell SectorsCell(std::optional<std::uint64_t> sectors);
Cell PercentCell(std::optional<std::uint64_t> percent);  // kRatio
Cell TextsCell(std::optional<std::vector<std::string>> texts);
Cell NumbersCell(std::optional<std::vector<std::uint64_t>> numbers);
Cell ItemsCell(std::vector<std::vector<Cell>> items);
/// A code of vexorctl's own; those of the controller get their names by their column.
Cell CodeCell(std::span<const hxcodes::Named> names, std::uint64_t code);

/// Where a column is shown without being asked for. Everything but the table shows all of them.
enum class Place {
    kTable,
    kIfRoom,    // in tables as well, and the first that is left out where not all have room
    kSentence,  // in tables as well, as the last of their columns; it may take several lines
    kWide,
};

/// The names of a kCode or kBits in the table of codes.
using CodeNames = std::span<const hxcodes::Named> hxcodes::CodeTable::*;

/// All that a kWord can be.
using Words = std::vector<std::string_view> (*)();

struct ColumnInfo {
    std::string_view key;     // in JSON, in --columns and --sort; with its unit
    std::string_view header;  // in tables
    Kind kind;
    Place place;
    std::string_view help;
    CodeNames names = nullptr;
    Words words = nullptr;
    std::span<const ColumnInfo> parts{};  // of a kItems
    bool always = false;                  // it is never null
};

/// The column as one whose value vexorctl always knows.
constexpr ColumnInfo Always(ColumnInfo column) {
    column.always = true;
    return column;
}
constexpr ColumnInfo OneOf(Words words, ColumnInfo column) {
    column.words = words;
    return column;
}
constexpr ColumnInfo Of(std::span<const ColumnInfo> parts, ColumnInfo column) {
    column.parts = parts;
    return column;
}

template <class Record>
struct Column : ColumnInfo {
    Cell (*get)(const Record&);
};

/// Puts the names of the codes into a cell of the column.
void NameCodes(const ColumnInfo& column, const hxcodes::CodeTable& codes, Cell& cell);

}  // namespace vexorctl
