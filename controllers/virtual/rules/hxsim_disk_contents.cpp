// Takes a disk's contents away from the virtual disks that use it.
#include "rules/hxsim_disk_contents.h"

#include <algorithm>
#include <vector>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_home.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity_end.h"

namespace hxsim {
namespace {

void FailWhatWrites(Adapter& adapter, Time now, Owner of, HX_U16 owner, bool target) {
    const Activity* const activity = ActivityOf(adapter, of, owner);
    if (IsKind(activity, target ? ActivityKind::kCopyback : ActivityKind::kRebuild)) {
        Fail(adapter, now, activity->id);
    }
    const Activity* const migration = MigrationOf(adapter, of, owner);
    if (target && migration != nullptr) Fail(adapter, now, migration->id);
}

// A rebuild, copyback or migration that loses the blocks it writes cannot continue.
void EndWritesTo(Adapter& adapter, Time now, HX_U16 disk) {
    std::vector<Block> written;
    for (const Block& block : adapter.blocks) {
        const bool is_written = block.target || block.state == State::kRebuilding;
        if (block.disk == disk && is_written) written.push_back(block);
    }
    for (const Block& block : written) {
        FailWhatWrites(adapter, now, Owner::kVirtualDisk, block.virtual_disk, block.target);
        const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, block.virtual_disk);
        if (virtual_disk == nullptr || virtual_disk->group == kNoId) continue;
        FailWhatWrites(adapter, now, Owner::kDiskGroup, virtual_disk->group, block.target);
    }
}

void DropForeign(Adapter& adapter, HX_U16 virtual_disk) {
    DropHomes(adapter, Owner::kVirtualDisk, virtual_disk);
    std::erase_if(adapter.virtual_disks,
                  [&](const VirtualDisk& each) { return each.id == virtual_disk; });
}

}  // namespace

void DropContents(Adapter& adapter, Time now, HX_U16 disk) {
    EndWritesTo(adapter, now, disk);
    ResetDisk(adapter, disk);
    for (Home& home : adapter.homes) {
        if (home.disk == disk) home.disk = kNoId;
    }
    std::vector<HX_U16> gone;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (!each.foreign) continue;
        const auto is_left = [&](const Block& block) { return block.virtual_disk == each.id; };
        if (std::ranges::none_of(adapter.blocks, is_left)) gone.push_back(each.id);
    }
    for (const HX_U16 virtual_disk : gone) DropForeign(adapter, virtual_disk);
}

}  // namespace hxsim
