// The adapters of the virtual controller.
#ifndef HXSIM_ADAPTER_H
#define HXSIM_ADAPTER_H

#include "hxraid.h"

namespace hxsim {

inline constexpr HX_U8 kAdapterCount = 2;

/// What the adapter's model is and can do. What belongs to the single adapter (WWN, SerialNo,
/// PortSasAddress) is zero. The adapter must be one that CheckAdapter takes.
const Adapter_Info& ModelOf(HX_U8 adapter);

/// The adapter's serial number, ended with a NUL and filled up with more.
void SetSerialNumber(char (&serial)[20], HX_U8 adapter);

}  // namespace hxsim

#endif
