// The management functions: their table, the handlers that read their parameters, the executor and
// the writers of their results.
#include "xml_vxapi.h"

#include <cstring>

#include "vexorapi_version.h"
#include "vx_dbg.h"
#include "xml_rapi.h"

namespace {

enum class Function { ModuleGetInfo };

struct ManagementFunction {
    const char* name;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    RecordSize record;
    Function function;
};

template <class Record>
constexpr RecordSize WholeRecord() {
    constexpr std::size_t bytes = offsetof(XML_VX_FuncData, VX_Module_GetInfo) + sizeof(Record);
    return {bytes, bytes};
}

constexpr ManagementFunction kFunctions[] = {
    {"VX_Module_GetInfo", XML_VX_Module_GetInfo_SEH, XML_VX_Module_GetInfo_EEH,
     WholeRecord<VX_Module_GetInfo>(), Function::ModuleGetInfo},
};

const ManagementFunction* FindFunction(const char* name) {
    for (const ManagementFunction& row : kFunctions) {
        if (std::strcmp(name, row.name) == 0) return &row;
    }
    return nullptr;
}

XML_VX_FuncData& Request(XMLElement* elmt) { return *static_cast<XML_VX_FuncData*>(elmt->Ext); }

void StartFunction(XMLElement* elmt, XMLWR_Doc* doc) {
    XMLWR_ElmtStartPrintf(doc, 0, Request(elmt).FuncName, " %s=\"%s\"", "type", "function");
}

void EndFunction(XMLElement* elmt, XMLWR_Doc* doc) {
    XMLWR_ElmtEnd(doc, 0, Request(elmt).FuncName);
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

}  // namespace

int VX_FuncElementDispatcher(void* userData, const char* name, const char**) {
    const ManagementFunction* const row = FindFunction(name);
    if (row == nullptr) return 0;
    auto& elmt = *static_cast<XMLElement*>(userData);
    elmt.StartHandler = row->start;
    elmt.EndHandler = row->end;
    elmt.ExtSize = row->record;
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
    }
    return 1;
}

void XMLCALL XML_VX_Module_GetInfo_SEH(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL XML_VX_Module_GetInfo_EEH(void*, const XML_Char*) {}

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

int XML_VX_Ver_Info(XMLWR_Doc* Doc, const char* elmt, const VX_VER_INFO* records, HX_U32 count) {
    for (HX_U32 i = 0; i < count; ++i) {
        XMLWR_ElmtStartPrintf(Doc, 0, elmt, " %s=\"%s\"", "type", "struct VX_VER_INFO");
        XML_RA_ElmtNonArrayData(Doc, "Major", "U32", "%u", records[i].Major);
        XML_RA_ElmtNonArrayData(Doc, "Minor", "U32", "%u", records[i].Minor);
        XML_RA_ElmtNonArrayData(Doc, "OEM", "U32", "%u", records[i].OEM);
        XML_RA_ElmtNonArrayData(Doc, "Build", "U32", "%u", records[i].Build);
        XMLWR_ElmtEnd(Doc, 0, elmt);
    }
    return 1;
}
