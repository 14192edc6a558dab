// The state file: one SQLite database for all processes of the machine. Processes with write
// permission update it; all others only read it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "model/hxmd_kept.h"
#include "sqlite/store_error.h"  // IWYU pragma: export (what is thrown)

namespace hxmd {

/// Its path, below the root prefix. Throws StoreError when that is too long.
std::string StatePath();

class Store {
public:
    /// Opens the file for writing and creates it if missing; without permission, opens it for
    /// reading. Throws hxsqlite::StoreError for a damaged file or another program's database.
    explicit Store(const std::string& path);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    bool IsWritable() const;
    /// Whether the file exists; without write permission it may be missing.
    bool IsThere() const;

    /// The stored rows; empty without a file.
    Kept Read();

    /// One write transaction: `work` gets the stored rows, and its changes are saved when it
    /// returns. When it throws, nothing is saved.
    void Change(const std::function<void(Kept& kept)>& work);

private:
    struct Database;
    std::unique_ptr<Database> database_;
};

}  // namespace hxmd
