// What callers do to the battery, and its record.
#include "calls/hxsim_battery_control.h"

#include "calls/hxsim_session.h"
#include "codes/hxraid_codes.h"
#include "hxraid.h"
#include "incidents/hxsim_hostile_answer.h"
#include "rules/hxsim_battery.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

constexpr HX_U16 kHighestTemperature = 100;
constexpr HX_U16 kLowestVoltage = 1000, kHighestVoltage = 20000;

Battery* BatteryOf(Adapter& adapter) {
    if (adapter.batteries.empty() || !adapter.batteries.front().present) return nullptr;
    return &adapter.batteries.front();
}

}  // namespace

HX_U8 SetThreshold(Adapter& adapter, Time now, HX_U8 kind, HX_U16 lower, HX_U16 upper) {
    const Battery* const battery = BatteryOf(adapter);
    if (battery == nullptr) return HXSIM_NO_BATTERY;
    if ((battery->info.featureSupport & HXSIM_BATTERY_THRESHOLDS) == 0) return HXSIM_NOT_SUPPORTED;
    switch (kind) {
        case HX_BBU_THRESHOLD_TEMPERATURE:
            if (lower >= upper || upper > kHighestTemperature) return HXSIM_BAD_VALUE;
            ChangeBattery(adapter, now, [&](Battery& changed) {
                changed.info.temp_lowerbound = lower;
                changed.info.temp_upperbound = upper;
            });
            return HX_SUCCESS;
        case HX_BBU_THRESHOLD_VOLTAGE:
            if (lower >= upper || lower < kLowestVoltage || upper > kHighestVoltage) {
                return HXSIM_BAD_VALUE;
            }
            ChangeBattery(adapter, now, [&](Battery& changed) {
                changed.info.volt_lowerbound = lower;
                changed.info.volt_upperbound = upper;
            });
            return HX_SUCCESS;
        default:
            return HXSIM_BAD_ACTION;
    }
}

HX_U8 ChangePower(Adapter& adapter, Time now, HX_U8 action) {
    const Battery* const battery = BatteryOf(adapter);
    if (battery == nullptr) return HXSIM_NO_BATTERY;
    if (action > HXSIM_POWER_DISCHARGE) return HXSIM_BAD_ACTION;
    if (Relearns(battery->phase)) return HXSIM_BUSY;
    const HX_U16 charge = ChargeAt(*battery, now);
    const auto enter = [&](BatteryPhase phase, const EventKind& event) {
        Queue(adapter, now, event, kBattery);
        ChangeBattery(adapter, now, [&](Battery& changed) { changed.phase = phase; });
        return HX_U8{HX_SUCCESS};
    };
    switch (action) {
        case HXSIM_POWER_CHARGE:
            if (Charges(battery->phase) || charge >= Capacity(*battery)) return HXSIM_NO_CHANGE;
            return enter(BatteryPhase::kCharging, kBatteryStartedCharging);
        case HXSIM_POWER_DISCHARGE:
            if (Discharges(battery->phase) || charge == 0) return HXSIM_NO_CHANGE;
            return enter(BatteryPhase::kDischarging, kBatteryDischarging);
        default:
            if ((battery->info.featureSupport & HXSIM_BATTERY_RELEARN) == 0) {
                return HXSIM_NOT_SUPPORTED;
            }
            return enter(BatteryPhase::kRelearnDischarging, kBatteryRelearnStarted);
    }
}

HX_U8 SwitchBattery(Adapter& adapter, Time now, bool on) {
    const Battery* const battery = BatteryOf(adapter);
    if (battery == nullptr) return HXSIM_NO_BATTERY;
    if (battery->switched_on == on) return HXSIM_NO_CHANGE;
    ChangeBattery(adapter, now, [&](Battery& changed) { changed.switched_on = on; });
    return HX_SUCCESS;
}

}  // namespace hxsim

HX_U8 HX_BBU_GetInfo(HX_U8 AdapterID, BBU_Info* info) {
    const auto work = [&](const hxsim::Adapter& adapter, hxsim::Time now) -> HX_U8 {
        if (info == nullptr) return HXSIM_NULL_ADDRESS;
        if (adapter.batteries.empty() || !adapter.batteries.front().present) {
            return HXSIM_NO_BATTERY;
        }
        *info = hxsim::Describe(adapter.batteries.front(), now);
        if (hxsim::IsHostile()) hxsim::MakeRecordHostile(info, sizeof *info);
        return HX_SUCCESS;
    };
    return hxsim::Look(__func__, AdapterID, work);
}

HX_U8 HX_BBU_SetThreshold(HX_U8 AdapterID, HX_U8 kind, HX_U16 lower, HX_U16 upper) {
    return hxsim::Change(__func__, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::SetThreshold(adapter, now, kind, lower, upper);
    });
}

HX_U8 HX_BBU_ChangePower(HX_U8 AdapterID, HX_U8 action) {
    return hxsim::Change(__func__, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::ChangePower(adapter, now, action);
    });
}

HX_U8 HX_BBU_SetStatus(HX_U8 AdapterID, HX_BOOLEAN status) {
    return hxsim::Change(__func__, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::SwitchBattery(adapter, now, status != 0);
    });
}
