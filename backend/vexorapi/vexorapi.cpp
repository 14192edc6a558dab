// The entry points: initialisation, shutdown and the processing of a request.
#include "vexorapi.h"

#include <cstring>

#include "heap_block.h"
#include "hxraid.h"
#include "log.h"  // IWYU pragma: keep (compared with vexorapi.h, as log.h says)
#include "uninitialized.h"
#include "vexorapi_parse.h"
#include "vexorapi_version.h"
#include "vx_cfg.h"
#include "vx_dbg.h"
#include "vxevent.h"
#include "xml_rapi_executor.h"
#include "xml_vxapi.h"

namespace {

// The result of the last HX_API_Initialize; 0 means success, also before the first.
constinit HX_U8 HX_API_InitializeRet = 0;

// The line that the message about a failed initialisation names; readers of logs search for it.
constexpr int kInitializeLine = 526;

// The parse context of one command, with the record that the parse makes.
struct Command : XMLElement {
    Command() { ResetElement(*this); }
    ~Command() { FreeRecord(*this); }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
};

// Copies the document to the caller's buffer. When it does not fit, the buffer holds the empty
// string and the request still counts as served, because its function has run.
void DeliverResult(XMLWR_Doc& doc, char* result, std::uint32_t size) {
    if (doc.CurPos >= size) {
        doc.Buf[doc.CurPos] = '\0';
        VX_DBG_TRACE("Buffer too small\n %s\n", doc.Buf);
        return;
    }
    XMLWR_StrCpy(&doc, result, size);
}

// Parses the command. Returns 0 when it is malformed.
int ParseCommand(const char* text, std::size_t length, XMLElement& elmt) {
    const GatheredTraces traces;
    return RunExpat(text, length, &elmt, elmt.Guard,
                    {RA_StartElement, RA_EndElement, RA_CharacterDataHandler,
                     DeclarationWatch<XMLElement>::Doctype});
}

// Runs the parsed request and delivers its result. Returns 1 when an executor took it.
int RunRequest(XMLElement& elmt, XMLWR_Doc& doc, char* result, std::uint32_t size) {
    XMLWR_Reset(doc);
    if (VX_XMLFunc_HX_RApi(&elmt, &doc) == 0) {
        XMLWR_Reset(doc);
        if (VX_XMLFunc_VX_Api(&elmt, &doc) == 0) return 0;
    }
    DeliverResult(doc, result, size);
    return 1;
}

}  // namespace

int vexorApi(const char* XMLCmd, char* XMLRet, std::uint32_t XMLRetLen) noexcept {
    if (XMLCmd == nullptr || XMLRet == nullptr) return 0;
    const std::size_t length = std::strlen(XMLCmd);
    if (length == 0 || XMLRetLen == 0) return 0;
    const auto doc = MakeBlock<XMLWR_Doc>();
    if (!doc) return 0;

    const RequestTraces traces;
    VX_Cfg_XmlWrapper cfg{};
    VX_CfgLoad(&cfg, "XmlWrapperLogConfig");
    if (cfg.InLogEnable != 0) VX_DBG_PrintFile(cfg.Filename, "XMLCmd = %s\n", XMLCmd);

    VEXOR_UNINITIALIZED Command command;
    XMLElement& elmt = command;
    if (ParseCommand(XMLCmd, length, elmt) == 0) return 0;

    XMLRet[0] = '\0';
    const int served = elmt.Ext != nullptr ? RunRequest(elmt, *doc, XMLRet, XMLRetLen) : 0;
    if (cfg.OutLogEnable != 0) VX_DBG_PrintFile(cfg.Filename, "XMLRet = %s\n", XMLRet);
    return served;
}

int vexorApiInit() noexcept {
    VX_EvInit();
    // Skipped only when the last initialisation of the controller library failed.
    if (HX_API_InitializeRet == HX_SUCCESS) VX_VER_INIT();
    HX_API_InitializeRet = HX_API_Initialize();
    if (HX_API_InitializeRet != HX_SUCCESS) {
        VX_DBG_TRACE("%s %d: HX_API_Initialize() Failed, RetVal = %d", "vexorapi", kInitializeLine,
                     HX_API_InitializeRet);
    }
    return 1;
}

int vexorApiShutdown() noexcept {
    HX_API_Finalize();
    VX_EvShutdown();
    return 1;
}
