// The adapters: their description, their settings and their alarm.
#include "calls/hxsim_adapter.h"

#include <algorithm>

#include "calls/hxsim_session.h"
#include "incidents/hxsim_hostile_answer.h"
#include "model/hxsim_codes.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_alarm.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

using hxcodes::kRates;
using hxcodes::RateRow;

EventKind ChangeOf(Rate rate) {
    switch (rate) {
        case Rate::kGeneral:
            break;
        case Rate::kSync:
            return EventKind::kSyncRateChanged;
        case Rate::kInit:
            return EventKind::kInitRateChanged;
        case Rate::kRebuild:
            return EventKind::kRebuildRateChanged;
        case Rate::kMigration:
            return EventKind::kMigrationRateChanged;
        case Rate::kCopyback:
            return EventKind::kCopybackRateChanged;
        case Rate::kMediaPatrol:
            return EventKind::kMediaPatrolRateChanged;
    }
    return EventKind::kBackgroundRateChanged;
}

// A setting that is on or off, and its events.
struct Switch {
    HX_U8 Adapter_Config_V2::*setting;
    EventKind on, off;
};
constexpr Switch kSwitches[] = {
    {&Adapter_Config_V2::AlarmOn, EventKind::kAlarmOn, EventKind::kAlarmOff},
    {&Adapter_Config_V2::AutoRebuildOn, EventKind::kAutoRebuildOn, EventKind::kAutoRebuildOff},
    {&Adapter_Config_V2::PollSMARTStatus, EventKind::kSmartPollingOn, EventKind::kSmartPollingOff},
    {&Adapter_Config_V2::CopyBack, EventKind::kCopybackSetOn, EventKind::kCopybackSetOff},
};

// These two-valued settings accept only 0 and 1; those declared HX_BOOLEAN take every other value
// for 1.
constexpr HX_U8 Adapter_Config_V2::*kZeroOrOne[] = {
    &Adapter_Config_V2::PollSMARTStatus, &Adapter_Config_V2::CopyBack,
    &Adapter_Config_V2::InterruptCoalescing, &Adapter_Config_V2::ModuleConsolidate};
constexpr HX_BOOLEAN Adapter_Config_V2::*kBooleans[] = {&Adapter_Config_V2::AlarmOn,
                                                        &Adapter_Config_V2::AutoRebuildOn,
                                                        &Adapter_Config_V2::v_atapi_disable};

Status CheckSettings(const Adapter& adapter, const Adapter_Config_V2& config) {
    for (const RateRow& rate : kRates) {
        if (config.*rate.setting > 100) return Status::kBadValue;
    }
    for (const auto setting : kZeroOrOne) {
        if (config.*setting > 1) return Status::kBadValue;
    }
    for (const RateRow& rate : kRates) {
        const bool can_be_set = (adapter.info.Features & rate.feature) == rate.feature;
        const bool changes = config.*rate.setting != adapter.config.*rate.setting;
        if (changes && !can_be_set) return Status::kNotSupported;
    }
    const bool wants_alarm = config.AlarmOn != 0 && adapter.config.AlarmOn == 0;
    return wants_alarm && adapter.info.AlarmSupport == 0 ? Status::kNotSupported : Status::kSuccess;
}

void AnnounceSettings(Adapter& adapter, Time now, const Adapter_Config_V2& before) {
    for (const Switch& each : kSwitches) {
        const HX_U8 value = adapter.config.*each.setting;
        if (value == before.*each.setting) continue;
        Queue(adapter, now, value != 0 ? each.on : each.off, adapter.id);
    }
    for (const RateRow& rate : kRates) {
        const HX_U8 value = adapter.config.*rate.setting;
        if (value == before.*rate.setting) continue;
        Queue(adapter, now, ChangeOf(rate.code), adapter.id, {value});
    }
}

Status GetInfo(const Adapter& adapter, HX_U8* count, Adapter_Info* info) {
    if (count == nullptr || info == nullptr) return Status::kNullAddress;
    *info = adapter.info;
    *count = 1;
    if (IsHostile()) {
        MakeRecordHostile(info, sizeof *info);
        *count = 255;
    }
    return Status::kSuccess;
}

Status GetSettings(const Adapter& adapter, HX_U8* count, Adapter_Config_V2* config) {
    if (count == nullptr || config == nullptr) return Status::kNullAddress;
    *config = adapter.config;
    *count = 1;
    if (IsHostile()) {
        MakeRecordHostile(config, sizeof *config);
        *count = 255;
    }
    return Status::kSuccess;
}

}  // namespace

Status SetAdapter(Adapter& adapter, Time now, const Adapter_Config_V2& config) {
    const Status status = CheckSettings(adapter, config);
    if (status != Status::kSuccess) return status;
    const Adapter_Config_V2 before = adapter.config;
    adapter.config = config;
    for (const auto setting : kBooleans) adapter.config.*setting = config.*setting != 0;
    std::ranges::fill(adapter.config.Reserved, HX_U8{0});
    AnnounceSettings(adapter, now, before);
    UpdateAlarm(adapter, false);
    Reschedule(adapter, now);
    return Status::kSuccess;
}

Status Mute(Adapter& adapter) {
    if (adapter.info.AlarmSupport == 0) return Status::kNotSupported;
    adapter.muted = true;
    // Without a cause this resets `muted`, so that the next alarm sounds.
    UpdateAlarm(adapter, false);
    return Status::kSuccess;
}

}  // namespace hxsim

HX_U8 HX_Adapter_GetInfo(HX_U8 AdapterID, HX_U8* count, Adapter_Info* info) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::GetInfo(adapter, count, info);
    });
}

HX_U8 HX_Adapter_GetConfig(HX_U8 AdapterID, HX_U8* count, Adapter_Config_V2* config) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::GetSettings(adapter, count, config);
    });
}

HX_U8 HX_Adapter_SetConfig(HX_U8 AdapterID, Adapter_Config_V2* config) {
    return hxsim::ChangeWith(__func__, AdapterID, config, hxsim::SetAdapter);
}

HX_U8 HX_AdapterMute(HX_U8 AdapterID) {
    return hxsim::Change(__func__, AdapterID,
                         [](hxsim::Adapter& adapter, hxsim::Time) { return hxsim::Mute(adapter); });
}
