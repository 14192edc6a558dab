// Migrations: virtual disks and disk groups that move to another level or to other disks.
//
// A position that stays on its disk, and needs no larger block there, keeps its block; the others
// get a target block each, which is written while the old blocks serve. At the end the targets take
// their places and what is left over becomes free; until then everything can be undone.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Moves the virtual disk param.LDID to the level and disks of `param`, and sets param.Size to what
/// it has then. Its size stays, or becomes param.Size where that is more. A refused one leaves
/// everything as it is.
Status StartMigration(Adapter& adapter, Time now, Create_LD_Param& param);

/// Sets param.Size to the most that StartMigration could make of the virtual disk.
Status SizeMigration(const Adapter& adapter, Create_LD_Param& param);

/// Moves the disk group param.DGID, with its virtual disks, to the level and disks of `param`, and
/// sets param.Size to the space that it manages then. A group without virtual disks has moved when
/// this returns. A refused one leaves everything as it is.
Status StartGroupMigration(Adapter& adapter, Time now, CreateOrModify_DG_Param& param);

/// Sets param.Size as StartGroupMigration would.
Status SizeGroupMigration(const Adapter& adapter, CreateOrModify_DG_Param& param);

/// The effect of a migration that has come to its end: called for its activity.
void CompleteMigration(Adapter& adapter, const Activity& migration);

/// Gives back what a migration has taken: called when its activity ends before its time.
void AbandonMigration(Adapter& adapter, const Activity& migration);

}  // namespace hxsim
