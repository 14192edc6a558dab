#include "machine_commands.h"

#include <filesystem>
#include <memory>
#include <ostream>
#include <system_error>

#include "code_names.h"
#include "common/number.h"
#include "common/terminal_text.h"
#include "input_file.h"
#include "model/hxsim_invariants.h"
#include "show_machine.h"
#include "topology/hxsim_topology.h"

namespace hxsimctl {

namespace {

using vexortools::Command;

std::string TopologyText(const std::string& name) {
    const std::string_view built_in = hxsim::BuiltInTopology(name);
    if (!built_in.empty()) return std::string(built_in);
    return ReadInput(name, "name a topology file, or one that is built in: " +
                               ListOf(hxsim::BuiltInTopologies()));
}

void Init(Driver& driver, const std::string& topology, std::uint64_t seed, bool force) {
    const std::string text = TopologyText(topology);
    std::error_code unknown;
    if (!force && std::filesystem::exists(driver.Path(), unknown)) {
        throw Refused(driver.Path() +
                      ": there is a machine already; --force replaces it, --state names another "
                      "file");
    }
    try {
        hxsim::Store::Create(driver.Path(), hxsim::MakeMachine(text, seed, hxsim::RealNow()));
    } catch (const hxsim::TopologyError& error) {
        throw UsageError(topology + ": " + error.what());
    }
}

void AddInit(const Command& app, Action& action) {
    const Command command = app.AddCommand("init", "Make a machine");
    const auto topology = std::make_shared<std::string>("default");
    const auto seed = std::make_shared<std::string>("1");
    const auto force = std::make_shared<bool>(false);
    command.AddText("--topology", *topology,
                    "a topology file, or the name of one that is built in: default, small, "
                    "rack");
    command.AddText("--seed", *seed,
                    "number that serial numbers and the like are drawn from; 1 when left out");
    command.AddFlag("--force", *force, "also where a machine is already, which is then gone");
    command.WhenTyped([=, &action] {
        const std::uint64_t number = vexortools::ParseNumber(*seed, INT64_MAX, "seed");
        action = [topology = *topology, number, force = *force](Driver& driver) {
            Init(driver, topology, number, force);
        };
    });
}

void Check(Driver& driver) {
    const std::vector<std::string> broken = hxsim::Check(driver.Current());
    for (const std::string& sentence : broken) {
        driver.Out() << vexortools::Printable(sentence) << '\n';
    }
    if (!broken.empty()) {
        throw Refused(driver.Path() + ": " + std::to_string(broken.size()) +
                      " rules are broken; please report it, and make another machine with hxsimctl "
                      "init --force");
    }
}

}  // namespace

void AddMachineCommands(const Command& app, Action& action) {
    AddInit(app, action);
    app.AddCommand("show", "Show the machine as a tree").WhenTyped([&action] {
        action = [](Driver& driver) {
            const hxsim::Machine& machine = driver.Current();
            ShowMachine(machine, driver.Now(), driver.Out());
        };
    });
    app.AddCommand("check", "Look whether all that must hold of the machine does")
        .WhenTyped([&action] { action = Check; });
}

}  // namespace hxsimctl
