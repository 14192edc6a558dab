// A disk's remap table, of which a request shows a window.
#pragma once

#include "xml_rapi_requests.h"

/// Reads the wanted window of a disk's remap table. Returns false, with no result to write, when
/// there is no memory for the table.
bool ReadRemapTable(VX_PD_GetRCT& record);
