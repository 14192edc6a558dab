// The event store as a table of SQLite.
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>

#include "vxevent_yardsticks.h"

namespace yardstick {
namespace {

void Require(int code, int wanted, void* database) {
    if (code == wanted) return;
    std::fprintf(stderr, "sqlite: %s\n", sqlite3_errmsg(static_cast<sqlite3*>(database)));
    std::exit(EXIT_FAILURE);
}

void Execute(void* database, const char* statement) {
    Require(sqlite3_exec(static_cast<sqlite3*>(database), statement, nullptr, nullptr, nullptr),
            SQLITE_OK, database);
}

sqlite3_stmt* Prepare(void* database, const char* text) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(static_cast<sqlite3*>(database), text, -1, &statement, nullptr),
            SQLITE_OK, database);
    return statement;
}

}  // namespace

TableStore::TableStore(const std::string& file, HX_U32 rows_kept) : rows_kept_(rows_kept) {
    sqlite3* database = nullptr;
    const int opened = sqlite3_open(file.c_str(), &database);
    database_ = database;
    Require(opened, SQLITE_OK, database_);
    Execute(database_, "PRAGMA journal_mode=WAL");
    Execute(database_, "PRAGMA synchronous=NORMAL");
    Execute(
        database_,
        "CREATE TABLE event(seq INTEGER PRIMARY KEY, class INT, code INT, time INT, device INT, "
        "severity INT, adapter INT, number INT, p0 INT, p1 INT, p2 INT, p3 INT, "
        "sense_length INT, sense BLOB, text TEXT)");
    insert_ = Prepare(database_,
                      "INSERT INTO event(class, code, time, device, severity, adapter, number, p0, "
                      "p1, p2, p3, sense_length, sense, text) "
                      "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    trim_ = Prepare(database_, "DELETE FROM event WHERE seq <= ?");
}

TableStore::~TableStore() {
    sqlite3_finalize(static_cast<sqlite3_stmt*>(insert_));
    sqlite3_finalize(static_cast<sqlite3_stmt*>(trim_));
    sqlite3_close(static_cast<sqlite3*>(database_));
}

void TableStore::CheckIn(const std::vector<Event>& events) {
    auto* const insert = static_cast<sqlite3_stmt*>(insert_);
    Execute(database_, "BEGIN");
    for (const Event& event : events) {
        char text[kEventTextSize];
        const int length = VX_HX_EVT_Sprintf(&event, text);
        int column = 0;
        for (const HX_U32 number :
             {HX_U32{event.Class}, HX_U32{event.Code}, event.TimeStamp, HX_U32{event.DeviceID},
              HX_U32{event.Severity}, HX_U32{event.AdapterID}, event.SequenceNo, event.Params[0],
              event.Params[1], event.Params[2], event.Params[3], HX_U32{event.SenseDataLength}}) {
            sqlite3_bind_int64(insert, ++column, number);
        }
        sqlite3_bind_blob(insert, ++column, event.SenseData, sizeof event.SenseData, SQLITE_STATIC);
        sqlite3_bind_text(insert, ++column, text, length, SQLITE_STATIC);
        Require(sqlite3_step(insert), SQLITE_DONE, database_);
        sqlite3_reset(insert);
    }
    if (rows_kept_ != 0) {
        auto* const trim = static_cast<sqlite3_stmt*>(trim_);
        const sqlite3_int64 last = sqlite3_last_insert_rowid(static_cast<sqlite3*>(database_));
        sqlite3_bind_int64(trim, 1, last - rows_kept_);
        Require(sqlite3_step(trim), SQLITE_DONE, database_);
        sqlite3_reset(trim);
    }
    Execute(database_, "COMMIT");
}

std::int64_t TableStore::Rows() const {
    sqlite3_stmt* const count = Prepare(database_, "SELECT count(*) FROM event");
    Require(sqlite3_step(count), SQLITE_ROW, database_);
    const std::int64_t rows = sqlite3_column_int64(count, 0);
    sqlite3_finalize(count);
    return rows;
}

}  // namespace yardstick
