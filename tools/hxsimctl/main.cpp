// hxsimctl: drives the virtual controller.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "clock_commands.h"
#include "common/out_of_memory.h"
#include "common/terminal_text.h"
#include "incident_commands.h"
#include "machine_commands.h"
#include "scenario_command.h"

namespace hxsimctl {

namespace {

constexpr vexortools::ExitMeaning kExitMeanings[] = {
    {Exit::kDone, "done"},
    {Exit::kRefused, "refused, an expectation failed, or check found something"},
    {Exit::kUsage, "wrong usage, or a file that cannot be read"},
    {Exit::kNoObject, "the machine has no such object"},
    {Exit::kUnavailable, "the state file or standard output cannot be used"},
};

void RequireOutput() {
    if (!std::cout.flush()) {
        throw Failure(Exit::kUnavailable,
                      "standard output cannot be written; look at what it was sent to");
    }
}

void Run(int argc, char** argv) {
    const vexortools::CommandParser parser(
        "hxsimctl", "hxsimctl " HXSIMCTL_VERSION,
        "Drives the virtual RAID controller: makes a machine, breaks and mends its parts.",
        vexortools::ExitCodeHelp(kExitMeanings));
    const vexortools::Command& program = parser.Program();
    program.RequireCommands(1, 1);
    parser.OptionsMayFollow();  // --state may also follow the command
    std::string state;
    program.AddText("--state", state,
                    "the state file; else what HXSIM_STATE names, else the user's");
    Action action;
    AddMachineCommands(program, action);
    AddClockCommands(program, action);
    AddScenarioCommand(program, action);
    AddIncidentCommands(program, action);
    try {
        parser.Parse({argv + 1, argv + argc});
    } catch (const vexortools::HelpAsked& help) {
        std::cout << help.text;
        return RequireOutput();
    }
    // Makes the library in this process use the same file.
    if (!state.empty()) setenv("HXSIM_STATE", state.c_str(), 1);
    Driver driver(hxsim::StatePath(), std::cout);
    action(driver);
    RequireOutput();
}

int Fail(Exit exit, const std::string& message) {
    std::cerr << "hxsimctl: " << vexortools::Printable(message) << '\n';
    return CodeOf(exit);
}

int RunReportingFailure(int argc, char** argv) {
    try {
        Run(argc, argv);
        return CodeOf(Exit::kDone);
    } catch (const UsageError& failure) {
        return Fail(failure.exit, std::string(failure.what()) + " (see hxsimctl --help)");
    } catch (const Failure& failure) {
        return Fail(failure.exit, failure.what());
    } catch (const std::bad_alloc&) {
        vexortools::EndWithoutMemory();
    } catch (const std::exception& failure) {  // hxsim::StoreError among them
        return Fail(Exit::kUnavailable, failure.what());
    }
}

}  // namespace

}  // namespace hxsimctl

int main(int argc, char** argv) { return hxsimctl::RunReportingFailure(argc, argv); }
