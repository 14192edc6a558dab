// vexorctl task ...
#include <utility>

#include "command.h"
#include "failure.h"
#include "hxraid_codes.h"
#include "objects.h"
#include "output.h"
#include "target.h"

namespace {

using enum Kind;
using enum Place;

constexpr Column<Task> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "The address of the object on which it runs"},
     [](const Task& it) { return TextCell(it.address.Text()); }},
    {{"name", "NAME", kText, kTable, "The name of that object"},
     [](const Task& it) { return TextCell(it.name); }},
    {{"activity", "ACTIVITY", kCode, kTable, "What it does"},
     [](const Task& it) { return CodeCell(kHxsimActivityNames, it.activity); }},
    {{"state", "STATE", kCode, kTable, "How it stands"},
     [](const Task& it) { return CodeCell(kHxsimActivityStateNames, it.state); }},
    {{"progress_ratio", "PROGRESS", kRatio, kTable, "How far it is"},
     [](const Task& it) {
         return it.percent ? RatioCell(static_cast<double>(*it.percent) / 100) : Unknown();
     }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListTasks(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(report, kColumns, LoadTasks(invocation.controller()));
    return Show(invocation, std::move(report), "table");
}

// TASK-COMMANDS

constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr CommandRow kCommands[] = {
    {.noun = "task",
     .verb = "list",
     .summary = "List the background activities",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .options = kAdapterOption,
     .functions = "HX_LD_GetStatus HX_LD_GetInfo HX_PD_GetBGAStatus HX_DG_GetInfo",
     .examples = {"vexorctl task list", "vexorctl task list a0 -o json"},
     .run = ListTasks,
     .columns = Columns,
     .note = "A task goes by the address of the object on which it runs: there is at most one."},
    // TASK-ROWS
};

}  // namespace

std::vector<Task> LoadTasks(Controller& controller) {
    std::vector<Task> tasks;
    for (const unsigned adapter : controller.Selected()) {
        std::vector<Value> infos;
        for (const Value& state : controller.List(adapter, "HX_LD_GetStatus", "Status")) {
            if (state.Number("Bga") == HXSIM_ACTIVITY_NONE) continue;
            if (infos.empty()) infos = controller.List(adapter, "HX_LD_GetInfo", "LDInfo");
            const std::uint64_t id = state.Number("LDID");
            Task task{{.adapter = adapter,
                       .kind = ObjectKind::kVirtualDisk,
                       .id = static_cast<unsigned>(id)},
                      state.Number("Bga"),
                      state.Number("BgaState"),
                      state.Number("BgaPercentage"),
                      {}};
            for (const Value& info : infos) {
                if (info.Number("ID") == id) task.name = info.Text("Name");
            }
            tasks.push_back(std::move(task));
        }
        for (const Value& state : controller.List(adapter, "HX_PD_GetBGAStatus", "HD_BGA_Status")) {
            // What a virtual disk's rebuild does to a disk is that virtual disk's task.
            const std::uint64_t activity = state.Number("Bga");
            if (activity != HXSIM_ACTIVITY_MEDIA_PATROL && activity != HXSIM_ACTIVITY_DATA_SCRUB) {
                continue;
            }
            tasks.push_back({{.adapter = adapter,
                              .kind = ObjectKind::kDisk,
                              .id = static_cast<unsigned>(state.Number("HDID"))},
                             activity,
                             state.Number("BgaStatus"),
                             state.Number("Percentage"),
                             {}});
        }
        for (const Value& group : controller.List(adapter, "HX_DG_GetInfo", "DG_Info")) {
            if (group.Number("BgaType") == HXSIM_ACTIVITY_NONE) continue;
            tasks.push_back({{.adapter = adapter,
                              .kind = ObjectKind::kDiskGroup,
                              .id = static_cast<unsigned>(group.Number("DGID"))},
                             group.Number("BgaType"),
                             group.Number("BgaState"),
                             std::nullopt,
                             group.Text("Name")});
        }
    }
    return tasks;
}

std::span<const CommandRow> TaskCommands() { return kCommands; }
