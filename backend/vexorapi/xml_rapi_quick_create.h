// Quick creation: one virtual disk of all free disks, with an automatically chosen level.
//
// Functions called HX_ behave like the controller library's own: they return its codes, 0 for
// success, and the executor calls them with the fields of their request's record.
#pragma once

#include "hxraid.h"

/// Whether the disk can be used for a new virtual disk: 0 when it can.
///
/// 73 when the last page of the adapter's blocks lists a block of a virtual disk on it; 159 when it
/// holds an operating system; 4 when there is no memory; else the code with which that page failed.
/// An endless list counts as ended after 65536 pages.
HX_U8 HDisFreeDiskForSkua(HX_U8 AdapterID, HX_U16 DiskID);

/// Chooses the level for a virtual disk of HDCount disks: 0 when `type` is false or they suffice
/// for no better level, otherwise the best level that the adapter offers. A level with a fixed
/// number of disks reduces HDCount to that number.
HX_U8 GetRaidMode(HX_U8 AdapterID, HX_BOOLEAN type, Create_LD_Param* ldParams);

/// Makes one virtual disk of all free disks (of the first 128 that the adapter lists), at the level
/// that GetRaidMode chooses. Returns the controller's code, or 4 when there is no memory. At most
/// 65536 pages of blocks are read for all disks together, and one at least for each.
HX_U8 HX_LD_QuickCreate(HX_U8 AdapterID, HX_BOOLEAN type);
