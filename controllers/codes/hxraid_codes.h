// The codes that hxraid.h leaves to whoever makes the controller, as the virtual controller has
// them, each with its name: the refusals of a call, states, levels, activities, actions and kinds.
//
// They are that controller's own choice; another controller's may differ, so a program shows the
// number beside the name, and the number alone where no name is known. Rows stand in the order of
// their codes. A name is lower case with underscores, fit for scripts, and never changes.
#pragma once

#include <span>
#include <string_view>

#include "hxraid.h"

/// A code and its name.
struct HxraidName {
    HX_U32 code;
    std::string_view name;
};

/// The name of a code; empty when it has none.
constexpr std::string_view HxraidNameOf(std::span<const HxraidName> names, HX_U32 code) {
    for (const HxraidName& each : names) {
        if (each.code == code) return each.name;
    }
    return {};
}

/// The code of a name; null when no code is called so.
constexpr const HxraidName* HxraidFind(std::span<const HxraidName> names, std::string_view name) {
    for (const HxraidName& each : names) {
        if (each.name == name) return &each;
    }
    return nullptr;
}

// ---- Refusals ---------------------------------------------------------------------------------

/// Why a call is refused; its sentence stands in kHxsimRefusals. A refused call changes nothing,
/// and writes nothing but what its declaration names. The codes start at 200, clear of the small
/// codes and of the 73 and 159 that callers of the library use for what they find out themselves.
enum HxsimCode : HX_U8 {
    HXSIM_NOT_INITIALIZED = 200,
    HXSIM_NO_ADAPTER = 201,
    HXSIM_NOT_SUPPORTED = 202,
    HXSIM_NULL_ADDRESS = 203,
    HXSIM_BAD_REQUEST_TYPE = 204,
    HXSIM_NO_DISK = 205,
    HXSIM_NO_BLOCK = 206,
    HXSIM_NO_VIRTUAL_DISK = 207,
    HXSIM_NO_DISK_GROUP = 208,
    HXSIM_NO_ENCLOSURE = 209,
    HXSIM_NO_EXPANDER = 210,
    HXSIM_NO_PORT_MULTIPLIER = 211,
    HXSIM_NO_BATTERY = 212,
    HXSIM_NO_IMAGE = 213,
    HXSIM_NO_PIECE = 214,
    HXSIM_BAD_ACTION = 215,
    HXSIM_BAD_COUNT = 216,
    HXSIM_NO_LIGHT = 217,
    HXSIM_HOLDS_SYSTEM = 218,
    HXSIM_BAD_LEVEL = 219,
    HXSIM_BAD_STRIPE_SIZE = 220,
    HXSIM_BAD_ROUNDING = 221,
    HXSIM_BAD_SECTOR_SIZE = 222,
    HXSIM_BAD_DISK_COUNT = 223,
    HXSIM_DISK_REPEATED = 224,
    HXSIM_DISK_TAKEN = 225,
    HXSIM_NO_SPACE = 226,
    HXSIM_TOO_SMALL = 227,
    HXSIM_ON_DISK_GROUP = 228,
    HXSIM_NO_STATE = 229,
    HXSIM_NO_MEMORY = 230,
    HXSIM_DISK_NOT_READY = 231,
    HXSIM_DISK_NOT_SPARE = 232,
    HXSIM_DISK_IN_USE = 233,
    HXSIM_TOO_MANY_BLOCKS = 234,
    HXSIM_TOO_MANY_VIRTUAL_DISKS = 235,
    HXSIM_TOO_MANY_DISK_GROUPS = 236,
    HXSIM_TOO_MANY_SPARES = 237,
    HXSIM_BAD_SLOT = 238,
    HXSIM_SLOT_TAKEN = 239,
    HXSIM_BUSY = 240,
    HXSIM_NO_ACTIVITY = 241,
    HXSIM_WRONG_STATE = 242,
    HXSIM_NOT_REDUNDANT = 243,
    HXSIM_NOT_FOREIGN = 244,
    HXSIM_BAD_VALUE = 245,
    HXSIM_BAD_IMAGE = 246,
    HXSIM_BAD_PIECE = 247,
    HXSIM_NOT_ERASED = 248,
    HXSIM_NO_CHANGE = 249,
    HXSIM_HOLDS_VIRTUAL_DISKS = 250,
};

