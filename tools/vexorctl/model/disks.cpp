#include "model/disks.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

#include "codes/activity.h"
#include "codes/code_table.h"
#include "codes/disk.h"
#include "codes/named.h"
#include "model/controller_codes.h"
#include "model/disk_groups.h"
#include "model/enclosures.h"
#include "model/library_record.h"
#include "model/sightings.h"
#include "model/virtual_disks.h"

namespace vexorctl {

namespace {

constexpr ListSource kDiskList =
    ListOf(calls::HX_PD_GetHDInfo_Ext::Result::HD_Info, &DeviceId<fields::HD_Info>);
constexpr ListSource kDiskConfigList = ListOf(
    calls::HX_PD_GetConfig::Result::Config,
    +[](const View<fields::HD_Config>& config) { return config[fields::HD_Config::HDID]; });
constexpr ListSource kSmartList = ListOf(
    calls::HX_PD_GetSmartStatus::Result::HD_SMART_Status,
    +[](const View<fields::HD_SMART_Status>& smart) {
        return smart[fields::HD_SMART_Status::HDID];
    });
constexpr ListSource kRaidList = ListOf(
    calls::HX_PD_GetHDRaidStatus::Result::Status, +[](const View<fields::HD_RAID_Status>& status) {
        return status[fields::HD_RAID_Status::HDID];
    });
constexpr ListSource kFreeSpaceList = ListOf(
    calls::HX_PD_GetFreeSpaceInfo::Result::HD_Info,
    +[](const View<fields::HD_FreeSpaceInfo>& space) {
        return space[fields::HD_FreeSpaceInfo::ID];
    });

// A disk's state in one word. A file of codes gives the bits other numbers, so they are compared by
// name: a bit with the name of one of ours means the same.
std::string StateWord(std::uint64_t status, const ControllerCodes& codes) {
    const auto names = codes.table().disk_bits;
    if (names.empty()) return std::to_string(status);
    std::uint64_t ours = 0;
    for (std::uint64_t bit = 1; bit != 0 && bit <= status; bit <<= 1) {
        if ((status & bit) == 0) continue;
        const auto* const row = hxcodes::FindName(hxcodes::kDiskBits, hxcodes::NameOf(names, bit));
        if (row == nullptr) return std::to_string(status);
        ours |= row->code;
    }
    return std::string(hxcodes::DiskWordOf(ours));
}

// The group of each disk. When the disks of one group are unknown, that group could have any disk
// that is in no other, so the group of these disks is unknown.
class Memberships {
public:
    explicit Memberships(const List<fields::DG_Info>& groups) : of_others_(groups.presence) {
        if (of_others_ == Presence::kThere) of_others_ = Presence::kNotOffered;
        for (const auto& [id, group] : groups.items) {
            Add(DisksOf(group.view()), id);
            Add(SparesOf(group.view()), id);
        }
    }

    Membership Of(std::uint64_t disk) const {
        const auto found = groups_.find(disk);
        if (found == groups_.end()) return {of_others_, 0};
        return {Presence::kThere, found->second};
    }

private:
    void Add(const std::optional<std::vector<std::uint64_t>>& disks, std::uint64_t group) {
        if (!disks) {
            of_others_ = Presence::kUnknown;
            return;
        }
        for (const std::uint64_t disk : *disks) {
            groups_.emplace(disk, static_cast<unsigned>(group));
        }
    }

