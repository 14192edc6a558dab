#include "model/tasks.h"

#include <utility>

#include "codes/activity.h"
#include "model/result_tree.h"

namespace vexorctl {

namespace {

// What the virtual disk's own record adds to a task: its name, and the disk group it lies on.
void Complete(Task& task, const std::vector<Value>& infos) {
    constexpr std::uint64_t kNoGroup = 255;
    for (const Value& info : infos) {
        if (info.Number("ID") != task.address.id) continue;
        task.name = info.Text("Name");
        const std::uint64_t group = info.Number("DGID");
        if (group != kNoGroup) task.group = static_cast<unsigned>(group);
    }
}

void LoadVirtualDiskTasks(Controller& controller, unsigned adapter, std::vector<Task>& tasks) {
    std::vector<Value> infos;
    for (const Value& state : controller.List(adapter, {"HX_LD_GetStatus", "Status", "LDID"})) {
        if (state.Number("Bga") == hxcodes::ActivityKind::kNone) continue;
        if (infos.empty()) infos = controller.List(adapter, {"HX_LD_GetInfo", "LDInfo", "ID"});
        Task task{{.adapter = adapter,
                   .kind = ObjectKind::kVirtualDisk,
                   .id = static_cast<unsigned>(state.Number("LDID"))},
                  state.Number("Bga"),
                  state.Number("BgaState"),
                  state.Number("BgaPercentage"),
                  {},
                  {}};
        Complete(task, infos);
        tasks.push_back(std::move(task));
    }
}

void LoadDiskTasks(Controller& controller, unsigned adapter, std::vector<Task>& tasks) {
    for (const Value& state :
         controller.List(adapter, {"HX_PD_GetBGAStatus", "HD_BGA_Status", "HDID"})) {
        // What a virtual disk's rebuild does to a disk is that virtual disk's task.
        const std::uint64_t activity = state.Number("Bga");
        if (activity != hxcodes::ActivityKind::kMediaPatrol &&
            activity != hxcodes::ActivityKind::kDataScrub) {
            continue;
        }
        tasks.push_back({{.adapter = adapter,
                          .kind = ObjectKind::kDisk,
                          .id = static_cast<unsigned>(state.Number("HDID"))},
                         activity,
                         state.Number("BgaStatus"),
                         state.Number("Percentage"),
                         {},
                         {}});
    }
}

void LoadDiskGroupTasks(Controller& controller, unsigned adapter, std::vector<Task>& tasks) {
    for (const Value& group : controller.List(adapter, {"HX_DG_GetInfo", "DG_Info", "DGID"})) {
        if (group.Number("BgaType") == hxcodes::ActivityKind::kNone) continue;
        tasks.push_back({{.adapter = adapter,
                          .kind = ObjectKind::kDiskGroup,
                          .id = static_cast<unsigned>(group.Number("DGID"))},
                         group.Number("BgaType"),
                         group.Number("BgaState"),
                         std::nullopt,
                         group.Text("Name"),
                         {}});
    }
}

}  // namespace

bool IsTaskOf(const Task& task, std::string_view address) {
    if (task.address.Text() == address) return true;
    return task.group &&
           Address{
               .adapter = task.address.adapter, .kind = ObjectKind::kDiskGroup, .id = *task.group}
                   .Text() == address;
}

std::vector<Task> LoadTasks(Controller& controller) {
    std::vector<Task> tasks;
    for (const unsigned adapter : controller.Selected()) {
        LoadVirtualDiskTasks(controller, adapter, tasks);
        LoadDiskTasks(controller, adapter, tasks);
        LoadDiskGroupTasks(controller, adapter, tasks);
    }
    return tasks;
}

}  // namespace vexorctl
