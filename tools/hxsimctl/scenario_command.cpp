#include "scenario_command.h"

#include <memory>

#include "input_file.h"
#include "scenario_reader.h"
#include "scenario_runner.h"

namespace hxsimctl {

using vexortools::Command;

void AddScenarioCommand(const Command& app, Action& action) {
    const Command scenario = app.AddCommand("scenario", "Let a story happen");
    scenario.RequireCommands(1, 1);
    const Command run = scenario.AddCommand("run", "Run the steps of a file");
    const auto file = std::make_shared<std::string>();
    const auto verbose = std::make_shared<bool>(false);
    run.AddRequiredText("FILE", *file, "with a step on each line");
    run.AddFlag("--verbose,-v", *verbose, "print each step");
    run.WhenTyped([=, &action] {
        action = [file = *file, verbose = *verbose](Driver& driver) {
            const std::string text = ReadInput(file, "examples/scenarios has some that can be run");
            RunScenario(driver, ReadScenario(file, text), verbose);
        };
    });
}

}  // namespace hxsimctl
