// What the row of a running migration says about the virtual disks that it moves.
#include "model/hxsim_migration_row.h"

#include "model/hxsim_stripes.h"

namespace hxsim {

bool Moves(const Activity& migration, const VirtualDisk& virtual_disk) {
    return migration.of == Owner::kVirtualDisk ? migration.owner == virtual_disk.id
                                               : migration.owner == virtual_disk.group;
}

Sectors BlockAfter(const Activity& migration, const VirtualDisk& virtual_disk) {
    const bool own = migration.of == Owner::kVirtualDisk;
    return BlockSectors(migration.level, migration.width, migration.legs,
                        own ? migration.stripe_kib : virtual_disk.stripe_kib,
                        own ? migration.size : virtual_disk.size);
}

}  // namespace hxsim
