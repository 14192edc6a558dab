// The binding of the controller library: the record of a request, the writers of its records, and
// the executor.
#pragma once

#include <cstddef>

#include "XMLWriter.h"
#include "hxraid.h"
#include "vexorapi_element.h"

// The records of the requests --------------------------------------------------------------------

/// What the executor's sum over all adapters can reach: it counts in 8 bits, so the last adapter's
/// items begin at element 255 at the most, and a controller can return 255 of them.
inline constexpr std::size_t kAdapterRoom = 255 + 255;

struct VX_API_Version {
    char RetVal[128];  // the version text; not terminated when it fills the field
};

struct VX_Adapter_GetCount {
    HX_U8 RetVal;  // the number of adapters, not a status
};

struct VX_Adapter_GetInfo {
    HX_U8 RetVal;
    HX_U8 AdapterID;  // 255: every adapter
    HX_U8 Count;      // records in AdapterInfo
    Adapter_Info AdapterInfo[kAdapterRoom];
};

/// One vendor-function request: the function's name, and the parameters and results of that
/// function. Only as much of it is allocated as the named function's record needs.
struct XML_RA_FuncData {
    char FuncName[64];
    union {
        VX_API_Version HX_API_Version;
        VX_Adapter_GetCount HX_Adapter_GetCount;
        VX_Adapter_GetInfo HX_Adapter_GetInfo;
    };
};

// The function table and the executor -----------------------------------------------------------

/// Selects the vendor function called `name`: stores its handlers and its record's size in the
/// XMLElement `userData` and returns 1, or changes nothing and returns 0.
int RA_FuncElementDispatcher(void* userData, const XML_Char* name, const XML_Char** atts);

/// Carries out the request in `elmt` and writes its result into `doc`.
/// Returns 1 when the function is one of the vendor's, whatever its RetVal, 0 otherwise.
int VX_XMLFunc_HX_RApi(XMLElement* elmt, XMLWR_Doc* doc);

// Typed elements
// -----------------------------------------------------------------------------------

/// Writes one scalar element on a line of its own; `fmt` formats the value, at most 511 bytes of
/// it. Returns 1.
[[gnu::format(printf, 4, 5)]] int XML_RA_ElmtNonArrayData(XMLWR_Doc* doc, const char* elmt,
                                                          const char* type, const char* fmt, ...);

/// Opens an array element of `width` items; the caller writes them and closes it. Returns 1.
int XML_RA_ElmtStartArrayData(XMLWR_Doc* doc, const char* elmt, const char* type,
                              std::size_t width);

// Record writers: each writes `count` elements called `elmt`, one after the other, and returns 1.

int XML_RA_Version_Info(XMLWR_Doc* doc, const char* elmt, const Version_Info* records,
                        HX_U32 count);
int XML_RA_Version_Info_CIM(XMLWR_Doc* doc, const char* elmt, const Version_Info_CIM* records,
                            HX_U32 count);
int XML_RA_Adapter_Info(XMLWR_Doc* doc, const char* elmt, const Adapter_Info* records,
                        HX_U32 count);
