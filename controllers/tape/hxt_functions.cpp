// The functions of hxraid.h: what each of them asks and fills in, and whether it changes something.
#include "hxraid.h"
#include "tape/hxt_session.h"

using namespace hxtape;

const char* HX_API_Version() { return PerformVersion(); }

void HX_API_Finalize() {
    PerformFinalize([](AnyFunction real) -> HX_U8 {
        reinterpret_cast<decltype(&HX_API_Finalize)>(real)();
        return HX_SUCCESS;
    });
}

HX_U8 HX_API_Initialize() { return Reads<&HX_API_Initialize>(__func__); }

HX_U8 HX_Adapter_GetCount() {
    return Call<&HX_Adapter_GetCount>(__func__, Effect::kReads, Returned::kCount);
}

HX_U8 HX_Adapter_GetInfo(HX_U8 AdapterID, HX_U8* count, Adapter_Info* info) {
    return Reads<&HX_Adapter_GetInfo>(__func__, AdapterID, Out(count), Out(info));
}

HX_U8 HX_Adapter_GetConfig(HX_U8 AdapterID, HX_U8* count, Adapter_Config_V2* config) {
    return Reads<&HX_Adapter_GetConfig>(__func__, AdapterID, Out(count), Out(config));
}

HX_U8 HX_Adapter_SetConfig(HX_U8 AdapterID, Adapter_Config_V2* config) {
    return Changes<&HX_Adapter_SetConfig>(__func__, AdapterID, In(config));
}

HX_U8 HX_AdapterMute(HX_U8 AdapterID) { return Changes<&HX_AdapterMute>(__func__, AdapterID); }

HX_U8 HX_LocateArrayDevice(HX_U8 AdapterID, HX_U8 deviceType, HX_U16 deviceId, HX_U8 ledStatus) {
    return Changes<&HX_LocateArrayDevice>(__func__, AdapterID, deviceType, deviceId, ledStatus);
}

HX_U8 HX_ENC_GetEnclosureInfo(HX_U8 AdapterID, Enclosure_Info_Request* request) {
    return Reads<&HX_ENC_GetEnclosureInfo>(__func__, AdapterID,
                                           Page(request, &Enclosure_Info_Request::enclosureInfo));
}

HX_U8 HX_ENC_GetElementInfo(HX_U8 AdapterID, HX_U16 ENC_ID, EncElementType_Info* elements,
                            HX_U8* count) {
    return Reads<&HX_ENC_GetElementInfo>(__func__, AdapterID, ENC_ID, Counted(elements, count, 255),
                                         CountOf(count));
}

HX_U8 HX_ENC_GetElementConfig(HX_U8 AdapterID, HX_U16 ENC_ID, EncElement_Config* elements,
                              HX_U8* count) {
    return Reads<&HX_ENC_GetElementConfig>(__func__, AdapterID, ENC_ID,
                                           Counted(elements, count, 255), CountOf(count));
}

HX_U8 HX_PD_GetHDInfo(HX_U8 AdapterID, HD_Info_Request* request) {
    return Reads<&HX_PD_GetHDInfo>(__func__, AdapterID, Page(request, &HD_Info_Request::hdInfo));
}

HX_U8 HX_PD_GetHDInfo_Ext(HX_U8 AdapterID, HD_Info_Request* request) {
    return Reads<&HX_PD_GetHDInfo_Ext>(__func__, AdapterID,
                                       Page(request, &HD_Info_Request::hdInfo));
}

HX_U8 HX_PD_GetExpanderInfo(HX_U8 AdapterID, Exp_Info_Request* request) {
    return Reads<&HX_PD_GetExpanderInfo>(__func__, AdapterID,
                                         Page(request, &Exp_Info_Request::expInfo));
}

HX_U8 HX_PD_GetPMInfo(HX_U8 AdapterID, PM_Info_Request* request) {
    return Reads<&HX_PD_GetPMInfo>(__func__, AdapterID, Page(request, &PM_Info_Request::pmInfo));
}

