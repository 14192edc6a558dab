// Recognises state files and upgrades those of an older version.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "store/hxsim_sqlite.h"

namespace hxsim {

/// SQLite's application ID of a state file: "VXSM".
inline constexpr std::int64_t kApplicationId = 0x5658534D;

/// The version of the tables that this program reads and writes.
inline constexpr std::int64_t kSchemaVersion = 1;

/// What turns the tables of one version into those of the next.
struct UpgradeStep {
    std::int64_t from;
    const char* sql;
};

/// The steps from the oldest version that can still be read up to kSchemaVersion, in order. None
/// yet: there has been one version only.
inline constexpr std::span<const UpgradeStep> kUpgradeSteps{};

/// Takes the tables from their version to `wanted`, step by step, and notes it in the file. Throws
/// StoreError when no steps lead there: the file is too old, or newer than this program. Within the
/// caller's transaction.
void Upgrade(const Connection& connection, const std::string& path,
             std::span<const UpgradeStep> steps, std::int64_t wanted);

/// True for a state file, false for an empty database. Throws StoreError for any other database.
bool IsStateFile(const Connection& connection, const std::string& path);

}  // namespace hxsim
