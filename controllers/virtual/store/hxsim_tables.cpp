// How a machine's rows are made, read, compared and written, from the lists of their columns.
#include "store/hxsim_tables.h"

#include <algorithm>
#include <concepts>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "model/hxsim_invariants.h"
#include "store/hxsim_store_error.h"
#include "store/hxsim_upgrade.h"

namespace hxsim {
namespace {

// More rows than any list of a machine has: a file that says otherwise is not read to its end.
constexpr std::size_t kMostRows = 65536;

template <class Value>
concept Number = std::integral<Value> || std::is_enum_v<Value>;
// A record of the interface, whose bytes are a wire format.
template <class Value>
concept Record = std::is_trivially_copyable_v<Value> && std::is_class_v<Value>;

// ---- A value ----

constexpr std::string_view TypeOf(const Number auto&) { return "INTEGER NOT NULL"; }
constexpr std::string_view TypeOf(const std::string&) { return "TEXT NOT NULL"; }
constexpr std::string_view TypeOf(const Bytes&) { return "BLOB"; }
constexpr std::string_view TypeOf(const Record auto&) { return "BLOB NOT NULL"; }

bool Same(const Number auto& one, const Number auto& other) { return one == other; }
bool Same(const std::string& one, const std::string& other) { return one == other; }
bool Same(const Bytes& one, const Bytes& other) {
    return one == other || (one != nullptr && other != nullptr && *one == *other);
}
template <Record Value>
bool Same(const Value& one, const Value& other) {
    return std::memcmp(&one, &other, sizeof one) == 0;
}

// The 64 bits of an unsigned number stand as those of the signed one that SQLite knows.
template <Number Value>
void Bind(Statement& statement, int parameter, const Value& value) {
    statement.Bind(parameter, static_cast<std::int64_t>(value));
}
void Bind(Statement& statement, int parameter, const std::string& value) {
    statement.BindText(parameter, value);
}
void Bind(Statement& statement, int parameter, const Bytes& value) {
    if (value == nullptr) {
        statement.BindNull(parameter);
    } else {
        statement.BindBlob(parameter, *value);
    }
}
template <Record Value>
void Bind(Statement& statement, int parameter, const Value& value) {
    statement.BindBlob(parameter, {reinterpret_cast<const char*>(&value), sizeof value});
}

// What is read is false where the file says what the member cannot hold.
template <Number Value>
bool Read(const Statement& statement, int column, Value& value) {
    if (statement.TypeOf(column) != SQLITE_INTEGER) return false;
    const std::int64_t number = statement.Integer(column);
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
bool Read(const Statement& statement, int column, std::string& value) {
    if (statement.TypeOf(column) != SQLITE_TEXT) return false;
    value = statement.Bytes(column);
    return true;
}
bool Read(const Statement& statement, int column, Bytes& value) {
    value = nullptr;
    if (statement.TypeOf(column) == SQLITE_NULL) return true;
    if (statement.TypeOf(column) != SQLITE_BLOB) return false;
    value = std::make_shared<const std::string>(statement.Bytes(column));
    return true;
}
template <Record Value>
bool Read(const Statement& statement, int column, Value& value) {
    const std::string_view bytes = statement.Bytes(column);
    if (statement.TypeOf(column) != SQLITE_BLOB || bytes.size() != sizeof value) return false;
    std::memcpy(&value, bytes.data(), sizeof value);
    return true;
}

// ---- A list of columns ----

template <class Visit, class... Columns>
void ForEach(const std::tuple<Columns...>& columns, Visit visit) {
    std::apply([&](const Columns&... column) { (visit(column), ...); }, columns);
}

// "adapter, id, parent, ..."; the adapter is there for tables of an adapter's lists.
template <class... Columns>
std::string Names(bool of_adapter, const std::tuple<Columns...>& columns,
                  std::size_t count = sizeof...(Columns)) {
    std::string names = of_adapter ? "adapter" : "";
    ForEach(columns, [&](const auto& column) {
        if (count == 0) return;
        --count;
        if (!names.empty()) names += ", ";
        names += column.name;
    });
    return names;
}

template <class Row, class... Columns>
bool SameRow(const std::tuple<Columns...>& columns, const Row& one, const Row& other) {
    return std::apply(
        [&](const Columns&... column) {
            return (Same(one.*column.field, other.*column.field) && ...);
        },
        columns);
}

// The table's statement; its columns are those of a row of type Row.
template <class Row, class... Columns>
std::string CreateSql(const char* name, bool of_adapter, std::size_t keys,
                      const std::tuple<Columns...>& columns) {
    std::string sql = std::string("CREATE TABLE ") + name + " (";
    if (of_adapter) sql += "adapter INTEGER NOT NULL, ";
    const Row row{};
    ForEach(columns, [&](const auto& column) {
        sql += std::string(column.name) + ' ' + std::string(TypeOf(row.*column.field)) + ", ";
    });
    if (!of_adapter && keys == 0) {
        // The one row of the machine or its clock.
        return sql + "only INTEGER PRIMARY KEY CHECK (only = 1)) STRICT";
    }
    return sql + "PRIMARY KEY (" + Names(of_adapter, columns, keys) + ")) STRICT, WITHOUT ROWID";
}

std::string OrderBy(const std::string& names) { return names.empty() ? "" : " ORDER BY " + names; }

template <class... Columns>
std::string LoadSql(const char* name, bool of_adapter, std::size_t keys,
                    const std::tuple<Columns...>& columns) {
    return "SELECT " + Names(of_adapter, columns) + " FROM " + name +
           OrderBy(Names(of_adapter, columns, keys));
}

template <class... Columns>
std::string PutSql(const char* name, bool of_adapter, std::size_t keys,
                   const std::tuple<Columns...>& columns) {
    std::string names = Names(of_adapter, columns);
    std::string values = "?";
    for (std::size_t i = 1; i < sizeof...(Columns) + (of_adapter ? 1 : 0); ++i) values += ", ?";
    if (!of_adapter && keys == 0) {
        names += ", only";
        values += ", 1";
    }
    return std::string("INSERT OR REPLACE INTO ") + name + " (" + names + ") VALUES (" + values +
           ")";
}

template <class... Columns>
std::string EraseSql(const char* name, bool of_adapter, std::size_t keys,
                     const std::tuple<Columns...>& columns) {
    std::string sql =
        std::string("DELETE FROM ") + name + " WHERE " + (of_adapter ? "adapter = ?" : "1");
    ForEach(columns, [&](const auto& column) {
        if (keys == 0) return;
        --keys;
        sql += std::string(" AND ") + column.name + " = ?";
    });
    return sql;
}

[[noreturn]] void ThrowDamaged(const std::string& path, const std::string& what) {
    throw StoreError(path + " is damaged: " + what + " Move it away and run: hxsimctl init");
}

// Reads the columns of the statement's row from `first` on.
template <class Row, class... Columns>
void ReadRow(const std::string& path, const char* table, const Statement& statement, int first,
             const std::tuple<Columns...>& columns, Row& row) {
    ForEach(columns, [&](const auto& column) {
        if (!Read(statement, first++, row.*column.field)) {
            ThrowDamaged(path,
                         std::string("table ") + table + " has an impossible " + column.name + ".");
        }
    });
}

template <std::size_t keys, class Holder, class Row, class... Columns>
auto KeyOf(const Table<keys, Holder, Row, Columns...>& table, const Row& row) {
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return std::tuple((row.*std::get<i>(table.columns).field)...);
    }
    (std::make_index_sequence<keys>());
}

// The rows by their keys. A machine whose lists have lost their order is written all the same; one
// that has two rows of one name cannot be.
template <class TableType, class Row>
std::vector<const Row*> ByKey(const TableType& table, const std::vector<Row>& rows) {
    std::vector<const Row*> sorted;
    sorted.reserve(rows.size());
    for (const Row& row : rows) sorted.push_back(&row);
    const auto key = [&](const Row* row) { return KeyOf(table, *row); };
    if (!std::ranges::is_sorted(sorted, {}, key)) std::ranges::sort(sorted, {}, key);
    if (std::ranges::adjacent_find(sorted, {}, key) != sorted.end()) {
        throw std::logic_error(std::string("two rows of one name in ") + table.name);
    }
    return sorted;
}

template <class Visit>
void ForEachTable(Visit visit) {
    ForEach(kMachineTables, [&](const auto& table) { visit(table, false); });
    ForEach(kAdapterTables, [&](const auto& table) { visit(table, true); });
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
    connection.Execute(CreateSql<Machine>("machine", false, 0, kMachineColumns));
    connection.Execute(CreateSql<Clock>("clock", false, 0, kClockColumns));
    ForEachTable([&]<class TableType>(const TableType& table, bool of_adapter) {
        connection.Execute(CreateSql<typename TableType::Row>(table.name, of_adapter,
                                                              TableType::kKeys, table.columns));
    });
    connection.Execute("PRAGMA application_id = " + std::to_string(kApplicationId));
    connection.Execute("PRAGMA user_version = " + std::to_string(kSchemaVersion));
}

// ---- Loading ----

class Loading {
public:
    Loading(Tables& tables, const std::string& path) : tables_(tables), path_(path) {}

