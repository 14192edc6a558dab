// The battery that protects an adapter's cache: how its charge changes with time, and the
// consequences.
//
// Charge is counted in whole mAh. The battery has a transition at every tenth of its charge, so
// that everything that depends on the charge changes at a transition.
#include "rules/hxsim_battery.h"

#include <algorithm>

#include "model/hxsim_codes.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

constexpr std::uint64_t kHour = 3600 * 1000;  // milliseconds
constexpr std::uint64_t kFullCharge = 2 * kHour;
constexpr std::uint64_t kFullDischarge = 4 * kHour;
constexpr unsigned kSafePercentage = 30;
constexpr HX_U16 kNoTime = 65535;  // minutes to an end that will not come

std::uint64_t RoundedUp(std::uint64_t dividend, std::uint64_t divisor) {
    return (dividend + divisor - 1) / divisor;
}

// ---- Charge ----

unsigned PercentageOf(const Battery& battery, std::uint64_t charge) {
    return static_cast<unsigned>(std::min<std::uint64_t>(charge * 100 / Capacity(battery), 100));
}

// The lowest charge that is displayed as this percentage.
std::uint64_t ChargeOf(const Battery& battery, std::uint64_t percentage) {
    return RoundedUp(percentage * Capacity(battery), 100);
}

// The charge at the battery's next own transition.
std::uint64_t NextCharge(const Battery& battery) {
    const unsigned percentage = PercentageOf(battery, battery.charge_at_since);
    if (Charges(battery.phase)) {
        return ChargeOf(battery, std::min((percentage / 10 + 1) * 10, 100U));
    }
    const unsigned tenth = percentage / 10 * 10;
    return tenth == 0 ? 0 : ChargeOf(battery, tenth) - 1;
}

bool IsAtItsEnd(const Battery& battery) {
    return Charges(battery.phase) ? battery.charge_at_since >= Capacity(battery)
                                  : battery.charge_at_since == 0;
}

// ---- Status ----

int SideOf(HX_U16 value, HX_U16 lower, HX_U16 upper) {
    return value < lower ? -1 : value > upper ? 1 : 0;
}
int TemperatureSide(const Battery& battery) {
    const BBU_Info& info = battery.info;
    return battery.present ? SideOf(info.temperature, info.temp_lowerbound, info.temp_upperbound)
                           : 0;
}
int VoltageSide(const Battery& battery) {
    const BBU_Info& info = battery.info;
    return battery.present ? SideOf(info.voltage, info.volt_lowerbound, info.volt_upperbound) : 0;
}

HX_U32 StatusOf(const Battery& battery) {
    HX_U32 status = 0;
    if (!battery.switched_on) status |= BatteryBit::kSwitchedOff;
    if (!battery.present) return status;
    status |= BatteryBit::kPresent;
    if (Charges(battery.phase)) status |= BatteryBit::kCharging;
    if (Discharges(battery.phase)) status |= BatteryBit::kDischarging;
    if (Relearns(battery.phase)) status |= BatteryBit::kRelearning;
    const bool temperature_is_wrong = TemperatureSide(battery) != 0;
    const bool voltage_is_wrong = VoltageSide(battery) != 0;
    if (temperature_is_wrong) status |= BatteryBit::kTemperatureOutOfBounds;
    if (voltage_is_wrong) status |= BatteryBit::kVoltageOutOfBounds;
    if (battery.info.maxCapacity <= battery.info.supportMinCapacity) {
        status |= BatteryBit::kNeedsReplacement;
    }
    if (battery.switched_on && !temperature_is_wrong && !voltage_is_wrong &&
        PercentageOf(battery, battery.charge_at_since) >= kSafePercentage) {
        status |= BatteryBit::kSafeForWriteBack;
    }
    return status;
}

HX_U16 MinutesTo(std::uint64_t charge, std::uint64_t full_time, const Battery& battery) {
    constexpr std::uint64_t kMinute = 60 * 1000;
    return static_cast<HX_U16>(RoundedUp(charge * full_time, Capacity(battery) * kMinute));
}

