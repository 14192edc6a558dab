// The calls that start, pause, resume and abort background activities.
#include "calls/hxsim_activity_control.h"

#include <algorithm>
#include <vector>

#include "calls/hxsim_session.h"
#include "hxraid.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_disk_fit.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_redundancy.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_activity_end.h"
#include "rules/hxsim_hot_spare.h"
#include "rules/hxsim_rebuild.h"

namespace hxsim {
namespace {

Activity ActivityFor(const Adapter& adapter, const VirtualDisk& virtual_disk, ActivityKind kind) {
    Activity activity;
    activity.kind = kind;
    activity.of = Owner::kVirtualDisk;
    activity.owner = virtual_disk.id;
    activity.total = SectorsNeeded(adapter, virtual_disk);
    return activity;
}

// ---- Rebuilds ----

Status CanBeRebuilt(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    if (!IsRedundant(virtual_disk.level)) return Status::kNotRedundant;
    const State state = StateOf(adapter, virtual_disk);
    if (state != State::kDegraded && state != State::kPartiallyOptimal) {
        return Status::kWrongState;
    }
    return MayRebuild(adapter, virtual_disk) ? Status::kSuccess : Status::kBusy;
}

// Whether the disk carries a lost block of the virtual disk, which can be rebuilt in place.
bool CarriesLost(const Adapter& adapter, HX_U16 virtual_disk, HX_U16 disk) {
    return std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        return block.virtual_disk == virtual_disk && block.disk == disk && !block.target &&
               block.state != State::kOptimal;
    });
}

bool IsThere(const Adapter& adapter, std::span<const HX_U16> disks) {
    return std::ranges::all_of(disks,
                               [&](HX_U16 id) { return Find(adapter.disks, id) != nullptr; });
}

bool NamesTwice(std::span<const HX_U16> disks) {
    std::vector<HX_U16> sorted(disks.begin(), disks.end());
    std::ranges::sort(sorted);
    return std::ranges::adjacent_find(sorted) != sorted.end();
}

Status CheckNamedDisks(const Adapter& adapter, std::span<const HX_U16> disks) {
    if (!IsThere(adapter, disks)) return Status::kNoDisk;
    return NamesTwice(disks) ? Status::kDiskRepeated : Status::kSuccess;
}

// The positions of a virtual disk or of a disk group that need a disk, in ascending order.
std::vector<HX_U8> Vacant(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    std::vector<HX_U8> positions;
    for (unsigned i = 0; i < virtual_disk.width; ++i) {
        const auto position = static_cast<HX_U8>(i);
        if (NeedsDisk(adapter, virtual_disk, position)) positions.push_back(position);
    }
    return positions;
}

std::vector<HX_U8> Vacant(const Adapter& adapter, const DiskGroup& group) {
    std::vector<HX_U8> positions;
    for (const Home& home : adapter.homes) {
        if (home.of == Owner::kDiskGroup && home.owner == group.id && NeedsDisk(adapter, home)) {
            positions.push_back(home.position);
        }
    }
    return positions;
}

// Puts the disks into vacant positions, one into each; refused when a disk cannot serve.
template <class Array>
Status Occupy(Adapter& adapter, Time now, const Array& array, std::span<const HX_U16> disks) {
    const std::vector<HX_U8> vacant = Vacant(adapter, array);
    for (const HX_U16 disk : disks) {
        const Status refusal = CanServe(adapter, array, *Find(adapter.disks, disk));
        if (refusal != Status::kSuccess) return refusal;
    }
    if (disks.size() > vacant.size()) return Status::kBadDiskCount;
    for (std::size_t i = 0; i < disks.size(); ++i) {
        PutInto(adapter, now, array, vacant[i], disks[i]);
    }
    return Status::kSuccess;
}

