// The adapters: what they are, how they are set, and their alarm.
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

// A rate, the bit of Adapter_Info::Features that lets it be set (0: always), and its event.
struct Rate {
    HX_U8 Adapter_Config_V2::*setting;
    HX_U8 feature;
    EventKind changed;
};
constexpr Rate kRates[] = {
    {&Adapter_Config_V2::BGARate, 0, kBackgroundRateChanged},
    {&Adapter_Config_V2::SyncRate, 0x04, kSyncRateChanged},
    {&Adapter_Config_V2::InitRate, 0x02, kInitRateChanged},
    {&Adapter_Config_V2::RebuildRate, 0x01, kRebuildRateChanged},
    {&Adapter_Config_V2::MigrationRate, 0x08, kMigrationRateChanged},
    {&Adapter_Config_V2::CopybackRate, 0x40, kCopybackRateChanged},
    {&Adapter_Config_V2::MediaPatrolRate, 0x10, kMediaPatrolRateChanged},
};

// A switch and its events.
struct Switch {
    HX_U8 Adapter_Config_V2::*setting;
    EventKind on, off;
};
constexpr Switch kSwitches[] = {
    {&Adapter_Config_V2::AlarmOn, kAlarmOn, kAlarmOff},
    {&Adapter_Config_V2::AutoRebuildOn, kAutoRebuildOn, kAutoRebuildOff},
    {&Adapter_Config_V2::PollSMARTStatus, kSmartPollingOn, kSmartPollingOff},
    {&Adapter_Config_V2::CopyBack, kCopybackSetOn, kCopybackSetOff},
};

// Of these two-valued settings only 0 and 1 are known; what is declared HX_BOOLEAN takes every
// other value for 1.
constexpr HX_U8 Adapter_Config_V2::*kZeroOrOne[] = {
    &Adapter_Config_V2::PollSMARTStatus, &Adapter_Config_V2::CopyBack,
    &Adapter_Config_V2::InterruptCoalescing, &Adapter_Config_V2::ModuleConsolidate};
constexpr HX_BOOLEAN Adapter_Config_V2::*kBooleans[] = {&Adapter_Config_V2::AlarmOn,
                                                        &Adapter_Config_V2::AutoRebuildOn,
                                                        &Adapter_Config_V2::v_atapi_disable};

HX_U8 CheckSettings(const Adapter& adapter, const Adapter_Config_V2& config) {
    for (const Rate& rate : kRates) {
        if (config.*rate.setting > 100) return Status::kBadValue;
    }
    for (const auto setting : kZeroOrOne) {
        if (config.*setting > 1) return Status::kBadValue;
    }
    for (const Rate& rate : kRates) {
        const bool can_be_set = (adapter.info.Features & rate.feature) == rate.feature;
        const bool changes = config.*rate.setting != adapter.config.*rate.setting;
        if (changes && !can_be_set) return Status::kNotSupported;
    }
    const bool wants_alarm = config.AlarmOn != 0 && adapter.config.AlarmOn == 0;
    return wants_alarm && adapter.info.AlarmSupport == 0 ? HX_U8{Status::kNotSupported}
                                                         : HX_U8{HX_SUCCESS};
}

void AnnounceSettings(Adapter& adapter, Time now, const Adapter_Config_V2& before) {
    for (const Switch& each : kSwitches) {
        const HX_U8 value = adapter.config.*each.setting;
        if (value == before.*each.setting) continue;
        Queue(adapter, now, value != 0 ? each.on : each.off, adapter.id);
    }
    for (const Rate& rate : kRates) {
        const HX_U8 value = adapter.config.*rate.setting;
        if (value == before.*rate.setting) continue;
        Queue(adapter, now, rate.changed, adapter.id, {value});
    }
}

HX_U8 GetInfo(const Adapter& adapter, HX_U8* count, Adapter_Info* info) {
    if (count == nullptr || info == nullptr) return Status::kNullAddress;
    *info = adapter.info;
    *count = 1;
    if (IsHostile()) {
        MakeRecordHostile(info, sizeof *info);
        *count = 255;
    }
    return HX_SUCCESS;
}

HX_U8 GetSettings(const Adapter& adapter, HX_U8* count, Adapter_Config_V2* config) {
    if (count == nullptr || config == nullptr) return Status::kNullAddress;
    *config = adapter.config;
    *count = 1;
    if (IsHostile()) {
        MakeRecordHostile(config, sizeof *config);
        *count = 255;
    }
    return HX_SUCCESS;
}

}  // namespace

HX_U8 SetAdapter(Adapter& adapter, Time now, const Adapter_Config_V2& config) {
    const HX_U8 status = CheckSettings(adapter, config);
    if (status != HX_SUCCESS) return status;
    const Adapter_Config_V2 before = adapter.config;
    adapter.config = config;
    for (const auto setting : kBooleans) adapter.config.*setting = config.*setting != 0;
    std::ranges::fill(adapter.config.Reserved, HX_U8{0});
    AnnounceSettings(adapter, now, before);
    UpdateAlarm(adapter, false);
    Reschedule(adapter, now);
    return HX_SUCCESS;
}

HX_U8 Mute(Adapter& adapter) {
    if (adapter.info.AlarmSupport == 0) return Status::kNotSupported;
    adapter.muted = true;
    // With nothing wrong there is nothing to be silenced, and the next alarm sounds.
    UpdateAlarm(adapter, false);
    return HX_SUCCESS;
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
    const auto work = [&](hxsim::Adapter& adapter, hxsim::Time now) -> HX_U8 {
        if (config == nullptr) return hxcodes::Status::kNullAddress;
        return hxsim::SetAdapter(adapter, now, *config);
    };
    return hxsim::Change(__func__, AdapterID, work);
}

HX_U8 HX_AdapterMute(HX_U8 AdapterID) {
    return hxsim::Change(__func__, AdapterID,
                         [](hxsim::Adapter& adapter, hxsim::Time) { return hxsim::Mute(adapter); });
}
