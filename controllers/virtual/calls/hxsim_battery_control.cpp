// The calls that read and change the battery.
#include "calls/hxsim_battery_control.h"

#include "calls/hxsim_session.h"
#include "hxraid.h"
#include "incidents/hxsim_hostile_answer.h"
#include "model/hxsim_codes.h"
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

Status SetThreshold(Adapter& adapter, Time now, HX_U8 kind, HX_U16 lower, HX_U16 upper) {
    const Battery* const battery = BatteryOf(adapter);
    if (battery == nullptr) return Status::kNoBattery;
    if ((battery->info.featureSupport & BatteryFeature::kThresholds) == 0)
        return Status::kNotSupported;
    switch (kind) {
        case HX_BBU_THRESHOLD_TEMPERATURE:
            if (lower >= upper || upper > kHighestTemperature) return Status::kBadValue;
            ChangeBattery(adapter, now, [&](Battery& changed) {
                changed.info.temp_lowerbound = lower;
                changed.info.temp_upperbound = upper;
            });
            return Status::kSuccess;
        case HX_BBU_THRESHOLD_VOLTAGE:
            if (lower >= upper || lower < kLowestVoltage || upper > kHighestVoltage) {
                return Status::kBadValue;
            }
            ChangeBattery(adapter, now, [&](Battery& changed) {
                changed.info.volt_lowerbound = lower;
                changed.info.volt_upperbound = upper;
            });
            return Status::kSuccess;
        default:
            return Status::kBadAction;
    }
}

Status ChangePower(Adapter& adapter, Time now, HX_U8 action) {
    const Battery* const battery = BatteryOf(adapter);
    if (battery == nullptr) return Status::kNoBattery;
    const auto power = ToCode<Power>(action);
    if (!power) return Status::kBadAction;
    if (Relearns(battery->phase)) return Status::kBusy;
    const HX_U16 charge = ChargeAt(*battery, now);
    const auto enter = [&](BatteryPhase phase, EventKind event) {
        Queue(adapter, now, event, kBattery);
        ChangeBattery(adapter, now, [&](Battery& changed) { changed.phase = phase; });
        return Status::kSuccess;
    };
    switch (*power) {
        case Power::kCharge:
            if (Charges(battery->phase) || charge >= Capacity(*battery)) return Status::kNoChange;
            return enter(BatteryPhase::kCharging, EventKind::kBatteryStartedCharging);
        case Power::kDischarge:
            if (Discharges(battery->phase) || charge == 0) return Status::kNoChange;
            return enter(BatteryPhase::kDischarging, EventKind::kBatteryDischarging);
        case Power::kRelearn:
            break;
    }
    if ((battery->info.featureSupport & BatteryFeature::kRelearn) == 0) {
        return Status::kNotSupported;
    }
    return enter(BatteryPhase::kRelearnDischarging, EventKind::kBatteryRelearnStarted);
}

Status SwitchBattery(Adapter& adapter, Time now, bool on) {
    const Battery* const battery = BatteryOf(adapter);
    if (battery == nullptr) return Status::kNoBattery;
    if (battery->switched_on == on) return Status::kNoChange;
    ChangeBattery(adapter, now, [&](Battery& changed) { changed.switched_on = on; });
    return Status::kSuccess;
}

}  // namespace hxsim

HX_U8 HX_BBU_GetInfo(HX_U8 AdapterID, BBU_Info* info) {
    const auto work = [&](const hxsim::Adapter& adapter, hxsim::Time now) -> hxcodes::Status {
        if (info == nullptr) return hxcodes::Status::kNullAddress;
        if (adapter.batteries.empty() || !adapter.batteries.front().present) {
            return hxcodes::Status::kNoBattery;
        }
        *info = hxsim::Describe(adapter.batteries.front(), now);
        if (hxsim::IsHostile()) hxsim::MakeRecordHostile(info, sizeof *info);
        return hxcodes::Status::kSuccess;
    };
    return hxsim::Look(__func__, AdapterID, work);
}

HX_U8 HX_BBU_SetThreshold(HX_U8 AdapterID, HX_U8 kind, HX_U16 lower, HX_U16 upper) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::SetThreshold, kind, lower, upper);
}

HX_U8 HX_BBU_ChangePower(HX_U8 AdapterID, HX_U8 action) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::ChangePower, action);
}

HX_U8 HX_BBU_SetStatus(HX_U8 AdapterID, HX_BOOLEAN status) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::SwitchBattery, status != 0);
}
