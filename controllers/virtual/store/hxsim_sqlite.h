// SQLite as the store uses it: connections and statements that clean up after themselves and throw
// StoreError with a sentence for people.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "store/hxsim_store_error.h"

namespace hxsim {

/// Another process keeps the file to itself.
struct BusyError : StoreError {
    using StoreError::StoreError;
};

/// A prepared statement. Columns and parameters are counted as SQLite does: the former from 0, the
/// latter from 1. What it throws is StoreError, or std::bad_alloc.
class Statement {
public:
    Statement() = default;
    Statement(sqlite3* database, const std::string& sql);

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
};

/// An open database.
class Connection {
public:
    Connection() = default;
    /// Opens a file that is there, or an empty database for ":memory:".
    explicit Connection(const std::string& path);

    Statement Prepare(const std::string& sql) const { return {database_.get(), sql}; }
    /// Runs statements that return nothing of interest.
    void Execute(const std::string& sql) const;
    /// The first column of the first row, a number.
    std::int64_t Number(const std::string& sql) const;

    explicit operator bool() const { return database_ != nullptr; }

    /// Has closing the connection leave the log of changes as it is, even for the last one to
    /// close: it is somebody else's.
    void LeaveLog() const;

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::unique_ptr<sqlite3, Close> database_;
};

/// A transaction that writes: nobody else writes before it ends. Rolled back unless committed.
class Transaction {
public:
    explicit Transaction(const Connection& connection) : connection_(connection) {
        connection_.Execute("BEGIN IMMEDIATE");
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
[[noreturn]] void ThrowStoreError(const std::string& path, int code, int system_error,
                                  std::string_view detail);

}  // namespace hxsim
