// The states of arrays, from the positions that they have lost.
#include "model/hxsim_redundancy.h"

#include <algorithm>
#include <optional>

namespace hxsim {
namespace {

// How many of the positions first .. first + count - 1 are lost.
unsigned CountLost(const Positions& lost, unsigned first, unsigned count) {
    unsigned number = 0;
    for (unsigned i = first; i < first + count; ++i) number += lost[i] ? 1U : 0U;
    return number;
}

// The state of an array of legs, each of which survives the loss of `redundancy` positions.
State StateOfLegs(const Positions& lost, unsigned width, unsigned legs, unsigned redundancy) {
    const unsigned leg = width / std::max(legs, 1U);
    unsigned worst = 0;
    for (unsigned first = 0; leg != 0 && first + leg <= width; first += leg) {
        worst = std::max(worst, CountLost(lost, first, leg));
    }
    if (worst == 0) return State::kOptimal;
    if (worst > redundancy) return State::kOffline;
    return worst < redundancy ? State::kPartiallyOptimal : State::kDegraded;
}

// The state of a ring, in which each position's content is mirrored on its neighbour.
State StateOfRing(const Positions& lost, unsigned width) {
    for (unsigned i = 0; i < width; ++i) {
        if (lost[i] && lost[(i + 1) % width]) return State::kOffline;
    }
    return CountLost(lost, 0, width) == 0 ? State::kOptimal : State::kDegraded;
}

bool IsGood(const Adapter& adapter, const Block& block) {
    return block.state == State::kOptimal && IsReady(adapter, block.disk);
}

// The state of a disk group that follows from its disks alone, whether or not it has virtual disks.
State StateOfDisks(const Adapter& adapter, const DiskGroup& group) {
    Positions lost;
    lost.set();
    for (const Home& home : adapter.homes) {
        if (home.of != Owner::kDiskGroup || home.owner != group.id) continue;
        lost[home.position] = !IsReady(adapter, home.disk);
    }
    return StateOfArray(group.level, group.legs, group.width, lost);
}

}  // namespace

State StateOfArray(Level level, HX_U8 legs, HX_U8 width, const Positions& lost) {
    const LevelRow& row = RowOf(level);
    const unsigned redundancy = RedundancyOf(row);
    switch (row.spread) {
        case Spread::kLegs:
            return StateOfLegs(lost, width, LegsOf(row, legs), redundancy);
        case Spread::kPairs:
            return StateOfLegs(lost, width, width / 2U, redundancy);
        case Spread::kRing:
            break;
    }
    return StateOfRing(lost, width);
}

bool IsRedundant(Level level) { return RedundancyOf(RowOf(level)) != 0; }

Positions LostPositions(const Adapter& adapter, HX_U16 virtual_disk, bool target) {
    Positions lost;
    lost.set();
    for (const Block& block : adapter.blocks) {
        if (block.virtual_disk == virtual_disk && block.target == target) {
            lost[block.position] = !IsGood(adapter, block);
        }
    }
    return lost;
}

State StateOf(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    if (virtual_disk.foreign) return State::kForeign;
    return StateOfArray(virtual_disk.level, virtual_disk.legs, virtual_disk.width,
                        LostPositions(adapter, virtual_disk.id));
}

State StateOf(const Adapter& adapter, const DiskGroup& group) {
    std::optional<State> worst;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group == group.id) {
            worst = std::max(worst.value_or(State::kOptimal), StateOf(adapter, each));
        }
    }
    return worst ? *worst : StateOfDisks(adapter, group);
}

}  // namespace hxsim
