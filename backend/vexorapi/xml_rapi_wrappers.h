// Functions that the controller library has under another name, or not at all.
//
// Functions called HX_ behave like the controller library's own: they return its codes, 0 for
// success, and the executor calls them with the fields of their request's record.
#pragma once

#include "hxraid.h"

/// Does nothing and returns 0: the controller library has no call for it.
HX_U8 HX_BBU_SetMaxCapacity(HX_U8 BBU_ID, HX_U16 maxCapacity);

/// Starts a relearn cycle of the battery, which is power action 0.
HX_U8 HX_BBU_ActRelearn(HX_U8 AdapterID);

/// Lists spare disks: returns the RAID status of all disks, spares among them.
HX_U8 HX_PD_GetSpareInfo(HX_U8 AdapterID, HD_RAID_Status_Request* pHdRaidStatusReq);

/// The record of HX_PD_StartDataScrub.
struct VX_PD_StartDataScrub {
    HX_U16 HD_ID;
    HX_U8 AdapterID;
    HX_U8 RetVal;
};

/// Sets the disk and the adapter of a request to 0.
void HX_PD_StartDataScrub_Init(VX_PD_StartDataScrub* pData);
