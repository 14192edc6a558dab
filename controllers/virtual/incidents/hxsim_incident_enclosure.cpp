// Incidents of enclosure elements.
#include "incidents/hxsim_incident_enclosure.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "incidents/hxsim_incident_disk.h"
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

bool IsCritical(ElementStatus status) {
    return status == ElementStatus::kCritical || status == ElementStatus::kUnrecoverable;
}

// None for an element that is not there or does not know its state: no event says so.
std::optional<EventKind> EventOf(ElementStatus status) {
    if (IsCritical(status)) return EventKind::kElementCritical;
    if (status == ElementStatus::kNoncritical) return EventKind::kElementWarning;
    return status == ElementStatus::kOk ? std::optional(EventKind::kElementOk) : std::nullopt;
}

void SetStatus(Adapter& adapter, Time now, Element& element, ElementStatus status) {
    if (element.status == status) return;
    element.status = status;
    if (const auto event = EventOf(status)) {
        Queue(adapter, now, *event, element.enclosure,
              {element.number, NumberOf(element.type), element.reading});
    }
    UpdateAlarm(adapter, IsCritical(status));
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

Outcome NoSuchEnclosure(HX_U16 enclosure) {
    return {"There is no enclosure " + std::to_string(enclosure) +
            "; hxsimctl show lists what there is."};
}

// Its expanders go and come with it.
void QueueForExpanders(Adapter& adapter, Time now, HX_U16 enclosure, EventKind kind) {
    for (const Expander& expander : adapter.expanders) {
        if (expander.enclosure == enclosure) Queue(adapter, now, kind, expander.id);
    }
}

bool IsInside(const Adapter& adapter, const Disk& disk, HX_U16 enclosure) {
    if (disk.parent != Device::kExpander) return false;
    const Expander* const expander = Find(adapter.expanders, disk.parent_id);
    return expander != nullptr && expander->enclosure == enclosure;
}

std::vector<HX_U16> DisksInside(const Adapter& adapter, HX_U16 enclosure, bool present) {
    std::vector<HX_U16> disks;
    for (const Disk& disk : adapter.disks) {
        if (disk.present == present && IsInside(adapter, disk, enclosure)) disks.push_back(disk.id);
    }
    return disks;
}

Outcome SetPlugged(Adapter& adapter, Time now, HX_U16 enclosure, bool plugged) {
    Enclosure* const row = Find(adapter.enclosures, enclosure);
    if (row == nullptr) return NoSuchEnclosure(enclosure);
    if (IsPlugged(*row) == plugged) {
        return {"Enclosure " + std::to_string(enclosure) +
                (plugged ? " is plugged already; unplug it first."
                         : " is unplugged already; plug it first.")};
    }
    row->phys = plugged ? 1 : 0;
    QueueForExpanders(adapter, now, enclosure,
                      plugged ? EventKind::kExpanderPluggedIn : EventKind::kExpanderPluggedOut);
    const auto move = plugged ? InsertDisk : RemoveDisk;
    for (const HX_U16 disk : DisksInside(adapter, enclosure, !plugged)) move(adapter, now, disk);
    return {};
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

Outcome SetElementStatus(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element,
                         ElementStatus status) {
    Element* const row = FindElement(adapter, enclosure, element);
    if (row == nullptr) {
        return {"Element " + std::to_string(element) + " of enclosure " +
                std::to_string(enclosure) + " is not there; take one that hxsimctl show lists."};
    }
    if (status != ElementStatus::kOk) {
        SetStatus(adapter, now, *row, status);
        return {};
    }
    Element healthy = *row;
    healthy.status = status;
    SetStatus(adapter, now, *row, StatusOf(healthy));  // what it measures decides again
    return {};
}

Outcome UnplugEnclosure(Adapter& adapter, Time now, HX_U16 enclosure) {
    return SetPlugged(adapter, now, enclosure, false);
}

Outcome PlugEnclosure(Adapter& adapter, Time now, HX_U16 enclosure) {
    return SetPlugged(adapter, now, enclosure, true);
}

}  // namespace hxsim
