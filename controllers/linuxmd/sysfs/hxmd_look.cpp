// The rows of attributes, one table for each kind of object, and the search for objects.
#include "sysfs/hxmd_look.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "sysfs/hxmd_convert.h"
#include "sysfs/hxmd_folder.h"

namespace hxmd {
namespace {

// ---- Rows ----

template <class Record>
struct Attribute {
    const char* path;
    void (*store)(Record& record, std::string_view text);
};

template <class Record, class Value>
Record RecordOf(Value Record::*field);

// Converts and stores the text, unless an earlier attribute has set the field.
template <auto field, auto convert>
void Into(decltype(RecordOf(field))& record, std::string_view text) {
    if (!(record.*field)) record.*field = convert(text);
}

template <class Record, std::size_t n>
void ReadAll(const Folder& folder, const Attribute<Record> (&rows)[n], Record& record) {
    for (const Attribute<Record>& row : rows) {
        if (const auto text = folder.Read(row.path)) row.store(record, *text);
    }
}

constexpr Attribute<Disk> kDiskRows[] = {
    {"size", Into<&Disk::sectors, ToNumber>},
    {"removable", Into<&Disk::removable, ToNumber>},
    {"ro", Into<&Disk::read_only, ToNumber>},
    {"hidden", Into<&Disk::hidden, ToNumber>},
    {"diskseq", Into<&Disk::sequence, ToNumber>},
    {"dev", Into<&Disk::device_number, ToText>},
    {"queue/logical_block_size", Into<&Disk::sector_size, ToNumber>},
    {"queue/rotational", Into<&Disk::rotational, ToNumber>},
    {"queue/write_cache", Into<&Disk::write_cache, ToText>},
    {"device/queue_depth", Into<&Disk::queue_depth, ToNumber>},
    {"device/vendor", Into<&Disk::vendor, ToText>},
    {"device/model", Into<&Disk::model, ToText>},
    {"device/name", Into<&Disk::model, ToText>},
    {"device/rev", Into<&Disk::firmware, ToText>},
    {"device/firmware_rev", Into<&Disk::firmware, ToText>},
    {"device/vpd_pg80", Into<&Disk::serial, ToSerialPage>},
    {"serial", Into<&Disk::serial, ToText>},
    {"device/serial", Into<&Disk::serial, ToText>},
    {"device/state", Into<&Disk::state, ToText>},
    {"wwid", Into<&Disk::wwid, ToText>},
    {"device/wwid", Into<&Disk::wwid, ToText>},
    {"device/cid", Into<&Disk::card, ToText>},
    {"device/type", Into<&Disk::device_type, ToNumber>},
    {"device/sas_address", Into<&Disk::sas_address, ToAddress>},
};

constexpr Attribute<Partition> kPartitionRows[] = {
    {"start", Into<&Partition::start, ToNumber>},
    {"size", Into<&Partition::sectors, ToNumber>},
    {"dev", Into<&Partition::device_number, ToText>},
};

constexpr Attribute<Array> kArrayRows[] = {
    {"md/array_state", Into<&Array::state, ToArrayState>},
    {"md/level", Into<&Array::level, ToLevel>},
    {"md/raid_disks", Into<&Array::disks, ToDiskCount>},
    {"md/chunk_size", Into<&Array::chunk, ToNumber>},
    {"md/layout", Into<&Array::layout, ToNumber>},
    {"md/component_size", Into<&Array::component_kib, ToNumber>},
    {"md/sync_action", Into<&Array::action, ToSyncAction>},
    {"md/sync_completed", Into<&Array::completed, ToCompleted>},
    {"md/resync_start", Into<&Array::resync_start, ToNumber>},
    {"md/reshape_position", Into<&Array::reshape_position, ToNumber>},
    {"md/mismatch_cnt", Into<&Array::mismatches, ToNumber>},
    {"md/sync_min", Into<&Array::sync_min, ToNumber>},
    {"md/last_sync_action", Into<&Array::last_action, ToSyncAction>},
    {"md/uuid", Into<&Array::uuid, ToUuid>},
    {"md/metadata_version", Into<&Array::metadata, ToText>},
    {"size", Into<&Array::sectors, ToNumber>},
    {"queue/logical_block_size", Into<&Array::sector_size, ToNumber>},
    {"queue/read_ahead_kb", Into<&Array::read_ahead_kib, ToNumber>},
    {"dev", Into<&Array::device_number, ToText>},
};

constexpr Attribute<Member> kMemberRows[] = {
    {"state", Into<&Member::state, ToMemberState>},
    {"slot", Into<&Member::slot, ToNumber>},
    {"offset", Into<&Member::offset, ToNumber>},
    {"size", Into<&Member::size_kib, ToNumber>},
    {"recovery_start", Into<&Member::recovery_start, ToNumber>},
    {"errors", Into<&Member::errors, ToNumber>},
    {"bad_blocks", Into<&Member::bad_blocks, ToRowCount>},
    {"unacknowledged_bad_blocks", Into<&Member::unacknowledged, ToRowCount>},
};

constexpr Attribute<Enclosure> kEnclosureRows[] = {
    {"id", Into<&Enclosure::identifier, ToText>},
    {"device/vendor", Into<&Enclosure::vendor, ToText>},
    {"device/model", Into<&Enclosure::product, ToText>},
    {"device/rev", Into<&Enclosure::revision, ToText>},
};

constexpr Attribute<Slot> kSlotRows[] = {
    {"locate", Into<&Slot::locate, ToNumber>},
    {"fault", Into<&Slot::fault, ToNumber>},
    {"active", Into<&Slot::active, ToNumber>},
    {"status", Into<&Slot::status, ToText>},
};

// ---- udev's database ----

// The text of a property of a device; empty when it has none.
std::string_view Property(std::string_view database, std::string_view name) {
    const std::string line = "\nE:" + std::string(name) + "=";
    const std::size_t at = database.find(line);
    if (at == std::string_view::npos) return {};
    const std::string_view value = database.substr(at + line.size());
    return value.substr(0, value.find('\n'));
}

// udev's entry for a block device; empty when udev has not examined it.
std::string Notes(const Folder& udev, const Text& device_number) {
    if (!device_number || device_number->find('/') != std::string::npos) return "";
    const auto text = udev.Read("b" + *device_number, kMostText);
    return text ? "\n" + *text : "";
}

Content ContentOf(const Folder& udev, const Text& device_number) {
    const std::string notes = Notes(udev, device_number);
    Content content;
    // udev writes this line when it has finished the device for the first time.
    content.known = notes.find("\nI:") != std::string::npos;
    content.partition_table = !Property(notes, "ID_PART_TABLE_TYPE").empty();
    content.anything = content.partition_table || notes.find("\nE:ID_FS_") != std::string::npos;
    return content;
}

// ---- Disks ----

struct LinkRow {
    std::string_view part;  // of the path in /sys/devices
    Link link;
};
// The first match counts: a disk behind USB may be an ATA disk as well.
constexpr LinkRow kLinks[] = {
    {"/nvme", Link::kNvme},       {"/usb", Link::kUsb},  {"/virtio", Link::kVirtio},
    {"/end_device-", Link::kSas}, {"/ata", Link::kSata},
};

Link LinkOf(std::string_view path) {
    const auto* const row = std::ranges::find_if(kLinks, [&](const LinkRow& each) {
        return path.find(each.part) != std::string_view::npos;
    });
    return row == std::end(kLinks) ? Link::kOther : row->link;
}

// False for the all-zero identifiers that some devices share.
bool Identifies(const std::string& wwid) {
    const std::size_t dot = wwid.find('.');
    return wwid.find_first_not_of("0 -", dot == std::string::npos ? 0 : dot + 1) !=
           std::string::npos;
}

std::string KeyOf(const Disk& disk, bool& stable) {
    stable = true;
    if (disk.wwid && Identifies(*disk.wwid)) return "wwid " + *disk.wwid;
    if (disk.serial) {
        const bool named = disk.link != Link::kVirtio && disk.model;
        return "serial " + (named ? disk.vendor.value_or("") + " " + *disk.model + " " : "") +
               *disk.serial;
    }
    if (disk.card) return "card " + *disk.card;
    stable = false;
    return "path " + disk.path;
}

bool IsMd(const Folder& block, const std::string& name) { return block.Has(name + "/md"); }

// Whether something other than the listed arrays holds the device.
bool IsHeld(const Folder& device, const std::vector<Array>& arrays) {
    const std::vector<std::string> holders = device.Open("holders").Names();
    return std::ranges::any_of(holders, [&](const std::string& holder) {
        return std::ranges::find(arrays, holder, &Array::name) == arrays.end();
    });
}

constexpr std::uint64_t kOptical = 5;  // SCSI peripheral device type

// None for a block device that is no disk: software devices (device-mapper, loop, zram) have no
// "device" link, and a drive without a medium has no sectors.
std::optional<Disk> ReadDisk(const Folder& block, const Folder& udev, const std::string& name,
                             const std::vector<Array>& arrays) {
    const Folder folder = block.Open(name);
    if (!folder.Has("device") || IsMd(block, name)) return std::nullopt;
    Disk disk;
    disk.name = name;
    ReadAll(folder, kDiskRows, disk);
    if (!disk.sectors || *disk.sectors == 0 || disk.hidden.value_or(0) != 0) return std::nullopt;
    if (disk.device_type.value_or(0) == kOptical) return std::nullopt;
    const std::string link = block.Link(name);
    disk.path = link.substr(std::min(link.find("/devices/"), link.size()));
    disk.link = LinkOf(disk.path);
    disk.key = KeyOf(disk, disk.stable);
    disk.content = ContentOf(udev, disk.device_number);
    disk.held = IsHeld(folder, arrays);
    for (const std::string& entry : folder.Names()) {
        if (!entry.starts_with(name) || !folder.Has(entry + "/partition")) continue;
        const Folder part = folder.Open(entry);
        Partition& partition = disk.partitions.emplace_back();
        partition.name = entry;
        partition.held = IsHeld(part, arrays);
        ReadAll(part, kPartitionRows, partition);
    }
    return disk;
}

// Two devices with the same key are two paths to one disk, which is listed once.
void JoinPaths(std::vector<Disk>& disks) {
    std::vector<Disk> joined;
    for (Disk& disk : disks) {
        const auto same = std::ranges::find(joined, disk.key, &Disk::key);
        if (same == joined.end()) {
            joined.push_back(std::move(disk));
        } else {
            same->twice = true;
        }
    }
    disks = std::move(joined);
}

// ---- Arrays ----

constexpr std::string_view kMemberPrefix = "dev-";

std::vector<Member> ReadMembers(const Folder& md) {
    std::vector<Member> members;
    for (const std::string& entry : md.Names()) {
        if (!entry.starts_with(kMemberPrefix)) continue;
        const Folder folder = md.Open(entry);
        Member member;
        ReadAll(folder, kMemberRows, member);
        if (!member.state) continue;  // it is being removed
        const std::string device = LastPart(folder.Link("block"));
        member.name = device.empty() ? entry.substr(kMemberPrefix.size()) : device;
        // A pulled disk leaves a dangling link, and its state stays in_sync until the next write.
        member.present = folder.Has("block");
        members.push_back(std::move(member));
    }
    return members;
}

// Anything may lie on an array or on a partition of it, an array, too.
bool HasHolders(const Folder& folder, const std::string& name) {
    if (!folder.Open("holders").Names().empty()) return true;
    const std::vector<std::string> names = folder.Names();
    return std::ranges::any_of(names, [&](const std::string& entry) {
        return entry.starts_with(name) && folder.Has(entry + "/partition") &&
               !folder.Open(entry + "/holders").Names().empty();
    });
}

Array ReadArrayOnce(const Folder& folder, const std::string& name) {
    Array array;
    array.name = name;
    ReadAll(folder, kArrayRows, array);
    array.members = ReadMembers(folder.Open("md"));
    array.held = HasHolders(folder, name);
    return array;
}

bool IsVirtualDisk(const Array& array) {
    if (!array.state || *array.state == ArrayState::kClear) return false;
    if (array.metadata.value_or("").starts_with("external")) return false;
    // An incomplete array does not report its level.
    return array.level || *array.state == ArrayState::kInactive;
}

// Reads the array; if its state changes meanwhile (it starts or stops), reads it once more. None
// when it is gone.
std::optional<Array> ReadArray(const Folder& block, const Folder& udev, const std::string& name) {
    const Folder folder = block.Open(name);
    Array array = ReadArrayOnce(folder, name);
    const auto state_now = [&] {
        const auto text = folder.Read("md/array_state");
        return text ? ToArrayState(*text) : std::nullopt;
    };
    if (state_now() != array.state) array = ReadArrayOnce(folder, name);
    if (!IsVirtualDisk(array)) return std::nullopt;
    const std::string notes = Notes(udev, array.device_number);
    if (!array.uuid) array.uuid = ToUuid(Property(notes, "MD_UUID"));
    const std::string title(Property(notes, "MD_NAME"));
    array.title = title.empty() ? name : title.substr(title.find(':') + 1);
    return array;
}

void FindDisk(Member& member, const std::vector<Disk>& disks) {
    for (const Disk& disk : disks) {
        if (disk.name == member.name) member.device = disk.key;
        for (const Partition& partition : disk.partitions) {
            if (partition.name != member.name || !partition.start) continue;
            member.device = disk.key;
            member.start = *partition.start;
        }
    }
}

// ---- Enclosures ----

Enclosure ReadEnclosure(const Folder& folder, const std::string& name) {
    Enclosure enclosure;
    ReadAll(folder, kEnclosureRows, enclosure);
    enclosure.key = enclosure.identifier.value_or(name);
    for (const std::string& entry : folder.Names()) {
        if (!folder.Has(entry + "/locate")) continue;
        const Folder component = folder.Open(entry);
        Slot& slot = enclosure.slots.emplace_back();
        ReadAll(component, kSlotRows, slot);
        const std::vector<std::string> devices = component.Open("device/block").Names();
        if (!devices.empty()) slot.device = devices.front();
    }
    return enclosure;
}

std::string Line(const Folder& folder, const std::string& path) {
    return std::string(Trimmed(folder.Read(path).value_or("")));
}

}  // namespace

bool HasMd() {
    const Folder root = Folder::OfSystem("/");
    if (root.Has("proc/mdstat")) return true;
    const std::string release = Line(root, "proc/sys/kernel/osrelease");
    if (release.empty() || release.find('/') != std::string::npos) return false;
    const auto modules = root.Read("lib/modules/" + release + "/modules.dep", 16 * kMostText);
    return modules && modules->find("/md-mod.ko") != std::string::npos;
}

bool HasDisks() { return Folder::OfSystem("/sys/block").IsOpen(); }

std::string LineOf(const char* folder, const std::string& file) {
    return Line(Folder::OfSystem(folder), file);
}

std::optional<Machine> Look() {
    const Folder block = Folder::OfSystem("/sys/block");
    if (!block.IsOpen()) return std::nullopt;
    const Folder udev = Folder::OfSystem("/run/udev/data");
    Machine machine;
    const std::vector<std::string> names = block.Names();
    for (const std::string& name : names) {
        if (!IsMd(block, name)) continue;
        if (auto array = ReadArray(block, udev, name)) machine.arrays.push_back(std::move(*array));
    }
    for (const std::string& name : names) {
        auto disk = ReadDisk(block, udev, name, machine.arrays);
        if (disk) machine.disks.push_back(std::move(*disk));
    }
    for (Array& array : machine.arrays) {
        for (Member& member : array.members) {
            if (member.present) FindDisk(member, machine.disks);
        }
    }
    JoinPaths(machine.disks);
    const Folder enclosures = Folder::OfSystem("/sys/class/enclosure");
    for (const std::string& name : enclosures.Names()) {
        machine.enclosures.push_back(ReadEnclosure(enclosures.Open(name), name));
    }
    machine.release = LineOf("/proc/sys/kernel", "osrelease");
    machine.boot_id = LineOf("/proc/sys/kernel", "random/boot_id");
    const std::string uptime = LineOf("/proc", "uptime");
    machine.uptime = ToNumber(std::string_view(uptime).substr(0, uptime.find('.')));
    return machine;
}

}  // namespace hxmd
