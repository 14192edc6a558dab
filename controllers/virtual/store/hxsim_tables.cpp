// Reads, compares and writes a machine's rows by one loop over tables and columns.
#include "store/hxsim_tables.h"

#include <algorithm>
#include <compare>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "model/hxsim_invariants.h"
#include "store/hxsim_store_error.h"
#include "store/hxsim_table_access.h"
#include "store/hxsim_upgrade.h"

namespace hxsim {
namespace {

// More rows than any list of a machine has; reading stops at a file with more.
constexpr std::size_t kMostRows = 65536;

// ---- A value in a statement ----

void Bind(Statement& statement, int parameter, const Cell& cell) {
    switch (cell.kind) {
        case Cell::Kind::kInteger:
            return statement.Bind(parameter, cell.integer);
        case Cell::Kind::kText:
            return statement.BindText(parameter, cell.bytes);
        case Cell::Kind::kBlob:
            return statement.BindBlob(parameter, cell.bytes);
        case Cell::Kind::kNothing:
        case Cell::Kind::kOther:
            break;
    }
    statement.BindNull(parameter);
}

// Valid until the statement's next step.
Cell CellAt(const Statement& statement, int column) {
    switch (statement.TypeOf(column)) {
        case SQLITE_INTEGER:
            return {Cell::Kind::kInteger, statement.Integer(column)};
        case SQLITE_TEXT:
            return {Cell::Kind::kText, 0, statement.Bytes(column)};
        case SQLITE_BLOB:
            return {Cell::Kind::kBlob, 0, statement.Bytes(column)};
        case SQLITE_NULL:
            return {};
        default:
            return {Cell::Kind::kOther};
    }
}

// ---- Statements ----

// Tables of an adapter's lists begin with the column of the adapter's number.
template <class Holder>
constexpr bool kIsOfAdapter = std::is_same_v<Holder, Adapter>;

// "adapter, id, parent, ...": the first `count` columns of the table, after the adapter's.
template <class Holder>
std::string Names(const TableOf<Holder>& table, std::size_t count) {
    std::string names = kIsOfAdapter<Holder> ? "adapter" : "";
    for (const ColumnOf<Holder>& column : table.columns.first(count)) {
        if (!names.empty()) names += ", ";
        names += column.name;
    }
    return names;
}

template <class Holder>
std::string CreateSql(const TableOf<Holder>& table) {
    std::string sql = std::string("CREATE TABLE ") + table.name + " (";
    if (kIsOfAdapter<Holder>) sql += "adapter INTEGER NOT NULL, ";
    for (const ColumnOf<Holder>& column : table.columns) {
        sql += std::string(column.name) + ' ' + column.type + ", ";
    }
    if (table.append == nullptr) {
        // The one row of the machine or its clock.
        return sql + "only INTEGER PRIMARY KEY CHECK (only = 1)) STRICT";
    }
    return sql + "PRIMARY KEY (" + Names(table, table.keys) + ")) STRICT, WITHOUT ROWID";
}

template <class Holder>
std::string LoadSql(const TableOf<Holder>& table) {
    const std::string keys = Names(table, table.keys);
    return "SELECT " + Names(table, table.columns.size()) + " FROM " + table.name +
           (keys.empty() ? "" : " ORDER BY " + keys);
}

template <class Holder>
std::string PutSql(const TableOf<Holder>& table) {
    std::string names = Names(table, table.columns.size());
    std::string values = kIsOfAdapter<Holder> ? "?, ?" : "?";
    for (std::size_t i = 1; i < table.columns.size(); ++i) values += ", ?";
    if (table.append == nullptr) {
        names += ", only";
        values += ", 1";
    }
    return std::string("INSERT OR REPLACE INTO ") + table.name + " (" + names + ") VALUES (" +
           values + ")";
}

template <class Holder>
std::string EraseSql(const TableOf<Holder>& table) {
    std::string sql = std::string("DELETE FROM ") + table.name + " WHERE " +
                      (kIsOfAdapter<Holder> ? "adapter = ?" : "1");
    for (const ColumnOf<Holder>& column : table.columns.first(table.keys)) {
        sql += std::string(" AND ") + column.name + " = ?";
    }
    return sql;
}

[[noreturn]] void ThrowDamaged(const std::string& path, const std::string& what) {
    throw StoreError(path + " is damaged: " + what + " Move it away and run: hxsimctl init");
}

// ---- Rows ----

// Refers to one row of a table.
template <class Holder>
struct RowIn {
    const Holder* holder;
    std::size_t row;
};

// Compares two rows by their first `columns` columns.
template <class Holder>
std::strong_ordering Compare(const TableOf<Holder>& table, std::size_t columns, RowIn<Holder> one,
                             RowIn<Holder> other) {
    for (const ColumnOf<Holder>& column : table.columns.first(columns)) {
        const std::strong_ordering order =
            Compare(column.read(*one.holder, one.row), column.read(*other.holder, other.row));
        if (std::is_neq(order)) return order;
    }
    return std::strong_ordering::equal;
}

// The rows sorted by key, also when the machine's list is out of order; two rows with the same key
// throw, since they cannot be stored.
template <class Holder>
std::vector<RowIn<Holder>> ByKey(const TableOf<Holder>& table, const Holder& holder) {
    std::vector<RowIn<Holder>> sorted;
    const std::size_t count = table.count(holder);
    sorted.reserve(count);
    for (std::size_t row = 0; row < count; ++row) sorted.push_back({&holder, row});
    const auto is_before = [&](const RowIn<Holder>& one, const RowIn<Holder>& other) {
        return std::is_lt(Compare(table, table.keys, one, other));
    };
    if (!std::ranges::is_sorted(sorted, is_before)) std::ranges::sort(sorted, is_before);
    const auto is_same = [&](const RowIn<Holder>& one, const RowIn<Holder>& other) {
        return std::is_eq(Compare(table, table.keys, one, other));
    };
    if (std::ranges::adjacent_find(sorted, is_same) != sorted.end()) {
        throw std::logic_error(std::string("two rows of one name in ") + table.name);
    }
    return sorted;
}

}  // namespace

// ---- Making ----

void MakeTables(const Connection& connection) {
    std::vector<std::string> there;
    Statement list = connection.Prepare(
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite~_%' ESCAPE "
        "'~'");
    while (list.Step()) there.emplace_back(list.Bytes(0));
    for (const std::string& name : there) {
        std::string quoted;
        for (const char each : name) quoted += each == '"' ? "\"\"" : std::string(1, each);
        connection.Execute("DROP TABLE \"" + quoted + '"');
    }
    for (const auto& table : MachineTables()) connection.Execute(CreateSql(table));
    for (const auto& table : AdapterTables()) connection.Execute(CreateSql(table));
    connection.Execute("PRAGMA application_id = " + std::to_string(kApplicationId));
    connection.Execute("PRAGMA user_version = " + std::to_string(kSchemaVersion));
}

// ---- Loading ----

class Loading {
public:
    Loading(Tables& tables, const std::string& path) : tables_(tables), path_(path) {}

