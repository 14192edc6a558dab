// The elements of enclosures, and the status that follows from their sensor readings.
#include "rules/hxsim_enclosure_sensors.h"

#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

// A fan below these percentages of its nominal speed deviates.
constexpr unsigned kFanWarning = 80, kFanCritical = 50;

// What the first of the bounds says that the reading is beyond, the critical ones first.
template <class Above, class Below>
Deviation DeviationBeyond(const Element& element, Above above, Below below) {
    if (above(element.high_critical)) return Deviation::kHighCritical;
    if (below(element.low_critical)) return Deviation::kLowCritical;
    if (above(element.high_warning)) return Deviation::kHighWarning;
    if (below(element.low_warning)) return Deviation::kLowWarning;
    return Deviation::kNone;
}

Deviation DeviationOfTemperature(const Element& element) {
    const HX_U16 reading = element.reading;
    const auto above = [&](HX_U8 bound) { return bound != 0 && reading > bound; };
    const auto below = [&](HX_U8 bound) { return bound != 0 && reading < bound; };
    return DeviationBeyond(element, above, below);
}

// Bounds are in half percents of the nominal value.
Deviation DeviationOfVoltage(const Element& element) {
    const unsigned nominal = element.nominal;
    const unsigned reading = element.reading;
    const auto above = [&](HX_U8 bound) {
        return bound != 0 && reading > nominal && 200 * (reading - nominal) > nominal * bound;
    };
    const auto below = [&](HX_U8 bound) {
        return bound != 0 && reading < nominal && 200 * (nominal - reading) > nominal * bound;
    };
    return DeviationBeyond(element, above, below);
}

Deviation DeviationOfFan(const Element& element) {
    const unsigned speed = 100U * element.reading;
    if (speed == 0 || speed < kFanCritical * element.nominal) return Deviation::kLowCritical;
    if (speed < kFanWarning * element.nominal) return Deviation::kLowWarning;
    return Deviation::kNone;
}

}  // namespace

Deviation DeviationOf(const Element& element) {
    switch (element.type) {
        case ElementType::kFan:
            return DeviationOfFan(element);
        case ElementType::kTemperature:
            return element.reading == 0 ? Deviation::kNone : DeviationOfTemperature(element);
        case ElementType::kVoltage:
            return element.nominal == 0 ? Deviation::kNone : DeviationOfVoltage(element);
        case ElementType::kPowerSupply:
        case ElementType::kDoor:
        case ElementType::kAlarm:
            break;
    }
    return Deviation::kNone;
}

ElementStatus StatusOf(const Element& element) {
    const bool is_measured = element.type == ElementType::kFan ||
                             element.type == ElementType::kTemperature ||
                             element.type == ElementType::kVoltage;
    // No reading tells that an element is not installed or does not know its state.
    const bool is_told = element.status != ElementStatus::kOk &&
                         element.status != ElementStatus::kNoncritical &&
                         element.status != ElementStatus::kCritical;
    if (!is_measured || is_told) return element.status;
    switch (DeviationOf(element)) {
        case Deviation::kNone:
            break;
        case Deviation::kLowWarning:
        case Deviation::kHighWarning:
            return ElementStatus::kNoncritical;
        case Deviation::kLowCritical:
        case Deviation::kHighCritical:
            return ElementStatus::kCritical;
    }
    return ElementStatus::kOk;
}

Element* FindElement(Adapter& adapter, HX_U16 enclosure, HX_U8 number) {
    const auto found = std::ranges::find_if(adapter.elements, [&](const Element& element) {
        return element.enclosure == enclosure && element.number == number;
    });
    return found == adapter.elements.end() ? nullptr : &*found;
}

}  // namespace hxsim
