// The vendor functions in table order, each named once.
#pragma once

#include <cstddef>
#include <iterator>

#include "hxraid.h"

// The library knows the functions in this list; their rows, kHX_<name>, are in the header of their
// family. Everything else follows from the name: its handlers XML_HX_<name>_SEH and _EEH, its
// result writer XML_HX_<name>_Ret, its place in the table and in the executor. It is a macro
// because only a macro can compose names.
#define VENDOR_FUNCTIONS(FUNCTION)        \
    FUNCTION(HX_API_Version)              \
    FUNCTION(HX_Adapter_GetCount)         \
    FUNCTION(HX_Adapter_GetInfo)          \
    FUNCTION(HX_Adapter_SetConfig)        \
    FUNCTION(HX_Adapter_GetConfig)        \
    FUNCTION(HX_AdapterMute)              \
    FUNCTION(HX_PD_GetHDInfo)             \
    FUNCTION(HX_PD_GetHDInfo_Ext)         \
    FUNCTION(HX_PD_GetExpanderInfo)       \
    FUNCTION(HX_PD_GetPMInfo)             \
    FUNCTION(HX_PD_GetFreeSpaceInfo)      \
    FUNCTION(HX_PD_GetConfig)             \
    FUNCTION(HX_PD_GetSmartStatus)        \
    FUNCTION(HX_PD_GetRCT)                \
    FUNCTION(HX_PD_SetConfig)             \
    FUNCTION(HX_LocateArrayDevice)        \
    FUNCTION(HX_ENC_GetEnclosureInfo)     \
    FUNCTION(HX_ENC_GetElementInfo)       \
    FUNCTION(HX_ENC_GetElementConfig)     \
    FUNCTION(HX_PD_WipeHDMDD)             \
    FUNCTION(HX_PD_SetHDStatus)           \
    FUNCTION(HX_PD_FreeHD2GlobalSpare)    \
    FUNCTION(HX_PD_Spare2FreeHD)          \
    FUNCTION(HX_PD_GetHDRaidStatus)       \
    FUNCTION(HX_PD_GetMBRInfo)            \
    FUNCTION(HX_BLK_GetInfo)              \
    FUNCTION(HX_BLK_GetHDBlock)           \
    FUNCTION(HX_LD_GetInfo)               \
    FUNCTION(HX_LD_GetTargetLDInfo)       \
    FUNCTION(HX_LD_Delete)                \
    FUNCTION(HX_LD_Create)                \
    FUNCTION(HX_LD_QuickCreate)           \
    FUNCTION(HX_LD_GetMaxSize)            \
    FUNCTION(HX_LD_PauseAll)              \
    FUNCTION(HX_LD_GetStatus)             \
    FUNCTION(HX_LD_GetConfig)             \
    FUNCTION(HX_LD_SetConfig)             \
    FUNCTION(HX_LD_StartRebuild)          \
    FUNCTION(HX_LD_StartConsistencyCheck) \
    FUNCTION(HX_LD_StartINIT)             \
    FUNCTION(HX_LD_StartMigration)        \
    FUNCTION(HX_LD_GetMigratedLdSize)     \
    FUNCTION(HX_LD_BGAControl)            \
    FUNCTION(HX_LD_Import)                \
    FUNCTION(HX_Flash_Erase)              \
    FUNCTION(HX_LogonUser)                \
    FUNCTION(HX_GetUserName)              \
    FUNCTION(HX_GetUserGroup)             \
    FUNCTION(HX_DG_Create)                \
    FUNCTION(HX_DG_GetSizeOnly)           \
    FUNCTION(HX_DG_Modify)                \
    FUNCTION(HX_DG_GetInfo)               \
    FUNCTION(HX_DG_Delete)                \
    FUNCTION(HX_CreateOrModify_VD)        \
    FUNCTION(HX_LD_DG_StartRebuild)       \
    FUNCTION(HX_DG_StartMigration)        \
    FUNCTION(HX_DG_BGAControl)            \
    FUNCTION(HX_DG_GetConfig)             \
    FUNCTION(HX_DG_SetConfig)             \
    FUNCTION(HX_Flash_Option)             \
    FUNCTION(HX_BIOS_Version)             \
    FUNCTION(HX_PD_FreeHD2DGSpare)        \
    FUNCTION(HX_BBU_GetInfo)              \
    FUNCTION(HX_BBU_SetThreshold)         \
    FUNCTION(HX_BBU_ChangePower)          \
    FUNCTION(HX_BBU_SetStatus)            \
    FUNCTION(HX_BBU_SetMaxCapacity)       \
    FUNCTION(HX_BBU_ActRelearn)           \
    FUNCTION(HX_PD_StartDataScrub)        \
    FUNCTION(HX_LD_Create_OnDG)           \
    FUNCTION(HX_LD_Modify_OnDG)           \
    FUNCTION(HX_PD_GetSpareInfo)          \
    FUNCTION(HX_PD_GetBGAStatus)          \
    FUNCTION(HX_PD_BGAControl)            \
    FUNCTION(HX_PD_StartMediaPatrol)

/// One of the vendor functions.
enum class VendorFunction : HX_U8 {
#define ENUMERATOR(name) name,
    VENDOR_FUNCTIONS(ENUMERATOR)
#undef ENUMERATOR
};

#define NAME(name) #name,
inline constexpr const char* kFunctionNames[] = {VENDOR_FUNCTIONS(NAME)};
#undef NAME

inline constexpr std::size_t kFunctionCount = std::size(kFunctionNames);
static_assert(kFunctionCount == 75);
