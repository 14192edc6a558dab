// The calls that create virtual disks, with and without a disk group.
#include "calls/hxsim_virtual_disk_create.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "calls/hxsim_activity_control.h"
#include "calls/hxsim_session.h"
#include "calls/hxsim_virtual_disk_change.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_home.h"
#include "model/hxsim_plan.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_migration.h"

namespace hxsim {
namespace {

// A host sector consists of 1, 2, 4 or 8 disk sectors; 0 stands for 1.
bool IsCoefficient(HX_U8 coefficient) {
    return coefficient <= 8 && (coefficient & (coefficient - 1)) == 0;
}

Status CheckSettings(HX_U8 cache, HX_U8 init, HX_U8 coefficient) {
    if (!IsCache(cache) || !IsCoefficient(coefficient)) return Status::kBadValue;
    return ToCode<Init>(init) ? Status::kSuccess : Status::kBadAction;
}

// Adds the virtual disk under a free ID and returns that; the caller cuts its blocks.
HX_U16 Add(Adapter& adapter, Time now, VirtualDisk virtual_disk) {
    virtual_disk.id = FreeId(adapter.virtual_disks);
    const HX_U16 id = virtual_disk.id;
    Insert(adapter.virtual_disks, std::move(virtual_disk));
    Queue(adapter, now, EventKind::kVirtualDiskCreated, id);
    return id;
}

void StartInit(Adapter& adapter, Time now, HX_U16 virtual_disk, HX_U8 init, Sectors block) {
    const auto kind = KindOfInitialisation(init);
    if (!kind) return;
    Activity activity;
    activity.kind = *kind;
    activity.owner = virtual_disk;
    activity.total = block;
    Start(adapter, now, activity);
}

VirtualDisk Form(const Layout& layout, Sectors size, HX_U8 cache, HX_U8 coefficient) {
    VirtualDisk virtual_disk;
    virtual_disk.level = layout.level;
    virtual_disk.legs = layout.legs;
    virtual_disk.width = layout.Width();
    virtual_disk.stripe_kib = layout.stripe_kib;
    virtual_disk.size = size;
    virtual_disk.cache = cache & kCacheBits;
    virtual_disk.coefficient = std::max<HX_U8>(coefficient, 1);
    return virtual_disk;
}

// ---- On disk groups ----

// Whether blocks on the group's disks can be cut and resized now.
Status CheckGroup(const Adapter& adapter, const DiskGroup& group) {
    const bool moves = std::ranges::any_of(adapter.activities, [&](const Activity& each) {
        if (each.of == Owner::kDiskGroup) return each.owner == group.id;
        if (each.of != Owner::kVirtualDisk) return false;
        const VirtualDisk* const owner = Find(adapter.virtual_disks, each.owner);
        return owner != nullptr && owner->group == group.id &&
               (each.kind == ActivityKind::kRebuild || each.kind == ActivityKind::kCopyback);
    });
    if (moves) return Status::kBusy;
    for (const HX_U16 id : DisksOf(adapter, Owner::kDiskGroup, group.id)) {
        const Disk* const disk = Find(adapter.disks, id);
        if (disk == nullptr || !IsReady(*disk)) return Status::kWrongState;
    }
    return Status::kSuccess;
}

Status CheckSlot(const Adapter& adapter, const DiskGroup& group, HX_U8 slot) {
    if (slot >= HX_MAX_VD_SLOTS || slot >= adapter.info.MaxVDPerDG) return Status::kBadSlot;
    const bool taken = std::ranges::any_of(adapter.virtual_disks, [&](const VirtualDisk& each) {
        return each.group == group.id && each.slot == slot;
    });
    return taken ? Status::kSlotTaken : Status::kSuccess;
}

// The group's level and disks with the virtual disk's own stripe size.
Status LayOutOnGroup(const Adapter& adapter, const DiskGroup& group,
                     const CreateOrModify_VD_Param& param, Layout& layout) {
    if (param.BlockSize != 0 && param.BlockSize != kSectorSize) return Status::kBadSectorSize;
    if (param.RaidMode != group.level) return Status::kBadLevel;
    if (param.SubVDCount != 0 && param.SubVDCount != group.legs) return Status::kBadDiskCount;
    const std::vector<HX_U16> disks = DisksOf(adapter, Owner::kDiskGroup, group.id);
    const HX_U16 stripe = param.StripeBlockSize == 0 ? group.stripe_kib : param.StripeBlockSize;
    const Wish wish{group.level, group.legs, stripe, disks, group.width};
    return MakeLayout(adapter, wish, layout);
}

Status CreateOnGroup(Adapter& adapter, Time now, const DiskGroup& group,
                     CreateOrModify_VD_Param& param) {
    Status status =
        CheckSettings(param.CachePolicy, param.InitializationOption, param.SectorCoefficient);
    if (status == Status::kSuccess) status = CheckGroup(adapter, group);
    Layout layout;
    if (status == Status::kSuccess) status = LayOutOnGroup(adapter, group, param, layout);
    if (status == Status::kSuccess) status = CheckSlot(adapter, group, param.DGSlotNum);
    if (status == Status::kSuccess) status = CheckVirtualDiskCount(adapter);
    if (status != Status::kSuccess) return status;

    const std::vector<Run> runs = CommonFree(adapter, layout.disks);
    Sectors size = 0;
    status =
        ChooseSize(layout, Longest(runs).sectors, param.Size.value, param.RoundingScheme, size);
    if (status != Status::kSuccess) return status;
    const Sectors block = layout.Block(size);
    const auto run =
        std::ranges::find_if(runs, [&](const Run& each) { return each.sectors >= block; });
    for (const HX_U16 disk : layout.disks) {
        status = CheckCut(adapter, disk, run->start, block);
        if (status != Status::kSuccess) return status;
    }

    VirtualDisk virtual_disk = Form(layout, size, param.CachePolicy, param.SectorCoefficient);
    virtual_disk.name = TextOf(param.Name);
    virtual_disk.group = group.id;
    virtual_disk.slot = param.DGSlotNum;
    const HX_U16 id = Add(adapter, now, virtual_disk);
    for (std::size_t i = 0; i < layout.disks.size(); ++i) {
        Cut(adapter, layout.disks[i], run->start, block, id, static_cast<HX_U8>(i));
    }
    StartInit(adapter, now, id, param.InitializationOption, block);
    param.VDID = id;
    param.Size.value = size;
    return Status::kSuccess;
}

// The free sectors that follow a block.
Sectors FreeBehind(const Adapter& adapter, const Block& block) {
    for (const Block& each : adapter.blocks) {
        if (each.disk == block.disk && each.virtual_disk == kNoVirtualDisk &&
            each.start == block.start + block.sectors) {
            return each.sectors;
        }
    }
    return 0;
}

// Enlarges the virtual disk in place.
Status Grow(Adapter& adapter, const DiskGroup& group, VirtualDisk& virtual_disk,
            const CreateOrModify_VD_Param& param) {
    if (IsBusy(adapter, virtual_disk)) return Status::kBusy;
    if (const Status status = CheckGroup(adapter, group); status != Status::kSuccess) return status;
    if (StateOf(adapter, virtual_disk) != State::kOptimal) return Status::kWrongState;
    Layout layout = LayoutOf(adapter, group);
    layout.stripe_kib = virtual_disk.stripe_kib;
    std::vector<HX_U16> blocks;
    Sectors longest = SmallestDisk(adapter, layout.disks);
    for (const Block& block : adapter.blocks) {
        if (block.virtual_disk != virtual_disk.id) continue;
        blocks.push_back(block.id);
        longest = std::min(longest, block.sectors + FreeBehind(adapter, block));
    }
    Sectors size = 0;
    const Status status = ChooseSize(layout, longest, param.Size.value, param.RoundingScheme, size);
    if (status != Status::kSuccess) return status;
    if (size <= virtual_disk.size) return Status::kTooSmall;  // after rounding
    for (const HX_U16 block : blocks) Resize(adapter, block, layout.Block(size));
    virtual_disk.size = size;
    return Status::kSuccess;
}

Status ModifyOnGroup(Adapter& adapter, Time now, const DiskGroup& group,
                     CreateOrModify_VD_Param& param) {
    VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, param.VDID);
    if (virtual_disk == nullptr || virtual_disk->group != group.id) return Status::kNoVirtualDisk;
    if (!IsCache(param.CachePolicy)) return Status::kBadValue;
    const Sectors wanted = param.Size.value;
    if (wanted != 0 && wanted < virtual_disk->size) return Status::kTooSmall;
    if (wanted > virtual_disk->size) {
        const Status status = Grow(adapter, group, *virtual_disk, param);
        if (status != Status::kSuccess) return status;
    }
    if (param.Name[0] != '\0') virtual_disk->name = TextOf(param.Name);
    SetCache(adapter, now, *virtual_disk, param.CachePolicy);
    param.Size.value = virtual_disk->size;
    return Status::kSuccess;
}

}  // namespace

