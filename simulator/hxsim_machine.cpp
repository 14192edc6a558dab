// The virtual machine, row by row. Makers, models and serial numbers are invented.
#include "hxsim_machine.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "hxsim_adapter.h"
#include "hxsim_level.h"

namespace hxsim {
namespace {

// ---- Disk models ----

// The sectors of a disk of so many gigabytes (of 10^9 bytes), as the makers have agreed on them.
consteval std::uint64_t SectorsOf(std::uint64_t gigabytes) {
    return 97696368 + 1953504 * (gigabytes - 50);
}

constexpr DiskModel kSas300{"TARNWELL TW300S15", "J7C1", SectorsOf(300), true, HXSIM_SPEED_6_GBIT};
constexpr DiskModel kSas600{"TARNWELL TW600S10", "K2A4", SectorsOf(600), true, HXSIM_SPEED_6_GBIT};
constexpr DiskModel kSas900{"TARNWELL TW900S10", "K2A4", SectorsOf(900), true, HXSIM_SPEED_6_GBIT};
constexpr DiskModel kSata500{"BRENDAL BR500D", "1.04.7", SectorsOf(500), false, HXSIM_SPEED_3_GBIT};
constexpr DiskModel kSata2000{"QUORLAN QD2000E7", "QL03B2", SectorsOf(2000), false,
                              HXSIM_SPEED_6_GBIT};

// ---- Blocks ----

// Their IDs leave room for as many blocks on each disk as an HD_Block_Info can list.
constexpr HX_U16 kBlocksPerDisk = std::size(HD_Block_Info{}.BlockIDs);

template <std::size_t room>
struct BlockRows {
    std::array<Block, room> rows{};
    std::size_t count = 0;

