// The binding of the controller library: the record of a request, the writers of its records, and
// the executor.
#pragma once

#include <cstddef>

#include "XMLWriter.h"
#include "hxraid.h"
#include "vexorapi_element.h"
#include "xml_rapi_requests.h"

/// One vendor-function request: the function's name, and the parameters and results of that
/// function. Only as much of it is allocated as the named function's record needs.
struct XML_RA_FuncData {
    char FuncName[64];
    union {
        VX_API_Version HX_API_Version;
        VX_Adapter_GetCount HX_Adapter_GetCount;
        VX_Adapter_GetInfo HX_Adapter_GetInfo;
        VX_Adapter_SetConfig HX_Adapter_SetConfig;
        VX_Adapter_GetConfig HX_Adapter_GetConfig;
        VX_AdapterMute HX_AdapterMute;
        VX_PD_GetHDInfo HX_PD_GetHDInfo;
        VX_PD_GetHDInfo_Ext HX_PD_GetHDInfo_Ext;
        VX_PD_GetExpanderInfo HX_PD_GetExpanderInfo;
        VX_PD_GetPMInfo HX_PD_GetPMInfo;
        VX_PD_GetFreeSpaceInfo HX_PD_GetFreeSpaceInfo;
        VX_PD_GetConfig HX_PD_GetConfig;
        VX_PD_GetSmartStatus HX_PD_GetSmartStatus;
        VX_PD_GetRCT HX_PD_GetRCT;
        VX_PD_SetConfig HX_PD_SetConfig;
        VX_LocateArrayDevice HX_LocateArrayDevice;
        VX_ENC_GetEnclosureInfo HX_ENC_GetEnclosureInfo;
        VX_ENC_GetElementInfo HX_ENC_GetElementInfo;
        VX_ENC_GetElementConfig HX_ENC_GetElementConfig;
        VX_PD_WipeHDMDD HX_PD_WipeHDMDD;
        VX_PD_SetHDStatus HX_PD_SetHDStatus;
        VX_PD_FreeHD2GlobalSpare HX_PD_FreeHD2GlobalSpare;
        VX_PD_Spare2FreeHD HX_PD_Spare2FreeHD;
        VX_PD_GetHDRaidStatus HX_PD_GetHDRaidStatus;
        VX_PD_GetMBRInfo HX_PD_GetMBRInfo;
        VX_BLK_GetInfo HX_BLK_GetInfo;
        VX_BLK_GetHDBlock HX_BLK_GetHDBlock;
        VX_LD_GetInfo HX_LD_GetInfo;
        VX_LD_GetTargetLDInfo HX_LD_GetTargetLDInfo;
        VX_LD_Delete HX_LD_Delete;
        VX_LD_Create HX_LD_Create;
        VX_LD_QuickCreate HX_LD_QuickCreate;
        VX_LD_GetMaxSize HX_LD_GetMaxSize;
        VX_LD_PauseAll HX_LD_PauseAll;
        VX_LD_GetStatus HX_LD_GetStatus;
        VX_LD_GetConfig HX_LD_GetConfig;
        VX_LD_SetConfig HX_LD_SetConfig;
        VX_LD_StartRebuild HX_LD_StartRebuild;
        VX_LD_StartConsistencyCheck HX_LD_StartConsistencyCheck;
        VX_LD_StartINIT HX_LD_StartINIT;
        VX_LD_StartMigration HX_LD_StartMigration;
        VX_LD_GetMigratedLdSize HX_LD_GetMigratedLdSize;
        VX_LD_BGAControl HX_LD_BGAControl;
        VX_LD_Import HX_LD_Import;
        VX_Flash_Erase HX_Flash_Erase;
        VX_LogonUser HX_LogonUser;
        VX_GetUserName HX_GetUserName;
        VX_GetUserGroup HX_GetUserGroup;
        VX_DG_Create HX_DG_Create;
        VX_DG_GetSizeOnly HX_DG_GetSizeOnly;
        VX_DG_Modify HX_DG_Modify;
        VX_DG_GetInfo HX_DG_GetInfo;
        VX_DG_Delete HX_DG_Delete;
        VX_CreateOrModify_VD HX_CreateOrModify_VD;
        VX_LD_DG_StartRebuild HX_LD_DG_StartRebuild;
        VX_DG_StartMigration HX_DG_StartMigration;
        VX_DG_BGAControl HX_DG_BGAControl;
        VX_DG_GetConfig HX_DG_GetConfig;
        VX_DG_SetConfig HX_DG_SetConfig;
        VX_Flash_Option HX_Flash_Option;
        VX_BIOS_Version HX_BIOS_Version;
        VX_PD_FreeHD2DGSpare HX_PD_FreeHD2DGSpare;
        VX_BBU_GetInfo HX_BBU_GetInfo;
        VX_BBU_SetThreshold HX_BBU_SetThreshold;
        VX_BBU_ChangePower HX_BBU_ChangePower;
        VX_BBU_SetStatus HX_BBU_SetStatus;
        VX_BBU_SetMaxCapacity HX_BBU_SetMaxCapacity;
        VX_BBU_ActRelearn HX_BBU_ActRelearn;
        VX_PD_StartDataScrub HX_PD_StartDataScrub;
        VX_LD_Create_OnDG HX_LD_Create_OnDG;
        VX_LD_Modify_OnDG HX_LD_Modify_OnDG;
        VX_PD_GetSpareInfo HX_PD_GetSpareInfo;
        VX_PD_GetBGAStatus HX_PD_GetBGAStatus;
        VX_PD_BGAControl HX_PD_BGAControl;
        VX_PD_StartMediaPatrol HX_PD_StartMediaPatrol;
        VX_PD_HDMPCheck HX_PD_HDMPCheck;
        VX_CreateOrModify_DG HX_CreateOrModify_DG;
    };
};

