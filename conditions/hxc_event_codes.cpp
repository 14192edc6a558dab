// The objects of events and the conditions that they start or end.
#include "conditions/hxc_event_codes.h"

#include <algorithm>
#include <utility>

#include "codes/event.h"

namespace hxconditions {

namespace {

using hxcodes::ActivityRow;
using hxcodes::EventKind;
using hxcodes::EventRow;
using hxcodes::StepRow;
using hxcodes::Subject;

EventKind KindOf(const Event& event) {
    return static_cast<EventKind>(
        hxcodes::At(static_cast<HX_U16>(event.event_class), static_cast<HX_U16>(event.code)));
}

std::pair<Kind, unsigned> PlaceOf(Subject subject, const Event& event) {
    switch (subject) {
        case Subject::kOfVirtualDisk:
            return {Kind::kVirtualDisk, event.device};
        case Subject::kOfDisk:
            return {Kind::kDisk, event.device};
        case Subject::kOfEnclosure:
        case Subject::kOfExpander:
            return {Kind::kEnclosure, event.device};
        case Subject::kOfDiskGroup:
            return {Kind::kDiskGroup, event.device};
        case Subject::kOfBattery:
            return {Kind::kBattery, 0};
        case Subject::kOfAdapter:
        case Subject::kOfImage:
            break;
    }
    return {Kind::kAdapter, 0};
}

std::pair<Kind, unsigned> PlaceOf(const Event& event) {
    const EventKind kind = KindOf(event);
    if (const EventRow* const row = hxcodes::FindCode(hxcodes::kEvents, hxcodes::NumberOf(kind))) {
        return PlaceOf(row->subject, event);
    }
    const ActivityRow* const activity = hxcodes::ActivityOf(kind);
    if (activity == nullptr) return {Kind::kAdapter, 0};
    const bool on_disk = activity->runs_on == hxcodes::RunsOn::kDisk;
    return {on_disk ? Kind::kDisk : Kind::kVirtualDisk, event.device};
}

bool Has(std::string_view names, Code code) {
    const std::vector<Code> codes = CodesIn(names);
    return std::ranges::find(codes, code) != codes.end();
}

}  // namespace

EventCodes CodesOf(const Event& event) {
    const EventKind kind = KindOf(event);
    if (const EventRow* const row = hxcodes::FindCode(hxcodes::kEvents, hxcodes::NumberOf(kind))) {
        return {row->raises, row->clears};
    }
    const ActivityRow* const activity = hxcodes::ActivityOf(kind);
    if (activity == nullptr) return {};
    const StepRow& step = hxcodes::StepOf(*activity, kind);
    for (const hxcodes::StepConditions& each : hxcodes::kStepConditions) {
        if (each.activity == activity->code && each.step == step.code) {
            return {each.raises, each.clears};
        }
    }
    return {step.raises, step.clears};
}

std::vector<Code> CodesIn(std::string_view names) {
    std::vector<Code> codes;
    while (!names.empty()) {
        const std::size_t end = names.find(' ');
        if (const auto code = FindRow(names.substr(0, end))) codes.push_back(*code);
        names.remove_prefix(end == std::string_view::npos ? names.size() : end + 1);
    }
    return codes;
}

bool Raises(const Event& event, Code code) { return Has(CodesOf(event).raises, code); }

bool Clears(const Event& event, Code code) { return Has(CodesOf(event).clears, code); }

Object ObjectOf(const Event& event, const Things& things) {
    const auto [kind, id] = PlaceOf(event);
    const bool element =
        kind == Kind::kEnclosure && event.event_class == hxcodes::EventClass::kEnclosure;
    const Kind wanted = element ? Kind::kElement : kind;
    for (const Object& each : things.All()) {
        if (each.kind != wanted || each.adapter != event.adapter || each.id != id) continue;
        if (element && each.element != event.params[0]) continue;
        return each;
    }
    Object object;
    if (const Adapter* const adapter = things.FindAdapter(event.adapter)) {
        object = kind == Kind::kBattery ? things.BatteryOf(*adapter) : things.Of(*adapter);
    } else {
        object.adapter = event.adapter;
        object.address = AddressOf(event.adapter);
        object.identity = object.address;
        object.adapter_identity = object.identity;
        object.is_known = false;
    }
    if (kind == Kind::kAdapter || kind == Kind::kBattery) {
        object.kind = kind;
        return object;
    }
    object.kind = wanted;
    object.id = id;
    object.serial.clear();
    object.is_known = false;
    object.address = AddressOf(event.adapter, kind, id);
    if (element) {
        object.element = event.params[0];
        object.address += "/el" + std::to_string(object.element);
    }
    object.identity = object.address + " of " + object.adapter_identity;
    return object;
}

unsigned ActivityOf(const Event& event) {
    const ActivityRow* const activity = hxcodes::ActivityOf(KindOf(event));
    return activity == nullptr ? 0 : NumberOf(activity->code);
}

}  // namespace hxconditions
