// The library itself, the adapters, their enclosures, batteries and flash memory.
#include "xml_rapi_functions_rows.h"

using enum Holds;

std::vector<FunctionRow> AdapterRows() {
    return {
        {"HX_API_Version",
         {},
         {"HX_API_Version()"},
         [] { hxfake::On<&HX_API_Version>().Always("4.1.0.2048"); },
         {}},
        {"HX_Adapter_GetCount",
         {},
         {"HX_Adapter_GetCount()"},
         [] { hxfake::On<&HX_Adapter_GetCount>().Always(2); },
         Code<&HX_Adapter_GetCount>(),
         true},
        {"HX_Adapter_GetInfo",
         {{"AdapterID", U8}},
         {"HX_Adapter_GetInfo($AdapterID, &, &)"},
         Writes<&HX_Adapter_GetInfo>(hxfake::Records({Distinct<Adapter_Info>()})),
         Code<&HX_Adapter_GetInfo>()},
        {"HX_Adapter_SetConfig",
         {
             {"AdapterID", U8},
             {"AlarmOn", U8, 0},
             {"AutoRebuildOn", U8, 1},
             {"BGARate", U8, 2},
             {"PollSMARTStatus", U8, 8},
             {"MediaPatrolRate", U8, 9},
             {"CopyBack", U8, 10},
             {"SyncRate", U8, 3},
             {"InitRate", U8, 4},
             {"RebuildRate", U8, 5},
             {"MigrationRate", U8, 6},
             {"CopybackRate", U8, 7},
             {"InterruptCoalescing", U8, 11},
             {"ModuleConsolidate", U8, 12},
             {"v_atapi_disable", U8, 13},
             {"port_phy_ctrl", U8x8, 14},
         },
         {"HX_Adapter_GetConfig($AdapterID, &, &)", "HX_Adapter_GetInfo($AdapterID, &, &)",
          "HX_Adapter_SetConfig($AdapterID, &)"},
         // An adapter of which every rate can be set.
         [] {
             Adapter_Info info{};
             info.Features = 0x5F;
             hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({info}));
         },
         Code<&HX_Adapter_SetConfig>(),
         true,
         Watched<&HX_Adapter_SetConfig, Adapter_Config_V2>()},
        {"HX_Adapter_GetConfig",
         {{"AdapterID", U8}},
         {"HX_Adapter_GetConfig($AdapterID, &, &)"},
         Writes<&HX_Adapter_GetConfig>(hxfake::Records({Distinct<Adapter_Config_V2>()})),
         Code<&HX_Adapter_GetConfig>()},
        StatusRow<&HX_AdapterMute>("HX_AdapterMute", {{"AdapterID", U8}},
                                   "HX_AdapterMute($AdapterID)"),
        StatusRow<&HX_LocateArrayDevice>(
            "HX_LocateArrayDevice",
            {{"AdapterID", U8}, {"deviceType", U8}, {"deviceId", U16}, {"ledStatus", U8}},
            "HX_LocateArrayDevice($AdapterID, $deviceType, $deviceId, $ledStatus)"),

        ListRow<&HX_ENC_GetEnclosureInfo, Enclosure_Info>("HX_ENC_GetEnclosureInfo",
                                                          "HX_ENC_GetEnclosureInfo"),
        {"HX_ENC_GetElementInfo",
         {{"AdapterID", U8}, {"ENC_ID", U16}},
         {"HX_ENC_GetElementInfo($AdapterID, $ENC_ID, &, &)"},
         Writes<&HX_ENC_GetElementInfo>(
             hxfake::Records({Distinct<EncElementType_Info>(0), Distinct<EncElementType_Info>(1)})),
         Code<&HX_ENC_GetElementInfo>()},
        {"HX_ENC_GetElementConfig",
         {{"AdapterID", U8}, {"ENC_ID", U16}},
         {"HX_ENC_GetElementConfig($AdapterID, $ENC_ID, &, &)"},
         Writes<&HX_ENC_GetElementConfig>(
             hxfake::Records({Distinct<EncElement_Config>(0), Distinct<EncElement_Config>(1)})),
         Code<&HX_ENC_GetElementConfig>()},

        {"HX_BBU_GetInfo",
         {{"AdapterID", U8}},
         {"HX_BBU_GetInfo($AdapterID, &)"},
         Writes<&HX_BBU_GetInfo>(hxfake::Fill(Distinct<BBU_Info>())),
         Code<&HX_BBU_GetInfo>()},
        {"HX_BBU_SetThreshold",
         {{"AdapterID", U8},
          {"tempLowerBound", U16},
          {"tempUpperBound", U16},
          {"volLowerBound", U16},
          {"volUpperBound", U16}},
         {"HX_BBU_SetThreshold($AdapterID, 1, $tempLowerBound, $tempUpperBound)",
          "HX_BBU_SetThreshold($AdapterID, 2, $volLowerBound, $volUpperBound)"},
         [] {},
         Code<&HX_BBU_SetThreshold>(),
         true},
        StatusRow<&HX_BBU_ChangePower>("HX_BBU_ChangePower", {{"AdapterID", U8}, {"action", U8}},
                                       "HX_BBU_ChangePower($AdapterID, $action)"),
        StatusRow<&HX_BBU_SetStatus>("HX_BBU_SetStatus", {{"AdapterID", U8}, {"status", U8}},
                                     "HX_BBU_SetStatus($AdapterID, $status)"),
        // Answered without the controller, whatever it says.
        {"HX_BBU_SetMaxCapacity", {{"maxCapacity", U16}, {"BBU_ID", U8}}, {}, [] {}, {}, true},
        StatusRow<&HX_BBU_ChangePower>("HX_BBU_ActRelearn", {{"AdapterID", U8}},
                                       "HX_BBU_ChangePower($AdapterID, 0)"),
        StatusRow<&HX_Flash_Erase>("HX_Flash_Erase", {{"AdapterID", U8}, {"Page", U8}},
                                   "HX_Flash_Erase($AdapterID, $Page)"),
    };
}
