// Reads one adapter of a topology, with defaults for members that its text leaves out.
#include "topology/hxsim_topology_adapter.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "model/hxsim_adapter_model.h"
#include "model/hxsim_home.h"
#include "model/hxsim_link.h"
#include "model/hxsim_random.h"
#include "model/hxsim_space.h"
#include "model/hxsim_stripes.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_event_queue.h"
#include "topology/hxsim_topology_columns.h"

namespace hxsim {
namespace {

class AdapterReader {
public:
    AdapterReader(TopologyObject& text, const DiskModels& models, Machine& machine,
                  Adapter& adapter)
        : text_(text), models_(models), machine_(machine), adapter_(adapter) {}

    void Run() {
        ReadInfo();
        text_.ForEach("port_multipliers",
                      [&](TopologyObject& object) { ReadPortMultiplier(object); });
        text_.ForEach("expanders", [&](TopologyObject& object) { ReadExpander(object); });
        text_.ForEach("enclosures", [&](TopologyObject& object) { ReadEnclosure(object); });
        text_.ForEach("disks", [&](TopologyObject& object) { ReadDisks(object); });
        text_.ForEach("disk_groups", [&](TopologyObject& object) { ReadGroup(object); });
        text_.ForEach("virtual_disks", [&](TopologyObject& object) { ReadVirtualDisks(object); });
        ReadBattery();
        ReadImages();
        QueueStart();
    }

private:
    // ---- Model and settings ----

    void ReadInfo() {
        std::string name = "large";
        text_.Take("model", name);
        const AdapterModel* const model = FindAdapterModel(name);
        if (model == nullptr) text_.Refuse("model", std::string(kAdapterModelNames));
        adapter_.info = model->info;
        adapter_.config = model->config;
        TakeObject("info", kInfoColumns, adapter_.info);
        TakeObject("config", kConfigColumns, adapter_.config);
        if (adapter_.info.PortCount > HX_MAX_PORTS) {
            text_.Refuse("info.PortCount", "at most " + std::to_string(HX_MAX_PORTS));
        }
        std::string serial;
        if (!text_.Take("serial", serial)) serial = DrawSerial(machine_.random, "VC", 8);
        SetText(adapter_.info.SerialNo, serial);
        SetWorldWideName(adapter_.info.WWN, WorldWideName(Device::kAdapter, adapter_.id, 0, 0));
        for (unsigned port = 0; port < adapter_.info.PortCount; ++port) {
            SetWorldWideName(adapter_.info.PortSasAddress[port],
                             WorldWideName(Device::kAdapter, adapter_.id, 0, port + 1));
        }
    }

    template <class Columns, class Row>
    void TakeObject(const char* member, const Columns& columns, Row& row) {
        std::optional<TopologyObject> object = text_.TakeObject(member);
        if (!object) return;
        object->TakeAll(columns, row);
        object->Finish();
    }

    // ---- Devices ----

    // The device's attachment: a port of the adapter, a phy of an expander or a port of a port
    // multiplier.
    void ReadAttachment(TopologyObject& object, Attachment& at) const {
        constexpr const char* kExpected =
            "an object with \"port\", with \"expander\" and \"phy\", or with \"port_multiplier\" "
            "and \"phy\"";
        TopologyObject place = object.NeedObject("at", kExpected);
        if (place.Take("port", at.phy)) {
            at.parent = Device::kAdapter;
            at.parent_id = adapter_.id;
        } else if (place.Take("expander", at.parent_id)) {
            at.parent = Device::kExpander;
            place.TakeNeeded("phy", at.phy);
        } else if (place.Take("port_multiplier", at.parent_id)) {
            at.parent = Device::kPortMultiplier;
            place.TakeNeeded("phy", at.phy);
        } else {
            object.Refuse("at", kExpected);
        }
        place.Take("phys", at.phys);
        place.Finish();
    }

    // The default ID: the number after the previous row's ID.
    template <class Rows>
    static HX_U16 NextId(const Rows& rows) {
        return rows.empty() ? HX_U16{0} : static_cast<HX_U16>(rows.back().id + 1);
    }

    // Appends a row; lists ascend by ID, in the text as in the machine.
    template <class Rows, class Row>
    static void Append(const TopologyObject& object, Rows& rows, Row row) {
        if (row.id == kNoId || (!rows.empty() && row.id <= rows.back().id)) {
            object.Refuse("id", "a number above that of the one before, below 65535");
        }
        rows.push_back(std::move(row));
    }

