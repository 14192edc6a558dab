// The alerts that wait, for each sink, and what each sink was told: kept in the state file, in the
// transaction of the round that they come from.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_state.h"
#include "service/hxs_notice.h"
#include "sqlite/connection.h"

namespace hxservice {

/// What a sink was told last of an object.
struct Known {
    std::string code;
    std::string address;
    std::uint64_t count = 0;
    std::string explained;         // causes and hindrance
    hxconditions::Ticks told = 0;  // when it was put into the queue
    unsigned repeats = 0;
    std::int64_t delivered = 0;  // seconds since 1970; 0: it waits
};

struct SinkQueue {
    std::map<std::string, Known> known;  // by hxconditions::KeyOf
    std::vector<Notice> waiting;
    std::uint64_t given_up = 0;  // alerts for which there was no room
    unsigned failures = 0;       // since the last delivery
    // Letters since the sink is there.
    std::uint64_t delivered_letters = 0;
    std::uint64_t failed_letters = 0;
    std::string error;  // of the last one
    std::optional<hxconditions::Ticks> failing_since;
    // Notices up to this number were handed over in so many attempts, of which no end is known or
    // which failed after they had begun.
    std::uint64_t maybe_sent = 0;
    unsigned attempts = 0;
};

/// What was told, delivered or not, in the order of time.
struct HistoryEntry {
    std::uint64_t number = 0;
    std::string text;  // JSON
};
inline constexpr std::size_t kMostHistory = 200;

struct Outbox {
    std::map<std::string, SinkQueue> sinks;  // by name
    std::uint64_t next = 1;                  // the number of the next notice
    std::vector<HistoryEntry> history;       // the last kMostHistory
    bool was_lost = false;  // with a damaged state file: what is told again may be a repeat
};

/// Makes the tables where they are missing.
void MakeOutboxTables(const hxsqlite::Connection& connection);

/// Throws hxsqlite::StoreError, as DamagedError when the tables hold something else.
Outbox LoadOutbox(const hxsqlite::Connection& connection, const std::string& path);

/// Within a transaction of the caller. Throws hxsqlite::StoreError.
void SaveOutbox(const hxsqlite::Connection& connection, const Outbox& outbox);

}  // namespace hxservice