/// A refusal's name and its one sentence, which tells a person what is wrong.
struct HxsimRefusal {
    HxsimCode code;
    std::string_view name;
    std::string_view sentence;
};

inline constexpr HxsimRefusal kHxsimRefusals[] = {
    {HXSIM_NOT_INITIALIZED, "not_initialized", "The controller library is not open."},
    {HXSIM_NO_ADAPTER, "no_adapter", "No adapter has that number."},
    {HXSIM_NOT_SUPPORTED, "not_supported", "This adapter does not have that function."},
    {HXSIM_NULL_ADDRESS, "null_address", "An address that the call needs is null."},
    {HXSIM_BAD_REQUEST_TYPE, "bad_request_type",
     "A list is asked for by index (1) or by ID (2) only."},
    {HXSIM_NO_DISK, "no_disk", "The adapter has no disk with that ID."},
    {HXSIM_NO_BLOCK, "no_block", "The adapter has no block with that ID."},
    {HXSIM_NO_VIRTUAL_DISK, "no_virtual_disk", "The adapter has no virtual disk with that ID."},
    {HXSIM_NO_DISK_GROUP, "no_disk_group", "The adapter has no disk group with that ID."},
    {HXSIM_NO_ENCLOSURE, "no_enclosure", "The adapter has no enclosure with that ID."},
    {HXSIM_NO_EXPANDER, "no_expander", "The adapter has no expander with that ID."},
    {HXSIM_NO_PORT_MULTIPLIER, "no_port_multiplier",
     "The adapter has no port multiplier with that ID."},
    {HXSIM_NO_BATTERY, "no_battery", "The adapter has no battery."},
    {HXSIM_NO_IMAGE, "no_image", "The adapter's flash has no readable image of that type."},
    {HXSIM_NO_PIECE, "no_piece", "The image ends before the piece of that number."},
    {HXSIM_BAD_ACTION, "bad_action", "The call knows no such action, kind or state."},
    {HXSIM_BAD_COUNT, "bad_count", "A count is larger than what there is, or than its record."},
    {HXSIM_NO_LIGHT, "no_light", "No device of that kind has a light that can be switched."},
    {HXSIM_HOLDS_SYSTEM, "holds_system", "One of the disks holds an operating system."},
    {HXSIM_BAD_LEVEL, "bad_level", "The adapter does not offer that RAID level."},
    {HXSIM_BAD_STRIPE_SIZE, "bad_stripe_size", "The adapter does not offer that stripe size."},
    {HXSIM_BAD_ROUNDING, "bad_rounding", "No rounding scheme has that code."},
    {HXSIM_BAD_SECTOR_SIZE, "bad_sector_size", "Sectors are of 512 bytes and of no other size."},
    {HXSIM_BAD_DISK_COUNT, "bad_disk_count",
     "The level cannot be made of so many disks or legs, or the adapter does not join so many."},
    {HXSIM_DISK_REPEATED, "disk_repeated", "A disk is named twice."},
    {HXSIM_DISK_TAKEN, "disk_taken",
     "A disk is a spare or serves a disk group, or carries blocks where a whole disk is needed."},
    {HXSIM_NO_SPACE, "no_space", "Not enough is left on one of the disks."},
    {HXSIM_TOO_SMALL, "too_small", "What there is already would not fit into the result."},
    {HXSIM_ON_DISK_GROUP, "on_disk_group",
     "The virtual disk lies on a disk group, whose level and disks it has."},
    {HXSIM_NO_STATE, "no_state", "The machine's state file cannot be opened, read or written."},
    {HXSIM_NO_MEMORY, "no_memory", "Memory has run out."},
    {HXSIM_DISK_NOT_READY, "disk_not_ready",
     "A disk is missing, failed, offline or from another controller."},
    {HXSIM_DISK_NOT_SPARE, "disk_not_spare", "The disk is not a spare."},
    {HXSIM_DISK_IN_USE, "disk_in_use", "The disk serves a virtual disk or a disk group."},
    {HXSIM_TOO_MANY_BLOCKS, "too_many_blocks", "A disk has as many blocks as it can have."},
    {HXSIM_TOO_MANY_VIRTUAL_DISKS, "too_many_virtual_disks",
     "The adapter or the disk group has as many virtual disks as it can have."},
    {HXSIM_TOO_MANY_DISK_GROUPS, "too_many_disk_groups",
     "The adapter has as many disk groups as it can have."},
    {HXSIM_TOO_MANY_SPARES, "too_many_spares", "The disk group has as many spares as it can have."},
    {HXSIM_BAD_SLOT, "bad_slot", "The disk group has no slot with that number."},
    {HXSIM_SLOT_TAKEN, "slot_taken", "A virtual disk lies in that slot already."},
    {HXSIM_BUSY, "busy", "Another activity runs there; abort it or wait for its end."},
    {HXSIM_NO_ACTIVITY, "no_activity", "No activity runs there."},
    {HXSIM_WRONG_STATE, "wrong_state", "The state that it is in does not allow that."},
    {HXSIM_NOT_REDUNDANT, "not_redundant", "The level keeps no redundancy."},
    {HXSIM_NOT_FOREIGN, "not_foreign", "The virtual disk belongs to this controller already."},
    {HXSIM_BAD_VALUE, "bad_value", "A setting is outside its range."},
    {HXSIM_BAD_IMAGE, "bad_image", "The image is damaged or was made for another adapter."},
    {HXSIM_BAD_PIECE, "bad_piece", "The piece is too long, or is not the next one."},
    {HXSIM_NOT_ERASED, "not_erased", "The flash has to be erased before it is written."},
    {HXSIM_NO_CHANGE, "no_change", "That is how it is already."},
    {HXSIM_HOLDS_VIRTUAL_DISKS, "holds_virtual_disks",
     "The disk carries blocks of a virtual disk; force is needed to wipe it."},
};

