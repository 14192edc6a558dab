// Each calls the controller library's function under its other name.
#include "xml_rapi_wrappers.h"

namespace {

constexpr HX_U8 kRelearn = 0;  // HX_BBU_ChangePower: a relearn cycle

}  // namespace

HX_U8 HX_BBU_SetMaxCapacity(HX_U8, HX_U16) { return HX_SUCCESS; }

HX_U8 HX_BBU_ActRelearn(HX_U8 AdapterID) { return HX_BBU_ChangePower(AdapterID, kRelearn); }

HX_U8 HX_PD_GetSpareInfo(HX_U8 AdapterID, HD_RAID_Status_Request* pHdRaidStatusReq) {
    return HX_PD_GetHDRaidStatus(AdapterID, pHdRaidStatusReq);
}

void HX_PD_StartDataScrub_Init(VX_PD_StartDataScrub* pData) {
    pData->HD_ID = 0;
    pData->AdapterID = 0;
}
