// Writes what is made from the command tree but is no part of the program: the manual pages, the
// JSON schemas and the table of functions in docs/vexorctl.md.
//
// usage: write_manual schema | codes-schema | functions | man FOLDER
#include <cstdio>
#include <fstream>
#include <map>
#include <string>

#include "generate/json_schema.h"
#include "generate/manual_pages.h"
#include "model/codes_file.h"
#include "model/library_functions.h"
#include "nouns/nouns.h"
#include "shell/command_rows.h"

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

bool WriteFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (!file) std::fprintf(stderr, "write_manual: %s cannot be written\n", path.c_str());
    return !file.fail();
}

bool WritePages(const std::string& folder) {
    bool written = true;
    for (const ManualPage& page : ManualPages(Nouns())) {
        std::string path = folder;
        path.append("/").append(page.name).append(".1");
        written = WriteFile(path, page.text) && written;
    }
    return written;
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
