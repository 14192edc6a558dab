// The management functions: their table, the handlers that read their parameters, the executor and
// the writers of their results.
#include "xml_vxapi.h"

#include <algorithm>
#include <cstring>

#include "XMLWriter_scan.h"
#include "vexorapi_version.h"
#include "vx_dbg.h"
#include "vxevent.h"
#include "xml_rapi_elements.h"
#include "xml_rapi_text.h"
#include "xml_vxapi_record_rows.h"

namespace {

// ---- The functions ----------------------------------------------------------------------------

enum class Function { ModuleGetInfo, GetChangeCounters, GetEvents, Reset };

struct ManagementFunction {
    const char* name;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    RecordNeeds record;
    Function function;
};

constexpr std::size_t kFuncNameSize = sizeof(XML_VX_FuncData::FuncName);

constexpr RecordNeeds Whole(std::size_t record) {
    return {kFuncNameSize + record, kFuncNameSize + record};
}
static_assert(offsetof(XML_VX_FuncData, VX_HX_EVT_GetEvents) == kFuncNameSize);

// The events need not be cleared, because they are written before they are read.
constexpr RecordNeeds kGetEventsRecord{kFuncNameSize + sizeof(VX_HX_EVT_GetEvents),
                                       kFuncNameSize + offsetof(VX_HX_EVT_GetEvents, ev)};

constexpr ManagementFunction kFunctions[] = {
    {"VX_Module_GetInfo", XML_VX_Module_GetInfo_SEH, XML_VX_Module_GetInfo_EEH,
     Whole(sizeof(VX_Module_GetInfo)), Function::ModuleGetInfo},
    {"VX_HX_EVT_GetChangeCounters", XML_VX_HX_EVT_GetChangeCounters_SEH,
     XML_VX_HX_EVT_GetChangeCounters_EEH, Whole(sizeof(VX_HX_EVT_GetChangeCounters)),
     Function::GetChangeCounters},
    {"VX_HX_EVT_GetEvents", XML_VX_HX_EVT_GetEvents_SEH, XML_VX_HX_EVT_GetEvents_EEH,
     kGetEventsRecord, Function::GetEvents},
    {"VX_HX_EVT_Reset", XML_VX_HX_EVT_Reset_SEH, XML_VX_HX_EVT_Reset_EEH,
     Whole(sizeof(VX_HX_EVT_Reset)), Function::Reset},
};

const ManagementFunction* FindFunction(const char* name) {
    for (const ManagementFunction& row : kFunctions) {
        if (std::strcmp(name, row.name) == 0) return &row;
    }
    return nullptr;
}

// ---- The requests -------------------------------------------------------------------------------

XML_VX_FuncData& Request(XMLElement* elmt) { return *static_cast<XML_VX_FuncData*>(elmt->Ext); }

void StartFunction(XMLElement* elmt, XMLWR_Doc* doc) {
    XMLWR_ElmtStartPrintf(doc, 0, Request(elmt).FuncName, " %s=\"%s\"", "type", "function");
}

void EndFunction(XMLElement* elmt, XMLWR_Doc* doc) {
    XMLWR_ElmtEnd(doc, 0, Request(elmt).FuncName);
}

void ReadNumber(const XMLElement& elmt, HX_U32& field) {
    const char* cursor = elmt.CharDataBuf;
    HX_U32 number;
    if (XMLWR_CharDataToDec32(&cursor, &number) != -1) field = number;
}

VX_VER_INFO Version(int major, int minor, int oem, int build) {
    return {static_cast<HX_U32>(major), static_cast<HX_U32>(minor), static_cast<HX_U32>(oem),
            static_cast<HX_U32>(build)};
}

void ReadVersions(VX_Module_GetInfo& info) {
    getEventSvcVersion();
    info.product =
        Version(productVersionMajor, productVersionMinor, productVersionOEM, productVersionBuild);
    info.php_vexorapi = Version(php_vexorapiVersionMajor, php_vexorapiVersionMinor,
                                php_vexorapiVersionOEM, php_vexorapiVersionBuild);
    info.vexorapi = Version(vexorapiVersionMajor, vexorapiVersionMinor, vexorapiVersionOEM,
                            vexorapiVersionBuild);
    info.hxraidsvc = Version(eventSvcVersionMajor, eventSvcVersionMinor, eventSvcVersionOEM,
                             eventSvcVersionBuild);
}

// A document never holds more events than these, so no more are read. The shortest event element
// has 430 bytes; ten more are allowed, because small pieces of further elements still fit into the
// last bytes.
constexpr HX_U32 kMostListed = kDocCapacity / 430 + 10;
static_assert(kMostListed < kMaxEvents);

void ReadEvents(VX_HX_EVT_GetEvents& query) {
    query.nn = query.n;
    query.ss = query.s;
    query.ee = query.e;
    query.n = std::min(query.n, kMaxEvents);
    query.RetVal = VX_EvGetFirst(&query.n, &query.s, &query.e, query.ev, kMostListed);
}

// The number of events in the result: 0 for a query for the extent, although n holds their number.
HX_U32 ListedEvents(const VX_HX_EVT_GetEvents& query) {
    return query.nn == 0 ? 0 : std::min(query.n, kMostListed);
}

}  // namespace

