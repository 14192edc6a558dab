// What the plans for virtual disks share: which one is meant, what it is called, which size
// results.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/ask_controller.h"
#include "model/group_room.h"
#include "model/virtual_disks.h"
#include "nouns/plan_and_act.h"
#include "shell/invocation.h"

namespace vexorctl::vd_noun {

/// The one that is the command's target. Throws Failure and UsageError.
VirtualDisk FindVirtualDisk(Invocation& invocation);

/// As plans show it: "a0/vd0 (DATABASE, raid5, 768 GiB)".
std::string Described(const VirtualDisk& disk);

/// What the user has to type before it is destroyed: its name, or its address when it has none.
std::string ConfirmName(const VirtualDisk& disk);

/// Its state in a word; empty where that is not known.
std::string_view StateOf(Invocation& invocation, const VirtualDisk& disk);
inline constexpr std::string_view kForeignState = "foreign";

/// A change of it by one command. Callers add losses and a question where they need them.
Change ChangeOf(const VirtualDisk& disk, const std::string& what, Command command);

/// The bits of a cache mode: names, which commas separate. Throws UsageError.
std::uint64_t CacheOption(Controller& controller, const std::string& text);

/// The size that results when so much is asked for; null where the controller's way of rounding is
/// not known and something is to be rounded.
std::optional<std::uint64_t> SectorsResulting(Invocation& invocation, const Striping& striping,
                                              std::uint64_t sectors);

/// Puts the resulting size into the plan, or that it is not known.
void TellSize(Change& change, std::optional<std::uint64_t> resulting, std::uint64_t asked);

}  // namespace vexorctl::vd_noun
