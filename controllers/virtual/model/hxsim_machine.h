// The virtual machine as plain values: one row for each object, in lists by adapter.
//
// A machine is loaded from the state file, changed by functions that take it by reference, and
// saved row by row; nothing here knows of files or of the interface's calls. hxsim_invariants.h
// checks the rules that hold between two calls.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hxraid.h"
#include "model/hxsim_clock.h"
#include "model/hxsim_codes.h"

namespace hxsim {

using Sectors = std::uint64_t;  // of 512 bytes

inline constexpr HX_U16 kNoId = 65535;         // no object has this ID
inline constexpr HX_U16 kNoVirtualDisk = 255;  // a block's virtual disk: none
inline constexpr HX_U8 kNoDiskGroup = 255;     // LD_Info::DGID without a disk group
inline constexpr Sectors kMetadata = 65536;    // sectors at a disk's end, the controller's own
inline constexpr Sectors kMostSectors = Sectors{1} << 48;  // of a disk
inline constexpr Sectors kGib = 2097152;                   // sectors of a GiB
inline constexpr std::size_t kMostAdapters = 4;            // of a machine
inline constexpr std::size_t kMostElements = 255;  // of an enclosure: calls count them in 8 bits
inline constexpr std::size_t kMostEvents = 512;    // that an adapter's queue holds

/// The device and phys that a device is plugged into.
struct Attachment {
    Device parent = Device::kAdapter;
    HX_U16 parent_id = 0;  // among the devices of its kind
    HX_U8 phy = 0;         // the first of its phys or ports there
    HX_U8 phys = 1;        // how many it takes
};

/// The kind of spare that a disk is.
enum class Spare : HX_U8 { kNone, kGlobal, kGroup };

/// A place for a disk, and the disk in it. The ID belongs to the place: a replacement disk has the
/// ID of its predecessor. An emptied place keeps its row; it is listed while `present`, or as a
/// missing disk while virtual disks still need it.
struct Disk : Attachment {
    HX_U16 id = 0;
    HX_U16 enclosure = kNoId;
    HX_U16 slot = kNoId;
    std::string model;  // maker, a blank, model
    std::string firmware;
    std::string serial;
    std::uint64_t wwn = 0;
    Sectors sectors = 0;  // all of it, metadata included
    bool sas = false;     // else SATA
    LinkSpeed speed = LinkSpeed::k6Gbit;
    bool present = true;
    bool failed = false;
    bool offline = false;  // set offline by a caller
    bool foreign = false;  // carries another controller's metadata
    Spare spare = Spare::kNone;
    HX_U16 spare_group = kNoId;         // the disk group, of Spare::kGroup
    Spare spare_before = Spare::kNone;  // its kind before it stepped in; restored after a copyback
    HX_U16 spare_group_before = kNoId;
    bool smart_on = true;
    bool smart_exceeded = false;
    bool write_cache = false;
    bool has_mbr = false;
    bool has_system = false;
    bool locate_light = false;
};

/// A run of sectors of a disk. The blocks of a disk leave nothing out between sector 0 and the
/// metadata and never overlap; a free run is a block of kNoVirtualDisk, and two free blocks never
/// touch.
struct Block {
    HX_U16 id = 0;
    HX_U16 disk = 0;
    HX_U16 virtual_disk = kNoVirtualDisk;
    HX_U8 position = 0;  // among the blocks of its virtual disk
    bool target =
        false;  // a migration or copyback writes it; it does not serve its virtual disk yet
    State state = State::kOptimal;  // OPTIMAL; REBUILDING: content is being restored; DEGRADED: its
                                    // content is out of date, since it missed writes
    Sectors start = 0;
    Sectors sectors = 0;
};

/// A virtual disk. Its content lies in blocks of equal size, one for each position 0 .. width - 1;
/// a position without a block is lost.
struct VirtualDisk {
    HX_U16 id = 0;  // 0 .. 254
    std::string name;
    HX_U16 group = kNoId;  // kNoId: none, it lies directly on its disks
    HX_U8 slot = 0;        // of the group
    Level level = Level::kRaid0;
    HX_U8 legs = 0;   // 0 where the level has none
    HX_U8 width = 0;  // positions
    HX_U16 stripe_kib = 64;
    HX_U8 cache = 0;        // CacheBit, without FORCED_WRITE_THROUGH
    HX_U8 coefficient = 1;  // the host's sector size, in units of 512 bytes
    Sectors size = 0;       // of data
    bool auto_rebuild = true;
    bool foreign = false;
    bool initialised = false;
    HX_U32 errors = 0;  // stripes whose redundancy disagrees with the data; a check finds them
    State state = State::kOptimal;  // as last announced; the current one follows from the blocks
};

/// The kind of object that an activity or a position belongs to.
enum class Owner : HX_U8 { kVirtualDisk, kDiskGroup, kDisk };

/// A position of a virtual disk or of a disk group: the disk that serves it, and its home disk, to
/// which a copyback returns when a spare has stepped in.
struct Home {
    Owner of = Owner::kVirtualDisk;
    HX_U16 owner = 0;  // virtual disk or disk group
    HX_U8 position = 0;
    HX_U16 disk = kNoId;  // serves the position now; kNoId: lost
    HX_U16 home = kNoId;  // the home disk; usually the same
};

/// A disk group. It uses the disks of its Home rows completely.
struct DiskGroup {
    HX_U16 id = 0;
    std::string name;
    Level level = Level::kRaid0;
    HX_U8 legs = 0;
    HX_U8 width = 0;
    HX_U16 stripe_kib = 64;
    bool write_cache = false;
    State state = State::kOptimal;  // as last announced
};

/// A background activity. A virtual disk, a disk or a disk group has at most one, besides a
/// migration that waits while its virtual disk is rebuilt.
struct Activity {
    HX_U16 id = 0;
    ActivityKind kind = ActivityKind::kNone;
    ActivityState state = ActivityState::kRunning;
    Owner of = Owner::kVirtualDisk;
    HX_U16 owner = 0;
    Sectors total = 0;  // sectors of each disk to be processed
    Sectors done = 0;   // at `since`
    Time since = 0;
    std::uint64_t speed = 0;  // sectors a second of virtual time; follows from the rate
    HX_U8 announced = 0;      // percent of the last progress event
    HX_U32 found = 0;         // errors found so far
    // For a migration: the new layout of the virtual disk or disk group.
    Level level = Level::kRaid0;
    HX_U8 legs = 0;
    HX_U8 width = 0;
    HX_U16 stripe_kib = 0;
    Sectors size = 0;
};

/// Remap::reason of damage that no read has found yet.
inline constexpr auto kNotRemapped = static_cast<RemapReason>(0);

/// A remapped run of a disk's sectors, or a damaged run that a media patrol or a consistency check
/// will find and remap. A damaged run is not in the remap table that callers see.
struct Remap {
    HX_U16 disk = 0;
    Sectors lba = 0;
    HX_U32 sectors = 0;
    RemapReason reason = RemapReason::kReadError;
};

struct Expander : Attachment {
    HX_U16 id = 0;
    HX_U16 enclosure = 0;
    HX_U8 phy_count = 0;
    HX_U16 route_indexes = 0;
    HX_U16 changes = 0;
    std::string vendor, product, revision, component_vendor;
    HX_U16 component = 0;
    HX_U8 component_revision = 0;
};

struct PortMultiplier : Attachment {
    HX_U16 id = 0;
    HX_U8 ports = 0;
    HX_U8 revision = 0;
    HX_U8 standards = 0;  // as PMSpecRevision
    HX_U16 vendor = 0;
    HX_U16 device = 0;
};

/// An enclosure. Its expanders are those whose row names it.
struct Enclosure : Attachment {
    HX_U16 id = 0;
    std::string vendor, product, revision;
};

/// An element of an enclosure. An adapter's elements are sorted by enclosure and number.
struct Element {
    HX_U16 enclosure = 0;
    HX_U8 number = 0;
    ElementType type = ElementType::kPowerSupply;
    ElementStatus status = ElementStatus::kOk;
    HX_U16 reading = 0;    // in the unit of its type: speed, temperature or voltage
    HX_U16 nominal = 0;    // the normal reading of a fan or a voltage
    HX_U8 speed_code = 0;  // fans
    bool muted = false;    // alarms
    HX_U8 high_critical = 0;
    HX_U8 high_warning = 0;
    HX_U8 low_critical = 0;
    HX_U8 low_warning = 0;
};

/// What the battery is doing.
enum class BatteryPhase : HX_U8 {
    kIdle,
    kCharging,
    kDischarging,
    kRelearnDischarging,
    kRelearnCharging
};

/// The battery unit. `info` is its record at the time `since`; charge and times after that follow
/// from the phase.
struct Battery {
    BBU_Info info{};
    BatteryPhase phase = BatteryPhase::kIdle;
    Time since = 0;
    HX_U16 charge_at_since = 0;  // mAh
    bool switched_on = true;     // HX_BBU_SetStatus
    bool present = true;
};

/// Bytes that copies of a machine share; never changed.
using Bytes = std::shared_ptr<const std::string>;

/// A region of the flash with its image. While the image is being written, `written` counts its
/// pieces so far.
struct FlashImage {
    Image type = Image::kBios;
    bool erased = false;
    bool healthy = true;
    HX_U16 written = 0;
    Bytes data;  // null: nothing
};

/// An event that waits in the queue until a caller fetches it.
struct QueuedEvent {
    HX_U32 number = 0;  // SequenceNo
    Event event{};
};

/// An adapter and everything attached to it. Each list ascends by ID (blocks, virtual disks, ...),
/// by (of, owner, position), by (enclosure, number), by (disk, lba) or by number.
struct Adapter {
    HX_U8 id = 0;
    Adapter_Info info{};  // complete, including WWN, SerialNo and health
    Adapter_Config_V2 config{};
    bool alarm = false;     // sounds now
    bool muted = false;     // a caller has silenced the current cause
    HX_U32 next_event = 1;  // SequenceNo of the next event

