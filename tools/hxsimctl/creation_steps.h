// The steps of scenarios that create, migrate and delete virtual disks and disk groups.
#pragma once

#include "step_values.h"
#include "story.h"

namespace hxsimctl {

/// create vd a0 raid=5 disks=0,1,2; create vd a0/dg0 size=10GiB; create dg a0 raid=5 disks=0,1,2.
/// Throws UsageError.
Step ParseCreate(const Words& words);

/// migrate vd a0/vd0 raid=6 disks=0,1,2,3; migrate dg a0/dg0 and the like. Throws UsageError.
Step ParseMigrate(const Words& words);

/// delete vd a0/vd0; delete dg a0/dg0. Throws UsageError.
Step ParseDelete(const Words& words);

}  // namespace hxsimctl
