#include "call_steps.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "code_names.h"
#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/disk.h"
#include "creation_steps.h"
#include "object_call.h"

namespace hxsimctl {

namespace {

// ---- One call about one object ----

struct ObjectStep {
    std::string_view word;
    const char* form;
    ObjectKind kind;
    ObjectCall call;
};
constexpr ObjectStep kObjectSteps[] = {
    {"import",
     "import a0/vd3",
     ObjectKind::kVirtualDisk,
     {"HX_LD_Import", [](const Object& it) { return HX_LD_Import(it.adapter, it.id); }}},
    {"mute",
     "mute a0",
     ObjectKind::kAdapter,
     {"HX_AdapterMute", [](const Object& it) { return HX_AdapterMute(it.adapter); }}},
    {"relearn",
     "relearn a0",
     ObjectKind::kAdapter,
     {"HX_BBU_ChangePower",
      [](const Object& it) {
          return HX_BBU_ChangePower(it.adapter, NumberOf(hxcodes::Power::kRelearn));
      }}},
    {"unspare",
     "unspare a0/pd9",
     ObjectKind::kDisk,
     {"HX_PD_Spare2FreeHD",
      [](const Object& it) { return HX_PD_Spare2FreeHD(it.adapter, it.id); }}},
};

Step ParseObjectStep(const Words& words) {
    const ObjectStep& row = *std::ranges::find(kObjectSteps, words[0], &ObjectStep::word);
    RequireWords(words, 2, row.form);
    return CallAbout(ParseTarget(words[1], row.kind), row.call);
}

// Calls the library with an object and a second object of the same adapter.
Step CallAboutTwo(const Target& target, const Target& second, const char* function,
                  HX_U8 (*call)(HX_U8 adapter, HX_U16 id, HX_U16 second)) {
    return [=](Story& story) {
        const Object object = ObjectNow(story, target);
        const HX_U16 other = ObjectNow(story, second).id;
        story.driver().Call(function, [&] { return call(object.adapter, object.id, other); });
    };
}

// ---- Activities ----

struct StartRow {
    hxcodes::ActivityKind kind;
    ObjectCall call;
};
template <hxcodes::CheckType type>
constexpr ObjectCall kStartCheck = {"HX_LD_StartConsistencyCheck", [](const Object& it) {
                                        return HX_LD_StartConsistencyCheck(it.adapter, it.id,
                                                                           NumberOf(type));
                                    }};
template <hxcodes::Init type>
constexpr ObjectCall kStartInit = {"HX_LD_StartINIT", [](const Object& it) {
                                       return HX_LD_StartINIT(it.adapter, it.id, NumberOf(type));
                                   }};
constexpr StartRow kStarts[] = {
    {hxcodes::ActivityKind::kCheck, kStartCheck<hxcodes::CheckType::kOnly>},
    {hxcodes::ActivityKind::kFix, kStartCheck<hxcodes::CheckType::kAndFix>},
    {hxcodes::ActivityKind::kInitQuick, kStartInit<hxcodes::Init::kQuick>},
    {hxcodes::ActivityKind::kInitBackground, kStartInit<hxcodes::Init::kBackground>},
    {hxcodes::ActivityKind::kInitForeground, kStartInit<hxcodes::Init::kForeground>},
    {hxcodes::ActivityKind::kMediaPatrol,
     {"HX_PD_StartMediaPatrol",
      [](const Object& it) { return HX_PD_StartMediaPatrol(it.adapter, it.id); }}},
    {hxcodes::ActivityKind::kDataScrub,
     {"HX_PD_StartDataScrub",
      [](const Object& it) { return HX_PD_StartDataScrub(it.adapter, it.id); }}},
};

// start check a0/vd0 and the like: the activities that a caller can start.
Step ParseStart(const Words& words) {
    RequireWords(words, 3, "start and an activity, such as start check a0/vd0");
    const auto kind = ParseCode<hxcodes::ActivityKind>(words[1], "activity");
    if (kind == hxcodes::ActivityKind::kRebuild) {
        RequireWords(words, 4, "start rebuild a0/vd0 a0/pd5");
        return CallAboutTwo(ParseTarget(words[2], ObjectKind::kVirtualDisk),
                            ParseTarget(words[3], ObjectKind::kDisk), "HX_LD_StartRebuild",
                            HX_LD_StartRebuild);
    }
    RequireNoMore(words, 3);
    const auto* const row = std::ranges::find(kStarts, kind, &StartRow::kind);
    if (row == std::end(kStarts)) {
        throw UsageError('"' + words[1] +
                         "\" is not started so; a migration is started by migrate, and the "
                         "controller starts a copyback itself");
    }
    const bool of_disk = RowOf(row->kind).runs_on == hxcodes::RunsOn::kDisk;
    return CallAbout(ParseTarget(words[2], of_disk ? ObjectKind::kDisk : ObjectKind::kVirtualDisk),
                     row->call);
}

struct ControlRow {
    ObjectKind kind;
    const char* function;
    HX_U8 (*call)(HX_U8 adapter, HX_U16 id, HX_U8 action);
};
constexpr ControlRow kControls[] = {
    {ObjectKind::kDisk, "HX_PD_BGAControl", HX_PD_BGAControl},
    {ObjectKind::kVirtualDisk, "HX_LD_BGAControl", HX_LD_BGAControl},
    {ObjectKind::kDiskGroup, "HX_DG_BGAControl", HX_DG_BGAControl},
};

// pause, resume and abort.
Step ParseControl(const Words& words) {
    RequireWords(words, 2, words[0] + " and the address of a disk, virtual disk or disk group");
    const Target target = ParseTarget(words[1]);
    const auto action = static_cast<HX_U8>(
        ParseName(hxcodes::kControlActionNames, words[0], "way to control an activity"));
    const auto* const row = std::ranges::find(kControls, target.kind, &ControlRow::kind);
    if (row == std::end(kControls)) {
        throw UsageError(target.selector.typed +
                         " has no activities; write the address of a disk, virtual disk or disk "
                         "group");
    }
    return [target, control = *row, action](Story& story) {
        const Object object = ObjectNow(story, target);
        story.driver().Call(control.function,
                            [&] { return control.call(object.adapter, object.id, action); });
    };
}

// ---- Disks ----

Step ParseSpare(const Words& words) {
    RequireWords(words, 2, "spare a0/pd9, or spare a0/pd9 a0/dg0 for one disk group");
    const Target disk = ParseTarget(words[1], ObjectKind::kDisk);
    if (words.size() == 2) {
        return CallAbout(disk, {"HX_PD_FreeHD2GlobalSpare", [](const Object& it) {
                                    return HX_PD_FreeHD2GlobalSpare(it.adapter, it.id);
                                }});
    }
    return CallAboutTwo(disk, ParseTarget(words[2], ObjectKind::kDiskGroup), "HX_PD_FreeHD2DGSpare",
                        HX_PD_FreeHD2DGSpare);
}

// make a0/pd9 online, offline or free.
Step ParseMake(const Words& words) {
    RequireWords(words, 3, "make a0/pd9 online, offline or free");
    const Target disk = ParseTarget(words[1], ObjectKind::kDisk);
    const auto action = static_cast<HX_U8>(
        ParseName(hxcodes::kDiskActionNames, words[2], "state to make of a disk"));
    return [disk, action](Story& story) {
        const Object object = ObjectNow(story, disk);
        story.driver().Call("HX_PD_SetHDStatus",
                            [&] { return HX_PD_SetHDStatus(object.adapter, object.id, action); });
    };
}

// ---- The adapter ----

struct Setting {
    std::string_view name;
    HX_U8 Adapter_Config_V2::*field;
    HX_U8 most;
};
constexpr Setting kSettings[] = {
    {"alarm", &Adapter_Config_V2::AlarmOn, 1},
    {"auto_rebuild", &Adapter_Config_V2::AutoRebuildOn, 1},
    {"background_rate", &Adapter_Config_V2::BGARate, 100},
    {"copyback", &Adapter_Config_V2::CopyBack, 1},
    {"copyback_rate", &Adapter_Config_V2::CopybackRate, 100},
    {"init_rate", &Adapter_Config_V2::InitRate, 100},
    {"media_patrol_rate", &Adapter_Config_V2::MediaPatrolRate, 100},
    {"migration_rate", &Adapter_Config_V2::MigrationRate, 100},
    {"rebuild_rate", &Adapter_Config_V2::RebuildRate, 100},
    {"smart_polling", &Adapter_Config_V2::PollSMARTStatus, 1},
    {"sync_rate", &Adapter_Config_V2::SyncRate, 100},
};

Step ParseSet(const Words& words) {
    RequireWords(words, 2, "set a0 rebuild_rate=100");
    const Target target = ParseTarget(words[1], ObjectKind::kAdapter);
    std::vector<std::string_view> known;
    for (const Setting& setting : kSettings) known.push_back(setting.name);
    const StepValues values(words, 2, known);
    std::vector<std::pair<Setting, HX_U8>> wanted;
    for (const Setting& setting : kSettings) {
        const std::string name(setting.name);
        if (!values.Has(name)) continue;
        wanted.emplace_back(setting, static_cast<HX_U8>(values.Number(name, setting.most, 0)));
    }
    return [target, wanted](Story& story) {
        const HX_U8 adapter = ObjectNow(story, target).adapter;
        Adapter_Config_V2 config{};
        HX_U8 count = 0;
        story.driver().Call("HX_Adapter_GetConfig",
                            [&] { return HX_Adapter_GetConfig(adapter, &count, &config); });
        for (const auto& [setting, value] : wanted) config.*setting.field = value;
        story.driver().Call("HX_Adapter_SetConfig",
                            [&] { return HX_Adapter_SetConfig(adapter, &config); });
    };
}

// Fetches all events of an adapter, as the event service does.
Step ParseTake(const Words& words) {
    RequireWords(words, 2, "take a0");
    const Target target = ParseTarget(words[1], ObjectKind::kAdapter);
    return [target](Story& story) {
        const HX_U8 adapter = ObjectNow(story, target).adapter;
        HX_U8 count = 0;
        do {
            Event events[HX_EVENTS_PER_CALL]{};
            story.driver().Call("HX_EVT_GetEvent", [&] {
                return HX_EVT_GetEvent(adapter, HX_EVENTS_PER_CALL, &count, events);
            });
            for (HX_U8 i = 0; i < count && i < HX_EVENTS_PER_CALL; ++i) story.Keep(events[i]);
        } while (count != 0);
    };
}

// Closes everything, so that the next step reads the machine from the state file.
Step ParseRestart(const Words& words) {
    if (words.size() != 1) throw UsageError("nothing stands behind restart");
    return [](Story& story) { story.driver().Restart(); };
}

struct CallStep {
    std::string_view word;
    Step (*parse)(const Words& words);
    std::size_t most_words;
};
constexpr std::size_t kAnyWords = SIZE_MAX;
constexpr CallStep kCallSteps[] = {
    {"create", ParseCreate, kAnyWords},
    {"delete", ParseDelete, 3},
    {"migrate", ParseMigrate, kAnyWords},
    {"import", ParseObjectStep, 2},
    {"start", ParseStart, 4},
    {"pause", ParseControl, 2},
    {"resume", ParseControl, 2},
    {"abort", ParseControl, 2},
    {"spare", ParseSpare, 3},
    {"unspare", ParseObjectStep, 2},
    {"make", ParseMake, 3},
    {"set", ParseSet, kAnyWords},
    {"mute", ParseObjectStep, 2},
    {"relearn", ParseObjectStep, 2},
    {"take", ParseTake, 2},
    {"restart", ParseRestart, 1},
};

const CallStep* FindCall(std::string_view word) {
    const auto* const found = std::ranges::find(kCallSteps, word, &CallStep::word);
    return found == std::end(kCallSteps) ? nullptr : found;
}

}  // namespace

bool IsCall(std::string_view word) { return FindCall(word) != nullptr; }

Step ParseCall(const Words& words) {
    const CallStep& call = *FindCall(words[0]);
    RequireNoMore(words, call.most_words);
    return call.parse(words);
}

}  // namespace hxsimctl
