#include "arguments.h"

#include <utility>

namespace {

constexpr char kMark = '\x01';

}  // namespace

std::vector<std::string> MarkedArguments(int argc, const char* const* argv) {
    std::vector<std::string> arguments;
    bool all_positional = false;
    for (int i = 0; i < argc; ++i) {
        std::string argument = argv[i];
        if (!all_positional && argument == "--") {
            all_positional = true;
            continue;
        }
        if (all_positional || argument.starts_with('[') || argument.starts_with(kMark) ||
            argument == "++") {
            argument.insert(0, 1, kMark);
        }
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

std::vector<std::string> ArgumentsOf(const CLI::Option& option) {
    std::vector<std::string> arguments = option.results();
    for (std::string& argument : arguments) {
        if (argument.starts_with(kMark)) argument.erase(0, 1);
    }
    return arguments;
}

std::string WithoutMarks(std::string message) {
    std::erase(message, kMark);
    return message;
}
