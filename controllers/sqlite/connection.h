// SQLite for the controllers' state files: connections and statements with destructors, which throw
// StoreError with a sentence for people.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "sqlite/store_error.h"  // IWYU pragma: export (what is thrown)

namespace hxsqlite {

/// Another process holds a lock on the file for too long.
struct BusyError : StoreError {
    using StoreError::StoreError;
};

/// The file is damaged or no SQLite database.
struct DamagedError : StoreError {
    using StoreError::StoreError;
};

/// How long a process waits for another one's transaction.
inline constexpr int kPatience = 5000;  // milliseconds

/// Why a state file cannot be used.
enum class Trouble : std::uint8_t {
    kBusy,     // another process keeps it to itself
    kFull,     // it cannot grow
    kDamaged,  // it is damaged or no SQLite database
    kClosed,   // it cannot be opened, or not for writing
    kOther,
};

/// Composes a controller's error sentence about its state file. `why` is the message of SQLite and
/// the system.
using Sentence = std::string (*)(Trouble trouble, const std::string& path, const std::string& why);

/// A prepared statement. As in SQLite, columns count from 0 and parameters from 1. Throws
/// StoreError or std::bad_alloc.
class Statement {
public:
    Statement() = default;
    Statement(sqlite3* database, Sentence sentence, const std::string& sql);

    explicit operator bool() const { return statement_ != nullptr; }

    void Bind(int parameter, std::int64_t value);
    /// The bytes must stay valid until the statement has run.
    void BindText(int parameter, std::string_view text);
    void BindBlob(int parameter, std::string_view bytes);
    void BindNull(int parameter);

    /// Steps to the next row; false when there is none. Unless it runs to its end, call Reset.
    bool Step();
    void Reset();
    /// Runs a statement that returns no row.
    void Run();

    /// The type of a column of the current row: SQLITE_INTEGER, SQLITE_TEXT, ...
    int TypeOf(int column) const { return sqlite3_column_type(statement_.get(), column); }
    std::int64_t Integer(int column) const {
        return sqlite3_column_int64(statement_.get(), column);
    }
    /// The bytes of a text or blob; valid until the next step.
    std::string_view Bytes(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    void Expect(int code) const;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
    Sentence sentence_ = nullptr;
};

/// The header of the index of a file's write-ahead log (WAL), in memory shared by all processes
/// that have the file open: version, unused, change counter, filled, frames, pages, and checksums
/// of the log and of the header. Every commit changes it; SQLite itself detects commits by
/// comparing it.
using LogHead = std::array<std::uint32_t, 12>;

enum class Access : std::uint8_t { kRead, kWrite };

/// An open database.
class Connection {
public:
    Connection() = default;
    /// Opens an existing file, or an empty database for ":memory:".
    Connection(const std::string& path, Access access, Sentence sentence);

    Statement Prepare(const std::string& sql) const { return {database_.get(), sentence_, sql}; }
    /// Runs statements and ignores their rows.
    void Execute(const std::string& sql) const;
    /// Returns the first column of the first row as a number.
    std::int64_t Number(const std::string& sql) const;

    explicit operator bool() const { return database_ != nullptr; }

    /// The log's header, read without a system call. While it is unchanged, nobody has committed.
    /// None without a log (a database in memory) and during a commit. The connection must have read
    /// from the file before: only then is the index mapped.
    std::optional<LogHead> Head() const;

    /// Makes closing the connection leave the log alone, even as the last one to close, because the
    /// log belongs to another process.
    void LeaveLog() const;

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::unique_ptr<sqlite3, Close> database_;
    Sentence sentence_ = nullptr;
};

/// A transaction. A write transaction excludes all other writers; a read transaction sees one
/// consistent state. Rolled back unless committed.
class Transaction {
public:
    explicit Transaction(const Connection& connection, Access access = Access::kWrite)
        : connection_(connection) {
        connection_.Execute(access == Access::kWrite ? "BEGIN IMMEDIATE" : "BEGIN");
    }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();

private:
    const Connection& connection_;
    bool open_ = true;
};

/// Throws an SQLite error as StoreError or std::bad_alloc.
[[noreturn]] void ThrowStoreError(Sentence sentence, const std::string& path, int code,
                                  int system_error, std::string_view detail);

}  // namespace hxsqlite
