#include "service/hxs_status.h"

#include <chrono>
#include <nlohmann/json.hpp>

#include "conditions/hxc_json.h"
#include "conditions/hxc_text.h"

namespace hxservice {

namespace {

using OrderedJson = nlohmann::ordered_json;

std::string TextOf(const OrderedJson& json) {
    return json.dump(-1, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
}

}  // namespace

std::string StatusText(const Report& report) {
    OrderedJson json;
    json["schema"] = "hxraidsvc-status/1";
    json["version"] = report.version;
    json["written_at"] = report.written_at;
    json["written"] = hxconditions::IsoTimeText(report.written_at);
    json["interval_s"] = std::chrono::duration<double>(report.interval).count();
    json["once"] = report.is_once;
    json["collecting"] = report.is_collecting;
    json["collection"] = report.collection;
    json["store"]["first"] = report.store.first;
    json["store"]["next"] = report.store.next;
    OrderedJson overview =
        OrderedJson::parse(hxconditions::OverviewJson(report.overview, report.counts));
    OrderedJson conditions = std::move(overview["conditions"]);
    overview.erase("conditions");
    json.update(overview);
    json["left_out"] = 0;
    json["conditions"] = OrderedJson::array();
    // Worst first: what has no room is what matters least.
    std::size_t size = TextOf(json).size() + sizeof "18446744073709551615";
    std::size_t left = conditions.size();
    for (OrderedJson& each : conditions) {
        size += TextOf(each).size();
        if (size > kLongestStatus) break;
        json["conditions"].push_back(std::move(each));
        --left;
    }
    json["left_out"] = left;
    return TextOf(json);
}

}  // namespace hxservice
