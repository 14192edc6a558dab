// The parse of the configuration file: expat's callbacks, which find the requested section, and the
// section handlers, which read its attributes into the caller's record.
#pragma once

#include <expat.h>

#include <cstddef>
#include <cstdint>

#include "hxraid.h"
#include "vexorapi_expat.h"
#include "vexorapi_limits.h"

struct XMLWR_Doc;

inline constexpr std::size_t kCfgNameSize = 128;  // CfgName, its NUL included

/// The parse context of one read of the configuration file, expat's user data; initially all zero.
struct XMLElmtCfg {
    std::int32_t Depth;                        // elements open now; the sections stand at 1
    XML_StartElementHandler StartHandler;      // the section's, while inside of it, or null
    XML_EndElementHandler EndHandler;          // the section's, or null
    XML_CharacterDataHandler CharDataHandler;  // an extra one; no section sets it
    char CfgName[kCfgNameSize];                // the requested section; empty: none
    HX_U16 ArrayWidth;                         // unused here
    char DirName[kPathSize];                   // root.child.grandchild, NUL-terminated
    HX_U16 CharDataIndex;                      // bytes kept in CharDataBuf
    char CharDataBuf[kTextSize];               // the text since the last start element
    void* Ext;                                 // the caller's record
    HX_U16 DirNameLength;                      // strlen(DirName)
    HX_U16 LastDot;                            // the last dot in DirName, while that is known
    ParseGuard Guard;
};

/// Sets the requested section. A name that is too long for the field leaves it empty, since no
/// section has such a name.
void SetCfgName(XMLElmtCfg& elmt, const char* name);

void XMLCALL CFG_StartElement(void* userData, const XML_Char* name, const XML_Char** atts);
void XMLCALL CFG_EndElement(void* userData, const XML_Char* name);
void XMLCALL CFG_CharacterDataHandler(void* userData, const XML_Char* s, int len);

/// Installs the handlers of the section `name` when it is the requested one. Returns 1, or 0 with
/// the handlers unchanged.
int CFG_FuncElementDispatcher(void* userData, const XML_Char* name, const XML_Char** atts);

// The handlers of each section. A start handler (_SEH) zeroes the caller's record and fills it from
// the section's attributes; end handlers (_EEH) and writers (_Ret) have nothing to do.
void XMLCALL XML_EventLogConfig_SEH(void* userData, const XML_Char* name, const XML_Char** atts);
void XMLCALL XML_EventLogConfig_EEH(void* userData, const XML_Char* name);
void XML_EventLogConfig_Ret(XMLElmtCfg* XMLElmt, XMLWR_Doc* Doc);

void XMLCALL XML_XmlWrapperLogConfig_SEH(void* userData, const XML_Char* name,
                                         const XML_Char** atts);
void XMLCALL XML_XmlWrapperLogConfig_EEH(void* userData, const XML_Char* name);
void XML_XmlWrapperLogConfig_Ret(XMLElmtCfg* XMLElmt, XMLWR_Doc* Doc);

void XMLCALL XML_DebugLogConfig_SEH(void* userData, const XML_Char* name, const XML_Char** atts);
void XMLCALL XML_DebugLogConfig_EEH(void* userData, const XML_Char* name);
void XML_DebugLogConfig_Ret(XMLElmtCfg* XMLElmt, XMLWR_Doc* Doc);
