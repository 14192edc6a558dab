// Virtual disks: set, imported and deleted.
//
// Every function here that refuses leaves the adapter as it is.
#pragma once

#include "hxraid.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The bits of a cache that a caller sets.
inline constexpr HX_U8 kCacheBits = CacheBit::kWriteBack | CacheBit::kReadAhead;

/// Sets name, cache and automatic rebuild. CacheBit::kForcedWriteThrough may be set, as it is in
/// what is read, and counts for nothing.
Status SetVirtualDisk(Adapter& adapter, Time now, HX_U16 id, const LD_Config& config);

/// Deletes a virtual disk, with what goes on on it. With `erase_mbr` its disks lose their master
/// boot records.
Status DeleteVirtualDisk(Adapter& adapter, Time now, HX_U16 id, bool erase_mbr);

/// Takes a virtual disk and its disks over from another controller.
Status ImportVirtualDisk(Adapter& adapter, Time now, HX_U16 id);

/// Whether these are bits of a cache that a caller may send.
bool IsCache(HX_U8 cache);

/// Sets the cache, which IsCache, and tells of it when it is another one.
void SetCache(Adapter& adapter, Time now, VirtualDisk& virtual_disk, HX_U8 cache);

/// Takes a virtual disk away: its activities are aborted, its blocks are free and its disks are
/// what they were before. It exists.
void RemoveVirtualDisk(Adapter& adapter, Time now, HX_U16 id);

}  // namespace hxsim
