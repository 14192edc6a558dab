// Every column of every table is written, compared and read back, over a machine whose values are
// made from the columns themselves: a new column is tested without a line here.
#include "store/hxsim_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "model/hxsim_machine.h"
#include "store/hxsim_sqlite.h"
#include "store/hxsim_table_rows.h"

namespace hxsim {
namespace {

constexpr std::size_t kRows = 2;  // of each list, where it may have so many

// ---- Values ----

// Values that differ from one another, and from the default that they are given, as far as their
// type has so many.
class Values {
public:
    template <class Value>
    void Next(Value& value) {
        const Value old = value;
        do {
            Make(++last_, value);
        } while (Same(value, old));
    }

    template <class Value>
    static bool Same(const Value& one, const Value& other) {
        if constexpr (std::is_same_v<Value, Bytes>) {
            return (one == nullptr) == (other == nullptr) && (one == nullptr || *one == *other);
        } else if constexpr (std::is_class_v<Value> && std::is_trivially_copyable_v<Value>) {
            return std::memcmp(&one, &other, sizeof one) == 0;
        } else {
            return one == other;
        }
    }

private:
    template <class Value>
    static void Make(unsigned number, Value& value) {
        if constexpr (std::is_same_v<Value, std::string>) {
            value = "text " + std::to_string(number);
        } else if constexpr (std::is_same_v<Value, Bytes>) {
            value = std::make_shared<const std::string>("bytes" + std::string(1, '\0') +
                                                        std::to_string(number));
        } else if constexpr (std::is_same_v<Value, bool>) {
            value = number % 2 != 0;
        } else if constexpr (std::is_enum_v<Value>) {
            std::vector<Value> values;
            for (unsigned each = 0; each < 256; ++each) {
                if (IsValue(Value{}, each)) values.push_back(static_cast<Value>(each));
            }
            value = values[number % values.size()];
        } else if constexpr (std::is_integral_v<Value>) {
            // All bytes of the number count.
            value = static_cast<Value>(0x0101010101010101U * (number % 251) + number);
        } else {
            auto* const bytes = reinterpret_cast<unsigned char*>(&value);
            for (std::size_t i = 0; i < sizeof value; ++i) {
                bytes[i] = static_cast<unsigned char>(number + i * 7 + 1);
            }
        }
    }

    unsigned last_ = 0;
};

// ---- Columns ----

template <class Columns, class Visit>
void ForEach(const Columns& columns, Visit visit) {
    std::apply([&](const auto&... column) { (visit(column), ...); }, columns);
}

template <class Columns, class Row>
void Fill(const Columns& columns, Row& row, Values& values) {
    ForEach(columns, [&](const auto& column) { values.Next(row.*column.field); });
}

template <class TableType>
auto KeyOf(const TableType& table, const typename TableType::Row& row) {
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return std::tuple((row.*std::get<i>(table.columns).field)...);
    }
    (std::make_index_sequence<TableType::kKeys>());
}

// Rows stand in the order of their keys.
template <class TableType, class Holder>
void FillTable(const TableType& table, Holder& holder, Values& values) {
    const std::size_t rows = TableType::kKeys == 0 ? 1 : kRows;
    for (std::size_t i = 0; i < rows; ++i) {
        auto& row = (holder.*table.list).emplace_back();
        Fill(table.columns, row, values);
    }
    std::ranges::sort(holder.*table.list, {}, [&](const auto& row) { return KeyOf(table, row); });
}

// Every list of the machine has rows; the adapters' numbers are their places.
Machine FullMachine() {
    Machine machine;
    Values values;
    Fill(kMachineColumns, machine, values);
    Fill(kClockColumns, machine.clock, values);
    ForEach(kMachineTables, [&](const auto& table) { FillTable(table, machine, values); });
    for (std::size_t i = 0; i < machine.adapters.size(); ++i) {
        machine.adapters[i].id = static_cast<HX_U8>(i);
        ForEach(kAdapterTables,
                [&](const auto& table) { FillTable(table, machine.adapters[i], values); });
    }
    return machine;
}

// ---- Comparing ----

template <class Columns, class Row>
void ExpectSame(const std::string& table, const Columns& columns, const Row& expected,
                const Row& found) {
    ForEach(columns, [&](const auto& column) {
        EXPECT_TRUE(Values::Same(expected.*column.field, found.*column.field))
            << table << '.' << column.name;
    });
}

template <class TableType, class Holder>
void ExpectSameTable(const TableType& table, const Holder& expected, const Holder& found) {
    const auto& rows = expected.*table.list;
    ASSERT_EQ(rows.size(), (found.*table.list).size()) << table.name;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ExpectSame(table.name, table.columns, rows[i], (found.*table.list)[i]);
    }
}

