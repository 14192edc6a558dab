// Which disks may take the place of a member that a virtual disk has lost.
#pragma once

#include <cstdint>
#include <vector>

#include "conditions/hxc_answers.h"

namespace hxconditions {

/// Whether it serves nothing and is well.
bool IsFree(const Disk& disk);
/// Whether it is a spare of either kind, broken or not.
bool IsSpare(const Disk& disk);
/// A spare that can step in.
bool IsReadySpare(const Disk& disk);
bool IsMember(const VirtualDisk& virtual_disk, unsigned disk);
/// Whether the spare serves the virtual disk: every one of its adapter, or those of its group.
bool Reaches(const Disk& spare, const VirtualDisk& virtual_disk);

/// The sectors that it could give to a member.
std::uint64_t RoomOf(const Disk& disk);
/// The sectors that a disk needs to take a member's place: as many as the lost ones have, or, while
/// none is lost, as the smallest has.
std::uint64_t NeededBy(const Adapter& adapter, const VirtualDisk& virtual_disk,
                       const std::vector<unsigned>& lost);

/// The spare that steps in first where so much is needed: one of its disk group before one of the
/// adapter, and of each kind the smallest; null where none fits.
const Disk* SpareFor(const Adapter& adapter, const VirtualDisk& virtual_disk, std::uint64_t needed);
/// The free disk that is most like the lost ones, or, while none is lost, like the largest member:
/// the smallest that is as large, else the smallest that suffices. Null where none does.
const Disk* FreeDiskFor(const Adapter& adapter, const VirtualDisk& virtual_disk,
                        const std::vector<unsigned>& lost, std::uint64_t needed);

}  // namespace hxconditions
