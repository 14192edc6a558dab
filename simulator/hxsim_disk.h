// The disks of the virtual controller, and what they are used for.
#ifndef HXSIM_DISK_H
#define HXSIM_DISK_H

#include "hxraid.h"
#include "hxsim_machine.h"

namespace hxsim {

/// The part that a disk plays.
struct Part {
    HX_U8 status;            // HxsimDiskStatus
    HX_U16 serves;           // disk group or, on a disk of none, virtual disk; kNoId neither
    const DiskGroup* group;  // that it belongs to; null for spares, too
};
Part PartOf(HX_U8 adapter, const Disk& disk);

}  // namespace hxsim

#endif
