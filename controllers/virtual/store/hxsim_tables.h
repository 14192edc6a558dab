// A machine in a database's tables: made, read, and written where it has changed.
#pragma once

#include <cstddef>
#include <tuple>

#include "model/hxsim_machine.h"
#include "store/hxsim_sqlite.h"
#include "store/hxsim_table_rows.h"

namespace hxsim {

/// Makes the tables, dropping whatever was there. Within the caller's transaction.
void MakeTables(const Connection& connection);

/// The statements for the tables of one connection.
class Tables {
public:
    explicit Tables(const Connection& connection) : connection_(connection) {}

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
    static constexpr std::size_t kTables = 2 + std::tuple_size_v<decltype(kMachineTables)> +
                                           std::tuple_size_v<decltype(kAdapterTables)>;

    const Connection& connection_;
    Statements statements_[kTables];  // the machine's, the clock's, then as the tables stand

    friend class Loading;
    friend class Saving;
};

}  // namespace hxsim
