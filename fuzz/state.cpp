// State files: a sound one, damaged in its pages or in its rows, and opened again.
#include <sqlite3.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <vector>

#include "input.h"
#include "model/hxsim_invariants.h"
#include "store/hxsim_store.h"
#include "store/hxsim_store_error.h"
#include "support/temporary_root.h"
#include "targets.h"
#include "topology/hxsim_topology.h"

namespace {

constexpr hxsim::Time kNow = 1'700'000'000'000;

hxsim::Machine Small() { return hxsim::MakeMachine(hxsim::BuiltInTopology("small"), 1, kNow); }

// A sound state file as one text, its log folded into it.
class Sound {
public:
    Sound() {
        const std::string path = root_.Path("/sound.db");
        hxsim::Store::Create(path, Small());
        sqlite3* database = nullptr;
        if (sqlite3_open(path.c_str(), &database) == SQLITE_OK) {
            sqlite3_exec(database, "PRAGMA journal_mode = DELETE", nullptr, nullptr, nullptr);
        }
        sqlite3_close(database);
        bytes_ = root_.Read("/sound.db");
    }

    /// Puts it back, without a log.
    std::string Restore() const {
        for (const char* const end : {"-wal", "-shm", "-journal"}) {
            std::filesystem::remove(root_.Path("/state.db") + end);
        }
        root_.Write("/state.db", bytes_);
        return root_.Path("/state.db");
    }
    const std::string& Bytes() const { return bytes_; }
    const TemporaryRoot& Root() const { return root_; }

private:
    const TemporaryRoot root_;
    std::string bytes_;
};

// Opens the file, looks, changes, looks again. Either it is refused with a sentence or the machine
// keeps its rules all the while.
const char* Use(const std::string& path) {
    try {
        hxsim::Store store(path, Small);
        if (!hxsim::Check(store.Current()).empty()) return "a broken machine was read";
        const bool changed = store.Change([](hxsim::Machine& machine, hxsim::Time) {
            if (machine.adapters.empty()) return false;
            machine.adapters.front().muted = !machine.adapters.front().muted;
            return true;
        });
        const bool muted = changed && store.Current().adapters.front().muted;
        hxsim::Store again(path, Small);
        if (changed && again.Current().adapters.front().muted != muted) return "a change is lost";
        if (!hxsim::Check(again.Current()).empty()) return "a broken machine was written";
    } catch (const hxsim::StoreError& error) {
        if (*error.what() == '\0') return "a file was refused without a reason";
    } catch (const std::bad_alloc&) {
        return nullptr;  // a length in the file that no machine has
    }
    return nullptr;
}

const char* const kTables[] = {
    "machine",         "clock",      "adapter", "injection", "disk",        "block",
    "virtual_disk",    "disk_group", "home",    "activity",  "remap",       "expander",
    "port_multiplier", "enclosure",  "element", "battery",   "flash_image", "event"};

// The names of a table's columns.
std::vector<std::string> Columns(sqlite3* database, const std::string& table) {
    std::vector<std::string> names;
    sqlite3_stmt* statement = nullptr;
    const std::string sql = "SELECT name FROM pragma_table_info('" + table + "')";
    if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK) {
        while (sqlite3_step(statement) == SQLITE_ROW) {
            names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
        }
    }
    sqlite3_finalize(statement);
    return names;
}

// Sets one column of one row, or of all rows, to a value that the fuzzer chooses.
void SetValue(sqlite3* database, Input& input) {
    const std::string table = kTables[input.U8() % std::size(kTables)];
    const std::vector<std::string> columns = Columns(database, table);
    if (columns.empty()) return;
    const std::string& column = columns[input.U8() % columns.size()];
    const std::uint8_t row = input.U8();
    const std::string sql = input.U8() % 8 == 0
                                ? "DELETE FROM " + table + " WHERE " + columns.front() + " = " +
                                      std::to_string(row) + " OR ?1 IS NULL"
                                : "UPDATE OR IGNORE " + table + " SET " + column + " = ?1 WHERE " +
                                      columns[row % columns.size()] +
                                      " % 8 = " + std::to_string(row / 32);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) return;
    const std::uint8_t kind = input.U8();
    std::string bytes;
    if (kind % 4 == 0) {
        sqlite3_bind_int64(statement, 1, static_cast<sqlite3_int64>(input.U64()));
    } else if (kind % 4 == 1) {
        sqlite3_bind_int64(statement, 1, input.U8());
    } else {
        bytes = input.Bytes(input.U8());
        const auto length = static_cast<int>(bytes.size());
        if (kind % 4 == 2) {
            sqlite3_bind_text(statement, 1, bytes.data(), length, SQLITE_TRANSIENT);
        } else {
            sqlite3_bind_blob(statement, 1, bytes.data(), length, SQLITE_TRANSIENT);
        }
    }
    sqlite3_step(statement);
    sqlite3_finalize(statement);
}

const Sound& SoundFile() {
    static const Sound sound;
    return sound;
}

}  // namespace

const char* FuzzStatePages(const std::uint8_t* data, std::size_t size) {
    const std::string path = SoundFile().Restore();
    Input input(data, size);
    std::string bytes = SoundFile().Bytes();
    while (!input.IsEmpty()) {
        const std::uint8_t choice = input.U8();
        const std::size_t at = input.U32() % bytes.size();
        if (choice % 16 == 15) {
            bytes.resize(std::max<std::size_t>(at, 1));
            continue;
        }
        const std::string patch = input.Bytes(choice % 16 + 1);
        bytes.replace(at, std::min(patch.size(), bytes.size() - at), patch);
    }
    SoundFile().Root().Write("/state.db", bytes);
    return Use(path);
}

const char* FuzzStateRows(const std::uint8_t* data, std::size_t size) {
    const std::string path = SoundFile().Restore();
    Input input(data, size);
    sqlite3* database = nullptr;
    if (sqlite3_open(path.c_str(), &database) == SQLITE_OK) {
        sqlite3_exec(database, "PRAGMA synchronous = OFF; BEGIN", nullptr, nullptr, nullptr);
        for (int changes = 0; changes < 20 && !input.IsEmpty(); ++changes) {
            SetValue(database, input);
        }
        sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    }
    sqlite3_close(database);
    return Use(path);
}