    // Reads the row of an attached device, with the members that its columns name.
    template <class Row, class Columns>
    Row ReadAttached(TopologyObject& object, const std::vector<Row>& rows,
                     const Columns& columns) const {
        Row row;
        row.id = NextId(rows);
        ReadAttachment(object, row);
        object.TakeAll(columns, row);
        return row;
    }

    void ReadPortMultiplier(TopologyObject& object) {
        std::vector<PortMultiplier>& rows = adapter_.port_multipliers;
        Append(object, rows, ReadAttached(object, rows, kPortMultiplierColumns));
    }

    void ReadExpander(TopologyObject& object) {
        std::vector<Expander>& rows = adapter_.expanders;
        Append(object, rows, ReadAttached(object, rows, kExpanderColumns));
    }

    void ReadEnclosure(TopologyObject& object) {
        Enclosure row = ReadAttached(object, adapter_.enclosures, kEnclosureColumns);
        std::size_t number = 0;
        object.ForEach("elements", [&](TopologyObject& element) {
            for (unsigned count = CountOf(element); count > 0; --count) {
                if (number == kMostElements) {
                    object.Refuse("elements", "at most 255 elements");
                }
                Element each = ReadElement(element);
                each.enclosure = row.id;
                each.number = static_cast<HX_U8>(number++);
                adapter_.elements.push_back(each);
            }
        });
        Append(object, adapter_.enclosures, row);
    }

    // The number of identical devices that the object describes.
    static unsigned CountOf(TopologyObject& object) {
        HX_U8 count = 1;
        object.Take("count", count);
        if (count == 0) object.Refuse("count", "at least 1");
        return count;
    }

    static Element ReadElement(TopologyObject& object) {
        Element element;
        element.type = object.NeedCode<ElementType>("type", "the kind of element");
        if (element.type == ElementType::kFan) {
            object.TakeNeeded("rpm", element.reading);
            element.nominal = element.reading;
            element.speed_code = 3;
            object.Take("nominal", element.nominal);
            object.Take("speed_code", element.speed_code);
        } else if (element.type == ElementType::kTemperature) {
            ReadTemperature(object, element);
        } else if (element.type == ElementType::kVoltage) {
            object.TakeNeeded("centivolts", element.reading);
            element.nominal = element.reading;
            object.Take("nominal", element.nominal);
            // In half percents of the nominal voltage.
            element.high_critical = element.low_critical = 20;
            element.high_warning = element.low_warning = 10;
            object.TakeAll(kThresholdColumns, element);
        }
        return element;
    }

    // The text has degrees Celsius; the interface adds 20, so that a byte suffices.
    static void ReadTemperature(TopologyObject& object, Element& element) {
        constexpr HX_U8 kShift = 20;
        constexpr HX_U8 kMost = 235;
        element.high_critical = 60;
        element.high_warning = 50;
        element.low_critical = 0;
        element.low_warning = 5;
        object.TakeAll(kThresholdColumns, element);
        HX_U8 celsius = 0;
        object.TakeNeeded("celsius", celsius);
        for (HX_U8* const each : {&element.high_critical, &element.high_warning,
                                  &element.low_critical, &element.low_warning, &celsius}) {
            if (*each > kMost) object.Refuse("celsius", "temperatures up to 235");
            *each = static_cast<HX_U8>(*each + kShift);
        }
        element.reading = celsius;
    }

    // ---- Disks ----

    void ReadDisks(TopologyObject& object) {
        Disk first;
        first.id = NextId(adapter_.disks);
        object.Take("id", first.id);
        ReadAttachment(object, first);
        if (first.parent == Device::kExpander) {
            const Expander* const expander = Find(adapter_.expanders, first.parent_id);
            if (expander == nullptr) object.Refuse("at", "an expander that there is");
            first.enclosure = expander->enclosure;
        }
        object.TakeAll(kDiskColumns, first);
        ReadModel(object, first);
        ReadSpare(object, first);
        const unsigned count = CountOf(object);
        for (unsigned i = 0; i < count; ++i) AddDisk(object, first, i, count);
    }

