// Incidents of enclosure elements.
#include "incidents/hxsim_incident_enclosure.h"

#include <algorithm>
#include <string>

#include "model/hxsim_codes.h"
#include "rules/hxsim_alarm.h"
#include "rules/hxsim_enclosure_sensors.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

Outcome Check(const Element* element, HX_U16 enclosure, HX_U8 number, ElementType type) {
    const std::string kind(RowOf(type).name);
    if (element != nullptr && element->type == type) return {};
    return {"Element " + std::to_string(number) + " of enclosure " + std::to_string(enclosure) +
            (element == nullptr ? " is not there" : " is no " + kind) + "; take a " + kind +
            " that hxsimctl show lists."};
}

EventKind EventOf(ElementStatus status) {
    if (status == ElementStatus::kCritical) return EventKind::kElementCritical;
    return status == ElementStatus::kOk ? EventKind::kElementOk : EventKind::kElementWarning;
}

void SetStatus(Adapter& adapter, Time now, Element& element, ElementStatus status) {
    if (element.status == status) return;
    element.status = status;
    Queue(adapter, now, EventOf(status), element.enclosure,
          {element.number, NumberOf(element.type), element.reading});
    UpdateAlarm(adapter, status == ElementStatus::kCritical);
}

void SetReading(Adapter& adapter, Time now, Element& element, HX_U16 reading) {
    element.reading = reading;
    SetStatus(adapter, now, element, StatusOf(element));
}

// A fan's speed in seven steps; the third is its nominal speed.
HX_U8 SpeedCodeOf(const Element& fan) {
    if (fan.reading == 0) return 0;
    const unsigned nominal = std::max(1U, unsigned{fan.nominal});
    return static_cast<HX_U8>(std::clamp((3U * fan.reading + nominal / 2) / nominal, 1U, 7U));
}

}  // namespace

Outcome SetFanSpeed(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, HX_U16 rpm) {
    Element* const fan = FindElement(adapter, enclosure, element);
    Outcome outcome = Check(fan, enclosure, element, ElementType::kFan);
    if (!outcome) return outcome;
    SetReading(adapter, now, *fan, rpm);
    fan->speed_code = SpeedCodeOf(*fan);
    return {};
}

Outcome SetTemperature(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, int celsius) {
    Element* const sensor = FindElement(adapter, enclosure, element);
    Outcome outcome = Check(sensor, enclosure, element, ElementType::kTemperature);
    if (!outcome) return outcome;
    if (celsius < -19 || celsius > 235) {
        return {"A sensor shows -19 to 235 degrees Celsius, not " + std::to_string(celsius) + '.'};
    }
    SetReading(adapter, now, *sensor, static_cast<HX_U16>(celsius + 20));
    return {};
}

Outcome SetPowerSupply(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, bool works) {
    Element* const supply = FindElement(adapter, enclosure, element);
    Outcome outcome = Check(supply, enclosure, element, ElementType::kPowerSupply);
    if (!outcome) return outcome;
    SetStatus(adapter, now, *supply, works ? ElementStatus::kOk : ElementStatus::kCritical);
    return {};
}

}  // namespace hxsim
