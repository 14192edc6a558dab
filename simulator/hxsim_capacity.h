// How much fits: what is left of disks, and the size of what is made of them.
#ifndef HXSIM_CAPACITY_H
#define HXSIM_CAPACITY_H

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

#include "hxraid.h"
#include "hxraid_codes.h"
#include "hxsim_machine.h"

namespace hxsim {

/// Sectors of a disk that virtual disks can still have which lie directly on disks: none on a spare
/// or on a disk of a disk group.
std::uint64_t FreeSectors(HX_U8 adapter, const Disk& disk);

/// The longest run of sectors of a disk that are free or in blocks of `virtual_disk`, which is
/// kNoVirtualDisk for one that is not there yet. Refused on a spare and on a disk of a disk group.
HX_U8 RunForVirtualDisk(HX_U8 adapter, const Disk& disk, HX_U16 virtual_disk, std::uint64_t& run);

/// The whole disk; refused unless it is free or `group` has it already. A group that is not there
/// yet is null.
HX_U8 RunForDiskGroup(HX_U8 adapter, const Disk& disk, const DiskGroup* group, std::uint64_t& run);

/// What a virtual disk or a disk group is to be made of.
struct Plan {
    HX_U8 level;
    HX_U8 legs;         // 0: as many as usual; not looked at where the level has none
    HX_U16 stripe_kib;  // 0: 64
    std::span<const HX_U16> disks;
    unsigned most_disks;  // that the adapter joins
};

/// Whether the adapter offers what the plan asks for, and has the disks, each named once.
HX_U8 CheckPlan(HX_U8 adapter, const Plan& plan);

/// Sectors of data when each disk gives a run of so many.
std::uint64_t DataSectors(const Plan& plan, std::uint64_t run);

/// Sets `sectors` to the most data that the plan can hold, or refuses it and leaves them alone.
/// `run_on(disk, run)` sets the run that a disk gives, or refuses it.
template <class RunOn>
HX_U8 SizePlan(HX_U8 adapter, const Plan& plan, RunOn run_on, std::uint64_t& sectors) {
    if (const HX_U8 status = CheckPlan(adapter, plan); status != HX_SUCCESS) return status;
    std::uint64_t shortest = std::numeric_limits<std::uint64_t>::max();
    for (const HX_U16 id : plan.disks) {
        std::uint64_t run = 0;
        const HX_U8 status = run_on(*Find(adapter, kDisks, id), run);
        if (status != HX_SUCCESS) return status;
        shortest = std::min(shortest, run);
    }
    const std::uint64_t data = DataSectors(plan, shortest);
    if (data == 0) return HXSIM_NO_SPACE;
    sectors = data;
    return HX_SUCCESS;
}

}  // namespace hxsim

#endif
