// The command tree: every noun, and the list of where each one's commands are. A noun has one
// source, noun_NAME.cpp, which defines its function below and nothing else that others see; so it
// has no header of its own.
#pragma once

#include <span>

#include "shell/command_rows.h"

namespace vexorctl {

/// The nouns, in the order of the help.
std::span<const NounRow> Nouns();

std::span<const CommandRow> AdapterCommands();
std::span<const CommandRow> EnclosureCommands();
std::span<const CommandRow> DiskCommands();
std::span<const CommandRow> VirtualDiskCommands();
std::span<const CommandRow> DiskGroupCommands();
std::span<const CommandRow> TaskCommands();
std::span<const CommandRow> BatteryCommands();
std::span<const CommandRow> FlashCommands();
std::span<const CommandRow> EventCommands();
std::span<const CommandRow> UserCommands();
std::span<const CommandRow> CountersCommands();
std::span<const CommandRow> ConfigCommands();
std::span<const CommandRow> OverviewCommands();
std::span<const CommandRow> CheckCommands();
std::span<const CommandRow> RiskCommands();
std::span<const CommandRow> CallCommands();
std::span<const CommandRow> XmlCommands();
std::span<const CommandRow> CompletionCommands();
std::span<const CommandRow> HelpCommands();
std::span<const CommandRow> VersionCommands();

}  // namespace vexorctl
