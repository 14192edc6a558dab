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

class EventTally {
public:
    static constexpr std::size_t kLastEvents = 5;
    using Kind = std::pair<std::string, std::string>;  // class and severity

    /// An event that is told now.
    void Count(const StoredEvent& event);
    /// An event that may have been told already.
    void Remember(const StoredEvent& event);
    void Lose(std::uint64_t events) { lost_ += events; }
    /// The numbers of events begin anew.
    void ForgetLast() { last_.clear(); }

    const std::map<Kind, std::uint64_t>& Counts() const { return counts_; }
    std::uint64_t Lost() const { return lost_; }
    /// The oldest first.
    const std::deque<StoredEvent>& Last() const { return last_; }

private:
    std::map<Kind, std::uint64_t> counts_;
    std::deque<StoredEvent> last_;
    std::uint64_t lost_ = 0;
};

/// "virtual_disk"; the number of a class that has no name.
std::string ClassNameOf(const hxconditions::Event& event);

}  // namespace hxservice
