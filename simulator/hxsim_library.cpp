// Opening and closing the virtual controller, and its version.
#include "hxsim_library.h"

#include "hxsim_adapter.h"
#include "hxraid_codes.h"

namespace hxsim {
namespace {

constinit bool open = false;

}  // namespace

HX_U8 CheckAdapter(HX_U8 AdapterID) {
    if (!open) return HXSIM_NOT_INITIALIZED;
    return AdapterID < kAdapterCount ? HX_SUCCESS : HXSIM_NO_ADAPTER;
}

}  // namespace hxsim

HX_U8 HX_API_Initialize() {
    hxsim::open = true;
    return HX_SUCCESS;
}

void HX_API_Finalize() { hxsim::open = false; }

const char* HX_API_Version() { return HXSIM_VERSION " (virtual controller)"; }

// A controller that has not been looked for has not been found: an unopened library has no
// adapters.
HX_U8 HX_Adapter_GetCount() { return hxsim::open ? hxsim::kAdapterCount : HX_U8{0}; }
