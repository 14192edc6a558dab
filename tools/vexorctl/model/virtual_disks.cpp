#include "model/virtual_disks.h"

#include <map>
#include <utility>

#include "codes/code_table.h"
#include "model/controller_codes.h"
#include "model/library_record.h"
#include "model/sightings.h"

namespace vexorctl {

namespace {

constexpr ListSource kVirtualDiskConfigList = ListOf(
    calls::HX_LD_GetConfig::Result::LDConfig,
    +[](const View<fields::LD_Config>& config) { return config[fields::LD_Config::LDID]; });

using DiskOfBlock = std::map<std::uint64_t, std::uint64_t>;

// Null when one of them is unknown: a list without that disk would look complete.
std::optional<std::vector<std::uint64_t>> DisksUnder(const View<fields::LD_Info>& info,
                                                     const DiskOfBlock& disk_of_block) {
    const auto blocks =
        FirstNumbers(info[fields::LD_Info::BlockIDs], info[fields::LD_Info::HDCount]);
    if (!blocks) return std::nullopt;
    std::vector<std::uint64_t> disks;
    for (const std::uint64_t block : *blocks) {
        const auto found = disk_of_block.find(block);
        if (found == disk_of_block.end()) return std::nullopt;
        disks.push_back(found->second);
    }
    return disks;
}

Sighting SightingOf(const VirtualDisk& disk, const ControllerCodes& codes) {
    using fields::LD_Info;
    const hxcodes::CodeTable& table = codes.table();
    Sighting sighting;
    sighting.facts = {
        TextFact("name", disk.info[LD_Info::Name]),
        CodeFact("level", disk.info[LD_Info::RaidMode], table.levels),
        SizeFact("size", disk.info[LD_Info::Size]),
        CodeFact("state", disk.info[LD_Info::Status], table.states),
        NumberFact("disk group's number", disk.info[LD_Info::DGID]),
        NumbersFact("disks", disk.disks),
        NumbersFact("blocks", disk.info[LD_Info::BlockIDs]),
        CodeFact("activity", disk.status[fields::LD_Status::Bga], table.activities),
        SettingsFact(disk.config.value()),
    };
    if (disk.disks) {
        for (const std::uint64_t id : *disk.disks) {
            sighting.related.push_back({.adapter = disk.address.adapter,
                                        .kind = ObjectKind::kDisk,
                                        .id = static_cast<unsigned>(id)});
        }
    }
    return sighting;
}

}  // namespace

std::vector<VirtualDisk> LoadVirtualDisks(Controller& controller) {
    std::vector<VirtualDisk> all;
    for (const unsigned adapter : controller.Selected()) {
        auto infos = controller.ReadList(adapter, kVirtualDiskList);
        if (infos.items.empty()) continue;
        auto configs = controller.ReadList(adapter, kVirtualDiskConfigList);
        auto states = controller.ReadList(adapter, kVirtualDiskStatusList);
        DiskOfBlock disk_of_block;
        for (const auto& [id, block] : controller.ReadList(adapter, kBlockList).items) {
            const auto disk = block[fields::Block_Info::HDID];
            if (disk) disk_of_block.insert_or_assign(id, *disk);
        }
        for (auto& [id, info] : infos.items) {
            VirtualDisk disk;
            disk.address = {.adapter = adapter,
                            .kind = ObjectKind::kVirtualDisk,
                            .id = static_cast<unsigned>(id)};
            disk.disks = DisksUnder(info.view(), disk_of_block);
            disk.info = std::move(info);
            disk.config = configs.Take(id);
            disk.status = states.Take(id);
            if (Sightings* const sightings = controller.sightings()) {
                sightings->Note(disk.address.Text(), SightingOf(disk, controller.codes()));
            }
            all.push_back(std::move(disk));
        }
    }
    return all;
}

}  // namespace vexorctl
