// Conditions of virtual disks and disk groups: redundancy, activities, and obstacles to a rebuild.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_finding.h"

namespace hxconditions {

void FindVirtualDisks(std::vector<Finding>& findings, const Things& things, const Adapter& adapter,
                      const Movement* movement);
/// The condition for a virtual disk's state; null while all is well.
std::optional<Code> StateCodeOf(const Adapter& adapter, const VirtualDisk& virtual_disk);
/// The activity of a virtual disk or of its disk group; null when none runs.
const Activity* ActivityOf(const Adapter& adapter, const VirtualDisk& virtual_disk);
/// "a0/pd6 or a0/pd7".
std::string Alternatives(const std::vector<std::string>& items);
void FindDiskGroups(std::vector<Finding>& findings, const Things& things, const Adapter& adapter);
void FindSpares(std::vector<Finding>& findings, const Things& things, const Adapter& adapter);
/// The finding that a free disk is too small for a lost position; null when it is not free or large
/// enough.
std::optional<Finding> TooSmallFor(const Things& things, const Adapter& adapter,
                                   const VirtualDisk& virtual_disk, unsigned position,
                                   const Disk& disk);
/// Finds free disks in the bays of lost members that are too small to replace them.
void FindReplacements(std::vector<Finding>& findings, const Things& things, const Adapter& adapter);

}  // namespace hxconditions
