// hxsimctl: drives the virtual controller.
#include <CLI/App.hpp>
#include <CLI/Config.hpp>     // IWYU pragma: keep (App.hpp calls what it defines)
#include <CLI/Formatter.hpp>  // IWYU pragma: keep (likewise)
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "clock_commands.h"
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
    CLI::App app("Drives the virtual RAID controller: makes a machine, breaks and mends its parts.",
                 "hxsimctl");
    app.set_version_flag("--version", "hxsimctl " HXSIMCTL_VERSION, "Print the version and exit");
    app.footer(vexortools::ExitCodeHelp(kExitMeanings));
    app.require_subcommand(1);
    app.fallthrough();  // --state may stand behind the command, too
    std::string state;
    app.add_option("--state", state,
                   "the state file; else what HXSIM_STATE names, else the user's");
    Action action;
    AddMachineCommands(app, action);
    AddClockCommands(app, action);
    AddScenarioCommand(app, action);
    AddIncidentCommands(app, action);
    try {
        ParseWords(app, {argv + 1, argv + argc});
    } catch (const CLI::ParseError& help) {
        app.exit(help);
        return RequireOutput();
    }
    // The library in this process works on the same file.
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
    } catch (const std::exception& failure) {  // hxsim::StoreError among them
        return Fail(Exit::kUnavailable, failure.what());
    }
}

}  // namespace

}  // namespace hxsimctl

int main(int argc, char** argv) { return hxsimctl::RunReportingFailure(argc, argv); }
