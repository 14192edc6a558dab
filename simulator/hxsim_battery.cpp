// The battery that keeps an adapter's cache.
#include "hxraid.h"
#include "hxraid_codes.h"
#include "hxsim_library.h"
#include "hxsim_machine.h"

HX_U8 HX_BBU_GetInfo(HX_U8 AdapterID, BBU_Info* info) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (info == nullptr) return HXSIM_NULL_ADDRESS;
    const BBU_Info* const battery = hxsim::MachineOf(AdapterID).battery;
    if (battery == nullptr) return HXSIM_NO_BATTERY;
    *info = *battery;
    return HX_SUCCESS;
}