    Machine Run() {
        Machine machine;
        LoadOne("machine", kMachineColumns, machine);
        LoadOne("clock", kClockColumns, machine.clock);
        ForEach(kMachineTables, [&](const auto& table) {
            LoadList(table, false, [&](const Statement&) { return &(machine.*table.list); });
        });
        ForEach(kAdapterTables, [&](const auto& table) {
            LoadList(table, true, [&](const Statement& statement) {
                return &(AdapterOf(machine, table.name, statement).*table.list);
            });
        });
        return machine;
    }

private:
    template <class... Columns>
    Statement& Prepared(const char* name, bool of_adapter, std::size_t keys,
                        const std::tuple<Columns...>& columns) {
        Statement& statement = tables_.statements_[next_++].load;
        if (!statement) {
            statement = tables_.connection_.Prepare(LoadSql(name, of_adapter, keys, columns));
        }
        return statement;
    }

    template <class Row, class... Columns>
    void LoadOne(const char* name, const std::tuple<Columns...>& columns, Row& row) {
        Statement& statement = Prepared(name, false, 0, columns);
        const Running running(statement);
        if (!statement.Step()) ThrowDamaged(path_, std::string("table ") + name + " is empty.");
        ReadRow(path_, name, statement, 0, columns, row);
    }

    // `list_of` says which list the statement's row belongs to.
    template <class TableType, class ListOf>
    void LoadList(const TableType& table, bool of_adapter, ListOf list_of) {
        Statement& statement = Prepared(table.name, of_adapter, TableType::kKeys, table.columns);
        const Running running(statement);
        std::size_t rows = 0;
        while (statement.Step()) {
            if (++rows > kMostRows) {
                ThrowDamaged(path_, std::string("table ") + table.name + " has too many rows.");
            }
            auto& row = list_of(statement)->emplace_back();
            ReadRow(path_, table.name, statement, of_adapter ? 1 : 0, table.columns, row);
        }
    }