// Whether the battery's record says that it is safe for write-back.
bool IsSafe(const Battery& battery) {
    return (battery.info.status & BatteryBit::kSafeForWriteBack) != 0;
}

// ---- Transitions ----

// Stores the charge at `now`; later charge counts from there.
void Mark(Battery& battery, Time now) {
    battery.charge_at_since = ChargeAt(battery, now);
    battery.since = now;
}

void StartCharging(Adapter& adapter, Time now, Battery& battery) {
    battery.phase = BatteryPhase::kCharging;
    Queue(adapter, now, EventKind::kBatteryStartedCharging, kBattery);
}

// A cell wears with every cycle, down to the capacity at which it must be replaced.
void FinishRelearn(Adapter& adapter, Time now, Battery& battery) {
    BBU_Info& info = battery.info;
    if (info.recharge_cycle != UINT16_MAX) ++info.recharge_cycle;
    if (info.maxCapacity > info.supportMinCapacity) --info.maxCapacity;
    battery.charge_at_since = info.maxCapacity;
    Queue(adapter, now, EventKind::kBatteryRelearnCompleted, kBattery);
}

void FinishPhase(Adapter& adapter, Time now, Battery& battery) {
    switch (battery.phase) {
        case BatteryPhase::kRelearnDischarging:
            battery.phase = BatteryPhase::kRelearnCharging;
            Queue(adapter, now, EventKind::kBatteryRelearnInProgress, kBattery);
            Queue(adapter, now, EventKind::kBatteryStartedCharging, kBattery);
            return;
        case BatteryPhase::kRelearnCharging:
            Queue(adapter, now, EventKind::kBatteryChargeComplete, kBattery);
            FinishRelearn(adapter, now, battery);
            break;
        case BatteryPhase::kCharging:
            Queue(adapter, now, EventKind::kBatteryChargeComplete, kBattery);
            break;
        case BatteryPhase::kDischarging:
        case BatteryPhase::kIdle:
            break;
    }
    battery.phase = BatteryPhase::kIdle;
}

void AnnounceSide(Adapter& adapter, Time now, int before, int after, const EventKind& low,
                  const EventKind& normal, const EventKind& high) {
    if (before == after) return;
    Queue(adapter, now, after < 0 ? low : after > 0 ? high : normal, kBattery);
}

void AnnounceCharge(Adapter& adapter, Time now, unsigned before, unsigned after) {
    if (before >= kSafePercentage && after < kSafePercentage) {
        Queue(adapter, now, EventKind::kBatteryCapacityBelowThreshold, kBattery);
    } else if (before < kSafePercentage && after >= kSafePercentage) {
        Queue(adapter, now, EventKind::kBatteryCapacityAboveThreshold, kBattery);
    }
}

void AnnounceStatus(Adapter& adapter, Time now, HX_U32 before, HX_U32 after) {
    const HX_U32 gone = before & ~after;
    const HX_U32 come = after & ~before;
    if (come & BatteryBit::kNeedsReplacement) {
        Queue(adapter, now, EventKind::kBatteryNeedsReplacement, kBattery);
    }
    if (gone & BatteryBit::kSafeForWriteBack) {
        Queue(adapter, now, EventKind::kBatteryForceWriteThrough, kBattery);
    }
    if (come & BatteryBit::kSafeForWriteBack) {
        Queue(adapter, now, EventKind::kBatterySafeToUseWriteBack, kBattery);
    }
}

bool WantsCharge(const Battery& battery) {
    return battery.present && battery.phase == BatteryPhase::kIdle &&
           PercentageOf(battery, battery.charge_at_since) < battery.info.percent_to_charge;
}

}  // namespace

std::uint64_t Capacity(const Battery& battery) {
    return std::max<std::uint64_t>(battery.info.maxCapacity, 1);
}

