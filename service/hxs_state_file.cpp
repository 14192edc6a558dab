#include "service/hxs_state_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "descriptor.h"
#include "service/hxs_state_json.h"

namespace hxservice {

namespace {

using hxsqlite::Access;
using hxsqlite::Connection;
using hxsqlite::DamagedError;
using hxsqlite::Statement;
using hxsqlite::Transaction;
using hxsqlite::Trouble;

constexpr int kApplication = 0x68787376;  // "hxsv"

constexpr std::string_view kState = "conditions";
constexpr std::string_view kPlace = "place";
constexpr std::string_view kEvents = "events";

std::string SentenceOf(Trouble trouble, const std::string& path, const std::string& why) {
    const char* const what = trouble == Trouble::kDamaged ? " is damaged: " : " cannot be used: ";
    return path + what + why;
}

bool IsThere(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

bool IsEmpty(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0;
}

// Makes the file under another name first: one that a process leaves behind that is killed
// meanwhile is never taken for the file itself, so that an empty one is known to be damaged.
void Make(const std::string& path) {
    const std::string made = path + ".new";
    unlink(made.c_str());
    {
        const Descriptor file(
            open(made.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0640));
        if (!file.IsOpen())
            throw hxsqlite::StoreError(path + " cannot be made: " + std::strerror(errno));
    }
    {
        const Connection connection(made, Access::kWrite, SentenceOf);
        Transaction transaction(connection);
        connection.Execute("CREATE TABLE kept (name TEXT PRIMARY KEY, value TEXT NOT NULL)");
        connection.Execute("PRAGMA application_id = " + std::to_string(kApplication));
        connection.Execute("PRAGMA user_version = " + std::to_string(kStateVersion));
        transaction.Commit();
    }
    if (std::rename(made.c_str(), path.c_str()) != 0)
        throw hxsqlite::StoreError(path + " cannot be made: " + std::strerror(errno));
}

std::optional<std::string> Value(const Connection& connection, std::string_view name) {
    Statement select = connection.Prepare("SELECT value FROM kept WHERE name = ?");
    select.BindText(1, name);
    if (!select.Step()) return std::nullopt;
    return std::string(select.Bytes(0));
}

void Keep(const Connection& connection, std::string_view name, const std::string& value) {
    Statement insert = connection.Prepare("INSERT OR REPLACE INTO kept VALUES (?, ?)");
    insert.BindText(1, name);
    insert.BindText(2, value);
    insert.Run();
}

}  // namespace

StateFile::StateFile(const std::string& path) {
    try {
        Open(path);
    } catch (const DamagedError& error) {
        connection_ = Connection();
        const std::string aside = path + ".damaged";
        if (std::rename(path.c_str(), aside.c_str()) != 0) throw;
        std::rename((path + "-journal").c_str(), (aside + "-journal").c_str());
        damage_ = std::string(error.what()) + "; it is " + aside + " now";
        saved_ = Saved();
        Open(path);
        saved_.alerts.was_lost = true;
    }
}

void StateFile::Open(const std::string& path) {
    if (!IsThere(path)) Make(path);
    if (IsEmpty(path)) throw DamagedError(path + " is damaged: it is empty");
    connection_ = Connection(path, Access::kWrite, SentenceOf);
    const std::int64_t version = connection_.Number("PRAGMA user_version");
    const std::int64_t application = connection_.Number("PRAGMA application_id");
    if (application != kApplication || version != kStateVersion) {
        throw DamagedError(path + " is no state of this version of the service");
    }
    try {
        if (const auto text = Value(connection_, kState)) saved_.state = ParseState(*text);
        // Not in a file from before they were kept.
        if (const auto text = Value(connection_, kEvents)) saved_.events = ParseEventCounts(*text);
    } catch (const StateTextError& error) {
        throw DamagedError(path + " is damaged: " + error.what());
    }
    if (const auto place = Value(connection_, kPlace)) {
        saved_.place = std::strtoull(place->c_str(), nullptr, 10);
    }
    MakeOutboxTables(connection_);  // a file from before there were alerts
    saved_.alerts = LoadOutbox(connection_, path);
}

void StateFile::Save(const Saved& saved) {
    Transaction transaction(connection_);
    Keep(connection_, kState, StateText(saved.state));
    if (saved.place) Keep(connection_, kPlace, std::to_string(*saved.place));
    Keep(connection_, kEvents, EventCountsText(saved.events));
    SaveOutbox(connection_, saved.alerts);
    transaction.Commit();
}

}  // namespace hxservice