HX_U8 HX_PD_GetFreeSpaceInfo(HX_U8 AdapterID, HD_FreeSpaceInfo_Request* request) {
    return Reads<&HX_PD_GetFreeSpaceInfo>(
        __func__, AdapterID, Page(request, &HD_FreeSpaceInfo_Request::hdFreeSpaceInfo));
}

HX_U8 HX_PD_GetConfig(HX_U8 AdapterID, HD_Config_Request* request) {
    return Reads<&HX_PD_GetConfig>(__func__, AdapterID,
                                   Page(request, &HD_Config_Request::hdConfig));
}

HX_U8 HX_PD_SetConfig(HX_U8 AdapterID, HX_U16 HD_ID, HD_Config* config) {
    return Changes<&HX_PD_SetConfig>(__func__, AdapterID, HD_ID, In(config));
}

HX_U8 HX_PD_GetBGAStatus(HX_U8 AdapterID, HD_BGA_Status_Request* request) {
    return Reads<&HX_PD_GetBGAStatus>(__func__, AdapterID,
                                      Page(request, &HD_BGA_Status_Request::hdBgaStatus));
}

HX_U8 HX_PD_GetSmartStatus(HX_U8 AdapterID, HD_SMART_Status_Request* request) {
    return Reads<&HX_PD_GetSmartStatus>(__func__, AdapterID,
                                        Page(request, &HD_SMART_Status_Request::hdSmartStatus));
}

HX_U8 HX_PD_GetHDRaidStatus(HX_U8 AdapterID, HD_RAID_Status_Request* request) {
    return Reads<&HX_PD_GetHDRaidStatus>(__func__, AdapterID,
                                         Page(request, &HD_RAID_Status_Request::hdRaidStatus));
}

HX_U8 HX_PD_RCT_GetCount(HX_U8 AdapterID, HX_U16 HD_ID, HX_U32* count) {
    return Reads<&HX_PD_RCT_GetCount>(__func__, AdapterID, HD_ID, Out(count));
}

HX_U8 HX_PD_GetRCT(HX_U8 AdapterID, HX_U16 HD_ID, RCT_Record* records, HX_U32 count) {
    return Reads<&HX_PD_GetRCT>(__func__, AdapterID, HD_ID, Out(records, count), count);
}

HX_U8 HX_PD_WipeHDMDD(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Force) {
    return Changes<&HX_PD_WipeHDMDD>(__func__, AdapterID, HD_ID, Force);
}

HX_U8 HX_PD_SetHDStatus(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action) {
    return Changes<&HX_PD_SetHDStatus>(__func__, AdapterID, HD_ID, Action);
}

HX_U8 HX_PD_FreeHD2GlobalSpare(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Changes<&HX_PD_FreeHD2GlobalSpare>(__func__, AdapterID, HD_ID);
}

HX_U8 HX_PD_FreeHD2DGSpare(HX_U8 AdapterID, HX_U16 HD_ID, HX_U16 DG_ID) {
    return Changes<&HX_PD_FreeHD2DGSpare>(__func__, AdapterID, HD_ID, DG_ID);
}

HX_U8 HX_PD_Spare2FreeHD(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Changes<&HX_PD_Spare2FreeHD>(__func__, AdapterID, HD_ID);
}

HX_U8 HX_PD_GetMBRInfo(HX_U8 AdapterID, HD_MBR_Info* info) {
    return Reads<&HX_PD_GetMBRInfo>(__func__, AdapterID, Both(info));
}

HX_U8 HX_DiskHasOS(HX_U8 AdapterID, HX_U8 kind, HX_U8 count, const HX_U16* HDIDs) {
    return Reads<&HX_DiskHasOS>(__func__, AdapterID, kind, count, In(HDIDs, count));
}

HX_U8 HX_PD_StartMediaPatrol(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Changes<&HX_PD_StartMediaPatrol>(__func__, AdapterID, HD_ID);
}

HX_U8 HX_PD_HDMPCheck(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Reads<&HX_PD_HDMPCheck>(__func__, AdapterID, HD_ID);
}