HX_U16 ChargeAt(const Battery& battery, Time now) {
    const std::uint64_t start = std::min<std::uint64_t>(battery.charge_at_since, Capacity(battery));
    const auto passed = static_cast<std::uint64_t>(std::max<Time>(now - battery.since, 0));
    if (Charges(battery.phase)) {
        const std::uint64_t won = std::min(passed, kFullCharge) * Capacity(battery) / kFullCharge;
        return static_cast<HX_U16>(std::min(start + won, Capacity(battery)));
    }
    if (Discharges(battery.phase)) {
        const std::uint64_t gone =
            std::min(passed, kFullDischarge) * Capacity(battery) / kFullDischarge;
        return static_cast<HX_U16>(start - std::min(start, gone));
    }
    return static_cast<HX_U16>(start);
}

BBU_Info Describe(const Battery& battery, Time now) {
    BBU_Info info = battery.info;
    const HX_U16 charge = ChargeAt(battery, now);
    info.curCapacity = charge;
    info.percentage = static_cast<HX_U8>(PercentageOf(battery, charge));
    info.time_to_empty =
        Discharges(battery.phase) ? MinutesTo(charge, kFullDischarge, battery) : kNoTime;
    info.time_to_full = Charges(battery.phase)
                            ? MinutesTo(Capacity(battery) - charge, kFullCharge, battery)
                            : kNoTime;
    return info;
}

bool AllowsWriteBack(const Adapter& adapter) {
    return std::ranges::any_of(adapter.batteries, IsSafe);
}

bool ForcesWriteThrough(const Adapter& adapter) {
    return !adapter.batteries.empty() && !AllowsWriteBack(adapter);
}

Time NextTransition(const Battery& battery) {
    if (!battery.present || battery.phase == BatteryPhase::kIdle) return kNever;
    const std::uint64_t next = NextCharge(battery);
    const std::uint64_t charge = battery.charge_at_since;
    const std::uint64_t way =
        Charges(battery.phase) ? next - std::min(next, charge) : charge - std::min(next, charge);
    const std::uint64_t full_time = Charges(battery.phase) ? kFullCharge : kFullDischarge;
    return battery.since + static_cast<Time>(RoundedUp(way * full_time, Capacity(battery)));
}

void ChangeBattery(Adapter& adapter, Time now,
                   const std::function<void(Battery& battery)>& change) {
    Battery& battery = adapter.batteries.front();
    const HX_U32 status = battery.info.status;
    const unsigned percentage = battery.info.percentage;
    const int temperature = TemperatureSide(battery);
    const int voltage = VoltageSide(battery);
    Mark(battery, now);
    change(battery);
    if (WantsCharge(battery)) StartCharging(adapter, now, battery);

    battery.info = Describe(battery, now);
    if (battery.present) {
        AnnounceSide(adapter, now, temperature, TemperatureSide(battery),
                     EventKind::kBatteryTemperatureLow, EventKind::kBatteryTemperatureNormal,
                     EventKind::kBatteryTemperatureHigh);
        AnnounceSide(adapter, now, voltage, VoltageSide(battery), EventKind::kBatteryVoltageLow,
                     EventKind::kBatteryVoltageNormal, EventKind::kBatteryVoltageHigh);
        AnnounceCharge(adapter, now, percentage, battery.info.percentage);
    }
    battery.info.status = StatusOf(battery);
    if (battery.info.status != status) battery.info.prev_status = status;
    AnnounceStatus(adapter, now, status, battery.info.status);
}

void AdvanceBattery(Adapter& adapter, Time now) {
    if (adapter.batteries.empty()) return;
    const Battery& battery = adapter.batteries.front();
    for (Time due = NextTransition(battery); due <= now && due != kNever;
         due = NextTransition(battery)) {
        ChangeBattery(adapter, due, [&](Battery& changed) {
            if (IsAtItsEnd(changed)) FinishPhase(adapter, due, changed);
        });
    }
}

}  // namespace hxsim