/// The row of a refusal; null for a code that the virtual controller does not refuse with.
constexpr const HxsimRefusal* HxsimFindRefusal(HX_U32 code) {
    for (const HxsimRefusal& each : kHxsimRefusals) {
        if (each.code == code) return &each;
    }
    return nullptr;
}

// ---- Devices and links ------------------------------------------------------------------------

/// What a device is: DevType of a Link_Endpoint, Type of an HD_Block_Info and deviceType of
/// HX_LocateArrayDevice.
enum HxsimDevice : HX_U8 {
    HXSIM_DEVICE_ADAPTER = 1,
    HXSIM_DEVICE_EXPANDER = 2,
    HXSIM_DEVICE_PORT_MULTIPLIER = 3,
    HXSIM_DEVICE_DISK = 4,
    HXSIM_DEVICE_ENCLOSURE = 5,
};
inline constexpr HxraidName kHxsimDeviceNames[] = {
    {HXSIM_DEVICE_ADAPTER, "adapter"},
    {HXSIM_DEVICE_EXPANDER, "expander"},
    {HXSIM_DEVICE_PORT_MULTIPLIER, "port_multiplier"},
    {HXSIM_DEVICE_DISK, "disk"},
    {HXSIM_DEVICE_ENCLOSURE, "enclosure"},
};

/// How a disk is connected, as bits: HDType and ConnectionType of HD_Info. Callers derive the
/// second from the first for older adapters, and by these bits both say the same.
enum HxsimConnection : HX_U8 {
    HXSIM_TYPE_SATA = 0x01,
    HXSIM_TYPE_SAS = 0x04,
    HXSIM_CONNECTION_SATA = 0x05,  // 0x01 ATA commands, 0x04 serial
    HXSIM_CONNECTION_SAS = 0x06,   // 0x02 SCSI commands, 0x04 serial
};
/// Of ConnectionType.
inline constexpr HxraidName kHxsimConnectionNames[] = {
    {HXSIM_CONNECTION_SATA, "sata"},
    {HXSIM_CONNECTION_SAS, "sas"},
};

