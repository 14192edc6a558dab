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

/// XMLElement::LastDot when the position of the last dot is unknown and must be searched. No path
/// begins with a dot.
inline constexpr HX_U16 kNoDot = 0;

/// The needs of a function's record: the bytes to allocate and the bytes to zero, so that no
/// request pays for the largest function's record, and whether it takes a password, which is wiped
/// when the request ends.
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
    HX_U16 LastDot;                            // the last dot in DirName, while that is known
    ParseGuard Guard;
};

/// Returns the value of the first attribute called `name`, or null. `atts` is expat's list: name,
/// value, name, value, ..., null.
const char* GetXMLAtts(const char* name, const char** atts);

/// Returns strcmp of the attribute's value and `value` (0 when equal), -1 when there is none.
int StrCmpXMLAtts(const char* name, const char* value, const char** atts);

/// Writes the attribute list to the debug log, which is on.
void TraceXMLAtts(const char** atts);

/// Writes the attribute list to the debug log.
inline void PrintXMLAtts(const char** atts) {
    if (VX_DBG_Traces()) TraceXMLAtts(atts);
}

// The bookkeeping that commands and the configuration file share. `Context` is XMLElement or a
// record with the same members for depth, path and text.

// Copies `length` bytes, one to two words, as their first and their last word.
template <class Word>
[[gnu::always_inline]] inline void CopyEnds(char* to, const char* from, std::size_t length) {
    Word first;
    Word last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + length - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + length - sizeof last, &last, sizeof last);
}

/// Copies `length` bytes. Most names and texts of a command are short: in place they are copied in
/// fewer steps than a call of memcpy takes.
inline void CopyShort(char* to, const char* from, std::size_t length) {
    if (length == 1) {  // comes often: expat passes every line end by itself
        *to = *from;
    } else if (length > 16) {
        std::memcpy(to, from, length);
    } else if (length >= 8) {
        CopyEnds<std::uint64_t>(to, from, length);
    } else if (length >= 4) {
        CopyEnds<std::uint32_t>(to, from, length);
    } else if (length >= 2) {
        CopyEnds<std::uint16_t>(to, from, length);
    }
}

/// Appends the element's name to the path and empties the text. Text that does not fit is dropped.
template <class Context>
void EnterElement(Context& context, const XML_Char* name) {
    const XML_Char* end = strchrnul(name, '.');
    const bool dotted = *end != '\0';
    if (dotted) [[unlikely]]
        end += std::strlen(end);
    std::size_t length = context.DirNameLength;
    context.LastDot = kNoDot;
    // Bounded on every append, not by the depth: siblings with a dot in their names lengthen the
    // path without any nesting, because only what follows the last dot is removed at their end.
    if (context.Depth > 0 && length < kPathSize - 1) {
        if (!dotted) context.LastDot = static_cast<HX_U16>(length);
        context.DirName[length++] = '.';
    }
    const std::size_t room = kPathSize - 1 - length;
    const auto given = static_cast<std::size_t>(end - name);
    const std::size_t kept = given < room ? given : room;
    CopyShort(context.DirName + length, name, kept);
    length += kept;
    context.DirName[length] = '\0';
    context.DirNameLength = static_cast<HX_U16>(length);
    context.CharDataIndex = 0;
    context.CharDataBuf[0] = '\0';
    VX_DBG_TRACE("Dir = %s\n", context.DirName);
}

/// Cuts the path at its last dot; a path without one stays.
template <class Context>
void LeavePath(Context& context) {
    std::size_t end = context.LastDot;
    context.LastDot = kNoDot;
    if (end == kNoDot) [[unlikely]] {
        const void* const dot = memrchr(context.DirName, '.', context.DirNameLength);
        if (dot == nullptr) return;
        end = static_cast<std::size_t>(static_cast<const char*>(dot) - context.DirName);
    }
    context.DirName[end] = '\0';
    context.DirNameLength = static_cast<HX_U16>(end);
}

/// Logs the path and the text of the element that is being closed.
template <class Context>
[[gnu::cold, gnu::noinline]] void TraceLeft(const Context& context) {
    VX_DBG_TRACE("Dir = %s\n", context.DirName);
    if (context.CharDataIndex == 0) return;
    VX_DBG_TRACE("[CD %d]:%s\n", context.CharDataIndex, context.CharDataBuf);
}

/// Closes the element: decreases the depth, removes the last path component, logs path and text.
template <class Context>
void LeaveElement(Context& context) {
    --context.Depth;
    if (VX_DBG_Traces()) [[unlikely]]
        TraceLeft(context);
    if (context.Depth == 0) {
        context.DirName[0] = '\0';
        context.DirNameLength = 0;
        context.LastDot = kNoDot;
    } else {
        LeavePath(context);
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
    CopyShort(at, text, kept);
}
