// The records of virtual disks.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The records of a virtual disk: what HX_LD_GetInfo, HX_LD_GetStatus and HX_LD_GetConfig say.
LD_Info DescribeVirtualDisk(const Adapter& adapter, const VirtualDisk& virtual_disk);
LD_Status DescribeStatus(const Adapter& adapter, const VirtualDisk& virtual_disk, Time now);
LD_Config DescribeSettings(const Adapter& adapter, const VirtualDisk& virtual_disk);

}  // namespace hxsim
