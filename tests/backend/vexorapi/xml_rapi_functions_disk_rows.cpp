// The physical disks and the blocks on them.
#include "xml_rapi_functions_rows.h"

using enum Holds;

namespace {

// The extended list, and the plain one where the adapter does not know that.
FunctionRow PlainDiskRow() {
    FunctionRow row =
        ListRow<&HX_PD_GetHDInfo_Ext, HD_Info>("HX_PD_GetHDInfo", "HX_PD_GetHDInfo_Ext");
    row.refuse = [](HX_U8 code) {
        hxfake::On<&HX_PD_GetHDInfo_Ext>().Always(99);
        hxfake::On<&HX_PD_GetHDInfo>().Always(code);
    };
    return row;
}

}  // namespace

std::vector<FunctionRow> DiskRows() {
    return {
        PlainDiskRow(),
        ListRow<&HX_PD_GetHDInfo_Ext, HD_Info>("HX_PD_GetHDInfo_Ext", "HX_PD_GetHDInfo_Ext"),
        ListRow<&HX_PD_GetExpanderInfo, Exp_Info>("HX_PD_GetExpanderInfo", "HX_PD_GetExpanderInfo"),
        ListRow<&HX_PD_GetPMInfo, PM_Info>("HX_PD_GetPMInfo", "HX_PD_GetPMInfo"),
        ListRow<&HX_PD_GetFreeSpaceInfo, HD_FreeSpaceInfo>("HX_PD_GetFreeSpaceInfo",
                                                           "HX_PD_GetFreeSpaceInfo"),
        ListRow<&HX_PD_GetConfig, HD_Config>("HX_PD_GetConfig", "HX_PD_GetConfig"),
        ListRow<&HX_PD_GetSmartStatus, HD_SMART_Status>("HX_PD_GetSmartStatus",
                                                        "HX_PD_GetSmartStatus"),
        ListRow<&HX_PD_GetHDRaidStatus, HD_RAID_Status>("HX_PD_GetHDRaidStatus",
                                                        "HX_PD_GetHDRaidStatus"),
        // The spare disks are in the list of what disks are used for.
        ListRow<&HX_PD_GetHDRaidStatus, HD_RAID_Status>("HX_PD_GetSpareInfo",
                                                        "HX_PD_GetHDRaidStatus"),
        ListRow<&HX_PD_GetBGAStatus, HD_BGA_Status>("HX_PD_GetBGAStatus", "HX_PD_GetBGAStatus"),
        ListRow<&HX_BLK_GetInfo, Block_Info>("HX_BLK_GetInfo", "HX_BLK_GetInfo"),
        ListRow<&HX_BLK_GetHDBlock, HD_Block_Info>("HX_BLK_GetHDBlock", "HX_BLK_GetHDBlock"),

        // Of a table of five records, three from the second on.
        {"HX_PD_GetRCT",
         {{"AdapterID", U8},
          {"HD_ID", U16},
          {"n", U32, kInLine, 3},
          {"s", U32, kInLine, 1},
          {"e", U32, kInLine, 4}},
         {"HX_PD_RCT_GetCount($AdapterID, $HD_ID, &)", "HX_PD_GetRCT($AdapterID, $HD_ID, &, 5)"},
         [] {
             hxfake::On<&HX_PD_RCT_GetCount>().Always(0, hxfake::Fill(HX_U32{5}));
             hxfake::On<&HX_PD_GetRCT>().Always(
                 [](HX_U8, HX_U16, RCT_Record* records, HX_U32 count) -> HX_U8 {
                     for (HX_U32 i = 0; i < count; ++i) records[i] = Distinct<RCT_Record>(i);
                     return 0;
                 });
         },
         Code<&HX_PD_RCT_GetCount>()},

        StatusRow<&HX_PD_SetConfig>("HX_PD_SetConfig",
                                    {{"AdapterID", U8},
                                     {"HD_ID", U16},
                                     {"WriteCacheOn", U8, 0},
                                     {"SMARTOn", U8, 1},
                                     {"Online", U8, 2},
                                     {"DriveSpeed", U8, 3},
                                     {"HDID", U16, 4}},
                                    "HX_PD_SetConfig($AdapterID, $HD_ID, &)",
                                    Watched<&HX_PD_SetConfig, HD_Config>()),
        StatusRow<&HX_PD_WipeHDMDD>("HX_PD_WipeHDMDD",
                                    {{"AdapterID", U8}, {"HD_ID", U16}, {"Force", U8}},
                                    "HX_PD_WipeHDMDD($AdapterID, $HD_ID, $Force)"),
        StatusRow<&HX_PD_SetHDStatus>("HX_PD_SetHDStatus",
                                      {{"AdapterID", U8}, {"HD_ID", U16}, {"Action", U8}},
                                      "HX_PD_SetHDStatus($AdapterID, $HD_ID, $Action)"),
        StatusRow<&HX_PD_FreeHD2GlobalSpare>("HX_PD_FreeHD2GlobalSpare",
                                             {{"AdapterID", U8}, {"HD_ID", U16}},
                                             "HX_PD_FreeHD2GlobalSpare($AdapterID, $HD_ID)"),
        StatusRow<&HX_PD_FreeHD2DGSpare>("HX_PD_FreeHD2DGSpare",
                                         {{"AdapterID", U8}, {"HD_ID", U16}, {"DG_ID", U16}},
                                         "HX_PD_FreeHD2DGSpare($AdapterID, $HD_ID, $DG_ID)"),
        StatusRow<&HX_PD_Spare2FreeHD>("HX_PD_Spare2FreeHD", {{"AdapterID", U8}, {"HD_ID", U16}},
                                       "HX_PD_Spare2FreeHD($AdapterID, $HD_ID)"),
        {"HX_PD_GetMBRInfo",
         {{"HDCount", U8, 0}, {"AdapterID", U8}, {"HDIDs", U16x128, 2}},
         {"HX_PD_GetMBRInfo($AdapterID, &)"},
         Writes<&HX_PD_GetMBRInfo>(hxfake::Fill(Distinct<HD_MBR_Info>())),
         Code<&HX_PD_GetMBRInfo>(),
         false,
         Watched<&HX_PD_GetMBRInfo, HD_MBR_Info>()},
        StatusRow<&HX_PD_StartDataScrub>("HX_PD_StartDataScrub",
                                         {{"AdapterID", U8}, {"HD_ID", U16}},
                                         "HX_PD_StartDataScrub($AdapterID, $HD_ID)"),
        StatusRow<&HX_PD_StartMediaPatrol>("HX_PD_StartMediaPatrol",
                                           {{"AdapterID", U8}, {"HD_ID", U16}},
                                           "HX_PD_StartMediaPatrol($AdapterID, $HD_ID)"),
        StatusRow<&HX_PD_BGAControl>("HX_PD_BGAControl",
                                     {{"AdapterID", U8}, {"HD_ID", U16}, {"Action", U8}},
                                     "HX_PD_BGAControl($AdapterID, $HD_ID, $Action)"),
    };
}
