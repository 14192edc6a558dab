#include "model/virtual_disks.h"

#include <map>
#include <utility>

namespace vexorctl {

std::vector<VirtualDisk> LoadVirtualDisks(Controller& controller) {
    std::vector<VirtualDisk> all;
    for (const unsigned adapter : controller.Selected()) {
        std::vector<Value> infos = controller.List(adapter, {"HX_LD_GetInfo", "LDInfo", "ID"});
        if (infos.empty()) continue;
        std::map<std::uint64_t, Value> configs;
        for (Value& config : controller.List(adapter, {"HX_LD_GetConfig", "LDConfig", "LDID"})) {
            const std::uint64_t id = config.Number("LDID");
            configs.insert_or_assign(id, std::move(config));
        }
        std::map<std::uint64_t, Value> states;
        for (Value& state : controller.List(adapter, {"HX_LD_GetStatus", "Status", "LDID"})) {
            const std::uint64_t id = state.Number("LDID");
            states.insert_or_assign(id, std::move(state));
        }
        std::map<std::uint64_t, std::uint64_t> disk_of_block;
        for (const Value& block : controller.List(adapter, {"HX_BLK_GetInfo", "blockInfo", "ID"})) {
            disk_of_block.insert_or_assign(block.Number("ID"), block.Number("HDID"));
        }
        for (Value& info : infos) {
            const std::uint64_t id = info.Number("ID");
            VirtualDisk disk;
            disk.address = {.adapter = adapter,
                            .kind = ObjectKind::kVirtualDisk,
                            .id = static_cast<unsigned>(id)};
            for (const std::uint64_t block : info.Numbers("BlockIDs", info.Number("HDCount"))) {
                const auto found = disk_of_block.find(block);
                if (found != disk_of_block.end()) disk.disks.push_back(found->second);
            }
            disk.info = std::move(info);
            disk.config = std::move(configs[id]);
            disk.status = std::move(states[id]);
            all.push_back(std::move(disk));
        }
    }
    return all;
}

}  // namespace vexorctl