Status CreateVirtualDisk(Adapter& adapter, Time now, Create_LD_Param& param) {
    VirtualDiskPlan plan;
    Status status = PlanVirtualDisk(adapter, param, param.Size.value, plan);
    if (status == Status::kSuccess) {
        status =
            CheckSettings(param.CachePolicy, param.InitializationOption, param.SectorCoefficient);
    }
    if (status != Status::kSuccess) return status;

    VirtualDisk virtual_disk =
        Form(plan.layout, plan.size, param.CachePolicy, param.SectorCoefficient);
    virtual_disk.name = TextOf(param.Name);
    const HX_U16 id = Add(adapter, now, virtual_disk);
    for (std::size_t i = 0; i < plan.layout.disks.size(); ++i) {
        Cut(adapter, plan.layout.disks[i], plan.starts[i], plan.block, id, static_cast<HX_U8>(i));
    }
    SetHomes(adapter, Owner::kVirtualDisk, id, plan.layout.disks);
    StartInit(adapter, now, id, param.InitializationOption, plan.block);
    param.LDID = id;
    param.Size.value = plan.size;
    return Status::kSuccess;
}

Status SizeVirtualDisk(const Adapter& adapter, Create_LD_Param& param) {
    VirtualDiskPlan plan;
    const Status status = PlanVirtualDisk(adapter, param, 0, plan);
    if (status == Status::kSuccess) param.Size.value = plan.size;
    return status;
}

