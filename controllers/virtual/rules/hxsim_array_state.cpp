// The states of virtual disks and disk groups as disks are lost and return.
#include "rules/hxsim_array_state.h"

#include <algorithm>
#include <utility>

#include "model/hxsim_home.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_alarm.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

bool MissesDisk(const Adapter& adapter, HX_U16 virtual_disk) {
    return std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        if (block.virtual_disk != virtual_disk || block.target) return false;
        const Disk* const disk = Find(adapter.disks, block.disk);
        return disk == nullptr || !disk->present;
    });
}

}  // namespace

EventKind EventOfState(State state) {
    switch (state) {
        case State::kOffline:
            return EventKind::kVirtualDiskOffline;
        case State::kDegraded:
            return EventKind::kVirtualDiskDegraded;
        case State::kPartiallyOptimal:
            return EventKind::kVirtualDiskPartiallyOptimal;
        case State::kOptimal:
        case State::kRebuilding:  // of blocks alone
        case State::kForeign:     // never announced
            break;
    }
    return EventKind::kVirtualDiskOnline;
}

bool LetBlocksFallOutOfDate(Settling& settling) {
    Adapter& adapter = settling.adapter;
    bool changed = false;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (!IsUsable(StateOf(adapter, each))) continue;
        for (Block& block : adapter.blocks) {
            if (block.virtual_disk != each.id || block.state == State::kDegraded ||
                IsReady(adapter, block.disk)) {
                continue;
            }
            block.state = State::kDegraded;
            settling.losses.insert(each.id);
            changed = true;
        }
    }
    return changed;
}

bool FollowBlocks(Settling& settling) {
    Adapter& adapter = settling.adapter;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        for (unsigned i = 0; i < each.width; ++i) {
            const auto position = static_cast<HX_U8>(i);
            Home* const home = HomeOf(adapter, each, position);
            const Block* const block = BlockOf(adapter, each.id, position);
            if (home != nullptr) home->disk = block == nullptr ? kNoId : block->disk;
        }
    }
    return false;
}

bool AnnounceStates(Settling& settling) {
    Adapter& adapter = settling.adapter;
    bool changed = false;
    for (VirtualDisk& each : adapter.virtual_disks) {
        const State state = StateOf(adapter, each);
        const State before = std::exchange(each.state, state);
        if (state == before) continue;
        changed = true;
        if (state == State::kForeign) continue;
        // The import has announced a foreign virtual disk already.
        if (before == State::kForeign && state == State::kOptimal) continue;
        Queue(adapter, settling.now, EventOfState(state), each.id);
        if (state < before) continue;
        settling.losses.insert(each.id);
        settling.new_alarm_cause = settling.new_alarm_cause || CausesAlarm(state);
        if (MissesDisk(adapter, each.id)) {
            Queue(adapter, settling.now, EventKind::kVirtualDiskMissesDisks, each.id);
        }
    }
    return changed;
}

void SetGroupStates(Adapter& adapter) {
    for (DiskGroup& group : adapter.disk_groups) group.state = StateOf(adapter, group);
}

}  // namespace hxsim
