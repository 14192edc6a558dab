// Typed elements.
#include "xml_rapi_elements.h"

#include <cstdarg>
#include <cstdio>

#include "uninitialized.h"

int XML_RA_ElmtNonArrayData(XMLWR_Doc* doc, const char* elmt, const char* type, const char* fmt,
                            ...) {
    VEXOR_UNINITIALIZED char value[kAttributeSize];
    std::va_list args;
    va_start(args, fmt);
    if (std::vsnprintf(value, sizeof value, fmt, args) < 0) value[0] = '\0';
    va_end(args);
    VEXOR_UNINITIALIZED char attributes[kAttributeSize];
    StartElement(doc, kNoNewLine, elmt, JoinText(attributes, {" type=\"", type, "\""}));
    PutCharData(doc, kNoIndent | kNoNewLine, value);
    XMLWR_ElmtEnd(doc, kNoIndent, elmt);
    return 1;
}

int XML_RA_ElmtStartArrayData(XMLWR_Doc* doc, const char* elmt, const char* type,
                              std::size_t width) {
    return XMLWR_ElmtStartPrintf(doc, 0, elmt, " %s=\"%s\" %s=\"%zu\"", "type", type, "width",
                                 width);
}
