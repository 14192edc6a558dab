// What lost disks mean for virtual disks and disk groups: the state that follows from them.
#pragma once

#include <bitset>

#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Some of the positions of a virtual disk or a disk group.
using Positions = std::bitset<256>;

/// The state of an array without the positions that are lost; those from `width` on do not count.
State StateOfArray(Level level, HX_U8 legs, HX_U8 width, const Positions& lost);

/// Whether an array in that state can be read and written.
constexpr bool IsUsable(State state) { return state < State::kOffline; }

/// Whether the level keeps anything twice, or parity.
bool IsRedundant(Level level);

/// The positions that a virtual disk has lost: without a block, on a disk that is not ready, or
/// with content that is not what it should be. With `target`, of what it is to become.
Positions LostPositions(const Adapter& adapter, HX_U16 virtual_disk, bool target = false);

/// The state that follows from a virtual disk's blocks and their disks: State.
State StateOf(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// The state of a disk group: the worst of its virtual disks and, for one without, what its
/// disks make of it.
State StateOf(const Adapter& adapter, const DiskGroup& group);

}  // namespace hxsim
