#include "nouns/disk_show.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "codes/code_table.h"
#include "codes/disk.h"
#include "codes/level.h"
#include "common/address.h"
#include "conditions/hxc_answers.h"
#include "conditions/hxc_redundancy.h"
#include "conditions/hxc_spares.h"
#include "library_fields.h"
#include "model/health_answers.h"
#include "model/library_record.h"
#include "model/object_health.h"
#include "nouns/disk_targets.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/present.h"

namespace vexorctl::disk_noun {

namespace {

namespace hxc = hxconditions;
using fields::HD_BGA_Status;
using fields::HD_Config;
using fields::HD_FreeSpaceInfo;
using fields::HD_Info;
using fields::HD_RAID_Status;
using fields::HD_SMART_Status;
using fields::Link_Endpoint;
using hxcodes::CodeTable;

Cell AddressCell(const Disk& disk, ObjectKind kind, std::optional<std::uint64_t> id) {
    if (!id) return Unknown();
    if (*id == kNoObject) return None();
    return TextCell(
        Address{.adapter = disk.address.adapter, .kind = kind, .id = static_cast<unsigned>(*id)}
            .Text());
}

Cell GroupCell(const Disk& disk) {
    if (disk.group.presence == Presence::kUnknown) return Unknown();
    const bool is_in_one = disk.group.presence == Presence::kThere;
    return AddressCell(disk, ObjectKind::kDiskGroup, is_in_one ? disk.group.group : kNoObject);
}

Cell PhyCell(const Disk& disk) {
    const auto phys = ParentOf(disk)[Link_Endpoint::PhyID];
    return !phys || phys->empty() ? Unknown() : NumberCell(phys->front());
}

// The interface has no number of a bay: the phy of the device above tells one from the others.
Cell SlotCell(const Disk& disk) {
    const auto enclosure = SelfOf(disk)[Link_Endpoint::EnclosureID];
    if (!enclosure) return Unknown();
    return *enclosure == kNoObject ? None() : PhyCell(disk);
}

using enum Kind;
using enum Place;

std::vector<std::string_view> StateWords() {
    std::vector<std::string_view> words;
    for (const hxcodes::DiskWord& word : hxcodes::kDiskWords) words.push_back(word.name);
    words.push_back(kCopybackState);
    return words;
}

// With what it can do as a spare.
struct ShownDisk : Disk {
    Cell spare_for;
    std::optional<std::string_view> health;
};

std::vector<std::string_view> FitWords() {
    using enum hxc::SpareFit;
    return {hxc::NameOf(kFits), hxc::NameOf(kBroken), hxc::NameOf(kOtherGroup),
            hxc::NameOf(kTooSmall), hxc::NameOf(kMember)};
}

constexpr ColumnInfo kFitColumns[] = {
    Always({"vd", "VD", kReference, kWide, "The virtual disk"}),
    OneOf(FitWords, {"fit", "FIT", kWord, kWide, "Whether it fits, or why not"}),
    {"needed_bytes", "NEEDED", kBytes, kWide, "The size that a member takes there"},
};

Cell SpareCell(const Disk& disk, const hxc::Answers& answers) {
    const hxc::Adapter* const adapter = AdapterIn(answers, disk.address.adapter);
    if (adapter == nullptr || !adapter->disks_query.IsRead()) return Unknown();
    const auto spare = std::ranges::find(adapter->disks, disk.address.id, &hxc::Disk::id);
    if (spare == adapter->disks.end()) return Unknown();
    if (!hxc::IsSpare(*spare)) return None();
    if (!adapter->virtual_disks_query.IsRead()) return Unknown();
    if (disk.group.presence == Presence::kUnknown) return Unknown();
    std::vector<std::vector<Cell>> fits;
    for (const hxc::VirtualDisk& each : adapter->virtual_disks) {
        if (hxcodes::FindCode(hxcodes::kLevels, each.level) == nullptr) return Unknown();
        if (!hxc::IsRedundant(each.level)) continue;
        const auto needed =
            hxc::NeededForAny(*adapter, each, hxc::RedundancyOf(each, adapter->disks).lost);
        const Address address{
            .adapter = disk.address.adapter, .kind = ObjectKind::kVirtualDisk, .id = each.id};
        fits.push_back({TextCell(address.Text()),
                        needed
                            ? TextCell(std::string(hxc::NameOf(hxc::FitOf(*spare, each, *needed))))
                            : Unknown(),
                        SectorsCell(needed)});
    }
    return ItemsCell(std::move(fits));
}

bool MayBeSpare(const Disk& disk) {
    return disk.state != kFreeState && disk.state != kConfiguredState;
}

std::vector<ShownDisk> WithSpares(Controller& controller, std::vector<Disk> disks) {
    const hxc::Answers answers = AnswersFor(controller, disks);
    const ObjectHealth health(answers);
    std::vector<ShownDisk> shown;
    for (Disk& each : disks) {
        Cell spare_for = MayBeSpare(each) ? SpareCell(each, answers) : None();
        ShownDisk& disk = shown.emplace_back();
        static_cast<Disk&>(disk) = std::move(each);
        disk.spare_for = std::move(spare_for);
        disk.health = health.OfDisk(disk.address);
    }
    return shown;
}

constexpr Column<ShownDisk> kColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "Its address"},
     [](const ShownDisk& it) { return TextCell(it.address.Text()); }},
    {OneOf(StateWords, {"state", "STATE", kWord, kTable, "Its state in one word"}),
     [](const ShownDisk& it) { return TextCell(it.state); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"},
     [](const ShownDisk& it) { return SectorsAt(it.info, HD_Info::Size); }},
    {{"free_bytes", "FREE", kBytes, kTable, "What is free for new virtual disks"},
     [](const ShownDisk& it) { return SectorsAt(it.free_space, HD_FreeSpaceInfo::Size); }},
    {{"vd", "VD", kReference, kTable, "The virtual disk that it serves"},
     [](const ShownDisk& it) { return OwnerCell(it); }},
    {{"dg", "DG", kReference, kTable, "The disk group that it serves"},
     [](const ShownDisk& it) { return GroupCell(it); }},
    {{"model", "MODEL", kText, kWide, "Its model"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::Model); }},
    {{"serial", "SERIAL", kText, kTable, "Its serial number"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::SerialNo); }},
    {{"connection", "LINK", kCode, kWide, "How it is connected", &CodeTable::connections},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::ConnectionType); }},
    {{"enclosure", "ENCLOSURE", kReference, kWide, "The enclosure that it is in"},
     [](const ShownDisk& it) {
         return AddressCell(it, ObjectKind::kEnclosure, SelfOf(it)[Link_Endpoint::EnclosureID]);
     }},
    {{"slot", "SLOT", kNumber, kWide,
      "Its bay in the enclosure: the phy there; none outside of one"},
     [](const ShownDisk& it) { return SlotCell(it); }},
    {{"phy", "PHY", kNumber, kWide, "The phy of its parent to which it is connected"},
     [](const ShownDisk& it) { return PhyCell(it); }},
    {{"smart_alarm", "SMART ALARM", kBool, kWide, "Whether a SMART threshold is exceeded"},
     [](const ShownDisk& it) {
         return FieldCell(it.smart, HD_SMART_Status::SmartThresholdExceeded);
     }},
    {OneOf(HealthWords, {"health", "HEALTH", kWord, kWide,
                         "How well it is, by its own conditions; check tells which"}),
     [](const ShownDisk& it) { return it.health ? TextCell(std::string(*it.health)) : Unknown(); }},
    {{"status", "STATUS", kBits, kWide, "Its state as bits", &CodeTable::disk_bits},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::Status); }},
    {{"firmware_version", "FIRMWARE", kText, kWide, "The version of its firmware"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::FWVersion); }},
    {{"wwn", "WWN", kHex, kWide, "Its world wide name"},
     [](const ShownDisk& it) { return HexAt(it.info, HD_Info::WWN); }},
    {{"sas_address", "SAS ADDRESS", kHex, kWide, "Its SAS address"},
     [](const ShownDisk& it) { return HexAt(SelfOf(it), Link_Endpoint::SAS_Address); }},
    {{"parent", "PARENT", kCode, kWide, "The kind of device that it is connected to",
      &CodeTable::devices},
     [](const ShownDisk& it) { return FieldCell(ParentOf(it), Link_Endpoint::DevType); }},
    {{"parent_id", "PARENT ID", kNumber, kWide, "The number of that device"},
     [](const ShownDisk& it) { return FieldCell(ParentOf(it), Link_Endpoint::DevID); }},
    {{"features", "FEATURES", kBits, kWide, "What it can do", &CodeTable::disk_features},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::FeatureSupport); }},
    {{"type_code", "TYPE", kNumber, kWide, "Its type, as bits of the controller"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::HDType); }},
    {{"device_type_code", "DEVICE TYPE", kNumber, kWide, "Its kind, a code of the controller"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::DeviceType); }},
    {{"usable", "USABLE", kBool, kWide, "Whether virtual disks can be made of it"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::CanLogicalUsed); }},
    {{"fixed", "FIXED", kBool, kWide, "Whether it is not removable"},
     [](const ShownDisk& it) { return FieldCell(it.free_space, HD_FreeSpaceInfo::isFixed); }},
    {{"boot_record", "BOOT RECORD", kBool, kWide, "Whether it holds a boot record"},
     [](const ShownDisk& it) {
         return it.boot_record ? NumberCell(*it.boot_record ? 1 : 0) : Unknown();
     }},
    {{"write_cache", "WRITE CACHE", kBool, kWide, "Setting: its write cache is on"},
     [](const ShownDisk& it) { return FieldCell(it.config, HD_Config::WriteCacheOn); }},
    {{"smart_on", "SMART ON", kBool, kWide, "Setting: SMART is on"},
     [](const ShownDisk& it) { return FieldCell(it.config, HD_Config::SMARTOn); }},
    {{"online", "ONLINE", kBool, kWide, "Setting: it is online"},
     [](const ShownDisk& it) { return FieldCell(it.config, HD_Config::Online); }},
    {{"link_speed", "SPEED", kCode, kWide, "The speed of its link", &CodeTable::link_speeds},
     [](const ShownDisk& it) { return FieldCell(it.config, HD_Config::DriveSpeed); }},
    {{"activity", "ACTIVITY", kCode, kWide, "What is going on in the background",
      &CodeTable::activities},
     [](const ShownDisk& it) { return FieldCell(it.activity, HD_BGA_Status::Bga); }},
    {{"activity_state", "ACTIVITY STATE", kCode, kWide, "How that stands",
      &CodeTable::activity_states},
     [](const ShownDisk& it) { return FieldCell(it.activity, HD_BGA_Status::BgaStatus); }},
    {{"progress_ratio", "PROGRESS", kRatio, kWide, "How far it is"},
     [](const ShownDisk& it) {
         return ProgressAt(it.activity, HD_BGA_Status::Bga, HD_BGA_Status::Percentage);
     }},
    {{"locate_light", "LOCATE", kBool, kWide, "Whether its locate light is on"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::LocateLEDStatus); }},
    {{"locate_light_code", "LOCATE CODE", kNumber, kWide,
      "The locate light, a code of the controller"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::LocateLEDStatus); }},
    {{"activity_light_code", "ACTIVITY LIGHT", kNumber, kWide,
      "The activity light, a code of the controller"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::ActivityLEDStatus); }},
    {{"error_light_code", "ERROR LIGHT", kNumber, kWide,
      "The error light, a code of the controller"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::ErrorLEDStatus); }},
    {{"pio_mode", "PIO", kNumber, kWide, "The highest PIO mode"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::PIOMode); }},
    {{"mdma_mode", "MDMA", kNumber, kWide, "The highest multiword DMA mode"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::MDMAMode); }},
    {{"udma_mode", "UDMA", kNumber, kWide, "The highest ultra DMA mode"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::UDMAMode); }},
    {{"current_pio_mode", "PIO NOW", kNumber, kWide, "The PIO mode in use"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::CurrentPIOMode); }},
    {{"current_mdma_mode", "MDMA NOW", kNumber, kWide, "The multiword DMA mode in use"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::CurrentMDMAMode); }},
    {{"current_udma_mode", "UDMA NOW", kNumber, kWide, "The ultra DMA mode in use"},
     [](const ShownDisk& it) { return FieldCell(it.info, HD_Info::CurrentUDMAMode); }},
    {Of(kFitColumns,
        {"spare_for", "SPARE FOR", kItems, kWide,
         "Of a spare: each virtual disk with redundancy on its adapter, and whether it "
         "can take the place of a member there, or why not"}),
     [](const ShownDisk& it) { return it.spare_for; }},
};

