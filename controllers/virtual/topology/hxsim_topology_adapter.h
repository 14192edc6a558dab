// One adapter of a topology.
#pragma once

#include "model/hxsim_machine.h"
#include "topology/hxsim_topology_disk_models.h"
#include "topology/hxsim_topology_text.h"

namespace hxsim {

/// Reads an adapter, whose ID is already set, with all attached devices. Serial numbers that the
/// text leaves out are drawn from the machine's generator. Throws TopologyError.
void ReadAdapter(TopologyObject& text, const DiskModels& models, Machine& machine,
                 Adapter& adapter);

}  // namespace hxsim
