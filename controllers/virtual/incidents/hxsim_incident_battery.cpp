// Incidents of the battery.
#include "incidents/hxsim_incident_battery.h"

#include <string>

#include "rules/hxsim_battery.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

Outcome CheckBattery(const Adapter& adapter) {
    if (adapter.batteries.empty()) {
        return {"Adapter " + std::to_string(adapter.id) +
                " has no place for a battery; take another adapter."};
    }
    if (!adapter.batteries.front().present) {
        return {"The battery of adapter " + std::to_string(adapter.id) +
                " has been removed; replace it first."};
    }
    return {};
}

}  // namespace

Outcome SetBatteryTemperature(Adapter& adapter, Time now, HX_U16 celsius) {
    Outcome outcome = CheckBattery(adapter);
    if (!outcome) return outcome;
    ChangeBattery(adapter, now, [&](Battery& battery) { battery.info.temperature = celsius; });
    return {};
}

Outcome SetBatteryVoltage(Adapter& adapter, Time now, HX_U16 millivolts) {
    Outcome outcome = CheckBattery(adapter);
    if (!outcome) return outcome;
    ChangeBattery(adapter, now, [&](Battery& battery) { battery.info.voltage = millivolts; });
    return {};
}

Outcome SetBatteryCharge(Adapter& adapter, Time now, HX_U8 percent) {
    Outcome outcome = CheckBattery(adapter);
    if (!outcome) return outcome;
    if (percent > 100) {
        return {"A battery is charged to 0 to 100 percent, not " + std::to_string(percent) + '.'};
    }
    ChangeBattery(adapter, now, [&](Battery& battery) {
        // Rounded up, so that the percentage shown is the one that was set.
        const unsigned capacity = battery.info.maxCapacity;
        battery.charge_at_since = static_cast<HX_U16>((percent * capacity + 99U) / 100U);
    });
    return {};
}

Outcome RemoveBattery(Adapter& adapter, Time now) {
    Outcome outcome = CheckBattery(adapter);
    if (!outcome) return outcome;
    Queue(adapter, now, EventKind::kBatteryRemoved, kBattery);
    ChangeBattery(adapter, now, [](Battery& battery) {
        battery.present = false;
        battery.phase = BatteryPhase::kIdle;
    });
    return {};
}

Outcome ReplaceBattery(Adapter& adapter, Time now) {
    if (adapter.batteries.empty()) return CheckBattery(adapter);
    const bool empty = !adapter.batteries.front().present;
    Queue(adapter, now, empty ? EventKind::kBatteryNewDetected : EventKind::kBatteryReplaced,
          kBattery);
    ChangeBattery(adapter, now, [](Battery& battery) {
        constexpr unsigned kAsDelivered = 40;  // percent
        BBU_Info& info = battery.info;
        info.maxCapacity = info.supportMaxCapacity;
        info.recharge_cycle = 0;
        info.temperature = static_cast<HX_U16>((info.temp_lowerbound + info.temp_upperbound) / 2);
        info.voltage = static_cast<HX_U16>((info.volt_lowerbound + info.volt_upperbound) / 2);
        battery.charge_at_since = static_cast<HX_U16>(info.maxCapacity * kAsDelivered / 100);
        battery.phase = BatteryPhase::kIdle;
        battery.present = true;
    });
    return {};
}

}  // namespace hxsim
