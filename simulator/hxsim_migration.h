// Migrations: virtual disks and disk groups that move to another level or other disks.
#ifndef HXSIM_MIGRATION_H
#define HXSIM_MIGRATION_H

#include "hxsim_machine.h"

namespace hxsim {

/// The end of a migration: the targets become the blocks of their positions, blocks that are no
/// target's are given back, and level, legs, width, stripe size and size are those of the activity.
/// The caller erases the activity and announces its end.
void CompleteMigration(Adapter& adapter, const Activity& activity);

/// A migration that comes to nothing: the targets are given back, all else stays as it is. The
/// caller erases the activity and announces its end.
void AbandonMigration(Adapter& adapter, const Activity& activity);

}  // namespace hxsim

#endif
