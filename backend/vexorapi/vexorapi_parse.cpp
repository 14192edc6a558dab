// The parse of one command.
#include "vexorapi_parse.h"

#include <cstdlib>

#include "vexorapi_functions.h"
#include "xml_vxapi.h"

namespace {

void ClearHandlers(XMLElement& elmt) {
    elmt.StartHandler = nullptr;
    elmt.EndHandler = nullptr;
    elmt.CharDataHandler = nullptr;
}

// Allocates the record that the dispatcher has requested. Both kinds of record begin with the
// function's name, which fits its 64 characters: the tables check that.
void AllocateRecord(XMLElement& elmt, const XML_Char* name) {
    // Set even without memory for the record, because the password is parsed anyway.
    elmt.Guard.secret = elmt.ExtNeeds.secret;
    elmt.Ext = std::malloc(elmt.ExtNeeds.bytes);
    if (elmt.Ext == nullptr) return;
    std::memset(elmt.Ext, 0, elmt.ExtNeeds.zeroed);
    std::memcpy(elmt.Ext, name, std::strlen(name));
}

[[gnu::noinline]] void SelectFunction(XMLElement& elmt, const XML_Char* name,
                                      const XML_Char** atts) {
    ClearHandlers(elmt);
    if (RA_FuncElementDispatcher(&elmt, name, atts) != 0 ||
        VX_FuncElementDispatcher(&elmt, name, atts) != 0) {
        AllocateRecord(elmt, name);
    }
    if (elmt.Ext == nullptr) ClearHandlers(elmt);
}

}  // namespace

void ResetElement(XMLElement& elmt) {
    ClearHandlers(elmt);
    elmt.Depth = 0;
    elmt.ArrayWidth = 0;
    elmt.DirName[0] = '\0';
    elmt.DirNameLength = 0;
    elmt.LastDot = kNoDot;
    elmt.CharDataIndex = 0;
    elmt.CharDataBuf[0] = '\0';
    elmt.Ext = nullptr;
    elmt.ExtNeeds = {};
    elmt.Guard = {};
}

void FreeRecord(XMLElement& elmt) {
    if (elmt.Guard.secret) {
        if (elmt.Ext != nullptr) explicit_bzero(elmt.Ext, elmt.ExtNeeds.bytes);
        explicit_bzero(elmt.CharDataBuf, sizeof elmt.CharDataBuf);
    }
    std::free(elmt.Ext);
    elmt.Ext = nullptr;
}

void XMLCALL RA_StartElement(void* userData, const XML_Char* name, const XML_Char** atts) {
    XMLElement& elmt = *static_cast<XMLElement*>(userData);
    EnterElement(elmt, name);
    elmt.ArrayWidth = 0;
    if (elmt.Depth == 0 && StrCmpXMLAtts("type", "function", atts) == 0) {
        SelectFunction(elmt, name, atts);
    }
    if (elmt.Depth <= kHandledLevels && elmt.StartHandler != nullptr) {
        elmt.StartHandler(userData, name, atts);
    }
    ++elmt.Depth;
}

void XMLCALL RA_EndElement(void* userData, const XML_Char* name) {
    XMLElement& elmt = *static_cast<XMLElement*>(userData);
    LeaveElement(elmt);
    if (elmt.Depth == 0) {
        ClearHandlers(elmt);
    } else if (elmt.Depth <= kHandledLevels && elmt.EndHandler != nullptr) {
        elmt.EndHandler(userData, name);
    }
}

void XMLCALL RA_CharacterDataHandler(void* userData, const XML_Char* s, int len) {
    XMLElement& elmt = *static_cast<XMLElement*>(userData);
    CollectText(elmt, s, len);
    if (elmt.CharDataHandler != nullptr) elmt.CharDataHandler(userData, s, len);
}