    std::vector<Disk> disks;
    std::vector<Block> blocks;
    std::vector<VirtualDisk> virtual_disks;
    std::vector<DiskGroup> disk_groups;
    std::vector<Home> homes;
    std::vector<Activity> activities;
    std::vector<Remap> remaps;
    std::vector<Expander> expanders;
    std::vector<PortMultiplier> port_multipliers;
    std::vector<Enclosure> enclosures;
    std::vector<Element> elements;
    std::vector<Battery> batteries;  // none or one
    std::vector<FlashImage> images;
    std::vector<QueuedEvent> events;
};

/// A fault that is injected into calls.
struct Injection {
    HX_U32 id = 0;
    std::string call;  // "HX_LD_GetInfo"; empty: every call
    HX_U8 code = 0;    // the status that the call returns; ignored when hostile
    HX_U32 times = 0;  // calls that it still affects; 0: all
    HX_U32 after = 0;  // calls that are let through first
    HX_U8 adapter = HX_ALL_ADAPTERS;
    bool hostile = false;  // the call answers like broken firmware: wrong counts, indices, lengths
                           // and texts
};

struct Machine {
    Clock clock;
    std::uint64_t seed = 0;
    std::uint64_t random = 0;  // state of the random generator (hxsim_random.h)
    std::string topology;      // its name
    std::vector<Adapter> adapters;
    std::vector<Injection> injections;
};

// ---- Finding ----------------------------------------------------------------------------------

/// The row with that ID; null when there is none.
template <class Rows>
auto Find(Rows& rows, HX_U16 id) -> decltype(rows.data()) {
    const auto row =
        std::ranges::lower_bound(rows, id, {}, [](const auto& each) { return each.id; });
    return row != rows.end() && row->id == id ? &*row : nullptr;
}

/// The lowest ID that no row has.
template <class Rows>
HX_U16 FreeId(const Rows& rows) {
    HX_U16 id = 0;
    for (const auto& row : rows) {
        if (row.id != id) break;
        ++id;
    }
    return id;
}

/// Inserts a row in the order of the IDs and returns it.
template <class Rows, class Row>
Row& Insert(Rows& rows, Row row) {
    const auto at =
        std::ranges::lower_bound(rows, row.id, {}, [](const auto& each) { return each.id; });
    return *rows.insert(at, std::move(row));
}

/// Sectors of a disk before the controller's metadata.
constexpr Sectors UsableSectors(const Disk& disk) {
    return disk.sectors > kMetadata ? disk.sectors - kMetadata : 0;
}

/// Whether the disk can be read and written: present, not failed, not set offline, not foreign.
constexpr bool IsReady(const Disk& disk) {
    return disk.present && !disk.failed && !disk.offline && !disk.foreign;
}

/// Whether the disk exists and can be read and written.
inline bool IsReady(const Adapter& adapter, HX_U16 disk) {
    const Disk* const row = Find(adapter.disks, disk);
    return row != nullptr && IsReady(*row);
}

}  // namespace hxsim
