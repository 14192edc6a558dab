// The calls that configure and delete disk groups.
#include "calls/hxsim_disk_group_change.h"

#include <algorithm>
#include <vector>

#include "calls/hxsim_session.h"
#include "calls/hxsim_virtual_disk_change.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_home.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_activity_end.h"
#include "rules/hxsim_disk_write_cache.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_hot_spare.h"

namespace hxsim {

Status SetDiskGroup(Adapter& adapter, Time now, HX_U16 id, const DG_Config& config) {
    DiskGroup* const group = Find(adapter.disk_groups, id);
    if (group == nullptr) return Status::kNoDiskGroup;
    group->name = TextOf(config.Name);
    group->write_cache = config.WriteCacheOn != 0;
    for (const HX_U16 disk : DisksOf(adapter, Owner::kDiskGroup, id)) {
        SetWriteCache(adapter, now, disk, group->write_cache);
    }
    return Status::kSuccess;
}

Status DeleteDiskGroup(Adapter& adapter, Time now, HX_U16 id) {
    if (Find(adapter.disk_groups, id) == nullptr) return Status::kNoDiskGroup;
    while (const Activity* const activity = ActivityOf(adapter, Owner::kDiskGroup, id)) {
        Abort(adapter, now, activity->id);
    }
    std::vector<HX_U16> members;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group == id) members.push_back(each.id);
    }
    for (const HX_U16 member : members) RemoveVirtualDisk(adapter, now, member);
    DropHomes(adapter, Owner::kDiskGroup, id);
    std::erase_if(adapter.disk_groups, [&](const DiskGroup& each) { return each.id == id; });
    for (Disk& disk : adapter.disks) {
        if (disk.spare_before == Spare::kGroup && disk.spare_group_before == id) {
            disk.spare_before = Spare::kNone;
            disk.spare_group_before = kNoId;
        }
        if (disk.spare == Spare::kGroup && disk.spare_group == id) {
            disk.spare = Spare::kNone;
            disk.spare_group = kNoId;
            Queue(adapter, now, EventKind::kSpareRemoved, disk.id);
        }
        ReturnSpare(adapter, now, disk);
    }
    Queue(adapter, now, EventKind::kDiskGroupDeleted, id);
    return Status::kSuccess;
}

}  // namespace hxsim

HX_U8 HX_DG_SetConfig(HX_U8 AdapterID, HX_U16 DG_ID, DG_Config* config) {
    return hxsim::ChangeWith(__func__, AdapterID, config, hxsim::SetDiskGroup, DG_ID);
}

HX_U8 HX_DG_Delete(HX_U8 AdapterID, HX_U16 DG_ID) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::DeleteDiskGroup, DG_ID);
}
