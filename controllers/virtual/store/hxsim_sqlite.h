// SQLite for the virtual controller's store, with error sentences that advise about hxsimctl and
// HXSIM_STATE.
#pragma once

#include <string>
#include <string_view>

#include "sqlite/connection.h"

namespace hxsim {

using hxsqlite::BusyError;
using hxsqlite::Statement;
using hxsqlite::Transaction;

/// An open state file.
class Connection : public hxsqlite::Connection {
public:
    Connection() = default;
    /// Opens an existing file, or an empty database for ":memory:".
    explicit Connection(const std::string& path);
};

/// Throws an SQLite error as StoreError or std::bad_alloc.
[[noreturn]] void ThrowStoreError(const std::string& path, int code, int system_error,
                                  std::string_view detail);

}  // namespace hxsim
