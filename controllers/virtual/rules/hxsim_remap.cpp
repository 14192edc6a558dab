// Damaged sectors and their replacement by spare sectors of the disk.
#include "rules/hxsim_remap.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

// The number of runs that a disk can remap.
constexpr std::size_t kRemapRoom = 64;
constexpr std::size_t kRemapWarning = kRemapRoom * 8 / 10;

}  // namespace

void SetRemap(Adapter& adapter, const Remap& remap) {
    const auto at =
        std::ranges::lower_bound(adapter.remaps, std::tuple(remap.disk, remap.lba), {},
                                 [](const Remap& each) { return std::tuple(each.disk, each.lba); });
    if (at != adapter.remaps.end() && at->disk == remap.disk && at->lba == remap.lba) {
        *at = remap;
    } else {
        adapter.remaps.insert(at, remap);
    }
}

bool Reassign(Adapter& adapter, Time now, HX_U16 disk, Sectors lba, HX_U32 sectors) {
    const auto is_used = [&](const Remap& remap) {
        return remap.disk == disk && remap.reason != kNotRemapped;
    };
    const auto used = static_cast<std::size_t>(std::ranges::count_if(adapter.remaps, is_used));
    if (used >= kRemapRoom) {
        Queue(adapter, now, EventKind::kRemapTableFull, disk);
        return false;
    }
    SetRemap(adapter, {disk, lba, sectors, RemapReason::kReadError});
    Queue(adapter, now, EventKind::kSectorReassigned, disk);
    Queue(adapter, now, EventKind::kRemapAdded, disk,
          {static_cast<HX_U32>(lba >> 32), static_cast<HX_U32>(lba), sectors,
           NumberOf(RemapReason::kReadError)});
    if (used + 1 == kRemapRoom) {
        Queue(adapter, now, EventKind::kRemapTableFull, disk);
    } else if (used < kRemapWarning && used + 1 >= kRemapWarning) {
        Queue(adapter, now, EventKind::kRemapTable80Full, disk);
    }
    return true;
}

HX_U32 RemapDamage(Adapter& adapter, Time now, HX_U16 disk, Sectors start, Sectors sectors) {
    std::vector<Remap> damaged;
    std::ranges::copy_if(adapter.remaps, std::back_inserter(damaged), [&](const Remap& each) {
        return each.disk == disk && each.reason == kNotRemapped && each.lba >= start &&
               each.lba - start < sectors;
    });
    HX_U32 count = 0;
    for (const Remap& each : damaged) {
        // Without room for one run there is none for the next.
        if (!Reassign(adapter, now, disk, each.lba, each.sectors)) break;
        ++count;
    }
    return count;
}

}  // namespace hxsim
