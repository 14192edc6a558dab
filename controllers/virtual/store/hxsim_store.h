// The state file: one SQLite database with a machine, shared by all processes that use it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "model/hxsim_machine.h"
#include "store/hxsim_store_error.h"  // IWYU pragma: export (what is thrown)

namespace hxsim {

/// The state file's path: HXSIM_STATE, else below the folder that VEXORAPI_ROOT names, else in the
/// user's state folder. Set-user-ID processes ignore the environment and use the system's folder.
std::string StatePath();

enum class IfMissing { kMake, kRefuse };

/// What to do when the state file is missing. A file that HXSIM_STATE names is refused, since its
/// name may be misspelt; the default ones are created.
IfMissing WhenStateIsMissing();

/// An open state file and the machine as last read from it or written to it.
class Store {
public:
    /// Opens the file. A missing or empty file is refused or gets the machine that `first` returns;
    /// a database in memory always gets it. Throws StoreError.
    Store(const std::string& path, std::function<Machine()> first,
          IfMissing if_missing = IfMissing::kMake);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    /// Creates the file with this machine, or replaces the machine in it, in one transaction. A
    /// link or a file of another user is refused. Throws StoreError.
    static void Create(const std::string& path, const Machine& machine);

    /// The machine, brought up to now: all due transitions are done and saved.
    const Machine& Current();

    /// One transaction: brings the machine up to now, lets `work` change it and saves the
    /// differences. When `work` returns false or throws, its changes are discarded. Returns the
    /// result of `work`.
    bool Change(const std::function<bool(Machine& machine, Time now)>& work);

private:
    struct Database;
    std::unique_ptr<Database> database_;
};

}  // namespace hxsim
