// What the virtual machine consists of: a row for each object, in lists by adapter.
#ifndef HXSIM_MACHINE_H
#define HXSIM_MACHINE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "hxraid.h"
#include "hxraid_codes.h"

namespace hxsim {

inline constexpr HX_U16 kNoId = 65535;             // no object has this ID
inline constexpr HX_U16 kNoVirtualDisk = 255;      // a block's virtual disk: none
inline constexpr HX_U8 kNoDiskGroup = 255;         // a virtual disk's group: none
inline constexpr std::uint64_t kMetadata = 65536;  // sectors at a disk's end, the controller's own

inline constexpr std::size_t kMostDisks = 16;  // of an adapter

/// What a device is plugged into.
struct Attachment {
    HxsimDevice parent;
    HX_U16 id;       // of the parent, among the devices of its kind
    HX_U8 phy;       // the first of its phys or ports there
    HX_U8 phys = 1;  // how many it takes
};

struct DiskModel {
    const char* name;  // maker, a blank, model
    const char* firmware;
    std::uint64_t sectors;
    bool sas;  // else SATA
    HxsimLinkSpeed speed;
};

struct Disk {
    HX_U16 id;
    Attachment at;
    const DiskModel* model;
    const char* serial;
    std::span<const RCT_Record> remapped{};  // by their first sector
    bool global_spare = false;
    bool has_mbr = false;
    bool has_system = false;
};

/// A run of sectors of a disk.
struct Block {
    HX_U16 id;
    HX_U16 disk;
    HX_U16 virtual_disk;  // kNoVirtualDisk: free
    std::uint64_t start;
    std::uint64_t sectors;
};

struct VirtualDisk {
    HX_U16 id;
    const char* name;
    HX_U8 group;  // kNoDiskGroup: lies directly on its disks
    HX_U8 level;
    HX_U8 legs;  // 0 where the level has none
    HX_U16 stripe_kib;
    HX_U8 cache;  // HxsimCache
    std::span<const HX_U16> disks;
    std::uint64_t start;    // of its block on each of the disks
    std::uint64_t sectors;  // of that block
};

struct DiskGroup {
    HX_U16 id;
    const char* name;
    HX_U8 level;
    HX_U8 legs;  // 0 where the level has none
    HX_U16 stripe_kib;
    std::span<const HX_U16> disks;
    std::span<const HX_U16> spares;
};

struct Expander {
    HX_U16 id;
    Attachment at;
    HX_U16 enclosure;
    HX_U8 phys;
    HX_U16 route_indexes;
    HX_U16 changes;
    const char* vendor;
    const char* product;
    const char* revision;
    const char* component_vendor;
    HX_U16 component;
    HX_U8 component_revision;
};

struct PortMultiplier {
    HX_U16 id;
    Attachment at;
    HX_U8 ports;
    HX_U8 revision;
    HX_U8 standards;  // as PMSpecRevision
    HX_U16 vendor;
    HX_U16 device;
};

/// An element of an enclosure. Its number is its place in the enclosure's list.
struct Element {
    HX_U8 type;            // HX_ELEMENT_...
    HX_U16 reading = 0;    // as the field of its type has it: speed, temperature or voltage
    HX_U8 speed_code = 0;  // fans
    HX_U8 high_critical = 0;
    HX_U8 high_warning = 0;
    HX_U8 low_critical = 0;
    HX_U8 low_warning = 0;
};

struct Enclosure {
    HX_U16 id;
    Attachment at;
    const char* vendor;
    const char* product;
    const char* revision;
    std::span<const HX_U16> expanders;
    std::span<const Element> elements;
};

/// All that hangs on an adapter. Lists ascend by ID. The blocks of a disk stand together, ascend by
/// their sectors and leave nothing out between sector 0 and the metadata.
struct Machine {
    std::span<const Disk> disks;
    std::span<const Block> blocks;
    std::span<const VirtualDisk> virtual_disks;
    std::span<const DiskGroup> disk_groups;
    std::span<const Expander> expanders;
    std::span<const PortMultiplier> port_multipliers;
    std::span<const Enclosure> enclosures;
    const BBU_Info* battery;  // null: none
};

/// The adapter must be one that CheckAdapter takes.
const Machine& MachineOf(HX_U8 adapter);

/// A kind of object: where its rows are, and how a call is refused that names one that is missing.
template <class Row>
struct Kind {
    using RowType = Row;
    std::span<const Row> Machine::*rows;
    HxsimCode missing;
};
inline constexpr Kind<Disk> kDisks{&Machine::disks, HXSIM_NO_DISK};
inline constexpr Kind<Block> kBlocks{&Machine::blocks, HXSIM_NO_BLOCK};
inline constexpr Kind<VirtualDisk> kVirtualDisks{&Machine::virtual_disks, HXSIM_NO_VIRTUAL_DISK};
inline constexpr Kind<DiskGroup> kDiskGroups{&Machine::disk_groups, HXSIM_NO_DISK_GROUP};
inline constexpr Kind<Expander> kExpanders{&Machine::expanders, HXSIM_NO_EXPANDER};
inline constexpr Kind<PortMultiplier> kPortMultipliers{&Machine::port_multipliers,
                                                       HXSIM_NO_PORT_MULTIPLIER};
inline constexpr Kind<Enclosure> kEnclosures{&Machine::enclosures, HXSIM_NO_ENCLOSURE};

/// The row with that ID; null when there is none.
template <class Row>
constexpr const Row* Find(std::span<const Row> rows, HX_U16 id) {
    for (const Row& row : rows) {
        if (row.id == id) return &row;
    }
    return nullptr;
}

template <class Row>
const Row* Find(HX_U8 adapter, const Kind<Row>& kind, HX_U16 id) {
    return Find(MachineOf(adapter).*kind.rows, id);
}

constexpr bool Contains(std::span<const HX_U16> ids, HX_U16 id) {
    return std::ranges::any_of(ids, [id](HX_U16 each) { return each == id; });
}

/// Sectors of a disk before the controller's metadata.
constexpr std::uint64_t UsableSectors(const Disk& disk) { return disk.model->sectors - kMetadata; }

}  // namespace hxsim

#endif
