// The functions that the virtual controller does not have. A function moves out of here into the
// file of what it deals with.
#include "hxsim_codes.h"
#include "hxsim_library.h"

namespace {

// A call that could not be carried out anyway is refused for that reason.
HX_U8 Unsupported(HX_U8 AdapterID) {
    const HX_U8 status = hxsim::CheckAdapter(AdapterID);
    return status != HX_SUCCESS ? status : HX_U8{HXSIM_NOT_SUPPORTED};
}

}  // namespace

// ---- Adapters ----
HX_U8 HX_Adapter_GetConfig(HX_U8 AdapterID, HX_U8*, Adapter_Config_V2*) {
    return Unsupported(AdapterID);
}
HX_U8 HX_Adapter_SetConfig(HX_U8 AdapterID, Adapter_Config_V2*) { return Unsupported(AdapterID); }
HX_U8 HX_AdapterMute(HX_U8 AdapterID) { return Unsupported(AdapterID); }
HX_U8 HX_LocateArrayDevice(HX_U8 AdapterID, HX_U8, HX_U16, HX_U8) { return Unsupported(AdapterID); }

// ---- Enclosures ----
HX_U8 HX_ENC_GetEnclosureInfo(HX_U8 AdapterID, Enclosure_Info_Request*) {
    return Unsupported(AdapterID);
}
HX_U8 HX_ENC_GetElementInfo(HX_U8 AdapterID, HX_U16, EncElementType_Info*, HX_U8*) {
    return Unsupported(AdapterID);
}
HX_U8 HX_ENC_GetElementConfig(HX_U8 AdapterID, HX_U16, EncElement_Config*, HX_U8*) {
    return Unsupported(AdapterID);
}

// ---- Physical disks ----
HX_U8 HX_PD_GetHDInfo(HX_U8 AdapterID, HD_Info_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_GetHDInfo_Ext(HX_U8 AdapterID, HD_Info_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_GetExpanderInfo(HX_U8 AdapterID, Exp_Info_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_GetPMInfo(HX_U8 AdapterID, PM_Info_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_GetFreeSpaceInfo(HX_U8 AdapterID, HD_FreeSpaceInfo_Request*) {
    return Unsupported(AdapterID);
}
HX_U8 HX_PD_GetConfig(HX_U8 AdapterID, HD_Config_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_SetConfig(HX_U8 AdapterID, HX_U16, HD_Config*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_GetBGAStatus(HX_U8 AdapterID, HD_BGA_Status_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_GetSmartStatus(HX_U8 AdapterID, HD_SMART_Status_Request*) {
    return Unsupported(AdapterID);
}
HX_U8 HX_PD_GetHDRaidStatus(HX_U8 AdapterID, HD_RAID_Status_Request*) {
    return Unsupported(AdapterID);
}
HX_U8 HX_PD_RCT_GetCount(HX_U8 AdapterID, HX_U16, HX_U32*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_GetRCT(HX_U8 AdapterID, HX_U16, RCT_Record*, HX_U32) { return Unsupported(AdapterID); }
HX_U8 HX_PD_WipeHDMDD(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_PD_SetHDStatus(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_PD_FreeHD2GlobalSpare(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_FreeHD2DGSpare(HX_U8 AdapterID, HX_U16, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_Spare2FreeHD(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_GetMBRInfo(HX_U8 AdapterID, HD_MBR_Info*) { return Unsupported(AdapterID); }
HX_U8 HX_DiskHasOS(HX_U8 AdapterID, HX_U8, HX_U8, const HX_U16*) { return Unsupported(AdapterID); }
HX_U8 HX_PD_StartMediaPatrol(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_HDMPCheck(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_StartDataScrub(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_PD_BGAControl(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }

// ---- Blocks ----
HX_U8 HX_BLK_GetInfo(HX_U8 AdapterID, Info_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_BLK_GetHDBlock(HX_U8 AdapterID, HD_Block_Info_Request*) { return Unsupported(AdapterID); }

// ---- Virtual disks ----
HX_U8 HX_LD_GetInfo(HX_U8 AdapterID, LD_Info_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_GetTargetLDInfo(HX_U8 AdapterID, HX_U16, LD_Info*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_GetStatus(HX_U8 AdapterID, LD_Status_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_GetConfig(HX_U8 AdapterID, LD_Config_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_SetConfig(HX_U8 AdapterID, HX_U16, LD_Config*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_Create(HX_U8 AdapterID, Create_LD_Param*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_GetMaxSize(HX_U8 AdapterID, Create_LD_Param*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_Delete(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_LD_Import(HX_U8 AdapterID, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_LD_PauseAll(HX_U8 AdapterID) { return Unsupported(AdapterID); }
HX_U8 HX_LD_StartRebuild(HX_U8 AdapterID, HX_U16, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_LD_StartConsistencyCheck(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_LD_StartINIT(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_LD_StartMigration(HX_U8 AdapterID, Create_LD_Param*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_GetMigratedLdSize(HX_U8 AdapterID, Create_LD_Param*) { return Unsupported(AdapterID); }
HX_U8 HX_LD_BGAControl(HX_U8 AdapterID, HX_U16, HX_U8) { return Unsupported(AdapterID); }

// ---- Disk groups ----
HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request*) { return Unsupported(AdapterID); }
HX_U8 HX_DG_SetConfig(HX_U8 AdapterID, HX_U16, DG_Config*) { return Unsupported(AdapterID); }
HX_U8 HX_CreateOrModify_DG(HX_U8 AdapterID, CreateOrModify_DG_Param*, HX_U8) {
    return Unsupported(AdapterID);
}
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
HX_U8 HX_BBU_GetInfo(HX_U8 AdapterID, BBU_Info*) { return Unsupported(AdapterID); }
HX_U8 HX_BBU_SetThreshold(HX_U8 AdapterID, HX_U8, HX_U16, HX_U16) { return Unsupported(AdapterID); }
HX_U8 HX_BBU_ChangePower(HX_U8 AdapterID, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_BBU_SetStatus(HX_U8 AdapterID, HX_BOOLEAN) { return Unsupported(AdapterID); }

// ---- Flash ----
HX_U8 HX_Flash_Erase(HX_U8 AdapterID, HX_U8) { return Unsupported(AdapterID); }
HX_U8 HX_Flash_Bin(HX_U8 AdapterID, HX_U8, HX_U8, Flash_Data*) { return Unsupported(AdapterID); }

// ---- Events ----
HX_U8 HX_EVT_GetEvent(HX_U8 AdapterID, HX_U8, HX_U8*, Event*) { return Unsupported(AdapterID); }
