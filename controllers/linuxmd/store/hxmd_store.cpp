// The tables of the state file, and its transactions.
//
// It uses a rollback journal, because even readers of a write-ahead log need write permission.
#include "store/hxmd_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <concepts>
#include <cstring>
#include <limits>
#include <tuple>
#include <vector>

#include "library/column.h"
#include "root_path.h"
#include "sqlite/connection.h"

namespace hxmd {
namespace {

using hxlibrary::Col;
using hxsqlite::Connection;
using hxsqlite::Statement;
using hxsqlite::StoreError;

// ---- Tables ----

template <class Row, class... Columns>
struct KeptTable {
    const char* name;
    std::vector<Row> Kept::*rows;
    std::tuple<Columns...> columns;
};
template <class Owner, class Row, class... Columns>
constexpr KeptTable<Row, Columns...> Rows(const char* name, std::vector<Row> Owner::*rows,
                                          Columns... columns) {
    return {name, rows, std::tuple(columns...)};
}

constexpr std::tuple kTables{
    Rows("disk", &Kept::known_disks, Col("id", &KeptDisk::id), Col("key", &KeptDisk::key),
         Col("model", &KeptDisk::model), Col("serial", &KeptDisk::serial),
         Col("sectors", &KeptDisk::sectors)),
    Rows("array", &Kept::known_arrays, Col("id", &KeptArray::id), Col("uuid", &KeptArray::uuid),
         Col("title", &KeptArray::title), Col("level", &KeptArray::level),
         Col("places", &KeptArray::places), Col("left", &KeptArray::left)),
    Rows("block", &Kept::known_blocks, Col("id", &KeptBlock::id), Col("disk", &KeptBlock::disk),
         Col("array", &KeptBlock::array), Col("slot", &KeptBlock::slot),
         Col("start", &KeptBlock::start)),
    Rows("enclosure", &Kept::known_enclosures, Col("id", &KeptEnclosure::id),
         Col("key", &KeptEnclosure::key)),
    Rows("spare", &Kept::spares, Col("disk", &KeptSpare::disk)),
    Rows("smart", &Kept::smart, Col("disk", &KeptSmart::disk), Col("at", &KeptSmart::at),
         Col("passed", &KeptSmart::passed)),
    Rows("setting", &Kept::settings, Col("name", &KeptSetting::name),
         Col("value", &KeptSetting::value)),
    Rows("pause", &Kept::pauses, Col("array", &KeptPause::array), Col("action", &KeptPause::action),
         Col("members", &KeptPause::members), Col("boot_id", &KeptPause::boot_id)),
    Rows("look", &Kept::look, Col("boot_id", &KeptLook::boot_id),
         Col("next_event", &KeptLook::next_event)),
    Rows("seen_disk", &Kept::disks, Col("id", &SeenDisk::id), Col("present", &SeenDisk::present),
         Col("failed", &SeenDisk::failed), Col("spare", &SeenDisk::spare),
         Col("write_cache", &SeenDisk::write_cache), Col("smart_failed", &SeenDisk::smart_failed),
         Col("serves", &SeenDisk::serves), Col("errors", &SeenDisk::errors),
         Col("bad_blocks", &SeenDisk::bad_blocks)),
    Rows("seen_array", &Kept::arrays, Col("id", &SeenArray::id),
         Col("present", &SeenArray::present), Col("state", &SeenArray::state),
         Col("activity", &SeenArray::activity), Col("activity_state", &SeenArray::activity_state),
         Col("percent", &SeenArray::percent), Col("in_sync", &SeenArray::in_sync),
         Col("at_start", &SeenArray::at_start), Col("last_action", &SeenArray::last_action),
         Col("read_ahead", &SeenArray::read_ahead), Col("mismatches", &SeenArray::mismatches)),
    Rows("seen_slot", &Kept::slots, Col("array", &SeenSlot::array), Col("slot", &SeenSlot::slot),
         Col("disk", &SeenSlot::disk)),
    Rows("event", &Kept::events, Col("number", &QueuedEvent::number),
         Col("bytes", &QueuedEvent::bytes)),
};

template <class Work>
void ForEachTable(Work work) {
    std::apply([&](const auto&... table) { (work(table), ...); }, kTables);
}

// Texts come from disks and may contain any bytes.
const char* TypeOf(const std::string&) { return " BLOB NOT NULL"; }
template <std::integral Value>
const char* TypeOf(Value) {
    return " INTEGER NOT NULL";
}

template <class Row, class... Columns>
std::string Names(const KeptTable<Row, Columns...>& table, bool types) {
    std::string list;
    const auto add = [&](const auto& column) {
        if (!list.empty()) list += ", ";
        list += column.name;
        if (types) list += TypeOf(Row{}.*column.field);
    };
    std::apply([&](const auto&... column) { (add(column), ...); }, table.columns);
    return list;
}

void Get(const Statement& statement, int column, std::string& value) {
    value = statement.Bytes(column);
}
template <std::integral Value>
void Get(const Statement& statement, int column, Value& value) {
    const std::int64_t number = statement.Integer(column);
    // 64-bit numbers keep their bits; smaller ones are checked for their range.
    if constexpr (sizeof(Value) < sizeof number) {
        if (number < 0 || number > std::int64_t{std::numeric_limits<Value>::max()}) {
            throw StoreError("The state file has an impossible number.");
        }
    }
    value = static_cast<Value>(number);
}

void Put(Statement& statement, int parameter, const std::string& value) {
    statement.BindBlob(parameter, value);
}
template <std::integral Value>
void Put(Statement& statement, int parameter, Value value) {
    statement.Bind(parameter, static_cast<std::int64_t>(value));
}

template <class Row, class... Columns>
void Load(const Connection& connection, const KeptTable<Row, Columns...>& table, Kept& kept) {
    Statement statement = connection.Prepare("SELECT " + Names(table, false) + " FROM " +
                                             table.name + " ORDER BY rowid");
    while (statement.Step()) {
        Row& row = (kept.*table.rows).emplace_back();
        int column = 0;
        std::apply([&](const auto&... each) { (Get(statement, column++, row.*each.field), ...); },
                   table.columns);
    }
}

// Tables are small, so a changed table is rewritten completely.
template <class Row, class... Columns>
void Save(const Connection& connection, const KeptTable<Row, Columns...>& table, const Kept& before,
          const Kept& after) {
    if (before.*table.rows == after.*table.rows) return;
    connection.Execute(std::string("DELETE FROM ") + table.name);
    std::string places = "?";
    for (std::size_t i = 1; i < sizeof...(Columns); ++i) places += ", ?";
    Statement statement = connection.Prepare(std::string("INSERT INTO ") + table.name + " (" +
                                             Names(table, false) + ") VALUES (" + places + ")");
    for (const Row& row : after.*table.rows) {
        int parameter = 0;
        std::apply(
            [&](const auto&... each) { (Put(statement, ++parameter, row.*each.field), ...); },
            table.columns);
        statement.Run();
    }
}

// ---- The file ----

constexpr const char* kPath = "/var/lib/vexorapi/hxmd.db";
constexpr std::int64_t kApplication = 0x68786D64;  // "hxmd"
constexpr std::int64_t kSchema = 2;

std::string TextOf(hxsqlite::Trouble, const std::string& path, const std::string& why) {
    return path + " cannot be used (" + why + ").";
}

// Makes missing folders, readable for everybody.
void MakeFolders(const std::string& path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        mkdir(path.substr(0, slash).c_str(), 0755);
    }
}

// Creates the file if missing. Returns whether it can be written.
bool MakeFile(const std::string& path) {
    MakeFolders(path);
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0644);
    if (file >= 0) {
        close(file);
        return true;
    }
    // An existing file is not opened, because closing it would release the locks that this process
    // holds on it through other connections.
    return errno == EEXIST && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

bool IsFile(const std::string& path) {
    struct stat found {};
    if (lstat(path.c_str(), &found) != 0) return false;
    if (!S_ISREG(found.st_mode)) throw StoreError(path + " is no regular file.");
    return true;
}

// True for a state file, false for an empty database or one of an earlier version, which lacks
// tables; throws for any other.
bool IsStateFile(const Connection& connection, const std::string& path) {
    const std::int64_t application = connection.Number("PRAGMA application_id");
    const std::int64_t tables = connection.Number("SELECT count(*) FROM sqlite_master");
    if (application == 0 && tables == 0) return false;
    const std::int64_t schema = connection.Number("PRAGMA user_version");
    if (application == kApplication && schema == kSchema) return true;
    if (application == kApplication && schema > 0 && schema < kSchema) return false;
    throw StoreError(path + " was made by another program, or by another version of this one.");
}

void MakeTables(const Connection& connection) {
    ForEachTable([&](const auto& table) {
        connection.Execute(std::string("CREATE TABLE IF NOT EXISTS ") + table.name + " (" +
                           Names(table, true) + ") STRICT");
    });
    connection.Execute("PRAGMA application_id = " + std::to_string(kApplication));
    connection.Execute("PRAGMA user_version = " + std::to_string(kSchema));
}

}  // namespace

