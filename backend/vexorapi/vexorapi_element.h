// The parse context of a command, the bookkeeping of path and text that it shares with the parse of
// the configuration file, and the helpers over expat's attribute list.
#pragma once

#include <expat.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "hxraid.h"
#include "vexorapi_expat.h"
#include "vexorapi_limits.h"
#include "vx_dbg.h"

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

// The bookkeeping that commands and the configuration file share. `Context` is XMLElement or a
// record with the same members for depth, path and text.

/// Appends the element's name to the path and empties the text. What does not fit is dropped.
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

/// Closes the element: decreases the depth, removes the last path component, logs the text.
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
