// vexorctl task ...
#include <utility>

#include "codes/activity.h"
#include "common/address.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/tasks.h"
#include "nouns/find_object.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "nouns/wait_for_tasks.h"
#include "output/cell.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

using enum Kind;
using enum Place;

constexpr Column<Task> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "The address of the object on which it runs"},
     [](const Task& it) { return TextCell(it.address.Text()); }},
    {{"name", "NAME", kText, kTable, "The name of that object"},
     [](const Task& it) { return TextCell(it.name); }},
    {{"activity", "ACTIVITY", kCode, kTable, "What it does"},
     [](const Task& it) { return CodeCell(hxcodes::kActivityNames, it.activity); }},
    {{"state", "STATE", kCode, kTable, "How it stands"},
     [](const Task& it) { return CodeCell(hxcodes::kActivityStateNames, it.state); }},
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

// ---- Changes ----------------------------------------------------------------------------------

struct Named {
    Address address;
    std::string name;
};

// A task's address is that of a disk, a virtual disk or a disk group; a name is a virtual disk's.
Named FindPlace(Invocation& invocation) {
    const std::string& typed = invocation.targets().front();
    const Selector selector = ParseSelector(typed);
    ObjectKind kind = ObjectKind::kVirtualDisk;
    if (selector.form == Selector::Form::kSerial) kind = ObjectKind::kDisk;
    if (selector.form == Selector::Form::kAddress) kind = selector.address.kind;
    if (kind != ObjectKind::kDisk && kind != ObjectKind::kVirtualDisk &&
        kind != ObjectKind::kDiskGroup) {
        throw UsageError(typed + " is no place where tasks run: a disk, vd or dg is needed");
    }
    return {FindObject(invocation, kind, typed), typed};
}

// The functions that pause, resume and abort, with what they call the object and the action.
struct ControlRow {
    ObjectKind kind;
    std::string_view function;
    std::string_view id;
    std::string_view action;
};
constexpr ControlRow kControls[] = {
    {ObjectKind::kDisk, "HX_PD_BGAControl", "HD_ID", "Action"},
    {ObjectKind::kVirtualDisk, "HX_LD_BGAControl", "LD_ID", "Actions"},
    {ObjectKind::kDiskGroup, "HX_DG_BGAControl", "DG_ID", "Actions"},
};

Exit ControlTask(Invocation& invocation) {
    const std::string verb(invocation.row().verb);
    const Named place = FindPlace(invocation);
    const hxcodes::Named* const action = hxcodes::FindName(hxcodes::kControlActionNames, verb);
    for (const ControlRow& row : kControls) {
        if (row.kind != place.address.kind || action == nullptr) continue;
        Fields fields = AddressFields(place.address, row.id);
        fields.emplace_back(row.action, std::to_string(action->code));
        return CarryOut(invocation, {.what = verb + " the task on " + place.address.Text(),
                                     .losses = {},
                                     .confirm = {},
                                     .commands = {{row.function, std::move(fields)}},
                                     .address = place.address.Text(),
                                     .size_bytes = {},
                                     .starts_task = verb == "resume"});
    }
    throw UsageError(place.address.Text() + " has no tasks");
}

Exit PauseAll(Invocation& invocation) {
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    return CarryOut(
        invocation,
        {.what = "Pause every task of the virtual disks of " + adapter.Text(),
         .losses = {},
         .confirm = {},
         .commands = {{"HX_LD_PauseAll", {{"AdapterID", std::to_string(adapter.adapter)}}}},
         .address = adapter.Text(),
         .size_bytes = {}});
}