    Machine Run() {
        Machine machine;
        for (const TableOf<Machine>& table : MachineTables()) {
            Load(table, 0, [&](const Statement&) -> Machine& { return machine; });
        }
        for (const TableOf<Adapter>& table : AdapterTables()) {
            Load(table, 1, [&](const Statement& statement) -> Adapter& {
                return AdapterOf(machine, table.name, statement);
            });
        }
        return machine;
    }

private:
    // The table's columns start at the statement's column `first`; `holder_of` finds the holder of
    // the current row.
    template <class Holder, class HolderOf>
    void Load(const TableOf<Holder>& table, int first, HolderOf holder_of) {
        Statement& statement = tables_.statements_[next_++].load;
        if (!statement) statement = tables_.connection_.Prepare(LoadSql(table));
        const Running running(statement);
        if (table.append == nullptr) {
            if (!statement.Step()) Damaged(table.name, "is empty");
            return ReadRow(table, statement, first, holder_of(statement), 0);
        }
        for (std::size_t rows = 1; statement.Step(); ++rows) {
            if (rows > kMostRows) Damaged(table.name, "has too many rows");
            Holder& holder = holder_of(statement);
            table.append(holder);
            ReadRow(table, statement, first, holder, table.count(holder) - 1);
        }
    }

    template <class Holder>
    void ReadRow(const TableOf<Holder>& table, const Statement& statement, int first,
                 Holder& holder, std::size_t row) const {
        for (const ColumnOf<Holder>& column : table.columns) {
            if (!column.write(holder, row, CellAt(statement, first++))) {
                Damaged(table.name, std::string("has an impossible ") + column.name);
            }
        }
    }

    Adapter& AdapterOf(Machine& machine, const char* table, const Statement& statement) const {
        const std::int64_t number = statement.Integer(0);
        for (Adapter& adapter : machine.adapters) {
            if (adapter.id == number) return adapter;
        }
        Damaged(table, "has a row of adapter " + std::to_string(number) + ", which is not there");
    }

    [[noreturn]] void Damaged(const char* table, const std::string& what) const {
        ThrowDamaged(path_, std::string("table ") + table + ' ' + what + '.');
    }

