// Rebuilds: restore the content of lost blocks on the disks that have taken their place.
#include "rules/hxsim_rebuild.h"

#include <algorithm>
#include <vector>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_home.h"
#include "model/hxsim_redundancy.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_copyback.h"

namespace hxsim {
namespace {

bool LetsRebuild(AtRebuild at_rebuild) {
    switch (at_rebuild) {
        case AtRebuild::kEnds:
        case AtRebuild::kWaits:
        case AtRebuild::kIsUnconcerned:
            return true;
        case AtRebuild::kBlocks:
            break;
    }
    return false;
}

}  // namespace

bool MayRebuild(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const State state = StateOf(adapter, virtual_disk);
    if (state != State::kDegraded && state != State::kPartiallyOptimal) return false;
    if (const Activity* const group = ActivityOf(adapter, Owner::kDiskGroup, virtual_disk.group);
        virtual_disk.group != kNoId && group != nullptr &&
        group->kind != ActivityKind::kMigration) {
        return false;
    }
    const Activity* const activity = ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk.id);
    return activity == nullptr || LetsRebuild(RowOf(activity->kind).at_rebuild);
}

bool HasBlocksToRebuild(const Adapter& adapter, const VirtualDisk& virtual_disk, bool held) {
    return std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        return block.virtual_disk == virtual_disk.id && !block.target &&
               (block.state == State::kDegraded || (held && block.state == State::kRebuilding)) &&
               IsReady(adapter, block.disk);
    });
}

void StartRebuild(Adapter& adapter, Time now, HX_U16 virtual_disk) {
    const Activity* const lesser = ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk);
    if (lesser != nullptr && RowOf(lesser->kind).at_rebuild == AtRebuild::kEnds) {
        // These activities have no effects that would have to be undone, so removing the row is
        // enough.
        Announce(adapter, now, Remove(adapter, lesser->id), Step::kAbort);
    }
    Activity rebuild;
    rebuild.kind = ActivityKind::kRebuild;
    rebuild.of = Owner::kVirtualDisk;
    rebuild.owner = virtual_disk;
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk != virtual_disk || block.target) continue;
        if (block.state == State::kDegraded && IsReady(adapter, block.disk)) {
            block.state = State::kRebuilding;
        }
        rebuild.total = block.sectors;
    }
    Start(adapter, now, rebuild);
}

void FinishRebuild(Adapter& adapter, Time now, HX_U16 virtual_disk) {
    const VirtualDisk* const row = Find(adapter.virtual_disks, virtual_disk);
    if (row == nullptr) return;
    std::vector<HX_U16> homes;
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk != virtual_disk || block.target ||
            block.state != State::kRebuilding) {
            continue;
        }
        block.state = State::kOptimal;
        Home* const home = HomeOf(adapter, *row, block.position);
        if (home == nullptr || !IsDisplaced(*home)) continue;
        if (adapter.config.CopyBack == 0) {
            BelongThere(adapter, *home);
        } else {
            homes.push_back(home->home);
        }
    }
    for (const HX_U16 home : homes) TellOfSmallHome(adapter, now, home);
}

bool RebuildsByItself(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    return adapter.config.AutoRebuildOn != 0 && virtual_disk.auto_rebuild;
}

bool StartRebuilds(Settling& settling) {
    Adapter& adapter = settling.adapter;
    bool changed = false;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (!RebuildsByItself(adapter, each) || !MayRebuild(adapter, each) ||
            !HasBlocksToRebuild(adapter, each, false)) {
            continue;
        }
        StartRebuild(adapter, settling.now, each.id);
        changed = true;
    }
    return changed;
}

}  // namespace hxsim