/// The speed of a link: DriveSpeed of HD_Config. The codes are those of SAS link rates.
enum HxsimLinkSpeed : HX_U8 {
    HXSIM_SPEED_1_5_GBIT = 0x08,
    HXSIM_SPEED_3_GBIT = 0x09,
    HXSIM_SPEED_6_GBIT = 0x0A,
    HXSIM_SPEED_12_GBIT = 0x0B,
};
inline constexpr HxraidName kHxsimLinkSpeedNames[] = {
    {HXSIM_SPEED_1_5_GBIT, "1.5_gbit"},
    {HXSIM_SPEED_3_GBIT, "3_gbit"},
    {HXSIM_SPEED_6_GBIT, "6_gbit"},
    {HXSIM_SPEED_12_GBIT, "12_gbit"},
};

// ---- Disks ------------------------------------------------------------------------------------

/// The state of a disk, as bits: Status of HD_Info, HD_RAID_Status and HD_BGA_Status. The bits of
/// disks that cannot be had (0x04, 0x08, 0x40, 0x80) stand where callers look for them who ask
/// whether a disk is free.
enum HxsimDiskStatus : HX_U8 {
    HXSIM_DISK_ONLINE = 0x01,
    HXSIM_DISK_FOREIGN = 0x02,     // carries the metadata of another controller
    HXSIM_DISK_CONFIGURED = 0x04,  // carries blocks of a virtual disk, or serves a disk group
    HXSIM_DISK_GLOBAL_SPARE = 0x08,
    HXSIM_DISK_REBUILDING = 0x10,  // carries a block that is being rebuilt or copied back to
    HXSIM_DISK_FAILED = 0x20,
    HXSIM_DISK_GROUP_SPARE = 0x40,
    HXSIM_DISK_UNAVAILABLE = 0x80,  // missing, failed, offline or foreign
};
inline constexpr HxraidName kHxsimDiskStatusBits[] = {
    {HXSIM_DISK_ONLINE, "online"},           {HXSIM_DISK_FOREIGN, "foreign"},
    {HXSIM_DISK_CONFIGURED, "configured"},   {HXSIM_DISK_GLOBAL_SPARE, "global_spare"},
    {HXSIM_DISK_REBUILDING, "rebuilding"},   {HXSIM_DISK_FAILED, "failed"},
    {HXSIM_DISK_GROUP_SPARE, "group_spare"}, {HXSIM_DISK_UNAVAILABLE, "unavailable"},
};

/// The one word for a disk's state, from its bits: what matters most comes first.
constexpr std::string_view HxsimDiskStateName(HX_U8 status) {
    if (status & HXSIM_DISK_FAILED) return "failed";
    if (status & HXSIM_DISK_FOREIGN) return "foreign";
    if (status & HXSIM_DISK_UNAVAILABLE) return status & HXSIM_DISK_ONLINE ? "offline" : "missing";
    if (status & HXSIM_DISK_REBUILDING) return "rebuilding";
    if (status & HXSIM_DISK_GLOBAL_SPARE) return "global_spare";
    if (status & HXSIM_DISK_GROUP_SPARE) return "group_spare";
    if (status & HXSIM_DISK_CONFIGURED) return "configured";
    return "free";
}

/// What a disk can do, as bits: FeatureSupport of HD_Info.
enum HxsimDiskFeature : HX_U32 {
    HXSIM_FEATURE_SMART = 0x01,
    HXSIM_FEATURE_WRITE_CACHE = 0x02,
    HXSIM_FEATURE_QUEUEING = 0x04,
};
inline constexpr HxraidName kHxsimDiskFeatureBits[] = {
    {HXSIM_FEATURE_SMART, "smart"},
    {HXSIM_FEATURE_WRITE_CACHE, "write_cache"},
    {HXSIM_FEATURE_QUEUEING, "queueing"},
};

