// One check-in: the events that wait in the controllers' queues are moved into the event store.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "service/hxs_log.h"
#include "service/hxs_source.h"

namespace hxservice {

enum class CheckIn : std::uint8_t {
    kDone,
    kUnreachable,  // the library or the controller cannot be asked, or there is no adapter
    kStoreClosed,  // nothing was taken, because the store cannot be written
};

class Collector {
public:
    /// Both must outlive the collector.
    Collector(Source& source, Log& log) : source_(source), log_(log) {}

    /// Checks in, and writes each event that is new in the store to the log.
    CheckIn Collect();

    /// How the last check-in ended, as one line for people.
    std::string Status() const;

private:
    bool IsAnyAdapter(unsigned adapters);
    bool MayCheckIn(unsigned adapters);
    void FollowStore(const StoreExtent& extent);
    void TellEvents(const StoreExtent& extent);

    Source& source_;
    Log& log_;
    Lasting controller_{log_, "the controller answers again"};
    Lasting store_{log_, "the event store can be written again"};
    Lasting events_{log_, "the event store can be read again"};
    std::optional<unsigned> adapters_;
    std::uint64_t told_ = 0;
    std::optional<std::uint64_t> place_;  // in the store: the next event to be told
};

}  // namespace hxservice
