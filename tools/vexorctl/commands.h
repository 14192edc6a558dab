// The commands of vexorctl, one source each. Each adds itself, with its arguments and its help, to
// the tree; when the command line names it, its callback runs it and leaves its exit in `exit`.
#pragma once

#include <CLI/App.hpp>
#include <stdexcept>

#include "exit_code.h"

/// The command line is no use as it stands, in a way that its grammar alone cannot tell.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void AddCall(CLI::App& app, Exit& exit);
void AddXml(CLI::App& app, Exit& exit);
