// The result of a look at the machine: its disks, arrays and enclosures as the kernel reports them.
// A value that could not be read is empty, never zero.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hxraid.h"

namespace hxmd {

using Number = std::optional<std::uint64_t>;
using Text = std::optional<std::string>;

/// Stands for an ID that is not given yet, and for no object.
inline constexpr HX_U16 kNoId = 65535;

struct Partition {
    std::string name;  // of the kernel: "sda1"
    Number start;      // sectors
    Number sectors;
    Text device_number;
    bool held = false;  // in use by something other than an MD array
};

/// The contents of a device according to udev's database.
struct Content {
    bool known = false;  // udev has examined the device
    bool partition_table = false;
    bool anything = false;  // a partition table, or any signature
};

/// How a disk is linked, from its path in /sys/devices.
enum class Link : std::uint8_t { kOther, kSata, kSas, kNvme, kVirtio, kUsb };

struct Disk {
    // Attributes of /sys/block/NAME, by the rows of hxmd_look.
    Number sectors;
    Number removable;
    Number read_only;
    Number sector_size;  // bytes
    Number rotational;
    Number queue_depth;
    Text write_cache;  // "write back" or "write through"
    Text vendor;
    Text model;
    Text firmware;
    Text serial;
    Text state;  // "running", "live"; virtio has none
    Text wwid;
    Text card;           // identification of an MMC
    Text device_number;  // "8:0"
    Number device_type;  // SCSI peripheral device type
    Number sas_address;
    Number hidden;
    Number sequence;  // of its appearance in this boot, never given twice

    std::string name;     // the kernel's, for this boot; never a key
    std::string path;     // in /sys/devices
    std::string key;      // identifies the disk
    bool stable = false;  // the key belongs to the disk, not to its place
    bool twice = false;   // a second device has the same key: two paths to one disk
    bool held = false;    // in use by something other than an MD array
    Link link = Link::kOther;
    Content content;
    std::vector<Partition> partitions;

    bool present = true;  // else known only from the state file
    HX_U16 id = kNoId;
};

enum class ArrayState : std::uint8_t {
    kUnknown,
    kClear,
    kInactive,
    kRunning,
    kReadAuto,  // running, and waits for the first write
    kBroken,
};

enum class SyncAction : std::uint8_t {
    kUnknown,
    kIdle,
    kResync,
    kRecover,
    kCheck,
    kRepair,
    kReshape,
    kFrozen,
};

/// `sync_completed`: "a / b", "none" or "delayed".
struct Completed {
    bool delayed = false;
    std::uint64_t done = 0;
    std::uint64_t total = 0;  // 0: nothing runs
};

/// `raid_disks`: "4", and "4 (3)" while the array grows.
struct DiskCount {
    std::uint64_t now = 0;
    std::uint64_t before = 0;  // 0: the count does not change
};

/// The words of a member's `state`.
struct MemberState {
    bool in_sync = false;
    bool faulty = false;
    bool spare = false;
    bool want_replacement = false;
    bool replacement = false;
};

struct Member {
    // Attributes of /sys/block/mdN/md/dev-NAME.
    std::optional<MemberState> state;
    Number slot;  // none: no place in the array
    Number offset;
    Number size_kib;
    Number recovery_start;  // sectors; none: it is complete
    Number errors;
    Number bad_blocks;  // rows of the log
    Number unacknowledged;

    std::string name;         // of the device: "sda1"
    bool present = false;     // its device is there
    std::string device;       // key of the disk that holds it; empty: no listed disk
    std::uint64_t start = 0;  // the device's first sector on the disk
    HX_U16 disk = kNoId;
    HX_U16 block = kNoId;
};

struct Array {
    // Attributes of /sys/block/mdN.
    std::optional<ArrayState> state;
    Number level;  // the interface's code
    std::optional<DiskCount> disks;
    Number chunk;  // bytes
    Number layout;
    Number component_kib;
    Number sectors;
    Number sector_size;
    Number read_ahead_kib;
    std::optional<SyncAction> action;
    std::optional<Completed> completed;
    Number resync_start;      // sectors; none: the array is in sync
    Number reshape_position;  // sectors; none: it is not reshaped
    Number mismatches;
    Number sync_min;  // sectors; where an interrupted check would continue
    std::optional<SyncAction> last_action;
    Text uuid;  // 32 digits
    Text metadata;
    Text device_number;

    std::optional<SyncAction> paused;  // by a caller, from the state file

    std::string name;   // the kernel's, for this boot
    std::string title;  // udev's MD_NAME behind the host part, else the kernel's name
    bool held = false;  // a volume manager or the like lies on it, or on a partition of it
    std::vector<Member> members;
    HX_U16 id = kNoId;
};

struct Slot {
    std::string device;  // the disk's kernel name; empty: none
    Number locate;
    Number fault;
    Number active;
    Text status;
};

struct Enclosure {
    Text identifier;
    Text vendor;
    Text product;
    Text revision;
    std::string key;
    std::vector<Slot> slots;
    HX_U16 id = kNoId;
};

struct Machine {
    std::vector<Disk> disks;            // ascending by ID once they are identified
    std::vector<Array> arrays;          // likewise
    std::vector<Enclosure> enclosures;  // likewise
    std::string release;                // of the kernel
    std::string boot_id;
    Number uptime;  // seconds
};

}  // namespace hxmd