int VX_FuncElementDispatcher(void* userData, const char* name, const char**) {
    const ManagementFunction* const row = FindFunction(name);
    if (row == nullptr) return 0;
    auto& elmt = *static_cast<XMLElement*>(userData);
    elmt.StartHandler = row->start;
    elmt.EndHandler = row->end;
    elmt.ExtNeeds = row->record;
    return 1;
}

int VX_XMLFunc_VX_Api(XMLElement* XMLElmt, XMLWR_Doc* Doc) {
    XML_VX_FuncData& request = Request(XMLElmt);
    VX_DBG_TRACE("pFD->FuncName=%s\n\n", request.FuncName);
    const ManagementFunction* const row = FindFunction(request.FuncName);
    if (row == nullptr) return 0;
    switch (row->function) {
        case Function::ModuleGetInfo:
            ReadVersions(request.VX_Module_GetInfo);
            XML_VX_Module_GetInfo_Ret(XMLElmt, Doc);
            break;
        case Function::GetChangeCounters: {
            VX_HX_EVT_GetChangeCounters& query = request.VX_HX_EVT_GetChangeCounters;
            query.RetVal = VX_EvGetChangeCounters(&query.ChangeCounters);
            XML_VX_HX_EVT_GetChangeCounters_Ret(XMLElmt, Doc);
            break;
        }
        case Function::GetEvents:
            ReadEvents(request.VX_HX_EVT_GetEvents);
            XML_VX_HX_EVT_GetEvents_Ret(XMLElmt, Doc);
            break;
        case Function::Reset:
            VX_EvFile_Reset();
            XML_VX_HX_EVT_Reset_Ret(XMLElmt, Doc);
            break;
    }
    return 1;
}

