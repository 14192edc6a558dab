// The calls that create disk groups and change their name, level and disks.
#include "calls/hxsim_disk_group_create.h"

#include <cstddef>
#include <span>

#include "calls/hxsim_session.h"
#include "model/hxsim_home.h"
#include "model/hxsim_plan.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_disk_write_cache.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_migration.h"

namespace hxsim {
namespace {

constexpr std::size_t kMostDiskGroups = 32;

Status PlanDiskGroup(const Adapter& adapter, const CreateOrModify_DG_Param& param, Layout& layout,
                     Sectors& size) {
    if (param.BlockSize != 0 && param.BlockSize != kSectorSize) return Status::kBadSectorSize;
    if (param.PDCount > HX_MAX_HDS) return Status::kBadDiskCount;
    const Wish wish{ToCode<Level>(param.RaidMode), param.SubVDCount, param.StripeBlockSize,
                    std::span(param.PDIDs, param.PDCount), adapter.info.MaxPDPerDG};
    Status status = MakeLayout(adapter, wish, layout);
    for (const HX_U16 disk : layout.disks) {
        if (status == Status::kSuccess) status = CheckWholeDisk(adapter, disk);
    }
    if (status != Status::kSuccess) return status;
    if (adapter.disk_groups.size() >= kMostDiskGroups) return Status::kTooManyDiskGroups;
    size = ManagedSpace(adapter, layout);
    return size == 0 ? Status::kNoSpace : Status::kSuccess;
}

Status Create(Adapter& adapter, Time now, CreateOrModify_DG_Param& param) {
    Layout layout;
    Sectors size = 0;
    const Status status = PlanDiskGroup(adapter, param, layout, size);
    if (status != Status::kSuccess) return status;
    // Only virtual disks are initialised, but the option must still be a valid one.
    if (!ToCode<Init>(param.InitializationOption)) return Status::kBadAction;
    if (param.Size.value > size) return Status::kNoSpace;

    DiskGroup group;
    group.id = FreeId(adapter.disk_groups);
    group.name = TextOf(param.Name);
    group.level = layout.level;
    group.legs = layout.legs;
    group.width = layout.Width();
    group.stripe_kib = layout.stripe_kib;
    Insert(adapter.disk_groups, group);
    SetHomes(adapter, Owner::kDiskGroup, group.id, layout.disks);
    Queue(adapter, now, EventKind::kDiskGroupCreated, group.id);
    for (const HX_U16 disk : layout.disks) SetWriteCache(adapter, now, disk, group.write_cache);
    param.DGID = group.id;
    param.Size.value = size;
    return Status::kSuccess;
}

Status Modify(Adapter& adapter, Time now, CreateOrModify_DG_Param& param) {
    const DiskGroup* const group = Find(adapter.disk_groups, param.DGID);
    if (group == nullptr) return Status::kNoDiskGroup;
    Sectors size = ManagedSpace(adapter, LayoutOf(adapter, *group));
    if (param.PDCount != 0) {
        const Status status = StartGroupMigration(adapter, now, param);
        if (status != Status::kSuccess && status != Status::kNoChange) return status;
        if (status == Status::kSuccess) size = param.Size.value;
    }
    if (param.Name[0] != '\0') Find(adapter.disk_groups, param.DGID)->name = TextOf(param.Name);
    param.Size.value = size;
    return Status::kSuccess;
}

}  // namespace

Status CreateOrModifyDiskGroup(Adapter& adapter, Time now, CreateOrModify_DG_Param& param) {
    if (!adapter.info.DiskGroupSupport) return Status::kNotSupported;
    return param.DGID == HX_NEW_ID ? Create(adapter, now, param) : Modify(adapter, now, param);
}

Status SizeDiskGroup(const Adapter& adapter, CreateOrModify_DG_Param& param) {
    if (!adapter.info.DiskGroupSupport) return Status::kNotSupported;
    if (param.DGID != HX_NEW_ID) {
        const DiskGroup* const group = Find(adapter.disk_groups, param.DGID);
        if (group == nullptr) return Status::kNoDiskGroup;
        if (param.PDCount != 0) return SizeGroupMigration(adapter, param);
        param.Size.value = ManagedSpace(adapter, LayoutOf(adapter, *group));
        return Status::kSuccess;
    }
    Layout layout;
    Sectors size = 0;
    const Status status = PlanDiskGroup(adapter, param, layout, size);
    if (status == Status::kSuccess) param.Size.value = size;
    return status;
}

}  // namespace hxsim

HX_U8 HX_CreateOrModify_DG(HX_U8 AdapterID, CreateOrModify_DG_Param* param, HX_U8 sizeOnly) {
    if (sizeOnly != 0) {
        return hxsim::LookWith(__func__, AdapterID, param, hxsim::SizeDiskGroup);
    }
    return hxsim::ChangeWith(__func__, AdapterID, param, hxsim::CreateOrModifyDiskGroup);
}

HX_U8 HX_DG_StartMigration(HX_U8 AdapterID, CreateOrModify_DG_Param* param) {
    return hxsim::ChangeWith(__func__, AdapterID, param, hxsim::StartGroupMigration);
}
