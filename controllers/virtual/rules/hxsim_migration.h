// Migrations of virtual disks and disk groups to another level or to other disks.
//
// A position that stays on its disk and needs no larger block keeps its block; the others get a
// target block each, which is written while the old blocks serve. At the end the targets replace
// the old blocks, which become free; until then everything can be undone.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Starts the migration of the virtual disk param.LDID to the level and disks of `param` and sets
/// param.Size to its new size. The size stays, or becomes param.Size where that is larger. On
/// refusal nothing changes.
Status StartMigration(Adapter& adapter, Time now, Create_LD_Param& param);

/// Sets param.Size to the largest size that StartMigration could give the virtual disk.
Status SizeMigration(const Adapter& adapter, Create_LD_Param& param);

/// Starts the migration of the disk group param.DGID and its virtual disks to the level and disks
/// of `param` and sets param.Size to the space that it will manage. Without virtual disks the
/// migration is complete when this returns. On refusal nothing changes.
Status StartGroupMigration(Adapter& adapter, Time now, CreateOrModify_DG_Param& param);

/// Sets param.Size as StartGroupMigration would.
Status SizeGroupMigration(const Adapter& adapter, CreateOrModify_DG_Param& param);

/// The effect of a completed migration, called with its activity's row.
void CompleteMigration(Adapter& adapter, const Activity& migration);

/// Frees the target blocks of a migration that was aborted or has failed.
void AbandonMigration(Adapter& adapter, const Activity& migration);

}  // namespace hxsim
