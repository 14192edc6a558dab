// Legs, pairs and rings, and the losses that each still survives.
#include "conditions/hxc_redundancy.h"

#include <algorithm>
#include <cstddef>

#include "codes/disk.h"
#include "codes/level.h"
#include "codes/state.h"

namespace hxconditions {

namespace {

using hxcodes::DiskBit;

// Positions that share redundancy.
struct Leg {
    std::vector<unsigned> positions;
    unsigned redundancy;
};

bool IsLost(const Member& member, const std::vector<Disk>& disks) {
    if (member.state && *member.state != hxcodes::State::kOptimal) return true;
    if (disks.empty()) return false;
    const auto disk = std::ranges::find_if(
        disks, [&](const Disk& each) { return member.disk && each.id == *member.disk; });
    if (disk == disks.end()) return true;
    return (disk->status & (DiskBit::kFailed | DiskBit::kUnavailable)) != 0;
}

std::vector<Leg> LegsOf(const hxcodes::LevelRow& level, unsigned width, unsigned told_legs) {
    std::vector<Leg> legs;
    const unsigned redundancy = hxcodes::RedundancyOf(level);
    if (level.spread == hxcodes::Spread::kRing) {
        for (unsigned i = 0; i < width; ++i) legs.push_back({{i, (i + 1) % width}, redundancy});
        return legs;
    }
    unsigned count = hxcodes::LegsOf(level, told_legs);
    if (level.spread == hxcodes::Spread::kPairs) count = width / 2;
    const unsigned leg = count == 0 ? 0 : width / count;
    for (unsigned first = 0; leg != 0 && first + leg <= width; first += leg) {
        Leg& each = legs.emplace_back();
        each.redundancy = redundancy;
        for (unsigned i = first; i < first + leg; ++i) each.positions.push_back(i);
    }
    return legs;
}

bool Contains(const std::vector<unsigned>& list, unsigned value) {
    return std::ranges::find(list, value) != list.end();
}

}  // namespace

std::optional<unsigned> SurvivesOf(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const Redundancy redundancy = RedundancyOf(virtual_disk, adapter.disks);
    if (redundancy.is_offline || virtual_disk.state == hxcodes::State::kOffline) return 0;
    // Without the disks' states a position may be lost although its block looks good.
    const bool whole = adapter.disks_query.IsRead() && adapter.virtual_disks_query.IsRead();
    return whole || redundancy.survives == 0U ? redundancy.survives : std::nullopt;
}

std::string_view NameOf(Protection protection) {
    constexpr std::string_view kNames[] = {"none", "full", "reduced", "exhausted", "lost"};
    return kNames[static_cast<std::size_t>(protection)];
}

std::optional<Protection> ProtectionOf(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const Redundancy redundancy = RedundancyOf(virtual_disk, adapter.disks);
    if (redundancy.is_offline || virtual_disk.state == hxcodes::State::kOffline) {
        return Protection::kLost;
    }
    const auto survives = SurvivesOf(adapter, virtual_disk);
    if (!survives) return std::nullopt;
    if (!IsRedundant(virtual_disk.level)) return Protection::kNone;
    if (redundancy.lost.empty()) return Protection::kFull;
    return *survives > 0 ? Protection::kReduced : Protection::kExhausted;
}

std::vector<std::optional<unsigned>> LegsOfMembers(const VirtualDisk& virtual_disk) {
    const auto width = static_cast<unsigned>(virtual_disk.members.size());
    std::vector<std::optional<unsigned>> found(width);
    const hxcodes::LevelRow* const level = hxcodes::FindCode(hxcodes::kLevels, virtual_disk.level);
    if (level == nullptr || level->spread == hxcodes::Spread::kRing) return found;
    const std::vector<Leg> legs = LegsOf(*level, width, virtual_disk.legs);
    if (level->spread == hxcodes::Spread::kLegs && legs.size() < 2) return found;
    for (unsigned i = 0; i < legs.size(); ++i) {
        for (const unsigned position : legs[i].positions) found[position] = i;
    }
    return found;
}

bool IsRedundant(unsigned level) {
    const hxcodes::LevelRow* const row = hxcodes::FindCode(hxcodes::kLevels, level);
    return row != nullptr && hxcodes::RedundancyOf(*row) > 0;
}

Redundancy RedundancyOf(const VirtualDisk& virtual_disk, const std::vector<Disk>& disks) {
    Redundancy found;
    const unsigned width = static_cast<unsigned>(virtual_disk.members.size());
    for (unsigned i = 0; i < width; ++i) {
        if (IsLost(virtual_disk.members[i], disks)) found.lost.push_back(i);
    }
    const hxcodes::LevelRow* const level = hxcodes::FindCode(hxcodes::kLevels, virtual_disk.level);
    if (level == nullptr || width == 0) return found;
    unsigned least = hxcodes::RedundancyOf(*level);
    for (const Leg& leg : LegsOf(*level, width, virtual_disk.legs)) {
        const auto is_lost = [&](unsigned each) { return Contains(found.lost, each); };
        const auto lost = static_cast<unsigned>(std::ranges::count_if(leg.positions, is_lost));
        if (lost > leg.redundancy) found.is_offline = true;
        least = std::min(least, lost > leg.redundancy ? 0 : leg.redundancy - lost);
        if (lost != leg.redundancy || lost == 0) continue;
        for (const unsigned each : leg.positions) {
            if (!is_lost(each) && !Contains(found.needed, each)) found.needed.push_back(each);
        }
    }
    found.survives = least;
    for (unsigned i = 0; i < width; ++i) {
        if (!Contains(found.lost, i) && !Contains(found.needed, i)) {
            found.spare_positions.push_back(i);
        }
    }
    return found;
}

}  // namespace hxconditions
