// SQLite as the virtual controller's store uses it: what it throws tells people about hxsimctl and
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
    /// Opens a file that is there, or an empty database for ":memory:".
    explicit Connection(const std::string& path);
};

/// Throws the StoreError (or std::bad_alloc) that tells of an SQLite error.
[[noreturn]] void ThrowStoreError(const std::string& path, int code, int system_error,
                                  std::string_view detail);

}  // namespace hxsim
