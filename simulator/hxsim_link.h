// World wide names, and what hangs on what.
#ifndef HXSIM_LINK_H
#define HXSIM_LINK_H

#include "hxraid.h"
#include "hxraid_codes.h"
#include "hxsim_machine.h"

namespace hxsim {

/// The world wide name of a device, most significant byte first. `port` is 0 for the device itself,
/// and from 1 on for its ports or phys.
void SetWorldWideName(HX_U8 (&name)[8], HxsimDevice kind, HX_U8 adapter, HX_U16 id, unsigned port);

/// Both ends of a device's link. A SATA device has no SAS address of its own; an expander lends it
/// one, and without an expander it is zero.
Link_Entity LinkOf(HX_U8 adapter, const Disk& disk);
Link_Entity LinkOf(HX_U8 adapter, const Expander& expander);
Link_Entity LinkOf(HX_U8 adapter, const PortMultiplier& port_multiplier);
Link_Entity LinkOf(HX_U8 adapter, const Enclosure& enclosure);

}  // namespace hxsim

#endif
