// The calls that configure, import and delete virtual disks.
//
// On refusal no function here changes the adapter.
#pragma once

#include "hxraid.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The cache bits that a caller sets.
inline constexpr HX_U8 kCacheBits = CacheBit::kWriteBack | CacheBit::kReadAhead;

/// Sets name, cache and automatic rebuild. CacheBit::kForcedWriteThrough is ignored: a caller may
/// send back the value that it has read.
Status SetVirtualDisk(Adapter& adapter, Time now, HX_U16 id, const LD_Config& config);

/// Deletes a virtual disk and its activities. With `erase_mbr` its disks lose their master boot
/// records.
Status DeleteVirtualDisk(Adapter& adapter, Time now, HX_U16 id, bool erase_mbr);

/// Imports a foreign virtual disk with its disks.
Status ImportVirtualDisk(Adapter& adapter, Time now, HX_U16 id);

/// Whether a caller may send these cache bits.
bool IsCache(HX_U8 cache);

/// Sets the cache bits and queues an event when they change. Precondition: IsCache(cache).
void SetCache(Adapter& adapter, Time now, VirtualDisk& virtual_disk, HX_U8 cache);

/// Removes a virtual disk: aborts its activities, frees its blocks and returns stand-in spares.
/// Precondition: it exists.
void RemoveVirtualDisk(Adapter& adapter, Time now, HX_U16 id);

}  // namespace hxsim