/// What a disk is to become: Action of HX_PD_SetHDStatus.
enum HxsimDiskAction : HX_U8 {
    HXSIM_SET_ONLINE = 1,
    HXSIM_SET_OFFLINE = 2,
    HXSIM_SET_FREE = 3,  // takes a failed or foreign disk's configuration off
};
inline constexpr HxraidName kHxsimDiskActionNames[] = {
    {HXSIM_SET_ONLINE, "online"},
    {HXSIM_SET_OFFLINE, "offline"},
    {HXSIM_SET_FREE, "free"},
};

/// Why sectors have been remapped: flag of RCT_Record.
enum HxsimRemapReason : HX_U8 {
    HXSIM_REMAP_READ_ERROR = 1,
    HXSIM_REMAP_WRITE_ERROR = 2,
};
inline constexpr HxraidName kHxsimRemapReasonNames[] = {
    {HXSIM_REMAP_READ_ERROR, "read_error"},
    {HXSIM_REMAP_WRITE_ERROR, "write_error"},
};

// ---- Blocks, virtual disks and disk groups ----------------------------------------------------

/// What a block is there for, as bits: Flags of Block_Info.
enum HxsimBlockFlag : HX_U16 {
    HXSIM_BLOCK_USED = 0x0001,      // by its virtual disk
    HXSIM_BLOCK_OF_GROUP = 0x0002,  // it lies on a disk of a disk group
    HXSIM_BLOCK_TARGET = 0x0004,    // a migration or a copyback writes it
};
inline constexpr HxraidName kHxsimBlockFlagBits[] = {
    {HXSIM_BLOCK_USED, "used"},
    {HXSIM_BLOCK_OF_GROUP, "of_group"},
    {HXSIM_BLOCK_TARGET, "target"},
};

/// The state of a block, a virtual disk or a disk group: Status of Block_Info, LD_Info, LD_Status,
/// LD_Config and DG_Info.
enum HxsimState : HX_U8 {
    HXSIM_STATE_OPTIMAL = 1,
    HXSIM_STATE_PARTIALLY_OPTIMAL = 2,  // disks are lost and some redundancy is left
    HXSIM_STATE_REBUILDING = 3,         // a block: its content is being made
    HXSIM_STATE_DEGRADED = 4,           // disks are lost and no redundancy is left
    HXSIM_STATE_OFFLINE = 5,            // more is lost than redundancy can make up for
    HXSIM_STATE_FOREIGN = 6,            // made by another controller and not imported
};
inline constexpr HxraidName kHxsimStateNames[] = {
    {HXSIM_STATE_OPTIMAL, "optimal"},       {HXSIM_STATE_PARTIALLY_OPTIMAL, "partially_optimal"},
    {HXSIM_STATE_REBUILDING, "rebuilding"}, {HXSIM_STATE_DEGRADED, "degraded"},
    {HXSIM_STATE_OFFLINE, "offline"},       {HXSIM_STATE_FOREIGN, "foreign"},
};

/// RaidMode. The codes themselves are the interface's.
inline constexpr HxraidName kHxsimLevelNames[] = {
    {0x00, "raid0"},  {0x01, "raid1"},  {0x05, "raid5"},  {0x06, "raid6"},
    {0x10, "raid10"}, {0x11, "raid1e"}, {0x50, "raid50"}, {0x60, "raid60"},
};

/// The cache of a virtual disk, as bits: CacheMode and CachePolicy.
enum HxsimCache : HX_U8 {
    HXSIM_CACHE_WRITE_BACK = 0x01,  // else write-through
    HXSIM_CACHE_READ_AHEAD = 0x04,
    HXSIM_CACHE_FORCED_WRITE_THROUGH = 0x80,  // the battery does not allow write-back; never set
                                              // by a caller
};
inline constexpr HxraidName kHxsimCacheBits[] = {
    {HXSIM_CACHE_WRITE_BACK, "write_back"},
    {HXSIM_CACHE_READ_AHEAD, "read_ahead"},
    {HXSIM_CACHE_FORCED_WRITE_THROUGH, "forced_write_through"},
};

