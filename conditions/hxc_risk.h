// The risk of data loss of every virtual disk: the failures that it survives, the disk that would
// restore it, the time of a rebuild, and enclosures or expanders that its disks share.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_answers.h"

namespace hxconditions {

/// An enclosure or expander whose failure takes several members away.
struct SharedPlace {
    std::string place;  // "a0/enc0", "expander 1 of a0"
    std::vector<std::string> disks;
};

/// A working member that shows signs of failure.
struct WeakMember {
    std::string disk;
    bool announces_failure = false;  // by SMART
    unsigned remapped = 0;           // entries of its remap table
};

struct Risk {
    unsigned adapter = 0;
    unsigned id = 0;
    std::string address;
    std::string name;  // harmless
    bool is_redundant = false;
    bool is_offline = false;
    std::optional<unsigned> survives;             // failures of any disks
    std::vector<std::string> lost;                // disks; positions without a disk are left out
    std::size_t lost_count = 0;                   // positions
    std::vector<std::string> needed;              // disks that must not fail
    std::vector<std::string> may_fail;            // one at a time
    bool is_rebuilding = false;                   // a rebuild makes progress
    std::optional<unsigned> percent;              // of the rebuild
    std::optional<std::string> spare;             // the spare that steps in at the next failure, or
                                                  // now
    std::string no_spare;                         // why there is none
    std::optional<std::string> free;              // a free disk that would suffice
    std::optional<std::uint64_t> needed_sectors;  // of a disk that takes a member's place
    std::optional<std::int64_t> exposure_s;       // from a failure to the end of its rebuild
    std::vector<SharedPlace> shared;              // places whose loss it does not survive
    std::vector<WeakMember> weak;
    std::string sentence;
};

/// Observed speed of rebuilds in sectors per second, by adapter.
using RebuildRates = std::map<unsigned, double>;

/// One risk for each listed virtual disk, in the order of adapters and numbers.
std::vector<Risk> RisksOf(const Answers& answers, const RebuildRates& rates);

/// Whether data is lost already, or the failure of some disk would lose it.
bool IsAtRisk(const Risk& risk);

}  // namespace hxconditions
