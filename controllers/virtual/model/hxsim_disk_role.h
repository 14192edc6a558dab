// What each disk is used for: by disk groups, by virtual disks, as a spare, or not at all.
#pragma once

#include <vector>

#include "model/hxsim_machine.h"

namespace hxsim {

/// The role of one disk.
struct DiskRole {
    HX_U8 status = 0;       // DiskBit
    HX_U16 serves = kNoId;  // disk group or, on a disk of none, virtual disk; kNoId neither
    bool of_group = false;  // it serves a disk group; false for spares, too
    Sectors free = 0;       // that virtual disks can still have which lie directly on disks
};

/// The roles of all disks of an adapter, found in one pass over its blocks.
class DiskRoles {
public:
    explicit DiskRoles(const Adapter& adapter);

    /// `disk` is a row of the adapter.
    const DiskRole& Of(const Disk& disk) const;

private:
    const Adapter& adapter_;
    std::vector<DiskRole> roles_;  // in the order of the disks
};

/// Whether callers see the disk: it is there, or virtual disks still count on what was in its
/// place.
bool IsListed(const Disk& disk, const DiskRole& role);

/// The disk with that ID, if callers see it; else null.
const Disk* FindListed(const Adapter& adapter, HX_U16 id);
Disk* FindListed(Adapter& adapter, HX_U16 id);

/// Whether the disk can be spoken to, whatever it is used for.
constexpr bool Answers(const Disk& disk) { return disk.present && !disk.failed; }

/// The disk group that a disk serves, or will serve when what is written there is complete; null
/// when it serves none.
const DiskGroup* GroupOf(const Adapter& adapter, HX_U16 disk);

/// Whether a disk serves a virtual disk or a disk group.
bool IsConfigured(const Adapter& adapter, HX_U16 disk);

/// Whether a disk is ready and neither configured nor a spare.
bool IsFree(const Adapter& adapter, const Disk& disk);

}  // namespace hxsim