/// How the size of a virtual disk is rounded down: RoundingScheme.
enum HxsimRounding : HX_U8 {
    HXSIM_ROUND_TO_STRIPE = 0,  // to whole stripes, as every size is
    HXSIM_ROUND_TO_1_GIB = 1,
    HXSIM_ROUND_TO_10_GIB = 2,
};
inline constexpr HxraidName kHxsimRoundingNames[] = {
    {HXSIM_ROUND_TO_STRIPE, "stripe"},
    {HXSIM_ROUND_TO_1_GIB, "1_gib"},
    {HXSIM_ROUND_TO_10_GIB, "10_gib"},
};

// ---- Background activities --------------------------------------------------------------------

/// What is going on in the background: Bga of LD_Status and HD_BGA_Status, BGAStatus of LD_Info and
/// BgaType of DG_Info; 0 nothing. The first eight stand in the order of their events.
enum HxsimActivity : HX_U8 {
    HXSIM_ACTIVITY_NONE = 0,
    HXSIM_ACTIVITY_CHECK = 1,  // data and redundancy are compared
    HXSIM_ACTIVITY_FIX = 2,    // and made to agree
    HXSIM_ACTIVITY_INIT_QUICK = 3,
    HXSIM_ACTIVITY_INIT_BACK = 4,
    HXSIM_ACTIVITY_INIT_FORE = 5,
    HXSIM_ACTIVITY_REBUILD = 6,
    HXSIM_ACTIVITY_MIGRATION = 7,
    HXSIM_ACTIVITY_COPYBACK = 8,
    HXSIM_ACTIVITY_MEDIA_PATROL = 9,  // of a disk
    HXSIM_ACTIVITY_DATA_SCRUB = 10,   // of a disk
};
inline constexpr HxraidName kHxsimActivityNames[] = {
    {HXSIM_ACTIVITY_NONE, "none"},
    {HXSIM_ACTIVITY_CHECK, "check"},
    {HXSIM_ACTIVITY_FIX, "fix"},
    {HXSIM_ACTIVITY_INIT_QUICK, "init_quick"},
    {HXSIM_ACTIVITY_INIT_BACK, "init_background"},
    {HXSIM_ACTIVITY_INIT_FORE, "init_foreground"},
    {HXSIM_ACTIVITY_REBUILD, "rebuild"},
    {HXSIM_ACTIVITY_MIGRATION, "migration"},
    {HXSIM_ACTIVITY_COPYBACK, "copyback"},
    {HXSIM_ACTIVITY_MEDIA_PATROL, "media_patrol"},
    {HXSIM_ACTIVITY_DATA_SCRUB, "data_scrub"},
};

/// How an activity stands: BgaState of LD_Status and DG_Info, BgaStatus of HD_BGA_Status.
enum HxsimActivityState : HX_U8 {
    HXSIM_ACTIVITY_IDLE = 0,
    HXSIM_ACTIVITY_RUNNING = 1,
    HXSIM_ACTIVITY_PAUSED = 2,       // by a caller
    HXSIM_ACTIVITY_AUTO_PAUSED = 3,  // something more urgent runs
};
inline constexpr HxraidName kHxsimActivityStateNames[] = {
    {HXSIM_ACTIVITY_IDLE, "idle"},
    {HXSIM_ACTIVITY_RUNNING, "running"},
    {HXSIM_ACTIVITY_PAUSED, "paused"},
    {HXSIM_ACTIVITY_AUTO_PAUSED, "auto_paused"},
};

/// Action of HX_PD_BGAControl, HX_LD_BGAControl and HX_DG_BGAControl.
enum HxsimControl : HX_U8 {
    HXSIM_CONTROL_PAUSE = 1,
    HXSIM_CONTROL_RESUME = 2,
    HXSIM_CONTROL_ABORT = 3,
};
inline constexpr HxraidName kHxsimControlNames[] = {
    {HXSIM_CONTROL_PAUSE, "pause"},
    {HXSIM_CONTROL_RESUME, "resume"},
    {HXSIM_CONTROL_ABORT, "abort"},
};

