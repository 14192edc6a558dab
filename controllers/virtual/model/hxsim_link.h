// World wide names, and what hangs on what.
#pragma once

#include <cstdint>

#include "hxraid.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The world wide name that a device has from its place in the machine. `port` is 0 for the device
/// itself, and from 1 on for its ports or phys.
std::uint64_t WorldWideName(Device kind, HX_U8 adapter, HX_U16 id, unsigned port);

/// The world wide name of a disk that has come into the machine later; no device that the machine
/// was made with, and no disk of another adapter, has one of these. `drawn` is any number.
std::uint64_t WorldWideNameOfNewDisk(HX_U8 adapter, HX_U16 drawn);

/// Writes a world wide name, most significant byte first.
void SetWorldWideName(HX_U8 (&field)[8], std::uint64_t name);

/// Writes both ends of a device's link, every byte of them. A SATA device has no SAS address of its
/// own; an expander lends it one, and without an expander it is zero.
void SetLink(Link_Entity& link, const Adapter& adapter, const Disk& disk);
void SetLink(Link_Entity& link, const Adapter& adapter, const Expander& expander);
void SetLink(Link_Entity& link, const Adapter& adapter, const PortMultiplier& port_multiplier);
void SetLink(Link_Entity& link, const Adapter& adapter, const Enclosure& enclosure);

}  // namespace hxsim
