// The adapter's settings, and the rates as MD takes them.
#include "calls/hxmd_rate.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <string>

#include "calls/hxmd_session.h"
#include "codes/activity.h"
#include "codes/rate.h"
#include "codes/status.h"
#include "hxraid.h"
#include "rules/hxmd_changes.h"
#include "rules/hxmd_state.h"
#include "system/hxmd_word.h"

namespace hxmd {
namespace {

using hxcodes::EventKind;
using hxcodes::NumberOf;
using hxcodes::Rate;
using hxcodes::Status;

// ---- What is kept ----

struct RateSetting {
    decltype(Rate::kGeneral) rate;
    const char* name;
    HX_U8 Adapter_Config_V2::*field;
    EventKind changed;
};
constexpr RateSetting kRateSettings[] = {
    {Rate::kGeneral, "general_rate", &Adapter_Config_V2::BGARate,
     EventKind::kBackgroundRateChanged},
    {Rate::kSync, "sync_rate", &Adapter_Config_V2::SyncRate, EventKind::kSyncRateChanged},
    {Rate::kInit, "init_rate", &Adapter_Config_V2::InitRate, EventKind::kInitRateChanged},
    {Rate::kRebuild, "rebuild_rate", &Adapter_Config_V2::RebuildRate,
     EventKind::kRebuildRateChanged},
    {Rate::kMigration, "migration_rate", &Adapter_Config_V2::MigrationRate,
     EventKind::kMigrationRateChanged},
    {Rate::kCopyback, "copyback_rate", &Adapter_Config_V2::CopybackRate,
     EventKind::kCopybackRateChanged},
};

struct Switch {
    const char* name;
    HX_U8 Adapter_Config_V2::*field;
    EventKind on, off;
};
constexpr Switch kSwitches[] = {
    {"auto_rebuild", &Adapter_Config_V2::AutoRebuildOn, EventKind::kAutoRebuildOn,
     EventKind::kAutoRebuildOff},
    {"poll_smart", &Adapter_Config_V2::PollSMARTStatus, EventKind::kSmartPollingOn,
     EventKind::kSmartPollingOff},
};

std::uint64_t SettingOf(const Kept& kept, const char* name) {
    const auto row = std::ranges::find(kept.settings, name, &KeptSetting::name);
    return row == kept.settings.end() ? 0 : row->value;
}

// Returns whether the value is another one than before.
bool Set(Kept& kept, const char* name, std::uint64_t value) {
    const bool changed = SettingOf(kept, name) != value;
    const auto row = std::ranges::find(kept.settings, name, &KeptSetting::name);
    if (row != kept.settings.end()) {
        row->value = value;
    } else {
        kept.settings.push_back({name, value});
    }
    return changed;
}

void SetAll(Kept& kept, const Adapter_Config_V2& config, std::int64_t now) {
    for (const Switch& each : kSwitches) {
        const bool on = config.*each.field != 0;
        if (Set(kept, each.name, on ? 1 : 0)) Queue(kept, {on ? each.on : each.off}, now);
    }
    for (const RateSetting& each : kRateSettings) {
        const HX_U8 percent = config.*each.field;
        if (Set(kept, each.name, percent)) Queue(kept, {each.changed, 0, {percent}}, now);
    }
}

// ---- What MD gets ----

// What a member is taken to write, for which 100 percent stands.
constexpr std::uint64_t kRotating = 150'000;  // KiB/s
constexpr std::uint64_t kFlash = 400'000;
constexpr std::uint64_t kNvme = 1'500'000;

std::uint64_t SpeedOf(const Disk& disk) {
    if (disk.link == Link::kNvme) return kNvme;
    return disk.rotational == 0 ? kFlash : kRotating;
}

std::uint64_t SlowestOf(const Machine& machine, const Array& array) {
    std::uint64_t slowest = kNvme;
    for (const Member& member : array.members) {
        const auto disk = std::ranges::find(machine.disks, member.disk, &Disk::id);
        if (disk != machine.disks.end()) slowest = std::min(slowest, SpeedOf(*disk));
    }
    return slowest;
}

const RateSetting* SettingFor(const Activity& activity) {
    const auto& row = hxcodes::RowOf(activity.kind);
    if (!row.rate) return nullptr;
    const auto* const setting =
        std::ranges::find(kRateSettings, NumberOf(*row.rate),
                          [](const RateSetting& each) { return NumberOf(each.rate); });
    return setting == std::end(kRateSettings) ? nullptr : setting;
}

HX_U8 SetConfig(const View& view, const Adapter_Config_V2* config) {
    if (config == nullptr) return NumberOf(Status::kNullAddress);
    for (const RateSetting& each : kRateSettings) {
        if (config->*each.field > 100) return NumberOf(Status::kBadValue);
    }
    if (config->PollSMARTStatus > 1) return NumberOf(Status::kBadValue);
    Kept now = view.kept;
    Save([&](Kept& kept) {
        SetAll(kept, *config, std::time(nullptr));
        now = kept;
    });
    for (const Array& array : view.machine.arrays) {
        ApplyRate(now, view.machine, array);
    }
    return HX_SUCCESS;
}

}  // namespace

void ApplyRate(const Kept& kept, const Machine& machine, const Array& array) {
    const RateSetting* const setting = SettingFor(ActivityOf(array));
    if (setting == nullptr) return;
    const std::uint64_t percent = SettingOf(kept, setting->name);
    const std::uint64_t speed = SlowestOf(machine, array) * percent / 100;
    // sync_speed_max stays as it is: a rate is what an activity gets at least.
    const std::string word = speed == 0 ? "system" : std::to_string(speed);
    // An array that has ended what it did has no such attribute.
    static_cast<void>(WriteWord(array.name + "/md/sync_speed_min", word));
}

}  // namespace hxmd

HX_U8 HX_Adapter_SetConfig(HX_U8 AdapterID, Adapter_Config_V2* config) {
    return hxmd::OnChange(AdapterID,
                          [&](const hxmd::View& view) { return hxmd::SetConfig(view, config); });
}
