// Creates machines from topologies.
#include "topology/hxsim_topology.h"

#include <algorithm>
#include <iterator>

#include "hxsim_topologies.h"
#include "model/hxsim_invariants.h"
#include "topology/hxsim_topology_adapter.h"
#include "topology/hxsim_topology_disk_models.h"

namespace hxsim {
namespace {

struct BuiltIn {
    std::string_view name;
    std::string_view text;
};
constexpr BuiltIn kBuiltIn[] = {
    {"default", kDefaultTopology},
    {"small", kSmallTopology},
    {"rack", kRackTopology},
};

}  // namespace

std::vector<std::string_view> BuiltInTopologies() {
    std::vector<std::string_view> names;
    for (const BuiltIn& each : kBuiltIn) names.push_back(each.name);
    return names;
}

std::string_view BuiltInTopology(std::string_view name) {
    const auto* const found = std::ranges::find(kBuiltIn, name, &BuiltIn::name);
    return found == std::end(kBuiltIn) ? std::string_view{} : found->text;
}

Machine MakeMachine(std::string_view topology, std::uint64_t seed, Time now) {
    const TopologyText parsed(topology);
    TopologyObject text = parsed.Root();
    Machine machine;
    machine.clock = {now, now, 1};
    machine.seed = seed;
    machine.random = seed;
    text.TakeNeeded("name", machine.topology);
    const DiskModels models = ReadDiskModels(text);
    const auto read = [&](TopologyObject& object) {
        Adapter& adapter = machine.adapters.emplace_back();
        adapter.id = static_cast<HX_U8>(machine.adapters.size() - 1);
        ReadAdapter(object, models, machine, adapter);
    };
    text.ForEachLike("adapters", kMostAdapters, "a list of 1 to 4 adapters", read);
    text.Finish();
    const std::vector<std::string> broken = Check(machine);
    if (!broken.empty()) {
        throw TopologyError("Topology: the machine would not be sound: " + broken[0]);
    }
    return machine;
}

Machine DefaultMachine() {
    constexpr std::uint64_t kSeed = 1;  // the same machine everywhere
    return MakeMachine(BuiltInTopology("default"), kSeed, RealNow());
}

}  // namespace hxsim
