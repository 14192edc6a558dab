// The management functions: what a command may ask of the library itself (module versions, the
// event store) rather than of the controller.
#pragma once

#include <cstddef>

#include "XMLWriter.h"
#include "hxraid.h"
#include "vexorapi_element.h"

/// A module's version.
struct VX_VER_INFO {
    HX_U32 Major;
    HX_U32 Minor;
    HX_U32 OEM;
    HX_U32 Build;
};

struct VX_Module_GetInfo {
    HX_U8 RetVal;  // stays 0
    HX_U32 reserv;
    VX_VER_INFO product;
    VX_VER_INFO php_vexorapi;
    VX_VER_INFO vexorapi;
    VX_VER_INFO hxraidsvc;
};

/// The record of one request of a management function. Only as much of it exists as the function
/// needs, so it is never copied or cleared as a whole.
struct XML_VX_FuncData {
    char FuncName[64];  // selects the member below
    union {
        ::VX_Module_GetInfo VX_Module_GetInfo;
    };
};

/// Selects a management function for the root element `name` (compared whole, case-sensitive).
///
/// Returns 1 with its handlers and its record's size stored in the XMLElement at `userData`, or 0 with nothing changed.
int VX_FuncElementDispatcher(void* userData, const char* name, const char** atts);

/// Carries out the request in `XMLElmt->Ext` and writes its result to `Doc`, which is empty.
/// Returns 1, or 0 with nothing written when its FuncName is no management function.
int VX_XMLFunc_VX_Api(XMLElement* XMLElmt, XMLWR_Doc* Doc);

// The handlers of the functions' elements.
void XMLCALL XML_VX_Module_GetInfo_SEH(void* userData, const XML_Char* name, const XML_Char** atts);
void XMLCALL XML_VX_Module_GetInfo_EEH(void* userData, const XML_Char* name);

// The result writers: each writes one whole function element. They return 1.
int XML_VX_Module_GetInfo_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc);

/// Writes `count` version elements called `elmt`. Returns 1.
int XML_VX_Ver_Info(XMLWR_Doc* Doc, const char* elmt, const VX_VER_INFO* records, HX_U32 count);