    void ReadModel(TopologyObject& object, Disk& disk) {
        constexpr const char* kExpected = "the name of one of disk_models";
        object.TakeNeeded("model", disk.model, kExpected);
        const auto found = models_.find(disk.model);
        if (found == models_.end()) object.Refuse("model", kExpected);
        const DiskModel& model = found->second;
        disk.firmware = model.firmware;
        disk.sectors = model.sectors;
        disk.sas = model.sas;
        disk.speed = model.speed;
        // Always the same draws for the same text, so that machines are reproducible.
        series_ = model.serials;
    }

    static void ReadSpare(TopologyObject& object, Disk& disk) {
        bool global = false;
        object.Take("global_spare", global);
        if (global) disk.spare = Spare::kGlobal;
        // Whether the group exists is checked after all groups are read.
        if (object.Take("group_spare", disk.spare_group)) disk.spare = Spare::kGroup;
    }

    // Among identical disks, each has the phy and the slot after the previous disk's.
    void AddDisk(TopologyObject& object, const Disk& first, unsigned i, unsigned count) {
        Disk disk = first;
        const unsigned phy = first.phy + i * first.phys;
        if (phy > 255 || first.id + i >= kNoId) {
            object.Refuse("count", "as many as there are phys and numbers");
        }
        disk.id = static_cast<HX_U16>(first.id + i);
        disk.phy = static_cast<HX_U8>(phy);
        if (first.slot != kNoId) disk.slot = static_cast<HX_U16>(first.slot + i);
        if (!object.Take("serial", disk.serial)) {
            do {
                disk.serial = DrawSerial(machine_.random, series_, 6);
            } while (std::ranges::count(adapter_.disks, disk.serial, &Disk::serial) != 0);
        } else if (count != 1) {
            object.Refuse("serial", "no serial number for several disks");
        }
        disk.wwn = WorldWideName(Device::kDisk, adapter_.id, disk.id, 0);
        TakeHexadecimal(object, "wwn", disk.wwn);
        if (adapter_.disks.size() == adapter_.info.MaxHD_Ext) {
            object.Refuse("count", "at most " + std::to_string(adapter_.info.MaxHD_Ext) +
                                       " disks, as MaxHD_Ext");
        }
        const HX_U16 id = disk.id;
        Append(object, adapter_.disks, std::move(disk));
        ResetDisk(adapter_, id);
        object.ForEach("remaps", [&](TopologyObject& remap) { ReadRemap(remap, id); });
    }

    static void TakeHexadecimal(TopologyObject& object, const char* member, std::uint64_t& number) {
        std::string digits;
        if (!object.Take(member, digits)) return;
        const char* const end = digits.data() + digits.size();
        const auto [last, error] = std::from_chars(digits.data(), end, number, 16);
        if (error != std::errc{} || last != end) {
            object.Refuse(member, "a text of up to 16 hexadecimal digits");
        }
    }

    void ReadRemap(TopologyObject& object, HX_U16 disk) {
        Remap remap;
        remap.disk = disk;
        remap.sectors = 1;
        object.TakeNeeded("lba", remap.lba);
        object.Take("sectors", remap.sectors);
        object.TakeCode("reason", remap.reason);
        adapter_.remaps.push_back(remap);
        std::ranges::sort(adapter_.remaps, {},
                          [](const Remap& each) { return std::tuple(each.disk, each.lba); });
    }

    // ---- Disk groups ----

    // Reads level, legs and stripe size of a disk group or a virtual disk.
    template <class Row>
    static void ReadLevel(TopologyObject& object, Row& row) {
        row.level = object.NeedCode<Level>("level", "a RAID level");
        const bool asked = object.Take("legs", row.legs);
        object.Take("stripe_kib", row.stripe_kib);
        if (!asked && RowOf(row.level).legs) row.legs = 2;
    }

    // Reads the member disks of a virtual disk or a disk group.
    std::vector<HX_U16> ReadMembers(TopologyObject& object, Level level, HX_U8 legs) {
        std::vector<HX_U16> disks;
        object.TakeNeeded("disks", disks, "a list of disks");
        std::vector<HX_U16> sorted = disks;
        std::ranges::sort(sorted);
        if (std::ranges::adjacent_find(sorted) != sorted.end()) {
            object.Refuse("disks", "no disk twice");
        }
        for (const HX_U16 disk : disks) {
            if (Find(adapter_.disks, disk) == nullptr) {
                object.Refuse("disks",
                              "disks that there are; " + std::to_string(disk) + " is none");
            }
        }
        if (disks.size() > HX_MAX_HDS ||
            !CanBeMade(RowOf(level), static_cast<unsigned>(disks.size()), legs)) {
            object.Refuse("disks", "as many disks as the level can be made of");
        }
        return disks;
    }

