// The commands of hxsimctl, as subcommands that a parser takes. Parsing one leaves in `action` what
// it does; nothing is done before.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "driver.h"

/// What happens to a machine from outside: disk, smart, battery, fan, temp, psu, power-cut, inject.
/// These are also the steps of scenarios.
void AddIncidents(CLI::App& app, Action& action);

/// inject alone, in a source of its own.
void AddInject(CLI::App& app, Action& action);

/// What is done to the machine as a whole: init, show, clock, check and scenario.
void AddWhole(CLI::App& app, Action& action);

/// Lets the parser take the words. Throws UsageError with its complaint.
void Parse(CLI::App& app, std::vector<std::string> words);
