// The document writer that every result goes through.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "hxraid.h"

inline constexpr std::size_t kDocSize = 524288;  // bytes of Buf
inline constexpr std::size_t kDocCapacity =
    kDocSize - 1;  // the text's limit; a NUL always fits behind it

/// One result document. It grows at the cursor and holds at most kDocCapacity bytes: a piece that
/// would pass them is dropped whole, silently, and later, shorter pieces are still written.
struct XMLWR_Doc {
    std::int16_t Depth;    // open elements; two blanks of indentation for each
    std::uint32_t CurPos;  // bytes written so far
    char Buf[kDocSize];    // the text; undefined from CurPos on while it is written
};

// Flags of the element functions.
inline constexpr HX_U16 kEmptyElement = 1;  // start: close the element at once, on the same line
inline constexpr HX_U16 kNoIndent = 2;      // text, end: continue the current line
inline constexpr HX_U16 kNoNewLine = 4;     // start, text: no line end behind it

// The sizes of the local buffers for formatting; a longer piece is truncated.
inline constexpr std::size_t kPieceSize = 1024;
inline constexpr std::size_t kAttributeSize = 512;  // attribute text, character data

/// Concatenates the parts in `room`, truncated like a formatted text, with space for a NUL. Faster
/// than formatting, which would be the largest cost of writing a tag.
template <std::size_t n>
std::string_view JoinText(char (&room)[n], std::initializer_list<std::string_view> parts) {
    std::size_t length = 0;
    for (const std::string_view part : parts) {
        const std::size_t kept = std::min(part.size(), n - 1 - length);
        std::memcpy(room + length, part.data(), kept);
        length += kept;
    }
    return {room, length};
}

/// Empties the document and fills all of it with zero bytes. Returns 1, or 0 when `Doc` is null.
int XMLWR_Init(XMLWR_Doc* Doc);

/// Empties the document without touching its text, which nothing reads beyond CurPos.
inline void XMLWR_Reset(XMLWR_Doc& Doc) {
    Doc.Depth = 0;
    Doc.CurPos = 0;
}

/// Does nothing; the counterpart of XMLWR_Init.
void XMLWR_Shutdown(XMLWR_Doc* Doc);

/// Formats one piece and appends it at the cursor without moving it; `buf` is ignored.
/// Returns what XMLWR_MemCpy returns.
[[gnu::format(printf, 3, 4)]] int XMLWR_Sprintf(XMLWR_Doc* Doc, char* buf, const char* fmt, ...);

/// Appends `Len` bytes at the cursor without moving it.
/// Returns `Len`, or 0 with nothing written when they would pass byte 524287.
int XMLWR_MemCpy(XMLWR_Doc* Doc, const char* buf, HX_U16 Len);

/// Moves the cursor by `pos` bytes, unless that is -1.
void XMLWR_AddCurPos(XMLWR_Doc* Doc, int pos);

/// Appends two blanks per open element, each pair as a separate piece.
void XMLWR_PrintTabs(XMLWR_Doc* Doc);

/// Appends a line end.
void XMLWR_PrintNewLine(XMLWR_Doc* Doc);

/// Opens an element; `fmt` gives its attribute text, which begins with a blank (" %s=\"%s\"").
/// Flags: kEmptyElement, kNoNewLine. Returns 1.
[[gnu::format(printf, 4, 5)]] int XMLWR_ElmtStartPrintf(XMLWR_Doc* Doc, HX_U16 Flags,
                                                        const char* Name, const char* fmt, ...);

/// Appends character data; nothing is escaped. Flags: kNoIndent, kNoNewLine. Returns 1.
[[gnu::format(printf, 3, 4)]] int XMLWR_ElmtCharData(XMLWR_Doc* Doc, HX_U16 Flags, const char* fmt,
                                                     ...);

/// XMLWR_ElmtStartPrintf and XMLWR_ElmtCharData with a literal text, truncated like a formatted
/// one.
void StartElement(XMLWR_Doc* Doc, HX_U16 Flags, const char* Name, std::string_view attributes);
void PutCharData(XMLWR_Doc* Doc, HX_U16 Flags, std::string_view text);

/// Closes an element; the end tag always ends its line. Flags: kNoIndent.
/// Returns 1, or 0 with nothing written when no element is open (Depth is then negative).
int XMLWR_ElmtEnd(XMLWR_Doc* Doc, HX_U16 Flags, const char* Name);

/// Copies the document without its last byte (its final line end) and a NUL to `TgtBuf`.
///
/// Returns the number of bytes copied before the NUL. A document that is empty, or longer than
/// `TgtSize`, leaves the empty string and returns 0: the count must never wrap or pass the target.
std::uint32_t XMLWR_StrCpy(const XMLWR_Doc* Doc, char* TgtBuf, std::uint32_t TgtSize);
