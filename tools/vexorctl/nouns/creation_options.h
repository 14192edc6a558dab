// The options that creating and migrating have in common, of virtual disks and of disk groups: RAID
// levels, sizes, stripe sizes and names as they are typed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "codes/level.h"
#include "model/object_name.h"
#include "shell/invocation.h"

namespace vexorctl {

inline constexpr std::string_view kLevelNames = "0 1 1e 5 6 10 50 60";

/// --raid. Throws UsageError when it was not given.
const hxcodes::LevelRow& LevelOption(const Invocation& invocation);

/// The level's rule for the number of disks with the number that was given, "RAID 1 takes exactly 2
/// disks; 3 were given"; empty where the rule is kept. No legs mean the level's own number.
std::string BrokenDiskRule(const hxcodes::LevelRow& level, unsigned asked_legs, std::size_t disks);

/// --name; null when it was not given. Throws UsageError for a name that the library's results
/// cannot carry.
std::optional<std::string> NameOption(const Invocation& invocation, NameMarkup markup);

/// --stripe in KiB; null when it was not given.
std::optional<std::uint64_t> StripeOption(const Invocation& invocation);

/// --size: 10GiB, 20GB, 50% of the most, or max.
struct SizeWish {
    std::string typed;
    std::optional<std::uint64_t> sectors;  // a size; otherwise a share of the most
    unsigned percent = 100;

    /// Throws Failure when it is more than the most; `alternatives` tells what else there is.
    std::uint64_t Of(std::uint64_t most_sectors, const std::string& alternatives = {}) const;
};
SizeWish SizeOption(const Invocation& invocation);

/// The parts of a list, which commas separate.
std::vector<std::string> SplitList(std::string_view list);

}  // namespace vexorctl
