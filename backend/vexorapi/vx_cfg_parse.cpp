// The sections of the configuration file, and how their attributes are read into the caller's
// record.
#include "vx_cfg_parse.h"

#include <cstring>
#include <iterator>
#include <tuple>

#include "XMLWriter_scan.h"
#include "vexorapi_element.h"
#include "vx_cfg.h"
#include "vx_dbg.h"

namespace {

// An attribute of a section and the field that it fills; the field's type chooses the conversion.
template <class R, class T>
struct Setting {
    const char* name;
    T R::*field;
};

template <class R, class T>
consteval Setting<R, T> Attribute(const char* name, T R::*field) {
    return {name, field};
}

constexpr std::tuple kEventLogConfig{
    Attribute("LogEnable", &VX_Cfg_EventLog::LogEnable),
    Attribute("MaxNumOfEvent", &VX_Cfg_EventLog::MaxNumOfEvent),
    Attribute("Filename", &VX_Cfg_EventLog::Filename),
};
constexpr std::tuple kXmlWrapperLogConfig{
    Attribute("InLogEnable", &VX_Cfg_XmlWrapper::InLogEnable),
    Attribute("OutLogEnable", &VX_Cfg_XmlWrapper::OutLogEnable),
    Attribute("Filename", &VX_Cfg_XmlWrapper::Filename),
};
constexpr std::tuple kDebugLogConfig{
    Attribute("LogEnable", &VX_Cfg_EventLog::LogEnable),
    Attribute("Filename", &VX_Cfg_EventLog::Filename),
};

struct Section {
    const char* name;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
};
constexpr Section kSections[] = {
    {"EventLogConfig", XML_EventLogConfig_SEH, XML_EventLogConfig_EEH},
    {"XmlWrapperLogConfig", XML_XmlWrapperLogConfig_SEH, XML_XmlWrapperLogConfig_EEH},
    {"DebugLogConfig", XML_DebugLogConfig_SEH, XML_DebugLogConfig_EEH},
};
static_assert(std::size(kSections) == 3);

// A number: the low bits of the first one in the text, 0 when the text holds no digit.
template <class T>
void Store(const char*, const char* value, T& field) {
    HX_U32 number = 0;
    XMLWR_CharDataToDec32(&value, &number);
    field = static_cast<T>(number);
}

// A path. If it is too long for its field, it counts as absent, because a truncated path would name
// another file.
template <std::size_t size>
void Store(const char* name, const char* value, char (&field)[size]) {
    const std::size_t length = std::strlen(value);
    if (length >= size) return;
    std::memcpy(field, value, length + 1);
    VX_DBG_TRACE("%s %s\n", name, value);
}

// The record is zeroed first, so that of two sections of the same name the later one wins, with 0
// for the attributes that it lacks.
template <class R, class... T>
void ReadSection(void* userData, const XML_Char** atts,
                 const std::tuple<Setting<R, T>...>& settings) {
    R& record = *static_cast<R*>(static_cast<XMLElmtCfg*>(userData)->Ext);
    std::memset(&record, 0, sizeof record);
    const auto read = [&](const auto& setting) {
        const char* const value = GetXMLAtts(setting.name, atts);
        if (value != nullptr) Store(setting.name, value, record.*setting.field);
    };
    std::apply([&](const auto&... setting) { (read(setting), ...); }, settings);
}

void ClearHandlers(XMLElmtCfg& elmt) {
    elmt.StartHandler = nullptr;
    elmt.EndHandler = nullptr;
    elmt.CharDataHandler = nullptr;
}

}  // namespace

void SetCfgName(XMLElmtCfg& elmt, const char* name) {
    std::memset(elmt.CfgName, 0, sizeof elmt.CfgName);
    const std::size_t length = std::strlen(name);
    if (length < sizeof elmt.CfgName) std::memcpy(elmt.CfgName, name, length);
}

void XMLCALL CFG_StartElement(void* userData, const XML_Char* name, const XML_Char** atts) {
    XMLElmtCfg& elmt = *static_cast<XMLElmtCfg*>(userData);
    EnterElement(elmt, name);
    if (elmt.Depth == 1 && StrCmpXMLAtts("type", "config", atts) == 0) {
        ClearHandlers(elmt);
        CFG_FuncElementDispatcher(&elmt, name, atts);
    }
    // An element within a section runs the section's handler again, with its own attributes.
    if ((elmt.Depth == 1 || elmt.Depth == 2) && elmt.StartHandler != nullptr) {
        elmt.StartHandler(&elmt, name, atts);
    }
    ++elmt.Depth;
}

void XMLCALL CFG_EndElement(void* userData, const XML_Char* name) {
    XMLElmtCfg& elmt = *static_cast<XMLElmtCfg*>(userData);
    LeaveElement(elmt);
    if (elmt.Depth <= 1) {
        ClearHandlers(elmt);
    } else if (elmt.Depth == 2 && elmt.EndHandler != nullptr) {
        elmt.EndHandler(&elmt, name);
    }
}

void XMLCALL CFG_CharacterDataHandler(void* userData, const XML_Char* s, int len) {
    XMLElmtCfg& elmt = *static_cast<XMLElmtCfg*>(userData);
    CollectText(elmt, s, len);
    if (elmt.CharDataHandler != nullptr) elmt.CharDataHandler(&elmt, s, len);
}

int CFG_FuncElementDispatcher(void* userData, const XML_Char* name, const XML_Char**) {
    XMLElmtCfg& elmt = *static_cast<XMLElmtCfg*>(userData);
    if (std::strcmp(name, elmt.CfgName) != 0) return 0;
    for (const Section& section : kSections) {
        if (std::strcmp(name, section.name) != 0) continue;
        elmt.StartHandler = section.start;
        elmt.EndHandler = section.end;
        return 1;
    }
    return 0;
}

void XMLCALL XML_EventLogConfig_SEH(void* userData, const XML_Char*, const XML_Char** atts) {
    ReadSection(userData, atts, kEventLogConfig);
}
void XMLCALL XML_EventLogConfig_EEH(void*, const XML_Char*) {}
void XML_EventLogConfig_Ret(XMLElmtCfg*, XMLWR_Doc*) {}

void XMLCALL XML_XmlWrapperLogConfig_SEH(void* userData, const XML_Char*, const XML_Char** atts) {
    ReadSection(userData, atts, kXmlWrapperLogConfig);
}
void XMLCALL XML_XmlWrapperLogConfig_EEH(void*, const XML_Char*) {}
void XML_XmlWrapperLogConfig_Ret(XMLElmtCfg*, XMLWR_Doc*) {}

void XMLCALL XML_DebugLogConfig_SEH(void* userData, const XML_Char*, const XML_Char** atts) {
    ReadSection(userData, atts, kDebugLogConfig);
}
void XMLCALL XML_DebugLogConfig_EEH(void*, const XML_Char*) {}
void XML_DebugLogConfig_Ret(XMLElmtCfg*, XMLWR_Doc*) {}
