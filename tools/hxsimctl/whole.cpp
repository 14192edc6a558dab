// The commands for the machine as a whole.
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "commands.h"
#include "model/hxsim_invariants.h"
#include "scenario.h"
#include "show.h"
#include "topology/hxsim_topology.h"
#include "words.h"

namespace {

std::string ContentOf(const std::string& path, const std::string& otherwise) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad()) {
        throw UsageError(path + ": cannot be read: " + std::strerror(errno) + "; " + otherwise);
    }
    return content;
}

// ---- init ----

std::string TopologyOf(const std::string& name) {
    const std::string_view built_in = hxsim::BuiltInTopology(name);
    if (!built_in.empty()) return std::string(built_in);
    std::string list;
    for (const std::string_view each : hxsim::BuiltInTopologies()) {
        list += (list.empty() ? "" : ", ") + std::string(each);
    }
    return ContentOf(name, "name a topology file, or one that is built in: " + list);
}

void Init(Driver& driver, const std::string& topology, std::uint64_t seed, bool force) {
    const std::string text = TopologyOf(topology);
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

void AddInit(CLI::App& app, Action& action) {
    CLI::App* const command = app.add_subcommand("init", "Make a machine");
    const auto topology = std::make_shared<std::string>("default");
    const auto seed = std::make_shared<std::string>("1");
    const auto force = std::make_shared<bool>(false);
    command->add_option("--topology", *topology,
                        "a topology file, or the name of one that is built in: default, small, "
                        "rack");
    command->add_option("--seed", *seed,
                        "number that serial numbers and the like are drawn from; 1 when left out");
    command->add_flag("--force", *force, "also where a machine is already, which is then gone");
    command->callback([=, &action] {
        const std::uint64_t number = ParseNumber(*seed, INT64_MAX, "seed");
        action = [topology = *topology, number, force = *force](Driver& driver) {
            Init(driver, topology, number, force);
        };
    });
}

// ---- clock ----

void AddClock(CLI::App& app, Action& action) {
    CLI::App* const clock = app.add_subcommand("clock", "Show or set the machine's clock");
    clock->require_subcommand(1);
    clock->add_subcommand("show", "Show the time and how fast it passes")->callback([&action] {
        action = [](Driver& driver) {
            const hxsim::Clock set = driver.Current().clock;
            ShowClock(set, driver.Now(), driver.Out());
        };
    });
    clock->add_subcommand("freeze", "Let it stand still")->callback([&action] {
        action = [](Driver& driver) { driver.SetClock(0); };
    });

    CLI::App* const advance = clock->add_subcommand("advance", "Let time pass at once");
    const auto duration = std::make_shared<std::string>();
    advance->add_option("DURATION", *duration, "such as 2h30m, 10s or 1d")->required();
    advance->callback([duration, &action] {
        const hxsim::Time forward = ParseDuration(*duration);
        action = [forward](Driver& driver) {
            driver.SetClock(driver.Current().clock.speed, forward);
        };
    });

    CLI::App* const speed = clock->add_subcommand("speed", "Set how fast it goes");
    const auto times = std::make_shared<std::string>();
    speed->add_option("TIMES", *times, "as fast as real time; 1 is its speed")->required();
    speed->callback([times, &action] {
        constexpr std::uint64_t kFastest = 1000000;
        const auto number =
            static_cast<std::int64_t>(ParseNumber(*times, kFastest, "speed of a clock"));
        action = [number](Driver& driver) { driver.SetClock(number); };
    });
}

// ---- scenario and check ----

void AddScenario(CLI::App& app, Action& action) {
    CLI::App* const scenario = app.add_subcommand("scenario", "Let a story happen");
    scenario->require_subcommand(1);
    CLI::App* const run = scenario->add_subcommand("run", "Run the steps of a file");
    const auto file = std::make_shared<std::string>();
    const auto verbose = std::make_shared<bool>(false);
    run->add_option("FILE", *file, "with a step on each line")->required();
    run->add_flag("--verbose,-v", *verbose, "print each step");
    run->callback([=, &action] {
        action = [file = *file, verbose = *verbose](Driver& driver) {
            const std::string text = ContentOf(file, "examples/scenarios has some that can be run");
            RunScenario(driver, ReadScenario(file, text), verbose);
        };
    });
}

void AddCheck(CLI::App& app, Action& action) {
    app.add_subcommand("check", "Look whether all that must hold of the machine does")
        ->callback([&action] {
            action = [](Driver& driver) {
                const std::vector<std::string> broken = hxsim::Check(driver.Current());
                for (const std::string& sentence : broken) driver.Out() << sentence << '\n';
                if (!broken.empty()) {
                    throw Refused(driver.Path() + ": " + std::to_string(broken.size()) +
                                  " rules are broken; please report it, and make another machine "
                                  "with hxsimctl init --force");
                }
            };
        });
}

}  // namespace

void AddWhole(CLI::App& app, Action& action) {
    AddInit(app, action);
    app.add_subcommand("show", "Show the machine as a tree")->callback([&action] {
        action = [](Driver& driver) {
            const hxsim::Machine& machine = driver.Current();
            Show(machine, driver.Now(), driver.Out());
        };
    });
    AddClock(app, action);
    AddScenario(app, action);
    AddCheck(app, action);
}
