// Enclosures and what they measure.
#include <cstdio>

#include "hxraid.h"
#include "hxraid_codes.h"
#include "hxsim_library.h"
#include "hxsim_link.h"
#include "hxsim_machine.h"
#include "hxsim_page.h"
#include "hxsim_text.h"

namespace hxsim {
namespace {

void DescribeEnclosure(HX_U8 adapter, const Enclosure& enclosure, Enclosure_Info& info) {
    info.Link = LinkOf(adapter, enclosure);
    info.AdapterID = adapter;
    info.Status = HXSIM_ELEMENT_OK;
    const HX_U8(&name)[8] = info.Link.Self.SAS_Address;
    char logical_id[sizeof info.LogicalID];
    std::snprintf(logical_id, sizeof logical_id, "%02X%02X%02X%02X%02X%02X%02X%02X", name[0],
                  name[1], name[2], name[3], name[4], name[5], name[6], name[7]);
    SetText(info.LogicalID, logical_id);
    SetPaddedText(info.VendorID, enclosure.vendor, 8);
    SetPaddedText(info.ProductID, enclosure.product, 16);
    SetPaddedText(info.RevisionLevel, enclosure.revision, 4);
    for (const HX_U16 expander : enclosure.expanders) {
        info.ExpanderIDs[info.ExpanderCount++] = expander;
    }
}

// What the two kinds of record begin with.
template <class Record>
Record RecordOf(const Enclosure& enclosure, const Element& element) {
    Record record{};
    record.EnclosureID = enclosure.id;
    record.Status = HXSIM_ELEMENT_OK;
    record.ElementID = static_cast<HX_U8>(&element - enclosure.elements.data());
    record.Type = element.type;
    return record;
}

EncElementType_Info StateOf(const Enclosure& enclosure, const Element& element) {
    auto state = RecordOf<EncElementType_Info>(enclosure, element);
    switch (element.type) {
        case HX_ELEMENT_POWER_SUPPLY:
            state.HotSwap = 1;
            break;
        case HX_ELEMENT_FAN:
            state.CurSpeedcode = element.speed_code;
            state.CurSpeed = element.reading;
            break;
        case HX_ELEMENT_TEMPERATURE:
            state.Temperature = static_cast<HX_U8>(element.reading);
            break;
        case HX_ELEMENT_VOLTAGE:
            state.Voltage = element.reading;
            break;
        default:  // a closed door, a silent alarm
            break;
    }
    return state;
}

EncElement_Config ThresholdsOf(const Enclosure& enclosure, const Element& element) {
    auto thresholds = RecordOf<EncElement_Config>(enclosure, element);
    thresholds.highCriticalThreshold = element.high_critical;
    thresholds.highWarningThreshold = element.high_warning;
    thresholds.lowCriticalThreshold = element.low_critical;
    thresholds.lowWarningThreshold = element.low_warning;
    return thresholds;
}

template <class Record, class Describe>
HX_U8 ListElements(HX_U8 adapter, HX_U16 id, Record* records, HX_U8* count, Describe describe) {
    if (const HX_U8 status = CheckAdapter(adapter); status != HX_SUCCESS) return status;
    if (records == nullptr || count == nullptr) return HXSIM_NULL_ADDRESS;
    const Enclosure* const enclosure = Find(adapter, kEnclosures, id);
    *count = 0;  // also when refused: callers who ask every adapter in turn add up what they find
    if (enclosure == nullptr) return HXSIM_NO_ENCLOSURE;
    for (const Element& element : enclosure->elements) {
        records[(*count)++] = describe(*enclosure, element);
    }
    return HX_SUCCESS;
}

}  // namespace
}  // namespace hxsim

HX_U8 HX_ENC_GetEnclosureInfo(HX_U8 AdapterID, Enclosure_Info_Request* request) {
    return hxsim::List(AdapterID, request, &Enclosure_Info_Request::enclosureInfo,
                       hxsim::kEnclosures, hxsim::DescribeEnclosure);
}

HX_U8 HX_ENC_GetElementInfo(HX_U8 AdapterID, HX_U16 ENC_ID, EncElementType_Info* elements,
                            HX_U8* count) {
    return hxsim::ListElements(AdapterID, ENC_ID, elements, count, hxsim::StateOf);
}

HX_U8 HX_ENC_GetElementConfig(HX_U8 AdapterID, HX_U16 ENC_ID, EncElement_Config* elements,
                              HX_U8* count) {
    return hxsim::ListElements(AdapterID, ENC_ID, elements, count, hxsim::ThresholdsOf);
}
