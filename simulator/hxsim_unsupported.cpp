// The functions that the virtual controller does not have. A function moves out of here into the
// file of what it deals with.
#include "hxraid_codes.h"
#include "hxsim_library.h"

namespace {

// A call that could not be carried out anyway is refused for that reason.
HX_U8 Unsupported(HX_U8 AdapterID) {
    const HX_U8 status = hxsim::CheckAdapter(AdapterID);
    return status != HX_SUCCESS ? status : HX_U8{HXSIM_NOT_SUPPORTED};
}

}  // namespace

// ---- Adapters ----
HX_U8 HX_Adapter_SetConfig(HX_U8 AdapterID, Adapter_Config_V2*) { return Unsupported(AdapterID); }

// ---- Physical disks ----
HX_U8 HX_PD_SetConfig(HX_U8 AdapterID, HX_U16, HD_Config*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_WipeHDMDD(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_PD_SetHDStatus(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_PD_FreeHD2GlobalSpare(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_FreeHD2DGSpare(HX_U8 AdapterID, HX_U16, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_Spare2FreeHD(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_StartMediaPatrol(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_HDMPCheck(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_StartDataScrub(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_BGAControl(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }

// ---- Virtual disks ----
HX_U8 HX_LD_SetConfig(HX_U8 AdapterID, HX_U16, LD_Config*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_Create(HX_U8 AdapterID, Create_LD_Param*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_Delete(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_LD_Import(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_LD_PauseAll(HX_U8 AdapterID) { return Unsupported(AdapterID); }
HX_U8 HX_LD_StartRebuild(HX_U8 AdapterID, HX_U16, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_LD_StartConsistencyCheck(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_LD_StartINIT(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_LD_StartMigration(HX_U8 AdapterID, Create_LD_Param*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_BGAControl(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }

// ---- Disk groups ----
HX_U8 HX_DG_SetConfig(HX_U8 AdapterID, HX_U16, DG_Config*) { return Unsupported(AdapterID); }
HX_U8 HX_CreateOrModify_VD(HX_U8 AdapterID, CreateOrModify_VD_Param*) {
    return Unsupported(AdapterID);
}
HX_U8 HX_DG_Delete(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_DG_StartMigration(HX_U8 AdapterID, CreateOrModify_DG_Param*) {
    return Unsupported(AdapterID);
}
HX_U8 HX_DG_BGAControl(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_LD_DG_StartRebuild(HX_U8 AdapterID, LD_DG_Rebuild_Param*) {
    return Unsupported(AdapterID);
}

// ---- Battery ----
HX_U8 HX_BBU_SetThreshold(HX_U8 AdapterID, HX_U8, HX_U16, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_BBU_ChangePower(HX_U8 AdapterID, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_BBU_SetStatus(HX_U8 AdapterID, HX_BOOLEAN) { return Unsupported(AdapterID); }

// ---- Flash ----
HX_U8 HX_Flash_Erase(HX_U8 AdapterID, HX_U8) { return Unsupported(AdapterID); }
