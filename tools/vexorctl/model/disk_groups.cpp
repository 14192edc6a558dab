#include "model/disk_groups.h"

#include <map>
#include <utility>

namespace vexorctl {

std::vector<DiskGroup> LoadDiskGroups(Controller& controller) {
    std::vector<DiskGroup> groups;
    for (const unsigned adapter : controller.Selected()) {
        std::vector<Value> infos = controller.List(adapter, {"HX_DG_GetInfo", "DG_Info", "DGID"});
        if (infos.empty()) continue;
        std::map<std::uint64_t, Value> configs;
        for (Value& config : controller.List(adapter, {"HX_DG_GetConfig", "DG_Config", "DGID"})) {
            const std::uint64_t id = config.Number("DGID");
            configs.insert_or_assign(id, std::move(config));
        }
        for (Value& info : infos) {
            const std::uint64_t id = info.Number("DGID");
            DiskGroup group;
            group.address = {.adapter = adapter,
                             .kind = ObjectKind::kDiskGroup,
                             .id = static_cast<unsigned>(id)};
            group.info = std::move(info);
            group.config = std::move(configs[id]);
            groups.push_back(std::move(group));
        }
    }
    return groups;
}

}  // namespace vexorctl