    std::map<std::uint64_t, unsigned> groups_;
    Presence of_others_;
};

// Virtual disks and disk groups: this or more stands for none.
constexpr std::uint64_t kNoObject = 255;

// The library answers for 128 disks at once.
constexpr std::size_t kDisksPerBootRecordCall = 128;

using BootRecords = calls::HX_PD_GetMBRInfo;

AnswerTo<BootRecords> AskBootRecords(Controller& controller, unsigned adapter,
                                     std::span<const Disk> disks) {
    std::string ids;
    for (const Disk& disk : disks) {
        ids.append(ids.empty() ? "" : " ").append(std::to_string(disk.address.id));
    }
    return controller.Ask(Request<BootRecords>{{BootRecords::HDCount, disks.size()},
                                               {BootRecords::AdapterID, adapter},
                                               {BootRecords::HDIDs, ids}});
}

// Leaves those out, from place `from` on, that the adapter does not list any more.
void DropGone(Controller& controller, unsigned adapter, std::vector<Disk>& disks,
              std::size_t from) {
    const auto there = controller.ReadList(adapter, kDiskList);
    if (there.presence != Presence::kThere) return;
    const auto has_gone = [&](const Disk& disk) {
        return std::ranges::find(there.items, disk.address.id, &Listed<fields::HD_Info>::id) ==
               there.items.end();
    };
    const auto begin = disks.begin() + static_cast<std::ptrdiff_t>(from);
    disks.erase(std::remove_if(begin, disks.end(), has_gone), disks.end());
}

void LoadBootRecords(Controller& controller, unsigned adapter, std::vector<Disk>& disks,
                     std::size_t first) {
    for (std::size_t at = first; at < disks.size(); at += kDisksPerBootRecordCall) {
        const auto some = [&] {
            const std::size_t count = std::min(kDisksPerBootRecordCall, disks.size() - at);
            return std::span(disks).subspan(at, count);
        };
        auto answer = AskBootRecords(controller, adapter, some());
        if (answer.exit == Exit::kNoObject) {
            // One has gone since it was listed; the others are asked for again.
            DropGone(controller, adapter, disks, at);
            if (at == disks.size()) return;
            answer = AskBootRecords(controller, adapter, some());
        }
        if (answer.exit != Exit::kDone) {
            controller.NoteAnswer("a" + std::to_string(adapter), BootRecords::kName, answer);
            continue;
        }
        const auto found = answer[BootRecords::Result::MBRInfo][fields::HD_MBR_Info::hasMBR];
        for (std::size_t i = 0; found && i < some().size() && i < found->size(); ++i) {
            some()[i].boot_record = (*found)[i] != 0;
        }
    }
}

std::string OwnerText(unsigned adapter, std::string_view kind, std::optional<std::uint64_t> id) {
    if (!id) return "unknown";
    if (*id >= kNoObject) return "none";
    return "a" + std::to_string(adapter) + std::string(kind) + std::to_string(*id);
}

Sighting SightingOf(const Disk& disk, const ControllerCodes& codes) {
    using fields::HD_Info;
    const hxcodes::CodeTable& table = codes.table();
    const auto owner = disk.raid[fields::HD_RAID_Status::LDID];
    std::optional<std::uint64_t> group;
    if (disk.group.presence == Presence::kThere) group = disk.group.group;
    if (disk.group.presence == Presence::kNotOffered) group = kNoObject;
    Sighting sighting;
    sighting.facts = {
        TextFact("model", disk.info[HD_Info::Model]),
        TextFact("serial number", disk.info[HD_Info::SerialNo]),
        NumbersFact("WWN", disk.info[HD_Info::WWN]),
        SizeFact("size", disk.info[HD_Info::Size]),
        {"state", disk.state.value_or("unknown")},
        {"virtual disk", OwnerText(disk.address.adapter, "/vd", owner)},
        {"disk group", OwnerText(disk.address.adapter, "/dg", group)},
        SizeFact("free space", disk.free_space[fields::HD_FreeSpaceInfo::Size]),
        {"boot record", !disk.boot_record   ? "unknown"
                        : *disk.boot_record ? "there"
                                            : "none"},
        CodeFact("activity", disk.activity[fields::HD_BGA_Status::Bga], table.activities),
        SettingsFact(disk.config.value()),
    };
    if (owner && *owner < kNoObject) {
        sighting.related.push_back({.adapter = disk.address.adapter,
                                    .kind = ObjectKind::kVirtualDisk,
                                    .id = static_cast<unsigned>(*owner)});
    }
    return sighting;
}

// A disk that is written says the same of itself in a rebuild and in a copyback; its virtual disk
// tells which of them runs.
void TellCopybacks(Controller& controller, unsigned adapter, std::span<Disk> disks) {
    static constexpr std::string_view kWritten = "rebuilding";
    const auto is_written = [](const Disk& disk) { return disk.state == kWritten; };
    if (std::ranges::none_of(disks, is_written)) return;
    auto statuses = controller.ReadList(adapter, kVirtualDiskStatusList);
    for (Disk& disk : disks) {
        const auto owner = disk.raid[fields::HD_RAID_Status::LDID];
        if (!is_written(disk) || !owner) continue;
        const auto activity = statuses.Take(*owner)[fields::LD_Status::Bga];
        if (activity && hxcodes::NameOf(controller.codes().table().activities, *activity) ==
                            hxcodes::NameOf(hxcodes::ActivityKind::kCopyback)) {
            disk.state = kCopybackState;
        }
    }
}

void LoadDisksOf(Controller& controller, unsigned adapter, std::vector<Disk>& disks) {
    auto infos = controller.ReadList(adapter, kDiskList);
    if (infos.items.empty()) return;
    auto config = controller.ReadList(adapter, kDiskConfigList);
    auto smart = controller.ReadList(adapter, kSmartList);
    auto raid = controller.ReadList(adapter, kRaidList);
    auto activity = controller.ReadList(adapter, kDiskActivityList);
    auto free_space = controller.ReadList(adapter, kFreeSpaceList);
    const Memberships groups(controller.ReadList(adapter, kDiskGroupList));
    const std::size_t first = disks.size();
    for (auto& [id, info] : infos.items) {
        Disk disk;
        disk.address = {
            .adapter = adapter, .kind = ObjectKind::kDisk, .id = static_cast<unsigned>(id)};
        if (const auto status = info[fields::HD_Info::Status]) {
            disk.state = StateWord(*status, controller.codes());
        }
        disk.info = std::move(info);
        disk.config = config.Take(id);
        disk.smart = smart.Take(id);
        disk.raid = raid.Take(id);
        disk.activity = activity.Take(id);
        disk.free_space = free_space.Take(id);
        disk.group = groups.Of(id);
        disks.push_back(std::move(disk));
    }
    TellCopybacks(controller, adapter, std::span(disks).subspan(first));
    LoadBootRecords(controller, adapter, disks, first);
    if (Sightings* const sightings = controller.sightings()) {
        for (const Disk& disk : std::span(disks).subspan(first)) {
            sightings->Note(disk.address.Text(), SightingOf(disk, controller.codes()));
        }
    }
}

}  // namespace

std::vector<Disk> LoadDiskRecords(Controller& controller) {
    std::vector<Disk> disks;
    for (const unsigned adapter : controller.Selected()) {
        for (auto& [id, info] : controller.ReadList(adapter, kDiskList).items) {
            Disk& disk = disks.emplace_back();
            disk.address = {
                .adapter = adapter, .kind = ObjectKind::kDisk, .id = static_cast<unsigned>(id)};
            disk.info = std::move(info);
        }
    }
    return disks;
}

std::vector<Disk> LoadDisks(Controller& controller) {
    std::vector<Disk> disks;
    for (const unsigned adapter : controller.Selected()) LoadDisksOf(controller, adapter, disks);
    return disks;
}

}  // namespace vexorctl
