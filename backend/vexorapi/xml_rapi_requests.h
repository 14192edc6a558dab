// The records of the vendor functions' requests: parameters from the command, results from the
// controller. Fields that are passed to the controller as one record are in that record.
#pragma once

#include <cstddef>

#include "hxraid.h"
#include "xml_rapi_flash.h"
#include "xml_rapi_user.h"
#include "xml_rapi_wrappers.h"

/// Room for the items of all adapters: their sum has 8 bits, so that the last adapter's items begin
/// at element 255 at most, and a controller can return 255 of them.
inline constexpr std::size_t kAdapterRoom = 255 + 255;

/// Elements of an enclosure request's array; every pair of 8-bit counts fits.
inline constexpr std::size_t kElementRoom = 513;
static_assert(kElementRoom >= kAdapterRoom);

/// The most remap-table records that one request returns.
inline constexpr std::size_t kRemapRecords = 150;

// The library and its adapters -------------------------------------------------------------------

struct VX_API_Version {
    char RetVal[128];  // the version text, NUL-terminated
};

struct VX_Adapter_GetCount {
    HX_U8 RetVal;  // the number of adapters, not a status
};

struct VX_Adapter_GetInfo {
    HX_U8 RetVal;
    HX_U8 AdapterID;  // 255: every adapter
    HX_U8 Count;      // records in AdapterInfo
    Adapter_Info AdapterInfo[kAdapterRoom];
};

struct VX_Adapter_GetConfig {
    HX_U8 RetVal;
    HX_U8 AdapterID;  // 255: every adapter
    HX_U8 Count;      // records in AdapterConfig
    Adapter_Config_V2 AdapterConfig[kAdapterRoom];
};

struct VX_Adapter_SetConfig {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    Adapter_Config_V2 AdapterConfig;
};

struct VX_AdapterMute {
    HX_U8 RetVal;
    HX_U8 AdapterID;
};

struct VX_LocateArrayDevice {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U8 deviceType;
    HX_U16 deviceId;
    HX_U8 ledStatus;
};

// Lists ------------------------------------------------------------------------------------------

/// A list that the controller delivers in pages of at most `limit` items.
template <class Item, std::size_t limit>
struct PagedRequest {
    struct Page {
        RequestHeader header;
        Item items[limit];
    };
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 ID;              // ignored
    HX_U32 Count;           // ignored
    RequestHeader* Result;  // the collected list: a header and its items; owned by the executor
    Page Request;           // the request for the controller
};

/// The offset of the end of a paged request's header, where the room for a page begins.
template <class Paged>
inline constexpr std::size_t kPageHeaderEnd = offsetof(Paged, Request) + sizeof(RequestHeader);

using VX_ENC_GetEnclosureInfo = PagedRequest<Enclosure_Info, 32>;
using VX_PD_GetHDInfo = PagedRequest<HD_Info, 128>;
using VX_PD_GetHDInfo_Ext = PagedRequest<HD_Info, 128>;
using VX_PD_GetExpanderInfo = PagedRequest<Exp_Info, 16>;
using VX_PD_GetPMInfo = PagedRequest<PM_Info, 8>;
using VX_PD_GetFreeSpaceInfo = PagedRequest<HD_FreeSpaceInfo, 128>;
using VX_PD_GetConfig = PagedRequest<HD_Config, 128>;
using VX_PD_GetBGAStatus = PagedRequest<HD_BGA_Status, 128>;
using VX_PD_GetSmartStatus = PagedRequest<HD_SMART_Status, 128>;
using VX_PD_GetHDRaidStatus = PagedRequest<HD_RAID_Status, 128>;
using VX_PD_GetSpareInfo = PagedRequest<HD_RAID_Status, 128>;
using VX_BLK_GetInfo = PagedRequest<Block_Info, 512>;
using VX_BLK_GetHDBlock = PagedRequest<HD_Block_Info, 512>;
using VX_LD_GetInfo = PagedRequest<LD_Info, 32>;
using VX_LD_GetStatus = PagedRequest<LD_Status, 32>;
using VX_LD_GetConfig = PagedRequest<LD_Config, 32>;
using VX_DG_GetInfo = PagedRequest<DG_Info, 64>;
using VX_DG_GetConfig = PagedRequest<DG_Config, 64>;

// Enclosures -------------------------------------------------------------------------------------

struct VX_ENC_GetElementInfo {
    HX_U8 RetVal;
    HX_U8 AdapterID;  // 255: every adapter
    HX_U16 ENC_ID;
    HX_U8 Count;  // records in ElementInfo
    EncElementType_Info ElementInfo[kElementRoom];
};

struct VX_ENC_GetElementConfig {
    HX_U8 RetVal;
    HX_U8 AdapterID;  // 255: every adapter
    HX_U16 ENC_ID;
    HX_U8 Count;  // records in ElementCfg
    EncElement_Config ElementCfg[kElementRoom];
};

// Disks ------------------------------------------------------------------------------------------

