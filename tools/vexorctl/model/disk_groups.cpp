#include "model/disk_groups.h"

#include <utility>

#include "model/library_record.h"

namespace vexorctl {

namespace {

constexpr ListSource kConfigList = ListOf(
    calls::HX_DG_GetConfig::Result::DG_Config,
    +[](const View<fields::DG_Config>& config) { return config[fields::DG_Config::DGID]; });

}  // namespace

std::optional<std::vector<std::uint64_t>> DisksOf(const View<fields::DG_Info>& group) {
    return FirstNumbers(group[fields::DG_Info::PDIDs], group[fields::DG_Info::PDCount]);
}

std::optional<std::vector<std::uint64_t>> SparesOf(const View<fields::DG_Info>& group) {
    return FirstNumbers(group[fields::DG_Info::SparePDIDs], group[fields::DG_Info::SparePDCount]);
}

std::vector<DiskGroup> LoadDiskGroups(Controller& controller) {
    std::vector<DiskGroup> groups;
    for (const unsigned adapter : controller.Selected()) {
        auto infos = controller.ReadList(adapter, kDiskGroupList);
        if (infos.items.empty()) continue;
        auto configs = controller.ReadList(adapter, kConfigList);
        for (auto& [id, info] : infos.items) {
            groups.push_back({.address = {.adapter = adapter,
                                          .kind = ObjectKind::kDiskGroup,
                                          .id = static_cast<unsigned>(id)},
                              .info = std::move(info),
                              .config = configs.Take(id)});
        }
    }
    return groups;
}

}  // namespace vexorctl