    constexpr std::span<const Block> All() const { return {rows.data(), count}; }
};

// What the virtual disks make of the disks: a block of each on each of its disks, and a free one
// wherever something is left.
template <std::size_t disk_count>
consteval auto CutBlocks(const Disk (&disks)[disk_count],
                         std::span<const VirtualDisk> virtual_disks) {
    BlockRows<disk_count * kBlocksPerDisk> blocks;
    for (const Disk& disk : disks) {
        HX_U16 id = disk.id * kBlocksPerDisk;
        std::uint64_t cut = 0;  // sectors before this one are in blocks
        const auto add = [&](HX_U16 virtual_disk, std::uint64_t end) {
            if (cut == end) return;
            blocks.rows[blocks.count++] = {id++, disk.id, virtual_disk, cut, end - cut};
            cut = end;
        };
        const auto next = [&] {
            const VirtualDisk* first = nullptr;
            for (const VirtualDisk& each : virtual_disks) {
                if (!Contains(each.disks, disk.id) || each.start < cut) continue;
                if (first == nullptr || each.start < first->start) first = &each;
            }
            return first;
        };
        while (const VirtualDisk* const virtual_disk = next()) {
            add(kNoVirtualDisk, virtual_disk->start);
            add(virtual_disk->id, virtual_disk->start + virtual_disk->sectors);
        }
        add(kNoVirtualDisk, UsableSectors(disk));
    }
    return blocks;
}

// ---- Adapter 0: sixteen disks in an enclosure, behind its expander ----

// The expander's phys: four to the adapter, one for each slot, four for a further expander and an
// inner one, behind which the enclosure itself answers.
constexpr HX_U8 kUplinkPhys = 4, kSlots = 16, kEnclosurePhy = 24;
constexpr Attachment Slot(HX_U8 slot) {
    return {HXSIM_DEVICE_EXPANDER, 0, static_cast<HX_U8>(kUplinkPhys + slot)};
}

// Disk 6 has had five errors in its life, two of them when it was written to.
consteval RCT_Record Remapped(std::uint64_t first, HX_U32 sectors, HxsimRemapReason reason) {
    return {.lba = {.value = first}, .sec = sectors, .flag = reason, .Reserved = {}};
}
constexpr RCT_Record kRemapped[] = {
    Remapped(1842703, 1, HXSIM_REMAP_READ_ERROR),
    Remapped(733906944, 8, HXSIM_REMAP_WRITE_ERROR),
    Remapped(733906958, 2, HXSIM_REMAP_WRITE_ERROR),
    Remapped(2080374784, 1, HXSIM_REMAP_READ_ERROR),
    Remapped(3890016200, 16, HXSIM_REMAP_READ_ERROR),
};

// The disk in the last slot took the place of disk 15, whose number is not used again.
constexpr Disk kDisks0[] = {
    {.id = 0, .at = Slot(0), .model = &kSas600, .serial = "6TW0D21A"},
    {.id = 1, .at = Slot(1), .model = &kSas600, .serial = "6TW0D21F"},
    {.id = 2, .at = Slot(2), .model = &kSas600, .serial = "6TW0D2C7"},
    {.id = 3, .at = Slot(3), .model = &kSas600, .serial = "6TW0D304"},
    {.id = 4, .at = Slot(4), .model = &kSata2000, .serial = "QD-W17A0231"},
    {.id = 5, .at = Slot(5), .model = &kSata2000, .serial = "QD-W17A0236"},
    {.id = 6, .at = Slot(6), .model = &kSata2000, .serial = "QD-W17A0248", .remapped = kRemapped},
    {.id = 7, .at = Slot(7), .model = &kSata2000, .serial = "QD-W17A0255"},
    {.id = 8, .at = Slot(8), .model = &kSata2000, .serial = "QD-W17A0307"},
    {.id = 9, .at = Slot(9), .model = &kSata2000, .serial = "QD-W17A0312", .global_spare = true},
    {.id = 10, .at = Slot(10), .model = &kSas600, .serial = "6TW0D31B"},
    {.id = 11, .at = Slot(11), .model = &kSas900, .serial = "9TW01K55"},
    {.id = 12, .at = Slot(12), .model = &kSas900, .serial = "9TW01K5D"},
    {.id = 13, .at = Slot(13), .model = &kSata2000, .serial = "QD-W17A0350"},
    {.id = 14, .at = Slot(14), .model = &kSata2000, .serial = "QD-W17A0351"},
    {.id = 16, .at = Slot(15), .model = &kSata500, .serial = "BR5H-2290417"},
};
static_assert(std::size(kDisks0) == kSlots, "a disk in every slot");

constexpr HX_U16 kGroupDisks[] = {0, 1, 2, 3};
constexpr HX_U16 kGroupSpares[] = {10};
constexpr DiskGroup kDiskGroups0[] = {
    {.id = 0,
     .name = "GROUP_A",
     .level = 0x05,
     .legs = 0,
     .stripe_kib = 128,
     .disks = kGroupDisks,
     .spares = kGroupSpares},
};

constexpr HX_U16 kArchiveDisks[] = {4, 5, 6, 7, 8};
// Virtual disk 1 has been deleted.
constexpr VirtualDisk kVirtualDisks0[] = {
    {.id = 0,
     .name = "DATABASE",
     .group = 0,
     .level = 0x05,
     .legs = 0,
     .stripe_kib = 128,
     .cache = HXSIM_CACHE_WRITE_BACK | HXSIM_CACHE_READ_AHEAD,
     .disks = kGroupDisks,
     .start = 0,
     .sectors = 536870912},  // 256 GiB
    {.id = 2,
     .name = "ARCHIVE",
     .group = kNoDiskGroup,
     .level = 0x06,
     .legs = 0,
     .stripe_kib = 128,
     .cache = HXSIM_CACHE_WRITE_BACK | HXSIM_CACHE_READ_AHEAD,
     .disks = kArchiveDisks,
     .start = 0,
     .sectors = 2147483648},  // 1 TiB
};

constexpr Expander kExpanders0[] = {
    {.id = 0,
     .at = {HXSIM_DEVICE_ADAPTER, 0, 0, kUplinkPhys},
     .enclosure = 0,
     .phys = kEnclosurePhy + 1,
     .route_indexes = 512,
     .changes = 3,
     .vendor = "ORMSKIRK",
     .product = "OX-24 EXPANDER",
     .revision = "0212",
     .component_vendor = "VARDELL",
     .component = 0x0524,
     .component_revision = 2},
};

// Temperatures are degrees Celsius plus 20, voltages units of 10 millivolts; thresholds have the
// same unit, or half percents of the nominal voltage.
constexpr Element TemperatureAt(HX_U8 degrees) {
    return {.type = HX_ELEMENT_TEMPERATURE,
            .reading = static_cast<HX_U16>(20 + degrees),
            .high_critical = 20 + 60,
            .high_warning = 20 + 50,
            .low_critical = 20 + 0,
            .low_warning = 20 + 5};
}
constexpr Element VoltageOf(HX_U16 centivolts) {
    return {.type = HX_ELEMENT_VOLTAGE,
            .reading = centivolts,
            .high_critical = 20,
            .high_warning = 10,
            .low_critical = 20,
            .low_warning = 10};
}
constexpr Element kElements[] = {
    {.type = HX_ELEMENT_POWER_SUPPLY},
    {.type = HX_ELEMENT_POWER_SUPPLY},
    {.type = HX_ELEMENT_FAN, .reading = 4180, .speed_code = 3},
    {.type = HX_ELEMENT_FAN, .reading = 4210, .speed_code = 3},
    {.type = HX_ELEMENT_FAN, .reading = 4150, .speed_code = 3},
    TemperatureAt(27),  // where the air comes in
    TemperatureAt(33),  // at the disks
    TemperatureAt(41),  // at the expander
    {.type = HX_ELEMENT_DOOR},
    {.type = HX_ELEMENT_ALARM},
    VoltageOf(503),   // of 5 V
    VoltageOf(1208),  // of 12 V
};

constexpr HX_U16 kEnclosureExpanders[] = {0};
constexpr Enclosure kEnclosures0[] = {
    {.id = 0,
     .at = {HXSIM_DEVICE_EXPANDER, 0, kEnclosurePhy},
     .vendor = "ORMSKIRK",
     .product = "OX-16 SAS SHELF",
     .revision = "1.20",
     .expanders = kEnclosureExpanders,
     .elements = kElements},
};

constexpr BBU_Info kBattery{
    .status = HXSIM_BATTERY_PRESENT | HXSIM_BATTERY_SAFE_FOR_WRITE_BACK,
    .prev_status = HXSIM_BATTERY_PRESENT | HXSIM_BATTERY_CHARGING,
    .voltage = 4012,
    .supportMaxCapacity = 1900,
    .supportMinCapacity = 600,
    .maxCapacity = 1750,
    .curCapacity = 1680,
    .time_to_empty = 65535,
    .time_to_full = 65535,
    .recharge_cycle = 23,
    .featureSupport = HXSIM_BATTERY_RELEARN | HXSIM_BATTERY_THRESHOLDS,
    .temperature = 29,
    .volt_lowerbound = 3600,
    .volt_upperbound = 4250,
    .temp_lowerbound = 5,
    .temp_upperbound = 50,
    .percentage = 96,
    .percent_to_charge = 80,
    .flags = 0,
    .Reserved = {},
};

// ---- Adapter 1: three disks on ports of their own and five behind a port multiplier ----

constexpr Attachment Port(HX_U8 port) { return {HXSIM_DEVICE_ADAPTER, 1, port}; }
constexpr Attachment MultipliedPort(HX_U8 port) { return {HXSIM_DEVICE_PORT_MULTIPLIER, 0, port}; }

// Disk 2 has come out of another machine, whose system is still on it.
constexpr Disk kDisks1[] = {
    {.id = 0, .at = Port(0), .model = &kSas300, .serial = "3TW07F90"},
    {.id = 1, .at = Port(1), .model = &kSas300, .serial = "3TW07F9C"},
    {.id = 2,
     .at = Port(2),
     .model = &kSata500,
     .serial = "BR5H-1180263",
     .has_mbr = true,
     .has_system = true},
    {.id = 3, .at = MultipliedPort(0), .model = &kSata500, .serial = "BR5H-2290430"},
    {.id = 4, .at = MultipliedPort(1), .model = &kSata500, .serial = "BR5H-2290431"},
    {.id = 5, .at = MultipliedPort(2), .model = &kSata500, .serial = "BR5H-2290436"},
    {.id = 6, .at = MultipliedPort(3), .model = &kSata500, .serial = "BR5H-2290442"},
    {.id = 7, .at = MultipliedPort(4), .model = &kSata500, .serial = "BR5H-2290458"},
};

constexpr HX_U16 kMirrorDisks[] = {0, 1};
constexpr VirtualDisk kVirtualDisks1[] = {
    {.id = 0,
     .name = "MIRROR",
     .group = kNoDiskGroup,
     .level = 0x01,
     .legs = 0,
     .stripe_kib = 64,
     .cache = HXSIM_CACHE_READ_AHEAD,  // no battery keeps what has not been written
     .disks = kMirrorDisks,
     .start = 0,
     .sectors = 586006784},  // all but what makes no whole stripe
};

constexpr PortMultiplier kPortMultipliers1[] = {
    {.id = 0,
     .at = Port(3),
     .ports = 5,
     .revision = 6,
     .standards = 0x0E,  // revisions 1.0, 1.1 and 1.2 of the standard
     .vendor = 0xFAC7,
     .device = 0x3705},
};

// ---- Everything together ----

constexpr auto kBlocks0 = CutBlocks(kDisks0, kVirtualDisks0);
constexpr auto kBlocks1 = CutBlocks(kDisks1, kVirtualDisks1);

constexpr Machine kMachines[] = {
    {.disks = kDisks0,
     .blocks = kBlocks0.All(),
     .virtual_disks = kVirtualDisks0,
     .disk_groups = kDiskGroups0,
     .expanders = kExpanders0,
     .port_multipliers = {},
     .enclosures = kEnclosures0,
     .battery = &kBattery},
    {.disks = kDisks1,
     .blocks = kBlocks1.All(),
     .virtual_disks = kVirtualDisks1,
     .disk_groups = {},
     .expanders = {},
     .port_multipliers = kPortMultipliers1,
     .enclosures = {},
     .battery = nullptr},
};
static_assert(std::size(kMachines) == kAdapterCount, "every adapter has a machine");

// ---- What must hold of the rows ----

static_assert(std::ranges::all_of(kMachines,
                                  [](const Machine& machine) {
                                      return machine.disks.size() <= kMostDisks;
                                  }),
              "every disk has its light");

template <class Row>
consteval bool Ascend(std::span<const Row> rows) {
    const auto repeat = std::ranges::adjacent_find(rows, std::ranges::greater_equal{}, &Row::id);
    return repeat == rows.end();
}
consteval bool IdsAscend(const Machine& machine) {
    return Ascend(machine.disks) && Ascend(machine.blocks) && Ascend(machine.virtual_disks) &&
           Ascend(machine.disk_groups) && Ascend(machine.expanders) &&
           Ascend(machine.port_multipliers) && Ascend(machine.enclosures);
}

consteval bool BlocksFollowEachOther(const Machine& machine) {
    for (const Disk& disk : machine.disks) {
        std::uint64_t end = 0;
        for (const Block& block : machine.blocks) {
            if (block.disk != disk.id) continue;
            if (block.start != end || block.sectors == 0) return false;
            end += block.sectors;
        }
        if (end != UsableSectors(disk)) return false;
    }
    return true;
}

consteval bool VirtualDisksHaveTheirBlocks(const Machine& machine) {
    return std::ranges::all_of(machine.virtual_disks, [&](const VirtualDisk& virtual_disk) {
        const auto blocks = std::ranges::count_if(machine.blocks, [&](const Block& block) {
            return block.virtual_disk == virtual_disk.id && block.start == virtual_disk.start &&
                   block.sectors == virtual_disk.sectors;
        });
        const bool has_level = std::ranges::any_of(kLevels, [&](const Level& level) {
            return level.code == virtual_disk.level &&
                   DataDisks(level, static_cast<unsigned>(blocks), virtual_disk.legs) != 0;
        });
        return static_cast<std::size_t>(blocks) == virtual_disk.disks.size() && has_level &&
               virtual_disk.sectors % SectorsOfStripe(virtual_disk.stripe_kib) == 0;
    });
}

static_assert(std::ranges::all_of(kMachines, IdsAscend), "lists ascend by ID");
static_assert(std::ranges::all_of(kMachines, BlocksFollowEachOther),
              "no sector is in two blocks, or in none");
static_assert(std::ranges::all_of(kMachines, VirtualDisksHaveTheirBlocks),
              "a virtual disk has the same block on each of its disks");

}  // namespace

const Machine& MachineOf(HX_U8 adapter) { return kMachines[adapter]; }

}  // namespace hxsim
