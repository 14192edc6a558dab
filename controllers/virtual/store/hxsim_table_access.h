// The tables of the state file as data: what each column holds of a row and how that is read and
// written, so that one loop serves all tables and columns.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "model/hxsim_machine.h"

namespace hxsim {

/// What stands in one column of one row. The bytes belong to the row or to the statement.
struct Cell {
    enum class Kind : std::uint8_t {
        kNothing,
        kInteger,
        kText,
        kBlob,
        kOther,  // nothing that a machine's rows hold
    };
    Kind kind = Kind::kNothing;
    std::int64_t integer = 0;
    std::string_view bytes{};
};

/// Integers by their values, texts and blobs by their bytes.
std::strong_ordering Compare(const Cell& one, const Cell& other);

/// One column of a table whose rows are in a Machine or an Adapter. Rows are counted from 0.
template <class Holder>
struct ColumnOf {
    const char* name;
    const char* type;  // in SQL
    Cell (*read)(const Holder& holder, std::size_t row);
    /// False, with nothing written, for what the member cannot hold.
    bool (*write)(Holder& holder, std::size_t row, const Cell& cell);
};

/// One table. Its first `keys` columns name a row among those of its holder.
template <class Holder>
struct TableOf {
    const char* name;
    std::size_t keys;
    std::span<const ColumnOf<Holder>> columns;
    std::size_t (*count)(const Holder& holder);
    void (*append)(Holder& holder);  // an empty row; null for a table that always has one row
};

/// The machine's own table and its clock's, of one row each, then those of the machine's lists.
std::span<const TableOf<Machine>> MachineTables();
/// Those of an adapter's lists.
std::span<const TableOf<Adapter>> AdapterTables();

}  // namespace hxsim
