// Whether a disk can serve a position of a virtual disk or of a disk group.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Whether a position needs another disk: it has no block, or its disk is not ready.
bool NeedsDisk(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position);
bool NeedsDisk(const Adapter& adapter, const Home& home);

/// Sectors that a disk needs: free in one run for a position of a virtual disk, usable in total for
/// a disk group.
Sectors SectorsNeeded(const Adapter& adapter, const VirtualDisk& virtual_disk);
Sectors SectorsNeeded(const Adapter& adapter, const DiskGroup& group);

/// Why a disk cannot serve a position of a virtual disk without a disk group, or of a disk group;
/// Status::kSuccess when it can. Suitable hot spares can.
Status CanServe(const Adapter& adapter, const VirtualDisk& virtual_disk, const Disk& disk);
Status CanServe(const Adapter& adapter, const DiskGroup& group, const Disk& disk);

/// The home disk of a position, if it can serve and is no hot spare; else null. A home that was
/// made a spare stays a spare.
const Disk* FindHomeDisk(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U16 id);
const Disk* FindHomeDisk(const Adapter& adapter, const DiskGroup& group, HX_U16 id);

}  // namespace hxsim