// Those of the named disks that are not members yet. A member is rebuilt in place, and refused when
// it is not ready.
template <class IsMember>
Status TakeNewcomers(const Adapter& adapter, std::span<const HX_U16> disks,
                     const IsMember& is_member, std::vector<HX_U16>& newcomers) {
    for (const HX_U16 disk : disks) {
        if (!is_member(disk)) {
            newcomers.push_back(disk);
        } else if (!IsReady(*Find(adapter.disks, disk))) {
            return Status::kDiskNotReady;
        }
    }
    return Status::kSuccess;
}

Status StartRebuildOf(Adapter& adapter, Time now, const LD_DG_Rebuild_Param& param) {
    if (param.PDCount > HX_MAX_HDS) return Status::kBadCount;
    const std::span<const HX_U16> disks(param.PDIDs, param.PDCount);
    const auto type = ToCode<RebuildType>(param.RebuildType);
    if (!type) return Status::kBadAction;
    switch (*type) {
        case RebuildType::kVirtualDisk:
            return RebuildVirtualDisk(adapter, now, param.ID, disks);
        case RebuildType::kDiskGroup:
            break;
    }
    return RebuildDiskGroup(adapter, now, param.ID, disks);
}

// ---- Disks ----

Status CanBeRead(const Adapter& adapter, HX_U16 id) {
    const Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return Status::kNoDisk;
    if (!IsReady(*disk)) return Status::kDiskNotReady;
    const bool busy = ActivityOf(adapter, Owner::kDisk, id) != nullptr;
    return busy ? Status::kBusy : Status::kSuccess;
}

void StartOnDisk(Adapter& adapter, Time now, HX_U16 id, ActivityKind kind) {
    Activity activity;
    activity.kind = kind;
    activity.of = Owner::kDisk;
    activity.owner = id;
    activity.total = Find(adapter.disks, id)->sectors;
    Start(adapter, now, activity);
}

}  // namespace

std::optional<ActivityKind> KindOfInitialisation(HX_U8 type) {
    const auto init = ToCode<Init>(type);
    if (!init) return std::nullopt;
    switch (*init) {
        case Init::kQuick:
            return ActivityKind::kInitQuick;
        case Init::kForeground:
            return ActivityKind::kInitForeground;
        case Init::kBackground:
            return ActivityKind::kInitBackground;
        case Init::kNone:
            break;
    }
    return std::nullopt;
}

Status StartInitialisation(Adapter& adapter, Time now, HX_U16 id, HX_U8 type) {
    VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr) return Status::kNoVirtualDisk;
    const auto kind = KindOfInitialisation(type);
    if (!kind) return Status::kBadAction;
    if (IsBusy(adapter, *virtual_disk)) return Status::kBusy;
    if (StateOf(adapter, *virtual_disk) != State::kOptimal) return Status::kWrongState;
    virtual_disk->initialised = false;
    Start(adapter, now, ActivityFor(adapter, *virtual_disk, *kind));
    return Status::kSuccess;
}

Status StartCheck(Adapter& adapter, Time now, HX_U16 id, HX_U8 type) {
    const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr) return Status::kNoVirtualDisk;
    if (!ToCode<CheckType>(type)) return Status::kBadAction;
    if (!IsRedundant(virtual_disk->level)) return Status::kNotRedundant;
    if (IsBusy(adapter, *virtual_disk)) return Status::kBusy;
    // Redundancy can be compared only with all disks present and after initialisation.
    if (StateOf(adapter, *virtual_disk) != State::kOptimal || !virtual_disk->initialised) {
        return Status::kWrongState;
    }
    const ActivityKind kind = type == CheckType::kOnly ? ActivityKind::kCheck : ActivityKind::kFix;
    Start(adapter, now, ActivityFor(adapter, *virtual_disk, kind));
    return Status::kSuccess;
}

Status StartMediaPatrol(Adapter& adapter, Time now, HX_U16 disk) {
    const Status refusal = CanPatrol(adapter, disk);
    if (refusal != Status::kSuccess) return refusal;
    StartOnDisk(adapter, now, disk, ActivityKind::kMediaPatrol);
    return Status::kSuccess;
}

