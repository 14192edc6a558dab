// The calls that configure, import and delete virtual disks.
#include "calls/hxsim_virtual_disk_change.h"

#include <algorithm>
#include <vector>

#include "calls/hxsim_session.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_home.h"
#include "model/hxsim_space.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_activity_end.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_hot_spare.h"

namespace hxsim {
namespace {

std::vector<HX_U16> DisksWithBlocks(const Adapter& adapter, HX_U16 virtual_disk) {
    std::vector<HX_U16> disks;
    for (const Block& block : adapter.blocks) {
        if (block.virtual_disk == virtual_disk) disks.push_back(block.disk);
    }
    return disks;
}

}  // namespace

bool IsCache(HX_U8 cache) { return (cache & ~(kCacheBits | CacheBit::kForcedWriteThrough)) == 0; }

void SetCache(Adapter& adapter, Time now, VirtualDisk& virtual_disk, HX_U8 cache) {
    const HX_U8 kept = cache & kCacheBits;
    if (virtual_disk.cache == kept) return;
    virtual_disk.cache = kept;
    Queue(adapter, now, EventKind::kCacheModeChanged, virtual_disk.id);
}

Status SetVirtualDisk(Adapter& adapter, Time now, HX_U16 id, const LD_Config& config) {
    VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr) return Status::kNoVirtualDisk;
    if (virtual_disk->foreign) return Status::kWrongState;
    if (!IsCache(config.CacheMode)) return Status::kBadValue;
    virtual_disk->name = TextOf(config.Name);
    virtual_disk->auto_rebuild = config.AutoRebuildOn != 0;
    SetCache(adapter, now, *virtual_disk, config.CacheMode);
    return Status::kSuccess;
}

Status DeleteVirtualDisk(Adapter& adapter, Time now, HX_U16 id, bool erase_mbr) {
    const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr) return Status::kNoVirtualDisk;
    if (virtual_disk->foreign) return Status::kWrongState;
    // An activity of its disk group needs every virtual disk of the group.
    if (virtual_disk->group != kNoId &&
        ActivityOf(adapter, Owner::kDiskGroup, virtual_disk->group) != nullptr) {
        return Status::kBusy;
    }
    if (erase_mbr) {
        for (const HX_U16 disk : DisksWithBlocks(adapter, id)) {
            Find(adapter.disks, disk)->has_mbr = false;
        }
    }
    RemoveVirtualDisk(adapter, now, id);
    return Status::kSuccess;
}

Status ImportVirtualDisk(Adapter& adapter, Time now, HX_U16 id) {
    VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr) return Status::kNoVirtualDisk;
    if (!virtual_disk->foreign) return Status::kNotForeign;
    for (const HX_U16 disk : DisksWithBlocks(adapter, id)) {
        Find(adapter.disks, disk)->foreign = false;
    }
    virtual_disk->foreign = false;
    Queue(adapter, now, EventKind::kVirtualDiskImported, id, {id});
    return Status::kSuccess;
}

void RemoveVirtualDisk(Adapter& adapter, Time now, HX_U16 id) {
    // A loop, since a migration may be waiting for the rebuild.
    while (const Activity* const activity = ActivityOf(adapter, Owner::kVirtualDisk, id)) {
        Abort(adapter, now, activity->id);
    }
    const std::vector<HX_U16> disks = DisksWithBlocks(adapter, id);
    ReleaseAll(adapter, id);
    DropHomes(adapter, Owner::kVirtualDisk, id);
    std::erase_if(adapter.virtual_disks, [&](const VirtualDisk& each) { return each.id == id; });
    Queue(adapter, now, EventKind::kVirtualDiskDeleted, id);
    for (const HX_U16 disk : disks) ReturnSpare(adapter, now, *Find(adapter.disks, disk));
}

}  // namespace hxsim

HX_U8 HX_LD_SetConfig(HX_U8 AdapterID, HX_U16 LD_ID, LD_Config* config) {
    return hxsim::ChangeWith(__func__, AdapterID, config, hxsim::SetVirtualDisk, LD_ID);
}

HX_U8 HX_LD_Delete(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 deleteMBR) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::DeleteVirtualDisk, LD_ID, deleteMBR != 0);
}

HX_U8 HX_LD_Import(HX_U8 AdapterID, HX_U16 LD_ID) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::ImportVirtualDisk, LD_ID);
}
