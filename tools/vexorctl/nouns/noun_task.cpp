// vexorctl task ...
#include <algorithm>
#include <iterator>
#include <utility>

#include "codes/activity.h"
#include "codes/code_table.h"
#include "codes/state.h"
#include "common/address.h"
#include "common/terminal_text.h"
#include "conditions/hxc_answers.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/event_history.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_record.h"
#include "model/task_pace.h"
#include "model/task_standing.h"
#include "model/tasks.h"
#include "model/virtual_disks.h"
#include "nouns/find_object.h"
#include "nouns/foresee.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "nouns/wait_for_tasks.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::task_noun {

namespace {

using hxcodes::CodeTable;

using enum Kind;
using enum Place;

// What each activity is for. Those that write disks name them behind it.
struct PurposeRow {
    hxcodes::ActivityKind kind;
    std::string_view purpose;
    std::string_view targets = {};  // between the purpose and the disks
};
constexpr PurposeRow kPurposes[] = {
    {hxcodes::ActivityKind::kCheck, "compares data and redundancy"},
    {hxcodes::ActivityKind::kFix, "makes redundancy agree with the data"},
    {hxcodes::ActivityKind::kInitQuick, "makes it usable; its content is void"},
    {hxcodes::ActivityKind::kInitBackground, "makes redundancy of what it holds"},
    {hxcodes::ActivityKind::kInitForeground, "overwrites it; usable at its end"},
    {hxcodes::ActivityKind::kRebuild, "restores what is lost", " to "},
    {hxcodes::ActivityKind::kMigration, "moves it to another level or other disks"},
    {hxcodes::ActivityKind::kCopyback, "frees the spare: moves its content back", " to "},
    {hxcodes::ActivityKind::kMediaPatrol, "reads the disk and remaps damaged sectors"},
    {hxcodes::ActivityKind::kDataScrub, "reads the disk and counts damaged sectors"},
};

std::vector<std::string> TargetsOf(const Task& task) {
    std::vector<std::string> texts;
    for (const Address& each : task.pace.targets.value_or(std::vector<Address>())) {
        texts.push_back(each.Text());
    }
    return texts;
}

// A task with the names of its codes.
struct ShownTask : Task {
    const hxcodes::CodeTable* codes = nullptr;
};

Cell PurposeCell(const ShownTask& it) {
    const std::string_view name = hxcodes::NameOf(it.codes->activities, it.activity);
    for (const PurposeRow& row : kPurposes) {
        if (hxcodes::NameOf(hxcodes::kActivityNames, hxcodes::NumberOf(row.kind)) != name) continue;
        std::string text(row.purpose);
        const std::vector<std::string> targets = TargetsOf(it);
        if (!row.targets.empty() && !targets.empty()) {
            text += std::string(row.targets) + Joined(targets, ", ");
        }
        return TextCell(std::move(text));
    }
    return Unknown();
}

// Of a task that does not run, speed and end are none; unknown where it is not known whether it
// does.
Cell IfRunning(const ShownTask& it, std::optional<std::uint64_t> value) {
    const std::string_view standing = StandingOf(it, *it.codes);
    if (standing.empty()) return Unknown();
    return standing == "running" ? NumberCell(value) : None();
}

constexpr Column<ShownTask> kColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "The address of the object on which it runs"},
     [](const ShownTask& it) { return TextCell(it.address.Text()); }},
    {{"name", "NAME", kText, kTable, "The name of that object"},
     [](const ShownTask& it) { return TextCell(it.name); }},
    {Always({"activity", "ACTIVITY", kCode, kTable, "What it does", &CodeTable::activities}),
     [](const ShownTask& it) { return NumberCell(it.activity); }},
    {OneOf(Standings,
           {"standing", "STATE", kWord, kTable,
            "How it stands: queued waits for something more urgent, failed runs no more"}),
     [](const ShownTask& it) {
         const std::string_view standing = StandingOf(it, *it.codes);
         return standing.empty() ? Unknown() : TextCell(std::string(standing));
     }},
    {{"state", "CONTROLLER STATE", kCode, kWide,
      "The same in the controller's word; none of one that has failed",
      &CodeTable::activity_states},
     [](const ShownTask& it) { return it.has_failed ? None() : NumberCell(it.state); }},
    {{"progress_ratio", "PROGRESS", kRatio, kTable, "How far it is"},
     [](const ShownTask& it) { return PercentCell(it.percent); }},
    {{"seconds_left", "LEFT", kSeconds, kTable,
      "How long it will run still, at the speed that it had between its last events; none unless "
      "it runs"},
     [](const ShownTask& it) { return IfRunning(it, it.pace.seconds_left); }},
    {{"rate_bytes_per_second", "RATE", kRate, kTable,
      "That speed, on each disk; none unless it runs"},
     [](const ShownTask& it) { return IfRunning(it, it.pace.bytes_per_second); }},
    {{"start_time", "SINCE", kTime, kWide, "When it was started, by the controller's clock"},
     [](const ShownTask& it) { return NumberCell(it.pace.start); }},
    {{"purpose", "PURPOSE", kText, kWide, "What it is for"}, PurposeCell},
    {{"targets", "TARGETS", kAddresses, kWide, "The disks that a rebuild or copyback writes"},
     [](const ShownTask& it) { return it.pace.targets ? TextsCell(TargetsOf(it)) : Unknown(); }},
    {{"cause", "CAUSE", kText, kWide, "Why it does not run"},
     [](const ShownTask& it) { return TextCell(it.cause); }},
    {{"next_step", "NEXT STEP", kText, kWide, "What to do so that it runs"},
     [](const ShownTask& it) { return TextCell(it.next_step); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// Beneath the table, which has no room for them: of each that does not run why, and what to do.
std::string StoriesOf(const std::vector<Task>& tasks, const hxcodes::CodeTable& codes) {
    std::string text;
    for (const Task& task : tasks) {
        const std::string_view standing = StandingOf(task, codes);
        if (standing == "running") continue;
        const std::string activity(hxcodes::NameOf(codes.activities, task.activity));
        const std::string cause = task.cause.value_or("why is not known");
        text += text.empty() ? "\n" : "";
        text += vexortools::Printable(task.address.Text() + " " +
                                      (activity.empty() ? "task" : activity) + ": " +
                                      (standing.empty() ? "in a state without a name" : cause)) +
                "\n";
        if (task.next_step) text += "  -> " + vexortools::Printable(*task.next_step) + "\n";
    }
    return text;
}

Exit ListTasks(Invocation& invocation) {
    SelectAdapters(invocation);
    Controller& controller = invocation.controller();
    std::vector<Task> tasks = LoadTasks(controller, TaskDetail::kWithObject);
    const History history = KnownHistory(controller);
    std::vector<Task> failed = LoadFailedTasks(controller, history.periods, tasks);
    std::ranges::move(failed, std::back_inserter(tasks));
    TellPace(controller, history.periods, tasks);
    TellCauses(controller, tasks);
    const std::string stories = StoriesOf(tasks, controller.codes().table());
    std::vector<ShownTask> shown;
    for (Task& task : tasks) shown.push_back({std::move(task), &controller.codes().table()});
    const Exit exit = Show(invocation, Tabulated(invocation, kColumns, shown));
    const bool is_plain = !invocation.Has("--columns") && !invocation.Has("--no-header");
    if (is_plain && StyleOf(invocation, "table").format == "table") PrintText(stories);
    return exit;
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

// The command that pauses, resumes or aborts the task on an object.
template <class Function, class Action>
Command ControlCommand(const Address& address, Parameter<Function> id, Action action,
                       std::uint64_t code) {
    auto request = RequestFor(address, id);
    request.Add({action, code});
    return request;
}

Command ControlCommand(const Address& address, std::uint64_t code) {
    using OfDisk = calls::HX_PD_BGAControl;
    using OfVirtualDisk = calls::HX_LD_BGAControl;
    using OfGroup = calls::HX_DG_BGAControl;
    switch (address.kind) {
        case ObjectKind::kDisk:
            return ControlCommand(address, OfDisk::HD_ID, OfDisk::Action, code);
        case ObjectKind::kVirtualDisk:
            return ControlCommand(address, OfVirtualDisk::LD_ID, OfVirtualDisk::Actions, code);
        case ObjectKind::kDiskGroup:
            return ControlCommand(address, OfGroup::DG_ID, OfGroup::Actions, code);
        case ObjectKind::kAdapter:
        case ObjectKind::kEnclosure:
        case ObjectKind::kElement:
            break;
    }
    throw UsageError(address.Text() + " has no tasks");
}

// What an abort leaves behind, by the activity that runs; nothing for the other verbs.
struct AbortRow {
    hxcodes::ActivityKind kind;
    std::string_view effect;
};
constexpr AbortRow kAborts[] = {
    {hxcodes::ActivityKind::kInitQuick, "it stays without valid redundancy"},
    {hxcodes::ActivityKind::kInitBackground, "it stays without valid redundancy"},
    {hxcodes::ActivityKind::kInitForeground, "it stays without valid redundancy"},
    {hxcodes::ActivityKind::kRebuild, "what is lost stays lost: its redundancy does not come back"},
    {hxcodes::ActivityKind::kMigration, "it stays at the level and on the disks that it has"},
    {hxcodes::ActivityKind::kCopyback, "the spare stays in its place"},
};

std::vector<std::string> LossesOfAbort(Invocation& invocation, const Address& address) {
    if (invocation.row().verb != "abort") return {};
    Controller& controller = invocation.controller();
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    std::vector<std::string> losses;
    for (const Task& task : LoadTasks(controller, TaskDetail::kActivity)) {
        if (task.address != address) continue;
        const std::string_view name =
            hxcodes::NameOf(controller.codes().table().activities, task.activity);
        losses.push_back(name.empty() ? "what runs is not known" : "ended: " + std::string(name));
        for (const AbortRow& row : kAborts) {
            if (hxcodes::NameOf(hxcodes::kActivityNames, hxcodes::NumberOf(row.kind)) == name) {
                losses.emplace_back(row.effect);
            }
        }
    }
    controller.TakeBack(faults, exit);
    return losses;
}

Exit ControlTask(Invocation& invocation) {
    const std::string verb(invocation.row().verb);
    const Named place = FindPlace(invocation);
    const std::uint64_t code = CodeNamed(invocation.controller(), &CodeTable::controls, verb);
    return CarryOut(invocation, {.what = verb + " the task on " + place.address.Text(),
                                 .losses = LossesOfAbort(invocation, place.address),
                                 .commands = {ControlCommand(place.address, code)},
                                 .address = place.address.Text(),
                                 .starts_task = verb == "resume"});
}

Exit PauseAll(Invocation& invocation) {
    using Function = calls::HX_LD_PauseAll;
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    return CarryOut(invocation,
                    {.what = "Pause every task of the virtual disks of " + adapter.Text(),
                     .commands = {Request<Function>{{Function::AdapterID, adapter.adapter}}},
                     .address = adapter.Text()});
}

// The activities that can be started, with the kind of object and the function that starts them.
struct StartRow {
    std::string_view kind;
    ObjectKind object;
    Command (*command)(Controller&, const Address&, std::string_view code);
    std::string_view code;  // as the controller's codes call it
    bool destroys;
};

Command StartCheck(Controller& controller, const Address& address, std::string_view type) {
    using Function = calls::HX_LD_StartConsistencyCheck;
    auto request = RequestFor(address, Function::LD_ID);
    request.Add({Function::Type, CodeNamed(controller, &CodeTable::check_types, type)});
    return request;
}

Command StartInit(Controller& controller, const Address& address, std::string_view kind) {
    using Function = calls::HX_LD_StartINIT;
    auto request = RequestFor(address, Function::LD_ID);
    request.Add({Function::Init_Type, CodeNamed(controller, &CodeTable::inits, kind)});
    return request;
}

template <class Function>
Command StartOnDisk(Controller&, const Address& address, std::string_view) {
    return RequestFor(address, Function::HD_ID);
}

constexpr StartRow kStarts[] = {
    {"check", ObjectKind::kVirtualDisk, &StartCheck, "check", false},
    {"fix", ObjectKind::kVirtualDisk, &StartCheck, "fix", false},
    {"init-quick", ObjectKind::kVirtualDisk, &StartInit, "quick", true},
    {"init-foreground", ObjectKind::kVirtualDisk, &StartInit, "foreground", true},
    {"init-background", ObjectKind::kVirtualDisk, &StartInit, "background", false},
    {"media-patrol", ObjectKind::kDisk, &StartOnDisk<calls::HX_PD_StartMediaPatrol>, "", false},
    {"data-scrub", ObjectKind::kDisk, &StartOnDisk<calls::HX_PD_StartDataScrub>, "", false},
};

// A rebuild needs the disk that replaces the missing one, and on a disk group perhaps several.
Command RebuildCommand(Controller& controller, const Address& place, const Address& disk) {
    using OfVirtualDisk = calls::HX_LD_StartRebuild;
    using OfGroup = calls::HX_LD_DG_StartRebuild;
    if (place.kind == ObjectKind::kVirtualDisk) {
        auto request = RequestFor(place, OfVirtualDisk::LD_ID);
        request.Add({OfVirtualDisk::Rebuild_HD_ID, disk.id});
        return request;
    }
    auto request = RequestFor(place, OfGroup::ID);
    request.Add(
        {OfGroup::RebuildType, CodeNamed(controller, &CodeTable::rebuild_types, "disk_group")});
    request.Add({OfGroup::PDCount, 1});
    request.Add({OfGroup::PDIDs, disk.id});
    return request;
}

Exit StartRebuild(Invocation& invocation, const Named& place) {
    const std::string* const disk = invocation.Get("--disk");
    if (disk == nullptr) throw UsageError("--disk is missing: the disk to rebuild to");
    const Address target = FindObject(invocation, ObjectKind::kDisk, *disk);
    const Address object = place.address;
    return CarryOut(invocation,
                    {.what = "Rebuild " + object.Text() + " to " + target.Text(),
                     .losses = {"what is on " + target.Text() + " will be lost"},
                     .commands = {RebuildCommand(invocation.controller(), object, target)},
                     .address = object.Text(),
                     .starts_task = true,
                     .alters = [object, target](hxconditions::Adapter& adapter) {
                         for (hxconditions::VirtualDisk& each : adapter.virtual_disks) {
                             const bool is_meant = object.kind == ObjectKind::kDiskGroup
                                                       ? each.group == object.id
                                                       : each.id == object.id;
                             if (is_meant) Rebuild(each, adapter.disks, {target.id});
                         }
                     }});
}

bool IsOptimal(Controller& controller, const Address& address) {
    if (address.kind != ObjectKind::kVirtualDisk) return false;
    for (const VirtualDisk& disk : LoadVirtualDisks(controller)) {
        if (disk.address != address) continue;
        const auto state = disk.info[fields::LD_Info::Status];
        return state == hxcodes::NumberOf(hxcodes::State::kOptimal);
    }
    return false;
}

// Our controllers have one more reason to refuse a check by the state, which their records do not
// tell: redundancy that was never made agrees with nothing.
Exit CarryOutOn(Invocation& invocation, const Address& address, const Change& change) {
    try {
        return CarryOut(invocation, change);
    } catch (const Failure& failure) {
        Controller& controller = invocation.controller();
        const bool by_state = failure.fault.name == "wrong_state";
        if (!by_state || !controller.codes().AreOurs() || !IsOptimal(controller, address)) throw;
        throw Failure(
            failure.exit,
            std::string(failure.what()) +
                "; it is optimal, so it has not been initialised: see vexorctl task start " +
                address.Text() + " --kind init-background",
            failure.fault);
    }
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
        Change change{.what = "Start " + *kind + " on " + place.address.Text(),
                      .commands = {row.command(invocation.controller(), place.address, row.code)},
                      .address = place.address.Text(),
                      .starts_task = true};
        if (row.destroys) {
            change.losses = {"all data on " + place.address.Text() + " will be lost"};
            change.confirm = place.name;
        }
        return CarryOutOn(invocation, place.address, change);
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
    kCodesOption,
};
constexpr OptionRow kStartOptions[] = {
    {"--kind", "KIND", "What to start",
     "rebuild check fix init-quick init-foreground init-background media-patrol data-scrub"},
    {"--disk", "DISK", "Of a rebuild: the disk that takes the missing one's place"},
    kWaitOption,
};

constexpr std::string_view kWaitNote =
    "Without a task it is about all that run. A terminal shows a line for each on standard error, "
    "in the width that it has. Ctrl-C ends the waiting, not the task. When what is left is paused, "
    "the exit code is 7, and the command that resumes it is told. It is 1 when a virtual disk is "
    "lost or stays degraded and, where hxraidsvc collects the events, when a task was aborted or "
    "has failed or a check has found errors.";

constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr CommandRow kCommands[] = {
    {.noun = "task",
     .verb = "list",
     .summary = "List the background activities",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .options = kAdapterOption,
     .functions = kNamesOf<calls::HX_LD_GetStatus, calls::HX_LD_GetInfo, calls::HX_PD_GetBGAStatus,
                           calls::HX_DG_GetInfo, calls::HX_BLK_GetInfo, calls::HX_PD_GetHDInfo_Ext,
                           calls::VX_HX_EVT_GetEvents>,
     .examples = {"vexorctl task list", "vexorctl task list a0 -o json"},
     .run = ListTasks,
     .columns = Columns,
     .note = "A task goes by the address of the object on which it runs: there is at most one. One "
             "that is queued waits for something more urgent and goes on by itself; one that is "
             "paused waits for task resume; one that has failed stays until it is started again, "
             "or its object is well or gone. What does not run is told beneath the table with its "
             "cause and what to do. What has failed, since when the others run, how fast and how "
             "long still is taken from the stored events: it is not known where no event service "
             "collects them, and before two steps of its progress."},
    {.noun = "task",
     .verb = "start",
     .summary = "Start an activity on a disk, virtual disk or disk group",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "OBJECT",
     .options = kStartOptions,
     .functions = kNamesOf<calls::HX_LD_StartConsistencyCheck, calls::HX_LD_StartINIT,
                           calls::HX_LD_StartRebuild, calls::HX_LD_DG_StartRebuild,
                           calls::HX_PD_StartMediaPatrol, calls::HX_PD_StartDataScrub>,
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
     .functions =
         kNamesOf<calls::HX_LD_BGAControl, calls::HX_DG_BGAControl, calls::HX_PD_BGAControl>,
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
     .functions = kNamesOf<calls::HX_LD_PauseAll>,
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
     .functions =
         kNamesOf<calls::HX_LD_BGAControl, calls::HX_DG_BGAControl, calls::HX_PD_BGAControl>,
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
     .functions =
         kNamesOf<calls::HX_LD_BGAControl, calls::HX_DG_BGAControl, calls::HX_PD_BGAControl>,
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
     .functions = kNamesOf<calls::HX_LD_GetStatus, calls::HX_PD_GetBGAStatus, calls::HX_DG_GetInfo>,
     .examples = {"vexorctl task wait", "vexorctl task wait a0/vd0 --timeout 10s"},
     .run = WaitTask,
     .note = kWaitNote},
    {.noun = "task",
     .verb = "watch",
     .summary = "Watch tasks until their end",
     .target = Target::kTask,
     .arity = Arity::kAny,
     .target_name = "TASK",
     .options = kTimeoutOptions,
     .functions = kNamesOf<calls::HX_LD_GetStatus, calls::HX_PD_GetBGAStatus, calls::HX_DG_GetInfo>,
     .examples = {"vexorctl task watch", "vexorctl task watch a0/vd0 --timeout 10s"},
     .run = WaitTask,
     .note = kWaitNote},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::task_noun