// What can be started on what, by which function; `field` takes the code of the kind.
struct StartRow {
    std::string_view kind;
    ObjectKind object;
    std::string_view function;
    std::string_view id;
    std::string_view field;
    unsigned code;
    bool destroys;
};
constexpr StartRow kStarts[] = {
    {"check", ObjectKind::kVirtualDisk, "HX_LD_StartConsistencyCheck", "LD_ID", "Type",
     hxcodes::CheckType::kOnly, false},
    {"fix", ObjectKind::kVirtualDisk, "HX_LD_StartConsistencyCheck", "LD_ID", "Type",
     hxcodes::CheckType::kAndFix, false},
    {"init-quick", ObjectKind::kVirtualDisk, "HX_LD_StartINIT", "LD_ID", "Init_Type",
     hxcodes::Init::kQuick, true},
    {"init-foreground", ObjectKind::kVirtualDisk, "HX_LD_StartINIT", "LD_ID", "Init_Type",
     hxcodes::Init::kForeground, true},
    {"init-background", ObjectKind::kVirtualDisk, "HX_LD_StartINIT", "LD_ID", "Init_Type",
     hxcodes::Init::kBackground, false},
    {"media-patrol", ObjectKind::kDisk, "HX_PD_StartMediaPatrol", "HD_ID", "", 0, false},
    {"data-scrub", ObjectKind::kDisk, "HX_PD_StartDataScrub", "HD_ID", "", 0, false},
};

// A rebuild needs the disk that takes the missing one's place; a disk group, several.
Exit StartRebuild(Invocation& invocation, const Named& place) {
    const std::string* const disk = invocation.Get("--disk");
    if (disk == nullptr) throw UsageError("--disk is missing: the disk to rebuild to");
    const Address target = FindObject(invocation, ObjectKind::kDisk, *disk);
    Command command;
    if (place.address.kind == ObjectKind::kVirtualDisk) {
        command = {"HX_LD_StartRebuild", AddressFields(place.address, "LD_ID")};
        command.fields.emplace_back("Rebuild_HD_ID", std::to_string(target.id));
    } else {
        command = {"HX_LD_DG_StartRebuild", AddressFields(place.address, "ID")};
        command.fields.emplace_back("RebuildType",
                                    std::to_string(hxcodes::RebuildType::kDiskGroup));
        command.fields.emplace_back("PDCount", "1");
        command.fields.emplace_back("PDIDs", std::to_string(target.id));
    }
    return CarryOut(invocation, {.what = "Rebuild " + place.address.Text() + " to " + target.Text(),
                                 .losses = {},
                                 .confirm = {},
                                 .commands = {std::move(command)},
                                 .address = place.address.Text(),
                                 .size_bytes = {},
                                 .starts_task = true});
}

Exit StartTask(Invocation& invocation) {
    const std::string* const kind = invocation.Get("--kind");
    if (kind == nullptr) throw UsageError("--kind is missing");
    const Named place = FindPlace(invocation);
    if (*kind == "rebuild" && place.address.kind != ObjectKind::kDisk) {
        return StartRebuild(invocation, place);
    }
    for (const StartRow& row : kStarts) {
        if (row.kind != *kind || row.object != place.address.kind) continue;
        Fields fields = AddressFields(place.address, row.id);
        if (!row.field.empty()) fields.emplace_back(row.field, std::to_string(row.code));
        Change change{.what = "Start " + *kind + " on " + place.address.Text(),
                      .losses = {},
                      .confirm = {},
                      .commands = {{row.function, std::move(fields)}},
                      .address = place.address.Text(),
                      .size_bytes = {},
                      .starts_task = true};
        if (row.destroys) {
            change.losses = {"all data on " + place.address.Text() + " will be lost"};
            change.confirm = place.name;
        }
        return CarryOut(invocation, change);
    }
    throw UsageError(*kind + " cannot be started on a " + std::string(NameOf(place.address.kind)));
}

Exit WaitTask(Invocation& invocation) {
    std::vector<std::string> addresses;
    for (const std::string& target : invocation.targets()) {
        const Selector selector = ParseSelector(target);
        if (selector.form == Selector::Form::kAddress) {
            addresses.push_back(FindObject(invocation, selector.address.kind, target).Text());
        } else {
            addresses.push_back(FindObject(invocation,
                                           selector.form == Selector::Form::kName
                                               ? ObjectKind::kVirtualDisk
                                               : ObjectKind::kDisk,
                                           target)
                                    .Text());
        }
    }
    if (addresses.size() > 1) invocation.controller().Select(invocation.controller().Adapters());
    return WaitForTasks(invocation, std::move(addresses), TimeoutOf(invocation, "--timeout"));
}

