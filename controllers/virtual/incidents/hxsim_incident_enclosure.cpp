// What happens to enclosures and batteries from outside.
#include <algorithm>
#include <string>
#include <string_view>

#include "calls/hxsim_enclosure.h"
#include "incidents/hxsim_incident.h"
#include "model/hxsim_redundancy.h"
#include "rules/hxsim_battery.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

// ---- Elements ----

Outcome Check(const Element* element, HX_U16 enclosure, HX_U8 number, HX_U8 type) {
    const std::string kind(HxraidNameOf(kHxsimElementTypeNames, type));
    if (element != nullptr && element->type == type) return {};
    return {"Element " + std::to_string(number) + " of enclosure " + std::to_string(enclosure) +
            (element == nullptr ? " is not there" : " is no " + kind) + "; take a " + kind +
            " that hxsimctl show lists."};
}

EventKind EventOf(HX_U8 status) {
    if (status == HXSIM_ELEMENT_CRITICAL) return kElementCritical;
    return status == HXSIM_ELEMENT_OK ? kElementOk : kElementWarning;
}

void SetStatus(Adapter& adapter, Time now, Element& element, HX_U8 status) {
    if (element.status == status) return;
    element.status = status;
    Queue(adapter, now, EventOf(status), element.enclosure,
          {element.number, element.type, element.reading});
    UpdateAlarm(adapter, status == HXSIM_ELEMENT_CRITICAL);
}

void SetReading(Adapter& adapter, Time now, Element& element, HX_U16 reading) {
    element.reading = reading;
    SetStatus(adapter, now, element, StatusOf(element));
}

// A fan's speed in seven steps, of which the third is what it usually turns.
HX_U8 SpeedCodeOf(const Element& fan) {
    if (fan.reading == 0) return 0;
    const unsigned nominal = std::max(1U, unsigned{fan.nominal});
    return static_cast<HX_U8>(std::clamp((3U * fan.reading + nominal / 2) / nominal, 1U, 7U));
}

// ---- The battery ----

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

Outcome SetFanSpeed(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, HX_U16 rpm) {
    Element* const fan = FindElement(adapter, enclosure, element);
    Outcome outcome = Check(fan, enclosure, element, HX_ELEMENT_FAN);
    if (!outcome) return outcome;
    SetReading(adapter, now, *fan, rpm);
    fan->speed_code = SpeedCodeOf(*fan);
    return {};
}

Outcome SetTemperature(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, int celsius) {
    Element* const sensor = FindElement(adapter, enclosure, element);
    Outcome outcome = Check(sensor, enclosure, element, HX_ELEMENT_TEMPERATURE);
    if (!outcome) return outcome;
    if (celsius < -19 || celsius > 235) {
        return {"A sensor shows -19 to 235 degrees Celsius, not " + std::to_string(celsius) + '.'};
    }
    SetReading(adapter, now, *sensor, static_cast<HX_U16>(celsius + 20));
    return {};
}

Outcome SetPowerSupply(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, bool works) {
    Element* const supply = FindElement(adapter, enclosure, element);
    Outcome outcome = Check(supply, enclosure, element, HX_ELEMENT_POWER_SUPPLY);
    if (!outcome) return outcome;
    SetStatus(adapter, now, *supply, works ? HXSIM_ELEMENT_OK : HXSIM_ELEMENT_CRITICAL);
    return {};
}

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
    Queue(adapter, now, kBatteryRemoved, 0);
    ChangeBattery(adapter, now, [](Battery& battery) {
        battery.present = false;
        battery.phase = BatteryPhase::kIdle;
    });
    return {};
}

Outcome ReplaceBattery(Adapter& adapter, Time now) {
    if (adapter.batteries.empty()) return CheckBattery(adapter);
    const bool empty = !adapter.batteries.front().present;
    Queue(adapter, now, empty ? kBatteryNewDetected : kBatteryReplaced, 0);
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
