// One check-in: the events that wait in the controllers' queues are moved into the event store.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conditions/hxc_answers.h"
#include "service/hxs_log.h"
#include "service/hxs_source.h"
#include "service/hxs_tally.h"

namespace hxservice {

enum class CheckIn : std::uint8_t {
    kDone,
    kUnreachable,  // the library or the controller cannot be asked, or there is no adapter
    kStoreClosed,  // nothing was taken, because the store cannot be written
};

/// What the check-ins since the last question brought.
struct News {
    std::vector<hxconditions::Event> events;
    std::uint64_t lost = 0;  // overwritten before they could be read
    bool was_reset = false;  // the store: how many events went with it is not known
};

class Collector {
public:
    /// The references must outlive the collector. `place` is the event of the store at which to go
    /// on; without it, at the first one that is new. `counts` are of the events before it.
    Collector(Source& source, Log& log, std::optional<std::uint64_t> place, EventCounts counts = {})
        : source_(source), log_(log), tally_(std::move(counts)), place_(place) {}

    /// Checks in, and writes each event that is new in the store to the log.
    CheckIn Collect();

    /// How the last check-in ended, as one line for people.
    std::string Status() const;

    News TakeNews();

    /// The store, as the last check-in found it.
    const hxconditions::Store& Store() const { return store_state_; }
    const StoreExtent& Extent() const { return extent_; }
    std::optional<std::uint64_t> Place() const { return place_; }
    const EventTally& Tally() const { return tally_; }

private:
    bool IsAnyAdapter(unsigned adapters);
    bool MayCheckIn(unsigned adapters);
    void LookAtStore();
    void FollowStore(const StoreExtent& extent);
    void Lose(std::uint64_t events);
    void RememberLast(const StoreExtent& extent);
    void TellEvents(const StoreExtent& extent);

    Source& source_;
    Log& log_;
    Lasting controller_{log_, "the controller answers again"};
    Lasting store_{log_, "the event store can be written again"};
    Lasting events_{log_, "the event store can be read again"};
    std::optional<unsigned> adapters_;
    std::uint64_t told_ = 0;
    News news_;
    EventTally tally_;
    hxconditions::Store store_state_;
    StoreExtent extent_;
    std::optional<std::uint64_t> place_;  // in the store: the next event to be told
};

}  // namespace hxservice
