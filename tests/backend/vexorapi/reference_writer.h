// The document writer once more, piece by piece, with vsnprintf and memcpy and nothing else, and
// three records spelt out call by call: the yardstick that the library's writer is held against.
// Plain on purpose. It shares the document's layout with the library and not a line of code.
#pragma once

#include <cstdint>

#include "XMLWriter.h"
#include "hxraid.h"

namespace reference {

int Init(XMLWR_Doc* doc);
[[gnu::format(printf, 3, 4)]] int Sprintf(XMLWR_Doc* doc, char* buf, const char* fmt, ...);
int MemCpy(XMLWR_Doc* doc, const char* buf, std::uint16_t length);
void AddCurPos(XMLWR_Doc* doc, int pos);
void PrintTabs(XMLWR_Doc* doc);
void PrintNewLine(XMLWR_Doc* doc);
[[gnu::format(printf, 4, 5)]] int ElmtStartPrintf(XMLWR_Doc* doc, std::uint16_t flags,
                                                  const char* name, const char* fmt, ...);
[[gnu::format(printf, 3, 4)]] int ElmtCharData(XMLWR_Doc* doc, std::uint16_t flags, const char* fmt,
                                               ...);
int ElmtEnd(XMLWR_Doc* doc, std::uint16_t flags, const char* name);

/// One scalar element on a line of its own.
[[gnu::format(printf, 4, 5)]] int ElmtNonArrayData(XMLWR_Doc* doc, const char* name,
                                                   const char* type, const char* fmt, ...);

/// The start tag of an array, on a line of its own.
int ElmtStartArrayData(XMLWR_Doc* doc, const char* name, const char* type, int width);

int RecordVersionInfo(XMLWR_Doc* doc, const char* name, const Version_Info* records,
                      unsigned count);
int RecordVersionInfoCim(XMLWR_Doc* doc, const char* name, const Version_Info_CIM* records,
                         unsigned count);
int RecordAdapterInfo(XMLWR_Doc* doc, const char* name, const Adapter_Info* records,
                      unsigned count);

}  // namespace reference
