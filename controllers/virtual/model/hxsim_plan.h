// What can be made of disks, and how large it would be: the one arithmetic behind sizes that are
// asked for and what is then made.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "hxraid.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

inline constexpr HX_U32 kSectorSize = 512;

/// What is wanted of a virtual disk or a disk group. How many of its disks hold parity follows from
/// the level: callers name a number for levels that have none.
struct Wish {
    std::optional<Level> level;  // none: of a number that is no level
    HX_U8 legs = 0;              // 0: as many as usual; not looked at where the level has none
    HX_U16 stripe_kib = 0;       // 0: 64
    std::span<const HX_U16> disks;
    unsigned most_disks = 0;  // that the adapter joins
};

/// What a virtual disk or a disk group consists of.
struct Layout {
    Level level = Level::kRaid0;
    HX_U8 legs = 0;  // 0 where the level has none
    HX_U16 stripe_kib = 64;
    std::vector<HX_U16> disks;  // by position

    HX_U8 Width() const { return static_cast<HX_U8>(disks.size()); }
    /// Sectors of data on blocks of so many sectors, and of the blocks that so much data needs.
    Sectors Data(Sectors block) const;
    Sectors Block(Sectors data) const;
};

/// A run of sectors.
struct Run {
    Sectors start = 0;
    Sectors sectors = 0;
};

/// Sets what is wanted as a layout, when the adapter offers it and has the disks, each named once.
/// Whether the disks may be used is not asked here.
Status MakeLayout(const Adapter& adapter, const Wish& wish, Layout& layout);

/// Whether a virtual disk may have what is free of the disk.
Status CheckSharedDisk(const Adapter& adapter, HX_U16 id);

/// Whether a disk group may have the whole disk.
Status CheckWholeDisk(const Adapter& adapter, HX_U16 id);

/// Sets the size that a virtual disk gets when its blocks can have `run` sectors and `wanted`
/// sectors of data are asked for (0: as many as fit). Refused with Status::kBadRounding,
/// Status::kNoSpace or, for less than rounding leaves, Status::kBadValue.
Status ChooseSize(const Layout& layout, Sectors run, Sectors wanted, HX_U8 rounding, Sectors& size);

/// Whether the adapter can have one virtual disk more.
Status CheckVirtualDiskCount(const Adapter& adapter);

/// A virtual disk on disks of its own, before it is made: one block on each of its disks.
struct VirtualDiskPlan {
    Layout layout;
    Sectors size = 0;
    Sectors block = 0;
    std::vector<Sectors> starts;  // by position
};
Status PlanVirtualDisk(const Adapter& adapter, const Create_LD_Param& param, Sectors wanted,
                       VirtualDiskPlan& plan);

/// What a disk group consists of, with its lost positions.
Layout LayoutOf(const Adapter& adapter, const DiskGroup& group);

/// Sectors of data that the disks of a layout hold, as many on each as on the smallest one.
Sectors ManagedSpace(const Adapter& adapter, const Layout& layout);

/// Usable sectors of the smallest of the disks; 0 without one.
Sectors SmallestDisk(const Adapter& adapter, std::span<const HX_U16> disks);

/// The runs that are free on every one of the disks, in ascending order.
std::vector<Run> CommonFree(const Adapter& adapter, std::span<const HX_U16> disks);

/// The longest of the runs, the first of equals; an empty one when there is none.
Run Longest(std::span<const Run> runs);

}  // namespace hxsim
