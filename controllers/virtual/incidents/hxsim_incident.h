// What happens to a machine from outside: hands that pull disks, parts that break.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/hxsim_machine.h"

namespace hxsim {

/// Whether an incident happened; if not, why, as a sentence that says what to do instead.
struct Outcome {
    std::string refusal;  // empty: it happened
    explicit operator bool() const { return refusal.empty(); }
};

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

// The battery.
Outcome SetBatteryTemperature(Adapter& adapter, Time now, HX_U16 celsius);
Outcome SetBatteryVoltage(Adapter& adapter, Time now, HX_U16 millivolts);
Outcome SetBatteryCharge(Adapter& adapter, Time now, HX_U8 percent);
Outcome RemoveBattery(Adapter& adapter, Time now);
Outcome ReplaceBattery(Adapter& adapter, Time now);

// Elements of enclosures.
Outcome SetFanSpeed(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, HX_U16 rpm);
Outcome SetTemperature(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, int celsius);
Outcome SetPowerSupply(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, bool works);

/// The power fails and comes back: what ran in the background restarts where it was, and what was
/// in the cache without a battery is lost (initialised virtual disks set to write-back may then
/// have stripes whose redundancy disagrees).
void CutPower(Adapter& adapter, Time now);

}  // namespace hxsim
