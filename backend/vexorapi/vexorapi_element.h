// The parse context of a command, what every expat run of the library has in common (path, text,
// limits), and the helpers over expat's attribute list.
#pragma once

#include <expat.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "hxraid.h"
#include "vx_dbg.h"

inline constexpr std::size_t kPathSize = 2048;  // DirName, its NUL included
inline constexpr std::size_t kTextSize = 2048;  // CharDataBuf, its NUL included

// A document type may declare this many items (entities, elements, attribute lists, notations).
// Chains of thousands of entities overflow the stack of older expats.
inline constexpr std::uint32_t kMaxDeclarations = 256;

/// Watches over one expat run.
struct ParseGuard {
    XML_Parser parser;           // the run's parser
    std::uint32_t declarations;  // seen so far
    bool secret;                 // the text holds a password: no copy of it may stay in memory
};

/// What a function needs of its record: how much is allocated, and how much of that is filled with
/// zeros, so that no request pays for the largest function's record; and whether it takes a
/// password, which is wiped when the request ends.
struct RecordNeeds {
    std::size_t bytes;
    std::size_t zeroed;
    bool secret = false;
};

/// The parse context of one command, expat's user data. ResetElement prepares it.
struct XMLElement {
    // Elements open now: 0 before the root. In a handler it is the element's level, 0 for the root.
    // 32 bits wide, because 65536 nested elements must not look like a root again.
    std::int32_t Depth;
    XML_StartElementHandler StartHandler;      // the function's, or null
    XML_EndElementHandler EndHandler;          // the function's, or null
    XML_CharacterDataHandler CharDataHandler;  // an extra one; no function sets it
    HX_U16 ArrayWidth;                         // cleared at every start element
    char DirName[kPathSize];                   // root.child.grandchild, NUL-terminated
    HX_U16 CharDataIndex;                      // bytes kept in CharDataBuf
    char CharDataBuf[kTextSize];               // the text since the last start element
    void* Ext;                                 // the function record, or null
    RecordNeeds ExtNeeds;                      // what the selected function needs of it
    HX_U16 DirNameLength;                      // strlen(DirName)
    ParseGuard Guard;
};

/// Returns the value of the first attribute called `name`, or null. `atts` is expat's list: name,
/// value, name, value, ..., null.
const char* GetXMLAtts(const char* name, const char** atts);

/// Returns strcmp of the attribute's value and `value` (0 when equal), -1 when there is none.
int StrCmpXMLAtts(const char* name, const char* value, const char** atts);

/// Writes the attribute list to the debug log.
void PrintXMLAtts(const char** atts);

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
/// or no parser can be made. An error that expat found is told in the debug log. The copies that
/// expat made of a secret text are wiped, and so are those of a text that is not well-formed, which
/// can be a secret one whose function was not reached.
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

// The bookkeeping that commands and the configuration file share. `Context` is XMLElement or a
// record with the same members for depth, path and text.

/// Appends the element to the path and starts its text. What does not fit is dropped.
template <class Context>
void EnterElement(Context& context, const XML_Char* name) {
    std::size_t length = context.DirNameLength;
    // Bounded on every append, not by the depth: siblings with a dot in their names lengthen the
    // path without any nesting, because only what follows the last dot is removed at their end.
    if (context.Depth > 0 && length < kPathSize - 1) context.DirName[length++] = '.';
    const std::size_t kept = strnlen(name, kPathSize - 1 - length);
    std::memcpy(context.DirName + length, name, kept);
    length += kept;
    context.DirName[length] = '\0';
    context.DirNameLength = static_cast<HX_U16>(length);
    context.CharDataIndex = 0;
    context.CharDataBuf[0] = '\0';
    VX_DBG_TRACE("Dir = %s\n", context.DirName);
}

/// Closes the element: its level is left, its path component removed, its text logged.
template <class Context>
void LeaveElement(Context& context) {
    --context.Depth;
    VX_DBG_TRACE("Dir = %s\n", context.DirName);
    if (context.Depth == 0) {
        context.DirName[0] = '\0';
        context.DirNameLength = 0;
    } else if (void* const dot = memrchr(context.DirName, '.', context.DirNameLength)) {
        char* const end = static_cast<char*>(dot);
        *end = '\0';
        context.DirNameLength = static_cast<HX_U16>(end - context.DirName);
    }
    if (context.CharDataIndex != 0) {
        VX_DBG_TRACE("[CD %d]:%s\n", context.CharDataIndex, context.CharDataBuf);
    }
}

/// Collects text. The first 2047 bytes are kept and always NUL-terminated; the index counts them.
template <class Context>
void CollectText(Context& context, const XML_Char* text, int length) {
    const std::size_t room = kTextSize - 1 - context.CharDataIndex;
    const std::size_t given = length < 0 ? 0 : static_cast<std::size_t>(length);
    const std::size_t kept = given < room ? given : room;
    char* const at = context.CharDataBuf + context.CharDataIndex;
    context.CharDataIndex = static_cast<HX_U16>(context.CharDataIndex + kept);
    at[kept] = '\0';
    // A single character comes often: expat passes every line end by itself.
    if (kept == 1) {
        *at = *text;
    } else {
        std::memcpy(at, text, kept);
    }
}
