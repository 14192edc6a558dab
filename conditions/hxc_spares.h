// The disks that can replace a lost member of a virtual disk.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "conditions/hxc_answers.h"

namespace hxconditions {

/// Whether the disk is healthy and unused.
bool IsFree(const Disk& disk);
/// Whether the disk is a spare of either kind, usable or not.
bool IsSpare(const Disk& disk);
/// Whether the disk is a spare that can step in.
bool IsReadySpare(const Disk& disk);
bool IsMember(const VirtualDisk& virtual_disk, unsigned disk);
/// Whether the spare may serve the virtual disk: a global spare any of its adapter, a group spare
/// those of its group.
bool Reaches(const Disk& spare, const VirtualDisk& virtual_disk);

/// The sectors that the disk can provide for a member.
std::uint64_t RoomOf(const Disk& disk);
/// The sectors that a replacement disk needs: those of the lost members, or those of the smallest
/// member while none is lost.
std::uint64_t NeededBy(const Adapter& adapter, const VirtualDisk& virtual_disk,
                       const std::vector<unsigned>& lost);

/// The same that suffices for any member while none is lost; null when unknown.
std::optional<std::uint64_t> NeededForAny(const Adapter& adapter, const VirtualDisk& virtual_disk,
                                          const std::vector<unsigned>& lost);

/// Whether a spare can take the place of a member, and otherwise the first reason why not.
enum class SpareFit : std::uint8_t { kFits, kBroken, kOtherGroup, kTooSmall, kMember };
/// "fits", "broken", "other_group", "too_small", "already_member".
std::string_view NameOf(SpareFit fit);
SpareFit FitOf(const Disk& spare, const VirtualDisk& virtual_disk, std::uint64_t needed);

/// The spare that would step in: spares of the disk group before global ones, the smallest of each
/// kind first; null when none has `needed` sectors.
const Disk* SpareFor(const Adapter& adapter, const VirtualDisk& virtual_disk, std::uint64_t needed);
/// The best free disk to replace a lost member, or the largest member while none is lost: the
/// smallest disk of at least its size, else the smallest that suffices; null when none does.
const Disk* FreeDiskFor(const Adapter& adapter, const VirtualDisk& virtual_disk,
                        const std::vector<unsigned>& lost, std::uint64_t needed);

}  // namespace hxconditions
