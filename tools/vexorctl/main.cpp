// vexorctl: the command line of the library.
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "arguments.h"
#include "commands.h"
#include "exit_code.h"
#include "report.h"
#include "session.h"

namespace {

// Help and version end the parsing as if they were errors.
Exit Show(const CLI::App& app, const CLI::ParseError& error) {
    app.exit(error);
    if (!std::cout.flush()) throw OutputError("cannot be written");
    return Exit::kDone;
}

Exit Run(int argc, const char* const* argv) {
    CLI::App app("Sends commands to a RAID controller through libvexorapi and prints the results.",
                 "vexorctl");
    app.set_version_flag("--version", "vexorctl " VEXORCTL_VERSION, "Print the version and exit");
    app.footer(ExitCodeHelp());
    app.require_subcommand(0,
                           1);  // CLI11's own complaint would not name a command it does not know
    Exit exit = Exit::kDone;
    AddXml(app, exit);
    AddCall(app, exit);

    const std::vector<std::string> arguments = MarkedArguments(argc, argv);
    std::vector<const char*> pointers;
    pointers.reserve(arguments.size());
    for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
    try {
        app.parse(static_cast<int>(pointers.size()), pointers.data());
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return Show(app, error);
        throw UsageError(WithoutMarks(error.what()));
    }
    if (app.get_subcommands().empty()) throw UsageError("a command is missing");
    return exit;
}

Exit Fail(Exit exit, const std::string& subject, const std::string& message) {
    ReportFailure(subject, message);
    return exit;
}

Exit RunReportingFailure(int argc, const char* const* argv) {
    try {
        return Run(argc, argv);
    } catch (const UsageError& failure) {
        return Fail(Exit::kUsage, "", std::string(failure.what()) + " (see vexorctl --help)");
    } catch (const Unavailable& failure) {
        return Fail(Exit::kUnavailable, failure.subject, failure.what());
    } catch (const OutputError& failure) {
        return Fail(Exit::kUnavailable, "standard output", failure.what());
    } catch (const std::bad_alloc&) {
        return Fail(Exit::kUnavailable, "", "not enough memory");
    } catch (const std::exception& failure) {
        return Fail(Exit::kUnavailable, "", failure.what());
    }
}

}  // namespace

int main(int argc, char** argv) { return CodeOf(RunReportingFailure(argc, argv)); }
