// The management functions: their table, the handlers that read their parameters, the executor and
// the writers of their results.
#include "xml_vxapi.h"

#include <algorithm>
#include <cstring>

#include "vexorapi_version.h"
#include "vx_dbg.h"
#include "xml_rapi.h"
#include "xml_rapi_rows.h"
#include "xml_rapi_text.h"

namespace {

// ---- The functions ----------------------------------------------------------------------------

enum class Function { ModuleGetInfo, GetChangeCounters, GetEvents, Reset };

struct ManagementFunction {
    const char* name;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    RecordSize record;
    Function function;
};

constexpr std::size_t kFuncNameSize = sizeof(XML_VX_FuncData::FuncName);

constexpr RecordSize Whole(std::size_t record) {
    return {kFuncNameSize + record, kFuncNameSize + record};
}
static_assert(offsetof(XML_VX_FuncData, VX_HX_EVT_GetEvents) == kFuncNameSize);

// The events are written before they are read, so that they need not be cleared.
constexpr RecordSize kGetEventsRecord{kFuncNameSize + sizeof(VX_HX_EVT_GetEvents),
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

// ---- The records of the results -----------------------------------------------------------------

constexpr Record kVerInfo("struct VX_VER_INFO",  //
                          Col("Major", kU32, &VX_VER_INFO::Major),
                          Col("Minor", kU32, &VX_VER_INFO::Minor),
                          Col("OEM", kU32, &VX_VER_INFO::OEM),
                          Col("Build", kU32, &VX_VER_INFO::Build));

// Front ends read them in this order, which is not that of the file.
constexpr Record kChangeCounters("struct VX_HX_ChangeCounters",
                                 Col("Whatever_Change", kU32,
                                     &VX_HX_ChangeCounters::Whatever_Change),
                                 Col("Adapter_Change", kU32, &VX_HX_ChangeCounters::Adapter_Change),
                                 Col("LD_Change", kU32, &VX_HX_ChangeCounters::LD_Change),
                                 Col("HD_Change", kU32, &VX_HX_ChangeCounters::HD_Change),
                                 Col("PM_Change", kU32, &VX_HX_ChangeCounters::PM_Change),
                                 Col("Expander_Change", kU32,
                                     &VX_HX_ChangeCounters::Expander_Change),
                                 Col("MDD_Change", kU32, &VX_HX_ChangeCounters::MDD_Change),
                                 Col("BSL_Change", kU32, &VX_HX_ChangeCounters::BSL_Change),
                                 Col("SAS_Change", kU32, &VX_HX_ChangeCounters::SAS_Change),
                                 Col("ENCL_Change", kU32, &VX_HX_ChangeCounters::ENCL_Change),
                                 Col("BAT_Change", kU32, &VX_HX_ChangeCounters::BAT_Change),
                                 Col("FLASH_Change", kU32, &VX_HX_ChangeCounters::FLASH_Change),
                                 Col("CACHE_Change", kU32, &VX_HX_ChangeCounters::CACHE_Change),
                                 Col("MISC_Change", kU32, &VX_HX_ChangeCounters::MISC_Change),
                                 Col("ARRAY_Change", kU32, &VX_HX_ChangeCounters::ARRAY_Change));

// The sense data as far as it is valid: no element at all when there is none. Because its width is
// the event's, the whole element is this row's value.
struct SenseDataRow {
    using Of = Event;

    static HX_U32 Width(const Event& event) {
        return std::min<HX_U32>(event.SenseDataLength, sizeof event.SenseData);
    }

    constexpr void Head(LiteralSink&, int) const {}
    constexpr void Tail(LiteralSink&, int) const {}
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return kOpen<depth>.size() + kItems<depth>.size() + kClose<depth>.size() + 2 +
               sizeof(Event::SenseData) * 4 + kDigitSlack;
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const Event& event) const {
        if (event.SenseDataLength == 0) return at;
        const HX_U32 width = Width(event);
        at = PutDecimal(PutLiteral(at, kOpen<depth>), width);
        at = PutLiteral(at, kItems<depth>);
        for (HX_U32 i = 0; i < width; ++i) {
            at = PutDecimal(at, event.SenseData[i]);
            *at++ = ' ';
        }
        return PutLiteral(at - 1, kClose<depth>);
    }
    template <int depth>
    void WriteExact(XMLWR_Doc* doc, const Event& event) const {
        if (event.SenseDataLength == 0) return;
        const HX_U32 width = Width(event);
        XML_RA_ElmtStartArrayData(doc, "SenseData", "U8", width);
        XMLWR_PrintTabs(doc);
        for (HX_U32 i = 0; i < width; ++i) {
            XMLWR_ElmtCharData(doc, kNoIndent | kNoNewLine, i + 1 < width ? "%u " : "%u",
                               event.SenseData[i]);
        }
        XMLWR_PrintNewLine(doc);
        XMLWR_ElmtEnd(doc, 0, "SenseData");
    }

private:
    template <int depth>
    static constexpr auto kOpen = MakeLiteral([](LiteralSink& sink) {
        sink.Indent(depth);
        sink.Put("<SenseData type=\"U8\" width=\"");
    });
    template <int depth>
    static constexpr auto kItems = MakeLiteral([](LiteralSink& sink) {
        sink.Put("\">\n");
        sink.Indent(depth + 1);
    });
    template <int depth>
    static constexpr auto kClose = MakeLiteral([](LiteralSink& sink) {
        sink.Put("\n");
        sink.Indent(depth);
        sink.Put("</SenseData>\n");
    });
};

// The event's text, its line end included, rendered where it is to stand.
struct EventTextRow {
    using Of = Event;

    constexpr void Head(LiteralSink& sink, int depth) const {
        sink.Indent(depth);
        sink.Put("<Event type=\"string\">");
    }
    constexpr void Tail(LiteralSink& sink, int) const { sink.Put("</Event>\n"); }
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return kLongestEventText;
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const Event& event) const {
        return at + VX_HX_EVT_Sprintf(&event, at);
    }
    template <int depth>
    void WriteExact(XMLWR_Doc* doc, const Event& event) const {
        char text[kEventTextSize];
        VX_HX_EVT_Sprintf(&event, text);
        XML_RA_ElmtNonArrayData(doc, "Event", "string", "%s", text);
    }
};

// The controller's own sequence number is not told: events are counted by the store's.
constexpr Record kEvent("struct Event",  //
                        Col("Class", kU16, &Event::Class), Col("Code", kU16, &Event::Code),
                        Col("TimeStamp", kU32, &Event::TimeStamp),
                        Col("DeviceID", kU16, &Event::DeviceID),
                        Col("Severity", kU8, &Event::Severity),
                        Col("AdapterID", kU8, &Event::AdapterID),
                        Col("Params", kU32, &Event::Params),
                        Col("SenseDataLength", kU8, &Event::SenseDataLength), SenseDataRow{},
                        EventTextRow{});

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

void ReadEvents(VX_HX_EVT_GetEvents& query) {
    query.nn = query.n;
    query.ss = query.s;
    query.ee = query.e;
    query.n = std::min(query.n, kMaxEvents);
    query.RetVal = VX_EvGet(&query.n, &query.s, &query.e, query.ev);
}

// How many of the events are told: a query for the extent, which comes back with their number in n,
// lists none.
HX_U32 ListedEvents(const VX_HX_EVT_GetEvents& query) { return query.nn == 0 ? 0 : query.n; }

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