/// InitializationOption of what is created and Init_Type of HX_LD_StartINIT, which takes no
/// HXSIM_INIT_NONE.
enum HxsimInit : HX_U8 {
    HXSIM_INIT_QUICK = 0,
    HXSIM_INIT_FOREGROUND = 1,  // not usable before the end
    HXSIM_INIT_BACKGROUND = 2,  // usable at once
    HXSIM_INIT_NONE = 3,
};
inline constexpr HxraidName kHxsimInitNames[] = {
    {HXSIM_INIT_QUICK, "quick"},
    {HXSIM_INIT_FOREGROUND, "foreground"},
    {HXSIM_INIT_BACKGROUND, "background"},
    {HXSIM_INIT_NONE, "none"},
};

/// Type of HX_LD_StartConsistencyCheck.
enum HxsimCheckType : HX_U8 {
    HXSIM_CHECK_ONLY = 0,
    HXSIM_CHECK_AND_FIX = 1,
};
inline constexpr HxraidName kHxsimCheckTypeNames[] = {
    {HXSIM_CHECK_ONLY, "check"},
    {HXSIM_CHECK_AND_FIX, "fix"},
};

/// RebuildType of LD_DG_Rebuild_Param.
enum HxsimRebuildType : HX_U8 {
    HXSIM_REBUILD_VIRTUAL_DISK = 0,
    HXSIM_REBUILD_DISK_GROUP = 1,
};

// ---- Enclosures -------------------------------------------------------------------------------

/// An enclosure and its elements: Status. The codes are those of SES element status.
enum HxsimElementStatus : HX_U8 {
    HXSIM_ELEMENT_UNSUPPORTED = 0,
    HXSIM_ELEMENT_OK = 1,
    HXSIM_ELEMENT_CRITICAL = 2,
    HXSIM_ELEMENT_NONCRITICAL = 3,
    HXSIM_ELEMENT_UNRECOVERABLE = 4,
    HXSIM_ELEMENT_NOT_INSTALLED = 5,
    HXSIM_ELEMENT_UNKNOWN = 6,
    HXSIM_ELEMENT_NOT_AVAILABLE = 7,
};
inline constexpr HxraidName kHxsimElementStatusNames[] = {
    {HXSIM_ELEMENT_UNSUPPORTED, "unsupported"},
    {HXSIM_ELEMENT_OK, "ok"},
    {HXSIM_ELEMENT_CRITICAL, "critical"},
    {HXSIM_ELEMENT_NONCRITICAL, "noncritical"},
    {HXSIM_ELEMENT_UNRECOVERABLE, "unrecoverable"},
    {HXSIM_ELEMENT_NOT_INSTALLED, "not_installed"},
    {HXSIM_ELEMENT_UNKNOWN, "unknown"},
    {HXSIM_ELEMENT_NOT_AVAILABLE, "not_available"},
};

/// Type of an element, a code of SES.
inline constexpr HxraidName kHxsimElementTypeNames[] = {
    {HX_ELEMENT_POWER_SUPPLY, "power_supply"},
    {HX_ELEMENT_FAN, "fan"},
    {HX_ELEMENT_TEMPERATURE, "temperature"},
    {HX_ELEMENT_DOOR, "door"},
    {HX_ELEMENT_ALARM, "alarm"},
    {HX_ELEMENT_VOLTAGE, "voltage"},
};

// ---- Battery ----------------------------------------------------------------------------------

