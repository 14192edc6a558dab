// hxsimctl: drives the virtual controller.
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"
#include "driver.h"
#include "failure.h"
#include "store/hxsim_store.h"
#include "store/hxsim_store_error.h"

namespace {

std::string ExitCodeHelp() {
    std::string text = "Exit codes:";
    for (const ExitMeaning& row : kExitMeanings) {
        text += "\n  " + std::to_string(static_cast<int>(row.exit)) + "  " + row.meaning;
    }
    return text;
}

void RequireOutput() {
    if (!std::cout.flush()) {
        throw Failure(Exit::kUnusable,
                      "standard output cannot be written; look at what it was sent to");
    }
}

void Run(int argc, char** argv) {
    CLI::App app("Drives the virtual RAID controller: makes a machine, breaks and mends its parts.",
                 "hxsimctl");
    app.set_version_flag("--version", "hxsimctl " HXSIMCTL_VERSION, "Print the version and exit");
    app.footer(ExitCodeHelp());
    app.require_subcommand(1);
    app.fallthrough();  // --state may stand behind the command, too
    std::string state;
    app.add_option("--state", state,
                   "the state file; else what HXSIM_STATE names, else the user's");
    Action action;
    AddWhole(app, action);
    AddIncidents(app, action);
    try {
        Parse(app, {argv + 1, argv + argc});
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
    std::cerr << "hxsimctl: " << message << '\n';
    return static_cast<int>(exit);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Run(argc, argv);
        return static_cast<int>(Exit::kDone);
    } catch (const UsageError& failure) {
        return Fail(failure.exit, std::string(failure.what()) + " (see hxsimctl --help)");
    } catch (const Failure& failure) {
        return Fail(failure.exit, failure.what());
    } catch (const hxsim::StoreError& failure) {
        return Fail(Exit::kUnusable, failure.what());
    } catch (const std::exception& failure) {
        return Fail(Exit::kUnusable, failure.what());
    }
}
