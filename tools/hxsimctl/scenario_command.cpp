#include "scenario_command.h"

#include <memory>

#include "input_file.h"
#include "scenario_reader.h"
#include "scenario_runner.h"

namespace hxsimctl {

void AddScenarioCommand(CLI::App& app, Action& action) {
    CLI::App* const scenario = app.add_subcommand("scenario", "Let a story happen");
    scenario->require_subcommand(1);
    CLI::App* const run = scenario->add_subcommand("run", "Run the steps of a file");
    const auto file = std::make_shared<std::string>();
    const auto verbose = std::make_shared<bool>(false);
    run->add_option("FILE", *file, "with a step on each line")->required();
    run->add_flag("--verbose,-v", *verbose, "print each step");
    run->callback([=, &action] {
        action = [file = *file, verbose = *verbose](Driver& driver) {
            const std::string text = ReadInput(file, "examples/scenarios has some that can be run");
            RunScenario(driver, ReadScenario(file, text), verbose);
        };
    });
}

}  // namespace hxsimctl
