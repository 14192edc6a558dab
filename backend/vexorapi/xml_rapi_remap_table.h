// A disk's remap table, from which a request returns a window.
#pragma once

#include "xml_rapi_requests.h"

/// Reads the requested window of a disk's remap table. Returns false, with no result to write, when
/// there is no memory for the table.
bool ReadRemapTable(VX_PD_GetRCT& record);
