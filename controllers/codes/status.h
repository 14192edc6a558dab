// Why a call is refused: one row for each code, with its name and its sentence.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// The results of calls. A refused call changes nothing, and writes only what its declaration
/// names. Refusals start at 200, to avoid the small codes and the 73 and 159 with which callers of
/// the library report their own findings.
enum class Status : HX_U8 {
    kSuccess = HX_SUCCESS,
    kNotInitialized = 200,
    kNoAdapter = 201,
    kNotSupported = 202,
    kNullAddress = 203,
    kBadRequestType = 204,
    kNoDisk = 205,
    kNoBlock = 206,
    kNoVirtualDisk = 207,
    kNoDiskGroup = 208,
    kNoEnclosure = 209,
    kNoExpander = 210,
    kNoPortMultiplier = 211,
    kNoBattery = 212,
    kNoImage = 213,
    kNoPiece = 214,
    kBadAction = 215,
    kBadCount = 216,
    kNoLight = 217,
    kHoldsSystem = 218,
    kBadLevel = 219,
    kBadStripeSize = 220,
    kBadRounding = 221,
    kBadSectorSize = 222,
    kBadDiskCount = 223,
    kDiskRepeated = 224,
    kDiskTaken = 225,
    kNoSpace = 226,
    kTooSmall = 227,
    kOnDiskGroup = 228,
    kNoState = 229,
    kNoMemory = 230,
    kDiskNotReady = 231,
    kDiskNotSpare = 232,
    kDiskInUse = 233,
    kTooManyBlocks = 234,
    kTooManyVirtualDisks = 235,
    kTooManyDiskGroups = 236,
    kTooManySpares = 237,
    kBadSlot = 238,
    kSlotTaken = 239,
    kBusy = 240,
    kNoActivity = 241,
    kWrongState = 242,
    kNotRedundant = 243,
    kNotForeign = 244,
    kBadValue = 245,
    kBadImage = 246,
    kBadPiece = 247,
    kNotErased = 248,
    kNoChange = 249,
    kHoldsVirtualDisks = 250,
    kNoPermission = 251,
    kToolFailed = 252,
    kHeld = 253,
    kUnsettled = 254,
    kNotOnTape = 255,
};

/// The kind of refusal, from which the exit codes of programs follow.
enum class Fault : HX_U8 {
    kRequest,      // the request cannot be fulfilled, or not now
    kNoObject,     // its object does not exist
    kUnavailable,  // the controller cannot be used now
};

/// A refusal.
struct StatusRow {
    Status code;
    std::string_view name;
    std::string_view sentence;  // for people
    Fault fault = Fault::kRequest;
};

