// The attribute helpers.
#include "vexorapi_element.h"

const char* GetXMLAtts(const char* name, const char** atts) {
    for (; *atts != nullptr; atts += 2) {
        if (std::strcmp(atts[0], name) == 0) return atts[1];
    }
    return nullptr;
}

int StrCmpXMLAtts(const char* name, const char* value, const char** atts) {
    const char* const found = GetXMLAtts(name, atts);
    return found == nullptr ? -1 : std::strcmp(found, value);
}

void TraceXMLAtts(const char** atts) {
    VX_DBG_Printf("[Atts]");
    for (; *atts != nullptr; atts += 2) VX_DBG_Printf("%s:%s ", atts[0], atts[1]);
    VX_DBG_Printf("\n");
}
