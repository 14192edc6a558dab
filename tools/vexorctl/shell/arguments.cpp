#include "shell/arguments.h"

#include <utility>

namespace vexorctl {

namespace {

constexpr char kMark = '\x01';

}  // namespace

std::vector<std::string> MarkedArguments(const std::vector<std::string>& typed) {
    std::vector<std::string> arguments;
    bool all_positional = false;
    for (std::string argument : typed) {
        if (!all_positional && argument == "--") {
            all_positional = true;
            continue;
        }
        if (all_positional || argument.empty() || argument.starts_with('[') ||
            argument.starts_with(kMark) || argument == "++") {
            argument.insert(0, 1, kMark);
        }
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

std::string Unmarked(std::string argument) {
    if (argument.starts_with(kMark)) argument.erase(0, 1);
    return argument;
}

std::string WithoutMarks(std::string message) {
    std::erase(message, kMark);
    return message;
}

}  // namespace vexorctl
