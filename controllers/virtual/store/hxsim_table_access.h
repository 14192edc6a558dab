// The tables of the state file as data: each column with functions to read and write its value, so
// that one loop serves all tables and columns.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "model/hxsim_machine.h"

namespace hxsim {

/// The value of one column of one row. The bytes belong to the row or to the statement.
struct Cell {
    enum class Kind : std::uint8_t {
        kNothing,
        kInteger,
        kText,
        kBlob,
        kOther,  // a type that no column has
    };
    Kind kind = Kind::kNothing;
    std::int64_t integer = 0;
    std::string_view bytes{};
};

/// Compares integers by value, texts and blobs by their bytes.
std::strong_ordering Compare(const Cell& one, const Cell& other);

/// One column of a table whose rows are in a Machine or an Adapter. Rows are counted from 0.
template <class Holder>
struct ColumnOf {
    const char* name;
    const char* type;  // in SQL
    Cell (*read)(const Holder& holder, std::size_t row);
    /// Returns false and writes nothing when the member cannot hold the value.
    bool (*write)(Holder& holder, std::size_t row, const Cell& cell);
};

/// One table. Its first `keys` columns are the key within its holder.
template <class Holder>
struct TableOf {
    const char* name;
    std::size_t keys;
    std::span<const ColumnOf<Holder>> columns;
    std::size_t (*count)(const Holder& holder);
    void (*append)(Holder& holder);  // an empty row; null for a table that always has one row
};

/// The tables of the machine itself and its clock, with one row each, then those of its lists.
std::span<const TableOf<Machine>> MachineTables();
/// The tables of an adapter's lists.
std::span<const TableOf<Adapter>> AdapterTables();

}  // namespace hxsim
