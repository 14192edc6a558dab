// The steps of scenarios that call the library, as any program does.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "codes/hxraid_codes.h"
#include "hxraid.h"
#include "scenario.h"
#include "words.h"

namespace {

using Words = std::vector<std::string>;

// ---- Values: name=value ----

// The values behind a step; each name at most once, and none that the step does not know.
class Values {
public:
    Values(const Words& words, std::size_t first, const std::vector<std::string_view>& known) {
        for (std::size_t i = first; i < words.size(); ++i) {
            const std::size_t equals = words[i].find('=');
            const std::string name = words[i].substr(0, equals);
            if (equals == std::string::npos ||
                std::ranges::find(known, std::string_view(name)) == known.end()) {
                std::string list;
                for (const std::string_view each : known) {
                    list += list.empty() ? "" : ", ";
                    list += std::string(each) + '=';
                }
                throw UsageError('"' + words[i] + "\" is nothing that can be set; take one of " +
                                 list);
            }
            if (!values_.emplace(name, words[i].substr(equals + 1)).second) {
                throw UsageError(name + " is given twice");
            }
        }
    }

    bool Has(const std::string& name) const { return values_.contains(name); }

    std::string Text(const std::string& name) const {
        const auto found = values_.find(name);
        return found == values_.end() ? "" : found->second;
    }