    void ReadGroup(TopologyObject& object) {
        DiskGroup group;
        group.id = NextId(adapter_.disk_groups);
        object.TakeAll(kDiskGroupColumns, group);
        ReadLevel(object, group);
        const std::vector<HX_U16> disks = ReadMembers(object, group.level, group.legs);
        group.width = static_cast<HX_U8>(disks.size());
        const HX_U16 id = group.id;
        Append(object, adapter_.disk_groups, std::move(group));
        SetHomes(adapter_, Owner::kDiskGroup, id, disks);
    }

    // ---- Virtual disks ----

    void ReadVirtualDisks(TopologyObject& object) {
        VirtualDisk first;
        first.id = NextId(adapter_.virtual_disks);
        first.initialised = true;
        object.TakeAll(kVirtualDiskColumns, first);
        if (const auto bits = object.TakeCodes<CacheBit>("cache")) {
            first.cache = 0;
            for (const CacheBit bit : *bits) first.cache |= bit;
        }
        if (first.foreign) first.state = State::kForeign;
        const std::vector<HX_U16> disks = ReadPlace(object, first);
        first.width = static_cast<HX_U8>(disks.size());
        const Sectors block = ReadBlock(object, first);
        const unsigned count = CountOf(object);
        for (unsigned i = 0; i < count; ++i) AddVirtualDisk(object, first, i, count, disks, block);
    }

    // Reads the virtual disk's disks: its own or those of its group.
    std::vector<HX_U16> ReadPlace(TopologyObject& object, VirtualDisk& row) {
        if (!object.Take("disk_group", row.group)) {
            ReadLevel(object, row);
            return ReadMembers(object, row.level, row.legs);
        }
        const DiskGroup* const group = Find(adapter_.disk_groups, row.group);
        if (group == nullptr) object.Refuse("disk_group", "a disk group that there is");
        row.level = group->level;
        row.legs = group->legs;
        row.stripe_kib = group->stripe_kib;
        object.Take("slot", row.slot);
        object.Take("stripe_kib", row.stripe_kib);
        return DisksOf(adapter_, Owner::kDiskGroup, row.group);
    }

    // Reads the sectors of its block on each disk, given directly or by the size of its data.
    static Sectors ReadBlock(TopologyObject& object, VirtualDisk& row) {
        constexpr Sectors kMost = Sectors{1} << 50;
        if (row.stripe_kib == 0) object.Refuse("stripe_kib", "at least 1");
        Sectors block = 0;
        HX_U32 gib = 0;
        if (object.Take("gib", gib)) {
            block = BlockSectors(row.level, row.width, row.legs, row.stripe_kib, gib * kGib);
            row.size = gib * kGib;
        }
        if (object.Take("block_sectors", block) && block <= kMost) {
            row.size = DataSectors(row.level, row.width, row.legs, row.stripe_kib, block);
        }
        if (block == 0 || block > kMost || row.size == 0) {
            object.Refuse("gib", "a size in GiB, or block_sectors of at least a stripe");
        }
        return block;
    }

    // Among identical virtual disks, each has the slot after the previous one's and its number
    // appended to the name.
    void AddVirtualDisk(TopologyObject& object, const VirtualDisk& first, unsigned i,
                        unsigned count, const std::vector<HX_U16>& disks, Sectors block) {
        VirtualDisk row = first;
        if (first.id + i >= kNoVirtualDisk) {
            object.Refuse("id", "numbers of virtual disks from 0 to 254");
        }
        row.id = static_cast<HX_U16>(first.id + i);
        row.slot = static_cast<HX_U8>(first.slot + i);
        if (count > 1) row.name += std::to_string(i);
        if (row.name.size() > HX_NAME_SIZE) {
            object.Refuse("name", "at most " + std::to_string(HX_NAME_SIZE) + " bytes");
        }
        const HX_U16 id = row.id;
        Append(object, adapter_.virtual_disks, std::move(row));
        CutBlocks(object, id, disks, block);
        if (first.group == kNoId) SetHomes(adapter_, Owner::kVirtualDisk, id, disks);
    }

