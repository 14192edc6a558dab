// What is wrong with virtual disks and disk groups: their redundancy, what they do, and what keeps
// a rebuild from running.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_finding.h"

namespace hxconditions {

void FindVirtualDisks(std::vector<Finding>& findings, const Things& things, const Adapter& adapter,
                      const Movement* movement);
/// The row of its state; null while all is well.
std::optional<Code> StateCodeOf(const Adapter& adapter, const VirtualDisk& virtual_disk);
/// What it does, or the disk group that it lies on; null where nothing runs.
const Activity* ActivityOf(const Adapter& adapter, const VirtualDisk& virtual_disk);
/// "a0/pd6 or a0/pd7".
std::string Alternatives(const std::vector<std::string>& items);
void FindDiskGroups(std::vector<Finding>& findings, const Things& things, const Adapter& adapter);
void FindSpares(std::vector<Finding>& findings, const Things& things, const Adapter& adapter);
/// Free disks in the bays of lost members that have too little room.
void FindReplacements(std::vector<Finding>& findings, const Things& things, const Adapter& adapter);

}  // namespace hxconditions
