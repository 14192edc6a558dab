// The functions of the battery: the rows of each.
#pragma once

#include "xml_rapi_function.h"
#include "xml_rapi_wrappers.h"

// HX_BBU_GetInfo
inline constexpr Function kHX_BBU_GetInfo{
    "HX_BBU_GetInfo",
    &XML_RA_FuncData::HX_BBU_GetInfo,
    Params{
        Param("AdapterID", &VX_BBU_GetInfo::AdapterID),
    },
    Call<HX_BBU_GetInfo>(&VX_BBU_GetInfo::AdapterID, &VX_BBU_GetInfo::BbuInfo),
    Result{
        Col("RetVal", kU8, &VX_BBU_GetInfo::RetVal),
        Nest<kBBU_GetInfo>("BBU_Info", &VX_BBU_GetInfo::BbuInfo),
    },
};

// HX_BBU_SetThreshold: both calls are made and the second one's code is reported.
inline constexpr Function kHX_BBU_SetThreshold{
    "HX_BBU_SetThreshold",
    &XML_RA_FuncData::HX_BBU_SetThreshold,
    Params{
        Param("AdapterID", &VX_BBU_SetThreshold::AdapterID),
        Param("tempLowerBound", &VX_BBU_SetThreshold::tempLowerBound),
        Param("tempUpperBound", &VX_BBU_SetThreshold::tempUpperBound),
        Param("volLowerBound", &VX_BBU_SetThreshold::volLowerBound),
        Param("volUpperBound", &VX_BBU_SetThreshold::volUpperBound),
    },
    [](VX_BBU_SetThreshold& record) {
        HX_BBU_SetThreshold(record.AdapterID, HX_BBU_THRESHOLD_TEMPERATURE, record.tempLowerBound,
                            record.tempUpperBound);
        record.RetVal = HX_BBU_SetThreshold(record.AdapterID, HX_BBU_THRESHOLD_VOLTAGE,
                                            record.volLowerBound, record.volUpperBound);
        return true;
    },
    StatusOnly<VX_BBU_SetThreshold>(),
};

// HX_BBU_ChangePower
inline constexpr Function kHX_BBU_ChangePower{
    "HX_BBU_ChangePower",
    &XML_RA_FuncData::HX_BBU_ChangePower,
    Params{
        Param("AdapterID", &VX_BBU_ChangePower::AdapterID),
        Param("action", &VX_BBU_ChangePower::action),
    },
    Call<HX_BBU_ChangePower>(&VX_BBU_ChangePower::AdapterID, &VX_BBU_ChangePower::action),
    StatusOnly<VX_BBU_ChangePower>(),
};

// HX_BBU_SetStatus
inline constexpr Function kHX_BBU_SetStatus{
    "HX_BBU_SetStatus",
    &XML_RA_FuncData::HX_BBU_SetStatus,
    Params{
        Param("AdapterID", &VX_BBU_SetStatus::AdapterID),
        Param("status", &VX_BBU_SetStatus::status),
    },
    Call<HX_BBU_SetStatus>(&VX_BBU_SetStatus::AdapterID, &VX_BBU_SetStatus::status),
    StatusOnly<VX_BBU_SetStatus>(),
};

// HX_BBU_SetMaxCapacity
inline constexpr Function kHX_BBU_SetMaxCapacity{
    "HX_BBU_SetMaxCapacity",
    &XML_RA_FuncData::HX_BBU_SetMaxCapacity,
    Params{
        Param("maxCapacity", &VX_BBU_SetMaxCapacity::maxCapacity),
        Param("BBU_ID", &VX_BBU_SetMaxCapacity::BBU_ID),
    },
    Call<HX_BBU_SetMaxCapacity>(&VX_BBU_SetMaxCapacity::BBU_ID,
                                &VX_BBU_SetMaxCapacity::maxCapacity),
    StatusOnly<VX_BBU_SetMaxCapacity>(),
};

// HX_BBU_ActRelearn
inline constexpr Function kHX_BBU_ActRelearn{
    "HX_BBU_ActRelearn",
    &XML_RA_FuncData::HX_BBU_ActRelearn,
    Params{
        Param("AdapterID", &VX_BBU_ActRelearn::AdapterID),
    },
    Call<HX_BBU_ActRelearn>(&VX_BBU_ActRelearn::AdapterID),
    StatusOnly<VX_BBU_ActRelearn>(),
};