/// The battery, as bits: status and prev_status of BBU_Info.
enum HxsimBatteryStatus : HX_U32 {
    HXSIM_BATTERY_PRESENT = 0x01,
    HXSIM_BATTERY_CHARGING = 0x02,
    HXSIM_BATTERY_SAFE_FOR_WRITE_BACK = 0x04,
    HXSIM_BATTERY_DISCHARGING = 0x08,
    HXSIM_BATTERY_RELEARNING = 0x10,
    HXSIM_BATTERY_TEMPERATURE_OUT_OF_BOUNDS = 0x20,
    HXSIM_BATTERY_VOLTAGE_OUT_OF_BOUNDS = 0x40,
    HXSIM_BATTERY_NEEDS_REPLACEMENT = 0x80,
    HXSIM_BATTERY_SWITCHED_OFF = 0x100,  // by HX_BBU_SetStatus
};
inline constexpr HxraidName kHxsimBatteryStatusBits[] = {
    {HXSIM_BATTERY_PRESENT, "present"},
    {HXSIM_BATTERY_CHARGING, "charging"},
    {HXSIM_BATTERY_SAFE_FOR_WRITE_BACK, "safe_for_write_back"},
    {HXSIM_BATTERY_DISCHARGING, "discharging"},
    {HXSIM_BATTERY_RELEARNING, "relearning"},
    {HXSIM_BATTERY_TEMPERATURE_OUT_OF_BOUNDS, "temperature_out_of_bounds"},
    {HXSIM_BATTERY_VOLTAGE_OUT_OF_BOUNDS, "voltage_out_of_bounds"},
    {HXSIM_BATTERY_NEEDS_REPLACEMENT, "needs_replacement"},
    {HXSIM_BATTERY_SWITCHED_OFF, "switched_off"},
};

/// What the battery can do, as bits: featureSupport of BBU_Info.
enum HxsimBatteryFeature : HX_U16 {
    HXSIM_BATTERY_RELEARN = 0x01,
    HXSIM_BATTERY_THRESHOLDS = 0x02,
};

/// Action of HX_BBU_ChangePower. That 0 starts a relearn cycle is the interface's.
enum HxsimPower : HX_U8 {
    HXSIM_POWER_RELEARN = 0,
    HXSIM_POWER_CHARGE = 1,
    HXSIM_POWER_DISCHARGE = 2,
};
inline constexpr HxraidName kHxsimPowerNames[] = {
    {HXSIM_POWER_RELEARN, "relearn"},
    {HXSIM_POWER_CHARGE, "charge"},
    {HXSIM_POWER_DISCHARGE, "discharge"},
};

// ---- Flash ------------------------------------------------------------------------------------

/// Images in the flash: Type of HX_Flash_Bin and Page of HX_Flash_Erase.
enum HxsimImage : HX_U8 {
    HXSIM_IMAGE_BIOS = 1,
    HXSIM_IMAGE_FIRMWARE = 2,
    HXSIM_IMAGE_BOOT_LOADER = 3,
    HXSIM_IMAGE_AUTOLOAD = 4,
    HXSIM_IMAGE_HBA_INFO = 5,
};
inline constexpr HxraidName kHxsimImageNames[] = {
    {HXSIM_IMAGE_BIOS, "bios"},
    {HXSIM_IMAGE_FIRMWARE, "firmware"},
    {HXSIM_IMAGE_BOOT_LOADER, "boot_loader"},
    {HXSIM_IMAGE_AUTOLOAD, "autoload"},
    {HXSIM_IMAGE_HBA_INFO, "hba_info"},
};

// ---- Events -----------------------------------------------------------------------------------

/// Severity of an Event.
inline constexpr HxraidName kHxraidSeverityNames[] = {
    {0, "unknown"}, {1, "other"}, {2, "info"},     {3, "warning"},
    {4, "minor"},   {5, "major"}, {6, "critical"}, {7, "fatal"},
};

/// Class of an Event.
inline constexpr HxraidName kHxraidEventClassNames[] = {
    {0, "adapter"},  {1, "virtual_disk"}, {2, "disk"},  {3, "port_multiplier"}, {4, "expander"},
    {5, "metadata"}, {6, "bad_sectors"},  {7, "sas"},   {8, "enclosure"},       {9, "battery"},
    {10, "flash"},   {11, "cache"},       {12, "misc"}, {13, "disk_group"},
};
