// The records of disks.
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <span>

#include "calls/hxmd_list_page.h"
#include "calls/hxmd_session.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/status.h"
#include "hxraid.h"
#include "rules/hxmd_state.h"
#include "sysfs/hxmd_system.h"
#include "system/hxmd_device.h"
#include "system/hxmd_proof.h"

namespace hxmd {
namespace {

using hxcodes::ConnectionType;
using hxcodes::Device;
using hxcodes::DiskBit;
using hxcodes::DiskFeature;
using hxcodes::NumberOf;
using hxcodes::Status;

constexpr std::uint64_t kReserved = 4096;  // sectors: a partition table's 2 MiB

Role RoleOf(const View& view, const Disk& disk) {
    const auto& spares = view.kept.spares;
    const bool spare = std::ranges::find(spares, disk.id, &KeptSpare::disk) != spares.end();
    return RoleOf(view.machine, disk, spare);
}

bool Has(const Role& role, decltype(DiskBit::kOnline) bit) {
    return (role.bits & NumberOf(bit)) != 0;
}

bool IsFree(const Role& role) {
    return Has(role, DiskBit::kOnline) && (role.bits & ~NumberOf(DiskBit::kOnline)) == 0;
}

const Disk* FindDisk(const View& view, HX_U16 id) {
    const auto found = std::ranges::find(view.machine.disks, id, &Disk::id);
    return found == view.machine.disks.end() ? nullptr : &*found;
}

// One record for each disk.
template <class Request, class Record, class Describe, class IdOf>
HX_U8 ListDisks(HX_U8 adapter, Request* request, Record (Request::*list)[1], Describe describe,
                IdOf id_of) {
    return ListEach(adapter, request, list, &Machine::disks, describe, id_of,
                    NumberOf(Status::kNoDisk));
}

// ---- What a disk is ----

HX_U8 ConnectionOf(Link link) {
    switch (link) {
        case Link::kSata:
            return NumberOf(ConnectionType::kSata);
        case Link::kSas:
            return NumberOf(ConnectionType::kSas);
        case Link::kNvme:
            return NumberOf(ConnectionType::kNvme);
        case Link::kVirtio:
            return NumberOf(ConnectionType::kVirtio);
        case Link::kUsb:
            return NumberOf(ConnectionType::kUsb);
        case Link::kOther:
            break;
    }
    return NumberOf(ConnectionType::kOther);
}

void SetName(HX_U8 (&field)[8], std::uint64_t name) {
    for (unsigned byte = 0; byte < sizeof field; ++byte) {
        field[byte] = static_cast<HX_U8>(name >> (56 - 8 * byte));
    }
}

// The 64 bits of "naa.5000c500a1b2c3d4"; none for longer names and other forms.
std::optional<std::uint64_t> WorldWideName(const Text& wwid) {
    if (!wwid) return std::nullopt;
    const std::string_view text = *wwid;
    if (!text.starts_with("naa.") && !text.starts_with("eui.")) return std::nullopt;
    constexpr std::size_t kPrefix = 4, kDigits = 16;
    if (text.size() != kPrefix + kDigits) return std::nullopt;
    std::uint64_t name = 0;
    const auto [stop, error] =
        std::from_chars(text.data() + kPrefix, text.data() + text.size(), name, 16);
    if (error != std::errc() || stop != text.data() + text.size()) return std::nullopt;
    return name;
}

HX_U32 FeaturesOf(const View& view, const Disk& disk) {
    HX_U32 features = 0;
    const auto& smart = view.kept.smart;
    if (std::ranges::find(smart, disk.id, &KeptSmart::disk) != smart.end()) {
        features |= NumberOf(DiskFeature::kSmart);
    }
    if (disk.write_cache) features |= NumberOf(DiskFeature::kWriteCache);
    if (disk.queue_depth.value_or(0) > 1) features |= NumberOf(DiskFeature::kQueueing);
    return features;
}

void DescribePlace(const Machine& machine, const Disk& disk, HD_Info& info) {
    info.Link.Self.EnclosureID = info.Link.Parent.EnclosureID = kNoId;
    if (!disk.present) return;
    for (const Enclosure& enclosure : machine.enclosures) {
        const auto slot = std::ranges::find(enclosure.slots, disk.name, &Slot::device);
        if (slot == enclosure.slots.end()) continue;
        info.Link.Self.EnclosureID = enclosure.id;
        info.LocateLEDStatus = slot->locate.value_or(0) != 0 ? 1 : 0;
        info.ErrorLEDStatus = slot->fault.value_or(0) != 0 ? 1 : 0;
        info.ActivityLEDStatus = slot->active.value_or(0) != 0 ? 1 : 0;
        return;
    }
}

HD_Info DescribeDisk(const View& view, const Disk& disk) {
    HD_Info info{};
    info.Link.Parent.DevType = NumberOf(Device::kAdapter);
    info.Link.Self.DevType = NumberOf(Device::kDisk);
    info.Link.Self.DevID = disk.id;
    SetName(info.Link.Self.SAS_Address, disk.sas_address.value_or(0));
    DescribePlace(view.machine, disk, info);
    info.Status = RoleOf(view, disk).bits;
    info.ConnectionType = ConnectionOf(disk.link);
    info.DeviceType = static_cast<HX_U8>(disk.device_type.value_or(0));
    info.FeatureSupport = FeaturesOf(view, disk);
    const std::string vendor = disk.vendor ? *disk.vendor + " " : "";
    SetText(info.Model, disk.model ? vendor + *disk.model : "");
    SetText(info.SerialNo, disk.serial.value_or(""));
    SetText(info.FWVersion, disk.firmware.value_or(""));
    SetName(info.WWN, WorldWideName(disk.wwid).value_or(0));
    info.Size.value = disk.sectors.value_or(0);
    return info;
}

HD_FreeSpaceInfo DescribeFreeSpace(const View& view, const Disk& disk) {
    HD_FreeSpaceInfo space{};
    space.ID = disk.id;
    space.isFixed = disk.removable.value_or(0) == 0 ? 1 : 0;
    const std::uint64_t sectors = disk.sectors.value_or(0);
    if (IsFree(RoleOf(view, disk)) && sectors > kReserved) space.Size.value = sectors - kReserved;
    return space;
}

HD_Config DescribeDiskSettings(const View& view, const Disk& disk) {
    HD_Config config{};
    config.HDID = disk.id;
    config.WriteCacheOn = disk.write_cache == "write back" ? 1 : 0;
    config.Online = Has(RoleOf(view, disk), DiskBit::kOnline) ? 1 : 0;
    return config;
}

// While a disk is being filled, its activity is the rebuild of its array.
HD_BGA_Status DescribeActivity(const View& view, const Disk& disk) {
    HD_BGA_Status status{};
    const Role role = RoleOf(view, disk);
    status.HDID = disk.id;
    status.Status = role.bits;
    if (!Has(role, DiskBit::kRebuilding)) return status;
    const auto array = std::ranges::find(view.machine.arrays, role.serves, &Array::id);
    if (array == view.machine.arrays.end()) return status;
    const Activity activity = ActivityOf(*array);
    status.Bga = NumberOf(activity.kind);
    status.BgaStatus = NumberOf(activity.state);
    status.Percentage = activity.percent;
    return status;
}

HD_SMART_Status DescribeSmart(const View& view, const Disk& disk) {
    HD_SMART_Status status{};
    status.HDID = disk.id;
    const auto& smart = view.kept.smart;
    const auto row = std::ranges::find(smart, disk.id, &KeptSmart::disk);
    // Without a measurement no threshold is known to be exceeded.
    status.SmartThresholdExceeded = row != smart.end() && row->passed == 0 ? 1 : 0;
    return status;
}

HD_RAID_Status DescribeRole(const View& view, const Disk& disk) {
    const Role role = RoleOf(view, disk);
    HD_RAID_Status status{};
    status.HDID = disk.id;
    status.DGID = role.serves;
    status.Status = role.bits;
    return status;
}

HX_U16 IdOfDisk(const HD_Info& info) { return info.Link.Self.DevID; }

// ---- Contents of disks ----

// udev's database answers for everybody; where udev has not examined the disk, root looks itself.
bool IsPartitioned(const Disk& disk) {
    if (disk.content.partition_table || !disk.partitions.empty()) return true;
    if (disk.content.known || geteuid() != 0) return false;
    const Descriptor device =
        OpenDevice(disk.name, disk.device_number, disk.sectors, Access::kRead);
    if (!device.IsOpen()) return true;  // nobody has seen that there is none
    const Signature signature = Probe(device, 0, *disk.sectors * kSectorBytes, Kinds::kTablesToo);
    return signature.found == Found::kUnknown || signature.type == "gpt" || signature.type == "dos";
}

HX_U8 FindTables(const View& view, HD_MBR_Info* info) {
    if (info == nullptr) return NumberOf(Status::kNullAddress);
    if (info->HDCount > HX_MAX_HDS) return NumberOf(Status::kBadCount);
    const std::span asked(info->HDIDs, info->HDCount);
    const auto is_missing = [&](HX_U16 id) { return FindDisk(view, id) == nullptr; };
    if (std::ranges::any_of(asked, is_missing)) return NumberOf(Status::kNoDisk);
    std::ranges::transform(asked, info->hasMBR, [&](HX_U16 id) -> HX_BOOLEAN {
        return IsPartitioned(*FindDisk(view, id)) ? 1 : 0;
    });
    return HX_SUCCESS;
}

bool HoldsSystem(const SystemDevices& system, const Disk& disk) {
    if (system.names.contains(disk.name)) return true;
    return std::ranges::any_of(disk.partitions, [&](const Partition& partition) {
        return system.names.contains(partition.name);
    });
}

// Only root can open the disk; others have what sysfs and udev know.
bool IsProvedFree(const View& view, const Disk& disk) {
    FreeDisk free;
    return geteuid() != 0 ||
           ProveFree(view.machine, disk, Purpose::kLook, free) == Status::kSuccess;
}

HX_U8 FindUse(const View& view, HX_U8 kind, HX_U8 count, const HX_U16* ids) {
    if (ids == nullptr && count != 0) return NumberOf(Status::kNullAddress);
    if (kind != 1) return NumberOf(Status::kBadAction);
    const SystemDevices system = FindSystem();
    HX_U8 status = HX_SUCCESS;
    for (const HX_U16 id : std::span(ids, count)) {
        const Disk* const disk = FindDisk(view, id);
        if (disk == nullptr) return NumberOf(Status::kNoDisk);
        const bool is_free = IsFree(RoleOf(view, *disk));
        // If the search for the system's disks is incomplete, any disk that is not free may be one.
        if (HoldsSystem(system, *disk) || (!system.complete && !is_free)) {
            return NumberOf(Status::kHoldsSystem);
        }
        if (!is_free || !IsProvedFree(view, *disk)) status = NumberOf(Status::kHeld);
    }
    return status;
}

}  // namespace
}  // namespace hxmd

