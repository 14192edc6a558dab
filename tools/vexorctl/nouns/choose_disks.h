// The disks that a virtual disk or disk group is made of: those that were named, or free ones that
// are picked.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "codes/level.h"
#include "common/address.h"
#include "model/ask_controller.h"
#include "model/disks.h"
#include "model/failure.h"
#include "nouns/creation_options.h"
#include "nouns/plan_and_act.h"
#include "shell/invocation.h"

namespace vexorctl {

/// "a1/pd3 (BR500D, 465.73 GiB free)"
std::string Described(const Disk& disk);

/// The disks of these addresses, all on one adapter. Throws UsageError and Failure.
std::vector<Disk> NamedDisks(Invocation& invocation, std::span<const std::string> typed);

/// Their numbers, as lists of the library have them.
std::string Ids(std::span<const Disk> disks);

/// The same as numbers.
std::vector<unsigned> IdsOf(std::span<const Disk> disks);

/// What the disks give together, in sectors; null when the controller refuses to say.
using RoomOfDisks = std::function<std::optional<std::uint64_t>(std::span<const Disk>)>;

/// Picks `count` free disks without a boot record. For a size the smallest that suffice, otherwise
/// those that give the most. Disks that are connected in different ways are mixed only where there
/// is no other choice. Throws Failure, which tells the alternatives.
std::vector<Disk> PickDisks(Invocation& invocation, std::size_t count, const SizeWish& size,
                            const RoomOfDisks& room);

/// What is free, on this adapter first and then on the others: "; free on a1: a1/pd3, a1/pd4
/// (465.73 GiB each); free on a0: ...". Eight disks at most are named, the others counted.
std::string Alternatives(Invocation& invocation, unsigned adapter);

/// What a refused creation was about: the level's rule that the number of disks breaks, or the
/// level and the disks.
std::string SubjectOf(const Invocation& invocation, const hxcodes::LevelRow& level,
                      std::span<const Disk> disks);

/// The addresses of the disks with a comma between them.
std::string Addresses(std::span<const Disk> disks);

/// The addresses of an object's disks. Throws Failure when these are unknown; the user then has to
/// name them.
std::vector<std::string> KnownDisks(const Address& object,
                                    const std::optional<std::vector<std::uint64_t>>& disks);

/// The failure of the question that precedes creating and migrating, with what is free instead.
Failure Refused(Invocation& invocation, unsigned adapter, const std::string& what,
                const Command& command, const Answer& answer);

/// Adds the disks to the plan. Where one holds data the plan says so and `name` has to be typed.
void AddDisks(Change& change, std::span<const Disk> disks, const std::string& name);

}  // namespace vexorctl