// The function table and the executor -----------------------------------------------------------

/// Selects the vendor function called `name`: stores its handlers and its record's size in the
/// XMLElement `userData` and returns 1, or changes nothing and returns 0.
int RA_FuncElementDispatcher(void* userData, const XML_Char* name, const XML_Char** atts);

/// Carries out the request in `elmt` and writes its result into `doc`.
/// Returns 1 when the function is one of the vendor's, whatever its RetVal, 0 otherwise.
int VX_XMLFunc_HX_RApi(XMLElement* elmt, XMLWR_Doc* doc);

// Typed elements
// -----------------------------------------------------------------------------------

/// Writes one scalar element on a line of its own; `fmt` formats the value, at most 511 bytes of
/// it. Returns 1.
[[gnu::format(printf, 4, 5)]] int XML_RA_ElmtNonArrayData(XMLWR_Doc* doc, const char* elmt,
                                                          const char* type, const char* fmt, ...);

/// Opens an array element of `width` items; the caller writes them and closes it. Returns 1.
int XML_RA_ElmtStartArrayData(XMLWR_Doc* doc, const char* elmt, const char* type,
                              std::size_t width);

// Record writers: each writes `count` elements called `elmt`, one after the other, and returns 1.

int XML_RA_RequestHeader_Entity_Info(XMLWR_Doc* doc, const char* elmt, const RequestHeader* records,
                                     HX_U32 count);
int XML_RA_Link_Endpoint_Info(XMLWR_Doc* doc, const char* elmt, const Link_Endpoint* records,
                              HX_U32 count);
int XML_RA_Link_Entity_Info(XMLWR_Doc* doc, const char* elmt, const Link_Entity* records,
                            HX_U32 count);
int XML_RA_PM_Info(XMLWR_Doc* doc, const char* elmt, const PM_Info* records, HX_U32 count);
int XML_RA_HD_Config(XMLWR_Doc* doc, const char* elmt, const HD_Config* records, HX_U32 count);
int XML_RA_HD_SMART_Status(XMLWR_Doc* doc, const char* elmt, const HD_SMART_Status* records,
                           HX_U32 count);
int XML_RA_HD_RCT_Records(XMLWR_Doc* doc, const char* elmt, const RCT_Record* records,
                          HX_U32 count);
int XML_RA_HD_RAID_Status(XMLWR_Doc* doc, const char* elmt, const HD_RAID_Status* records,
                          HX_U32 count);
int XML_RA_Create_LD_Param(XMLWR_Doc* doc, const char* elmt, const Create_LD_Param* records,
                           HX_U32 count);
int XML_RA_LD_Status(XMLWR_Doc* doc, const char* elmt, const LD_Status* records, HX_U32 count);
int XML_RA_LD_Config(XMLWR_Doc* doc, const char* elmt, const LD_Config* records, HX_U32 count);
int XML_RA_Version_Info(XMLWR_Doc* doc, const char* elmt, const Version_Info* records,
                        HX_U32 count);