/// Every code except success.
inline constexpr StatusRow kRefusals[] = {
    {Status::kNotInitialized, "not_initialized", "The controller library is not open.",
     Fault::kUnavailable},
    {Status::kNoAdapter, "no_adapter", "No adapter has that number.", Fault::kNoObject},
    {Status::kNotSupported, "not_supported", "This adapter does not have that function."},
    {Status::kNullAddress, "null_address", "An address that the call needs is null."},
    {Status::kBadRequestType, "bad_request_type",
     "A list is asked for by index (1) or by ID (2) only."},
    {Status::kNoDisk, "no_disk", "The adapter has no disk with that ID.", Fault::kNoObject},
    {Status::kNoBlock, "no_block", "The adapter has no block with that ID.", Fault::kNoObject},
    {Status::kNoVirtualDisk, "no_virtual_disk", "The adapter has no virtual disk with that ID.",
     Fault::kNoObject},
    {Status::kNoDiskGroup, "no_disk_group", "The adapter has no disk group with that ID.",
     Fault::kNoObject},
    {Status::kNoEnclosure, "no_enclosure", "The adapter has no enclosure with that ID.",
     Fault::kNoObject},
    {Status::kNoExpander, "no_expander", "The adapter has no expander with that ID.",
     Fault::kNoObject},
    {Status::kNoPortMultiplier, "no_port_multiplier",
     "The adapter has no port multiplier with that ID.", Fault::kNoObject},
    {Status::kNoBattery, "no_battery", "The adapter has no battery.", Fault::kNoObject},
    {Status::kNoImage, "no_image", "The adapter's flash has no readable image of that type."},
    {Status::kNoPiece, "no_piece", "The image ends before the piece of that number."},
    {Status::kBadAction, "bad_action", "The call knows no such action, kind or state."},
    {Status::kBadCount, "bad_count", "A count is larger than what there is, or than its record."},
    {Status::kNoLight, "no_light", "No device of that kind has a light that can be switched."},
    {Status::kHoldsSystem, "holds_system", "One of the disks holds an operating system."},
    {Status::kBadLevel, "bad_level", "The adapter does not offer that RAID level."},
    {Status::kBadStripeSize, "bad_stripe_size", "The adapter does not offer that stripe size."},
    {Status::kBadRounding, "bad_rounding", "No rounding scheme has that code."},
    {Status::kBadSectorSize, "bad_sector_size", "Sectors are of 512 bytes and of no other size."},
    {Status::kBadDiskCount, "bad_disk_count",
     "The level cannot be made of so many disks or legs, or the adapter does not join so many."},
    {Status::kDiskRepeated, "disk_repeated", "A disk is named twice."},
    {Status::kDiskTaken, "disk_taken",
     "A disk is a spare or serves a disk group, or carries blocks where a whole disk is needed."},
    {Status::kNoSpace, "no_space", "Not enough is left on one of the disks."},
    {Status::kTooSmall, "too_small", "What there is already would not fit into the result."},
    {Status::kOnDiskGroup, "on_disk_group",
     "The virtual disk lies on a disk group, whose level and disks it has."},
    {Status::kNoState, "no_state", "The machine's state file cannot be opened, read or written.",
     Fault::kUnavailable},
    {Status::kNoMemory, "no_memory", "Memory has run out.", Fault::kUnavailable},
    {Status::kDiskNotReady, "disk_not_ready",
     "A disk is missing, failed, offline or from another controller."},
    {Status::kDiskNotSpare, "disk_not_spare", "The disk is not a spare."},
    {Status::kDiskInUse, "disk_in_use", "The disk serves a virtual disk or a disk group."},
    {Status::kTooManyBlocks, "too_many_blocks", "A disk has as many blocks as it can have."},
    {Status::kTooManyVirtualDisks, "too_many_virtual_disks",
     "The adapter or the disk group has as many virtual disks as it can have."},
    {Status::kTooManyDiskGroups, "too_many_disk_groups",
     "The adapter has as many disk groups as it can have."},
    {Status::kTooManySpares, "too_many_spares",
     "The disk group has as many spares as it can have."},
    {Status::kBadSlot, "bad_slot", "The disk group has no slot with that number."},
    {Status::kSlotTaken, "slot_taken", "A virtual disk lies in that slot already."},
    {Status::kBusy, "busy", "Another activity runs there; abort it or wait for its end."},
    {Status::kNoActivity, "no_activity", "No activity runs there."},
    {Status::kWrongState, "wrong_state", "The state that it is in does not allow that."},
    {Status::kNotRedundant, "not_redundant", "The level keeps no redundancy."},
    {Status::kNotForeign, "not_foreign", "The virtual disk belongs to this controller already."},
    {Status::kBadValue, "bad_value", "A setting is outside its range."},
    {Status::kBadImage, "bad_image", "The image is damaged or was made for another adapter."},
    {Status::kBadPiece, "bad_piece", "The piece is too long, or is not the next one."},
    {Status::kNotErased, "not_erased", "The flash has to be erased before it is written."},
    {Status::kNoChange, "no_change", "That is how it is already."},
    {Status::kHoldsVirtualDisks, "holds_virtual_disks",
     "The disk carries blocks of a virtual disk; force is needed to wipe it."},
    {Status::kNoPermission, "no_permission", "Only root may change that."},
    {Status::kToolFailed, "tool_failed",
     "A program that the controller needs has failed; the service log has its message."},
    {Status::kHeld, "held",
     "The device is in use: a file system, a volume manager or another program holds it."},
    {Status::kUnsettled, "unsettled",
     "The controller's rules undo each other without an end; report this error of the controller.",
     Fault::kUnavailable},
    {Status::kNotOnTape, "not_on_tape",
     "The tape that is played back has no answer to that call, or no further one.",
     Fault::kUnavailable},
};
static_assert(IsTable(kRefusals));
static_assert(NumberOf(kRefusals[0].code) == 200, "below 200 are codes of the library's callers");

/// Whether the adapter just lacks what was asked for, which is no error when a list asks all
/// adapters.
constexpr bool IsAbsence(std::uint64_t status) {
    return status == Status::kNotSupported || status == Status::kNoBattery;
}

}  // namespace hxcodes
