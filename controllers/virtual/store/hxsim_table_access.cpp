// The descriptors of tables and columns, made by the compiler from the rows of hxsim_table_rows.h.
//
// Only the two functions that access a column's member are templates, a few instructions each:
// whole loops as templates took compilers half a minute.
#include "store/hxsim_table_access.h"

#include <array>
#include <concepts>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "store/hxsim_table_rows.h"

namespace hxsim {
namespace {

template <class Value>
concept Number = std::integral<Value> || std::is_enum_v<Value>;
// A record of the interface, whose bytes are a wire format.
template <class Value>
concept Record = std::is_trivially_copyable_v<Value> && std::is_class_v<Value>;

// ---- A value ----

constexpr const char* TypeOf(const Number auto*) { return "INTEGER NOT NULL"; }
constexpr const char* TypeOf(const std::string*) { return "TEXT NOT NULL"; }
constexpr const char* TypeOf(const Bytes*) { return "BLOB"; }
constexpr const char* TypeOf(const Record auto*) { return "BLOB NOT NULL"; }

// SQLite knows only signed numbers: an unsigned one is stored with the same 64 bits.
Cell CellOf(const Number auto& value) {
    return {Cell::Kind::kInteger, static_cast<std::int64_t>(value)};
}
Cell CellOf(const std::string& value) { return {Cell::Kind::kText, 0, value}; }
Cell CellOf(const Bytes& value) {
    if (value == nullptr) return {};
    return {Cell::Kind::kBlob, 0, *value};
}
Cell CellOf(const Record auto& value) {
    return {Cell::Kind::kBlob, 0, {reinterpret_cast<const char*>(&value), sizeof value}};
}

template <Number Value>
bool Take(const Cell& cell, Value& value) {
    if (cell.kind != Cell::Kind::kInteger) return false;
    const std::int64_t number = cell.integer;
    if constexpr (std::is_same_v<Value, bool>) {
        if (number != 0 && number != 1) return false;
    } else if constexpr (std::is_enum_v<Value>) {
        if (number < 0 || !IsValue(Value{}, static_cast<std::uint64_t>(number))) return false;
    } else if constexpr (!std::is_same_v<Value, std::uint64_t>) {
        if (!std::in_range<Value>(number)) return false;
    }
    value = static_cast<Value>(number);
    return true;
}
bool Take(const Cell& cell, std::string& value) {
    if (cell.kind != Cell::Kind::kText) return false;
    value = cell.bytes;
    return true;
}
bool Take(const Cell& cell, Bytes& value) {
    if (cell.kind != Cell::Kind::kNothing && cell.kind != Cell::Kind::kBlob) return false;
    value = cell.kind == Cell::Kind::kNothing ? nullptr
                                              : std::make_shared<const std::string>(cell.bytes);
    return true;
}
template <Record Value>
bool Take(const Cell& cell, Value& value) {
    if (cell.kind != Cell::Kind::kBlob || cell.bytes.size() != sizeof value) return false;
    std::memcpy(&value, cell.bytes.data(), sizeof value);
    return true;
}

// ---- Where the rows of a table are ----

struct MachineItself {
    static constexpr const auto& kColumns = kMachineColumns;
    static auto& RowOf(auto& machine, std::size_t) { return machine; }
};
struct ItsClock {
    static constexpr const auto& kColumns = kClockColumns;
    static auto& RowOf(auto& machine, std::size_t) { return machine.clock; }
};
template <const auto& tables, std::size_t i>
struct ItsList {
    static constexpr const auto& kTable = std::get<i>(tables);
    static constexpr const auto& kColumns = kTable.columns;
    static auto& RowOf(auto& holder, std::size_t row) { return (holder.*kTable.list)[row]; }
};

// ---- Columns ----

template <class Holder, class Place, auto field>
Cell ReadMember(const Holder& holder, std::size_t row) {
    return CellOf(Place::RowOf(holder, row).*field);
}

template <class Holder, class Place, auto field>
bool WriteMember(Holder& holder, std::size_t row, const Cell& cell) {
    return Take(cell, Place::RowOf(holder, row).*field);
}

template <class Class, class Value>
constexpr const char* TypeOfMember(Value Class::*) {
    return TypeOf(static_cast<const Value*>(nullptr));
}

template <class Holder, class Place, std::size_t i>
constexpr ColumnOf<Holder> MakeColumn() {
    constexpr auto kField = std::get<i>(Place::kColumns).field;
    return {std::get<i>(Place::kColumns).name, TypeOfMember(kField),
            ReadMember<Holder, Place, kField>, WriteMember<Holder, Place, kField>};
}

template <class Place>
using Positions =
    std::make_index_sequence<std::tuple_size_v<std::remove_cvref_t<decltype(Place::kColumns)>>>;

template <class Holder, class Place, std::size_t... i>
constexpr auto MakeColumns(std::index_sequence<i...>) {
    return std::array{MakeColumn<Holder, Place, i>()...};
}
template <class Holder, class Place>
constexpr auto kColumnsIn = MakeColumns<Holder, Place>(Positions<Place>());

// ---- Tables ----

template <class Place>
constexpr TableOf<Machine> OneRow(const char* name) {
    return {name, 0, kColumnsIn<Machine, Place>, [](const Machine&) -> std::size_t { return 1; },
            nullptr};
}

template <class Holder, const auto& tables, std::size_t i>
constexpr TableOf<Holder> ListTable() {
    using Place = ItsList<tables, i>;
    return {Place::kTable.name, Place::kTable.kKeys, kColumnsIn<Holder, Place>,
            [](const Holder& holder) { return (holder.*Place::kTable.list).size(); },
            [](Holder& holder) { (holder.*Place::kTable.list).emplace_back(); }};
}

template <class Holder, const auto& tables, std::size_t... i>
constexpr auto Lists(std::index_sequence<i...>) {
    return std::array{ListTable<Holder, tables, i>()...};
}

static_assert(std::tuple_size_v<decltype(kMachineTables)> == 2);
constexpr std::array kOfMachine{OneRow<MachineItself>("machine"), OneRow<ItsClock>("clock"),
                                ListTable<Machine, kMachineTables, 0>(),
                                ListTable<Machine, kMachineTables, 1>()};
constexpr auto kOfAdapter = Lists<Adapter, kAdapterTables>(
    std::make_index_sequence<std::tuple_size_v<decltype(kAdapterTables)>>());

}  // namespace

std::strong_ordering Compare(const Cell& one, const Cell& other) {
    if (one.kind != other.kind) return one.kind <=> other.kind;
    if (one.integer != other.integer) return one.integer <=> other.integer;
    // Skips the comparison byte by byte of a flash image that two machines share.
    const bool is_shared =
        one.bytes.data() == other.bytes.data() && one.bytes.size() == other.bytes.size();
    return is_shared ? std::strong_ordering::equal : one.bytes <=> other.bytes;
}

std::span<const TableOf<Machine>> MachineTables() { return kOfMachine; }

std::span<const TableOf<Adapter>> AdapterTables() { return kOfAdapter; }

}  // namespace hxsim
