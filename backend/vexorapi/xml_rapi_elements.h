// Typed elements, written piece by piece through the document writer.
#pragma once

#include <cstddef>

#include "XMLWriter.h"

/// Writes one scalar element on a line of its own; `fmt` formats the value, at most 511 bytes of
/// it. Returns 1.
[[gnu::format(printf, 4, 5)]] int XML_RA_ElmtNonArrayData(XMLWR_Doc* doc, const char* elmt,
                                                          const char* type, const char* fmt, ...);

/// Opens an array element of `width` items; the caller writes them and closes it. Returns 1.
int XML_RA_ElmtStartArrayData(XMLWR_Doc* doc, const char* elmt, const char* type,
                              std::size_t width);
