// The calls that change disks.
#include "calls/hxsim_disk_change.h"

#include <algorithm>

#include "calls/hxsim_session.h"
#include "model/hxsim_disk_role.h"
#include "rules/hxsim_disk_contents.h"
#include "rules/hxsim_disk_write_cache.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

// Whether a disk can be set offline and online.
bool CanBeSwitched(const Disk& disk) { return Answers(disk) && !disk.foreign; }

void SetOnline(Adapter& adapter, Time now, Disk& disk, bool online) {
    if (disk.offline != online) return;
    disk.offline = !online;
    Queue(adapter, now, online ? EventKind::kDiskOnline : EventKind::kDiskOffline, disk.id);
}

// Also forgets the kind of spare that it was before it stepped in.
void MakeNoSpare(Adapter& adapter, Time now, Disk& disk) {
    if (disk.spare != Spare::kNone) Queue(adapter, now, EventKind::kSpareRemoved, disk.id);
    disk.spare = disk.spare_before = Spare::kNone;
    disk.spare_group = disk.spare_group_before = kNoId;
}

Status SetFree(Adapter& adapter, Time now, Disk& disk) {
    if (!disk.present) return Status::kDiskNotReady;
    const bool configured = IsConfigured(adapter, disk.id);
    if (!disk.failed && !disk.foreign) {
        if (configured) return Status::kDiskInUse;
        if (disk.spare != Spare::kNone) return Status::kWrongState;
        if (!disk.offline) return Status::kNoChange;
    }
    if (configured) DropContents(adapter, now, disk.id);
    MakeNoSpare(adapter, now, disk);
    disk.failed = disk.foreign = disk.offline = false;
    Queue(adapter, now, EventKind::kDiskSetFree, disk.id);
    return Status::kSuccess;
}

Status SwitchDisk(Adapter& adapter, Time now, HX_U16 id, bool online) {
    Disk& disk = *Find(adapter.disks, id);
    if (!CanBeSwitched(disk)) return Status::kDiskNotReady;
    if (disk.offline != online) return Status::kNoChange;
    SetOnline(adapter, now, disk, online);
    return Status::kSuccess;
}

// Whether the disk can become the spare that is asked for.
Status CheckSpare(const Adapter& adapter, const Disk& disk, Spare spare, HX_U16 group) {
    if (!IsReady(disk)) return Status::kDiskNotReady;
    if (IsConfigured(adapter, disk.id)) return Status::kDiskInUse;
    if (disk.spare == spare && disk.spare_group == group) return Status::kNoChange;
    return disk.spare == Spare::kNone ? Status::kSuccess : Status::kDiskTaken;
}

// A spare that has stepped in counts: it returns later, so its place stays reserved.
bool IsSpareOf(const Disk& disk, HX_U16 group) {
    return (disk.spare == Spare::kGroup && disk.spare_group == group) ||
           (disk.spare_before == Spare::kGroup && disk.spare_group_before == group);
}

void MakeSpare(Adapter& adapter, Time now, Disk& disk, Spare spare, HX_U16 group) {
    disk.spare = spare;
    disk.spare_group = group;
    disk.spare_before = Spare::kNone;
    disk.spare_group_before = kNoId;
    Queue(adapter, now, EventKind::kSpareAssigned, disk.id);
}

}  // namespace

Status SetDisk(Adapter& adapter, Time now, HX_U16 id, const HD_Config& config) {
    Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return Status::kNoDisk;
    if (!CanBeSwitched(*disk)) return Status::kDiskNotReady;
    // The speed is what the two ends of the link have agreed on; it is told and not set.
    SetWriteCache(adapter, now, id, config.WriteCacheOn != 0);
    disk->smart_on = config.SMARTOn != 0;
    SetOnline(adapter, now, *disk, config.Online != 0);
    return Status::kSuccess;
}

Status WipeDisk(Adapter& adapter, Time now, HX_U16 id, bool force) {
    Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return Status::kNoDisk;
    if (!Answers(*disk)) return Status::kDiskNotReady;
    const bool configured = IsConfigured(adapter, id);
    if (configured && !force) return Status::kHoldsVirtualDisks;
    if (configured) DropContents(adapter, now, id);
    MakeNoSpare(adapter, now, *disk);
    disk->foreign = false;
    return Status::kSuccess;
}

Status SetDiskState(Adapter& adapter, Time now, HX_U16 id, HX_U8 action) {
    Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return Status::kNoDisk;
    const auto wanted = ToCode<DiskAction>(action);
    if (!wanted) return Status::kBadAction;
    switch (*wanted) {
        case DiskAction::kOnline:
            return SwitchDisk(adapter, now, id, true);
        case DiskAction::kOffline:
            return SwitchDisk(adapter, now, id, false);
        case DiskAction::kFree:
            break;
    }
    return SetFree(adapter, now, *disk);
}

Status MakeGlobalSpare(Adapter& adapter, Time now, HX_U16 id) {
    Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return Status::kNoDisk;
    const Status status = CheckSpare(adapter, *disk, Spare::kGlobal, kNoId);
    if (status != Status::kSuccess) return status;
    MakeSpare(adapter, now, *disk, Spare::kGlobal, kNoId);
    return Status::kSuccess;
}

Status MakeGroupSpare(Adapter& adapter, Time now, HX_U16 id, HX_U16 group) {
    Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return Status::kNoDisk;
    if (Find(adapter.disk_groups, group) == nullptr) return Status::kNoDiskGroup;
    const Status status = CheckSpare(adapter, *disk, Spare::kGroup, group);
    if (status != Status::kSuccess) return status;
    const auto is_spare = [&](const Disk& each) { return IsSpareOf(each, group); };
    if (std::ranges::count_if(adapter.disks, is_spare) >= HX_MAX_DG_SPARES) {
        return Status::kTooManySpares;
    }
    MakeSpare(adapter, now, *disk, Spare::kGroup, group);
    return Status::kSuccess;
}

Status FreeSpare(Adapter& adapter, Time now, HX_U16 id) {
    Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return Status::kNoDisk;
    if (disk->spare == Spare::kNone) return Status::kDiskNotSpare;
    MakeNoSpare(adapter, now, *disk);
    return Status::kSuccess;
}

}  // namespace hxsim

HX_U8 HX_PD_SetConfig(HX_U8 AdapterID, HX_U16 HD_ID, HD_Config* config) {
    return hxsim::ChangeWith(__func__, AdapterID, config, hxsim::SetDisk, HD_ID);
}

HX_U8 HX_PD_WipeHDMDD(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Force) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::WipeDisk, HD_ID, Force != 0);
}

HX_U8 HX_PD_SetHDStatus(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::SetDiskState, HD_ID, Action);
}

HX_U8 HX_PD_FreeHD2GlobalSpare(HX_U8 AdapterID, HX_U16 HD_ID) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::MakeGlobalSpare, HD_ID);
}

HX_U8 HX_PD_FreeHD2DGSpare(HX_U8 AdapterID, HX_U16 HD_ID, HX_U16 DG_ID) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::MakeGroupSpare, HD_ID, DG_ID);
}

HX_U8 HX_PD_Spare2FreeHD(HX_U8 AdapterID, HX_U16 HD_ID) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::FreeSpare, HD_ID);
}
