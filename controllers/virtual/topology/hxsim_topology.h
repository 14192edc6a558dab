// Machines made from a topology, a JSON text that says what hangs on what, and a seed.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "model/hxsim_machine.h"
#include "topology/hxsim_topology_error.h"  // IWYU pragma: export (what is thrown)

namespace hxsim {

/// The topologies that are built in: "default", "small" and "rack".
std::vector<std::string_view> BuiltInTopologies();

/// The text of a built-in topology; empty when none has that name.
std::string_view BuiltInTopology(std::string_view name);

/// The machine of a topology. The same text, seed and time make the same machine, byte for byte.
/// `now` is what its clock starts at, in real and in virtual time. Throws TopologyError.
Machine MakeMachine(std::string_view topology, std::uint64_t seed, Time now);

/// The machine of a state file that nobody has made: of the topology "default", from now on.
Machine DefaultMachine();

}  // namespace hxsim
