// The vendor functions in table order. A function is known to the library when it stands here.
#pragma once

#include <cstddef>
#include <tuple>

#include "xml_rapi_functions_adapter.h"
#include "xml_rapi_functions_battery.h"
#include "xml_rapi_functions_disk.h"
#include "xml_rapi_functions_disk_group.h"
#include "xml_rapi_functions_enclosure.h"
#include "xml_rapi_functions_flash.h"
#include "xml_rapi_functions_user.h"
#include "xml_rapi_functions_virtual_disk.h"

/// One function with the names of its handlers and its result writer.
template <const auto& kFunction, XML_StartElementHandler start, XML_EndElementHandler end,
          auto result>
struct TableEntry {
    static constexpr const auto& kRows = kFunction;
    static constexpr XML_StartElementHandler kStart = start;
    static constexpr XML_EndElementHandler kEnd = end;

    /// Performs the function on the request's record and writes its result.
    static void Execute(XMLElement* elmt, XMLWR_Doc* doc) {
        auto& record = RequestRecord<kFunction>(elmt);
        if (!kFunction.call(record)) return;
        result(elmt, doc);
        if constexpr (requires { kFunction.call.Release(record); }) kFunction.call.Release(record);
    }
};

inline constexpr std::tuple<
    TableEntry<kHX_API_Version, XML_HX_API_Version_SEH, XML_HX_API_Version_EEH,
               XML_HX_API_Version_Ret>,
    TableEntry<kHX_Adapter_GetCount, XML_HX_Adapter_GetCount_SEH, XML_HX_Adapter_GetCount_EEH,
               XML_HX_Adapter_GetCount_Ret>,
    TableEntry<kHX_Adapter_GetInfo, XML_HX_Adapter_GetInfo_SEH, XML_HX_Adapter_GetInfo_EEH,
               XML_HX_Adapter_GetInfo_Ret>,
    TableEntry<kHX_Adapter_SetConfig, XML_HX_Adapter_SetConfig_SEH, XML_HX_Adapter_SetConfig_EEH,
               XML_HX_Adapter_SetConfig_Ret>,
    TableEntry<kHX_Adapter_GetConfig, XML_HX_Adapter_GetConfig_SEH, XML_HX_Adapter_GetConfig_EEH,
               XML_HX_Adapter_GetConfig_Ret>,
    TableEntry<kHX_AdapterMute, XML_HX_AdapterMute_SEH, XML_HX_AdapterMute_EEH,
               XML_HX_AdapterMute_Ret>,
    TableEntry<kHX_PD_GetHDInfo, XML_HX_PD_GetHDInfo_SEH, XML_HX_PD_GetHDInfo_EEH,
               XML_HX_PD_GetHDInfo_Ret>,
    TableEntry<kHX_PD_GetHDInfo_Ext, XML_HX_PD_GetHDInfo_Ext_SEH, XML_HX_PD_GetHDInfo_Ext_EEH,
               XML_HX_PD_GetHDInfo_Ext_Ret>,
    TableEntry<kHX_PD_GetExpanderInfo, XML_HX_PD_GetExpanderInfo_SEH, XML_HX_PD_GetExpanderInfo_EEH,
               XML_HX_PD_GetExpanderInfo_Ret>,
    TableEntry<kHX_PD_GetPMInfo, XML_HX_PD_GetPMInfo_SEH, XML_HX_PD_GetPMInfo_EEH,
               XML_HX_PD_GetPMInfo_Ret>,
    TableEntry<kHX_PD_GetFreeSpaceInfo, XML_HX_PD_GetFreeSpaceInfo_SEH,
               XML_HX_PD_GetFreeSpaceInfo_EEH, XML_HX_PD_GetFreeSpaceInfo_Ret>,
    TableEntry<kHX_PD_GetConfig, XML_HX_PD_GetConfig_SEH, XML_HX_PD_GetConfig_EEH,
               XML_HX_PD_GetConfig_Ret>,
    TableEntry<kHX_PD_GetSmartStatus, XML_HX_PD_GetSmartStatus_SEH, XML_HX_PD_GetSmartStatus_EEH,
               XML_HX_PD_GetSmartStatus_Ret>,
    TableEntry<kHX_PD_GetRCT, XML_HX_PD_GetRCT_SEH, XML_HX_PD_GetRCT_EEH, XML_HX_PD_GetRCT_Ret>,
    TableEntry<kHX_PD_SetConfig, XML_HX_PD_SetConfig_SEH, XML_HX_PD_SetConfig_EEH,
               XML_HX_PD_SetConfig_Ret>,
    TableEntry<kHX_LocateArrayDevice, XML_HX_LocateArrayDevice_SEH, XML_HX_LocateArrayDevice_EEH,
               XML_HX_LocateArrayDevice_Ret>,
    TableEntry<kHX_ENC_GetEnclosureInfo, XML_HX_ENC_GetEnclosureInfo_SEH,
               XML_HX_ENC_GetEnclosureInfo_EEH, XML_HX_ENC_GetEnclosureInfo_Ret>,
    TableEntry<kHX_ENC_GetElementInfo, XML_HX_ENC_GetElementInfo_SEH, XML_HX_ENC_GetElementInfo_EEH,
               XML_HX_ENC_GetElementInfo_Ret>,
    TableEntry<kHX_ENC_GetElementConfig, XML_HX_ENC_GetElementConfig_SEH,
               XML_HX_ENC_GetElementConfig_EEH, XML_HX_ENC_GetElementConfig_Ret>,
    TableEntry<kHX_PD_WipeHDMDD, XML_HX_PD_WipeHDMDD_SEH, XML_HX_PD_WipeHDMDD_EEH,
               XML_HX_PD_WipeHDMDD_Ret>,
    TableEntry<kHX_PD_SetHDStatus, XML_HX_PD_SetHDStatus_SEH, XML_HX_PD_SetHDStatus_EEH,
               XML_HX_PD_SetHDStatus_Ret>,
    TableEntry<kHX_PD_FreeHD2GlobalSpare, XML_HX_PD_FreeHD2GlobalSpare_SEH,
               XML_HX_PD_FreeHD2GlobalSpare_EEH, XML_HX_PD_FreeHD2GlobalSpare_Ret>,
    TableEntry<kHX_PD_Spare2FreeHD, XML_HX_PD_Spare2FreeHD_SEH, XML_HX_PD_Spare2FreeHD_EEH,
               XML_HX_PD_Spare2FreeHD_Ret>,
    TableEntry<kHX_PD_GetHDRaidStatus, XML_HX_PD_GetHDRaidStatus_SEH, XML_HX_PD_GetHDRaidStatus_EEH,
               XML_HX_PD_GetHDRaidStatus_Ret>,
    TableEntry<kHX_PD_GetMBRInfo, XML_HX_PD_GetMBRInfo_SEH, XML_HX_PD_GetMBRInfo_EEH,
               XML_HX_PD_GetMBRInfo_Ret>,
    TableEntry<kHX_BLK_GetInfo, XML_HX_BLK_GetInfo_SEH, XML_HX_BLK_GetInfo_EEH,
               XML_HX_BLK_GetInfo_Ret>,
    TableEntry<kHX_BLK_GetHDBlock, XML_HX_BLK_GetHDBlock_SEH, XML_HX_BLK_GetHDBlock_EEH,
               XML_HX_BLK_GetHDBlock_Ret>,
    TableEntry<kHX_LD_GetInfo, XML_HX_LD_GetInfo_SEH, XML_HX_LD_GetInfo_EEH, XML_HX_LD_GetInfo_Ret>,
    TableEntry<kHX_LD_GetTargetLDInfo, XML_HX_LD_GetTargetLDInfo_SEH, XML_HX_LD_GetTargetLDInfo_EEH,
               XML_HX_LD_GetTargetLDInfo_Ret>,
    TableEntry<kHX_LD_Delete, XML_HX_LD_Delete_SEH, XML_HX_LD_Delete_EEH, XML_HX_LD_Delete_Ret>,
    TableEntry<kHX_LD_Create, XML_HX_LD_Create_SEH, XML_HX_LD_Create_EEH, XML_HX_LD_Create_Ret>,
    TableEntry<kHX_LD_QuickCreate, XML_HX_LD_QuickCreate_SEH, XML_HX_LD_QuickCreate_EEH,
               XML_HX_LD_QuickCreate_Ret>,
    TableEntry<kHX_LD_GetMaxSize, XML_HX_LD_GetMaxSize_SEH, XML_HX_LD_GetMaxSize_EEH,
               XML_HX_LD_GetMaxSize_Ret>,
    TableEntry<kHX_LD_PauseAll, XML_HX_LD_PauseAll_SEH, XML_HX_LD_PauseAll_EEH,
               XML_HX_LD_PauseAll_Ret>,
    TableEntry<kHX_LD_GetStatus, XML_HX_LD_GetStatus_SEH, XML_HX_LD_GetStatus_EEH,
               XML_HX_LD_GetStatus_Ret>,
    TableEntry<kHX_LD_GetConfig, XML_HX_LD_GetConfig_SEH, XML_HX_LD_GetConfig_EEH,
               XML_HX_LD_GetConfig_Ret>,
    TableEntry<kHX_LD_SetConfig, XML_HX_LD_SetConfig_SEH, XML_HX_LD_SetConfig_EEH,
               XML_HX_LD_SetConfig_Ret>,
    TableEntry<kHX_LD_StartRebuild, XML_HX_LD_StartRebuild_SEH, XML_HX_LD_StartRebuild_EEH,
               XML_HX_LD_StartRebuild_Ret>,
    TableEntry<kHX_LD_StartConsistencyCheck, XML_HX_LD_StartConsistencyCheck_SEH,
               XML_HX_LD_StartConsistencyCheck_EEH, XML_HX_LD_StartConsistencyCheck_Ret>,
    TableEntry<kHX_LD_StartINIT, XML_HX_LD_StartINIT_SEH, XML_HX_LD_StartINIT_EEH,
               XML_HX_LD_StartINIT_Ret>,
    TableEntry<kHX_LD_StartMigration, XML_HX_LD_StartMigration_SEH, XML_HX_LD_StartMigration_EEH,
               XML_HX_LD_StartMigration_Ret>,
    TableEntry<kHX_LD_GetMigratedLdSize, XML_HX_LD_GetMigratedLdSize_SEH,
               XML_HX_LD_GetMigratedLdSize_EEH, XML_HX_LD_GetMigratedLdSize_Ret>,
    TableEntry<kHX_LD_BGAControl, XML_HX_LD_BGAControl_SEH, XML_HX_LD_BGAControl_EEH,
               XML_HX_LD_BGAControl_Ret>,
    TableEntry<kHX_LD_Import, XML_HX_LD_Import_SEH, XML_HX_LD_Import_EEH, XML_HX_LD_Import_Ret>,
    TableEntry<kHX_Flash_Erase, XML_HX_Flash_Erase_SEH, XML_HX_Flash_Erase_EEH,
               XML_HX_Flash_Erase_Ret>,
    TableEntry<kHX_LogonUser, XML_HX_LogonUser_SEH, XML_HX_LogonUser_EEH, XML_HX_LogonUser_Ret>,
    TableEntry<kHX_GetUserName, XML_HX_GetUserName_SEH, XML_HX_GetUserName_EEH,
               XML_HX_GetUserName_Ret>,
    TableEntry<kHX_GetUserGroup, XML_HX_GetUserGroup_SEH, XML_HX_GetUserGroup_EEH,
               XML_HX_GetUserGroup_Ret>,
    TableEntry<kHX_DG_Create, XML_HX_DG_Create_SEH, XML_HX_DG_Create_EEH, XML_HX_DG_Create_Ret>,
    TableEntry<kHX_DG_GetSizeOnly, XML_HX_DG_GetSizeOnly_SEH, XML_HX_DG_GetSizeOnly_EEH,
               XML_HX_DG_GetSizeOnly_Ret>,
    TableEntry<kHX_DG_Modify, XML_HX_DG_Modify_SEH, XML_HX_DG_Modify_EEH, XML_HX_DG_Modify_Ret>,
    TableEntry<kHX_DG_GetInfo, XML_HX_DG_GetInfo_SEH, XML_HX_DG_GetInfo_EEH, XML_HX_DG_GetInfo_Ret>,
    TableEntry<kHX_DG_Delete, XML_HX_DG_Delete_SEH, XML_HX_DG_Delete_EEH, XML_HX_DG_Delete_Ret>,
    TableEntry<kHX_CreateOrModify_VD, XML_HX_CreateOrModify_VD_SEH, XML_HX_CreateOrModify_VD_EEH,
               XML_HX_CreateOrModify_VD_Ret>,
    TableEntry<kHX_LD_DG_StartRebuild, XML_HX_LD_DG_StartRebuild_SEH, XML_HX_LD_DG_StartRebuild_EEH,
               XML_HX_LD_DG_StartRebuild_Ret>,
    TableEntry<kHX_DG_StartMigration, XML_HX_DG_StartMigration_SEH, XML_HX_DG_StartMigration_EEH,
               XML_HX_DG_StartMigration_Ret>,
    TableEntry<kHX_DG_BGAControl, XML_HX_DG_BGAControl_SEH, XML_HX_DG_BGAControl_EEH,
               XML_HX_DG_BGAControl_Ret>,
    TableEntry<kHX_DG_GetConfig, XML_HX_DG_GetConfig_SEH, XML_HX_DG_GetConfig_EEH,
               XML_HX_DG_GetConfig_Ret>,
    TableEntry<kHX_DG_SetConfig, XML_HX_DG_SetConfig_SEH, XML_HX_DG_SetConfig_EEH,
               XML_HX_DG_SetConfig_Ret>,
    TableEntry<kHX_Flash_Option, XML_HX_Flash_Option_SEH, XML_HX_Flash_Option_EEH,
               XML_HX_Flash_Option_Ret>,
    TableEntry<kHX_BIOS_Version, XML_HX_BIOS_Version_SEH, XML_HX_BIOS_Version_EEH,
               XML_HX_BIOS_Version_Ret>,
    TableEntry<kHX_PD_FreeHD2DGSpare, XML_HX_PD_FreeHD2DGSpare_SEH, XML_HX_PD_FreeHD2DGSpare_EEH,
               XML_HX_PD_FreeHD2DGSpare_Ret>,
    TableEntry<kHX_BBU_GetInfo, XML_HX_BBU_GetInfo_SEH, XML_HX_BBU_GetInfo_EEH,
               XML_HX_BBU_GetInfo_Ret>,
    TableEntry<kHX_BBU_SetThreshold, XML_HX_BBU_SetThreshold_SEH, XML_HX_BBU_SetThreshold_EEH,
               XML_HX_BBU_SetThreshold_Ret>,
    TableEntry<kHX_BBU_ChangePower, XML_HX_BBU_ChangePower_SEH, XML_HX_BBU_ChangePower_EEH,
               XML_HX_BBU_ChangePower_Ret>,
    TableEntry<kHX_BBU_SetStatus, XML_HX_BBU_SetStatus_SEH, XML_HX_BBU_SetStatus_EEH,
               XML_HX_BBU_SetStatus_Ret>,
    TableEntry<kHX_BBU_SetMaxCapacity, XML_HX_BBU_SetMaxCapacity_SEH, XML_HX_BBU_SetMaxCapacity_EEH,
               XML_HX_BBU_SetMaxCapacity_Ret>,
    TableEntry<kHX_BBU_ActRelearn, XML_HX_BBU_ActRelearn_SEH, XML_HX_BBU_ActRelearn_EEH,
               XML_HX_BBU_ActRelearn_Ret>,
    TableEntry<kHX_PD_StartDataScrub, XML_HX_PD_StartDataScrub_SEH, XML_HX_PD_StartDataScrub_EEH,
               XML_HX_PD_StartDataScrub_Ret>,
    TableEntry<kHX_LD_Create_OnDG, XML_HX_LD_Create_OnDG_SEH, XML_HX_LD_Create_OnDG_EEH,
               XML_HX_LD_Create_OnDG_Ret>,
    TableEntry<kHX_LD_Modify_OnDG, XML_HX_LD_Modify_OnDG_SEH, XML_HX_LD_Modify_OnDG_EEH,
               XML_HX_LD_Modify_OnDG_Ret>,
    TableEntry<kHX_PD_GetSpareInfo, XML_HX_PD_GetSpareInfo_SEH, XML_HX_PD_GetSpareInfo_EEH,
               XML_HX_PD_GetSpareInfo_Ret>,
    TableEntry<kHX_PD_GetBGAStatus, XML_HX_PD_GetBGAStatus_SEH, XML_HX_PD_GetBGAStatus_EEH,
               XML_HX_PD_GetBGAStatus_Ret>,
    TableEntry<kHX_PD_BGAControl, XML_HX_PD_BGAControl_SEH, XML_HX_PD_BGAControl_EEH,
               XML_HX_PD_BGAControl_Ret>,
    TableEntry<kHX_PD_StartMediaPatrol, XML_HX_PD_StartMediaPatrol_SEH,
               XML_HX_PD_StartMediaPatrol_EEH, XML_HX_PD_StartMediaPatrol_Ret>>
    kFunctions;

inline constexpr std::size_t kFunctionCount = std::tuple_size_v<decltype(kFunctions)>;
static_assert(kFunctionCount == 75);
