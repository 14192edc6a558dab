// The disk groups.
#include "xml_rapi_functions_rows.h"

using enum Holds;

namespace {

// The children of a disk group to be made, sized or changed, behind `first`.
std::vector<Child> DiskGroup(std::vector<Child> first) {
    const Child others[] = {
        {"Name", Text16, 4},          {"RaidMode", U8, 20},
        {"SubVDCount", U8, 21},       {"NumParityDisk", U8, 22},
        {"StripeBlockSize", U16, 30}, {"Size", U64, 32},
        {"BlockSize", U32, 40},       {"InitializationOption", U8, 44},
        {"PDCount", U8, 47},          {"PDIDs", U16x128, 48},
    };
    first.insert(first.end(), std::begin(others), std::end(others));
    return first;
}

}  // namespace

std::vector<FunctionRow> DiskGroupRows() {
    return {
        // A new one: its number is 65535.
        {"HX_DG_Create",
         DiskGroup({{"AdapterID", U8}}),
         {"HX_CreateOrModify_DG($AdapterID, &, 0)"},
         Writes<&HX_CreateOrModify_DG>(hxfake::Fill(Distinct<CreateOrModify_DG_Param>())),
         Code<&HX_CreateOrModify_DG>(),
         false,
         Watched<&HX_CreateOrModify_DG, CreateOrModify_DG_Param>({0, 1})},
        {"HX_DG_GetSizeOnly",
         DiskGroup({{"AdapterID", U8}, {"DGID", U16, 0}}),
         {"HX_CreateOrModify_DG($AdapterID, &, 1)"},
         Writes<&HX_CreateOrModify_DG>(hxfake::Fill(Distinct<CreateOrModify_DG_Param>())),
         Code<&HX_CreateOrModify_DG>(),
         false,
         Watched<&HX_CreateOrModify_DG, CreateOrModify_DG_Param>()},
        StatusRow<&HX_CreateOrModify_DG>("HX_DG_Modify",
                                         DiskGroup({{"AdapterID", U8}, {"DGID", U16, 0}}),
                                         "HX_CreateOrModify_DG($AdapterID, &, 0)",
                                         Watched<&HX_CreateOrModify_DG, CreateOrModify_DG_Param>()),
        ListRow<&HX_DG_GetInfo, DG_Info>("HX_DG_GetInfo", "HX_DG_GetInfo"),
        StatusRow<&HX_DG_Delete>("HX_DG_Delete", {{"AdapterID", U8}, {"DG_ID", U16}},
                                 "HX_DG_Delete($AdapterID, $DG_ID)"),
        StatusRow<&HX_LD_DG_StartRebuild>("HX_LD_DG_StartRebuild",
                                          {{"AdapterID", U8},
                                           {"ID", U16, 0},
                                           {"RebuildType", U8, 2},
                                           {"PDCount", U8, 3},
                                           {"PDIDs", U16x128, 4}},
                                          "HX_LD_DG_StartRebuild($AdapterID, &)",
                                          Watched<&HX_LD_DG_StartRebuild, LD_DG_Rebuild_Param>()),
        {"HX_DG_StartMigration",
         {{"AdapterID", U8},
          {"DGID", U16, 0},
          {"RaidMode", U8, 20},
          {"NumParityDisk", U8, 22},
          {"PDCount", U8, 47},
          {"PDIDs", U16x128, 48}},
         {"HX_DG_GetInfo($AdapterID, {2, $DGID, 1})", "HX_DG_StartMigration($AdapterID, &)"},
         [] {},
         Code<&HX_DG_StartMigration>(),
         true,
         Watched<&HX_DG_StartMigration, CreateOrModify_DG_Param>()},
        StatusRow<&HX_DG_BGAControl>("HX_DG_BGAControl",
                                     {{"AdapterID", U8}, {"DG_ID", U16}, {"Actions", U8}},
                                     "HX_DG_BGAControl($AdapterID, $DG_ID, $Actions)"),
        ListRow<&HX_DG_GetConfig, DG_Config>("HX_DG_GetConfig", "HX_DG_GetConfig"),
        {"HX_DG_SetConfig",
         {{"AdapterID", U8},
          {"DG_ID", U16},
          {"DGID", U16, 0},
          {"WriteCacheOn", U8, 2},
          {"Name", Text16, 3}},
         {"HX_DG_GetConfig($AdapterID, {2, $DG_ID, 1})", "HX_DG_SetConfig($AdapterID, $DG_ID, &)"},
         [] {},
         Code<&HX_DG_SetConfig>(),
         true,
         Watched<&HX_DG_SetConfig, DG_Config>()},
    };
}
