// The functions of the library itself and of the adapters: the rows of each.
#pragma once

#include "xml_rapi_function.h"

// HX_API_Version: the one function whose RetVal is a text.
inline constexpr Function kHX_API_Version{
    "HX_API_Version",
    &XML_RA_FuncData::HX_API_Version,
    NoParams<VX_API_Version>(),
    [](VX_API_Version& record) {
        const char* const text = HX_API_Version();
        if (text != nullptr) CutText(record.RetVal, text, std::strlen(text));
        return true;
    },
    Result{Bare("RetVal", &VX_API_Version::RetVal)},
};

// HX_Adapter_GetCount: RetVal is the number of adapters.
inline constexpr Function kHX_Adapter_GetCount{
    "HX_Adapter_GetCount",
    &XML_RA_FuncData::HX_Adapter_GetCount,
    NoParams<VX_Adapter_GetCount>(),
    Call<HX_Adapter_GetCount, VX_Adapter_GetCount>(),
    StatusOnly<VX_Adapter_GetCount>(),
};

// HX_Adapter_GetInfo: one adapter, or all of them packed in adapter order.
inline constexpr Function kHX_Adapter_GetInfo{
    "HX_Adapter_GetInfo",
    &XML_RA_FuncData::HX_Adapter_GetInfo,
    Params{
        Param("AdapterID", &VX_Adapter_GetInfo::AdapterID),
    },
    EachAdapter(&VX_Adapter_GetInfo::AdapterInfo, Items::FollowEachOther,
                [](VX_Adapter_GetInfo&, HX_U8 adapter, HX_U8* items, Adapter_Info* info) {
                    return HX_Adapter_GetInfo(adapter, items, info);
                }),
    Result{
        Col("RetVal", kU8, &VX_Adapter_GetInfo::RetVal),
        Col("Count", kU8, &VX_Adapter_GetInfo::Count),
    },
    Records<kAdapter_Info, XML_RA_Adapter_Info>("AdapterInfo", &VX_Adapter_GetInfo::AdapterInfo,
                                                &VX_Adapter_GetInfo::Count),
};

/// The settings that a command can set, under the fields' own names.
inline constexpr Params kAdapterConfigParams{
    Without(&Adapter_Config_V2::Reserved),
    Param("AlarmOn", &Adapter_Config_V2::AlarmOn),
    Param("AutoRebuildOn", &Adapter_Config_V2::AutoRebuildOn),
    Param("BGARate", &Adapter_Config_V2::BGARate),
    Param("PollSMARTStatus", &Adapter_Config_V2::PollSMARTStatus),
    Param("MediaPatrolRate", &Adapter_Config_V2::MediaPatrolRate),
    Param("CopyBack", &Adapter_Config_V2::CopyBack),
    Param("SyncRate", &Adapter_Config_V2::SyncRate),
    Param("InitRate", &Adapter_Config_V2::InitRate),
    Param("RebuildRate", &Adapter_Config_V2::RebuildRate),
    Param("MigrationRate", &Adapter_Config_V2::MigrationRate),
    Param("CopybackRate", &Adapter_Config_V2::CopybackRate),
    Param("InterruptCoalescing", &Adapter_Config_V2::InterruptCoalescing),
    Param("ModuleConsolidate", &Adapter_Config_V2::ModuleConsolidate),
    Param("v_atapi_disable", &Adapter_Config_V2::v_atapi_disable),
    Param("port_phy_ctrl", &Adapter_Config_V2::port_phy_ctrl),
};

/// A rate, and the bit of Adapter_Info's Features for an adapter on which it can be set.
struct AdapterRate {
    HX_U8 feature;
    HX_U8 Adapter_Config_V2::*rate;
};
inline constexpr AdapterRate kAdapterRates[] = {
    {0x01, &Adapter_Config_V2::RebuildRate},     {0x02, &Adapter_Config_V2::InitRate},
    {0x04, &Adapter_Config_V2::SyncRate},        {0x08, &Adapter_Config_V2::MigrationRate},
    {0x10, &Adapter_Config_V2::MediaPatrolRate}, {0x40, &Adapter_Config_V2::CopybackRate},
};

