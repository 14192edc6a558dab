// SQLite's connections, statements and errors.
#include "sqlite/connection.h"

#include <cstring>
#include <exception>
#include <new>

namespace hxsqlite {
namespace {

std::string PathOf(sqlite3* database) {
    const char* const path = sqlite3_db_filename(database, "main");
    return path == nullptr || *path == '\0' ? "The state in memory" : path;
}

[[noreturn]] void Throw(sqlite3* database, Sentence sentence, int code) {
    ThrowStoreError(sentence, PathOf(database), code, sqlite3_system_errno(database),
                    sqlite3_errmsg(database));
}

Trouble TroubleOf(int code) {
    switch (code & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return Trouble::kBusy;
        case SQLITE_FULL:
            return Trouble::kFull;
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
        case SQLITE_ERROR:  // a table or column is not what it should be
        case SQLITE_MISMATCH:
        case SQLITE_SCHEMA:
            return Trouble::kDamaged;
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_CANTOPEN:
        case SQLITE_AUTH:
            return Trouble::kClosed;
        default:
            return Trouble::kOther;
    }
}

}  // namespace

void ThrowStoreError(Sentence sentence, const std::string& path, int code, int system_error,
                     std::string_view detail) {
    if ((code & 0xFF) == SQLITE_NOMEM) throw std::bad_alloc();
    std::string why(detail);
    if (system_error != 0) why += std::string(": ") + std::strerror(system_error);
    const Trouble trouble = TroubleOf(code);
    const std::string text = sentence(trouble, path, why);
    if (trouble == Trouble::kBusy) throw BusyError(text);
    if (trouble == Trouble::kDamaged) throw DamagedError(text);
    throw StoreError(text);
}

// ---- Statements ----

Statement::Statement(sqlite3* database, Sentence sentence, const std::string& sql)
    : sentence_(sentence) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(database, sql.c_str(), static_cast<int>(sql.size() + 1),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    statement_.reset(statement);
    if (code != SQLITE_OK) Throw(database, sentence_, code);
}

void Statement::Expect(int code) const {
    if (code != SQLITE_OK) Throw(sqlite3_db_handle(statement_.get()), sentence_, code);
}

void Statement::Bind(int parameter, std::int64_t value) {
    Expect(sqlite3_bind_int64(statement_.get(), parameter, value));
}

void Statement::BindText(int parameter, std::string_view text) {
    Expect(sqlite3_bind_text64(statement_.get(), parameter, text.data(), text.size(), SQLITE_STATIC,
                               SQLITE_UTF8));
}

void Statement::BindBlob(int parameter, std::string_view bytes) {
    Expect(sqlite3_bind_blob64(statement_.get(), parameter, bytes.data(), bytes.size(),
                               SQLITE_STATIC));
}

void Statement::BindNull(int parameter) { Expect(sqlite3_bind_null(statement_.get(), parameter)); }

bool Statement::Step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) {
        Reset();
        return false;
    }
    // Throw first: the message belongs to the connection, and Reset would replace it.
    try {
        Throw(sqlite3_db_handle(statement_.get()), sentence_, code);
    } catch (...) {
        Reset();
        throw;
    }
}

void Statement::Reset() { sqlite3_reset(statement_.get()); }

void Statement::Run() {
    while (Step()) continue;
}

std::string_view Statement::Bytes(int column) const {
    const void* const bytes = sqlite3_column_blob(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    if (bytes == nullptr || size <= 0) return {};
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

// ---- Connections ----

Connection::Connection(const std::string& path, Access access, Sentence sentence)
    : sentence_(sentence) {
    sqlite3* database = nullptr;
    const int mode = access == Access::kWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
    const int code = sqlite3_open_v2(
        path.c_str(), &database, mode | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE, nullptr);
    database_.reset(database);
    if (code != SQLITE_OK) {
        if (database == nullptr) throw std::bad_alloc();
        ThrowStoreError(sentence, path, code, sqlite3_system_errno(database),
                        sqlite3_errmsg(database));
    }
    sqlite3_extended_result_codes(database, 1);
    sqlite3_busy_timeout(database, kPatience);
    // The file may be untrusted: run no triggers, views or functions from it.
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

void Connection::Execute(const std::string& sql) const {
    const int code = sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) Throw(database_.get(), sentence_, code);
}

std::int64_t Connection::Number(const std::string& sql) const {
    Statement statement = Prepare(sql);
    return statement.Step() ? statement.Integer(0) : 0;
}

std::optional<LogHead> Connection::Head() const {
    constexpr int kIndexPage = 32768;  // SQLite maps the index in pages of this size
    sqlite3_file* file = nullptr;
    sqlite3_file_control(database_.get(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    const sqlite3_io_methods* const io = file == nullptr ? nullptr : file->pMethods;
    if (io == nullptr || io->iVersion < 2 || io->xShmMap == nullptr) return std::nullopt;
    volatile void* page = nullptr;
    if (io->xShmMap(file, 0, kIndexPage, 0, &page) != SQLITE_OK || page == nullptr) {
        return std::nullopt;
    }
    // Other processes may be writing it: two copies that differ mean a commit in progress.
    std::array<LogHead, 2> copies{};
    const auto* words = static_cast<const volatile std::uint32_t*>(page);
    for (LogHead& copy : copies) {
        for (std::uint32_t& word : copy) word = *words++;
    }
    // Ignore an index that is not filled yet or is being recovered: commits do not change it.
    constexpr std::uint32_t kVersion = 3007000;
    std::uint8_t is_filled = 0;
    std::memcpy(&is_filled, &copies[0][3], 1);
    if (copies[0] != copies[1] || copies[0][0] != kVersion || is_filled == 0) return std::nullopt;
    return copies[0];
}

void Connection::LeaveLog() const {
    sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

Transaction::~Transaction() {
    if (!open_) return;
    try {
        connection_.Execute("ROLLBACK");
    } catch (const std::exception&) {
        // After some errors (e.g. a full disk) SQLite has rolled back already.
        return;
    }
}

void Transaction::Commit() {
    connection_.Execute("COMMIT");
    open_ = false;
}

}  // namespace hxsqlite
