// Layouts and sizes of new virtual disks and disk groups. Size queries and creation share this
// arithmetic, so that they agree.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "hxraid.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

inline constexpr HX_U32 kSectorSize = 512;

/// The layout that a caller asks for. It has no number of parity disks: that follows from the
/// level, and callers name one even for levels without parity.
struct Wish {
    std::optional<Level> level;  // empty: the caller's number is no level
    HX_U8 legs = 0;              // 0: the default; ignored where the level has none
    HX_U16 stripe_kib = 0;       // 0: 64
    std::span<const HX_U16> disks;
    unsigned most_disks = 0;  // the adapter's limit
};

/// The level, stripe size and disks of a virtual disk or a disk group.
struct Layout {
    Level level = Level::kRaid0;
    HX_U8 legs = 0;  // 0 where the level has none
    HX_U16 stripe_kib = 64;
    std::vector<HX_U16> disks;  // by position

    HX_U8 Width() const { return static_cast<HX_U8>(disks.size()); }
    /// Sectors of data that blocks of `block` sectors hold, and the block size that `data` sectors
    /// need.
    Sectors Data(Sectors block) const;
    Sectors Block(Sectors data) const;
};

/// A run of sectors.
struct Run {
    Sectors start = 0;
    Sectors sectors = 0;
};

/// Turns a wish into a layout; refused unless the adapter offers it and has all disks, each named
/// once. Does not check whether the disks may be used.
Status MakeLayout(const Adapter& adapter, const Wish& wish, Layout& layout);

/// Whether a virtual disk may use free sectors of the disk.
Status CheckSharedDisk(const Adapter& adapter, HX_U16 id);

/// Whether a disk group may use the whole disk.
Status CheckWholeDisk(const Adapter& adapter, HX_U16 id);

/// Sets the size of a virtual disk whose blocks can have up to `run` sectors when `wanted` sectors
/// of data are asked for (0: as many as fit). Refused with Status::kBadRounding, Status::kNoSpace
/// or, when rounding leaves nothing of `wanted`, Status::kBadValue.
Status ChooseSize(const Layout& layout, Sectors run, Sectors wanted, HX_U8 rounding, Sectors& size);

/// Whether the adapter can have one more virtual disk.
Status CheckVirtualDiskCount(const Adapter& adapter);

/// A virtual disk without a disk group, before it is created: one block on each of its disks.
struct VirtualDiskPlan {
    Layout layout;
    Sectors size = 0;
    Sectors block = 0;
    std::vector<Sectors> starts;  // by position
};
Status PlanVirtualDisk(const Adapter& adapter, const Create_LD_Param& param, Sectors wanted,
                       VirtualDiskPlan& plan);

/// The layout of a disk group; a lost position has kNoId in its list of disks.
Layout LayoutOf(const Adapter& adapter, const DiskGroup& group);

/// Sectors of data that the disks of a layout hold; the smallest disk limits all of them.
Sectors ManagedSpace(const Adapter& adapter, const Layout& layout);

/// Usable sectors of the smallest of the disks; 0 without any disk.
Sectors SmallestDisk(const Adapter& adapter, std::span<const HX_U16> disks);

/// The runs that are free on all of the disks, in ascending order.
std::vector<Run> CommonFree(const Adapter& adapter, std::span<const HX_U16> disks);

/// The longest run, the first among equals; an empty run when there is none.
Run Longest(std::span<const Run> runs);

}  // namespace hxsim
