// The document writer, piece by piece. It writes everything except records that fit as a whole,
// which the record rows (xml_rapi_rows.h) copy with the same bytes.
#include "XMLWriter.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "uninitialized.h"

namespace {

void AppendPiece(XMLWR_Doc* doc, const char* bytes, std::size_t length) {
    XMLWR_AddCurPos(doc, XMLWR_MemCpy(doc, bytes, static_cast<HX_U16>(length)));
}

// Formats into `piece`, truncated to its size, and returns the length of the result.
template <std::size_t n>
[[gnu::format(printf, 2, 0)]] std::size_t FormatPiece(char (&piece)[n], const char* fmt,
                                                      std::va_list args) {
    const int length = std::vsnprintf(piece, n, fmt, args);
    if (length < 0) return 0;
    return static_cast<std::size_t>(length) < n ? static_cast<std::size_t>(length) : n - 1;
}

void AppendTag(XMLWR_Doc* doc, std::initializer_list<std::string_view> parts) {
    VEXOR_UNINITIALIZED char piece[kPieceSize];
    const std::string_view tag = JoinText(piece, parts);
    AppendPiece(doc, tag.data(), tag.size());
}

}  // namespace

int XMLWR_Init(XMLWR_Doc* Doc) {
    if (Doc == nullptr) return 0;
    std::memset(Doc, 0, sizeof *Doc);
    return 1;
}

void XMLWR_Shutdown(XMLWR_Doc*) {}

int XMLWR_Sprintf(XMLWR_Doc* Doc, char*, const char* fmt, ...) {
    VEXOR_UNINITIALIZED char piece[kPieceSize];
    std::va_list args;
    va_start(args, fmt);
    const std::size_t length = FormatPiece(piece, fmt, args);
    va_end(args);
    return XMLWR_MemCpy(Doc, piece, static_cast<HX_U16>(length));
}

int XMLWR_MemCpy(XMLWR_Doc* Doc, const char* buf, HX_U16 Len) {
    if (Len > kDocCapacity - Doc->CurPos) return 0;
    std::memcpy(Doc->Buf + Doc->CurPos, buf, Len);
    return Len;
}

void XMLWR_AddCurPos(XMLWR_Doc* Doc, int pos) {
    if (pos != -1) Doc->CurPos += static_cast<std::uint32_t>(pos);
}

void XMLWR_PrintTabs(XMLWR_Doc* Doc) {
    for (int level = 0; level < Doc->Depth; ++level) AppendPiece(Doc, "  ", 2);
}

void XMLWR_PrintNewLine(XMLWR_Doc* Doc) { AppendPiece(Doc, "\n", 1); }

int XMLWR_ElmtStartPrintf(XMLWR_Doc* Doc, HX_U16 Flags, const char* Name, const char* fmt, ...) {
    VEXOR_UNINITIALIZED char attributes[kAttributeSize];
    std::va_list args;
    va_start(args, fmt);
    const std::size_t length = FormatPiece(attributes, fmt, args);
    va_end(args);
    StartElement(Doc, Flags, Name, {attributes, length});
    return 1;
}

void StartElement(XMLWR_Doc* Doc, HX_U16 Flags, const char* Name, std::string_view attributes) {
    XMLWR_PrintTabs(Doc);
    AppendTag(Doc, {"<", Name});
    AppendPiece(Doc, attributes.data(), std::min(attributes.size(), kAttributeSize - 1));
    AppendPiece(Doc, ">", 1);
    ++Doc->Depth;
    if ((Flags & kEmptyElement) != 0) {
        XMLWR_ElmtEnd(Doc, kNoIndent, Name);
    } else if ((Flags & kNoNewLine) == 0) {
        XMLWR_PrintNewLine(Doc);
    }
}

int XMLWR_ElmtCharData(XMLWR_Doc* Doc, HX_U16 Flags, const char* fmt, ...) {
    VEXOR_UNINITIALIZED char text[kAttributeSize];
    std::va_list args;
    va_start(args, fmt);
    const std::size_t length = FormatPiece(text, fmt, args);
    va_end(args);
    PutCharData(Doc, Flags, {text, length});
    return 1;
}

void PutCharData(XMLWR_Doc* Doc, HX_U16 Flags, std::string_view text) {
    if ((Flags & kNoIndent) == 0) XMLWR_PrintTabs(Doc);
    AppendPiece(Doc, text.data(), std::min(text.size(), kAttributeSize - 1));
    if ((Flags & kNoNewLine) == 0) XMLWR_PrintNewLine(Doc);
}

int XMLWR_ElmtEnd(XMLWR_Doc* Doc, HX_U16 Flags, const char* Name) {
    --Doc->Depth;
    if (Doc->Depth < 0) return 0;
    if ((Flags & kNoIndent) == 0) XMLWR_PrintTabs(Doc);
    AppendTag(Doc, {"</", Name, ">\n"});
    return 1;
}

std::uint32_t XMLWR_StrCpy(const XMLWR_Doc* Doc, char* TgtBuf, std::uint32_t TgtSize) {
    if (TgtSize == 0) return 0;
    if (Doc->CurPos == 0 || Doc->CurPos > TgtSize) {
        TgtBuf[0] = '\0';
        return 0;
    }
    const std::uint32_t count = Doc->CurPos - 1;
    std::memcpy(TgtBuf, Doc->Buf, count);
    TgtBuf[count] = '\0';
    return count;
}
