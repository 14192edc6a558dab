// The calls that list enclosures and their elements.
#include <cstddef>

#include "calls/hxsim_enclosure_record.h"
#include "calls/hxsim_list_page.h"
#include "calls/hxsim_session.h"
#include "hxraid.h"
#include "incidents/hxsim_hostile_answer.h"
#include "rules/hxsim_enclosure_sensors.h"

namespace hxsim {
namespace {

template <class Record>
Status ListElements(const Adapter& adapter, HX_U16 enclosure, Record* records, HX_U8* count) {
    if (records == nullptr || count == nullptr) return Status::kNullAddress;
    *count = 0;  // on refusal as well: callers that ask every adapter in turn add up the counts
    const Enclosure* const row = Find(adapter.enclosures, enclosure);
    if (row == nullptr || !IsPlugged(*row)) return Status::kNoEnclosure;
    std::size_t listed = 0;
    for (const Element& element : adapter.elements) {
        if (element.enclosure != enclosure || listed == kMostElements) continue;
        Describe(adapter, element, records[listed++]);
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
    return hxsim::List(
        __func__, AdapterID, request, &Enclosure_Info_Request::enclosureInfo,
        &hxsim::Adapter::enclosures, hxcodes::Status::kNoEnclosure,
        [](const hxsim::Adapter&, const hxsim::Enclosure& each) { return IsPlugged(each); },
        [](const hxsim::Adapter& adapter, const hxsim::Enclosure& each, hxsim::Time now,
           Enclosure_Info& record) { hxsim::Describe(adapter, each, now, record); });
}

HX_U8 HX_ENC_GetElementInfo(HX_U8 AdapterID, HX_U16 ENC_ID, EncElementType_Info* elements,
                            HX_U8* count) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::ListElements(adapter, ENC_ID, elements, count);
    });
}

HX_U8 HX_ENC_GetElementConfig(HX_U8 AdapterID, HX_U16 ENC_ID, EncElement_Config* elements,
                              HX_U8* count) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::ListElements(adapter, ENC_ID, elements, count);
    });
}
