// The positions of virtual disks and disk groups: the disk that serves each, and its home disk.
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

/// Whether the position is served by a disk that is not its home.
bool IsDisplaced(const Home& home);

/// The disks that serve the positions of a disk group, or of a virtual disk without one; kNoId for
/// a lost position.
std::vector<HX_U16> DisksOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// Sets the disk that serves each position; each disk becomes the home of its position.
void SetHomes(Adapter& adapter, Owner of, HX_U16 owner, std::span<const HX_U16> disks);

/// Removes the rows of all positions.
void DropHomes(Adapter& adapter, Owner of, HX_U16 owner);

}  // namespace hxsim
