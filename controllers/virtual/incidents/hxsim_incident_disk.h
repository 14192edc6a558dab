// Incidents of disks: they fail, are removed, inserted and replaced.
#pragma once

#include <cstdint>

#include "incidents/hxsim_incident.h"
#include "model/hxsim_machine.h"

namespace hxsim {

// `disk` is the ID of the disk's place. The caller calls Settle afterwards.
Outcome FailDisk(Adapter& adapter, Time now, HX_U16 disk);
Outcome RemoveDisk(Adapter& adapter, Time now, HX_U16 disk);
/// Inserts the removed disk again.
Outcome InsertDisk(Adapter& adapter, Time now, HX_U16 disk);
/// Puts a new, empty disk of the same model into the place, with a serial number drawn from
/// `random`. With `foreign` it carries another controller's metadata; `sectors` is its size, 0 that
/// of the old disk.
Outcome ReplaceDisk(Adapter& adapter, Time now, HX_U16 disk, std::uint64_t& random, bool foreign,
                    Sectors sectors = 0);
Outcome TripSmart(Adapter& adapter, Time now, HX_U16 disk);
/// Damages a sector. Where the host reads, it is a read error and remapped at once; elsewhere a
/// check or media patrol finds it later.
Outcome DamageSector(Adapter& adapter, Time now, HX_U16 disk, Sectors lba);

}  // namespace hxsim
