// How activities end: completed with their effect, aborted, or failed.
#include "rules/hxsim_activity_end.h"

#include "model/hxsim_codes.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_copyback.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_migration.h"
#include "rules/hxsim_rebuild.h"
#include "rules/hxsim_remap.h"

namespace hxsim {
namespace {

// ---- Effects of completion ----

void FinishInitialisation(Adapter& adapter, HX_U16 id) {
    VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr) return;
    virtual_disk->initialised = true;
    virtual_disk->errors = 0;
}

// Remaps all damage under the virtual disk, since every sector of it has been read.
void MeetDamage(Adapter& adapter, Time now, HX_U16 virtual_disk) {
    for (const Block& block : adapter.blocks) {
        if (block.virtual_disk == virtual_disk && !block.target) {
            RemapDamage(adapter, now, block.disk, block.start, block.sectors);
        }
    }
}

void FinishCheck(Adapter& adapter, Time now, HX_U16 id) {
    MeetDamage(adapter, now, id);
    const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr || virtual_disk->errors == 0) return;
    Queue(adapter, now, EventKind::kErrorsFound, id, {virtual_disk->errors});
}

void FinishFix(Adapter& adapter, Time now, HX_U16 id) {
    MeetDamage(adapter, now, id);
    VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, id);
    if (virtual_disk == nullptr || virtual_disk->errors == 0) return;
    Queue(adapter, now, EventKind::kErrorsFixed, id, {virtual_disk->errors});
    virtual_disk->errors = 0;
}

// A scrub reports damage and does not remap it.
void FinishScrub(Adapter& adapter, Time now, HX_U16 disk) {
    const Remap* first = nullptr;
    HX_U32 count = 0;
    for (const Remap& each : adapter.remaps) {
        if (each.disk != disk || each.reason != kNotRemapped) continue;
        if (first == nullptr) first = &each;
        ++count;
    }
    if (first == nullptr) return;
    const auto high = static_cast<HX_U32>(first->lba >> 32);
    Queue(adapter, now, EventKind::kScrubError, disk,
          {count, high, static_cast<HX_U32>(first->lba)});
}

void TakeEffect(Adapter& adapter, Time now, const Activity& activity) {
    switch (RowOf(activity.kind).effect) {
        case Effect::kNothing:
            return;
        case Effect::kTellsOfErrors:
            return FinishCheck(adapter, now, activity.owner);
        case Effect::kMendsErrors:
            return FinishFix(adapter, now, activity.owner);
        case Effect::kInitialises:
            return FinishInitialisation(adapter, activity.owner);
        case Effect::kRebuilds:
            return FinishRebuild(adapter, now, activity.owner);
        case Effect::kMigrates:
            return CompleteMigration(adapter, activity);
        case Effect::kCopiesBack:
            return FinishCopyback(adapter, activity);
        case Effect::kRemapsDamage:
            RemapDamage(adapter, now, activity.owner, 0, UINT64_MAX);
            return;
        case Effect::kTellsOfDamage:
            return FinishScrub(adapter, now, activity.owner);
    }
}

// ---- Clean-up after an abort or a failure ----

// After a failed rebuild the blocks are degraded again, so that another rebuild starts them anew.
void ForgetRebuild(Adapter& adapter, HX_U16 virtual_disk) {
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk == virtual_disk && block.state == State::kRebuilding) {
            block.state = State::kDegraded;
        }
    }
}

}  // namespace

void Complete(Adapter& adapter, Time now, HX_U16 activity_id) {
    const Activity activity = Remove(adapter, activity_id);
    TakeEffect(adapter, now, activity);
    Announce(adapter, now, activity, Step::kComplete);
}

void Abort(Adapter& adapter, Time now, HX_U16 activity_id) {
    if (Find(adapter.activities, activity_id) == nullptr) return;
    const Activity activity = Remove(adapter, activity_id);
    if (activity.kind == ActivityKind::kCopyback) DropCopyback(adapter, activity, true);
    if (activity.kind == ActivityKind::kMigration) AbandonMigration(adapter, activity);
    Announce(adapter, now, activity, Step::kAbort);
}

void Fail(Adapter& adapter, Time now, HX_U16 activity_id) {
    if (Find(adapter.activities, activity_id) == nullptr) return;
    const Activity activity = Remove(adapter, activity_id);
    if (activity.kind == ActivityKind::kRebuild) ForgetRebuild(adapter, activity.owner);
    if (activity.kind == ActivityKind::kCopyback) DropCopyback(adapter, activity, false);
    if (activity.kind == ActivityKind::kMigration) AbandonMigration(adapter, activity);
    Announce(adapter, now, activity, Step::kError);
}

}  // namespace hxsim
