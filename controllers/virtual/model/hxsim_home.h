// The positions of virtual disks and disk groups: which disk serves each, and which one it belongs
// on.
#pragma once

#include <span>
#include <vector>

#include "model/hxsim_machine.h"

namespace hxsim {

/// The Home row of a position; null when there is none.
Home* HomeOf(Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position);
const Home* HomeOf(const Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position);

/// The Home row of a virtual disk's position: its own, or that of its disk group; null when there
/// is none.
Home* HomeOf(Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position);
const Home* HomeOf(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position);

/// Whether another disk serves the position than the one that it belongs on.
bool IsDisplaced(const Home& home);

/// The disks that serve the positions of a disk group, or of a virtual disk on disks of its own;
/// kNoId for one that is lost.
std::vector<HX_U16> DisksOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// Sets which disks serve the positions, each at home there.
void SetHomes(Adapter& adapter, Owner of, HX_U16 owner, std::span<const HX_U16> disks);

/// Removes the rows of all positions.
void DropHomes(Adapter& adapter, Owner of, HX_U16 owner);

}  // namespace hxsim