struct VX_PD_GetRCT {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
    HX_U32 Count;       // records in the disk's table
    HX_U32 n, s, e;     // requested number, first and last; then the actual ones
    HX_U32 nn, ss, ee;  // the three as asked
    RCT_Record record[kRemapRecords];
};

struct VX_PD_SetConfig {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
    HD_Config Config;
};

struct VX_PD_WipeHDMDD {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
    HX_U8 Force;
};

struct VX_PD_SetHDStatus {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
    HX_U8 Action;
};

struct VX_PD_FreeHD2GlobalSpare {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
};

struct VX_PD_Spare2FreeHD {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
};

struct VX_PD_FreeHD2DGSpare {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
    HX_U16 DG_ID;
};

struct VX_PD_StartMediaPatrol {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
};

// This function is not in the table, so no command can call it.
struct VX_PD_HDMPCheck {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 HD_ID;
};

struct VX_PD_GetMBRInfo {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HD_MBR_Info MBRInfo;
};

struct VX_PD_BGAControl {
    HX_U16 HD_ID;
    HX_U8 AdapterID;
    HX_U8 Action;
    HX_U8 RetVal;
};

// Virtual disks ----------------------------------------------------------------------------------

struct VX_LD_GetTargetLDInfo {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 LD_ID;
    LD_Info LDInfo;
};

struct VX_LD_Delete {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 LD_ID;
    HX_U8 deleteMBR;
};

/// A request whose parameters all go to the controller as one virtual disk's.
struct LD_ParamRequest {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    Create_LD_Param CreateLDParam;
};
using VX_LD_Create = LD_ParamRequest;
using VX_LD_GetMaxSize = LD_ParamRequest;
using VX_LD_StartMigration = LD_ParamRequest;
using VX_LD_GetMigratedLdSize = LD_ParamRequest;

struct VX_LD_QuickCreate {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_BOOLEAN Type;  // 1: choose a level with redundancy
};

/// A request whose parameters all go to the controller as those of a virtual disk on a disk group.
struct VD_ParamRequest {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    CreateOrModify_VD_Param CreateOrModifyVDParam;
};
using VX_LD_Create_OnDG = VD_ParamRequest;
using VX_LD_Modify_OnDG = VD_ParamRequest;

struct VX_CreateOrModify_VD {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    ::CreateOrModify_VD_Param CreateOrModify_VD_Param;
};

struct VX_LD_PauseAll {
    HX_U8 RetVal;
    HX_U8 AdapterID;
};

struct VX_LD_SetConfig {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 LD_ID;
    LD_Config LDConfig;
};

struct VX_LD_StartRebuild {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 LD_ID;
    HX_U16 Rebuild_HD_ID;
};

struct VX_LD_StartConsistencyCheck {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 LD_ID;
    HX_U8 Type;
};

struct VX_LD_StartINIT {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 LD_ID;
    HX_U8 Init_Type;
};

struct VX_LD_BGAControl {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 LD_ID;
    HX_U8 Actions;
};

struct VX_LD_Import {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 LD_ID;
};

// Disk groups ------------------------------------------------------------------------------------

/// A request whose parameters all go to the controller as one disk group's.
struct DG_ParamRequest {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    CreateOrModify_DG_Param CreateOrModifyDGParam;
};
using VX_DG_Create = DG_ParamRequest;
using VX_DG_GetSizeOnly = DG_ParamRequest;
using VX_DG_Modify = DG_ParamRequest;
using VX_CreateOrModify_DG = DG_ParamRequest;  // not in the table

struct VX_DG_Delete {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 DG_ID;
};

struct VX_LD_DG_StartRebuild {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    LD_DG_Rebuild_Param RebuildParam;
};

struct VX_DG_StartMigration {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    CreateOrModify_DG_Param MigrateDG;
};

struct VX_DG_BGAControl {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 DG_ID;
    HX_U8 Actions;
};

struct VX_DG_SetConfig {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 DG_ID;
    DG_Config Config;
};

// Battery ----------------------------------------------------------------------------------------

struct VX_BBU_GetInfo {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    BBU_Info BbuInfo;
};

struct VX_BBU_SetThreshold {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U16 tempLowerBound, tempUpperBound;  // degrees Celsius
    HX_U16 volLowerBound, volUpperBound;    // millivolts
};

struct VX_BBU_ChangePower {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U8 action;
};

struct VX_BBU_SetStatus {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_BOOLEAN status;
};

struct VX_BBU_SetMaxCapacity {
    HX_U8 BBU_ID;
    HX_U16 maxCapacity;  // mAh
    HX_U8 RetVal;
};

struct VX_BBU_ActRelearn {
    HX_U8 AdapterID;
    HX_U8 RetVal;
};

// Flash ------------------------------------------------------------------------------------------

struct VX_Flash_Erase {
    HX_U8 RetVal;
    HX_U8 AdapterID;
    HX_U8 Page;
};

// The request ------------------------------------------------------------------------------------

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
