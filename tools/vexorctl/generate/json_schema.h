// The JSON schema of what vexorctl prints with --output json, made from the columns of its
// commands.
#pragma once

#include <span>
#include <string>

#include "shell/command_rows.h"

namespace vexorctl {

/// The JSON schema of every command's document.
std::string JsonSchema(std::span<const NounRow> nouns);

}  // namespace vexorctl
