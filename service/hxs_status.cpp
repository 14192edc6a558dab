#include "service/hxs_status.h"

#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <utility>

#include "codes/activity.h"
#include "codes/named.h"
#include "conditions/hxc_json.h"
#include "conditions/hxc_rows.h"
#include "conditions/hxc_text.h"

namespace hxservice {

namespace {

namespace hxc = hxconditions;
using OrderedJson = nlohmann::ordered_json;

// What is listed besides the conditions has its own bounds, so that these keep most of the room.
constexpr std::size_t kMostTasks = 40;
constexpr std::size_t kMostAdapters = 16;
constexpr std::size_t kMostDeliveries = 20;
constexpr std::size_t kLongestText = 300;

std::string StatusTextOf(const OrderedJson& json) {
    return json.dump(-1, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
}

OrderedJson StatusTextOrNull(const std::string& text) {
    return text.empty() ? OrderedJson() : OrderedJson(hxc::Shortened(text, kLongestText));
}

template <class Number>
OrderedJson StatusNumberOrNull(const std::optional<Number>& number) {
    return number ? OrderedJson(*number) : OrderedJson();
}

OrderedJson VersionsJson(const Snapshot& snapshot) {
    OrderedJson firmware = OrderedJson::array();
    for (const AdapterFacts& each : snapshot.facts.adapters) {
        if (firmware.size() == kMostAdapters) break;
        firmware.push_back({{"adapter", hxc::AddressOf(each.number)},
                            {"firmware", StatusTextOrNull(each.firmware)},
                            {"driver", StatusTextOrNull(each.driver)},
                            {"bios", StatusTextOrNull(each.bios)}});
    }
    return {{"service", snapshot.version}, {"adapters", std::move(firmware)}};
}

OrderedJson TaskJson(const RunningTask& task) {
    OrderedJson json;
    json["object"] = {{"kind", hxc::NameOf(task.object.kind)},
                      {"address", StatusTextOrNull(task.object.address)},
                      {"name", StatusTextOrNull(task.object.name)},
                      {"serial", StatusTextOrNull(task.object.serial)}};
    const std::string_view kind = hxcodes::NameOf(hxcodes::kActivityNames, task.activity.kind);
    const std::string_view state =
        hxcodes::NameOf(hxcodes::kActivityStateNames, task.activity.state);
    json["activity"] = kind.empty() ? OrderedJson() : OrderedJson(kind);
    json["state"] = state.empty() ? OrderedJson() : OrderedJson(state);
    json["percent"] = StatusNumberOrNull(task.activity.percent);
    json["first_seen"] = hxc::IsoTimeText(task.first_seen);
    json["percent_per_hour"] = task.percent_per_hour
                                   ? OrderedJson(std::round(*task.percent_per_hour * 10) / 10)
                                   : OrderedJson();
    json["seconds_left"] = StatusNumberOrNull(task.seconds_left);
    return json;
}

template <class List>
OrderedJson CountJson(const hxc::Query& query, const List& list) {
    return query.IsRead() ? OrderedJson(list.size()) : OrderedJson();
}

OrderedJson AdaptersJson(const hxc::Answers& answers) {
    OrderedJson list = OrderedJson::array();
    for (const hxc::Adapter& each : answers.adapters) {
        if (list.size() == kMostAdapters) break;
        OrderedJson charge;
        if (each.battery && each.battery->percent) charge = *each.battery->percent;
        list.push_back({{"address", hxc::AddressOf(each.number)},
                        {"serial", StatusTextOrNull(hxc::Harmless(each.serial))},
                        {"readable", each.info.IsRead()},
                        {"virtual_disks", CountJson(each.virtual_disks_query, each.virtual_disks)},
                        {"disks", CountJson(each.disks_query, each.disks)},
                        {"disk_groups", CountJson(each.groups_query, each.groups)},
                        {"enclosures", CountJson(each.enclosures_query, each.enclosures)},
                        {"battery_percent", std::move(charge)}});
    }
    return list;
}

OrderedJson CountersJson(const Facts& facts) {
    OrderedJson counters = OrderedJson::object();
    for (const ChangeCounter& each : facts.counters) {
        counters[each.name] = StatusNumberOrNull(each.count);
    }
    return counters;
}

OrderedJson EventsJson(const EventTally& tally) {
    OrderedJson events = OrderedJson::array();
    for (const StoredEvent& each : tally.Last()) {
        events.push_back({{"number", each.number},
                          {"time", hxc::IsoTimeText(each.event.time)},
                          {"adapter", hxc::AddressOf(each.event.adapter)},
                          {"class", ClassNameOf(each.event)},
                          {"code", each.event.code},
                          {"severity", each.severity},
                          {"text", hxc::Shortened(each.text, kLongestText)}});
    }
    return events;
}

OrderedJson DeliveriesJson(const std::vector<hxc::Sink>& sinks) {
    OrderedJson deliveries = OrderedJson::array();
    for (const hxc::Sink& each : sinks) {
        if (!each.is_failing && each.given_up == 0) continue;
        if (deliveries.size() == kMostDeliveries) break;
        deliveries.push_back({{"sink", hxc::Shortened(each.name, kLongestText)},
                              {"failing", each.is_failing},
                              {"error", StatusTextOrNull(each.error)},
                              {"waiting", each.waiting},
                              {"given_up", each.given_up}});
    }
    return deliveries;
}

}  // namespace

std::string StatusText(const Snapshot& snapshot) {
    OrderedJson json;
    json["schema"] = "hxraidsvc-status/1";
    json["version"] = snapshot.version;
    json["written_at"] = snapshot.written_at;
    json["written"] = hxc::IsoTimeText(snapshot.written_at);
    json["looked_at"] =
        snapshot.looked_at == 0 ? OrderedJson() : OrderedJson(hxc::IsoTimeText(snapshot.looked_at));
    json["interval_s"] = std::chrono::duration<double>(snapshot.interval).count();
    json["once"] = snapshot.is_once;
    json["collecting"] = snapshot.is_collecting;
    json["collection"] = hxc::Shortened(snapshot.collection, kLongestText);
    json["versions"] = VersionsJson(snapshot);
    json["store"]["first"] = snapshot.store.first;
    json["store"]["next"] = snapshot.store.next;
    json["store"]["lost"] = snapshot.events.Counts().lost;
    OrderedJson overview =
        OrderedJson::parse(hxc::OverviewJson(snapshot.overview, snapshot.counts));
    OrderedJson conditions = std::move(overview["conditions"]);
    overview.erase("conditions");
    json.update(overview);
    json["adapters"] = AdaptersJson(snapshot.answers);
    json["tasks"] = OrderedJson::array();
    for (const RunningTask& each : snapshot.tasks) {
        if (json["tasks"].size() == kMostTasks) break;
        json["tasks"].push_back(TaskJson(each));
    }
    json["tasks_left_out"] = snapshot.tasks.size() - json["tasks"].size();
    json["counters"] = CountersJson(snapshot.facts);
    json["events"] = EventsJson(snapshot.events);
    json["deliveries"] = DeliveriesJson(snapshot.answers.service.sinks);
    json["left_out"] = 0;
    json["conditions"] = OrderedJson::array();
    // Worst first: what has no room is what matters least.
    std::size_t size = StatusTextOf(json).size() + sizeof "18446744073709551615";
    std::size_t left = conditions.size();
    for (OrderedJson& each : conditions) {
        size += StatusTextOf(each).size();
        if (size > kLongestStatus) break;
        json["conditions"].push_back(std::move(each));
        --left;
    }
    json["left_out"] = left;
    return StatusTextOf(json);
}

}  // namespace hxservice
