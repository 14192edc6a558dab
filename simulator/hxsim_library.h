// The virtual controller's state as a library: open or not.
#ifndef HXSIM_LIBRARY_H
#define HXSIM_LIBRARY_H

#include "hxraid.h"

namespace hxsim {

/// Whether a call for this adapter can be carried out: HX_SUCCESS, HXSIM_NOT_INITIALIZED or
/// HXSIM_NO_ADAPTER. Every function that takes an adapter asks it first.
HX_U8 CheckAdapter(HX_U8 AdapterID);

}  // namespace hxsim

#endif
