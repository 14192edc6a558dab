// How near every virtual disk is to losing data: what it still survives, what would mend it, how
// long that would take, and what its disks have in common.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_answers.h"

namespace hxconditions {

/// An enclosure or expander that takes several members along when it goes.
struct SharedPlace {
    std::string place;  // "a0/enc0", "expander 1 of a0"
    std::vector<std::string> disks;
};

/// A member that tells that it is not well, though it still works.
struct WeakMember {
    std::string disk;
    bool announces_failure = false;  // by SMART
    unsigned remapped = 0;           // entries of its table of remapped sectors
};

struct Risk {
    unsigned adapter = 0;
    unsigned id = 0;
    std::string address;
    std::string name;  // harmless
    bool is_redundant = false;
    bool is_offline = false;
    std::optional<unsigned> survives;             // failures of any disks
    std::vector<std::string> lost;                // disks; of a position without one nothing
    std::size_t lost_count = 0;                   // positions
    std::vector<std::string> needed;              // disks that must not fail
    std::vector<std::string> may_fail;            // one at a time
    bool is_rebuilding = false;                   // one that moves
    std::optional<unsigned> percent;              // of it
    std::optional<std::string> spare;             // that steps in at the next failure, or now
    std::string no_spare;                         // why none does
    std::optional<std::string> free;              // a free disk that would suffice
    std::optional<std::uint64_t> needed_sectors;  // of a disk that takes a member's place
    std::optional<std::int64_t> exposure_s;       // from a failure to the end of its rebuild
    std::vector<SharedPlace> shared;              // whose loss it does not survive
    std::vector<WeakMember> weak;
    std::string sentence;
};

/// Sectors per second that rebuilds have been seen to write, by adapter.
using RebuildRates = std::map<unsigned, double>;

/// One for each virtual disk whose list was read, in the order of adapters and numbers.
std::vector<Risk> RisksOf(const Answers& answers, const RebuildRates& rates);

/// Whether the next failure of some disk loses data, or one already has.
bool IsAtRisk(const Risk& risk);

}  // namespace hxconditions
