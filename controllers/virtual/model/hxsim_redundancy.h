// The state of virtual disks and disk groups that follows from their lost disks.
#pragma once

#include <bitset>

#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// A set of positions of a virtual disk or a disk group.
using Positions = std::bitset<256>;

/// The state of an array that has lost these positions; positions from `width` on are ignored.
State StateOfArray(Level level, HX_U8 legs, HX_U8 width, const Positions& lost);

/// Whether an array in that state can be read and written.
constexpr bool IsUsable(State state) { return state < State::kOffline; }

/// Whether the level has redundancy: copies or parity.
bool IsRedundant(Level level);

/// The positions that a virtual disk has lost: those without a block, on a disk that is not ready,
/// or with content that is out of date. With `target`, those of the target blocks of its migration
/// or copyback.
Positions LostPositions(const Adapter& adapter, HX_U16 virtual_disk, bool target = false);

/// The state that follows from a virtual disk's blocks and their disks.
State StateOf(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// The state of a disk group: the worst of its virtual disks, or without any the state that follows
/// from its disks.
State StateOf(const Adapter& adapter, const DiskGroup& group);

}  // namespace hxsim
