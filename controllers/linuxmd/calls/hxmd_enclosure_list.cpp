// The records of enclosures. The kernel reports their slots but not their elements.
#include <string_view>

#include "calls/hxmd_list_page.h"
#include "calls/hxmd_session.h"
#include "codes/device.h"
#include "codes/enclosure.h"
#include "codes/status.h"
#include "hxraid.h"
#include "sysfs/hxmd_folder.h"

namespace hxmd {
namespace {

using hxcodes::ElementStatus;
using hxcodes::NumberOf;
using hxcodes::Status;

// The status is unknown, since the elements are not seen.
Enclosure_Info Describe(const Enclosure& enclosure) {
    Enclosure_Info info{};
    info.Link.Parent.DevType = NumberOf(hxcodes::Device::kAdapter);
    info.Link.Parent.EnclosureID = kNoId;
    info.Link.Self.DevType = NumberOf(hxcodes::Device::kEnclosure);
    info.Link.Self.DevID = info.Link.Self.EnclosureID = enclosure.id;
    info.Status = NumberOf(ElementStatus::kUnknown);
    std::string_view identifier = enclosure.key;
    if (identifier.starts_with("0x")) identifier.remove_prefix(2);
    SetText(info.LogicalID, identifier.substr(0, 16));
    SetText(info.VendorID, enclosure.vendor.value_or("").substr(0, 8));
    SetText(info.ProductID, enclosure.product.value_or("").substr(0, 16));
    SetText(info.RevisionLevel, enclosure.revision.value_or("").substr(0, 4));
    return info;
}

// Answers with an empty list of elements.
HX_U8 NoElements(HX_U8 adapter, HX_U16 id, const void* elements, HX_U8* count) {
    return OnView(adapter, [&](const View& view) -> HX_U8 {
        if (elements == nullptr || count == nullptr) return NumberOf(Status::kNullAddress);
        const auto& all = view.machine.enclosures;
        if (std::ranges::find(all, id, &Enclosure::id) == all.end()) {
            return NumberOf(Status::kNoEnclosure);
        }
        *count = 0;
        return HX_SUCCESS;
    });
}

}  // namespace
}  // namespace hxmd

HX_U8 HX_ENC_GetEnclosureInfo(HX_U8 AdapterID, Enclosure_Info_Request* request) {
    const auto all = [](const hxmd::View& view) {
        std::vector<Enclosure_Info> records;
        for (const auto& each : view.machine.enclosures) records.push_back(hxmd::Describe(each));
        return records;
    };
    return hxmd::List(
        AdapterID, request, &Enclosure_Info_Request::enclosureInfo, all,
        [](const Enclosure_Info& info) { return info.Link.Self.DevID; },
        hxcodes::NumberOf(hxcodes::Status::kNoEnclosure));
}

HX_U8 HX_ENC_GetElementInfo(HX_U8 AdapterID, HX_U16 ENC_ID, EncElementType_Info* elements,
                            HX_U8* count) {
    return hxmd::NoElements(AdapterID, ENC_ID, elements, count);
}

HX_U8 HX_ENC_GetElementConfig(HX_U8 AdapterID, HX_U16 ENC_ID, EncElement_Config* elements,
                              HX_U8* count) {
    return hxmd::NoElements(AdapterID, ENC_ID, elements, count);
}

HX_U8 HX_PD_GetExpanderInfo(HX_U8 AdapterID, Exp_Info_Request* request) {
    // Expanders are not read; where some exist an empty list would deny them.
    if (!hxmd::Folder::OfSystem("/sys/class/sas_expander").Names().empty()) {
        return hxmd::NotSupported(AdapterID);
    }
    return hxmd::List(
        AdapterID, request, &Exp_Info_Request::expInfo,
        [](const hxmd::View&) { return std::vector<Exp_Info>(); },
        [](const Exp_Info& info) { return info.Link.Self.DevID; },
        hxcodes::NumberOf(hxcodes::Status::kNoExpander));
}

HX_U8 HX_PD_GetPMInfo(HX_U8 AdapterID, PM_Info_Request* request) {
    return hxmd::List(
        AdapterID, request, &PM_Info_Request::pmInfo,
        [](const hxmd::View&) { return std::vector<PM_Info>(); },
        [](const PM_Info& info) { return info.Link.Self.DevID; },
        hxcodes::NumberOf(hxcodes::Status::kNoPortMultiplier));
}
