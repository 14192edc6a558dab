// World wide names and links: which device is attached to which.
#pragma once

#include <cstdint>

#include "hxraid.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The world wide name that follows from a device's place in the machine. `port` is 0 for the
/// device itself and counts from 1 for its ports or phys.
std::uint64_t WorldWideName(Device kind, HX_U8 adapter, HX_U16 id, unsigned port);

/// The world wide name of a disk that was added later. It never equals that of an original device
/// or of another adapter's disk. `drawn` is any number.
std::uint64_t WorldWideNameOfNewDisk(HX_U8 adapter, HX_U16 drawn);

/// Writes a world wide name, most significant byte first.
void SetWorldWideName(HX_U8 (&field)[8], std::uint64_t name);

/// Writes every byte of both ends of a device's link. A SATA device has no SAS address of its own:
/// it gets one from its expander, or zero without an expander.
void SetLink(Link_Entity& link, const Adapter& adapter, const Disk& disk);
void SetLink(Link_Entity& link, const Adapter& adapter, const Expander& expander);
void SetLink(Link_Entity& link, const Adapter& adapter, const PortMultiplier& port_multiplier);
void SetLink(Link_Entity& link, const Adapter& adapter, const Enclosure& enclosure);

}  // namespace hxsim