HX_U8 HX_PD_StartDataScrub(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Changes<&HX_PD_StartDataScrub>(__func__, AdapterID, HD_ID);
}

HX_U8 HX_PD_BGAControl(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action) {
    return Changes<&HX_PD_BGAControl>(__func__, AdapterID, HD_ID, Action);
}

HX_U8 HX_BLK_GetInfo(HX_U8 AdapterID, Info_Request* request) {
    return Reads<&HX_BLK_GetInfo>(__func__, AdapterID, Page(request, &Info_Request::blockInfo));
}

HX_U8 HX_BLK_GetHDBlock(HX_U8 AdapterID, HD_Block_Info_Request* request) {
    return Reads<&HX_BLK_GetHDBlock>(__func__, AdapterID,
                                     Page(request, &HD_Block_Info_Request::hdBlockInfo));
}

HX_U8 HX_LD_GetInfo(HX_U8 AdapterID, LD_Info_Request* request) {
    return Reads<&HX_LD_GetInfo>(__func__, AdapterID, Page(request, &LD_Info_Request::ldInfo));
}

HX_U8 HX_LD_GetTargetLDInfo(HX_U8 AdapterID, HX_U16 LD_ID, LD_Info* info) {
    return Reads<&HX_LD_GetTargetLDInfo>(__func__, AdapterID, LD_ID, Out(info));
}

HX_U8 HX_LD_GetStatus(HX_U8 AdapterID, LD_Status_Request* request) {
    return Reads<&HX_LD_GetStatus>(__func__, AdapterID,
                                   Page(request, &LD_Status_Request::ldStatus));
}

HX_U8 HX_LD_GetConfig(HX_U8 AdapterID, LD_Config_Request* request) {
    return Reads<&HX_LD_GetConfig>(__func__, AdapterID,
                                   Page(request, &LD_Config_Request::ldConfig));
}

HX_U8 HX_LD_SetConfig(HX_U8 AdapterID, HX_U16 LD_ID, LD_Config* config) {
    return Changes<&HX_LD_SetConfig>(__func__, AdapterID, LD_ID, In(config));
}

HX_U8 HX_LD_Create(HX_U8 AdapterID, Create_LD_Param* param) {
    return Changes<&HX_LD_Create>(__func__, AdapterID, Both(param));
}

HX_U8 HX_LD_GetMaxSize(HX_U8 AdapterID, Create_LD_Param* param) {
    return Reads<&HX_LD_GetMaxSize>(__func__, AdapterID, Both(param));
}

HX_U8 HX_LD_Delete(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 deleteMBR) {
    return Changes<&HX_LD_Delete>(__func__, AdapterID, LD_ID, deleteMBR);
}

HX_U8 HX_LD_Import(HX_U8 AdapterID, HX_U16 LD_ID) {
    return Changes<&HX_LD_Import>(__func__, AdapterID, LD_ID);
}

HX_U8 HX_LD_PauseAll(HX_U8 AdapterID) { return Changes<&HX_LD_PauseAll>(__func__, AdapterID); }

HX_U8 HX_LD_StartRebuild(HX_U8 AdapterID, HX_U16 LD_ID, HX_U16 Rebuild_HD_ID) {
    return Changes<&HX_LD_StartRebuild>(__func__, AdapterID, LD_ID, Rebuild_HD_ID);
}

HX_U8 HX_LD_StartConsistencyCheck(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Type) {
    return Changes<&HX_LD_StartConsistencyCheck>(__func__, AdapterID, LD_ID, Type);
}

HX_U8 HX_LD_StartINIT(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Init_Type) {
    return Changes<&HX_LD_StartINIT>(__func__, AdapterID, LD_ID, Init_Type);
}

HX_U8 HX_LD_StartMigration(HX_U8 AdapterID, Create_LD_Param* param) {
    return Changes<&HX_LD_StartMigration>(__func__, AdapterID, Both(param));
}

HX_U8 HX_LD_GetMigratedLdSize(HX_U8 AdapterID, Create_LD_Param* param) {
    return Reads<&HX_LD_GetMigratedLdSize>(__func__, AdapterID, Both(param));
}

