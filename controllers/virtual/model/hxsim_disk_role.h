// The role of each disk: member of a disk group or of virtual disks, spare, or none.
#pragma once

#include <vector>

#include "model/hxsim_machine.h"

namespace hxsim {

/// The role of one disk.
struct DiskRole {
    HX_U8 status = 0;       // DiskBit
    HX_U16 serves = kNoId;  // its disk group, else its virtual disk; kNoId: neither
    bool of_group = false;  // `serves` is a disk group; false for spares
    Sectors free = 0;       // for virtual disks without a disk group
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

/// Whether callers see the disk: it is present, or it is missing while virtual disks or a disk
/// group still need it.
bool IsListed(const Disk& disk, const DiskRole& role);

/// The disk with that ID, if callers see it (IsListed); else null.
const Disk* FindListed(const Adapter& adapter, HX_U16 id);
Disk* FindListed(Adapter& adapter, HX_U16 id);

/// Whether the disk responds to commands: it is present and has not failed.
constexpr bool Answers(const Disk& disk) { return disk.present && !disk.failed; }

/// The disk group that a disk serves, or will serve when the migration or copyback onto it is
/// complete; null when there is none.
const DiskGroup* GroupOf(const Adapter& adapter, HX_U16 disk);

/// Whether a disk serves a virtual disk or a disk group.
bool IsConfigured(const Adapter& adapter, HX_U16 disk);

/// Whether a disk is ready and neither configured nor a spare.
bool IsFree(const Adapter& adapter, const Disk& disk);

}  // namespace hxsim
