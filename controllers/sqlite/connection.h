// SQLite as the controllers' state files use it: connections and statements that clean up after
// themselves and throw StoreError with a sentence for people.
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

/// Another process keeps the file to itself.
struct BusyError : StoreError {
    using StoreError::StoreError;
};

/// How long a process waits for another one's transaction.
inline constexpr int kPatience = 5000;  // milliseconds

/// Why a state file cannot be used.
enum class Trouble : std::uint8_t {
    kBusy,     // another process keeps it to itself
    kFull,     // it cannot grow
    kDamaged,  // it is damaged, or no state file
    kClosed,   // it cannot be opened, or not for writing
    kOther,
};

/// What a controller tells people about trouble with its state file: one sentence. `why` is what
/// SQLite and the system say.
using Sentence = std::string (*)(Trouble trouble, const std::string& path, const std::string& why);

/// A prepared statement. Columns and parameters are counted as SQLite does: the former from 0, the
/// latter from 1. What it throws is StoreError, or std::bad_alloc.
class Statement {
public:
    Statement() = default;
    Statement(sqlite3* database, Sentence sentence, const std::string& sql);

    explicit operator bool() const { return statement_ != nullptr; }

    void Bind(int parameter, std::int64_t value);
    /// The bytes must be there until the statement has run.
    void BindText(int parameter, std::string_view text);
    void BindBlob(int parameter, std::string_view bytes);
    void BindNull(int parameter);

    /// Goes on to the next row; false when there is none. It has run to its end, or Reset is
    /// called.
    bool Step();
    void Reset();
    /// Runs a statement that returns no row.
    void Run();

    /// Of a row: SQLITE_INTEGER, SQLITE_TEXT, ...
    int TypeOf(int column) const { return sqlite3_column_type(statement_.get(), column); }
    std::int64_t Integer(int column) const {
        return sqlite3_column_int64(statement_.get(), column);
    }
    /// The bytes of a text or blob; good until the next step.
    std::string_view Bytes(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    void Expect(int code) const;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
    Sentence sentence_ = nullptr;
};

/// The head of the index of a file's log of changes (WAL), in the memory that all processes share
/// which have the file open: version, unused, number of changes, filled, frames, pages, and the
/// sums over the log and over these. Every commit changes it, and SQLite itself compares nothing
/// else to find out whether somebody has committed.
using LogHead = std::array<std::uint32_t, 12>;

enum class Access : std::uint8_t { kRead, kWrite };

/// An open database.
class Connection {
public:
    Connection() = default;
    /// Opens a file that is there, or an empty database for ":memory:".
    Connection(const std::string& path, Access access, Sentence sentence);

    Statement Prepare(const std::string& sql) const { return {database_.get(), sentence_, sql}; }
    /// Runs statements that return nothing of interest.
    void Execute(const std::string& sql) const;
    /// The first column of the first row, a number.
    std::int64_t Number(const std::string& sql) const;

    explicit operator bool() const { return database_ != nullptr; }

    /// The log's head, without a system call. While it is the same, nobody has committed anything.
    /// None without a log, as in memory, and while it is being written. The connection must have
    /// read from the file before: only then is the index mapped.
    std::optional<LogHead> Head() const;

    /// Has closing the connection leave the log of changes as it is, even for the last one to
    /// close: it is somebody else's.
    void LeaveLog() const;

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::unique_ptr<sqlite3, Close> database_;
    Sentence sentence_ = nullptr;
};

/// A transaction. While one that writes is open nobody else writes; one that reads sees everything
/// as it is at one time. Rolled back unless committed.
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

/// Throws the StoreError (or std::bad_alloc) that tells of an SQLite error.
[[noreturn]] void ThrowStoreError(Sentence sentence, const std::string& path, int code,
                                  int system_error, std::string_view detail);

}  // namespace hxsqlite
