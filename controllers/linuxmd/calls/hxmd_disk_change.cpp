// Disks that become members or spares of arrays, and that leave them.
#include <algorithm>
#include <cerrno>
#include <string>

#include "calls/hxmd_place.h"
#include "calls/hxmd_session.h"
#include "codes/activity.h"
#include "codes/disk.h"
#include "codes/state.h"
#include "codes/status.h"
#include "hxraid.h"
#include "library/trouble.h"
#include "rules/hxmd_state.h"
#include "system/hxmd_device.h"
#include "system/hxmd_run.h"
#include "system/hxmd_word.h"

namespace hxmd {
namespace {

using hxcodes::DiskAction;
using hxcodes::RebuildType;
using hxcodes::State;
using hxcodes::Status;

template <class Things>
auto FindById(const Things& things, HX_U16 id) -> decltype(things.data()) {
    const auto found =
        std::ranges::find_if(things, [&](const auto& each) { return each.id == id; });
    return found == things.end() ? nullptr : &*found;
}

bool IsGlobalSpare(const View& view, HX_U16 disk) {
    return std::ranges::find(view.kept.spares, disk, &KeptSpare::disk) != view.kept.spares.end();
}

const Member* MemberOn(const Array& array, const std::string& device) {
    const auto found = std::ranges::find(array.members, device, &Member::name);
    return found == array.members.end() ? nullptr : &*found;
}

// Runs mdadm and looks whether the device is a member now.
StatusCode AddTo(const Array& array, const std::string& device, const char* how) {
    const Ran ran = RunMdadm({"--manage", DevicePath(array.name), how, DevicePath(device)});
    const View after = LookAgain();
    const Array* const now = FindById(after.machine.arrays, array.id);
    const Member* const member = now == nullptr ? nullptr : MemberOn(*now, device);
    if (member != nullptr && member->state && !member->state->faulty) return Status::kSuccess;
    hxlibrary::NoteTrouble(ran.message.c_str());
    return Status::kToolFailed;
}

// ---- New members ----

// The size of a partition that holds as much as each member does.
std::uint64_t PlaceSectors(const Array& array) {
    std::uint64_t offset = 0;
    for (const Member& member : array.members) {
        offset = std::max(offset, member.offset.value_or(0));
    }
    if (offset == 0 || !array.component_kib) return 0;
    return offset + *array.component_kib * 2;
}

StatusCode AddNew(const View& view, const Array& array, const Disk& disk) {
    const std::uint64_t sectors = PlaceSectors(array);
    if (sectors == 0) return Status::kWrongState;
    const bool serves = std::ranges::any_of(
        array.members, [&](const Member& member) { return member.disk == disk.id; });
    if (serves) return Status::kDiskInUse;
    Place place;
    if (const auto refusal = MakePlace(view.machine, disk, sectors, place);
        refusal != Status::kSuccess) {
        return refusal;
    }
    const auto status = AddTo(array, place.partition, "--add");
    if (status != Status::kSuccess) UndoPlace(place);
    return status;
}

StatusCode CanTakeMember(const Array& array) {
    if (array.level == 0U) return Status::kNotRedundant;
    if (array.state != ArrayState::kRunning) return Status::kWrongState;
    return array.action == SyncAction::kIdle ? Status::kSuccess : Status::kBusy;
}

StatusCode Rebuild(const View& view, HX_U16 id, HX_U16 disk_id) {
    const Array* const array = FindById(view.machine.arrays, id);
    if (array == nullptr) return Status::kNoVirtualDisk;
    const Disk* const disk = FindById(view.machine.disks, disk_id);
    if (disk == nullptr) return Status::kNoDisk;
    if (array->level == 0U) return Status::kNotRedundant;
    const auto state = StateOf(*array);
    if (state != State::kDegraded && state != State::kPartiallyOptimal) return Status::kWrongState;
    if (const auto refusal = CanTakeMember(*array); refusal != Status::kSuccess) return refusal;
    if (IsGlobalSpare(view, disk_id)) return Status::kDiskTaken;
    return AddNew(view, *array, *disk);
}

StatusCode RebuildOnto(const View& view, const LD_DG_Rebuild_Param* param) {
    if (param == nullptr) return Status::kNullAddress;
    const auto type = hxcodes::ToCode<RebuildType>(param->RebuildType);
    if (!type) return Status::kBadAction;
    if (*type == RebuildType::kDiskGroup) return Status::kNotSupported;
    if (param->PDCount > HX_MAX_HDS) return Status::kBadCount;
    if (param->PDCount != 1) return Status::kBadDiskCount;
    return Rebuild(view, param->ID, param->PDIDs[0]);
}

// A spare for an array that has all its members.
StatusCode MakeSpare(const View& view, HX_U16 disk_id, HX_U16 id) {
    const Disk* const disk = FindById(view.machine.disks, disk_id);
    if (disk == nullptr) return Status::kNoDisk;
    const Array* const array = FindById(view.machine.arrays, id);
    if (array == nullptr) return Status::kNoVirtualDisk;
    if (const auto refusal = CanTakeMember(*array); refusal != Status::kSuccess) return refusal;
    if (StateOf(*array) != State::kOptimal) return Status::kWrongState;
    if (IsGlobalSpare(view, disk_id)) return Status::kDiskTaken;
    return AddNew(view, *array, *disk);
}

// ---- Members that leave ----

// Its superblock goes as well: a later assembly would not know which one is right.
StatusCode Release(const Array& array, const Disk& disk, const Member& member) {
    const Ran removed =
        RunMdadm({"--manage", DevicePath(array.name), "--remove", DevicePath(member.name)});
    const View after = LookAgain();
    const Array* const now = FindById(after.machine.arrays, array.id);
    if (now == nullptr || MemberOn(*now, member.name) != nullptr) {
        hxlibrary::NoteTrouble(removed.message.c_str());
        return Status::kToolFailed;
    }
    const Ran zeroed = RunMdadm({"--zero-superblock", DevicePath(member.name)});
    if (zeroed.outcome == Outcome::kFailed || zeroed.outcome == Outcome::kTimedOut) {
        hxlibrary::NoteTrouble(zeroed.message.c_str());
        return Status::kToolFailed;
    }
    if (disk.name != member.name) static_cast<void>(RemovePartition(disk, member.name));
    return Status::kSuccess;
}

StatusCode FreeSpare(const View& view, HX_U16 disk_id) {
    const Disk* const disk = FindById(view.machine.disks, disk_id);
    if (disk == nullptr) return Status::kNoDisk;
    StatusCode status = Status::kDiskNotSpare;
    for (const Array& array : view.machine.arrays) {
        for (const Member& member : array.members) {
            if (member.disk != disk_id || !IsSpare(array, member)) continue;
            status = Release(array, *disk, member);
            if (status != Status::kSuccess) return status;
        }
    }
    return status;
}

// Everything is checked before the first member is given up.
StatusCode SetOffline(const View& view, HX_U16 disk_id) {
    bool serves = false;
    for (const Array& array : view.machine.arrays) {
        for (const Member& member : array.members) {
            if (member.disk != disk_id || !member.present) continue;
            if (!SurvivesLossOf(array, member)) return Status::kNotRedundant;
            serves = true;
        }
    }
    if (!serves) return Status::kWrongState;
    for (const Array& array : view.machine.arrays) {
        for (const Member& member : array.members) {
            if (member.disk != disk_id || !member.present) continue;
            const std::string attribute = array.name + "/md/dev-" + member.name + "/state";
            const int error = WriteWord(attribute, "faulty");
            if (error == EBUSY) return Status::kNotRedundant;
            if (error != 0) return Status::kWrongState;
        }
    }
    return Status::kSuccess;
}

StatusCode SetFree(const View& view, const Disk& disk) {
    StatusCode status = Status::kWrongState;
    for (const Array& array : view.machine.arrays) {
        for (const Member& member : array.members) {
            if (member.disk != disk.id || !member.present || !member.state) continue;
            if (!member.state->faulty) return Status::kDiskInUse;
            status = Release(array, disk, member);
            if (status != Status::kSuccess) return status;
        }
    }
    return status;
}

// MD takes a failed member back only after it has left.
StatusCode SetOnline(const View& view, const Disk& disk) {
    StatusCode status = Status::kWrongState;
    for (const Array& array : view.machine.arrays) {
        for (const Member& member : array.members) {
            if (member.disk != disk.id || !member.present || !member.state) continue;
            if (!member.state->faulty) continue;
            RunMdadm({"--manage", DevicePath(array.name), "--remove", DevicePath(member.name)});
            status = AddTo(array, member.name, "--re-add");
            // Without a bitmap everything is written again.
            if (status != Status::kSuccess) status = AddTo(array, member.name, "--add");
            if (status != Status::kSuccess) return status;
        }
    }
    return status;
}

StatusCode SetState(const View& view, HX_U16 disk_id, HX_U8 action) {
    const Disk* const disk = FindById(view.machine.disks, disk_id);
    if (disk == nullptr) return Status::kNoDisk;
    const auto wanted = hxcodes::ToCode<DiskAction>(action);
    if (!wanted) return Status::kBadAction;
    if (!disk->present) return Status::kDiskNotReady;
    switch (*wanted) {
        case DiskAction::kOnline:
            return SetOnline(view, *disk);
        case DiskAction::kOffline:
            return SetOffline(view, disk_id);
        case DiskAction::kFree:
            break;
    }
    return SetFree(view, *disk);
}

}  // namespace
}  // namespace hxmd

HX_U8 HX_PD_FreeHD2DGSpare(HX_U8 AdapterID, HX_U16 HD_ID, HX_U16 DG_ID) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::MakeSpare(view, HD_ID, DG_ID));
    });
}

HX_U8 HX_PD_Spare2FreeHD(HX_U8 AdapterID, HX_U16 HD_ID) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::FreeSpare(view, HD_ID));
    });
}

HX_U8 HX_PD_SetHDStatus(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::SetState(view, HD_ID, Action));
    });
}

HX_U8 HX_LD_StartRebuild(HX_U8 AdapterID, HX_U16 LD_ID, HX_U16 Rebuild_HD_ID) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::Rebuild(view, LD_ID, Rebuild_HD_ID));
    });
}

HX_U8 HX_LD_DG_StartRebuild(HX_U8 AdapterID, LD_DG_Rebuild_Param* param) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::RebuildOnto(view, param));
    });
}
