// Creates and changes disk groups, and virtual disks on them, by the controller library's one call
// for each.
//
// Functions called HX_ behave like the controller library's own: they return its codes, 0 for
// success, and the executor calls them with the fields of their request's record.
#pragma once

#include "hxraid.h"

/// Makes a disk group. The controller puts its number into DGID.
HX_U8 HX_DG_Create(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam);

/// Sizes a disk group without making it. The controller puts the answer into Size.
HX_U8 HX_DG_GetSizeOnly(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam);

/// Changes the disk group DGID.
HX_U8 HX_DG_Modify(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam);

/// Makes a virtual disk on the disk group DGID, with that group's level, parity disks, legs and
/// sector size, and with its stripe size when the caller gives none. They are 0 when the group
/// cannot be read.
HX_U8 HX_LD_Create_OnDG(HX_U8 AdapterID, CreateOrModify_VD_Param* pParam);

/// Changes the virtual disk VDID.
HX_U8 HX_LD_Modify_OnDG(HX_U8 AdapterID, CreateOrModify_VD_Param* pParam);

/// Overwrites the parameter's sector and stripe size with those of the disk group DGID, or with 0
/// when it cannot be read.
void HX_DG_Set_DefaultValue(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam);
