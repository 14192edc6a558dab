// The functions of the library's interface itself and of the adapters: for each its rows, then the
// names of its handlers and its result writer.
#pragma once

#include "xml_rapi_function.h"

// HX_API_Version: the one function whose RetVal is a text.
inline constexpr auto kHX_API_Version = MakeFunction(
    "HX_API_Version", &XML_RA_FuncData::HX_API_Version, Params<VX_API_Version>(),
    [](VX_API_Version& record) {
        const char* const text = HX_API_Version();
        if (text != nullptr) CutText(record.RetVal, text, std::strlen(text));
        return true;
    },
    Result<VX_API_Version>(Bare("RetVal", &VX_API_Version::RetVal)));

inline void XML_HX_API_Version_SEH(void*, const XML_Char*, const XML_Char** atts) {
    StartParameter(atts);
}
inline void XML_HX_API_Version_EEH(void* userData, const XML_Char* name) {
    EndParameter<kHX_API_Version>(userData, name);
}
inline void XML_HX_API_Version_Ret(XMLElement* elmt, XMLWR_Doc* doc) {
    WriteResult<kHX_API_Version>(elmt, doc);
}

// HX_Adapter_GetCount: RetVal is the number of adapters.
inline constexpr auto kHX_Adapter_GetCount =
    MakeFunction("HX_Adapter_GetCount", &XML_RA_FuncData::HX_Adapter_GetCount,
                 Params<VX_Adapter_GetCount>(), Call<HX_Adapter_GetCount, VX_Adapter_GetCount>(),
                 Result<VX_Adapter_GetCount>(Col("RetVal", kU8, &VX_Adapter_GetCount::RetVal)));

inline void XML_HX_Adapter_GetCount_SEH(void*, const XML_Char*, const XML_Char** atts) {
    StartParameter(atts);
}
inline void XML_HX_Adapter_GetCount_EEH(void* userData, const XML_Char* name) {
    EndParameter<kHX_Adapter_GetCount>(userData, name);
}
inline void XML_HX_Adapter_GetCount_Ret(XMLElement* elmt, XMLWR_Doc* doc) {
    WriteResult<kHX_Adapter_GetCount>(elmt, doc);
}

// HX_Adapter_GetInfo: one adapter, or all of them packed in adapter order.
inline constexpr auto kHX_Adapter_GetInfo = MakeFunction(
    "HX_Adapter_GetInfo", &XML_RA_FuncData::HX_Adapter_GetInfo,
    Params<VX_Adapter_GetInfo>(Param("AdapterID", &VX_Adapter_GetInfo::AdapterID)),
    EachAdapter(&VX_Adapter_GetInfo::AdapterInfo, Items::FollowEachOther,
                [](VX_Adapter_GetInfo&, HX_U8 adapter, HX_U8* items, Adapter_Info* info) {
                    return HX_Adapter_GetInfo(adapter, items, info);
                }),
    Result<VX_Adapter_GetInfo>(Col("RetVal", kU8, &VX_Adapter_GetInfo::RetVal),
                               Col("Count", kU8, &VX_Adapter_GetInfo::Count)),
    Records<XML_RA_Adapter_Info>("AdapterInfo", &VX_Adapter_GetInfo::AdapterInfo,
                                 &VX_Adapter_GetInfo::Count));

inline void XML_HX_Adapter_GetInfo_SEH(void*, const XML_Char*, const XML_Char** atts) {
    StartParameter(atts);
}
inline void XML_HX_Adapter_GetInfo_EEH(void* userData, const XML_Char* name) {
    EndParameter<kHX_Adapter_GetInfo>(userData, name);
}
inline void XML_HX_Adapter_GetInfo_Ret(XMLElement* elmt, XMLWR_Doc* doc) {
    WriteResult<kHX_Adapter_GetInfo>(elmt, doc);
}
