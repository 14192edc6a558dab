// The manual pages of section 1, made from the command tree.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "shell/command_rows.h"

namespace vexorctl {

struct ManualPage {
    std::string name;  // without ".1"
    std::string text;  // in mdoc(7)
};

/// The program's page, and then one for each noun.
std::vector<ManualPage> ManualPages(std::span<const NounRow> nouns);

}  // namespace vexorctl
