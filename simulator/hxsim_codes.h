// The codes of the virtual controller: those with which it refuses a call, and those of states and
// kinds. All are its own choice, because the interface leaves them to whoever makes the controller.
#ifndef HXSIM_CODES_H
#define HXSIM_CODES_H

#include "hxraid.h"

/// Why a call is refused. A refused call changes nothing, and writes nothing but what its
/// declaration names. The codes start at 200, clear of the small codes and of the 73 and 159 that
/// callers of the library use for what they find out themselves.
enum HxsimCode : HX_U8 {
    /// The library is not open: HX_API_Initialize has not been called, or HX_API_Finalize has.
    HXSIM_NOT_INITIALIZED = 200,
    /// No adapter has that number. HX_ALL_ADAPTERS is such a number, too.
    HXSIM_NO_ADAPTER = 201,
    /// The virtual controller, or this adapter, does not have this function. Nothing has been
    /// changed or written; a caller may go on without what it asked for.
    HXSIM_NOT_SUPPORTED = 202,
    /// An address that the call cannot do without is null.
    HXSIM_NULL_ADDRESS = 203,
    /// A list request's requestType is neither HX_REQUEST_BY_INDEX nor HX_REQUEST_BY_ID.
    HXSIM_BAD_REQUEST_TYPE = 204,
    /// The adapter has no disk with that ID.
    HXSIM_NO_DISK = 205,
    /// The adapter has no block with that ID.
    HXSIM_NO_BLOCK = 206,
    /// The adapter has no virtual disk with that ID.
    HXSIM_NO_VIRTUAL_DISK = 207,
    /// The adapter has no disk group with that ID.
    HXSIM_NO_DISK_GROUP = 208,
    /// The adapter has no enclosure with that ID.
    HXSIM_NO_ENCLOSURE = 209,
    /// The adapter has no expander with that ID.
    HXSIM_NO_EXPANDER = 210,
    /// The adapter has no port multiplier with that ID.
    HXSIM_NO_PORT_MULTIPLIER = 211,
    /// The adapter has no battery.
    HXSIM_NO_BATTERY = 212,
    /// The adapter's flash has no readable image of that type.
    HXSIM_NO_IMAGE = 213,
    /// The image ends before the piece of that number.
    HXSIM_NO_PIECE = 214,
    /// An action, kind or state is none that the call knows.
    HXSIM_BAD_ACTION = 215,
    /// A count is larger than what there is to give, or than the record that it counts in.
    HXSIM_BAD_COUNT = 216,
    /// No device of that kind has a light that can be switched.
    HXSIM_NO_LIGHT = 217,
    /// One of the disks holds an operating system.
    HXSIM_HOLDS_SYSTEM = 218,
    /// The adapter does not offer that RAID level.
    HXSIM_BAD_LEVEL = 219,
    /// The adapter does not offer that stripe size.
    HXSIM_BAD_STRIPE_SIZE = 220,
    /// No rounding scheme has that code.
    HXSIM_BAD_ROUNDING = 221,
    /// Sectors are of 512 bytes and of no other size.
    HXSIM_BAD_SECTOR_SIZE = 222,
    /// The level cannot be made of so many disks or legs, or the adapter does not join so many.
    HXSIM_BAD_DISK_COUNT = 223,
    /// A disk is named twice.
    HXSIM_DISK_REPEATED = 224,
    /// A disk is a spare or serves a disk group, or carries blocks where a whole disk is needed.
    HXSIM_DISK_TAKEN = 225,
    /// Nothing is left on one of the disks.
    HXSIM_NO_SPACE = 226,
    /// What there is already would not fit into the result.
    HXSIM_TOO_SMALL = 227,
    /// The virtual disk lies on a disk group, whose level and disks it has.
    HXSIM_ON_DISK_GROUP = 228,
};

/// What a device is: DevType of a Link_Endpoint, Type of an HD_Block_Info and deviceType of
/// HX_LocateArrayDevice.
enum HxsimDevice : HX_U8 {
    HXSIM_DEVICE_ADAPTER = 1,
    HXSIM_DEVICE_EXPANDER = 2,
    HXSIM_DEVICE_PORT_MULTIPLIER = 3,
    HXSIM_DEVICE_DISK = 4,
    HXSIM_DEVICE_ENCLOSURE = 5,
};