HX_U8 HX_LD_BGAControl(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Actions) {
    return Changes<&HX_LD_BGAControl>(__func__, AdapterID, LD_ID, Actions);
}

HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request* request) {
    return Reads<&HX_DG_GetInfo>(__func__, AdapterID, Page(request, &DG_Info_Request::dgInfo));
}

HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request* request) {
    return Reads<&HX_DG_GetConfig>(__func__, AdapterID,
                                   Page(request, &DG_Config_Request::dgConfig));
}

HX_U8 HX_DG_SetConfig(HX_U8 AdapterID, HX_U16 DG_ID, DG_Config* config) {
    return Changes<&HX_DG_SetConfig>(__func__, AdapterID, DG_ID, In(config));
}

HX_U8 HX_CreateOrModify_DG(HX_U8 AdapterID, CreateOrModify_DG_Param* param, HX_U8 sizeOnly) {
    const Effect effect = sizeOnly == 1 ? Effect::kReads : Effect::kChanges;
    return Call<&HX_CreateOrModify_DG>(__func__, effect, Returned::kStatus, AdapterID, Both(param),
                                       sizeOnly);
}

HX_U8 HX_CreateOrModify_VD(HX_U8 AdapterID, CreateOrModify_VD_Param* param) {
    return Changes<&HX_CreateOrModify_VD>(__func__, AdapterID, Both(param));
}

HX_U8 HX_DG_Delete(HX_U8 AdapterID, HX_U16 DG_ID) {
    return Changes<&HX_DG_Delete>(__func__, AdapterID, DG_ID);
}

HX_U8 HX_DG_StartMigration(HX_U8 AdapterID, CreateOrModify_DG_Param* param) {
    return Changes<&HX_DG_StartMigration>(__func__, AdapterID, Both(param));
}

HX_U8 HX_DG_BGAControl(HX_U8 AdapterID, HX_U16 DG_ID, HX_U8 Actions) {
    return Changes<&HX_DG_BGAControl>(__func__, AdapterID, DG_ID, Actions);
}

HX_U8 HX_LD_DG_StartRebuild(HX_U8 AdapterID, LD_DG_Rebuild_Param* param) {
    return Changes<&HX_LD_DG_StartRebuild>(__func__, AdapterID, In(param));
}

HX_U8 HX_BBU_GetInfo(HX_U8 AdapterID, BBU_Info* info) {
    return Reads<&HX_BBU_GetInfo>(__func__, AdapterID, Out(info));
}

HX_U8 HX_BBU_SetThreshold(HX_U8 AdapterID, HX_U8 kind, HX_U16 lower, HX_U16 upper) {
    return Changes<&HX_BBU_SetThreshold>(__func__, AdapterID, kind, lower, upper);
}

HX_U8 HX_BBU_ChangePower(HX_U8 AdapterID, HX_U8 action) {
    return Changes<&HX_BBU_ChangePower>(__func__, AdapterID, action);
}

HX_U8 HX_BBU_SetStatus(HX_U8 AdapterID, HX_BOOLEAN status) {
    return Changes<&HX_BBU_SetStatus>(__func__, AdapterID, status);
}

HX_U8 HX_Flash_Erase(HX_U8 AdapterID, HX_U8 Page) {
    return Changes<&HX_Flash_Erase>(__func__, AdapterID, Page);
}

HX_U8 HX_Flash_Bin(HX_U8 AdapterID, HX_U8 Actions, HX_U8 Type, Flash_Data* piece) {
    const Effect effect = Actions == HX_FLASH_READ ? Effect::kReads : Effect::kChanges;
    return Call<&HX_Flash_Bin>(__func__, effect, Returned::kStatus, AdapterID, Actions, Type,
                               Piece(Actions, piece));
}

HX_U8 HX_EVT_GetEvent(HX_U8 AdapterID, HX_U8 max, HX_U8* count, Event* events) {
    return Call<&HX_EVT_GetEvent>(__func__, Effect::kTakes, Returned::kStatus, AdapterID, max,
                                  CountOf(count), Counted(events, count, max));
}
