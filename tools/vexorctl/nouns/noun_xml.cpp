// vexorctl xml [FILE|-]...: command texts from files, as they stand.
// vexorctl xml lint [FILE|-]...: what the library would do with them without saying so.
#include <cerrno>
#include <climits>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "common/read_file.h"
#include "common/terminal_text.h"
#include "model/ask_controller.h"
#include "model/command_lint.h"
#include "model/exit_code.h"
#include "model/library_functions.h"
#include "nouns/nouns.h"
#include "nouns/raw_command.h"
#include "output/cell.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::xml_noun {

namespace {

// The parser counts bytes in an int.
constexpr std::size_t kMaxCommand = INT_MAX;

std::string SubjectOf(const std::string& path) {
    return path == "-" ? "standard input" : path.empty() ? "\"\"" : path;
}

std::vector<std::string> PathsOf(const Invocation& invocation) {
    if (!invocation.targets().empty()) return invocation.targets();
    return {"-"};
}

// Reads a file and hands its text to `use`, which is called with the file's name for people.
template <class Use>
Exit WithFile(const std::string& path, Use use) {
    const std::string subject = SubjectOf(path);
    try {
        return use(subject, ReadFile(path.c_str(), FileKind::kAny, kMaxCommand));
    } catch (const FileError& failure) {
        ReportFailure(subject, failure.what());
        return failure.error == EACCES ? Exit::kNotPermitted : Exit::kUsage;
    } catch (const std::bad_alloc&) {
        ReportFailure(subject, "not enough memory");
        return Exit::kUnavailable;
    }
}

Exit RunXml(Invocation& invocation) {
    Controller& controller = invocation.controller();
    controller.session();  // a library that cannot be used is reported before any file
    Exit exit = Exit::kDone;
    for (const std::string& path : PathsOf(invocation)) {
        exit = MoreSerious(
            exit, WithFile(path, [&](const std::string& subject, const std::string& command) {
                return RunCommand(controller, subject, command);
            }));
    }
    return exit;
}

// ---- lint ----

struct FileFinding : LintFinding {
    std::string file;
};

using enum Kind;
using enum Place;

constexpr Column<FileFinding> kColumns[] = {
    {Always({"file", "FILE", kText, kTable, "The file, or \"standard input\""}),
     [](const FileFinding& it) { return TextCell(it.file); }},
    {Always({"line", "LINE", kNumber, kTable, "The line, counted from 1"}),
     [](const FileFinding& it) { return NumberCell(it.line); }},
    {{"element", "ELEMENT", kText, kTable, "The parameter or the function; none of a whole text"},
     [](const FileFinding& it) { return it.element.empty() ? None() : TextCell(it.element); }},
    {Always({"finding", "FINDING", kText, kTable, "What kind of finding it is"}),
     [](const FileFinding& it) { return TextCell(std::string(KeyOf(it.kind))); }},
    {Always({"sentence", "SENTENCE", kText, kTable, "What the library does"}),
     [](const FileFinding& it) { return TextCell(it.sentence); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// As compilers print what they find, so that editors lead to it.
std::string LineOf(const FileFinding& finding) {
    std::string line = finding.file + ":" + std::to_string(finding.line) + ": ";
    if (!finding.element.empty()) line += finding.element + ": ";
    return vexortools::Printable(line + finding.sentence) + "\n";
}

Exit LintFiles(Invocation& invocation) {
    std::vector<FileFinding> findings;
    Exit exit = Exit::kDone;
    const auto lint = [&](const std::string& subject, const std::string& command) {
        Exit found = Exit::kDone;
        for (LintFinding& finding : LintCommand(command, Functions())) {
            const Exit severity = IsFatal(finding.kind) ? Exit::kUndelivered : Exit::kRefused;
            found = MoreSerious(found, severity);
            findings.push_back({std::move(finding), subject});
        }
        return found;
    };
    for (const std::string& path : PathsOf(invocation)) {
        exit = MoreSerious(exit, WithFile(path, lint));
    }
    const bool as_rows = invocation.Has("--output") || invocation.Has("--columns") ||
                         invocation.Has("--sort") || invocation.Has("--no-header");
    if (as_rows) {
        Report report{.command = invocation.row().Name(), .columns = {}, .rows = {}, .faults = {}};
        Tabulate(report, kColumns, findings, hxcodes::NoCodes());
        return MoreSerious(exit, Present(invocation, std::move(report), "table"));
    }
    std::string text;
    for (const FileFinding& finding : findings) text += LineOf(finding);
    PrintText(text);
    return exit;
}

constexpr OptionRow kOptions[] = {kControllerOption};

constexpr CommandRow kCommands[] = {
    {.noun = "xml",
     .verb = "",
     .summary = "Send command texts and print their results",
     .target = Target::kFile,
     .arity = Arity::kAny,
     .target_name = "FILE",
     .options = kOptions,
     .examples = {"vexorctl xml examples/commands/adapter-count.xml",
                  "vexorctl xml examples/commands/api-version.xml "
                  "examples/commands/adapter-info.xml"},
     .run = RunXml,
     .note = "Each file holds one command. They are sent in order, and each result is printed as "
             "the library delivered it. \"-\" stands for standard input, and so does no file at "
             "all. vexorctl xml lint tells before what the library would make of them."},
    {.noun = "xml",
     .verb = "lint",
     .summary = "Tell what the library would do with command texts without saying so",
     .target = Target::kFile,
     .arity = Arity::kAny,
     .target_name = "FILE",
     .examples = {"vexorctl xml lint examples/commands/adapter-count.xml",
                  "vexorctl xml lint command.xml -o json"},
     .run = LintFiles,
     .columns = Columns,
     .note = "Nothing is sent and no controller is needed. Each finding is a line FILE:LINE: "
             "PARAMETER: SENTENCE: parameters that are not known, numbers and texts that are cut, "
             "lists that are longer than their field, values that are empty or no numbers, records "
             "that do not fit in a result. It exits with 0 when there is none, 1 when the command "
             "would be taken otherwise than it is written, 6 when it would not be taken at all. A "
             "file that is called lint is sent by: vexorctl xml ./lint"},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::xml_noun
