// What one round has found, for all that is published of it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "common/duration.h"
#include "conditions/hxc_answers.h"
#include "conditions/hxc_overview.h"
#include "service/hxs_delivery_queue.h"
#include "service/hxs_facts.h"
#include "service/hxs_source.h"
#include "service/hxs_tally.h"
#include "service/hxs_tasks.h"

namespace hxservice {

/// The service's own work, since it was started.
struct Work {
    std::uint64_t rounds = 0;  // that have ended
    std::uint64_t looks = 0;
    vexortools::Duration in_rounds{0};
    vexortools::Duration last_round{0};
};

/// The machine as of the last look, which may be some rounds old; the rest as of now.
struct Snapshot {
    std::int64_t written_at = 0;       // seconds since 1970
    std::int64_t looked_at = 0;        // seconds since 1970; 0: not yet
    vexortools::Duration interval{0};  // of the rounds
    bool is_once = false;              // no next round follows by itself
    std::string version;
    std::string collection;  // how the last check-in ended, for people
    bool is_collecting = false;
    StoreExtent store;
    Work work{};
    const hxconditions::Overview& overview;
    const hxconditions::Counts& counts;
    const hxconditions::Answers& answers;
    const Facts& facts;
    const std::vector<RunningTask>& tasks;
    const EventTally& events;
    const std::map<std::string, SinkQueue>& sinks;  // by name
};

}  // namespace hxservice
