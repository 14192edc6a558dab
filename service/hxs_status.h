// What the service publishes after each round: status.json.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "common/duration.h"
#include "conditions/hxc_overview.h"
#include "service/hxs_source.h"

namespace hxservice {

/// The longest text. Conditions that have no room are counted.
inline constexpr std::size_t kLongestStatus = 64000;

struct Report {
    std::int64_t written_at = 0;       // seconds since 1970
    vexortools::Duration interval{0};  // of the rounds
    bool is_once = false;              // no next round follows by itself
    std::string version;
    std::string collection;  // how the last check-in ended, for people
    bool is_collecting = false;
    StoreExtent store;
    const hxconditions::Overview& overview;
    const hxconditions::Counts& counts;
};

std::string StatusText(const Report& report);

}  // namespace hxservice
