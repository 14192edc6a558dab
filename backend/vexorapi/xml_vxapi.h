// The management functions, which the library itself answers instead of the controller: module
// versions and the event store.
#pragma once

#include "XMLWriter.h"
#include "hxraid.h"
#include "vexorapi_element.h"
#include "vxevent_file.h"

// A call lists at most this many events.
inline constexpr HX_U32 kMaxEvents = 2000;

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

struct VX_HX_EVT_GetChangeCounters {
    HX_U8 RetVal;  // 1, which is no status
    HX_U32 reserv;
    VX_HX_ChangeCounters ChangeCounters;
};

struct VX_HX_EVT_GetEvents {
    HX_U8 RetVal;  // 0 always
    HX_U32 reserv;
    HX_U32 n;              // events wanted; then returned
    HX_U32 s;              // store sequence number of the first, or kNewestEvents
    HX_U32 e;              // store sequence number of the last
    HX_U32 nn;             // n as requested
    HX_U32 ss;             // s as requested
    HX_U32 ee;             // e as requested
    char Lang[16];         // the caller's language tag, NUL-terminated; not used
    Event ev[kMaxEvents];  // filled up to n, or as far as the document can list them
};

struct VX_HX_EVT_Reset {
    HX_U8 RetVal;  // stays 0
};

/// The record of one request of a management function. Only as many bytes as the function needs are
/// allocated, so it is never copied or cleared as a whole.
struct XML_VX_FuncData {
    char FuncName[64];  // selects the member below
    union {
        ::VX_Module_GetInfo VX_Module_GetInfo;
        ::VX_HX_EVT_GetChangeCounters VX_HX_EVT_GetChangeCounters;
        ::VX_HX_EVT_GetEvents VX_HX_EVT_GetEvents;
        ::VX_HX_EVT_Reset VX_HX_EVT_Reset;
    };
};

/// Selects a management function for the root element `name` (compared whole, case-sensitive).
///
/// Returns 1 with its handlers and its record's size stored in the XMLElement at `userData`, or 0
/// with nothing changed.
int VX_FuncElementDispatcher(void* userData, const char* name, const char** atts);

/// Carries out the request in `XMLElmt->Ext` and writes its result to `Doc`, which is empty.
/// Returns 1, or 0 with nothing written when its FuncName is no management function.
int VX_XMLFunc_VX_Api(XMLElement* XMLElmt, XMLWR_Doc* Doc);

// The handlers of the functions' elements. Only events are asked for with parameters: the children
// "n", "s", "e" and "Lang". Children of the other functions are accepted and ignored.
void XMLCALL XML_VX_Module_GetInfo_SEH(void* userData, const XML_Char* name, const XML_Char** atts);
void XMLCALL XML_VX_Module_GetInfo_EEH(void* userData, const XML_Char* name);
void XMLCALL XML_VX_HX_EVT_GetChangeCounters_SEH(void* userData, const XML_Char* name,
                                                 const XML_Char** atts);
void XMLCALL XML_VX_HX_EVT_GetChangeCounters_EEH(void* userData, const XML_Char* name);
void XMLCALL XML_VX_HX_EVT_GetEvents_SEH(void* userData, const XML_Char* name,
                                         const XML_Char** atts);
void XMLCALL XML_VX_HX_EVT_GetEvents_EEH(void* userData, const XML_Char* name);
void XMLCALL XML_VX_HX_EVT_Reset_SEH(void* userData, const XML_Char* name, const XML_Char** atts);
void XMLCALL XML_VX_HX_EVT_Reset_EEH(void* userData, const XML_Char* name);

// The result writers: each writes one whole function element. They return 1.
int XML_VX_Module_GetInfo_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc);
int XML_VX_HX_EVT_GetChangeCounters_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc);
int XML_VX_HX_EVT_GetEvents_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc);
int XML_VX_HX_EVT_Reset_Ret(XMLElement* XMLElmt, XMLWR_Doc* Doc);

// The record writers: each writes `count` elements called `elmt`, one after the other. They
// return 1.
int XML_VX_Ver_Info(XMLWR_Doc* Doc, const char* elmt, const VX_VER_INFO* records, HX_U32 count);
int XML_VX_HX_ChangeCounters(XMLWR_Doc* Doc, const char* elmt, const VX_HX_ChangeCounters* records,
                             HX_U32 count);
int XML_VX_HX_EVT_TranslateEvents(XMLWR_Doc* Doc, const char* elmt, const Event* records,
                                  HX_U32 count);
