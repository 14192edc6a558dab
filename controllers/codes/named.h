// The base of every table of codes: rows of a code and its name, and the checks of such tables.
//
// The codes are those of our own controllers. Another controller's may differ, so programs print
// the number beside the name, or alone without a name. Rows stand in the order of their codes.
// Names are lower case with underscores, for use in scripts, and never change.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

#include "hxraid.h"

namespace hxcodes {

template <class Code>
concept CodeEnum = std::is_enum_v<Code>;

/// The number of a code, as records contain it.
template <CodeEnum Code>
constexpr auto NumberOf(Code code) {
    return static_cast<std::underlying_type_t<Code>>(code);
}
constexpr HX_U32 NumberOf(HX_U32 code) { return code; }

/// A record's number can be compared with a code; only ToCode converts it to one.
template <std::integral Number, CodeEnum Code>
constexpr bool operator==(Number number, Code code) {
    return std::cmp_equal(number, NumberOf(code));
}

/// Whether the codes of an enumeration are bits that records combine. Specialised beside such
/// enumerations.
template <class Code>
inline constexpr bool kAreBits = false;
template <class Code>
concept BitEnum = CodeEnum<Code> && kAreBits<Code>;

template <BitEnum Bit>
constexpr auto operator|(Bit one, Bit other) {
    return static_cast<std::underlying_type_t<Bit>>(NumberOf(one) | NumberOf(other));
}
template <std::unsigned_integral Number, BitEnum Bit>
constexpr Number operator|(Number number, Bit bit) {
    return static_cast<Number>(number | NumberOf(bit));
}
template <std::unsigned_integral Number, BitEnum Bit>
constexpr Number& operator|=(Number& number, Bit bit) {
    return number = number | bit;
}
template <std::unsigned_integral Number, BitEnum Bit>
constexpr Number operator&(Number number, Bit bit) {
    return static_cast<Number>(number & NumberOf(bit));
}

/// A code and its name. Tables with larger rows provide these by NamesFrom.
struct Named {
    HX_U32 code;
    std::string_view name;

    constexpr Named(HX_U32 number, std::string_view text) : code(number), name(text) {}
    template <CodeEnum Code>
    constexpr Named(Code number, std::string_view text) : code(NumberOf(number)), name(text) {}
};

/// The codes and names of larger rows.
template <class Row, std::size_t n>
constexpr std::array<Named, n> NamesFrom(const Row (&rows)[n]) {
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return std::array<Named, n>{Named(rows[i].code, rows[i].name)...};
    }
    (std::make_index_sequence<n>());
}

/// The names of `rows` keyed and sorted by another of their numbers, without rows where that is 0.
template <const auto& rows, auto number>
consteval auto NamesBy() {
    constexpr auto count = [] {
        std::size_t with = 0;
        for (const auto& row : rows) with += row.*number != 0 ? 1U : 0U;
        return with;
    };
    const auto next = [](HX_U32 after) {
        const auto* least = std::data(rows);
        HX_U32 best = UINT32_MAX;
        for (const auto& row : rows) {
            if (row.*number <= after || row.*number > best) continue;
            best = row.*number;
            least = &row;
        }
        return Named(best, least->name);
    };
    HX_U32 last = 0;
    const auto take = [&](std::size_t) {
        const Named row = next(last);
        last = row.code;
        return row;
    };
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return std::array<Named, sizeof...(i)>{take(i)...};
    }
    (std::make_index_sequence<count()>());
}

/// The row with the number; null when there is none.
template <class Rows>
constexpr auto FindCode(const Rows& rows, std::uint64_t number) -> decltype(std::data(rows)) {
    for (const auto& row : rows) {
        if (NumberOf(row.code) == number) return &row;
    }
    return nullptr;
}

/// Whether a row has the number. The tables check themselves with this rather than by comparing
/// FindCode's address with null, which g++ does not take for a constant under -fsanitize=undefined
/// or -fno-delete-null-pointer-checks; a plain loop, because clang's limit of steps in a constant
/// does not reach for std::ranges.
template <class Rows>
constexpr bool HasCode(const Rows& rows, std::uint64_t number) {
    // NOLINTNEXTLINE(readability-use-anyofallof)
    for (const auto& row : rows) {
        if (NumberOf(row.code) == number) return true;
    }
    return false;
}

/// The row with the name; null when there is none.
template <class Rows>
constexpr auto FindName(const Rows& rows, std::string_view name) -> decltype(std::data(rows)) {
    for (const auto& row : rows) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

/// The name of a number; empty when it has none. A loop of its own for the same reason.
template <class Rows>
constexpr std::string_view NameOf(const Rows& rows, std::uint64_t number) {
    for (const auto& row : rows) {
        if (NumberOf(row.code) == number) return row.name;
    }
    return {};
}

/// Converts a number to a code; none when it is no code. Needs a TableOf beside the table.
template <CodeEnum Code>
constexpr std::optional<Code> ToCode(std::uint64_t number) {
    if (!HasCode(TableOf(Code{}), number)) return std::nullopt;
    return static_cast<Code>(number);
}

/// Whether a value is a code of its enumeration.
template <CodeEnum Code>
constexpr bool IsCode(Code code) {
    return HasCode(TableOf(code), NumberOf(code));
}

/// The row of a code. Throws std::out_of_range for a number that is no code.
template <class Rows, CodeEnum Code>
constexpr const auto& RowOf(const Rows& rows, Code code) {
    for (const auto& row : rows) {
        if (NumberOf(row.code) == NumberOf(code)) return row;
    }
    throw std::out_of_range("a number that is no code");
}

/// The row of a code in the table of its enumeration.
template <CodeEnum Code>
constexpr const auto& RowOf(Code code) {
    return RowOf(TableOf(code), code);
}

/// The name of a code.
template <CodeEnum Code>
constexpr std::string_view NameOf(Code code) {
    return RowOf(code).name;
}

template <CodeEnum Code>
inline constexpr auto kNamesFromRows = NamesFrom(TableOf(Code{}));

/// The codes of an enumeration and their names.
template <CodeEnum Code>
constexpr std::span<const Named> NamesOf() {
    using Row = std::remove_cvref_t<decltype(TableOf(Code{})[0])>;
    if constexpr (std::is_same_v<Row, Named>) {
        return TableOf(Code{});
    } else {
        return kNamesFromRows<Code>;
    }
}

constexpr bool IsFitForScripts(std::string_view name) {
    for (const char each : name) {
        const bool fits = (each >= 'a' && each <= 'z') || (each >= '0' && each <= '9') ||
                          each == '_' || each == '.';
        if (!fits) return false;
    }
    return !name.empty();
}

/// Whether the codes ascend strictly, so that none is repeated.
template <class Rows>
consteval bool Ascends(const Rows& rows) {
    for (std::size_t i = 1; i < std::size(rows); ++i) {
        if (NumberOf(rows[i - 1].code) >= NumberOf(rows[i].code)) return false;
    }
    return true;
}

/// Whether the rows form a table: codes ascend, names are unique and fit for scripts.
template <class Rows>
consteval bool IsTable(const Rows& rows) {
    for (const auto& row : rows) {
        if (!IsFitForScripts(row.name) || FindName(rows, row.name) != &row) return false;
    }
    return Ascends(rows);
}

/// The same for a table of bits: each code is a single, distinct bit.
template <class Rows>
consteval bool IsTableOfBits(const Rows& rows) {
    for (const auto& row : rows) {
        const auto number = NumberOf(row.code);
        if (number == 0 || (number & (number - 1)) != 0) return false;
    }
    return IsTable(rows);
}

}  // namespace hxcodes
