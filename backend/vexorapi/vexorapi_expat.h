// One run of expat over a whole text, shared by commands and the configuration file.
#pragma once

#include <expat.h>

#include <cstddef>
#include <cstdint>

#include "vexorapi_limits.h"

/// Watches over one expat run.
struct ParseGuard {
    XML_Parser parser;           // the run's parser
    std::uint32_t declarations;  // seen so far
    bool secret;                 // the text holds a password: no copy of it may stay in memory
};

/// The callbacks of one expat run.
struct ParseHandlers {
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    XML_CharacterDataHandler text;
    XML_StartDoctypeDeclHandler doctype;
};

/// Parses `length` bytes as a whole document with `context` as the handlers' user data.
///
/// Returns 1, or 0 when the text is not well-formed, declares too much, is longer than expat takes
/// or no parser can be made. expat's error is written to the debug log. Expat's copies of the text
/// are wiped when it is secret or not well-formed: a malformed text may be a logon command whose
/// root element was not reached.
int RunExpat(const char* text, std::size_t length, void* context, ParseGuard& guard,
             const ParseHandlers& handlers);

/// The document-type callbacks of a run whose user data is a `Context` with a member `Guard`.
template <class Context>
struct DeclarationWatch {
    static void XMLCALL Doctype(void* context, const XML_Char*, const XML_Char*, const XML_Char*,
                                int) {
        const XML_Parser parser = static_cast<Context*>(context)->Guard.parser;
        XML_SetEntityDeclHandler(parser, Entity);
        XML_SetElementDeclHandler(parser, Element);
        XML_SetAttlistDeclHandler(parser, Attlist);
        XML_SetNotationDeclHandler(parser, Notation);
    }

private:
    static void Count(void* context) {
        ParseGuard& guard = static_cast<Context*>(context)->Guard;
        if (++guard.declarations > kMaxDeclarations) XML_StopParser(guard.parser, XML_FALSE);
    }
    static void XMLCALL Entity(void* context, const XML_Char*, int, const XML_Char*, int,
                               const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
        Count(context);
    }
    static void XMLCALL Element(void* context, const XML_Char*, XML_Content* model) {
        // The content model is ours to free, with expat's own function.
        XML_FreeContentModel(static_cast<Context*>(context)->Guard.parser, model);
        Count(context);
    }
    static void XMLCALL Attlist(void* context, const XML_Char*, const XML_Char*, const XML_Char*,
                                const XML_Char*, int) {
        Count(context);
    }
    static void XMLCALL Notation(void* context, const XML_Char*, const XML_Char*, const XML_Char*,
                                 const XML_Char*) {
        Count(context);
    }
};
