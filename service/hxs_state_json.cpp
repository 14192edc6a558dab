// Each struct is an array of its members, in their order. The structured bindings name every
// member: one that is new does not compile until it is listed, and needs another kStateVersion.
#include "service/hxs_state_json.h"

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace hxservice {

namespace {

namespace hxc = hxconditions;
using Json = nlohmann::json;

auto Members(hxc::LostMember& it) {
    auto& [identity, address] = it;
    return std::tie(identity, address);
}
auto Members(hxc::Damping& it) {
    auto& [period, looks] = it;
    return std::tie(period, looks);
}
auto Members(hxc::Object& it) {
    auto& [kind, adapter, id, element, address, name, serial, identity, is_known, of] = it;
    return std::tie(kind, adapter, id, element, address, name, serial, identity, is_known, of);
}
auto Members(hxc::Finding& it) {
    auto& [code, object, values, count, lost, links, up] = it;
    return std::tie(code, object, values, count, lost, links, up);
}
auto Members(hxc::Event& it) {
    auto& [adapter, sequence, event_class, code, device, time, params] = it;
    return std::tie(adapter, sequence, event_class, code, device, time, params[0], params[1],
                    params[2], params[3]);
}
auto Members(hxc::Acknowledgement& it) {
    auto& [by, at, note] = it;
    return std::tie(by, at, note);
}
auto Members(hxc::Held& it) {
    auto& [found, from_memory, shown, stale, flapping, since, since_is, first, last, began, looks,
           good_since, good_looks, hits, event, acknowledged] = it;
    return std::tie(found, from_memory, shown, stale, flapping, since, since_is, first, last, began,
                    looks, good_since, good_looks, hits, event, acknowledged);
}
auto Members(hxc::Silence& it) {
    auto& [code, identity, until, is_sticky, by, note] = it;
    return std::tie(code, identity, until, is_sticky, by, note);
}
auto Members(hxc::Told& it) {
    auto& [found, count, causes, first_seen, since, since_is, began] = it;
    return std::tie(found, count, causes, first_seen, since, since_is, began);
}
auto Members(hxc::SeenVirtualDisk& it) {
    auto& [object, members, checked, found, seen] = it;
    return std::tie(object, members, checked, found, seen);
}
auto Members(hxc::Activity& it) {
    auto& [kind, state, percent, seconds_left] = it;
    return std::tie(kind, state, percent, seconds_left);
}
auto Members(hxc::SeenProgress& it) {
    auto& [activity, moved] = it;
    return std::tie(activity, moved);
}
auto Members(hxc::SeenAdapter& it) {
    auto& [object, virtual_disks] = it;
    return std::tie(object, virtual_disks);
}
auto Members(hxc::SeenEnclosure& it) {
    auto& [object, disks] = it;
    return std::tie(object, disks);
}
auto Members(hxc::SeenFreeDisk& it) {
    auto& [object, enclosure] = it;
    return std::tie(object, enclosure);
}
auto Members(hxc::SeenLink& it) {
    auto& [phys, speed] = it;
    return std::tie(phys, speed);
}
auto Members(hxc::SeenRemaps& it) {
    auto& [at, count] = it;
    return std::tie(at, count);
}
auto Members(hxc::Memory& it) {
    auto& [numbers, adapters, disks, progress, batteries, relearns, enclosures, elements, free,
           links, remaps, clocks] = it;
    return std::tie(numbers, adapters, disks, progress, batteries, relearns, enclosures, elements,
                    free, links, remaps, clocks);
}
auto Members(hxc::State& it) {
    auto& [now, boot, boot_id, looks, started, held, raises, told, silences, memory] = it;
    return std::tie(now, boot, boot_id, looks, started, held, raises, told, silences, memory);
}

// ---- To JSON and back, by the kind of a member ----

// Bound to a State that is kept as it is: Members takes no const, so that one list serves both
// ways.
template <class T>
Json Put(T& value);
template <class T>
void Take(const Json& json, T& value);

template <class T>
struct Kept {  // structs
    static Json Put(T& value) {
        return std::apply([](auto&... each) { return Json::array({hxservice::Put(each)...}); },
                          Members(value));
    }
    static void Take(const Json& json, T& value) {
        auto members = Members(value);
        if (!json.is_array() || json.size() != std::tuple_size_v<decltype(members)>) {
            throw StateTextError("a record has another number of members");
        }
        std::size_t index = 0;
        std::apply([&](auto&... each) { (hxservice::Take(json[index++], each), ...); }, members);
    }
};
template <class T>
requires std::is_arithmetic_v<T> || std::is_same_v<T, std::string>
struct Kept<T> {
    static Json Put(const T& value) { return value; }
    static void Take(const Json& json, T& value) { value = json.get<T>(); }
};
template <class T>
requires std::is_enum_v<T>
struct Kept<T> {
    static Json Put(const T& value) { return static_cast<int>(value); }
    static void Take(const Json& json, T& value) { value = static_cast<T>(json.get<int>()); }
};
template <>
struct Kept<hxc::Code> {  // by its name, which never changes
    static Json Put(const hxc::Code& value) { return hxc::RowOf(value).name; }
    static void Take(const Json& json, hxc::Code& value) {
        const auto code = hxc::FindRow(json.get<std::string>());
        if (!code) throw StateTextError("there is no condition " + json.get<std::string>());
        value = *code;
    }
};
template <class T>
struct Kept<std::optional<T>> {
    static Json Put(std::optional<T>& value) { return value ? hxservice::Put(*value) : Json(); }
    static void Take(const Json& json, std::optional<T>& value) {
        if (!json.is_null()) hxservice::Take(json, value.emplace());
    }
};
template <class T>
struct Kept<std::vector<T>> {
    static Json Put(std::vector<T>& values) {
        Json json = Json::array();
        for (T& each : values) json.push_back(hxservice::Put(each));
        return json;
    }
    static void Take(const Json& json, std::vector<T>& values) {
        for (const Json& each : json) hxservice::Take(each, values.emplace_back());
    }
};
template <class Key, class T, class Less>
struct Kept<std::map<Key, T, Less>> {
    static Json Put(std::map<Key, T, Less>& values) {
        Json json = Json::array();
        for (auto& [key, value] : values) {
            json.push_back(Json::array({Json(key), hxservice::Put(value)}));
        }
        return json;
    }
    static void Take(const Json& json, std::map<Key, T, Less>& values) {
        for (const Json& each : json) {
            hxservice::Take(each.at(1), values[each.at(0).get<Key>()]);
        }
    }
};

template <class T>
Json Put(T& value) {
    return Kept<std::remove_const_t<T>>::Put(value);
}
template <class T>
void Take(const Json& json, T& value) {
    Kept<T>::Take(json, value);
}

}  // namespace

std::string StateText(const hxc::State& state) {
    hxc::State copy = state;
    // Names come from outside and may be no UTF-8.
    return Put(copy).dump(-1, ' ', false, Json::error_handler_t::replace);
}

hxc::State ParseState(std::string_view text) {
    hxc::State state;
    try {
        Take(Json::parse(text), state);
    } catch (const Json::exception& error) {
        throw StateTextError(error.what());
    }
    return state;
}

std::string EventCountsText(const EventCounts& counts) {
    Json told = Json::array();
    for (const auto& [kind, count] : counts.told) {
        told.push_back(Json::array({kind.first, kind.second, count}));
    }
    const Json json = {{"told", std::move(told)}, {"lost", counts.lost}};
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

EventCounts ParseEventCounts(std::string_view text) {
    EventCounts counts;
    try {
        const Json json = Json::parse(text);
        for (const Json& each : json.at("told")) {
            each.at(2).get_to(
                counts.told[{each.at(0).get<std::string>(), each.at(1).get<std::string>()}]);
        }
        json.at("lost").get_to(counts.lost);
    } catch (const Json::exception& error) {
        throw StateTextError(error.what());
    }
    return counts;
}

}  // namespace hxservice