constexpr OptionRow kWaitOptions[] = {kWaitOption};
constexpr OptionRow kTimeoutOptions[] = {
    {"--timeout", "TIMEOUT", "At most 90s, 15m or 2h; for ever when not given"},
};
constexpr OptionRow kStartOptions[] = {
    {"--kind", "KIND", "What to start",
     "rebuild check fix init-quick init-foreground init-background media-patrol data-scrub"},
    {"--disk", "DISK", "Of a rebuild: the disk that takes the missing one's place"},
    kWaitOption,
};

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
    {.noun = "task",
     .verb = "start",
     .summary = "Start an activity on a disk, virtual disk or disk group",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "OBJECT",
     .options = kStartOptions,
     .functions = "HX_LD_StartConsistencyCheck HX_LD_StartINIT HX_LD_StartRebuild "
                  "HX_LD_DG_StartRebuild HX_PD_StartMediaPatrol HX_PD_StartDataScrub",
     .examples = {"vexorctl task start a0/vd0 --kind check --dry-run",
                  "vexorctl task start a0/pd3 --kind media-patrol --dry-run"},
     .run = StartTask,
     .columns = ChangeColumns,
     .note = "It returns at once; --wait waits for the end. What destroys data asks for the name "
             "as it was typed.",
     .changes = true},
    {.noun = "task",
     .verb = "pause",
     .summary = "Pause a task",
     .target = Target::kTask,
     .arity = Arity::kOne,
     .target_name = "TASK",
     .functions = "HX_LD_BGAControl HX_DG_BGAControl HX_PD_BGAControl",
     .examples = {"vexorctl task pause a0/vd0 --dry-run", "vexorctl task pause a0/pd3 --dry-run"},
     .run = ControlTask,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "task",
     .verb = "pause-all",
     .summary = "Pause every task of the virtual disks of an adapter",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .functions = "HX_LD_PauseAll",
     .examples = {"vexorctl task pause-all a0 --dry-run", "vexorctl task pause-all a1 --dry-run"},
     .run = PauseAll,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "task",
     .verb = "resume",
     .summary = "Resume a paused task",
     .target = Target::kTask,
     .arity = Arity::kOne,
     .target_name = "TASK",
     .options = kWaitOptions,
     .functions = "HX_LD_BGAControl HX_DG_BGAControl HX_PD_BGAControl",
     .examples = {"vexorctl task resume a0/vd0 --dry-run",
                  "vexorctl task resume name:ARCHIVE --dry-run"},
     .run = ControlTask,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "task",
     .verb = "abort",
     .summary = "Abort a task",
     .target = Target::kTask,
     .arity = Arity::kOne,
     .target_name = "TASK",
     .functions = "HX_LD_BGAControl HX_DG_BGAControl HX_PD_BGAControl",
     .examples = {"vexorctl task abort a0/vd0 --dry-run", "vexorctl task abort a0/dg0 --dry-run"},
     .run = ControlTask,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "task",
     .verb = "wait",
     .summary = "Wait for the end of tasks",
     .target = Target::kTask,
     .arity = Arity::kAny,
     .target_name = "TASK",
     .options = kTimeoutOptions,
     .functions = "HX_LD_GetStatus HX_PD_GetBGAStatus HX_DG_GetInfo",
     .examples = {"vexorctl task wait", "vexorctl task wait a0/vd0 --timeout 10s"},
     .run = WaitTask,
     .note = "Without a task it is about all that run. A terminal shows a bar on standard error. "
             "Ctrl-C ends the waiting, not the task."},
    {.noun = "task",
     .verb = "watch",
     .summary = "Watch tasks until their end",
     .target = Target::kTask,
     .arity = Arity::kAny,
     .target_name = "TASK",
     .options = kTimeoutOptions,
     .functions = "HX_LD_GetStatus HX_PD_GetBGAStatus HX_DG_GetInfo",
     .examples = {"vexorctl task watch", "vexorctl task watch a0/vd0 --timeout 10s"},
     .run = WaitTask,
     .note = "Without a task it is about all that run. A terminal shows a bar on standard error. "
             "Ctrl-C ends the waiting, not the task."},
};

}  // namespace

std::span<const CommandRow> TaskCommands() { return kCommands; }

}  // namespace vexorctl
