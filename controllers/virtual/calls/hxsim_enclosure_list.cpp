// The records of enclosures and their elements.
#include <algorithm>
#include <cstdio>
#include <iterator>

#include "calls/hxsim_list_page.h"
#include "calls/hxsim_session.h"
#include "hxraid.h"
#include "incidents/hxsim_hostile_answer.h"
#include "model/hxsim_link.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_enclosure_sensors.h"

namespace hxsim {
namespace {

// Tone control bits of an alarm.
constexpr HX_U8 kCriticalTone = 0x02;

constexpr HX_U8 kMostElements = 255;  // that a call counts

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

void DescribeEnclosure(const Adapter& adapter, const Enclosure& enclosure, Time,
                       Enclosure_Info& info) {
    info.Link = LinkOf(adapter, enclosure);
    info.AdapterID = adapter.id;
    info.Status = NumberOf(WorstStatus(adapter, enclosure.id));
    const HX_U8(&name)[8] = info.Link.Self.SAS_Address;
    char logical_id[sizeof info.LogicalID];
    std::snprintf(logical_id, sizeof logical_id, "%02X%02X%02X%02X%02X%02X%02X%02X", name[0],
                  name[1], name[2], name[3], name[4], name[5], name[6], name[7]);
    SetText(info.LogicalID, logical_id);
    SetPaddedText(info.VendorID, enclosure.vendor, 8);
    SetPaddedText(info.ProductID, enclosure.product, 16);
    SetPaddedText(info.RevisionLevel, enclosure.revision, 4);
    for (const Expander& expander : adapter.expanders) {
        if (expander.enclosure != enclosure.id) continue;
        if (info.ExpanderCount == std::size(info.ExpanderIDs)) break;
        info.ExpanderIDs[info.ExpanderCount++] = expander.id;
    }
}

// What the two kinds of record begin with.
template <class Record>
Record RecordOf(const Element& element) {
    Record record{};
    record.EnclosureID = element.enclosure;
    record.Status = NumberOf(StatusOf(element));
    record.ElementID = element.number;
    record.Type = NumberOf(element.type);
    return record;
}

void SetTemperatureFlags(const Element& element, EncElementType_Info& state) {
    const Deviation deviation = DeviationOf(element);
    state.OTFailure = deviation == Deviation::kHighCritical;
    state.OTWarning = deviation == Deviation::kHighWarning;
    state.UTFailure = deviation == Deviation::kLowCritical;
    state.UTWarning = deviation == Deviation::kLowWarning;
    state.Temperature = static_cast<HX_U8>(std::min<HX_U16>(element.reading, 255));
}

void SetVoltageFlags(const Element& element, EncElementType_Info& state) {
    const Deviation deviation = DeviationOf(element);
    state.WarnOver = deviation == Deviation::kHighWarning;
    state.WarnUnder = deviation == Deviation::kLowWarning;
    state.CritOver = deviation == Deviation::kHighCritical;
    state.CritUnder = deviation == Deviation::kLowCritical;
    state.Voltage = element.reading;
}

EncElementType_Info StateOf(const Adapter& adapter, const Element& element) {
    auto state = RecordOf<EncElementType_Info>(element);
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
            SetTemperatureFlags(element, state);
            break;
        case ElementType::kAlarm:
            state.Mute = element.muted || adapter.muted;
            state.Character1 = adapter.alarm && !element.muted ? kCriticalTone : HX_U8{0};
            break;
        case ElementType::kVoltage:
            SetVoltageFlags(element, state);
            break;
        case ElementType::kDoor:  // closed
            break;
    }
    return state;
}

EncElement_Config ThresholdsOf(const Adapter&, const Element& element) {
    auto thresholds = RecordOf<EncElement_Config>(element);
    thresholds.highCriticalThreshold = element.high_critical;
    thresholds.highWarningThreshold = element.high_warning;
    thresholds.lowCriticalThreshold = element.low_critical;
    thresholds.lowWarningThreshold = element.low_warning;
    return thresholds;
}

template <class Record, class Describe>
Status ListElements(const Adapter& adapter, HX_U16 enclosure, Record* records, HX_U8* count,
                    Describe describe) {
    if (records == nullptr || count == nullptr) return Status::kNullAddress;
    *count = 0;  // also when refused: callers who ask every adapter in turn add up what they find
    if (Find(adapter.enclosures, enclosure) == nullptr) return Status::kNoEnclosure;
    std::size_t listed = 0;
    for (const Element& element : adapter.elements) {
        if (element.enclosure != enclosure || listed == kMostElements) continue;
        records[listed++] = describe(adapter, element);
    }
    *count = static_cast<HX_U8>(listed);
    if (IsHostile() && listed != 0) {
        MakeRecordHostile(records, listed * sizeof *records);
        *count = kMostElements;
    }
    return Status::kSuccess;
}

}  // namespace
}  // namespace hxsim

HX_U8 HX_ENC_GetEnclosureInfo(HX_U8 AdapterID, Enclosure_Info_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &Enclosure_Info_Request::enclosureInfo,
                       &hxsim::Adapter::enclosures, hxcodes::Status::kNoEnclosure,
                       hxsim::DescribeEnclosure);
}

HX_U8 HX_ENC_GetElementInfo(HX_U8 AdapterID, HX_U16 ENC_ID, EncElementType_Info* elements,
                            HX_U8* count) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::ListElements(adapter, ENC_ID, elements, count, hxsim::StateOf);
    });
}

HX_U8 HX_ENC_GetElementConfig(HX_U8 AdapterID, HX_U16 ENC_ID, EncElement_Config* elements,
                              HX_U8* count) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::ListElements(adapter, ENC_ID, elements, count, hxsim::ThresholdsOf);
    });
}
