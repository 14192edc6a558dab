#include "store/hxsim_upgrade.h"

#include "store/hxsim_store_error.h"

namespace hxsim {
namespace {

// `hxsimctl init` asks for --force before it replaces a file, so the advice names it.
constexpr const char* kAdvice =
    "). Move it away, or make a new machine in its place with: hxsimctl init --force";

}  // namespace

void Upgrade(const Connection& connection, const std::string& path,
             std::span<const UpgradeStep> steps, std::int64_t wanted) {
    const std::int64_t found = connection.Number("PRAGMA user_version");
    if (found > wanted) {
        throw StoreError(path + " was made by a newer version of the virtual controller (schema " +
                         std::to_string(found) + "; this one knows " + std::to_string(wanted) +
                         kAdvice);
    }
    std::int64_t version = found;
    for (const UpgradeStep& step : steps) {
        if (step.from != version) continue;
        connection.Execute(step.sql);
        ++version;
    }
    if (version != wanted) {
        throw StoreError(path + " was made by a version of the virtual controller that is too " +
                         "old (schema " + std::to_string(found) + kAdvice);
    }
    if (version != found) {
        connection.Execute("PRAGMA user_version = " + std::to_string(version));
    }
}

bool IsStateFile(const Connection& connection, const std::string& path) {
    if (connection.Number("PRAGMA application_id") == kApplicationId) return true;
    const bool empty = connection.Number("PRAGMA application_id") == 0 &&
                       connection.Number("SELECT count(*) FROM sqlite_schema") == 0;
    if (empty) return false;
    throw StoreError(path +
                     " is another program's database; move it away and run: hxsimctl init, or "
                     "name another file in HXSIM_STATE.");
}

}  // namespace hxsim
