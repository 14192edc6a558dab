// A machine in a database's tables: creates the tables, reads the machine, writes its changes.
#pragma once

#include <string>
#include <vector>

#include "model/hxsim_machine.h"
#include "store/hxsim_sqlite.h"

namespace hxsim {

/// Drops all existing tables and creates new ones. Within the caller's transaction.
void MakeTables(const Connection& connection);

/// The statements for the tables of one connection.
class Tables {
public:
    explicit Tables(const Connection& connection);

    /// Reads the machine. Throws StoreError for an impossible value or a broken rule (Check).
    /// Within the caller's transaction, so that all rows are from the same moment.
    Machine Load(const std::string& path);

    /// The same without checking the rules.
    Machine LoadUnchecked(const std::string& path);

    /// Writes the rows that differ in `after`. Within the caller's transaction.
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
