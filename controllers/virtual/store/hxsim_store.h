// The state file: one SQLite database that holds a machine, for every process that works on it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "model/hxsim_machine.h"
#include "store/hxsim_store_error.h"  // IWYU pragma: export (what is thrown)

namespace hxsim {

/// The state file's path: HXSIM_STATE, else below the folder that VEXORAPI_ROOT names, else in the
/// user's state folder. Set-user-ID processes look at none of them but the system's own folder.
std::string StatePath();

enum class IfMissing { kMake, kRefuse };

/// What becomes of a state file that is not there: one that HXSIM_STATE names is not made by
/// whoever merely looks, since its name may be misspelt; the others are.
IfMissing WhenStateIsMissing();

/// An open state file and the machine as it was last read from it or written to it.
class Store {
public:
    /// Opens the file. One that is not there, or is empty, is made with the machine that `first`
    /// makes, or refused; a machine in memory is always made. Throws StoreError.
    Store(const std::string& path, std::function<Machine()> first,
          IfMissing if_missing = IfMissing::kMake);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    /// Makes the file anew, with this machine. An existing machine is replaced, in one transaction;
    /// one behind a link or of another user is refused. Throws StoreError.
    static void Create(const std::string& path, const Machine& machine);

    /// The machine, brought up to now: whatever was due has happened and is saved.
    const Machine& Current();

    /// One transaction: brings the machine up to now, lets `work` change it and saves what is
    /// different. When `work` returns false or throws, nothing of its changes stays.
    /// Returns what `work` returned.
    bool Change(const std::function<bool(Machine& machine, Time now)>& work);

private:
    struct Database;
    std::unique_ptr<Database> database_;
};

}  // namespace hxsim
