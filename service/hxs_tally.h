// What is known of the events that were told: how many of each kind, and the last few.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>

#include "service/hxs_source.h"

namespace hxservice {

/// Is kept in the state file, so that a restart does not set the counts back.
struct EventCounts {
    using Kind = std::pair<std::string, std::string>;  // class and severity
    std::map<Kind, std::uint64_t> told;
    std::uint64_t lost = 0;
};

class EventTally {
public:
    static constexpr std::size_t kLastEvents = 5;

    /// `counts` are those of earlier processes.
    explicit EventTally(EventCounts counts = {}) : counts_(std::move(counts)) {}

    /// An event that is told now.
    void Count(const StoredEvent& event);
    /// An event that may have been told already.
    void Remember(const StoredEvent& event);
    void Lose(std::uint64_t events) { counts_.lost += events; }
    /// The numbers of events begin anew.
    void ForgetLast() { last_.clear(); }

    const EventCounts& Counts() const { return counts_; }
    /// The oldest first.
    const std::deque<StoredEvent>& Last() const { return last_; }

private:
    EventCounts counts_;
    std::deque<StoredEvent> last_;
};

/// "virtual_disk"; the number of a class that has no name.
std::string ClassNameOf(const hxconditions::Event& event);

}  // namespace hxservice
