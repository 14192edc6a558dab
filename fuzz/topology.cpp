// Topologies: what is none is refused with a sentence, and every machine that is made keeps the
// rules, now and after a day.
#include "topology/hxsim_topology.h"

#include <string>
#include <string_view>

#include "model/hxsim_invariants.h"
#include "rules/hxsim_advance.h"
#include "store/hxsim_tables.h"
#include "targets.h"
#include "topology/hxsim_topology_error.h"

namespace {

// What a machine is, table by table, as one text.
std::string Saved(const hxsim::Machine& machine) {
    const hxsim::Connection connection(":memory:");
    hxsim::MakeTables(connection);
    hxsim::Tables tables(connection);
    tables.Save(hxsim::Machine{}, machine);
    // Reading back refuses what is no machine.
    const hxsim::Machine read = tables.Load(":memory:");
    return std::to_string(read.seed) + " " + std::to_string(read.random) + " " +
           std::to_string(read.adapters.size());
}

}  // namespace

const char* FuzzTopology(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    constexpr hxsim::Time kStart = 1'700'000'000'000;
    try {
        hxsim::Machine machine = hxsim::MakeMachine(text, 1, kStart);
        if (!hxsim::Check(machine).empty()) return "a machine was made that breaks a rule";
        if (Saved(machine) != Saved(hxsim::MakeMachine(text, 1, kStart))) {
            return "a topology makes two different machines";
        }
        hxsim::Advance(machine, kStart + hxsim::Time{86'400'000});
        if (!hxsim::Check(machine).empty()) return "after a day a rule is broken";
    } catch (const hxsim::TopologyError& error) {
        if (*error.what() == '\0') return "a topology was refused without a reason";
    }
    return nullptr;
}
