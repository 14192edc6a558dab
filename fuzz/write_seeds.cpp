// Writes what the fuzzer of commands starts from, from the functions' own rows: commands for every
// function into a folder, and a dictionary of all names.
#include <cstdio>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "describe.h"

namespace {

// The bytes that the controller answers with, behind the command's NUL: records full of them. The
// second kind has many items and pages, the third ends with an error of the controller's.
const std::string kAnswers[] = {
    std::string(1, '\0'),
    std::string("\x08\x02\x01\x10\x03", 5),
    std::string("\xFF\x20\xC8\x41\x7F\x00\xFE", 7),
};

// What else commands are made of, as dictionaries escape it.
constexpr const char* kWords[] = {
    " type=\\\"function\\\"",
    "<!DOCTYPE r [",
    "<!ENTITY a \\\"b\\\">",
    "]>",
    "<![CDATA[",
    "]]>",
    "<!--",
    "-->",
    "&#49;",
    "65535",
    "4294967295",
    "255",
    "/>",
    "</",
};

// A value at the edge of what the child takes.
std::string EdgeValue(const Child& child) {
    switch (child.kind) {
        case Child::Kind::Number:
            return child.bits == 8 ? "255" : child.bits == 16 ? "65535" : "18446744073709551615";
        case Child::Kind::Numbers: {
            std::string numbers;
            for (std::size_t item = 0; item <= child.count; ++item) {
                numbers += std::to_string(item) + " ";
            }
            return numbers;
        }
        case Child::Kind::Text:
        case Child::Kind::WholeText:
            return std::string(child.count + 1, 'x');
    }
    return {};
}

std::string EdgeCommand(const FunctionText& function) {
    std::string command = "<" + function.name + " type=\"function\">";
    for (const Child& child : function.children) {
        // The target leaves commands out that name a file.
        if (child.name == "filepath") continue;
        command.append("<").append(child.name).append(">").append(EdgeValue(child));
        command.append("</").append(child.name).append(">");
    }
    return command + "</" + function.name + ">";
}

bool WriteCommands(const std::string& folder, const std::vector<FunctionText>& functions) {
    for (const FunctionText& function : functions) {
        const std::string commands[] = {ExampleCommand(function), EdgeCommand(function)};
        int number = 0;
        for (const std::string& command : commands) {
            for (const std::string& answer : kAnswers) {
                const std::string path =
                    folder + "/" + function.name + "-" + std::to_string(number++) + ".xml";
                std::ofstream file(path, std::ios::binary);
                file << command << '\0' << answer;
                if (!file.flush()) return false;
            }
        }
    }
    return true;
}

bool WriteDictionary(const std::string& path, const std::vector<FunctionText>& functions) {
    std::set<std::string> names;
    for (const FunctionText& function : functions) {
        names.insert(function.name);
        for (const Child& child : function.children) names.insert(child.name);
    }
    std::ofstream file(path);
    for (const char* const word : kWords) file << '"' << word << "\"\n";
    for (const std::string& name : names) file << '"' << name << "\"\n";
    return static_cast<bool>(file.flush());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: write_seeds FOLDER DICTIONARY\n", stderr);
        return 2;
    }
    std::vector<FunctionText> functions = DescribeFunctions();
    for (FunctionText& function : DescribeManagement()) functions.push_back(std::move(function));
    if (!WriteCommands(argv[1], functions) || !WriteDictionary(argv[2], functions)) {
        std::perror("write_seeds");
        return 1;
    }
    return 0;
}
