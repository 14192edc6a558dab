// The virtual disks of the virtual controller: made, described, set, imported and deleted.
//
// Every function here that refuses leaves the adapter and what it was given as they are.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The records of a virtual disk: what HX_LD_GetInfo, HX_LD_GetStatus and HX_LD_GetConfig say.
LD_Info DescribeVirtualDisk(const Adapter& adapter, const VirtualDisk& virtual_disk);
LD_Status DescribeStatus(const Adapter& adapter, const VirtualDisk& virtual_disk, Time now);
LD_Config DescribeSettings(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Makes a virtual disk on disks of its own and starts its initialisation. Sets param.LDID to its
/// ID and param.Size to its size.
HX_U8 CreateVirtualDisk(Adapter& adapter, Time now, Create_LD_Param& param);

/// Sets param.Size to the most that CreateVirtualDisk could give.
HX_U8 SizeVirtualDisk(const Adapter& adapter, Create_LD_Param& param);

/// Makes the virtual disk param.VDID (HX_NEW_ID) in a slot of a disk group, or changes its name,
/// its cache and, upwards, its size. A new one takes param.Size, or the longest run that is left;
/// one that is there keeps its name for an empty one, its size for 0, and its slot. Sets
/// param.VDID and param.Size.
HX_U8 CreateOrModifyOnGroup(Adapter& adapter, Time now, CreateOrModify_VD_Param& param);

/// Sets name, cache and automatic rebuild. HXSIM_CACHE_FORCED_WRITE_THROUGH may be set, as it is in
/// what is read, and counts for nothing.
HX_U8 SetVirtualDisk(Adapter& adapter, Time now, HX_U16 id, const LD_Config& config);

/// Deletes a virtual disk, with what goes on on it. With `erase_mbr` its disks lose their master
/// boot records.
HX_U8 DeleteVirtualDisk(Adapter& adapter, Time now, HX_U16 id, bool erase_mbr);

/// Takes a virtual disk and its disks over from another controller.
HX_U8 ImportVirtualDisk(Adapter& adapter, Time now, HX_U16 id);

/// Whether these are bits of a cache that a caller may send.
bool IsCache(HX_U8 cache);

/// Sets the cache, which IsCache, and tells of it when it is another one.
void SetCache(Adapter& adapter, Time now, VirtualDisk& virtual_disk, HX_U8 cache);

/// Takes a virtual disk away: its activities are aborted, its blocks are free and its disks are
/// what they were before. It exists.
void RemoveVirtualDisk(Adapter& adapter, Time now, HX_U16 id);

}  // namespace hxsim
