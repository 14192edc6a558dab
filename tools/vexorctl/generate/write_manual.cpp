// Writes what is made from the command tree but is no part of the program: the manual pages, the
// JSON schemas and the table of functions in docs/vexorctl.md.
//
// usage: write_manual schema | codes-schema | functions | man FOLDER
#include <cstdio>
#include <fstream>
#include <map>
#include <string>

#include "generate/json_schema.h"
#include "model/codes_file.h"
#include "model/exit_code.h"
#include "model/library_functions.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "shell/command_rows.h"
#include "shell/help.h"

namespace vexorctl {

namespace {

// The table of functions, one row for each, with the commands that use it.
std::string FunctionTable() {
    std::map<std::string, std::string, std::less<>> commands;
    for (const NounRow& noun : Nouns()) {
        for (const CommandRow& command : noun.commands) {
            for (const std::string_view function : command.functions) {
                std::string& list = commands[std::string(function)];
                list.append(list.empty() ? "`" : ", `").append(command.Name()).append("`");
            }
        }
    }
    std::string out = "| function | command |\n|---|---|\n";
    for (const FunctionRow& function : Functions()) {
        const auto found = commands.find(function.name);
        out.append("| `").append(function.name).append("` | ");
        out.append(found == commands.end() ? "`call`" : found->second).append(" |\n");
    }
    return out;
}

// Text as roff takes it: no line begins with a dot or a quote, and dashes stay dashes.
std::string Roff(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '-') {
            out += "\\-";
        } else if (c == '\\') {
            out += "\\e";
        } else {
            out += c;
        }
    }
    if (out.starts_with('.') || out.starts_with('\'')) out.insert(0, "\\&");
    return out;
}

std::string Page(const std::string& title, std::string_view summary, const std::string& body) {
    return ".TH " + title + " 1 \"\" \"vexorctl " VEXORCTL_VERSION "\" \"vexorctl\"\n.SH NAME\n" +
           Roff(title) + " \\- " + Roff(summary) + "\n" + body + ".SH EXIT STATUS\n.nf\n" +
           Roff(ExitCodeHelp()) + ".fi\n";
}

std::string CommandSection(const CommandRow& command) {
    std::string out =
        ".SH \"" + Roff(UsageLine(command).substr(9)) + "\"\n" + Roff(command.summary) + ".\n";
    if (!command.note.empty()) out += ".PP\n" + Roff(command.note) + "\n";
    for (const OptionRow& option : OptionsOf(command)) {
        out += ".TP\n.B " + Roff(option.name);
        if (!option.value.empty()) out += " " + Roff(option.value);
        out += "\n" + Roff(option.help) + ".";
        if (!option.choices.empty()) out += " One of: " + Roff(option.choices) + ".";
        out += "\n";
    }
    if (command.columns != nullptr) {
        out += ".PP\nColumns:\n";
        for (const ColumnInfo& column : command.columns()) {
            out += ".TP\n.I " + Roff(column.key) + "\n" + Roff(column.help) + ".\n";
        }
    }
    out += ".PP\nExamples:\n.PP\n.nf\n";
    for (const std::string_view example : command.examples) out += Roff(example) + "\n";
    return out + ".fi\n";
}

bool WriteFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (!file) std::fprintf(stderr, "write_manual: %s cannot be written\n", path.c_str());
    return !file.fail();
}

bool WritePages(const std::string& folder) {
    std::string nouns =
        ".SH DESCRIPTION\n.nf\n" + Roff(ProgramHelp(Nouns())) + ".fi\n.SH SEE ALSO\n";
    bool written = true;
    for (const NounRow& noun : Nouns()) {
        const std::string title = "vexorctl-" + std::string(noun.name);
        std::string body = ".SH SYNOPSIS\n.nf\n";
        for (const CommandRow& command : noun.commands) body += Roff(UsageLine(command)) + "\n";
        body += ".fi\n";
        for (const CommandRow& command : noun.commands) body += CommandSection(command);
        std::string path = folder;
        path.append("/").append(title).append(".1");
        written = WriteFile(path, Page(title, noun.summary, body)) && written;
        nouns += ".BR " + Roff(title) + " (1)\n";
    }
    return WriteFile(folder + "/vexorctl.1", Page("vexorctl", "manages RAID controllers", nouns)) &&
           written;
}

}  // namespace

}  // namespace vexorctl

int main(int argc, char** argv) {
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "codes-schema" && argc == 2) {
        std::puts(vexorctl::CodesFileSchema().c_str());
    } else if (what == "schema" && argc == 2) {
        std::puts(vexorctl::JsonSchema(vexorctl::Nouns()).c_str());
    } else if (what == "functions" && argc == 2) {
        std::fputs(vexorctl::FunctionTable().c_str(), stdout);
    } else if (what == "man" && argc == 3) {
        if (!vexorctl::WritePages(argv[2])) return 1;
    } else {
        std::fputs("usage: write_manual schema | codes-schema | functions | man FOLDER\n", stderr);
        return 2;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