Status StartDataScrub(Adapter& adapter, Time now, HX_U16 disk) {
    const Status refusal = CanBeRead(adapter, disk);
    if (refusal != Status::kSuccess) return refusal;
    StartOnDisk(adapter, now, disk, ActivityKind::kDataScrub);
    return Status::kSuccess;
}

Status RebuildVirtualDisk(Adapter& adapter, Time now, HX_U16 id, std::span<const HX_U16> disks) {
    const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr) return Status::kNoVirtualDisk;
    if (const Status refusal = CheckNamedDisks(adapter, disks); refusal != Status::kSuccess)
        return refusal;
    if (const Status refusal = CanBeRebuilt(adapter, *virtual_disk); refusal != Status::kSuccess) {
        return refusal;
    }
    std::vector<HX_U16> others;
    const Status unready = TakeNewcomers(
        adapter, disks, [&](HX_U16 disk) { return CarriesLost(adapter, id, disk); }, others);
    if (unready != Status::kSuccess) return unready;
    if (!others.empty()) {
        if (virtual_disk->group != kNoId) return Status::kOnDiskGroup;
        const Status refusal = Occupy(adapter, now, *virtual_disk, others);
        if (refusal != Status::kSuccess) return refusal;
    }
    if (!HasBlocksToRebuild(adapter, *virtual_disk, true)) return Status::kBadDiskCount;
    StartRebuild(adapter, now, id);
    return Status::kSuccess;
}

Status RebuildDiskGroup(Adapter& adapter, Time now, HX_U16 id, std::span<const HX_U16> disks) {
    const DiskGroup* const group = Find(adapter.disk_groups, id);
    if (group == nullptr) return Status::kNoDiskGroup;
    if (const Status refusal = CheckNamedDisks(adapter, disks); refusal != Status::kSuccess)
        return refusal;
    if (!IsRedundant(group->level)) return Status::kNotRedundant;
    const State state = StateOf(adapter, *group);
    if (state != State::kDegraded && state != State::kPartiallyOptimal) {
        return Status::kWrongState;
    }
    std::vector<HX_U16> members;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group != id) continue;
        members.push_back(each.id);
        // A virtual disk that was rebuilt before the others needs nothing.
        if (StateOf(adapter, each) == State::kOptimal) continue;
        if (const Status refusal = CanBeRebuilt(adapter, each); refusal != Status::kSuccess) {
            return refusal;
        }
    }
    std::vector<HX_U16> others;
    const Status unready = TakeNewcomers(
        adapter, disks, [&](HX_U16 disk) { return GroupOf(adapter, disk) == group; }, others);
    if (unready != Status::kSuccess) return unready;
    if (const Status refusal = Occupy(adapter, now, *group, others); refusal != Status::kSuccess) {
        return refusal;
    }
    bool any = members.empty() && !others.empty();
    for (const HX_U16 member : members) {
        if (!HasBlocksToRebuild(adapter, *Find(adapter.virtual_disks, member), true)) continue;
        StartRebuild(adapter, now, member);
        any = true;
    }
    return any ? Status::kSuccess : Status::kBadDiskCount;
}

Status Control(Adapter& adapter, Time now, Owner of, HX_U16 owner, HX_U8 action) {
    const auto wanted = ToCode<ControlAction>(action);
    if (!wanted) return Status::kBadAction;
    Activity* const activity = ActivityOf(adapter, of, owner);
    if (activity == nullptr) return Status::kNoActivity;
    switch (*wanted) {
        case ControlAction::kPause:
            return Pause(adapter, now, *activity);
        case ControlAction::kResume:
            if (activity->state == ActivityState::kRunning) return Status::kNoChange;
            // The reason for which the controller paused it still holds.
            if (activity->state == ActivityState::kAutoPaused) return Status::kWrongState;
            Resume(adapter, now, *activity);
            return Status::kSuccess;
        case ControlAction::kAbort:
            break;
    }
    Abort(adapter, now, activity->id);
    return Status::kSuccess;
}

