// Spares and free disks, and whether they are large enough.
#include "conditions/hxc_spares.h"

#include <algorithm>
#include <cstddef>

#include "codes/disk.h"
#include "conditions/hxc_things.h"

namespace hxconditions {

namespace {

using hxcodes::DiskBit;

constexpr unsigned kNotFree = DiskBit::kConfigured | DiskBit::kGlobalSpare | DiskBit::kGroupSpare |
                              DiskBit::kUnavailable | DiskBit::kFailed | DiskBit::kForeign |
                              DiskBit::kRebuilding;
constexpr unsigned kEitherSpare = DiskBit::kGlobalSpare | DiskBit::kGroupSpare;
constexpr unsigned kUseless = DiskBit::kUnavailable | DiskBit::kFailed;

bool IsOfGroup(const Disk& disk) { return (disk.status & DiskBit::kGroupSpare) != 0; }

// The size of the largest lost disk, or of the largest member while none is lost.
std::uint64_t SizeToReplace(const Adapter& adapter, const VirtualDisk& virtual_disk,
                            const std::vector<unsigned>& lost) {
    std::uint64_t size = 0;
    for (unsigned i = 0; i < virtual_disk.members.size(); ++i) {
        if (!lost.empty() && std::ranges::find(lost, i) == lost.end()) continue;
        const Disk* const disk = FindDisk(adapter, virtual_disk.members[i].disk);
        if (disk != nullptr) size = std::max(size, disk->sectors);
    }
    return size;
}

}  // namespace

bool IsFree(const Disk& disk) { return (disk.status & kNotFree) == 0; }

bool IsSpare(const Disk& disk) { return (disk.status & kEitherSpare) != 0; }

bool IsReadySpare(const Disk& disk) { return IsSpare(disk) && (disk.status & kUseless) == 0; }

bool IsMember(const VirtualDisk& virtual_disk, unsigned disk) {
    return std::ranges::any_of(virtual_disk.members,
                               [&](const Member& each) { return each.disk && *each.disk == disk; });
}

bool Reaches(const Disk& spare, const VirtualDisk& virtual_disk) {
    if ((spare.status & DiskBit::kGlobalSpare) != 0) return true;
    return spare.group && virtual_disk.group && *spare.group == *virtual_disk.group;
}

std::uint64_t RoomOf(const Disk& disk) {
    // A spare is reserved as a whole, so lists of free space do not count it.
    if (IsSpare(disk)) return disk.sectors;
    return disk.free_sectors.value_or(disk.sectors);
}

std::uint64_t NeededBy(const Adapter& adapter, const VirtualDisk& virtual_disk,
                       const std::vector<unsigned>& lost) {
    if (const DiskGroup* const group = FindGroup(adapter, virtual_disk.group)) {
        if (group->sectors_needed) return *group->sectors_needed;
    }
    std::uint64_t needed = 0;
    for (const unsigned position : lost) {
        needed = std::max(needed, virtual_disk.members[position].sectors);
    }
    if (needed != 0) return needed;
    for (const Member& member : virtual_disk.members) {
        if (needed == 0 || member.sectors < needed) needed = member.sectors;
    }
    return needed;
}

std::optional<std::uint64_t> NeededForAny(const Adapter& adapter, const VirtualDisk& virtual_disk,
                                          const std::vector<unsigned>& lost) {
    std::uint64_t needed = NeededBy(adapter, virtual_disk, lost);
    if (lost.empty()) {
        for (const Member& each : virtual_disk.members) needed = std::max(needed, each.sectors);
    }
    return needed == 0 ? std::nullopt : std::optional(needed);
}

std::string_view NameOf(SpareFit fit) {
    constexpr std::string_view kNames[] = {"fits", "broken", "other_group", "too_small",
                                           "already_member"};
    return kNames[static_cast<std::size_t>(fit)];
}

SpareFit FitOf(const Disk& spare, const VirtualDisk& virtual_disk, std::uint64_t needed) {
    if (!IsReadySpare(spare)) return SpareFit::kBroken;
    if (!Reaches(spare, virtual_disk)) return SpareFit::kOtherGroup;
    if (RoomOf(spare) < needed) return SpareFit::kTooSmall;
    return IsMember(virtual_disk, spare.id) ? SpareFit::kMember : SpareFit::kFits;
}

const Disk* SpareFor(const Adapter& adapter, const VirtualDisk& virtual_disk,
                     std::uint64_t needed) {
    const Disk* best = nullptr;
    for (const Disk& disk : adapter.disks) {
        if (FitOf(disk, virtual_disk, needed) != SpareFit::kFits) continue;
        const bool better = best == nullptr || (IsOfGroup(disk) && !IsOfGroup(*best)) ||
                            (IsOfGroup(disk) == IsOfGroup(*best) && disk.sectors < best->sectors);
        if (better) best = &disk;
    }
    return best;
}

const Disk* FreeDiskFor(const Adapter& adapter, const VirtualDisk& virtual_disk,
                        const std::vector<unsigned>& lost, std::uint64_t needed) {
    const std::uint64_t size = SizeToReplace(adapter, virtual_disk, lost);
    const auto is_liker = [&](const Disk& disk, const Disk& other) {
        const bool large = disk.sectors >= size;
        if (large != (other.sectors >= size)) return large;
        return disk.sectors < other.sectors;
    };
    const Disk* best = nullptr;
    for (const Disk& disk : adapter.disks) {
        if (!IsFree(disk) || RoomOf(disk) < needed || IsMember(virtual_disk, disk.id)) continue;
        if (best == nullptr || is_liker(disk, *best)) best = &disk;
    }
    return best;
}

}  // namespace hxconditions