std::string StatePath() {
    char path[kRootPathSize];
    if (RootPath(path, kPath) == nullptr) throw StoreError("The root prefix is too long.");
    return path;
}

struct Store::Database {
    explicit Database(const std::string& file) : path(file), writable(MakeFile(file)) { Connect(); }

    // Called again by Follow, so that a file created later by another process is found.
    void Connect() {
        pid = getpid();
        if (!IsFile(path)) return;
        const auto access = writable ? hxsqlite::Access::kWrite : hxsqlite::Access::kRead;
        connection = Connection(path, access, TextOf);
        if (!writable) {
            if (!IsStateFile(connection, path)) connection = Connection();
            return;
        }
        hxsqlite::Transaction transaction(connection);
        if (!IsStateFile(connection, path)) MakeTables(connection);
        transaction.Commit();
    }

    // A forked child opens the file anew, since it does not inherit locks.
    void Follow() {
        if (pid != getpid()) connection = Connection();
        if (!connection) Connect();
    }

    Kept Load() const {
        Kept kept;
        ForEachTable([&](const auto& table) { hxmd::Load(connection, table, kept); });
        return kept;
    }

    const std::string path;
    const bool writable;
    Connection connection;
    pid_t pid = 0;
};

Store::Store(const std::string& path) : database_(std::make_unique<Database>(path)) {}
Store::~Store() = default;

bool Store::IsWritable() const { return database_->writable; }
bool Store::IsThere() const { return static_cast<bool>(database_->connection); }

Kept Store::Read() {
    database_->Follow();
    if (!IsThere()) return {};
    const Connection& connection = database_->connection;
    hxsqlite::Transaction transaction(connection, hxsqlite::Access::kRead);
    Kept kept = database_->Load();
    transaction.Commit();
    return kept;
}

void Store::Change(const std::function<void(Kept& kept)>& work) {
    database_->Follow();
    if (!IsThere() || !IsWritable()) throw StoreError("The state file cannot be written.");
    const Connection& connection = database_->connection;
    hxsqlite::Transaction transaction(connection);
    const Kept before = database_->Load();
    Kept after = before;
    work(after);
    ForEachTable([&](const auto& table) { Save(connection, table, before, after); });
    transaction.Commit();
}

}  // namespace hxmd