int XML_RA_Version_Info_CIM(XMLWR_Doc* doc, const char* elmt, const Version_Info_CIM* records,
                            HX_U32 count);
int XML_RA_Version_Info_BIOS(XMLWR_Doc* doc, const char* elmt, const VX_BIOS_Version* records,
                             HX_U32 count);
int XML_RA_Adapter_Info(XMLWR_Doc* doc, const char* elmt, const Adapter_Info* records,
                        HX_U32 count);
int XML_RA_DG_Config(XMLWR_Doc* doc, const char* elmt, const DG_Config* records, HX_U32 count);
int XML_RA_Adapter_Config_V2(XMLWR_Doc* doc, const char* elmt, const Adapter_Config_V2* records,
                             HX_U32 count);
int XML_RA_BBU_GetInfo(XMLWR_Doc* doc, const char* elmt, const BBU_Info* records, HX_U32 count);
int XML_RA_Enclosure_Info(XMLWR_Doc* doc, const char* elmt, const Enclosure_Info* records,
                          HX_U32 count);
int XML_RA_ENC_ElementInfo(XMLWR_Doc* doc, const char* elmt, const EncElementType_Info* records,
                           HX_U32 count);
int XML_RA_ENC_ElementConfig(XMLWR_Doc* doc, const char* elmt, const EncElement_Config* records,
                             HX_U32 count);
int XML_RA_HD_BGA_Status(XMLWR_Doc* doc, const char* elmt, const HD_BGA_Status* records,
                         HX_U32 count);
int XML_RA_HD_MBR_Info(XMLWR_Doc* doc, const char* elmt, const HD_MBR_Info* records, HX_U32 count);
int XML_RA_HD_FreeSpaceInfo(XMLWR_Doc* doc, const char* elmt, const HD_FreeSpaceInfo* records,
                            HX_U32 count);
int XML_RA_HD_Block_Info(XMLWR_Doc* doc, const char* elmt, const HD_Block_Info* records,
                         HX_U32 count);
int XML_RA_Exp_Info(XMLWR_Doc* doc, const char* elmt, const Exp_Info* records, HX_U32 count);
int XML_RA_Block_Info(XMLWR_Doc* doc, const char* elmt, const Block_Info* records, HX_U32 count);
int XML_RA_LD_Info(XMLWR_Doc* doc, const char* elmt, const LD_Info* records, HX_U32 count);
int XML_RA_DG_Info(XMLWR_Doc* doc, const char* elmt, const DG_Info* records, HX_U32 count);
int XML_RA_Create_DG_Param(XMLWR_Doc* doc, const char* elmt, const CreateOrModify_DG_Param* records,
                           HX_U32 count);
int XML_RA_DG_Size(XMLWR_Doc* doc, const char* elmt, const CreateOrModify_DG_Param* records,
                   HX_U32 count);

/// Completes each disk's ConnectionType and DeviceType from its HDType first, where they are 0; the
/// change stays in the caller's records.
int XML_RA_HD_Info(XMLWR_Doc* doc, const char* elmt, HD_Info* records, HX_U32 count);

/// Writes each user's scalars and closes the element `elmt`, which the caller has opened.
int XML_RA_UserName_Value(XMLWR_Doc* doc, const char* elmt, const VX_GetUserName* values,
                          HX_U32 count);
int XML_RA_UserGroup_Value(XMLWR_Doc* doc, const char* elmt, const UserGroup* values, HX_U32 count);

// Writers of paged replies: for each of `count` replies (a header, behind it the items that it
// counts) the header as "RequestHeader" and the items. `elmt` is not written. Each returns 1.

int XML_RA_PM_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
int XML_RA_HD_Config_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                             HX_U32 count);
int XML_RA_HD_Smart_Status_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                   HX_U32 count);
int XML_RA_HD_RAID_Status_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                  HX_U32 count);
int XML_RA_LD_Status_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                             HX_U32 count);
int XML_RA_LD_Config_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                             HX_U32 count);
int XML_RA_DG_Config_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                             HX_U32 count);
int XML_RA_HD_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
int XML_RA_HD_BGA_Status_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                 HX_U32 count);
int XML_RA_HD_FreeSpaceInfo_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                    HX_U32 count);
int XML_RA_HD_Block_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                 HX_U32 count);
int XML_RA_Exp_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
int XML_RA_Block_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                              HX_U32 count);
int XML_RA_LD_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
int XML_RA_ENC_Enclosure_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                      HX_U32 count);
int XML_RA_DG_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
