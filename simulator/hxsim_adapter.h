// The adapters of the virtual controller.
#ifndef HXSIM_ADAPTER_H
#define HXSIM_ADAPTER_H

#include "hxraid.h"

namespace hxsim {

inline constexpr HX_U8 kAdapterCount = 2;

}  // namespace hxsim

#endif
