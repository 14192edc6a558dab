// The states of virtual disks and disk groups as disks are lost and return.
#include "rules/hxsim_array_state.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "model/hxsim_codes.h"
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

// What the event of a state tells beyond its kind: the disks of which none may fail any more,
// beside those of other legs or pairs which still may; or that it was worse before.
EventParams ParamsOfState(const Adapter& adapter, const VirtualDisk& virtual_disk, State before) {
    const State state = virtual_disk.state;
    if (state == State::kPartiallyOptimal) return {state < before ? 1U : 0U};
    if (state != State::kDegraded) return {};
    const Positions lost = LostPositions(adapter, virtual_disk.id);
    std::vector<HX_U16> fatal, harmless;
    for (unsigned i = 0; i < virtual_disk.width; ++i) {
        if (lost[i]) continue;
        const State then = StateOfArray(virtual_disk.level, virtual_disk.legs, virtual_disk.width,
                                        Positions(lost).set(i));
        const HX_U16 disk =
            BlockOf(adapter, virtual_disk.id, static_cast<HX_U8>(i))->disk;  // it is not lost
        (IsUsable(then) ? harmless : fatal).push_back(disk);
    }
    return ParamsOfDegraded(fatal, harmless);
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
        Queue(adapter, settling.now, EventOfState(state), each.id,
              ParamsOfState(adapter, each, before));
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
