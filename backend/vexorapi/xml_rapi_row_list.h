// A list of rows of different types, in their order.
//
// Not std::tuple: choosing among its constructors took compilers four seconds and half a gigabyte
// for the rows of all functions, which take half a second here.
#pragma once

#include <cstddef>
#include <utility>

/// One row at its position.
template <std::size_t i, class Row>
struct RowCell {
    Row row;
};

template <class Positions, class... Row>
struct RowCells;
template <std::size_t... i, class... Row>
struct RowCells<std::index_sequence<i...>, Row...> : RowCell<i, Row>... {
    constexpr explicit RowCells(const Row&... row) : RowCell<i, Row>{row}... {}

    /// Calls `use` with all rows.
    template <class Use>
    constexpr decltype(auto) Apply(const Use& use) const {
        return use(this->RowCell<i, Row>::row...);
    }
};
template <>
struct RowCells<std::index_sequence<>> {
    template <class Use>
    constexpr decltype(auto) Apply(const Use& use) const {
        return use();
    }
};

template <class... Row>
using RowList = RowCells<std::index_sequence_for<Row...>, Row...>;

/// The row at position `i`: a list is a RowCell of each position.
template <std::size_t i, class Row>
constexpr const Row& RowAt(const RowCell<i, Row>& cell) {
    return cell.row;
}
