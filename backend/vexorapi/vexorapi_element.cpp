// The expat run that commands and the configuration file share, and the attribute helpers.
#include "vexorapi_element.h"

#include <sys/random.h>

#include <climits>

namespace {

// The seed of expat's hash tables, drawn once per process. Left to itself expat asks the kernel
// again for every parser.
constinit unsigned long hash_salt = 0;

void SaltHashes(XML_Parser parser) {
    if (hash_salt == 0 &&
        getrandom(&hash_salt, sizeof hash_salt, GRND_NONBLOCK) != sizeof hash_salt) {
        hash_salt = 0;  // no entropy yet: expat finds its own salt, and the next run asks again
    }
    if (hash_salt != 0) XML_SetHashSalt(parser, hash_salt);
}

}  // namespace

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

void PrintXMLAtts(const char** atts) {
    if (!VX_DBG_On()) return;
    VX_DBG_Printf("[Atts]");
    for (; *atts != nullptr; atts += 2) VX_DBG_Printf("%s:%s ", atts[0], atts[1]);
    VX_DBG_Printf("\n");
}

int RunExpat(const char* text, std::size_t length, void* context, ParseGuard& guard,
             const ParseHandlers& handlers) {
    if (length > INT_MAX) return 0;
    const XML_Parser parser = XML_ParserCreate(nullptr);
    if (parser == nullptr) return 0;
    guard = {parser, 0};
    SaltHashes(parser);
    XML_SetUserData(parser, context);
    XML_SetElementHandler(parser, handlers.start, handlers.end);
    XML_SetCharacterDataHandler(parser, handlers.text);
    XML_SetStartDoctypeDeclHandler(parser, handlers.doctype);
    const int ok = XML_Parse(parser, text, static_cast<int>(length), 1) == XML_STATUS_OK ? 1 : 0;
    if (!ok) {
        // The message has no line end.
        VX_DBG_TRACE("XML_Error:%s at line %d", XML_ErrorString(XML_GetErrorCode(parser)),
                     static_cast<int>(XML_GetCurrentLineNumber(parser)));
    }
    XML_ParserFree(parser);
    return ok;
}
