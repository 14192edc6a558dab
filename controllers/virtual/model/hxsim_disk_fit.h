// Whether a disk can serve a position of a virtual disk or of a disk group.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Whether a position needs another disk: it has no block, or its disk is not ready.
bool NeedsDisk(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position);
bool NeedsDisk(const Adapter& adapter, const Home& home);

/// Sectors that a disk must have free in one run to serve a position of a virtual disk, or in all
/// to serve a disk group.
Sectors SectorsNeeded(const Adapter& adapter, const VirtualDisk& virtual_disk);
Sectors SectorsNeeded(const Adapter& adapter, const DiskGroup& group);

/// Why a disk cannot serve a position of a virtual disk that lies directly on its disks, or of a
/// disk group; Status::kSuccess when it can. Spares can.
Status CanServe(const Adapter& adapter, const VirtualDisk& virtual_disk, const Disk& disk);
Status CanServe(const Adapter& adapter, const DiskGroup& group, const Disk& disk);

/// The disk that a position belongs on, if it is no spare and can serve; else null. A home that was
/// made a spare stays one.
const Disk* FindHomeDisk(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U16 id);
const Disk* FindHomeDisk(const Adapter& adapter, const DiskGroup& group, HX_U16 id);

}  // namespace hxsim
