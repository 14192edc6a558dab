// The calls that start, pause, resume and abort what arrays do. Each is a word for MD.
#include <algorithm>
#include <cerrno>
#include <string>

#include "calls/hxmd_session.h"
#include "codes/activity.h"
#include "codes/status.h"
#include "hxraid.h"
#include "rules/hxmd_state.h"
#include "sysfs/hxmd_look.h"
#include "system/hxmd_word.h"

namespace hxmd {
namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::CheckType;
using hxcodes::ControlAction;
using hxcodes::Status;

Status StatusOf(int error) {
    switch (error) {
        case 0:
            return Status::kSuccess;
        case EBUSY:
            return Status::kBusy;
        case EACCES:
        case EPERM:
        case EROFS:
            return Status::kNoPermission;
        default:  // the array is going, or cannot do that
            return Status::kWrongState;
    }
}

Status Write(const Array& array, const char* attribute, const std::string& word) {
    return StatusOf(WriteWord(array.name + "/md/" + attribute, word));
}

// ---- Pauses ----

void KeepPause(const View& view, const Array& array, SyncAction action) {
    const auto members = static_cast<HX_U16>(std::min<std::size_t>(FilledCount(array), kNoId));
    const std::string boot_id = view.machine.boot_id;
    Save([&](Kept& kept) {
        std::erase_if(kept.pauses, [&](const KeptPause& each) { return each.array == array.id; });
        kept.pauses.push_back({array.id, static_cast<HX_U8>(action), members, boot_id});
    });
}

void ForgetPause(const Array& array) {
    Save([&](Kept& kept) {
        std::erase_if(kept.pauses, [&](const KeptPause& each) { return each.array == array.id; });
    });
}

bool IsCheck(const std::optional<SyncAction>& action) {
    return action == SyncAction::kCheck || action == SyncAction::kRepair;
}

// The place of a check, at the beginning of a chunk, from which it can go on.
std::uint64_t PlaceOf(const Array& array) {
    constexpr std::uint64_t kPage = 8;  // sectors
    const std::uint64_t chunk = std::max(array.chunk.value_or(0) / 512, kPage);
    const std::uint64_t done = array.completed.value_or(Completed{}).done;
    return done / chunk * chunk;
}

// `mdadm --grow` guards some reshapes by moving their end, and must not be disturbed.
bool IsGuarded(const Array& array) {
    return ActivityOf(array).kind == ActivityKind::kMigration &&
           LineOf("/sys/block", array.name + "/md/sync_max") != "max";
}

// A check is stopped and its place kept; while the array is frozen no spare could step in.
Status PauseCheck(const View& view, const Array& array) {
    const SyncAction action = *array.action;
    if (const auto status = Write(array, "sync_action", "idle"); status != Status::kSuccess) {
        return status;
    }
    const auto status = Write(array, "sync_min", std::to_string(PlaceOf(array)));
    if (status == Status::kSuccess) KeepPause(view, array, action);
    return status;
}

Status Pause(const View& view, const Array& array) {
    if (ActivityOf(array).state == ActivityState::kPaused) return Status::kNoChange;
    if (IsGuarded(array)) return Status::kBusy;
    if (IsCheck(array.action)) return PauseCheck(view, array);
    const auto status = Write(array, "sync_action", "frozen");
    if (status == Status::kSuccess) {
        KeepPause(view, array, array.action.value_or(SyncAction::kUnknown));
    }
    return status;
}

Status Resume(const Array& array) {
    const Activity activity = ActivityOf(array);
    if (activity.state == ActivityState::kRunning) return Status::kNoChange;
    if (activity.state != ActivityState::kPaused) return Status::kWrongState;
    if (IsGuarded(array)) return Status::kBusy;
    std::string word = "idle";  // resync and recover go on by themselves
    if (activity.kind == ActivityKind::kMigration) word = "reshape";
    if (array.action != SyncAction::kFrozen) {
        word = activity.kind == ActivityKind::kCheck ? "check" : "repair";
    }
    const auto status = Write(array, "sync_action", word);
    if (status == Status::kSuccess) ForgetPause(array);
    return status;
}

// MD would start anything else again.
Status Abort(const Array& array) {
    const bool paused = array.action == SyncAction::kIdle && IsCheck(array.paused);
    if (!paused && !IsCheck(array.action)) return Status::kWrongState;
    if (!paused) {
        const auto status = Write(array, "sync_action", "idle");
        if (status != Status::kSuccess) return status;
    }
    ForgetPause(array);
    return Write(array, "sync_min", "0");
}

// ---- Calls ----

const Array* FindArray(const View& view, HX_U16 id) {
    const auto& arrays = view.machine.arrays;
    const auto found = std::ranges::find(arrays, id, &Array::id);
    return found == arrays.end() ? nullptr : &*found;
}

Status Control(const View& view, HX_U16 id, HX_U8 action) {
    const Array* const array = FindArray(view, id);
    if (array == nullptr) return Status::kNoVirtualDisk;
    const auto wanted = hxcodes::ToCode<ControlAction>(action);
    if (!wanted) return Status::kBadAction;
    if (ActivityOf(*array).kind == ActivityKind::kNone) return Status::kNoActivity;
    switch (*wanted) {
        case ControlAction::kPause:
            return Pause(view, *array);
        case ControlAction::kResume:
            return Resume(*array);
        case ControlAction::kAbort:
            break;
    }
    return Abort(*array);
}

// Succeeds when nothing runs as well; one array that cannot be paused does not spare the others.
Status PauseAll(const View& view) {
    Status result = Status::kSuccess;
    for (const Array& array : view.machine.arrays) {
        const Activity activity = ActivityOf(array);
        if (activity.kind == ActivityKind::kNone || activity.state == ActivityState::kPaused) {
            continue;
        }
        const auto status = Pause(view, array);
        if (result == Status::kSuccess) result = status;
    }
    return result;
}

Status StartCheck(const View& view, HX_U16 id, HX_U8 type) {
    const Array* const array = FindArray(view, id);
    if (array == nullptr) return Status::kNoVirtualDisk;
    const auto wanted = hxcodes::ToCode<CheckType>(type);
    if (!wanted) return Status::kBadAction;
    if (StateOf(*array) == hxcodes::State::kOffline) return Status::kWrongState;
    if (array->level == 0U) return Status::kNotRedundant;
    if (ActivityOf(*array).kind != ActivityKind::kNone) return Status::kBusy;
    if (array->action != SyncAction::kIdle) return Status::kBusy;
    // The place of a check that another program has stopped.
    if (array->sync_min.value_or(0) != 0) {
        const auto status = Write(*array, "sync_min", "0");
        if (status != Status::kSuccess) return status;
    }
    return Write(*array, "sync_action", *wanted == CheckType::kOnly ? "check" : "repair");
}

}  // namespace
}  // namespace hxmd

HX_U8 HX_LD_BGAControl(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Actions) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::Control(view, LD_ID, Actions));
    });
}

HX_U8 HX_LD_PauseAll(HX_U8 AdapterID) {
    return hxmd::OnChange(
        AdapterID, [](const hxmd::View& view) { return hxcodes::NumberOf(hxmd::PauseAll(view)); });
}

HX_U8 HX_LD_StartConsistencyCheck(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Type) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::StartCheck(view, LD_ID, Type));
    });
}
