// The models of disks that a topology names.
#pragma once

#include <map>
#include <string>

#include "model/hxsim_machine.h"
#include "topology/hxsim_topology_text.h"

namespace hxsim {

struct DiskModel {
    std::string firmware;
    std::string serials;  // prefix of the serial numbers
    Sectors sectors = 0;
    bool sas = false;
    LinkSpeed speed = LinkSpeed::k6Gbit;
};
using DiskModels = std::map<std::string, DiskModel>;

/// Reads the models of a text, by their names. Throws TopologyError.
DiskModels ReadDiskModels(TopologyObject& text);

}  // namespace hxsim