void ExpectSameMachine(const Machine& expected, const Machine& found) {
    ExpectSame("machine", kMachineColumns, expected, found);
    ExpectSame("clock", kClockColumns, expected.clock, found.clock);
    ForEach(kMachineTables, [&](const auto& table) { ExpectSameTable(table, expected, found); });
    for (std::size_t i = 0; i < expected.adapters.size() && i < found.adapters.size(); ++i) {
        ForEach(kAdapterTables, [&](const auto& table) {
            ExpectSameTable(table, expected.adapters[i], found.adapters[i]);
        });
    }
}

// ---- The tables ----

class StateTables : public testing::Test {
protected:
    StateTables() {
        MakeTables(connection_);
        tables_.Save(Machine{}, machine_);
    }

    Machine Read() { return Tables(connection_).LoadUnchecked("the test's"); }

    // Saves the machine with another value in one column and expects that to be read. The key of a
    // row is not changed: it would be another row.
    template <class Columns, class Row>
    void ExpectEachChangeKept(std::size_t keys, const Columns& columns, Row& row) {
        ForEach(columns, [&](const auto& column) {
            if (keys != 0) {
                --keys;
                return;
            }
            SCOPED_TRACE(column.name);
            const Machine before = machine_;
            values_.Next(row.*column.field);
            tables_.Save(before, machine_);
            ExpectSameMachine(machine_, Read());
        });
    }

    const Connection connection_{":memory:"};
    Tables tables_{connection_};
    Machine machine_ = FullMachine();
    Values values_;
};

TEST_F(StateTables, KeepEveryValueOfAMachine) { ExpectSameMachine(machine_, Read()); }

TEST_F(StateTables, KeepEveryValueThatChanges) {
    ExpectEachChangeKept(0, kMachineColumns, machine_);
    ExpectEachChangeKept(0, kClockColumns, machine_.clock);
    ForEach(kMachineTables, [&]<class TableType>(const TableType& table) {
        ExpectEachChangeKept(TableType::kKeys, table.columns, (machine_.*table.list).back());
    });
    ForEach(kAdapterTables, [&]<class TableType>(const TableType& table) {
        ExpectEachChangeKept(TableType::kKeys, table.columns,
                             (machine_.adapters[1].*table.list).back());
    });
}

// The compiler has counted the columns; none of them may stand for another one's member.
TEST_F(StateTables, HaveEachMemberOnce) {
    const auto expect_distinct = [](const char* name, const auto& columns, const auto& row) {
        std::set<const void*> members;
        ForEach(columns, [&](const auto& column) {
            EXPECT_TRUE(members.insert(&(row.*column.field)).second) << name << '.' << column.name;
        });
    };
    expect_distinct("machine", kMachineColumns, machine_);
    expect_distinct("clock", kClockColumns, machine_.clock);
    ForEach(kMachineTables, [&](const auto& table) {
        expect_distinct(table.name, table.columns, (machine_.*table.list).front());
    });
    ForEach(kAdapterTables, [&](const auto& table) {
        expect_distinct(table.name, table.columns, (machine_.adapters[0].*table.list).front());
    });
}

TEST_F(StateTables, LoseTheRowsThatAreGone) {
    Machine empty;
    empty.adapters.resize(1);
    tables_.Save(machine_, empty);
    const Machine found = Read();
    ASSERT_EQ(found.adapters.size(), 1U);
    EXPECT_TRUE(found.injections.empty());
    ForEach(kAdapterTables, [&](const auto& table) {
        EXPECT_TRUE((found.adapters[0].*table.list).empty()) << table.name;
    });
}

}  // namespace
}  // namespace hxsim
