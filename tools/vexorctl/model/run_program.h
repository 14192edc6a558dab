// Runs another program and waits for its end.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace vexorctl {

struct Program {
    std::vector<std::string> words;  // the first is looked for in PATH unless it has a "/"
    std::vector<std::pair<std::string, std::string>> environment{};  // besides our own
    // Files, made or emptied, for what it prints; empty: it prints where we do.
    std::string output{}, errors{};
    std::chrono::seconds limit{0};  // after which it is killed; 0: none
};

struct ProgramEnd {
    int code = 0;  // its exit code, or 128 and the signal that ended it
    bool timed_out = false;
};

/// Interrupts of the terminal are the program's while it runs. Throws Failure when it cannot be
/// started.
ProgramEnd RunProgram(const Program& program);

}  // namespace vexorctl
