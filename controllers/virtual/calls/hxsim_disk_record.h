// Fills the records of disks.
//
// Every function writes every byte of its record, and hxsim_records_test notices a forgotten
// member: it fills records that held different bytes and compares them.
#pragma once

#include "hxraid.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_machine.h"

namespace hxsim {

void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time now,
              HD_Info& info);
void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time now,
              HD_FreeSpaceInfo& space);
void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time now,
              HD_Config& config);
void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time now,
              HD_BGA_Status& status);
void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time now,
              HD_SMART_Status& smart);
void Describe(const Adapter& adapter, const Disk& disk, const DiskRole& role, Time now,
              HD_RAID_Status& status);

/// An entry of the remap table.
void Describe(const Remap& remap, RCT_Record& record);

}  // namespace hxsim
