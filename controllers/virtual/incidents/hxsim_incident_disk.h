// What happens to disks from outside: they fail, are pulled out, put in and replaced.
#pragma once

#include <cstdint>

#include "incidents/hxsim_incident.h"
#include "model/hxsim_machine.h"

namespace hxsim {

// Disks, by the ID of their place. Consequences are drawn by the caller (Settle).
Outcome FailDisk(Adapter& adapter, Time now, HX_U16 disk);
Outcome RemoveDisk(Adapter& adapter, Time now, HX_U16 disk);
/// Puts the disk back that was removed.
Outcome InsertDisk(Adapter& adapter, Time now, HX_U16 disk);
/// Puts a new, empty disk of the same model into the place; its serial number is drawn from
/// `random`. `foreign` makes it one with another controller's metadata; `sectors` is its size, 0
/// that of the old one.
Outcome ReplaceDisk(Adapter& adapter, Time now, HX_U16 disk, std::uint64_t& random, bool foreign,
                    Sectors sectors = 0);
Outcome TripSmart(Adapter& adapter, Time now, HX_U16 disk);
/// A read error at a sector: remapped, or a medium error that a check or patrol finds.
Outcome DamageSector(Adapter& adapter, Time now, HX_U16 disk, Sectors lba);

}  // namespace hxsim
