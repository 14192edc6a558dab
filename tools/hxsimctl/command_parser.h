// How the commands of hxsimctl are parsed. Each Add... function gives a parser one group of them;
// parsing a command leaves in `action` what it does, and does nothing itself.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "driver.h"

namespace hxsimctl {

/// Lets the parser take the words. Throws UsageError with its complaint, and CLI::ParseError where
/// help or the version was asked for.
void ParseWords(CLI::App& app, std::vector<std::string> words);

}  // namespace hxsimctl
