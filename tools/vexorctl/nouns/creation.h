// What creating and migrating have in common, of virtual disks and of disk groups: the RAID levels,
// sizes and names as they are typed, and the disks that are named or chosen.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/object_name.h"
#include "model/objects.h"
#include "nouns/change.h"
#include "shell/command.h"

struct LevelRow {
    std::string_view name;
    std::string_view code;
    unsigned parity;
};

inline constexpr std::string_view kLevelNames = "0 1 1e 5 6 10 50 60";

/// --raid. Throws UsageError when it was not given.
const LevelRow& LevelOption(const Invocation& invocation);

/// --name. Throws UsageError for a name that the library's results cannot carry.
std::string NameOption(const Invocation& invocation, NameMarkup markup,
                       const std::string& otherwise);

/// --stripe in KiB.
std::string StripeOption(const Invocation& invocation, const std::string& otherwise);

/// --size: 10GiB, 20GB, 50% of the most, or max.
struct SizeWish {
    std::string typed;
    std::optional<std::uint64_t> sectors;  // a size; otherwise a share of the most
    unsigned percent = 100;

    /// Throws Failure when it is more than the most; `alternatives` tells what else there is.
    std::uint64_t Of(std::uint64_t most_sectors, const std::string& alternatives = {}) const;
};
SizeWish SizeOption(const Invocation& invocation);

/// What stands between commas.
std::vector<std::string> SplitList(std::string_view list);

/// "a1/pd3 (BR500D, 465.73 GiB free)"
std::string Described(const Disk& disk);

/// The disks of these addresses, all on one adapter. Throws UsageError and Failure.
std::vector<Disk> NamedDisks(Invocation& invocation, std::span<const std::string> typed);

/// Their numbers, as lists of the library have them.
std::string Ids(std::span<const Disk> disks);

/// What the disks give together, in sectors; null when the controller refuses to say.
using RoomOfDisks = std::function<std::optional<std::uint64_t>(std::span<const Disk>)>;

/// Picks `count` free disks without a boot record. For a size the smallest that suffice, otherwise
/// those that give the most. Disks that are connected in different ways are mixed only where there
/// is no other choice. Throws Failure, which tells the alternatives.
std::vector<Disk> PickDisks(Invocation& invocation, std::size_t count, const SizeWish& size,
                            const RoomOfDisks& room);

/// What is free, on this adapter first and then on the others: "; free on a1: a1/pd3, a1/pd4
/// (465.73 GiB each); free on a0: ...".
std::string Alternatives(Invocation& invocation, unsigned adapter);

/// Adds the disks to the plan. Where one holds data the plan says so and `name` has to be typed.
void AddDisks(Change& change, std::span<const Disk> disks, const std::string& name);
