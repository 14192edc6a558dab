// A machine in a database's tables: made, read, and written where it has changed.
#pragma once

#include <string>
#include <vector>

#include "model/hxsim_machine.h"
#include "store/hxsim_sqlite.h"

namespace hxsim {

/// Makes the tables, dropping whatever was there. Within the caller's transaction.
void MakeTables(const Connection& connection);

/// The statements for the tables of one connection.
class Tables {
public:
    explicit Tables(const Connection& connection);

    /// Reads the machine. Throws StoreError for an impossible value or a broken rule (Check). Runs
    /// within a transaction of the caller's, so that all is of one moment.
    Machine Load(const std::string& path);

    /// The same without a look at the rules.
    Machine LoadUnchecked(const std::string& path);

    /// Writes what is different in `after`. Within the caller's transaction.
    void Save(const Machine& before, const Machine& after);

private:
    struct Statements {
        Statement load;
        Statement put;
        Statement erase;
    };
    const Connection& connection_;
    std::vector<Statements> statements_;  // in the order of MachineTables and AdapterTables

    friend class Loading;
    friend class Saving;
};

}  // namespace hxsim
