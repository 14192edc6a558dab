#include "model/disk_groups.h"

#include <algorithm>
#include <utility>

#include "codes/code_table.h"
#include "model/controller_codes.h"
#include "model/disks.h"
#include "model/library_record.h"
#include "model/sightings.h"

namespace vexorctl {

namespace {

constexpr ListSource kDiskGroupConfigList = ListOf(
    calls::HX_DG_GetConfig::Result::DG_Config,
    +[](const View<fields::DG_Config>& config) { return config[fields::DG_Config::DGID]; });

void Relate(Sighting& sighting, const Address& group, ObjectKind kind,
            const std::optional<std::vector<std::uint64_t>>& ids) {
    constexpr std::uint64_t kNone = 255;  // an empty place, in lists of whatever kind
    if (!ids) return;
    for (const std::uint64_t id : *ids) {
        if (id >= kNone) continue;
        sighting.related.push_back(
            {.adapter = group.adapter, .kind = kind, .id = static_cast<unsigned>(id)});
    }
}

Sighting SightingOf(const DiskGroup& group, const ControllerCodes& codes) {
    using fields::DG_Info;
    const hxcodes::CodeTable& table = codes.table();
    Sighting sighting;
    sighting.facts = {
        TextFact("name", group.info[DG_Info::Name]),
        CodeFact("level", group.info[DG_Info::RaidMode], table.levels),
        SizeFact("size", group.info[DG_Info::TotalManagedSpace]),
        SizeFact("free space", group.info[DG_Info::RemainingManagedSpace]),
        NumberFact("state", group.info[DG_Info::Status]),
        NumbersFact("disks", DisksOf(group.info.view())),
        NumbersFact("spares", SparesOf(group.info.view())),
        NumbersFact("virtual disks", group.info[DG_Info::VDIDs]),
        CodeFact("activity", group.info[DG_Info::BgaType], table.activities),
        SettingsFact(group.config.value()),
    };
    Relate(sighting, group.address, ObjectKind::kDisk, DisksOf(group.info.view()));
    Relate(sighting, group.address, ObjectKind::kVirtualDisk, group.info[DG_Info::VDIDs]);
    return sighting;
}

}  // namespace

std::optional<std::vector<std::uint64_t>> DisksOf(const View<fields::DG_Info>& group) {
    return FirstNumbers(group[fields::DG_Info::PDIDs], group[fields::DG_Info::PDCount]);
}

std::optional<std::vector<std::uint64_t>> SparesOf(const View<fields::DG_Info>& group) {
    return FirstNumbers(group[fields::DG_Info::SparePDIDs], group[fields::DG_Info::SparePDCount]);
}

std::optional<std::uint64_t> PercentOf(const View<fields::DG_Info>& group,
                                       const List<fields::HD_BGA_Status>& disks) {
    using fields::HD_BGA_Status;
    const auto members = DisksOf(group);
    std::optional<std::uint64_t> least;
    for (const auto& [id, status] : disks.items) {
        const bool is_member = members && std::ranges::find(*members, id) != members->end();
        if (!is_member || status[HD_BGA_Status::Bga] != group[fields::DG_Info::BgaType]) continue;
        const auto percent = status[HD_BGA_Status::Percentage];
        if (percent) least = std::min(least.value_or(*percent), *percent);
    }
    return least;
}

std::vector<DiskGroup> LoadDiskGroups(Controller& controller) {
    std::vector<DiskGroup> groups;
    for (const unsigned adapter : controller.Selected()) {
        auto infos = controller.ReadList(adapter, kDiskGroupList);
        if (infos.items.empty()) continue;
        auto configs = controller.ReadList(adapter, kDiskGroupConfigList);
        const bool any_is_busy = std::ranges::any_of(infos.items, [](const auto& each) {
            return each.record[fields::DG_Info::BgaType].value_or(0) != 0;
        });
        const auto disks = any_is_busy ? controller.ReadList(adapter, kDiskActivityList)
                                       : List<fields::HD_BGA_Status>();
        for (auto& [id, info] : infos.items) {
            const auto percent = PercentOf(info.view(), disks);
            groups.push_back({.address = {.adapter = adapter,
                                          .kind = ObjectKind::kDiskGroup,
                                          .id = static_cast<unsigned>(id)},
                              .info = std::move(info),
                              .config = configs.Take(id),
                              .percent = percent});
            if (Sightings* const sightings = controller.sightings()) {
                sightings->Note(groups.back().address.Text(),
                                SightingOf(groups.back(), controller.codes()));
            }
        }
    }
    return groups;
}

}  // namespace vexorctl
