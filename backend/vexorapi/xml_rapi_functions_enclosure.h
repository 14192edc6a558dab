// The functions of the enclosures: the rows of each.
#pragma once

#include "xml_rapi_function.h"

// HX_ENC_GetEnclosureInfo
inline constexpr Function kHX_ENC_GetEnclosureInfo{
    "HX_ENC_GetEnclosureInfo",
    &XML_RA_FuncData::HX_ENC_GetEnclosureInfo,
    PagedParams<VX_ENC_GetEnclosureInfo>(),
    Pages<HX_ENC_GetEnclosureInfo, VX_ENC_GetEnclosureInfo>(),
    StatusOnly<VX_ENC_GetEnclosureInfo>(),
    Reply<kENC_Enclosure_Info_Reply, VX_ENC_GetEnclosureInfo>(),
};

// HX_ENC_GetElementInfo
inline constexpr Function kHX_ENC_GetElementInfo{
    "HX_ENC_GetElementInfo",
    &XML_RA_FuncData::HX_ENC_GetElementInfo,
    Params{
        Param("AdapterID", &VX_ENC_GetElementInfo::AdapterID),
        Param("ENC_ID", &VX_ENC_GetElementInfo::ENC_ID),
    },
    EachAdapter(&VX_ENC_GetElementInfo::ElementInfo, Items::FollowEachOther,
                [](VX_ENC_GetElementInfo& record, HX_U8 adapter, HX_U8* items,
                   EncElementType_Info* elements) {
                    return HX_ENC_GetElementInfo(adapter, record.ENC_ID, elements, items);
                }),
    Result{
        Col("RetVal", kU8, &VX_ENC_GetElementInfo::RetVal),
        Col("Count", kU8, &VX_ENC_GetElementInfo::Count),
    },
    Records<kENC_ElementInfo, XML_RA_ENC_ElementInfo>(
        "EncElementType_Info", &VX_ENC_GetElementInfo::ElementInfo, &VX_ENC_GetElementInfo::Count),
};

// HX_ENC_GetElementConfig
inline constexpr Function kHX_ENC_GetElementConfig{
    "HX_ENC_GetElementConfig",
    &XML_RA_FuncData::HX_ENC_GetElementConfig,
    Params{
        Param("AdapterID", &VX_ENC_GetElementConfig::AdapterID),
        Param("ENC_ID", &VX_ENC_GetElementConfig::ENC_ID),
    },
    EachAdapter(&VX_ENC_GetElementConfig::ElementCfg, Items::FollowEachOther,
                [](VX_ENC_GetElementConfig& record, HX_U8 adapter, HX_U8* items,
                   EncElement_Config* elements) {
                    return HX_ENC_GetElementConfig(adapter, record.ENC_ID, elements, items);
                }),
    Result{
        Col("RetVal", kU8, &VX_ENC_GetElementConfig::RetVal),
        Col("Count", kU8, &VX_ENC_GetElementConfig::Count),
    },
    Records<kENC_ElementConfig, XML_RA_ENC_ElementConfig>(
        "EncElement_Config", &VX_ENC_GetElementConfig::ElementCfg, &VX_ENC_GetElementConfig::Count),
};
