// vexorctl disk ...
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/code_table.h"
#include "codes/disk.h"
#include "codes/level.h"
#include "common/address.h"
#include "common/duration.h"
#include "conditions/hxc_answers.h"
#include "conditions/hxc_redundancy.h"
#include "conditions/hxc_spares.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/health_answers.h"
#include "model/library_record.h"
#include "model/object_health.h"
#include "model/virtual_disks.h"
#include "nouns/find_object.h"
#include "nouns/foresee.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/interrupt.h"
#include "shell/invocation.h"
#include "shell/option_value.h"
#include "shell/present.h"

namespace vexorctl::disk_noun {

namespace {

namespace hxc = hxconditions;
using fields::Block_Info;
using fields::HD_BGA_Status;
using fields::HD_Config;
using fields::HD_FreeSpaceInfo;
using fields::HD_Info;
using fields::HD_RAID_Status;
using fields::HD_SMART_Status;
using fields::Link_Endpoint;
using fields::Link_Entity;
using fields::RCT_Record;
using hxcodes::CodeTable;

// Stands for no object in the library's lists.
constexpr std::uint64_t kNoObject = 65535;
constexpr std::uint64_t kNoVirtualDisk = 255;  // in the records of blocks too

// The state of a spare, of the adapter or of a group, ends so.
constexpr std::string_view kSpareEnding = "_spare";

Cell AddressCell(const Disk& disk, ObjectKind kind, std::optional<std::uint64_t> id) {
    if (!id) return Unknown();
    if (*id == kNoObject) return None();
    return TextCell(
        Address{.adapter = disk.address.adapter, .kind = kind, .id = static_cast<unsigned>(*id)}
            .Text());
}

Cell OwnerCell(const Disk& disk) {
    return IfOffered(disk.raid, [&] {
        return AddressCell(disk, ObjectKind::kVirtualDisk, disk.raid[HD_RAID_Status::LDID]);
    });
}

Cell GroupCell(const Disk& disk) {
    if (disk.group.presence == Presence::kUnknown) return Unknown();
    const bool is_in_one = disk.group.presence == Presence::kThere;
    return AddressCell(disk, ObjectKind::kDiskGroup, is_in_one ? disk.group.group : kNoObject);
}

View<Link_Endpoint> SelfOf(const Disk& disk) { return disk.info[HD_Info::Link][Link_Entity::Self]; }
View<Link_Endpoint> ParentOf(const Disk& disk) {
    return disk.info[HD_Info::Link][Link_Entity::Parent];
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

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// What a target that is no disk itself says of the disks: those of a virtual disk, those that serve
// a disk group, those in an enclosure.
using IsMeant = std::function<bool(const Disk&)>;

IsMeant DisksMeantBy(Invocation& invocation, const std::string& typed) {
    const Selector selector = ParseSelector(typed);
    if (selector.form == Selector::Form::kSerial) return nullptr;
    const ObjectKind kind =
        selector.form == Selector::Form::kName ? ObjectKind::kVirtualDisk : selector.address.kind;
    if (kind == ObjectKind::kAdapter || kind == ObjectKind::kDisk) return nullptr;
    const Address address = FindObject(invocation, kind, typed);
    if (kind == ObjectKind::kVirtualDisk) {
        auto disks = TakeObject(LoadVirtualDisks(invocation.controller()), address).disks;
        if (!disks) throw Failure(Exit::kRefused, typed + ": its disks are not known");
        return [address, ids = *std::move(disks)](const Disk& disk) {
            return disk.address.adapter == address.adapter &&
                   std::ranges::find(ids, disk.address.id) != ids.end();
        };
    }
    if (kind == ObjectKind::kDiskGroup) {
        return [address](const Disk& disk) {
            return disk.address.adapter == address.adapter && disk.group.IsIn(address.id);
        };
    }
    if (kind == ObjectKind::kEnclosure) {
        return [address](const Disk& disk) {
            return disk.address.adapter == address.adapter &&
                   SelfOf(disk)[Link_Endpoint::EnclosureID] == address.id;
        };
    }
    throw UsageError(typed + " holds no disks: a disk, adapter, vd, dg or enclosure is needed");
}

// The same of a target that names a disk or an adapter.
IsMeant DisksNamedBy(Invocation& invocation, const std::string& typed) {
    const Selector selector = ParseSelector(typed);
    const bool is_adapter =
        selector.form == Selector::Form::kAddress && selector.address.kind == ObjectKind::kAdapter;
    const Address address =
        FindObject(invocation, is_adapter ? ObjectKind::kAdapter : ObjectKind::kDisk, typed);
    return [address, is_adapter](const Disk& disk) {
        return is_adapter ? disk.address.adapter == address.adapter : disk.address == address;
    };
}

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

// ---- Blocks -----------------------------------------------------------------------------------

struct Block {
    Address disk;
    std::uint64_t id;
    Record<Block_Info> info;
};

constexpr Column<Block> kBlockColumns[] = {
    {{"address", "DISK", kAddress, kTable, "The address of the disk it lies on"},
     [](const Block& it) { return TextCell(it.disk.Text()); }},
    {Always({"block", "BLOCK", kNumber, kTable, "Its number on the adapter"}),
     [](const Block& it) { return NumberCell(it.id); }},
    {{"start_lba", "START", kNumber, kTable, "Its first sector"},
     [](const Block& it) { return FieldCell(it.info, Block_Info::StartLBA); }},
    {{"size_bytes", "SIZE", kBytes, kTable, "Its size"},
     [](const Block& it) { return SectorsAt(it.info, Block_Info::Size); }},
    {{"vd", "VD", kReference, kTable, "The virtual disk it belongs to"},
     [](const Block& it) {
         const auto owner = it.info[Block_Info::LDID];
         if (!owner) return Unknown();
         if (*owner == kNoVirtualDisk || *owner == kNoObject) return None();
         return TextCell(Address{.adapter = it.disk.adapter,
                                 .kind = ObjectKind::kVirtualDisk,
                                 .id = static_cast<unsigned>(*owner)}
                             .Text());
     }},
    {{"state", "STATE", kCode, kTable, "Its state", &CodeTable::states},
     [](const Block& it) { return FieldCell(it.info, Block_Info::Status); }},
    {{"flags", "FLAGS", kBits, kTable, "What it is there for", &CodeTable::block_bits},
     [](const Block& it) { return FieldCell(it.info, Block_Info::Flags); }},
};

std::vector<ColumnInfo> BlockColumns() { return InfoOf(kBlockColumns); }

// The targets are looked up first, because a disk without blocks has no row here and is no fault.
bool IsWanted(const std::vector<Address>& wanted, const Address& disk) {
    return wanted.empty() || std::ranges::any_of(wanted, [&](const Address& each) {
               return each.kind == ObjectKind::kAdapter ? each.adapter == disk.adapter
                                                        : each == disk;
           });
}

constexpr ListSource kBlocksOfDiskList = ListOf(
    calls::HX_BLK_GetHDBlock::Result::Info,
    +[](const View<fields::HD_Block_Info>& disk) { return disk[fields::HD_Block_Info::ID]; });

// Adds the blocks of the wanted disks. A block that a disk lists but that has no record becomes a
// row, too, of which only the number is known.
void AddBlocks(Controller& controller, unsigned adapter, const std::vector<Address>& wanted,
               std::vector<Block>& blocks) {
    auto all = controller.ReadList(adapter, kBlockList);
    for (const auto& [disk, record] : controller.ReadList(adapter, kBlocksOfDiskList).items) {
        const Address address{
            .adapter = adapter, .kind = ObjectKind::kDisk, .id = static_cast<unsigned>(disk)};
        if (!IsWanted(wanted, address)) continue;
        const auto ids = record[fields::HD_Block_Info::BlockIDs];
        if (!ids) {
            controller.Note({.address = address.Text(),
                             .function = std::string(kBlocksOfDiskList.function),
                             .name = "unreadable",
                             .message = "which blocks it carries is not told"},
                            Exit::kRefused);
            continue;
        }
        for (const std::uint64_t id : *ids) {
            if (id != kNoObject) blocks.push_back({address, id, all.Take(id)});
        }
    }
}

Exit ListBlocks(Invocation& invocation) {
    Controller& controller = invocation.controller();
    std::vector<Address> wanted;
    for (const std::string& target : invocation.targets()) {
        const Selector selector = ParseSelector(target);
        const bool is_adapter = selector.form == Selector::Form::kAddress &&
                                selector.address.kind == ObjectKind::kAdapter;
        wanted.push_back(
            FindObject(invocation, is_adapter ? ObjectKind::kAdapter : ObjectKind::kDisk, target));
    }
    SelectAdapters(invocation);
    std::vector<Block> blocks;
    for (const unsigned adapter : controller.Selected()) {
        AddBlocks(controller, adapter, wanted, blocks);
    }
    return Present(invocation, Tabulated(invocation, kBlockColumns, blocks));
}

// ---- Remapped sectors -------------------------------------------------------------------------

struct Remapped {
    Address disk;
    Record<RCT_Record> record;
};

constexpr Column<Remapped> kRemappedColumns[] = {
    {{"address", "DISK", kAddress, kTable, "The address of the disk"},
     [](const Remapped& it) { return TextCell(it.disk.Text()); }},
    {{"lba", "LBA", kNumber, kTable, "The first of the sectors"},
     [](const Remapped& it) { return FieldCell(it.record, RCT_Record::lba); }},
    {{"sectors", "SECTORS", kNumber, kTable, "Their number"},
     [](const Remapped& it) { return FieldCell(it.record, RCT_Record::sec); }},
    {{"reason", "REASON", kCode, kTable, "Why they have been remapped", &CodeTable::remap_reasons},
     [](const Remapped& it) { return FieldCell(it.record, RCT_Record::flag); }},
};

std::vector<ColumnInfo> RemappedColumns() { return InfoOf(kRemappedColumns); }

Exit ListRemapped(Invocation& invocation) {
    using Function = calls::HX_PD_GetRCT;
    constexpr std::uint64_t kPage = 1000;
    const Address address = FindTarget(invocation, ObjectKind::kDisk);
    Controller& controller = invocation.controller();
    std::vector<Remapped> all;
    for (std::uint64_t start = 0;;) {
        const auto page =
            controller.Get(address.Text(), Request<Function>{{Function::AdapterID, address.adapter},
                                                             {Function::HD_ID, address.id},
                                                             {Function::n, kPage},
                                                             {Function::s, start},
                                                             {Function::e, start + kPage - 1}});
        if (!page) break;
        const std::size_t before = all.size();
        for (auto& record : (*page)[Function::Result::Record]) {
            all.push_back({address, std::move(record)});
        }
        start += all.size() - before;
        const auto count = (*page)[Function::Result::Count];
        if (!count) {
            controller.Note({.address = address.Text(),
                             .function = std::string(Function::kName),
                             .name = "unreadable",
                             .message = "how many sectors have been remapped is not told"},
                            Exit::kRefused);
        }
        if (all.size() == before || start >= count.value_or(0)) break;
    }
    return Present(invocation, Tabulated(invocation, kRemappedColumns, all));
}

// ---- Changes ----------------------------------------------------------------------------------

// The disk as plans show it to a person.
std::string DiskInPlan(const Disk& disk) {
    return disk.address.Text() + " (" + Shown(disk.info[HD_Info::Model]) + ", serial " +
           Shown(disk.info[HD_Info::SerialNo]) + ", " + SectorsText(disk.info[HD_Info::Size]) +
           ", " + Shown(disk.state) + ")";
}

Disk FindDisk(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kDisk);
    return TakeObject(LoadDisks(invocation.controller()), address);
}

// A change of the disk by one command. Callers add losses and a question where they need them.
Change ChangeOf(const Disk& disk, const std::string& what, Command command) {
    return {.what = what + " " + DiskInPlan(disk),
            .commands = {std::move(command)},
            .address = disk.address.Text()};
}

// The disks that are to be found: those that the target means, or that in the slot of an enclosure.
std::vector<Disk> DisksToLocate(Invocation& invocation) {
    Controller& controller = invocation.controller();
    const std::string& target = invocation.targets().front();
    const auto slot = invocation.Number("--slot", 65535);
    const Selector selector = ParseSelector(target);
    if (!slot && selector.form == Selector::Form::kAddress &&
        selector.address.kind == ObjectKind::kEnclosure) {
        throw UsageError(target + " is the address of an enclosure; say with --slot which disk");
    }
    IsMeant meant = DisksMeantBy(invocation, target);
    if (!meant) meant = DisksNamedBy(invocation, target);
    controller.Select(controller.Adapters());
    std::vector<Disk> disks = LoadDisks(controller);
    std::erase_if(disks, [&](const Disk& disk) {
        if (!meant(disk)) return true;
        const auto phys = ParentOf(disk)[Link_Endpoint::PhyID];
        return slot && (!phys || phys->empty() || phys->front() != *slot);
    });
    if (disks.empty()) {
        throw Failure(Exit::kNoObject,
                      target + (slot ? ": no disk is in slot " + std::to_string(*slot) +
                                           ", and only a disk has a light"
                                     : ": there is no disk to be located"));
    }
    return disks;
}

Request<calls::HX_LocateArrayDevice> LightOf(const Disk& disk, std::uint64_t device, bool on) {
    using Function = calls::HX_LocateArrayDevice;
    return {{Function::AdapterID, disk.address.adapter},
            {Function::deviceType, device},
            {Function::deviceId, disk.address.id},
            {Function::ledStatus, on ? 1 : 0}};
}

Exit LocateDisk(Invocation& invocation) {
    const bool off = invocation.Has("--off");
    const std::string* const time = invocation.Get("--for");
    if (off && time != nullptr) throw UsageError("--off and --for exclude each other");
    const Duration duration =
        time == nullptr ? Duration() : ReadOption("--for", *time, ParseDuration);
    if (duration > std::chrono::days(1)) throw UsageError("--for is at most 1d");
    const std::vector<Disk> disks = DisksToLocate(invocation);
    const std::uint64_t device = CodeNamed(invocation.controller(), &CodeTable::devices, "disk");
    std::vector<std::string> addresses;
    Change change;
    for (const Disk& disk : disks) {
        addresses.push_back(disk.address.Text());
        change.commands.push_back(LightOf(disk, device, !off));
    }
    const std::string& target = invocation.targets().front();
    const Selector selector = ParseSelector(target);
    change.address = disks.size() == 1 ? addresses.front()
                     : selector.form == Selector::Form::kAddress
                         ? selector.address.Text()
                         : FindObject(invocation, ObjectKind::kVirtualDisk, target).Text();
    change.what = "Switch the locate light of " + Joined(addresses, ", ") + (off ? " off" : " on");
    const Exit exit = CarryOut(invocation, change);
    if (time == nullptr || exit != Exit::kDone || invocation.Has("--dry-run")) return exit;
    WatchForInterrupts();
    SleepMilliseconds(static_cast<unsigned>(duration.count()));
    Controller& controller = invocation.controller();
    for (const Disk& disk : disks) {
        const auto answer = controller.Ask(LightOf(disk, device, false));
        if (answer.exit != Exit::kDone) {
            controller.NoteAnswer(disk.address.Text(), calls::HX_LocateArrayDevice::kName, answer);
        }
    }
    ReportFaults(controller.faults());
    return Interrupted() ? Exit::kInterrupted : controller.exit();
}

// Only where it is known is anything said of what will be refused.
bool IsKnownNotToBe(const Disk& disk, std::string_view state) {
    return disk.state && *disk.state != state;
}

Exit SpareDisk(Invocation& invocation) {
    using OfAdapter = calls::HX_PD_FreeHD2GlobalSpare;
    using OfGroup = calls::HX_PD_FreeHD2DGSpare;
    const std::string* const group = invocation.Get("--dg");
    const Disk disk = FindDisk(invocation);
    const auto carry_out = [&](Change change, std::optional<unsigned> of) {
        change.alters = [id = disk.address.id, of](hxc::Adapter& adapter) {
            MakeSpare(adapter, id, of);
        };
        if (IsKnownNotToBe(disk, kFreeState)) {
            change.refusals.push_back("it is " + *disk.state +
                                      ", and a spare is made of a free disk");
        }
        return CarryOut(invocation, change);
    };
    if (group == nullptr) {
        return carry_out(
            ChangeOf(disk, "Make a spare of", RequestFor(disk.address, OfAdapter::HD_ID)), {});
    }
    const Address owner = FindObject(invocation, ObjectKind::kDiskGroup, *group);
    if (owner.adapter != disk.address.adapter) {
        throw UsageError(owner.Text() + " and " + disk.address.Text() + " are on two adapters");
    }
    auto request = RequestFor(disk.address, OfGroup::HD_ID);
    request.Add({OfGroup::DG_ID, owner.id});
    return carry_out(ChangeOf(disk, "Make a spare of " + owner.Text() + " of", std::move(request)),
                     owner.id);
}

Exit UnspareDisk(Invocation& invocation) {
    const Disk disk = FindDisk(invocation);
    Change change = ChangeOf(disk, "Make a spare no more of",
                             RequestFor(disk.address, calls::HX_PD_Spare2FreeHD::HD_ID));
    change.alters = [id = disk.address.id](hxc::Adapter& adapter) { MakeNoSpare(adapter, id); };
    if (disk.state && !disk.state->ends_with(kSpareEnding)) {
        change.refusals.push_back("it is " + *disk.state + " and no spare");
    }
    return CarryOut(invocation, change);
}

Exit WipeDisk(Invocation& invocation) {
    using Function = calls::HX_PD_WipeHDMDD;
    const Disk disk = FindDisk(invocation);
    auto request = RequestFor(disk.address, Function::HD_ID);
    request.Add({Function::Force, invocation.Has("--force") ? 1 : 0});
    Change change = ChangeOf(disk, "Wipe the configuration off", std::move(request));
    const Cell owner = OwnerCell(disk);
    if (!owner.text.empty()) {
        change.losses.push_back("what it holds of " + owner.text + " will be lost");
        if (!invocation.Has("--force")) {
            change.refusals.push_back("it carries blocks of " + owner.text +
                                      "; --force wipes it all the same");
        }
    } else if (owner.state == Cell::State::kUnknown) {
        change.losses.emplace_back("which virtual disk it serves is not known");
    }
    change.alters = [id = disk.address.id](hxc::Adapter& adapter) { EmptyDisk(adapter, id); };
    if (!disk.boot_record)
        change.losses.emplace_back("whether it holds a boot record is not known");
    if (disk.boot_record.value_or(false)) change.losses.emplace_back("it holds a boot record");
    change.losses.emplace_back("what the disk knows of virtual disks and spares will be lost");
    change.confirm = disk.address.Text();
    return CarryOut(invocation, change);
}

constexpr std::string_view kOnlineName = "online";  // what --state takes
constexpr std::string_view kFreeName = "free";
constexpr std::string_view kOfflineState = "offline";

// What a change of the disk's state does, and whether the controller takes it.
void AddState(Change& change, const Disk& disk, const std::string& state) {
    const unsigned id = disk.address.id;
    const bool is_off = disk.state == kOfflineState;
    if (state == kFreeName) {
        change.alters = [id](hxc::Adapter& adapter) { EmptyDisk(adapter, id); };
        if (disk.state == kConfiguredState) {
            change.refusals.emplace_back("it serves a virtual disk or a disk group");
        }
        return;
    }
    const bool on = state == kOnlineName;
    change.alters = [id, on](hxc::Adapter& adapter) { SwitchDisk(adapter, id, on); };
    if (disk.state && on != is_off) {
        change.refusals.push_back("it is " +
                                  (on ? *disk.state + " and not offline" : "offline already"));
    }
}

// Its state and its settings are two calls; only what was named is sent.
Exit SetDisk(Invocation& invocation) {
    using SetStatus = calls::HX_PD_SetHDStatus;
    using SetConfig = calls::HX_PD_SetConfig;
    const Disk disk = FindDisk(invocation);
    Change change = ChangeOf(disk, "Set", {});
    change.commands.clear();
    if (const std::string* const state = invocation.Get("--state")) {
        auto request = RequestFor(disk.address, SetStatus::HD_ID);
        request.Add(
            {SetStatus::Action, CodeOption(invocation, "--state", &CodeTable::disk_actions)});
        change.commands.push_back(std::move(request));
        change.losses.push_back("state: " + Shown(disk.state) + " -> " + *state);
        if (*state != kOnlineName) change.confirm = disk.address.Text();
        change.needs_force = true;
        AddState(change, disk, *state);
    }
    const auto write_cache = SwitchOption(invocation, "--write-cache");
    const auto smart = SwitchOption(invocation, "--smart");
    if (write_cache || smart) {
        const auto kept = [&](auto field) { return Kept(disk.config, field, disk.address); };
        auto request = RequestFor(disk.address, SetConfig::HD_ID);
        request.Add(
            {SetConfig::WriteCacheOn, write_cache ? *write_cache : kept(HD_Config::WriteCacheOn)});
        request.Add({SetConfig::SMARTOn, smart ? *smart : kept(HD_Config::SMARTOn)});
        request.Add({SetConfig::Online, kept(HD_Config::Online)});
        request.Add({SetConfig::DriveSpeed, kept(HD_Config::DriveSpeed)});
        request.Add({SetConfig::HDID, disk.address.id});
        change.commands.push_back(std::move(request));
    }
    if (change.commands.empty()) throw UsageError("no setting was named");
    return CarryOut(invocation, change);
}

constexpr OptionRow kLocateOptions[] = {
    {"--off", "", "Switch the light off"},
    {"--for", "DURATION", "Switch it off again after 90s or 10m; Ctrl-C does so at once"},
    {"--slot", "NUMBER", "Of an enclosure: only the disk in this slot, its phy"},
};
constexpr OptionRow kSpareOptions[] = {
    {"--dg", "DG", "Only for this disk group; otherwise for all of the adapter"},
};
constexpr OptionRow kWipeOptions[] = {
    {"--force", "", "Even when it carries blocks of a virtual disk"},
};
constexpr OptionRow kSetOptions[] = {
    {"--state", "STATE", "What the disk is to become", "online offline free"},
    {"--force", "", "Even when a virtual disk cannot be used any more then"},
    {"--write-cache", "ON", "Its write cache", "on off"},
    {"--smart", "ON", "SMART", "on off"},
};

constexpr OptionRow kListOptions[] = {
    {"--adapter", "NUMBER", "Only those of this adapter"},
    {"--free", "", "Only those that new virtual disks can be made of"},
    {"--spare", "", "Only spares"},
};
constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr const auto& kListFunctions =
    kNamesOf<calls::HX_PD_GetHDInfo_Ext, calls::HX_PD_GetHDInfo, calls::HX_PD_GetConfig,
             calls::HX_PD_GetSmartStatus, calls::HX_PD_GetHDRaidStatus, calls::HX_PD_GetBGAStatus,
             calls::HX_PD_GetFreeSpaceInfo, calls::HX_PD_GetMBRInfo, calls::HX_PD_GetSpareInfo,
             calls::HX_DG_GetInfo, calls::HX_LD_GetInfo, calls::HX_LD_GetConfig,
             calls::HX_LD_GetStatus, calls::HX_BLK_GetInfo>;

constexpr CommandRow kCommands[] = {
    {.noun = "disk",
     .verb = "list",
     .summary = "List the disks",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kListOptions,
     .functions = kListFunctions,
     .examples = {"vexorctl disk list a0/dg0", "vexorctl disk list --free --sort=-size_bytes"},
     .run = ListDisks,
     .columns = Columns,
     .note =
         "A virtual disk as the target means the disks that it lies on, a disk group those that "
         "serve it, its spares among them, an enclosure those in it."},
    {.noun = "disk",
     .verb = "show",
     .summary = "Show all about disks",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kAdapterOption,
     .functions = kListFunctions,
     .examples = {"vexorctl disk show a0/pd3", "vexorctl disk show serial:6TW0D21A -o json"},
     .run = ListDisks,
     .columns = Columns},
    {.noun = "disk",
     .verb = "blocks",
     .summary = "List the blocks that disks carry",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kAdapterOption,
     .functions = kNamesOf<calls::HX_BLK_GetInfo, calls::HX_BLK_GetHDBlock>,
     .examples = {"vexorctl disk blocks a0/pd0", "vexorctl disk blocks --bytes --no-header"},
     .run = ListBlocks,
     .columns = BlockColumns},
    {.noun = "disk",
     .verb = "remapped",
     .summary = "List the sectors of a disk that have been remapped",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .functions = kNamesOf<calls::HX_PD_GetRCT>,
     .examples = {"vexorctl disk remapped a0/pd3", "vexorctl disk remapped a0/pd3 -o csv"},
     .run = ListRemapped,
     .columns = RemappedColumns},
    {.noun = "disk",
     .verb = "set",
     .summary = "Change the state or the settings of a disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kSetOptions,
     .functions =
         kNamesOf<calls::HX_PD_SetHDStatus, calls::HX_PD_SetConfig, calls::HX_PD_GetConfig>,
     .examples = {"vexorctl disk set a0/pd3 --write-cache on --dry-run",
                  "vexorctl disk set a0/pd3 --state offline --dry-run"},
     .run = SetDisk,
     .columns = ChangeColumns,
     .note =
         "A disk that a virtual disk cannot do without is set offline or free only with --force. "
         "It asks for the address of the disk.",
     .changes = true},
    {.noun = "disk",
     .verb = "spare",
     .summary = "Make a free disk a spare",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kSpareOptions,
     .functions = kNamesOf<calls::HX_PD_FreeHD2GlobalSpare, calls::HX_PD_FreeHD2DGSpare>,
     .examples = {"vexorctl disk spare a0/pd11 --dry-run",
                  "vexorctl disk spare a0/pd11 --dg a0/dg0 --dry-run"},
     .run = SpareDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "disk",
     .verb = "unspare",
     .summary = "Make a spare a free disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .functions = kNamesOf<calls::HX_PD_Spare2FreeHD>,
     .examples = {"vexorctl disk unspare a0/pd9 --dry-run",
                  "vexorctl disk unspare a0/pd9 --dry-run -o json"},
     .run = UnspareDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "disk",
     .verb = "wipe",
     .summary = "Take the configuration off a disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kWipeOptions,
     .functions = kNamesOf<calls::HX_PD_WipeHDMDD>,
     .examples = {"vexorctl disk wipe a0/pd11 --dry-run",
                  "vexorctl disk wipe a0/pd11 --force --dry-run"},
     .run = WipeDisk,
     .columns = ChangeColumns,
     .note = "It asks for the address of the disk.",
     .changes = true},
    {.noun = "disk",
     .verb = "locate",
     .summary = "Switch the locate light of disks",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kLocateOptions,
     .functions = kNamesOf<calls::HX_LocateArrayDevice>,
     .examples = {"vexorctl disk locate a0/pd3 --for 10m --dry-run",
                  "vexorctl disk locate a0/enc0 --slot 5 --dry-run"},
     .run = LocateDisk,
     .columns = ChangeColumns,
     .note =
         "A virtual disk or disk group as the target means its disks, an enclosure with --slot the "
         "disk in that slot.",
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::disk_noun
