// vexorctl xml [FILE|-]...: command texts from files, as they stand.
#include <climits>
#include <new>
#include <string>
#include <vector>

#include "arguments.h"
#include "commands.h"
#include "file.h"
#include "report.h"
#include "run_command.h"
#include "session.h"

namespace {

// The parser counts bytes in an int.
constexpr std::size_t kMaxCommand = INT_MAX;

Exit RunFile(Session& session, const std::string& path) {
    const std::string subject = path == "-" ? "standard input" : path.empty() ? "\"\"" : path;
    try {
        return RunCommand(session, subject, ReadFile(path.c_str(), FileKind::kAny, kMaxCommand));
    } catch (const FileError& failure) {
        ReportFailure(subject, failure.what());
        return Exit::kUsage;
    } catch (const std::bad_alloc&) {
        ReportFailure(subject, "not enough memory");
        return Exit::kUnavailable;
    }
}

Exit Run(const std::vector<std::string>& paths) {
    Session session;
    Exit exit = Exit::kDone;
    for (const std::string& path : paths) exit = MoreSerious(exit, RunFile(session, path));
    return exit;
}

}  // namespace

void AddXml(CLI::App& app, Exit& exit) {
    CLI::App& command = *app.add_subcommand("xml", "Send command texts and print their results");
    const CLI::Option& files =
        *command.add_option("FILE", "One command each, sent in order; - or none: standard input")
             ->type_name("")
             ->expected(kAnyNumber);
    command.callback([&exit, &files] {
        std::vector<std::string> paths = ArgumentsOf(files);
        if (paths.empty()) paths.emplace_back("-");
        exit = Run(paths);
    });
}
