// The state file: one SQLite database for every process that works on the machine. Who may write it
// keeps in it what it learns; all others read it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "model/hxmd_kept.h"
#include "sqlite/store_error.h"  // IWYU pragma: export (what is thrown)

namespace hxmd {

/// Where it stands, below the root prefix. Throws StoreError when that path is too long.
std::string StatePath();

class Store {
public:
    /// Opens the file for writing, making it when it is not there; where that is not permitted, for
    /// reading. Throws hxsqlite::StoreError for a file that is damaged or of another program.
    explicit Store(const std::string& path);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    bool IsWritable() const;
    /// Whether there is a file at all; one that cannot be written can be missing.
    bool IsThere() const;

    /// What is kept; nothing without a file.
    Kept Read();

    /// One transaction that no other process comes between: `work` is given what is kept, and what
    /// it changes is saved when it returns. When it throws, nothing is.
    void Change(const std::function<void(Kept& kept)>& work);

private:
    struct Database;
    std::unique_ptr<Database> database_;
};

}  // namespace hxmd
