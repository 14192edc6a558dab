// The codes with which the virtual controller refuses a call. Its own choice: the interface leaves
// them to whoever makes the controller. They start at 200, clear of the small codes and of the 73
// and 159 that callers of the library use for what they find out themselves.
#ifndef HXSIM_CODES_H
#define HXSIM_CODES_H

#include "hxraid.h"

enum HxsimCode : HX_U8 {
    /// The library is not open: HX_API_Initialize has not been called, or HX_API_Finalize has.
    HXSIM_NOT_INITIALIZED = 200,
    /// No adapter has that number. HX_ALL_ADAPTERS is such a number, too.
    HXSIM_NO_ADAPTER = 201,
    /// The virtual controller does not have this function. Nothing has been changed or written; a
    /// caller may go on without what it asked for.
    HXSIM_NOT_SUPPORTED = 202,
    /// An address that the call cannot do without is null.
    HXSIM_NULL_ADDRESS = 203,
};

#endif