/// The state of a disk, as bits: Status of HD_Info, HD_RAID_Status and HD_BGA_Status. The bits of
/// disks in use stand where callers look for them who ask whether a disk is free.
enum HxsimDiskStatus : HX_U8 {
    HXSIM_DISK_ONLINE = 0x01,
    HXSIM_DISK_CONFIGURED = 0x04,  // carries blocks of a virtual disk, or serves a disk group
    HXSIM_DISK_GLOBAL_SPARE = 0x08,
    HXSIM_DISK_GROUP_SPARE = 0x40,
};

/// How a disk is connected, as bits: HDType and ConnectionType of HD_Info. Callers derive the
/// second from the first for older adapters, and by these bits both say the same.
enum HxsimConnection : HX_U8 {
    HXSIM_TYPE_SATA = 0x01,
    HXSIM_TYPE_SAS = 0x04,
    HXSIM_CONNECTION_SATA = 0x05,  // 0x01 ATA commands, 0x04 serial
    HXSIM_CONNECTION_SAS = 0x06,   // 0x02 SCSI commands, 0x04 serial
};

/// What a disk can do, as bits: FeatureSupport of HD_Info.
enum HxsimDiskFeature : HX_U32 {
    HXSIM_FEATURE_SMART = 0x01,
    HXSIM_FEATURE_WRITE_CACHE = 0x02,
    HXSIM_FEATURE_QUEUEING = 0x04,
};

/// The speed of a link: DriveSpeed of HD_Config. The codes are those of SAS link rates.
enum HxsimLinkSpeed : HX_U8 {
    HXSIM_SPEED_3_GBIT = 0x09,
    HXSIM_SPEED_6_GBIT = 0x0A,
};

/// Why sectors have been remapped: flag of RCT_Record.
enum HxsimRemapReason : HX_U8 {
    HXSIM_REMAP_READ_ERROR = 1,
    HXSIM_REMAP_WRITE_ERROR = 2,
};

/// What a block is there for, as bits: Flags of Block_Info.
enum HxsimBlockFlag : HX_U16 {
    HXSIM_BLOCK_USED = 0x0001,      // by its virtual disk
    HXSIM_BLOCK_OF_GROUP = 0x0002,  // it lies on a disk of a disk group
};

/// The state of a block, a virtual disk or a disk group: Status of Block_Info, LD_Info, LD_Status,
/// LD_Config and DG_Info.
enum HxsimState : HX_U8 {
    HXSIM_STATE_OPTIMAL = 1,
};

/// The cache of a virtual disk, as bits: CacheMode.
enum HxsimCache : HX_U8 {
    HXSIM_CACHE_WRITE_BACK = 0x01,  // else write-through
    HXSIM_CACHE_READ_AHEAD = 0x04,
};

/// How the size of a virtual disk is rounded down: RoundingScheme.
enum HxsimRounding : HX_U8 {
    HXSIM_ROUND_TO_STRIPE = 0,  // to whole stripes, as every size is
    HXSIM_ROUND_TO_1_GIB = 1,
    HXSIM_ROUND_TO_10_GIB = 2,
};

/// An enclosure and its elements: Status. The code is that of SES elements for "OK".
enum HxsimElementStatus : HX_U8 {
    HXSIM_ELEMENT_OK = 1,
};

/// The battery, as bits: status and prev_status of BBU_Info.
enum HxsimBatteryStatus : HX_U32 {
    HXSIM_BATTERY_PRESENT = 0x01,
    HXSIM_BATTERY_CHARGING = 0x02,
    HXSIM_BATTERY_SAFE_FOR_WRITE_BACK = 0x04,
};

/// What the battery can do, as bits: featureSupport of BBU_Info.
enum HxsimBatteryFeature : HX_U16 {
    HXSIM_BATTERY_RELEARN = 0x01,
    HXSIM_BATTERY_THRESHOLDS = 0x02,
};

/// Images in the flash: Type of HX_Flash_Bin.
enum HxsimImage : HX_U8 {
    HXSIM_IMAGE_BIOS = 1,
};

#endif