// HX_Adapter_SetConfig: rates that the adapter does not support keep their current values.
inline constexpr Function kHX_Adapter_SetConfig{
    "HX_Adapter_SetConfig",
    &XML_RA_FuncData::HX_Adapter_SetConfig,
    Params{
        Param("AdapterID", &VX_Adapter_SetConfig::AdapterID),
        Within(&VX_Adapter_SetConfig::AdapterConfig, kAdapterConfigParams),
    },
    [](VX_Adapter_SetConfig& record) {
        // Queries that fail leave zeros: no rate can then be set.
        HX_U8 number = 0;
        Adapter_Config_V2 current{};
        HX_Adapter_GetConfig(record.AdapterID, &number, &current);
        Adapter_Info info{};
        HX_Adapter_GetInfo(record.AdapterID, &number, &info);
        for (const AdapterRate& row : kAdapterRates) {
            if ((info.Features & row.feature) == 0)
                record.AdapterConfig.*row.rate = current.*row.rate;
        }
        record.RetVal = HX_Adapter_SetConfig(record.AdapterID, &record.AdapterConfig);
        return true;
    },
    StatusOnly<VX_Adapter_SetConfig>(),
};

// HX_Adapter_GetConfig: for all adapters, the settings of each overwrite those of the previous one,
// and Count is the total.
inline constexpr Function kHX_Adapter_GetConfig{
    "HX_Adapter_GetConfig",
    &XML_RA_FuncData::HX_Adapter_GetConfig,
    Params{
        Param("AdapterID", &VX_Adapter_GetConfig::AdapterID),
    },
    EachAdapter(&VX_Adapter_GetConfig::AdapterConfig, Items::OverwriteTheFirst,
                [](VX_Adapter_GetConfig&, HX_U8 adapter, HX_U8* items, Adapter_Config_V2* config) {
                    return HX_Adapter_GetConfig(adapter, items, config);
                }),
    Result{
        Col("RetVal", kU8, &VX_Adapter_GetConfig::RetVal),
        Col("Count", kU8, &VX_Adapter_GetConfig::Count),
    },
    // The element bears the same name as an adapter's information.
    Records<kAdapter_Config_V2, XML_RA_Adapter_Config_V2>(
        "AdapterInfo", &VX_Adapter_GetConfig::AdapterConfig, &VX_Adapter_GetConfig::Count),
};

// HX_AdapterMute
inline constexpr Function kHX_AdapterMute{
    "HX_AdapterMute",
    &XML_RA_FuncData::HX_AdapterMute,
    Params{
        Param("AdapterID", &VX_AdapterMute::AdapterID),
    },
    Call<HX_AdapterMute>(&VX_AdapterMute::AdapterID),
    StatusOnly<VX_AdapterMute>(),
};

// HX_LocateArrayDevice
inline constexpr Function kHX_LocateArrayDevice{
    "HX_LocateArrayDevice",
    &XML_RA_FuncData::HX_LocateArrayDevice,
    Params{
        Param("AdapterID", &VX_LocateArrayDevice::AdapterID),
        Param("deviceType", &VX_LocateArrayDevice::deviceType),
        Param("deviceId", &VX_LocateArrayDevice::deviceId),
        Param("ledStatus", &VX_LocateArrayDevice::ledStatus),
    },
    Call<HX_LocateArrayDevice>(&VX_LocateArrayDevice::AdapterID, &VX_LocateArrayDevice::deviceType,
                               &VX_LocateArrayDevice::deviceId, &VX_LocateArrayDevice::ledStatus),
    StatusOnly<VX_LocateArrayDevice>(),
};