Status ControlGroup(Adapter& adapter, Time now, HX_U16 id, HX_U8 action) {
    if (Find(adapter.disk_groups, id) == nullptr) return Status::kNoDiskGroup;
    const Status own = Control(adapter, now, Owner::kDiskGroup, id, action);
    if (own != Status::kNoActivity) return own;
    Status result = Status::kNoActivity;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group != id) continue;
        const Status status = Control(adapter, now, Owner::kVirtualDisk, each.id, action);
        // One success is enough; without any, the first refusal is the result.
        if (status == Status::kSuccess || result == Status::kNoActivity) result = status;
    }
    return result;
}

// Succeeds when nothing runs as well, since everything is then paused as asked.
Status PauseAll(Adapter& adapter, Time now) {
    for (Activity& each : adapter.activities) {
        if (each.of != Owner::kDisk) Pause(adapter, now, each);
    }
    return Status::kSuccess;
}

Status CanPatrol(const Adapter& adapter, HX_U16 id) {
    const Status refusal = CanBeRead(adapter, id);
    if (refusal != Status::kSuccess) return refusal;
    const bool offered = (adapter.info.Features & RowOf(Rate::kMediaPatrol).feature) != 0;
    return offered ? Status::kSuccess : Status::kNotSupported;
}

}  // namespace hxsim

// ---- Virtual disks ----

HX_U8 HX_LD_StartINIT(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Init_Type) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::StartInitialisation, LD_ID, Init_Type);
}

HX_U8 HX_LD_StartConsistencyCheck(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Type) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::StartCheck, LD_ID, Type);
}

HX_U8 HX_LD_StartRebuild(HX_U8 AdapterID, HX_U16 LD_ID, HX_U16 Rebuild_HD_ID) {
    return hxsim::Change(__func__, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::RebuildVirtualDisk(adapter, now, LD_ID, {&Rebuild_HD_ID, 1});
    });
}

HX_U8 HX_LD_DG_StartRebuild(HX_U8 AdapterID, LD_DG_Rebuild_Param* param) {
    return hxsim::ChangeWith(__func__, AdapterID, param, hxsim::StartRebuildOf);
}

HX_U8 HX_LD_BGAControl(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Actions) {
    return hxsim::Change(
        __func__, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time now) -> hxcodes::Status {
            if (hxsim::Find(adapter.virtual_disks, LD_ID) == nullptr)
                return hxcodes::Status::kNoVirtualDisk;
            return hxsim::Control(adapter, now, hxsim::Owner::kVirtualDisk, LD_ID, Actions);
        });
}

HX_U8 HX_LD_PauseAll(HX_U8 AdapterID) {
    return hxsim::Change(__func__, AdapterID, hxsim::PauseAll);
}

// ---- Disk groups ----

HX_U8 HX_DG_BGAControl(HX_U8 AdapterID, HX_U16 DG_ID, HX_U8 Actions) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::ControlGroup, DG_ID, Actions);
}

// ---- Physical disks ----

HX_U8 HX_PD_StartMediaPatrol(HX_U8 AdapterID, HX_U16 HD_ID) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::StartMediaPatrol, HD_ID);
}

HX_U8 HX_PD_HDMPCheck(HX_U8 AdapterID, HX_U16 HD_ID) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::CanPatrol(adapter, HD_ID);
    });
}

HX_U8 HX_PD_StartDataScrub(HX_U8 AdapterID, HX_U16 HD_ID) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::StartDataScrub, HD_ID);
}

HX_U8 HX_PD_BGAControl(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action) {
    return hxsim::Change(
        __func__, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time now) -> hxcodes::Status {
            if (hxsim::FindListed(adapter, HD_ID) == nullptr) return hxcodes::Status::kNoDisk;
            return hxsim::Control(adapter, now, hxsim::Owner::kDisk, HD_ID, Action);
        });
}