    // Resets the statement, since one that did not run to its end keeps the transaction open.
    class Running {
    public:
        explicit Running(Statement& statement) : statement_(statement) {}
        ~Running() { statement_.Reset(); }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        Statement& statement_;
    };

    Tables& tables_;
    const std::string& path_;
    std::size_t next_ = 0;
};

Machine Tables::LoadUnchecked(const std::string& path) { return Loading(*this, path).Run(); }

Machine Tables::Load(const std::string& path) {
    Machine machine = LoadUnchecked(path);
    const std::vector<std::string> broken = Check(machine);
    if (!broken.empty()) ThrowDamaged(path, broken.front());
    return machine;
}

// ---- Saving ----

class Saving {
public:
    explicit Saving(Tables& tables) : tables_(tables) {}

    void Run(const Machine& before, const Machine& after) {
        for (const TableOf<Machine>& table : MachineTables()) {
            if (table.append == nullptr) {
                SaveOne(table, before, after);
            } else {
                SaveList(table, before, after, -1);
            }
            ++next_;
        }
        for (const TableOf<Adapter>& table : AdapterTables()) {
            SaveLists(table, before, after);
            ++next_;
        }
    }

private:
    void SaveOne(const TableOf<Machine>& table, const Machine& before, const Machine& after) {
        // A new file lacks the row even when the values equal those of `before`.
        const bool anew = before.adapters.empty();
        if (anew || !IsSame(table, {&before, 0}, {&after, 0})) Put(table, {&after, 0}, -1);
    }

    // Saves the lists of all adapters; either machine may lack some adapters.
    void SaveLists(const TableOf<Adapter>& table, const Machine& before, const Machine& after) {
        for (const Adapter& adapter : before.adapters) {
            if (Find(after.adapters, adapter.id) == nullptr) {
                SaveList(table, adapter, none_, adapter.id);
            }
        }
        for (const Adapter& adapter : after.adapters) {
            const Adapter* const old = Find(before.adapters, adapter.id);
            SaveList(table, old == nullptr ? none_ : *old, adapter, adapter.id);
        }
    }

    // `adapter` is -1 for the lists of the machine.
    template <class Holder>
    void SaveList(const TableOf<Holder>& table, const Holder& before, const Holder& after,
                  int adapter) {
        const auto old_rows = ByKey(table, before);
        const auto new_rows = ByKey(table, after);
        auto old_row = old_rows.begin();
        const auto compare_to = [&](RowIn<Holder> row) {
            return Compare(table, table.keys, *old_row, row);
        };
        for (const RowIn<Holder>& row : new_rows) {
            while (old_row != old_rows.end() && std::is_lt(compare_to(row))) {
                Erase(table, *old_row++, adapter);
            }
            const bool known = old_row != old_rows.end() && std::is_eq(compare_to(row));
            if (!known || !IsSame(table, *old_row, row)) Put(table, row, adapter);
            if (known) ++old_row;
        }
        while (old_row != old_rows.end()) Erase(table, *old_row++, adapter);
    }

    template <class Holder>
    static bool IsSame(const TableOf<Holder>& table, RowIn<Holder> one, RowIn<Holder> other) {
        return std::is_eq(Compare(table, table.columns.size(), one, other));
    }

    template <class Holder>
    void Put(const TableOf<Holder>& table, RowIn<Holder> row, int adapter) {
        Statement& put = tables_.statements_[next_].put;
        if (!put) put = tables_.connection_.Prepare(PutSql(table));
        RunWith(put, table, table.columns.size(), row, adapter);
    }

    template <class Holder>
    void Erase(const TableOf<Holder>& table, RowIn<Holder> row, int adapter) {
        Statement& erase = tables_.statements_[next_].erase;
        if (!erase) erase = tables_.connection_.Prepare(EraseSql(table));
        RunWith(erase, table, table.keys, row, adapter);
    }

    // Runs a statement whose parameters are the adapter and the first `columns` columns of the row.
    template <class Holder>
    static void RunWith(Statement& statement, const TableOf<Holder>& table, std::size_t columns,
                        RowIn<Holder> row, int adapter) {
        int parameter = 1;
        if (adapter >= 0) statement.Bind(parameter++, adapter);
        for (const ColumnOf<Holder>& column : table.columns.first(columns)) {
            Bind(statement, parameter++, column.read(*row.holder, row.row));
        }
        statement.Run();
    }

    Tables& tables_;
    const Adapter none_;  // stands for a missing adapter
    std::size_t next_ = 0;
};

void Tables::Save(const Machine& before, const Machine& after) { Saving(*this).Run(before, after); }

Tables::Tables(const Connection& connection)
    : connection_(connection), statements_(MachineTables().size() + AdapterTables().size()) {}

}  // namespace hxsim