// Empty when all targets name disks and adapters, which are looked up in the list itself.
std::vector<IsMeant> MeantByOwners(Invocation& invocation) {
    std::vector<IsMeant> meant;
    Controller& controller = invocation.controller();
    const auto select_all = [&] { controller.Select(controller.Adapters()); };
    for (const std::string& target : invocation.targets()) {
        meant.push_back(DisksMeantBy(invocation, target));
        if (meant.back()) select_all();
    }
    if (std::ranges::none_of(meant, [](const IsMeant& each) { return each != nullptr; })) return {};
    for (std::size_t i = 0; i < meant.size(); ++i) {
        if (meant[i]) continue;
        meant[i] = DisksNamedBy(invocation, invocation.targets()[i]);
        select_all();
    }
    return meant;
}

Exit ShowDisks(Invocation& invocation, std::vector<Disk> disks, const std::vector<IsMeant>& meant) {
    if (meant.empty()) {
        return Show(invocation, Tabulated(invocation, kColumns,
                                          WithSpares(invocation.controller(), std::move(disks))));
    }
    std::erase_if(disks, [&](const Disk& disk) {
        return std::ranges::none_of(meant, [&](const IsMeant& each) { return each(disk); });
    });
    return Present(
        invocation,
        Tabulated(invocation, kColumns, WithSpares(invocation.controller(), std::move(disks))),
        invocation.row().verb == "show" ? "list" : "table");
}

}  // namespace

Cell OwnerCell(const Disk& disk) {
    return IfOffered(disk.raid, [&] {
        return AddressCell(disk, ObjectKind::kVirtualDisk, disk.raid[HD_RAID_Status::LDID]);
    });
}

std::vector<ColumnInfo> DiskColumns() { return InfoOf(kColumns); }

Exit ListDisks(Invocation& invocation) {
    const std::vector<IsMeant> meant = MeantByOwners(invocation);
    SelectAdapters(invocation);
    std::vector<Disk> disks = LoadDisks(invocation.controller());
    if (invocation.Has("--free")) {
        std::erase_if(disks, [](const Disk& disk) { return disk.state != kFreeState; });
    }
    if (invocation.Has("--spare")) {
        std::erase_if(disks, [](const Disk& disk) {
            return !disk.state.value_or("").ends_with(kSpareEnding);
        });
    }
    return ShowDisks(invocation, std::move(disks), meant);
}

}  // namespace vexorctl::disk_noun
