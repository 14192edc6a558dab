// Fills the records of enclosures and their elements.
#include "calls/hxsim_enclosure_record.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "model/hxsim_link.h"
#include "model/hxsim_record_bytes.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_enclosure_sensors.h"

namespace hxsim {
namespace {

// Tone control bits of an alarm.
constexpr HX_U8 kCriticalTone = 0x02;

ElementStatus WorstStatus(const Adapter& adapter, HX_U16 enclosure) {
    ElementStatus worst = ElementStatus::kOk;
    for (const Element& element : adapter.elements) {
        if (element.enclosure != enclosure) continue;
        const ElementStatus status = StatusOf(element);
        if (status == ElementStatus::kCritical) return status;
        if (status == ElementStatus::kNoncritical) worst = status;
    }
    return worst;
}

void SetLogicalId(char (&field)[17], const HX_U8 (&name)[8]) {
    std::snprintf(field, sizeof field, "%02X%02X%02X%02X%02X%02X%02X%02X", name[0], name[1],
                  name[2], name[3], name[4], name[5], name[6], name[7]);
}

void DescribeExpanders(const Adapter& adapter, HX_U16 enclosure, Enclosure_Info& info) {
    SetZero(info.ExpanderCount, info.ExpanderIDs);
    for (const Expander& expander : adapter.expanders) {
        if (expander.enclosure != enclosure) continue;
        if (info.ExpanderCount == std::size(info.ExpanderIDs)) break;
        info.ExpanderIDs[info.ExpanderCount++] = expander.id;
    }
}

// The members that both kinds of record begin with.
template <class Record>
void DescribeElement(const Element& element, Record& record) {
    record.EnclosureID = element.enclosure;
    record.Status = NumberOf(StatusOf(element));
    record.ElementID = element.number;
    record.Type = NumberOf(element.type);
    SetZero(record.Reserved);
}

void DescribeTemperature(const Element& element, EncElementType_Info& state) {
    const Deviation deviation = DeviationOf(element);
    state.OTFailure = deviation == Deviation::kHighCritical;
    state.OTWarning = deviation == Deviation::kHighWarning;
    state.UTFailure = deviation == Deviation::kLowCritical;
    state.UTWarning = deviation == Deviation::kLowWarning;
    state.Temperature = static_cast<HX_U8>(std::min<HX_U16>(element.reading, 255));
}

void DescribeVoltage(const Element& element, EncElementType_Info& state) {
    const Deviation deviation = DeviationOf(element);
    state.WarnOver = deviation == Deviation::kHighWarning;
    state.WarnUnder = deviation == Deviation::kLowWarning;
    state.CritOver = deviation == Deviation::kHighCritical;
    state.CritUnder = deviation == Deviation::kLowCritical;
    state.Voltage = element.reading;
}

}  // namespace

void Describe(const Adapter& adapter, const Enclosure& enclosure, Time, Enclosure_Info& info) {
    SetLink(info.Link, adapter, enclosure);
    info.AdapterID = adapter.id;
    info.Status = NumberOf(WorstStatus(adapter, enclosure.id));
    SetLogicalId(info.LogicalID, info.Link.Self.SAS_Address);
    SetPaddedText(info.VendorID, enclosure.vendor, 8);
    SetPaddedText(info.ProductID, enclosure.product, 16);
    SetPaddedText(info.RevisionLevel, enclosure.revision, 4);
    DescribeExpanders(adapter, enclosure.id, info);
    SetZero(info.Reserved1, info.Reserved2);
}

void Describe(const Adapter& adapter, const Element& element, EncElementType_Info& state) {
    DescribeElement(element, state);
    SetZero(state.ElementData);  // fields that the type does not use
    switch (element.type) {
        case ElementType::kPowerSupply:
            state.HotSwap = 1;
            state.DCUnderVoltage = element.status == ElementStatus::kCritical;
            break;
        case ElementType::kFan:
            state.CurSpeedcode = element.speed_code;
            state.CurSpeed = element.reading;
            break;
        case ElementType::kTemperature:
            DescribeTemperature(element, state);
            break;
        case ElementType::kAlarm:
            state.Mute = element.muted || adapter.muted;
            state.Character1 = adapter.alarm && !element.muted ? kCriticalTone : HX_U8{0};
            break;
        case ElementType::kVoltage:
            DescribeVoltage(element, state);
            break;
        case ElementType::kDoor:  // closed
            break;
    }
}

void Describe(const Adapter&, const Element& element, EncElement_Config& thresholds) {
    DescribeElement(element, thresholds);
    thresholds.highCriticalThreshold = element.high_critical;
    thresholds.highWarningThreshold = element.high_warning;
    thresholds.lowCriticalThreshold = element.low_critical;
    thresholds.lowWarningThreshold = element.low_warning;
}

}  // namespace hxsim