HX_U8 HX_PD_GetHDInfo(HX_U8 AdapterID, HD_Info_Request* request) {
    return hxmd::ListDisks(AdapterID, request, &HD_Info_Request::hdInfo, hxmd::DescribeDisk,
                           hxmd::IdOfDisk);
}

HX_U8 HX_PD_GetHDInfo_Ext(HX_U8 AdapterID, HD_Info_Request* request) {
    return hxmd::ListDisks(AdapterID, request, &HD_Info_Request::hdInfo, hxmd::DescribeDisk,
                           hxmd::IdOfDisk);
}

HX_U8 HX_PD_GetFreeSpaceInfo(HX_U8 AdapterID, HD_FreeSpaceInfo_Request* request) {
    return hxmd::ListDisks(AdapterID, request, &HD_FreeSpaceInfo_Request::hdFreeSpaceInfo,
                           hxmd::DescribeFreeSpace, &HD_FreeSpaceInfo::ID);
}

HX_U8 HX_PD_GetConfig(HX_U8 AdapterID, HD_Config_Request* request) {
    return hxmd::ListDisks(AdapterID, request, &HD_Config_Request::hdConfig,
                           hxmd::DescribeDiskSettings, &HD_Config::HDID);
}

HX_U8 HX_PD_GetBGAStatus(HX_U8 AdapterID, HD_BGA_Status_Request* request) {
    return hxmd::ListDisks(AdapterID, request, &HD_BGA_Status_Request::hdBgaStatus,
                           hxmd::DescribeActivity, &HD_BGA_Status::HDID);
}

HX_U8 HX_PD_GetSmartStatus(HX_U8 AdapterID, HD_SMART_Status_Request* request) {
    return hxmd::ListDisks(AdapterID, request, &HD_SMART_Status_Request::hdSmartStatus,
                           hxmd::DescribeSmart, &HD_SMART_Status::HDID);
}

HX_U8 HX_PD_GetHDRaidStatus(HX_U8 AdapterID, HD_RAID_Status_Request* request) {
    return hxmd::ListDisks(AdapterID, request, &HD_RAID_Status_Request::hdRaidStatus,
                           hxmd::DescribeRole, &HD_RAID_Status::HDID);
}

HX_U8 HX_PD_GetMBRInfo(HX_U8 AdapterID, HD_MBR_Info* info) {
    return hxmd::OnView(AdapterID,
                        [&](const hxmd::View& view) { return hxmd::FindTables(view, info); });
}

HX_U8 HX_DiskHasOS(HX_U8 AdapterID, HX_U8 kind, HX_U8 count, const HX_U16* HDIDs) {
    return hxmd::OnView(
        AdapterID, [&](const hxmd::View& view) { return hxmd::FindUse(view, kind, count, HDIDs); });
}
