// vexorctl xml [FILE|-]...: command texts from files, as they stand.
#include <cerrno>
#include <climits>
#include <new>
#include <string>
#include <vector>

#include "common/read_file.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "nouns/nouns.h"
#include "nouns/raw_command.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"

namespace vexorctl {

namespace {

// The parser counts bytes in an int.
constexpr std::size_t kMaxCommand = INT_MAX;

Exit RunFile(Controller& controller, const std::string& path) {
    const std::string subject = path == "-" ? "standard input" : path.empty() ? "\"\"" : path;
    try {
        return RunCommand(controller, subject, ReadFile(path.c_str(), FileKind::kAny, kMaxCommand));
    } catch (const FileError& failure) {
        ReportFailure(subject, failure.what());
        return failure.error == EACCES ? Exit::kNotPermitted : Exit::kUsage;
    } catch (const std::bad_alloc&) {
        ReportFailure(subject, "not enough memory");
        return Exit::kUnavailable;
    }
}

Exit RunXml(Invocation& invocation) {
    std::vector<std::string> paths = invocation.targets();
    if (paths.empty()) paths.emplace_back("-");
    Controller& controller = invocation.controller();
    controller.session();  // a library that cannot be used is told before any file
    Exit exit = Exit::kDone;
    for (const std::string& path : paths) exit = MoreSerious(exit, RunFile(controller, path));
    return exit;
}

constexpr CommandRow kCommands[] = {
    {.noun = "xml",
     .verb = "",
     .summary = "Send command texts and print their results",
     .target = Target::kFile,
     .arity = Arity::kAny,
     .target_name = "FILE",
     .examples = {"vexorctl xml examples/commands/adapter-count.xml",
                  "vexorctl xml examples/commands/api-version.xml "
                  "examples/commands/adapter-info.xml"},
     .run = RunXml,
     .note = "Each file holds one command. They are sent in order, and each result is printed as "
             "the library delivered it. \"-\" stands for standard input, and so does no file at "
             "all."},
};

}  // namespace

std::span<const CommandRow> XmlCommands() { return kCommands; }

}  // namespace vexorctl
