// The state file: what the service remembers from one start to the next.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "conditions/hxc_state.h"
#include "service/hxs_delivery_queue.h"
#include "service/hxs_tally.h"
#include "sqlite/connection.h"

namespace hxservice {

struct Saved {
    hxconditions::State state;
    std::optional<std::uint64_t> place;  // in the event store: the first event not looked at
    Outbox alerts{};
    EventCounts events{};   // before that place
    std::string answers{};  // what callers can be told while no service runs; not in this file
};

class StateFile {
public:
    /// Opens the file or makes it. One that cannot be read is set aside. Throws
    /// hxsqlite::StoreError.
    explicit StateFile(const std::string& path);

    /// Why the file was set aside, and where it is now; empty when it was not.
    const std::string& Damage() const { return damage_; }

    /// What the file held when it was opened.
    Saved TakeSaved() { return std::move(saved_); }

    /// Saves everything in one transaction. Throws hxsqlite::StoreError.
    void Save(const Saved& saved);

private:
    void Open(const std::string& path);

    hxsqlite::Connection connection_;
    Saved saved_;
    std::string damage_;
};

}  // namespace hxservice
