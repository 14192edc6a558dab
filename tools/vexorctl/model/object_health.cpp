#include "model/object_health.h"

#include <algorithm>

#include "conditions/hxc_look.h"
#include "model/health_answers.h"

namespace vexorctl {

namespace {

namespace hxc = hxconditions;

std::string KeyOf(hxc::Kind kind, unsigned adapter, unsigned id) {
    return std::to_string(static_cast<unsigned>(kind)) + "." + std::to_string(adapter) + "." +
           std::to_string(id);
}

// What an element says is said of its enclosure; a battery has its adapter's number alone.
std::string KeyOf(const hxc::Object& object) {
    if (object.kind == hxc::Kind::kElement) {
        return KeyOf(hxc::Kind::kEnclosure, object.adapter, object.id);
    }
    if (object.kind == hxc::Kind::kBattery) return KeyOf(object.kind, object.adapter, 0);
    return KeyOf(object.kind, object.adapter, object.id);
}

}  // namespace

ObjectHealth::ObjectHealth(const hxc::Answers& answers) : answers_(answers) {
    for (const hxc::Condition& each : hxc::LookOnce(answers, {}, {}).heads) Take(each);
}

void ObjectHealth::Take(const hxc::Condition& condition) {
    const auto [place, is_new] = worst_.try_emplace(KeyOf(condition.object), condition.level);
    if (!is_new) place->second = std::min(place->second, condition.level);
    for (const hxc::Condition& each : condition.folded) Take(each);
}

std::optional<std::string_view> ObjectHealth::Of(hxc::Kind kind, const Address& address) const {
    const auto found = worst_.find(KeyOf(kind, address.adapter, address.id));
    if (found == worst_.end()) return hxc::OverallNameOf({});
    const bool is_seen =
        found->second != hxc::Level::kUnknown && found->second != hxc::Level::kMinorUnknown;
    return is_seen ? std::optional(hxc::OverallNameOf(found->second)) : std::nullopt;
}

std::optional<std::string_view> ObjectHealth::OfDisk(const Address& disk) const {
    const hxc::Adapter* const adapter = AdapterIn(answers_, disk.adapter);
    if (adapter == nullptr || !adapter->disks_query.IsRead()) return std::nullopt;
    const auto found = std::ranges::find(adapter->disks, disk.id, &hxc::Disk::id);
    if (found == adapter->disks.end()) return std::nullopt;
    const auto health = Of(hxc::Kind::kDisk, disk);
    // A disk that is known to be bad is that, even where its SMART state is not known.
    const bool is_smart_known = adapter->smart.IsRead() && found->smart_alarm;
    return is_smart_known || health != hxc::OverallNameOf({}) ? health : std::nullopt;
}

std::optional<std::string_view> ObjectHealth::OfVirtualDisk(const Address& virtual_disk) const {
    const hxc::Adapter* const adapter = AdapterIn(answers_, virtual_disk.adapter);
    if (adapter == nullptr || !adapter->virtual_disks_query.IsRead() ||
        !adapter->disks_query.IsRead() || VirtualDiskIn(answers_, virtual_disk) == nullptr) {
        return std::nullopt;
    }
    return Of(hxc::Kind::kVirtualDisk, virtual_disk);
}

std::optional<std::string_view> ObjectHealth::OfEnclosure(const Address& enclosure) const {
    const hxc::Adapter* const adapter = AdapterIn(answers_, enclosure.adapter);
    if (adapter == nullptr || !adapter->enclosures_query.IsRead()) return std::nullopt;
    return Of(hxc::Kind::kEnclosure, enclosure);
}

std::optional<std::string_view> ObjectHealth::OfBattery(const Address& adapter) const {
    const hxc::Adapter* const found = AdapterIn(answers_, adapter.adapter);
    if (found == nullptr || !found->battery_query.IsRead() || !found->battery) return std::nullopt;
    Address battery = adapter;
    battery.id = 0;
    return Of(hxc::Kind::kBattery, battery);
}

}  // namespace vexorctl