void XMLCALL XML_VX_Module_GetInfo_SEH(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL XML_VX_Module_GetInfo_EEH(void*, const XML_Char*) {}
void XMLCALL XML_VX_HX_EVT_GetChangeCounters_SEH(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL XML_VX_HX_EVT_GetChangeCounters_EEH(void*, const XML_Char*) {}
void XMLCALL XML_VX_HX_EVT_GetEvents_SEH(void*, const XML_Char*, const XML_Char**) {}

void XMLCALL XML_VX_HX_EVT_GetEvents_EEH(void* userData, const XML_Char* name) {
    const auto& elmt = *static_cast<XMLElement*>(userData);
    if (elmt.CharDataIndex == 0 || std::strcmp(name, "VX_HX_EVT_GetEvents") == 0) return;
    VX_HX_EVT_GetEvents& query = static_cast<XML_VX_FuncData*>(elmt.Ext)->VX_HX_EVT_GetEvents;
    if (std::strcmp(name, "n") == 0) {
        ReadNumber(elmt, query.n);
    } else if (std::strcmp(name, "s") == 0) {
        ReadNumber(elmt, query.s);
    } else if (std::strcmp(name, "e") == 0) {
        ReadNumber(elmt, query.e);
    } else if (std::strcmp(name, "Lang") == 0) {
        CutText(query.Lang, elmt.CharDataBuf, elmt.CharDataIndex);
        VX_DBG_TRACE("%s = %s\n", "Lang", elmt.CharDataBuf);
    }
}

void XMLCALL XML_VX_HX_EVT_Reset_SEH(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL XML_VX_HX_EVT_Reset_EEH(void*, const XML_Char*) {}

int XML_VX_Module_GetInfo_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc) {
    const VX_Module_GetInfo& info = Request(XMLElmt).VX_Module_GetInfo;
    StartFunction(XMLElmt, Doc);
    XML_RA_ElmtNonArrayData(Doc, "RetVal", "U8", "%u", info.RetVal);
    XML_VX_Ver_Info(Doc, "product", &info.product, 1);
    XML_VX_Ver_Info(Doc, "php_vexorapi", &info.php_vexorapi, 1);
    XML_VX_Ver_Info(Doc, "vexorapi", &info.vexorapi, 1);
    XML_VX_Ver_Info(Doc, "hxraidsvc", &info.hxraidsvc, 1);
    EndFunction(XMLElmt, Doc);
    return 1;
}

int XML_VX_HX_EVT_GetChangeCounters_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc) {
    const VX_HX_EVT_GetChangeCounters& query = Request(XMLElmt).VX_HX_EVT_GetChangeCounters;
    StartFunction(XMLElmt, Doc);
    XML_RA_ElmtNonArrayData(Doc, "RetVal", "U8", "%u", query.RetVal);
    XML_VX_HX_ChangeCounters(Doc, "ChangeCounters", &query.ChangeCounters, 1);
    EndFunction(XMLElmt, Doc);
    return 1;
}

int XML_VX_HX_EVT_GetEvents_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc) {
    const VX_HX_EVT_GetEvents& query = Request(XMLElmt).VX_HX_EVT_GetEvents;
    StartFunction(XMLElmt, Doc);
    XML_RA_ElmtNonArrayData(Doc, "RetVal", "U8", "%u", query.RetVal);
    XML_RA_ElmtNonArrayData(Doc, "n", "U32", "%u", query.n);
    XML_RA_ElmtNonArrayData(Doc, "s", "U32", "%u", query.s);
    XML_RA_ElmtNonArrayData(Doc, "e", "U32", "%u", query.e);
    XML_VX_HX_EVT_TranslateEvents(Doc, "Event", query.ev, ListedEvents(query));
    EndFunction(XMLElmt, Doc);
    return 1;
}

int XML_VX_HX_EVT_Reset_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc) {
    StartFunction(XMLElmt, Doc);
    EndFunction(XMLElmt, Doc);
    return 1;
}

int XML_VX_Ver_Info(XMLWR_Doc* Doc, const char* elmt, const VX_VER_INFO* records, HX_U32 count) {
    return WriteRecords<kVerInfo>(Doc, elmt, records, count);
}

int XML_VX_HX_ChangeCounters(XMLWR_Doc* Doc, const char* elmt, const VX_HX_ChangeCounters* records,
                             HX_U32 count) {
    return WriteRecords<kChangeCounters>(Doc, elmt, records, count);
}

int XML_VX_HX_EVT_TranslateEvents(XMLWR_Doc* Doc, const char* elmt, const Event* records,
                                  HX_U32 count) {
    return WriteRecords<kEvent>(Doc, elmt, records, count);
}