    std::uint64_t Number(const std::string& name, std::uint64_t most,
                         std::uint64_t otherwise) const {
        return Has(name) ? ParseNumber(Text(name), most, "value of " + name) : otherwise;
    }

private:
    std::map<std::string, std::string> values_;
};

Words Parts(const std::string& text) {
    Words parts;
    std::size_t from = 0;
    while (from <= text.size()) {
        const std::size_t end = std::min(text.find(',', from), text.size());
        parts.push_back(text.substr(from, end - from));
        from = end + 1;
    }
    return parts;
}

std::vector<HX_U16> DisksOf(const Values& values) {
    std::vector<HX_U16> disks;
    if (!values.Has("disks")) return disks;
    for (const std::string& part : Parts(values.Text("disks"))) {
        disks.push_back(static_cast<HX_U16>(ParseNumber(part, 65535, "number of a disk")));
    }
    if (disks.size() > HX_MAX_HDS) {
        throw UsageError("so many disks fit into no call; name at most " +
                         std::to_string(HX_MAX_HDS));
    }
    return disks;
}

HX_U8 LevelOf(const Values& values) {
    if (!values.Has("raid")) throw UsageError("the level is missing; write raid=5");
    return static_cast<HX_U8>(
        ParseName(kHxsimLevelNames, "raid" + values.Text("raid"), "RAID level"));
}

HX_U8 CacheOf(const Values& values) {
    HX_U8 cache = 0;
    if (!values.Has("cache")) return cache;
    for (const std::string& part : Parts(values.Text("cache"))) {
        cache |= static_cast<HX_U8>(ParseName(kHxsimCacheBits, part, "cache mode"));
    }
    return cache;
}

HX_U8 InitOf(const Values& values) {
    if (!values.Has("init")) return HXSIM_INIT_QUICK;
    return static_cast<HX_U8>(
        ParseName(kHxsimInitNames, values.Text("init"), "kind of initialisation"));
}

template <std::size_t size>
void SetName(char (&field)[size], const std::string& name) {
    if (name.size() > size) {
        throw UsageError('"' + name + "\" is too long a name; " + std::to_string(size) +
                         " bytes fit");
    }
    std::memcpy(field, name.data(), name.size());
}

HX_U64 SizeOf(const Values& values) {
    HX_U64 size{};
    if (values.Has("size")) size.value = ParseSize(values.Text("size"));
    return size;
}

constexpr HX_U16 kStripe = 64;  // KiB, where a step names none

HX_U16 StripeOf(const Values& values) {
    return static_cast<HX_U16>(values.Number("stripe", 65535, kStripe));
}

HX_U8 LegsOf(const Values& values) { return static_cast<HX_U8>(values.Number("legs", 255, 0)); }

Step Calling(const std::string& name, const std::function<HX_U8()>& call) {
    return [name, call](Story& story) { story.TheDriver().Call(name, call); };
}

// ---- Virtual disks and disk groups ----

Create_LD_Param ParamOfVirtualDisk(const Values& values) {
    Create_LD_Param param{};
    const std::vector<HX_U16> disks = DisksOf(values);
    param.RaidMode = LevelOf(values);
    param.HDCount = static_cast<HX_U8>(disks.size());
    std::ranges::copy(disks, param.HDIDs);
    param.SubLDCount = LegsOf(values);
    param.StripeBlockSize = StripeOf(values);
    param.CachePolicy = CacheOf(values);
    param.InitializationOption = InitOf(values);
    param.SectorCoefficient = 1;
    SetName(param.Name, values.Text("name"));
    param.Size = SizeOf(values);
    return param;
}

CreateOrModify_DG_Param ParamOfGroup(const Values& values) {
    CreateOrModify_DG_Param param{};
    const std::vector<HX_U16> disks = DisksOf(values);
    param.DGID = HX_NEW_ID;
    SetName(param.Name, values.Text("name"));
    param.RaidMode = LevelOf(values);
    param.SubVDCount = LegsOf(values);
    param.StripeBlockSize = StripeOf(values);
    param.BlockSize = 512;
    param.InitializationOption = HXSIM_INIT_NONE;
    param.PDCount = static_cast<HX_U8>(disks.size());
    std::ranges::copy(disks, param.PDIDs);
    return param;
}

// On a disk group, which has level, legs and stripes already.
Step CreateOnGroup(const Address& group, const Words& words) {
    const Values values(words, 3, {"name", "size", "slot", "init", "cache"});
    CreateOrModify_VD_Param param{};
    param.VDID = HX_NEW_ID;
    param.DGID = group.id;
    SetName(param.Name, values.Text("name"));
    param.DGSlotNum = static_cast<HX_U8>(values.Number("slot", 255, 0));
    param.Size = SizeOf(values);
    param.CachePolicy = CacheOf(values);
    param.InitializationOption = InitOf(values);
    param.SectorCoefficient = 1;
    param.BlockSize = 512;
    return [group, param](Story& story) {
        Driver& driver = story.TheDriver();
        RequireObject(driver.Current(), group);
        const hxsim::DiskGroup& row =
            *hxsim::Find(AdapterAt(driver.Current(), group).disk_groups, group.id);
        CreateOrModify_VD_Param complete = param;
        complete.RaidMode = row.level;
        complete.SubVDCount = row.legs;
        complete.StripeBlockSize = row.stripe_kib;
        driver.Call("HX_CreateOrModify_VD",
                    [&] { return HX_CreateOrModify_VD(group.adapter, &complete); });
    };
}

void RequireWords(const Words& words, std::size_t least, const std::string& form) {
    if (words.size() < least) throw UsageError("write " + form);
}

void RequireNoMore(const Words& words, std::size_t most) {
    if (words.size() > most) {
        throw UsageError('"' + words[most] + "\" is one word too many; leave it out");
    }
}

Step ParseCreate(const Words& words) {
    RequireWords(words, 3, "create vd a0 raid=5 disks=0,1,2, or create dg, or create vd a0/dg0");
    if (words[1] == "vd") {
        const Address address = ParseAddress(words[2]);
        if (address.kind == Kind::kDiskGroup) return CreateOnGroup(address, words);
        const HX_U8 adapter = ParseAddress(words[2], Kind::kAdapter).adapter;
        const Values values(words, 3,
                            {"name", "raid", "disks", "size", "stripe", "legs", "init", "cache"});
        const Create_LD_Param param = ParamOfVirtualDisk(values);
        return Calling("HX_LD_Create", [adapter, param] {
            Create_LD_Param copy = param;
            return HX_LD_Create(adapter, &copy);
        });
    }
    if (words[1] == "dg") {
        const HX_U8 adapter = ParseAddress(words[2], Kind::kAdapter).adapter;
        const Values values(words, 3, {"name", "raid", "disks", "stripe", "legs"});
        const CreateOrModify_DG_Param param = ParamOfGroup(values);
        return Calling("HX_CreateOrModify_DG", [adapter, param] {
            CreateOrModify_DG_Param copy = param;
            return HX_CreateOrModify_DG(adapter, &copy, 0);
        });
    }
    throw UsageError('"' + words[1] + "\" cannot be created; write create vd or create dg");
}

Step ParseDelete(const Words& words) {
    RequireWords(words, 3, "delete vd a0/vd0 or delete dg a0/dg0");
    if (words[1] == "vd") {
        const Address address = ParseAddress(words[2], Kind::kVirtualDisk);
        return Calling("HX_LD_Delete",
                       [address] { return HX_LD_Delete(address.adapter, address.id, 0); });
    }
    if (words[1] != "dg") {
        throw UsageError('"' + words[1] + "\" cannot be deleted; write delete vd or delete dg");
    }
    const Address address = ParseAddress(words[2], Kind::kDiskGroup);
    return Calling("HX_DG_Delete", [address] { return HX_DG_Delete(address.adapter, address.id); });
}

Step ParseMigrate(const Words& words) {
    RequireWords(words, 4, "migrate vd a0/vd0 raid=6 disks=0,1,2,3");
    const Values values(words, 3, {"raid", "disks", "stripe", "legs"});
    if (words[1] == "vd") {
        const Address address = ParseAddress(words[2], Kind::kVirtualDisk);
        Create_LD_Param param = ParamOfVirtualDisk(values);
        param.LDID = address.id;
        return Calling("HX_LD_StartMigration", [address, param] {
            Create_LD_Param copy = param;
            return HX_LD_StartMigration(address.adapter, &copy);
        });
    }
    if (words[1] != "dg") {
        throw UsageError('"' + words[1] + "\" cannot be migrated; write migrate vd or migrate dg");
    }
    const Address address = ParseAddress(words[2], Kind::kDiskGroup);
    CreateOrModify_DG_Param param = ParamOfGroup(values);
    param.DGID = address.id;
    return Calling("HX_DG_StartMigration", [address, param] {
        CreateOrModify_DG_Param copy = param;
        return HX_DG_StartMigration(address.adapter, &copy);
    });
}

Step ParseImport(const Words& words) {
    RequireWords(words, 2, "import a0/vd3");
    const Address address = ParseAddress(words[1], Kind::kVirtualDisk);
    return Calling("HX_LD_Import", [address] { return HX_LD_Import(address.adapter, address.id); });
}

// ---- Activities ----

// start check a0/vd0, and so on: the activities that a caller starts.
Step ParseStart(const Words& words) {
    RequireWords(words, 3, "start and an activity, such as start check a0/vd0");
    const HX_U32 kind = ParseName(kHxsimActivityNames, words[1], "activity");
    if (kind != HXSIM_ACTIVITY_REBUILD) RequireNoMore(words, 3);
    const bool of_disk = kind == HXSIM_ACTIVITY_MEDIA_PATROL || kind == HXSIM_ACTIVITY_DATA_SCRUB;
    const Address address = ParseAddress(words[2], of_disk ? Kind::kDisk : Kind::kVirtualDisk);
    const HX_U8 adapter = address.adapter;
    const HX_U16 id = address.id;
    const auto init = [&](HX_U8 type) {
        return Calling("HX_LD_StartINIT", [=] { return HX_LD_StartINIT(adapter, id, type); });
    };
    const auto check = [&](HX_U8 type) {
        return Calling("HX_LD_StartConsistencyCheck",
                       [=] { return HX_LD_StartConsistencyCheck(adapter, id, type); });
    };
    switch (kind) {
        case HXSIM_ACTIVITY_CHECK:
            return check(HXSIM_CHECK_ONLY);
        case HXSIM_ACTIVITY_FIX:
            return check(HXSIM_CHECK_AND_FIX);
        case HXSIM_ACTIVITY_INIT_QUICK:
            return init(HXSIM_INIT_QUICK);
        case HXSIM_ACTIVITY_INIT_BACK:
            return init(HXSIM_INIT_BACKGROUND);
        case HXSIM_ACTIVITY_INIT_FORE:
            return init(HXSIM_INIT_FOREGROUND);
        case HXSIM_ACTIVITY_MEDIA_PATROL:
            return Calling("HX_PD_StartMediaPatrol",
                           [=] { return HX_PD_StartMediaPatrol(adapter, id); });
        case HXSIM_ACTIVITY_DATA_SCRUB:
            return Calling("HX_PD_StartDataScrub",
                           [=] { return HX_PD_StartDataScrub(adapter, id); });
        case HXSIM_ACTIVITY_REBUILD: {
            RequireWords(words, 4, "start rebuild a0/vd0 a0/pd5");
            const HX_U16 disk = ParseAddress(words[3], Kind::kDisk).id;
            return Calling("HX_LD_StartRebuild",
                           [=] { return HX_LD_StartRebuild(adapter, id, disk); });
        }
        default:
            throw UsageError('"' + words[1] +
                             "\" is not started so; a migration is started by migrate, and the "
                             "controller starts a copyback itself");
    }
}

// pause, resume and abort.
Step ParseControl(const Words& words) {
    RequireWords(words, 2, words[0] + " and the address of a disk, virtual disk or disk group");
    const Address address = ParseAddress(words[1]);
    const auto action =
        static_cast<HX_U8>(ParseName(kHxsimControlNames, words[0], "way to control an activity"));
    switch (address.kind) {
        case Kind::kDisk:
            return Calling("HX_PD_BGAControl",
                           [=] { return HX_PD_BGAControl(address.adapter, address.id, action); });
        case Kind::kVirtualDisk:
            return Calling("HX_LD_BGAControl",
                           [=] { return HX_LD_BGAControl(address.adapter, address.id, action); });
        case Kind::kDiskGroup:
            return Calling("HX_DG_BGAControl",
                           [=] { return HX_DG_BGAControl(address.adapter, address.id, action); });
        default:
            throw UsageError(address.text +
                             " has no activities; write the address of a disk, virtual disk or "
                             "disk group");
    }
}

// ---- Disks ----

Step ParseSpare(const Words& words) {
    RequireWords(words, 2, "spare a0/pd9, or spare a0/pd9 a0/dg0 for one disk group");
    const Address disk = ParseAddress(words[1], Kind::kDisk);
    if (words.size() == 2) {
        return Calling("HX_PD_FreeHD2GlobalSpare",
                       [=] { return HX_PD_FreeHD2GlobalSpare(disk.adapter, disk.id); });
    }
    const Address group = ParseAddress(words[2], Kind::kDiskGroup);
    return Calling("HX_PD_FreeHD2DGSpare",
                   [=] { return HX_PD_FreeHD2DGSpare(disk.adapter, disk.id, group.id); });
}

Step ParseUnspare(const Words& words) {
    RequireWords(words, 2, "unspare a0/pd9");
    const Address disk = ParseAddress(words[1], Kind::kDisk);
    return Calling("HX_PD_Spare2FreeHD", [=] { return HX_PD_Spare2FreeHD(disk.adapter, disk.id); });
}

// What a caller makes of a disk: online, offline or free.
Step ParseMake(const Words& words) {
    RequireWords(words, 3, "make a0/pd9 online, offline or free");
    const Address disk = ParseAddress(words[1], Kind::kDisk);
    const auto action =
        static_cast<HX_U8>(ParseName(kHxsimDiskActionNames, words[2], "state to make of a disk"));
    return Calling("HX_PD_SetHDStatus",
                   [=] { return HX_PD_SetHDStatus(disk.adapter, disk.id, action); });
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
    RequireWords(words, 3, "set a0 rebuild_rate=100");
    const HX_U8 adapter = ParseAddress(words[1], Kind::kAdapter).adapter;
    std::vector<std::string_view> known;
    for (const Setting& setting : kSettings) known.push_back(setting.name);
    const Values values(words, 2, known);
    std::vector<std::pair<Setting, HX_U8>> wanted;
    for (const Setting& setting : kSettings) {
        const std::string name(setting.name);
        if (!values.Has(name)) continue;
        wanted.emplace_back(setting, static_cast<HX_U8>(values.Number(name, setting.most, 0)));
    }
    return [adapter, wanted](Story& story) {
        Adapter_Config_V2 config{};
        HX_U8 count = 0;
        story.TheDriver().Call("HX_Adapter_GetConfig",
                               [&] { return HX_Adapter_GetConfig(adapter, &count, &config); });
        for (const auto& [setting, value] : wanted) config.*setting.field = value;
        story.TheDriver().Call("HX_Adapter_SetConfig",
                               [&] { return HX_Adapter_SetConfig(adapter, &config); });
    };
}

Step ParseMute(const Words& words) {
    RequireWords(words, 2, "mute a0");
    const HX_U8 adapter = ParseAddress(words[1], Kind::kAdapter).adapter;
    return Calling("HX_AdapterMute", [=] { return HX_AdapterMute(adapter); });
}

Step ParseRelearn(const Words& words) {
    RequireWords(words, 2, "relearn a0");
    const HX_U8 adapter = ParseAddress(words[1], Kind::kAdapter).adapter;
    return Calling("HX_BBU_ChangePower",
                   [=] { return HX_BBU_ChangePower(adapter, HXSIM_POWER_RELEARN); });
}

// Takes the events of an adapter off its queue, as the event service does.
Step ParseTake(const Words& words) {
    RequireWords(words, 2, "take a0");
    const HX_U8 adapter = ParseAddress(words[1], Kind::kAdapter).adapter;
    return [adapter](Story& story) {
        HX_U8 count = 0;
        do {
            Event events[HX_EVENTS_PER_CALL]{};
            story.TheDriver().Call("HX_EVT_GetEvent", [&] {
                return HX_EVT_GetEvent(adapter, HX_EVENTS_PER_CALL, &count, events);
            });
            for (HX_U8 i = 0; i < count && i < HX_EVENTS_PER_CALL; ++i) story.Keep(events[i]);
        } while (count != 0);
    };
}

// What comes next finds the machine in the state file alone.
Step ParseRestart(const Words& words) {
    if (words.size() != 1) throw UsageError("nothing stands behind restart");
    return [](Story& story) { story.TheDriver().Restart(); };
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
    {"import", ParseImport, 2},
    {"start", ParseStart, 4},
    {"pause", ParseControl, 2},
    {"resume", ParseControl, 2},
    {"abort", ParseControl, 2},
    {"spare", ParseSpare, 3},
    {"unspare", ParseUnspare, 2},
    {"make", ParseMake, 3},
    {"set", ParseSet, kAnyWords},
    {"mute", ParseMute, 2},
    {"relearn", ParseRelearn, 2},
    {"take", ParseTake, 2},
    {"restart", ParseRestart, 1},
};

const CallStep* FindCall(std::string_view word) {
    const auto* const found = std::ranges::find(kCallSteps, word, &CallStep::word);
    return found == std::end(kCallSteps) ? nullptr : &*found;
}

}  // namespace

bool IsCall(std::string_view word) { return FindCall(word) != nullptr; }

Step ParseCall(const std::vector<std::string>& words) {
    const CallStep& call = *FindCall(words[0]);
    RequireNoMore(words, call.most_words);
    return call.parse(words);
}