    Adapter& AdapterOf(Machine& machine, const char* table, const Statement& statement) {
        const std::int64_t number = statement.Integer(0);
        for (Adapter& adapter : machine.adapters) {
            if (adapter.id == number) return adapter;
        }
        ThrowDamaged(path_, std::string("table ") + table + " has a row of adapter " +
                                std::to_string(number) + ", which is not there.");
    }

    // A statement that does not run to its end would keep the transaction open.
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
        // A new machine has neither row yet, and the same values as `before` perhaps.
        const bool anew = before.adapters.empty();
        SaveOne("machine", kMachineColumns, before, after, anew);
        SaveOne("clock", kClockColumns, before.clock, after.clock, anew);
        ForEach(kMachineTables, [&](const auto& table) {
            SaveList(table, before.*table.list, after.*table.list, -1);
            ++next_;
        });
        ForEach(kAdapterTables, [&](const auto& table) {
            SaveLists(table, before, after);
            ++next_;
        });
    }

private:
    template <class Row, class... Columns>
    void SaveOne(const char* name, const std::tuple<Columns...>& columns, const Row& before,
                 const Row& after, bool anew) {
        Statement& put = tables_.statements_[next_++].put;
        if (!anew && SameRow(columns, before, after)) return;
        if (!put) put = tables_.connection_.Prepare(PutSql(name, false, 0, columns));
        PutRow(put, 1, columns, after);
    }

