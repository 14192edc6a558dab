#include "model/tasks.h"

#include <utility>

#include "codes/activity.h"
#include "codes/named.h"
#include "library_fields.h"
#include "model/controller_codes.h"
#include "model/disk_groups.h"
#include "model/exit_code.h"
#include "model/library_record.h"
#include "model/virtual_disks.h"

namespace vexorctl {

namespace {

constexpr std::uint64_t kNoActivity = 0;       // the interface's
constexpr std::uint64_t kNoVirtualDisk = 255;  // an empty place in VDIDs

// The code of the activity; kNoActivity, and a fault, when it is not known.
std::uint64_t ActivityOf(Controller& controller, const Address& address, std::string_view function,
                         std::optional<std::uint64_t> activity) {
    if (!activity) {
        controller.Note({.address = address.Text(),
                         .function = std::string(function),
                         .name = "unreadable",
                         .message = "whether a task runs there is not told"},
                        Exit::kRefused);
    }
    return activity.value_or(kNoActivity);
}

// The task of that activity of an object, without more than these two.
Task TaskOn(Controller& controller, const Address& address, std::string_view function,
            std::optional<std::uint64_t> activity) {
    Task task;
    task.address = address;
    task.activity = ActivityOf(controller, address, function, activity);
    return task;
}

Address AddressOf(unsigned adapter, ObjectKind kind, std::uint64_t id) {
    return {.adapter = adapter, .kind = kind, .id = static_cast<unsigned>(id)};
}

// What the virtual disk's own record adds to a task: its name, and the disk group it lies on.
void Complete(Task& task, const Record<fields::LD_Info>& info) {
    task.name = info[fields::LD_Info::Name];
    const auto group = info[fields::LD_Info::DGID];
    if (!group) return;
    task.group = {*group == kNoDiskGroup ? Presence::kNotOffered : Presence::kThere,
                  static_cast<unsigned>(*group)};
}

void LoadVirtualDiskTasks(Controller& controller, unsigned adapter, TaskDetail detail,
                          std::vector<Task>& tasks) {
    std::optional<List<fields::LD_Info>> infos;
    for (const auto& [id, status] : controller.ReadList(adapter, kVirtualDiskStatusList).items) {
        Task task = TaskOn(controller, AddressOf(adapter, ObjectKind::kVirtualDisk, id),
                           kVirtualDiskStatusList.function, status[fields::LD_Status::Bga]);
        if (task.activity == kNoActivity) continue;
        task.state = status[fields::LD_Status::BgaState];
        task.percent = status[fields::LD_Status::BgaPercentage];
        task.virtual_disks = {task.address.id};
        if (detail == TaskDetail::kWithObject) {
            if (!infos) infos = controller.ReadList(adapter, kVirtualDiskList);
            Complete(task, infos->Take(id));
        }
        tasks.push_back(std::move(task));
    }
}

// A disk that takes part in an activity of a virtual disk reports that activity as well; it is
// listed once, as the virtual disk's task.
bool IsOfVirtualDisk(std::uint64_t activity, const ControllerCodes& codes) {
    const std::string_view name = hxcodes::NameOf(codes.table().activities, activity);
    const auto* const row = hxcodes::FindName(hxcodes::kActivities, name);
    return row != nullptr && row->runs_on != hxcodes::RunsOn::kDisk;
}

void LoadDiskTasks(Controller& controller, unsigned adapter,
                   const List<fields::HD_BGA_Status>& disks, std::vector<Task>& tasks) {
    for (const auto& [id, status] : disks.items) {
        Task task = TaskOn(controller, AddressOf(adapter, ObjectKind::kDisk, id),
                           kDiskActivityList.function, status[fields::HD_BGA_Status::Bga]);
        if (task.activity == kNoActivity || IsOfVirtualDisk(task.activity, controller.codes())) {
            continue;
        }
        task.state = status[fields::HD_BGA_Status::BgaStatus];
        task.percent = status[fields::HD_BGA_Status::Percentage];
        task.name = "";
        task.group.presence = Presence::kNotOffered;
        tasks.push_back(std::move(task));
    }
}

void LoadDiskGroupTasks(Controller& controller, unsigned adapter,
                        const List<fields::HD_BGA_Status>& disks, std::vector<Task>& tasks) {
    for (const auto& [id, group] : controller.ReadList(adapter, kDiskGroupList).items) {
        Task task = TaskOn(controller, AddressOf(adapter, ObjectKind::kDiskGroup, id),
                           kDiskGroupList.function, group[fields::DG_Info::BgaType]);
        if (task.activity == kNoActivity) continue;
        task.state = group[fields::DG_Info::BgaState];
        task.percent = PercentOf(group.view(), disks);
        task.name = group[fields::DG_Info::Name];
        for (const std::uint64_t each :
             group[fields::DG_Info::VDIDs].value_or(std::vector<std::uint64_t>())) {
            if (each < kNoVirtualDisk) task.virtual_disks.push_back(static_cast<unsigned>(each));
        }
        task.group.presence = Presence::kNotOffered;
        tasks.push_back(std::move(task));
    }
}

}  // namespace

bool IsTaskOf(const Task& task, std::string_view address) {
    if (task.address.Text() == address) return true;
    const Address group{
        .adapter = task.address.adapter, .kind = ObjectKind::kDiskGroup, .id = task.group.group};
    return task.group.presence == Presence::kThere && group.Text() == address;
}

std::vector<Task> LoadTasks(Controller& controller, TaskDetail detail) {
    std::vector<Task> tasks;
    for (const unsigned adapter : controller.Selected()) {
        LoadVirtualDiskTasks(controller, adapter, detail, tasks);
        const auto disks = controller.ReadList(adapter, kDiskActivityList);
        LoadDiskTasks(controller, adapter, disks, tasks);
        LoadDiskGroupTasks(controller, adapter, disks, tasks);
    }
    return tasks;
}

}  // namespace vexorctl
