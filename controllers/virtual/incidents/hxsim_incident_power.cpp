// A power cut, and what the controller reports when it comes up again.
#include "incidents/hxsim_incident_power.h"

#include <algorithm>

#include "model/hxsim_disk_role.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_battery.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

// Whether cached data is lost: the write-back cache has no safe battery, so a stripe may stay half
// written.
bool LosesWhatIsCached(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    return (virtual_disk.cache & CacheBit::kWriteBack) != 0 && !AllowsWriteBack(adapter) &&
           !ForcesWriteThrough(adapter) && virtual_disk.initialised && !virtual_disk.foreign &&
           IsRedundant(virtual_disk.level) && StateOf(adapter, virtual_disk) != State::kOffline;
}

// Whether all disks of the virtual disk are missing.
bool IsGone(const Adapter& adapter, HX_U16 virtual_disk) {
    return std::ranges::none_of(adapter.blocks, [&](const Block& block) {
        if (block.virtual_disk != virtual_disk) return false;
        const Disk* const disk = Find(adapter.disks, block.disk);
        return disk != nullptr && disk->present;
    });
}

// Reports the disks, virtual disks and battery that are missing at start-up.
void AnnounceMissing(Adapter& adapter, Time now) {
    for (const Disk& disk : adapter.disks) {
        if (!disk.present && IsConfigured(adapter, disk.id)) {
            Queue(adapter, now, EventKind::kDiskMissingAtBoot, disk.id);
        }
    }
    for (const VirtualDisk& each : adapter.virtual_disks) {
        const State state = StateOf(adapter, each);
        if (state != State::kOptimal && state != State::kForeign) {
            const bool gone = IsGone(adapter, each.id);
            Queue(adapter, now,
                  gone ? EventKind::kVirtualDiskMissingAtBoot : EventKind::kVirtualDiskMissesDisks,
                  each.id);
        }
    }
    const bool battery_missing = std::ranges::any_of(
        adapter.batteries, [](const Battery& battery) { return !battery.present; });
    if (battery_missing) Queue(adapter, now, EventKind::kBatteryNotPresent, kBattery);
}

}  // namespace

void CutPower(Adapter& adapter, Time now) {
    for (VirtualDisk& each : adapter.virtual_disks) {
        if (LosesWhatIsCached(adapter, each)) ++each.errors;
    }
    Queue(adapter, now, EventKind::kAdapterFound, adapter.id, {}, TextOf(adapter.info.SerialNo));
    AnnounceMissing(adapter, now);
    for (const Activity& activity : adapter.activities) {
        if (activity.state == ActivityState::kRunning) {
            Announce(adapter, now, activity, Step::kRestart);
        }
    }
}

}  // namespace hxsim