    // The lists of all adapters, of which either machine may lack some.
    template <class TableType>
    void SaveLists(const TableType& table, const Machine& before, const Machine& after) {
        const std::vector<typename TableType::Row> none;
        const auto list_of = [&](const Machine& machine, HX_U8 id) {
            const Adapter* const adapter = Find(machine.adapters, id);
            return adapter == nullptr ? &none : &(adapter->*table.list);
        };
        for (const Adapter& adapter : before.adapters) {
            if (Find(after.adapters, adapter.id) == nullptr) {
                SaveList(table, adapter.*table.list, none, adapter.id);
            }
        }
        for (const Adapter& adapter : after.adapters) {
            SaveList(table, *list_of(before, adapter.id), adapter.*table.list, adapter.id);
        }
    }

    // `adapter` is -1 for the lists of the machine.
    template <class TableType, class Row>
    void SaveList(const TableType& table, const std::vector<Row>& before,
                  const std::vector<Row>& after, int adapter) {
        const auto old_rows = ByKey(table, before);
        const auto new_rows = ByKey(table, after);
        auto old_row = old_rows.begin();
        for (const Row* const row : new_rows) {
            const auto key = KeyOf(table, *row);
            while (old_row != old_rows.end() && KeyOf(table, **old_row) < key) {
                Erase(table, **old_row++, adapter);
            }
            const bool known = old_row != old_rows.end() && KeyOf(table, **old_row) == key;
            if (!known || !SameRow(table.columns, **old_row, *row)) Put(table, *row, adapter);
            if (known) ++old_row;
        }
        while (old_row != old_rows.end()) Erase(table, **old_row++, adapter);
    }

    template <class TableType, class Row>
    void Put(const TableType& table, const Row& row, int adapter) {
        Statement& put = tables_.statements_[next_].put;
        if (!put) {
            put = tables_.connection_.Prepare(
                PutSql(table.name, adapter >= 0, TableType::kKeys, table.columns));
        }
        if (adapter >= 0) put.Bind(1, adapter);
        PutRow(put, adapter >= 0 ? 2 : 1, table.columns, row);
    }

    template <class Row, class... Columns>
    static void PutRow(Statement& put, int first, const std::tuple<Columns...>& columns,
                       const Row& row) {
        ForEach(columns, [&](const auto& column) { Bind(put, first++, row.*column.field); });
        put.Run();
    }

    template <class TableType, class Row>
    void Erase(const TableType& table, const Row& row, int adapter) {
        Statement& erase = tables_.statements_[next_].erase;
        if (!erase) {
            erase = tables_.connection_.Prepare(
                EraseSql(table.name, adapter >= 0, TableType::kKeys, table.columns));
        }
        int parameter = 1;
        if (adapter >= 0) erase.Bind(parameter++, adapter);
        std::apply([&](const auto&... key) { (Bind(erase, parameter++, key), ...); },
                   KeyOf(table, row));
        erase.Run();
    }

    Tables& tables_;
    std::size_t next_ = 0;
};

void Tables::Save(const Machine& before, const Machine& after) { Saving(*this).Run(before, after); }

}  // namespace hxsim