    // Cuts the block from the first large enough free run of each disk; on a disk group these start
    // at the same sector.
    void CutBlocks(const TopologyObject& object, HX_U16 id, const std::vector<HX_U16>& disks,
                   Sectors block) {
        for (std::size_t position = 0; position < disks.size(); ++position) {
            const Block* const free = FirstFree(adapter_, disks[position], block);
            const Status refusal = free == nullptr
                                       ? Status::kNoSpace
                                       : CheckCut(adapter_, disks[position], free->start, block);
            if (refusal != Status::kSuccess) {
                object.Refuse("disks", "room for a block of " + std::to_string(block) +
                                           " sectors on disk " + std::to_string(disks[position]));
            }
            Cut(adapter_, disks[position], free->start, block, id, static_cast<HX_U8>(position));
        }
    }

    // ---- Battery and flash ----

    void ReadBattery() {
        std::optional<TopologyObject> object = text_.TakeObject("battery");
        if (!object) return;
        Battery battery;
        BBU_Info& info = battery.info;
        info.status = BatteryBit::kPresent | BatteryBit::kSafeForWriteBack;
        info.prev_status = BatteryBit::kPresent | BatteryBit::kCharging;
        info.voltage = 4012;
        info.supportMaxCapacity = 1900;
        info.supportMinCapacity = 600;
        info.maxCapacity = 1750;
        info.curCapacity = 1680;
        info.time_to_empty = 65535;
        info.time_to_full = 65535;
        info.recharge_cycle = 23;
        info.featureSupport = BatteryFeature::kRelearn | BatteryFeature::kThresholds;
        info.temperature = 29;
        info.volt_lowerbound = 3600;
        info.volt_upperbound = 4250;
        info.temp_lowerbound = 5;
        info.temp_upperbound = 50;
        info.percent_to_charge = 80;
        object->TakeAll(kBatteryColumns, info);
        object->Finish();
        if (info.maxCapacity == 0 || info.curCapacity > info.maxCapacity) {
            object->Refuse("curCapacity", "a charge of at most maxCapacity, above 0");
        }
        info.percentage = static_cast<HX_U8>(100U * info.curCapacity / info.maxCapacity);
        battery.since = machine_.clock.start;
        battery.charge_at_since = info.curCapacity;
        adapter_.batteries.push_back(battery);
    }

    // All image types, unless the text names some. Their content follows from the adapter until
    // another image is written.
    void ReadImages() {
        std::set<Image> types;
        if (const auto named = text_.TakeCodes<Image>("images")) {
            types.insert(named->begin(), named->end());
        } else {
            for (const hxcodes::Named& each : hxcodes::kImageNames) {
                types.insert(static_cast<Image>(each.code));
            }
        }
        for (const Image type : types) {
            FlashImage image;
            image.type = type;
            adapter_.images.push_back(image);
        }
    }

    // ---- Events ----

    // Queues the events that a controller reports at start-up, in its order.
    void QueueStart() {
        const Time now = machine_.clock.start;
        Queue(adapter_, now, EventKind::kAdapterFound, adapter_.id, {},
              TextOf(adapter_.info.SerialNo));
        QueueForEach(adapter_.expanders, EventKind::kExpanderPluggedIn);
        QueueForEach(adapter_.disks, EventKind::kDiskOnline);
        if (!adapter_.batteries.empty()) Queue(adapter_, now, EventKind::kBatteryPresent, 0);
        QueueForEach(adapter_.disk_groups, EventKind::kDiskGroupCreated);
        QueueForEach(adapter_.virtual_disks, EventKind::kVirtualDiskCreated);
    }

    template <class Rows>
    void QueueForEach(const Rows& rows, EventKind kind) {
        for (const auto& row : rows) Queue(adapter_, machine_.clock.start, kind, row.id);
    }

    TopologyObject& text_;
    const DiskModels& models_;
    Machine& machine_;
    Adapter& adapter_;
    std::string series_;  // of the serial numbers of the disks being read
};

}  // namespace

void ReadAdapter(TopologyObject& text, const DiskModels& models, Machine& machine,
                 Adapter& adapter) {
    AdapterReader(text, models, machine, adapter).Run();
}

}  // namespace hxsim