Status CreateOrModifyOnGroup(Adapter& adapter, Time now, CreateOrModify_VD_Param& param) {
    if (!adapter.info.DiskGroupSupport) return Status::kNotSupported;
    const DiskGroup* const group = Find(adapter.disk_groups, param.DGID);
    if (group == nullptr) return Status::kNoDiskGroup;
    return param.VDID == HX_NEW_ID ? CreateOnGroup(adapter, now, *group, param)
                                   : ModifyOnGroup(adapter, now, *group, param);
}

}  // namespace hxsim

HX_U8 HX_LD_Create(HX_U8 AdapterID, Create_LD_Param* param) {
    return hxsim::ChangeWith(__func__, AdapterID, param, hxsim::CreateVirtualDisk);
}

HX_U8 HX_LD_GetMaxSize(HX_U8 AdapterID, Create_LD_Param* param) {
    return hxsim::LookWith(__func__, AdapterID, param, hxsim::SizeVirtualDisk);
}

HX_U8 HX_LD_StartMigration(HX_U8 AdapterID, Create_LD_Param* param) {
    return hxsim::ChangeWith(__func__, AdapterID, param, hxsim::StartMigration);
}

HX_U8 HX_LD_GetMigratedLdSize(HX_U8 AdapterID, Create_LD_Param* param) {
    return hxsim::LookWith(__func__, AdapterID, param, hxsim::SizeMigration);
}

HX_U8 HX_CreateOrModify_VD(HX_U8 AdapterID, CreateOrModify_VD_Param* param) {
    return hxsim::ChangeWith(__func__, AdapterID, param, hxsim::CreateOrModifyOnGroup);
}
