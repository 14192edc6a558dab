// One row for each metric that is a number of an object; a function for each that has more labels.
#include "service/hxs_metrics.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/level.h"
#include "codes/named.h"
#include "codes/state.h"
#include "conditions/hxc_object.h"
#include "conditions/hxc_redundancy.h"
#include "conditions/hxc_rows.h"
#include "service/hxs_metric_text.h"

namespace hxservice {

namespace {

namespace hxc = hxconditions;
using enum MetricType;
using Value = std::optional<double>;

constexpr double kBytesPerSector = 512;
constexpr double kMilliampereHoursPerCoulomb = 1 / 3.6;

double Seconds(vexortools::Duration duration) {
    return std::chrono::duration<double>(duration).count();
}

template <class Number>
Value ValueOf(const std::optional<Number>& number) {
    return number ? Value(static_cast<double>(*number)) : Value();
}
template <class Number>
Value Scaled(const std::optional<Number>& number, double factor) {
    return number ? Value(static_cast<double>(*number) / factor) : Value();
}
Value Bytes(std::uint64_t sectors) { return static_cast<double>(sectors) * kBytesPerSector; }

std::string NumberText(unsigned adapter) {
    return adapter == hxc::kNoNumber ? "" : std::to_string(adapter);
}

MetricLabels With(MetricLabels labels, MetricLabels more) {
    labels.insert(labels.end(), more.begin(), more.end());
    return labels;
}

// An object with the labels that each of its series has.
template <class Thing>
struct Labelled {
    MetricLabels labels;
    const Thing* thing;
    const hxc::Adapter* adapter;
};

// Those that were read, in the order of the controller. An object that is listed twice counts once.
struct Machine {
    std::vector<Labelled<hxc::Adapter>> adapters;
    std::vector<Labelled<hxc::VirtualDisk>> virtual_disks;
    std::vector<Labelled<hxc::Disk>> disks;
    std::vector<Labelled<hxc::DiskGroup>> groups;
    std::vector<Labelled<hxc::Battery>> batteries;
    std::vector<Labelled<hxc::Element>> elements;
};

template <class Thing>
void TakeList(const hxc::Adapter& adapter, const hxc::Query& query, hxc::Kind kind,
              const std::vector<Thing>& things, std::vector<Labelled<Thing>>& list) {
    if (!query.IsRead()) return;
    for (const Thing& each : things) {
        list.push_back({{{"adapter", NumberText(adapter.number)},
                         {"object", hxc::AddressOf(adapter.number, kind, each.id)}},
                        &each,
                        &adapter});
    }
}

void TakeElements(const hxc::Adapter& adapter, std::vector<Labelled<hxc::Element>>& list) {
    if (!adapter.enclosures_query.IsRead()) return;
    for (const hxc::Enclosure& enclosure : adapter.enclosures) {
        const std::string address =
            hxc::AddressOf(adapter.number, hxc::Kind::kEnclosure, enclosure.id);
        for (const hxc::Element& each : enclosure.elements) {
            const std::string_view type = hxcodes::NameOf(hxcodes::kElementTypeNames, each.type);
            list.push_back(
                {{{"adapter", NumberText(adapter.number)},
                  {"object", address + "/el" + std::to_string(each.id)},
                  {"type", type.empty() ? std::to_string(each.type) : std::string(type)}},
                 &each,
                 &adapter});
        }
    }
}

Machine MachineOf(const hxc::Answers& answers) {
    Machine machine;
    if (answers.machine.result != hxc::Query::Result::kRead) return machine;
    for (const hxc::Adapter& adapter : answers.adapters) {
        const MetricLabels labels = {{"adapter", NumberText(adapter.number)},
                                     {"object", hxc::AddressOf(adapter.number)}};
        machine.adapters.push_back({labels, &adapter, &adapter});
        TakeList(adapter, adapter.virtual_disks_query, hxc::Kind::kVirtualDisk,
                 adapter.virtual_disks, machine.virtual_disks);
        TakeList(adapter, adapter.disks_query, hxc::Kind::kDisk, adapter.disks, machine.disks);
        TakeList(adapter, adapter.groups_query, hxc::Kind::kDiskGroup, adapter.groups,
                 machine.groups);
        TakeElements(adapter, machine.elements);
        if (adapter.battery && adapter.battery_query.IsRead()) {
            machine.batteries.push_back({labels, &*adapter.battery, &adapter});
        }
    }
    return machine;
}

// ---- Rows: a number of an object ----

template <class Thing>
struct MetricRow {
    std::string_view name;
    std::string_view help;
    Value (*value)(const Labelled<Thing>&);  // null: not known, no series
};

// All disks of the virtual disk count: one that is known to be lost is not active.
Value ActiveDisksOf(const Labelled<hxc::VirtualDisk>& it) {
    if (!it.adapter->disks_query.IsRead() || it.thing->members.empty()) return std::nullopt;
    const hxc::Redundancy redundancy = hxc::RedundancyOf(*it.thing, it.adapter->disks);
    return static_cast<double>(it.thing->members.size() - redundancy.lost.size());
}

constexpr MetricRow<hxc::VirtualDisk> kVirtualDiskRows[] = {
    {"hxraid_virtual_disk_survives", "How many more of its disks may fail, whichever they are.",
     [](const auto& it) { return ValueOf(hxc::SurvivesOf(*it.adapter, *it.thing)); }},
    {"hxraid_virtual_disk_disks_required", "Disks that make it whole.",
     [](const auto& it) {
         const std::size_t width = it.thing->members.size();
         return width == 0 ? Value() : Value(static_cast<double>(width));
     }},
    {"hxraid_virtual_disk_disks_active", "Disks of it that are not lost.", ActiveDisksOf},
    {"hxraid_virtual_disk_size_bytes", "Its size.",
     [](const auto& it) { return Bytes(it.thing->sectors); }},
};

constexpr MetricRow<hxc::Disk> kDiskRows[] = {
    {"hxraid_disk_size_bytes", "Its size.",
     [](const auto& it) { return Bytes(it.thing->sectors); }},
    {"hxraid_disk_free_bytes", "What no virtual disk takes of it.",
     [](const auto& it) {
         return it.thing->free_sectors ? Bytes(*it.thing->free_sectors) : Value();
     }},
    {"hxraid_disk_smart_alarm", "1 while the disk announces its failure by SMART.",
     [](const auto& it) { return ValueOf(it.thing->smart_alarm); }},
    {"hxraid_disk_remapped", "Sectors that the controller has remapped.",
     [](const auto& it) { return ValueOf(it.thing->remapped); }},
};

constexpr MetricRow<hxc::DiskGroup> kGroupRows[] = {
    {"hxraid_disk_group_size_bytes", "Its size.",
     [](const auto& it) { return Bytes(it.thing->sectors); }},
    {"hxraid_disk_group_disks", "Its disks.",
     [](const auto& it) { return Value(static_cast<double>(it.thing->disks.size())); }},
    {"hxraid_disk_group_spares", "Its own spares.",
     [](const auto& it) { return Value(static_cast<double>(it.thing->spares.size())); }},
};

constexpr MetricRow<hxc::Battery> kBatteryRows[] = {
    {"hxraid_battery_charge_ratio", "Its charge.",
     [](const auto& it) { return Scaled(it.thing->percent, 100); }},
    {"hxraid_battery_celsius", "Its temperature.",
     [](const auto& it) { return ValueOf(it.thing->celsius); }},
    {"hxraid_battery_volts", "Its voltage.",
     [](const auto& it) { return Scaled(it.thing->millivolts, 1000); }},
    {"hxraid_battery_capacity_coulombs", "What it holds when it is full.",
     [](const auto& it) { return Scaled(it.thing->capacity_mah, kMilliampereHoursPerCoulomb); }},
    {"hxraid_battery_design_capacity_coulombs", "What it held when it was new.",
     [](const auto& it) { return Scaled(it.thing->new_mah, kMilliampereHoursPerCoulomb); }},
    {"hxraid_battery_cycles", "How often it was charged.",
     [](const auto& it) { return ValueOf(it.thing->cycles); }},
};

Value ReadingOf(const hxc::Element& element, hxcodes::ElementType type, double factor) {
    return element.type == hxcodes::NumberOf(type) ? Scaled(element.reading, factor) : Value();
}

constexpr MetricRow<hxc::Element> kElementRows[] = {
    {"hxraid_element_celsius", "What a temperature sensor measures.",
     [](const auto& it) { return ReadingOf(*it.thing, hxcodes::ElementType::kTemperature, 1); }},
    {"hxraid_element_rpm", "The speed of a fan.",
     [](const auto& it) { return ReadingOf(*it.thing, hxcodes::ElementType::kFan, 1); }},
    {"hxraid_element_volts", "What a voltage sensor measures.",
     [](const auto& it) { return ReadingOf(*it.thing, hxcodes::ElementType::kVoltage, 1000); }},
};

template <class Thing, std::size_t n>
void AddRows(MetricText& text, const MetricRow<Thing> (&rows)[n],
             const std::vector<Labelled<Thing>>& things) {
    for (const MetricRow<Thing>& row : rows) {
        text.Begin(row.name, kGauge, row.help);
        for (const Labelled<Thing>& each : things) {
            if (const Value value = row.value(each)) text.Add(each.labels, *value);
        }
    }
}

// ---- States: a series for each state there is, 1 for those that hold ----

template <class Thing, class Rows, class Holds>
void AddStates(MetricText& text, std::string_view name, std::string_view help,
               const std::vector<Labelled<Thing>>& things, const Rows& rows, Holds holds) {
    text.Begin(name, kGauge, help);
    for (const Labelled<Thing>& each : things) {
        for (const auto& row : rows) {
            text.Add(With(each.labels, {{"state", std::string(row.name)}}),
                     holds(*each.thing, row) ? 1 : 0);
        }
    }
}

void AddStatesOf(MetricText& text, const Machine& machine) {
    const auto is_code = [](const auto& thing, const hxcodes::Named& row) {
        return thing.state == row.code;
    };
    AddStates(text, "hxraid_virtual_disk_state", "1 for its state, 0 for the others.",
              machine.virtual_disks, hxcodes::kStateNames, is_code);
    AddStates(text, "hxraid_disk_group_state", "1 for its state, 0 for the others.", machine.groups,
              hxcodes::kStateNames, is_code);
    AddStates(text, "hxraid_disk_state", "1 for its state, 0 for the others.", machine.disks,
              hxcodes::kDiskWords, [](const hxc::Disk& disk, const hxcodes::DiskWord& row) {
                  return hxcodes::DiskWordOf(disk.status) == row.name;
              });
    AddStates(text, "hxraid_battery_state", "1 for each state that holds, 0 for the others.",
              machine.batteries, hxcodes::kBatteryBits,
              [](const hxc::Battery& battery, const hxcodes::Named& row) {
                  return (battery.status & row.code) != 0;
              });
    AddStates(text, "hxraid_element_status", "1 for its status, 0 for the others.",
              machine.elements, hxcodes::kElementStatusNames,
              [](const hxc::Element& element, const hxcodes::Named& row) {
                  return element.status == row.code;
              });
}

// ---- Names and other facts, as labels of a series that is always 1 ----

const AdapterFacts* FactsOf(const Facts& facts, const hxc::Adapter& adapter) {
    const auto found = std::ranges::find(facts.adapters, adapter.number, &AdapterFacts::number);
    return found == facts.adapters.end() ? nullptr : &*found;
}

void AddAdapterInfo(MetricText& text, const Machine& machine, const Facts& facts) {
    text.Begin("hxraid_adapter_info", kGauge, "The adapter's serial number and versions.");
    for (const auto& each : machine.adapters) {
        if (!each.thing->info.IsRead()) continue;
        const AdapterFacts* const known = FactsOf(facts, *each.thing);
        text.Add(With(each.labels, {{"serial", hxc::Harmless(each.thing->serial)},
                                    {"firmware", known == nullptr ? "" : known->firmware},
                                    {"driver", known == nullptr ? "" : known->driver},
                                    {"bios", known == nullptr ? "" : known->bios}}),
                 1);
    }
}

void AddVirtualDiskInfo(MetricText& text, const Machine& machine) {
    text.Begin("hxraid_virtual_disk_info", kGauge, "The virtual disk's name and level.");
    for (const auto& each : machine.virtual_disks) {
        const std::string_view level = hxcodes::NameOf(hxcodes::kLevels, each.thing->level);
        text.Add(With(each.labels,
                      {{"name", hxc::Harmless(each.thing->name)}, {"level", std::string(level)}}),
                 1);
    }
}

void AddDiskInfo(MetricText& text, const Machine& machine, const Facts& facts) {
    std::map<std::pair<unsigned, unsigned>, const DiskFacts*> known;
    for (const DiskFacts& each : facts.disks) known[{each.adapter, each.id}] = &each;
    text.Begin("hxraid_disk_info", kGauge, "The disk's names and its place.");
    for (const auto& each : machine.disks) {
        const auto found = known.find({each.adapter->number, each.thing->id});
        const DiskFacts facts_of = found == known.end() ? DiskFacts() : *found->second;
        text.Add(With(each.labels, {{"serial", hxc::Harmless(each.thing->serial)},
                                    {"wwn", each.thing->wwn},
                                    {"model", facts_of.model},
                                    {"firmware", facts_of.firmware},
                                    {"bay", each.thing->bay}}),
                 1);
    }
}

void AddFlash(MetricText& text, const Machine& machine) {
    constexpr std::pair<const char*, std::optional<bool> hxc::Flash::*> kImages[] = {
        {"autoload", &hxc::Flash::autoload}, {"boot_loader", &hxc::Flash::boot_loader},
        {"firmware", &hxc::Flash::firmware}, {"bios", &hxc::Flash::bios},
        {"hba_info", &hxc::Flash::hba_info},
    };
    text.Begin("hxraid_flash_image_healthy", kGauge, "Whether an image of the flash is healthy.");
    for (const auto& each : machine.adapters) {
        if (!each.thing->info.IsRead()) continue;
        for (const auto& [name, image] : kImages) {
            const auto is_healthy = each.thing->flash.*image;
            if (is_healthy) text.Add(With(each.labels, {{"image", name}}), *is_healthy ? 1 : 0);
        }
    }
}

// ---- Tasks ----

void AddTasks(MetricText& text, const std::vector<RunningTask>& tasks) {
    const auto add = [&](std::string_view name, std::string_view help, auto value_of) {
        text.Begin(name, kGauge, help);
        for (const RunningTask& each : tasks) {
            const Value value = value_of(each);
            const std::string_view kind =
                hxcodes::NameOf(hxcodes::kActivityNames, each.activity.kind);
            if (!value || kind.empty()) continue;
            text.Add({{"adapter", NumberText(each.object.adapter)},
                      {"object", each.object.address},
                      {"activity", std::string(kind)}},
                     *value);
        }
    };
    add("hxraid_task_progress_ratio", "How far the activity is.",
        [](const RunningTask& it) { return Scaled(it.activity.percent, 100); });
    add("hxraid_task_left_seconds", "How long it still takes at its present rate.",
        [](const RunningTask& it) { return ValueOf(it.seconds_left); });
    add("hxraid_task_running", "1 while it runs, 0 while it is paused.", [](const RunningTask& it) {
        return Value(it.activity.state == hxcodes::NumberOf(hxcodes::ActivityState::kRunning));
    });
}

// ---- Conditions ----

std::string ObjectTextOf(const hxc::Object& object) {
    for (const std::string& text : {object.address, object.name, object.serial}) {
        if (!text.empty()) return text;
    }
    return std::string(hxc::NameOf(object.kind));
}

MetricLabels LabelsOf(const hxc::Condition& condition) {
    return {{"code", std::string(hxc::RowOf(condition.code).name)},
            {"severity", std::string(hxc::NameOf(condition.level))},
            {"adapter", NumberText(condition.object.adapter)},
            {"object", ObjectTextOf(condition.object)}};
}

struct ConditionRow {
    std::string_view name;
    std::string_view help;
    Value (*value)(const hxc::Condition&);
};
constexpr ConditionRow kConditionRows[] = {
    {"hxraid_condition", "1 for what is wrong now.",
     [](const hxc::Condition&) { return Value(1); }},
    {"hxraid_condition_stale", "1 when what it rests on cannot be read now.",
     [](const hxc::Condition& it) { return Value(it.is_stale); }},
    {"hxraid_condition_since_timestamp_seconds", "When it began, or before.",
     [](const hxc::Condition& it) {
         return it.since == 0 ? Value() : Value(static_cast<double>(it.since));
     }},
    {"hxraid_condition_acknowledged",
     "1 when somebody has acknowledged it: the alert rules leave it out.",
     [](const hxc::Condition& it) { return Value(it.acknowledged.has_value()); }},
    {"hxraid_condition_silenced", "1 while it is silenced: the alert rules leave it out.",
     [](const hxc::Condition& it) { return Value(it.silenced_until.has_value()); }},
};

void AddConditions(MetricText& text, const hxc::Overview& overview) {
    for (const ConditionRow& row : kConditionRows) {
        text.Begin(row.name, kGauge, row.help);
        for (const hxc::Condition& head : overview.heads) {
            if (const Value value = row.value(head)) text.Add(LabelsOf(head), *value);
        }
    }
    text.Begin("hxraid_condition_folded", kGauge,
               "1 for what explains the condition of another object.");
    for (const hxc::Condition& head : overview.heads) {
        for (const hxc::Condition& each : head.folded) {
            text.Add(With(LabelsOf(each), {{"into", ObjectTextOf(head.object)}}), 1);
        }
    }
    text.Begin("hxraid_conditions", kGauge, "How many conditions there are.");
    const std::initializer_list<std::pair<hxc::Level, std::uint64_t>> counts = {
        {hxc::Level::kCritical, overview.critical},
        {hxc::Level::kUnknown, overview.unknown},
        {hxc::Level::kWarning, overview.warning},
        {hxc::Level::kInfo, overview.info}};
    for (const auto& [level, count] : counts) {
        text.Add({{"severity", std::string(hxc::NameOf(level))}}, static_cast<double>(count));
    }
    text.Begin("hxraid_alerts_active", kGauge,
               "Conditions above information that are neither acknowledged nor silenced.");
    text.Add(
        {},
        static_cast<double>(std::ranges::count_if(overview.heads, [](const hxc::Condition& each) {
            return each.level != hxc::Level::kInfo && !each.acknowledged && !each.silenced_until;
        })));
}

// ---- The service itself ----

void AddQueries(MetricText& text, const hxc::Answers& answers) {
    constexpr std::pair<const char*, hxc::Query hxc::Adapter::*> kQueries[] = {
        {"adapter", &hxc::Adapter::info},
        {"settings", &hxc::Adapter::settings},
        {"virtual_disks", &hxc::Adapter::virtual_disks_query},
        {"disks", &hxc::Adapter::disks_query},
        {"smart", &hxc::Adapter::smart},
        {"disk_groups", &hxc::Adapter::groups_query},
        {"enclosures", &hxc::Adapter::enclosures_query},
        {"battery", &hxc::Adapter::battery_query},
    };
    text.Begin("hxraid_collect_success", kGauge, "1 when the last look could read it, else 0.");
    const auto add = [&](const std::string& adapter, const char* name, const hxc::Query& query) {
        if (!query.IsRead() && !query.Failed()) return;  // not asked
        text.Add({{"adapter", adapter}, {"query", name}}, query.IsRead() ? 1 : 0);
    };
    add("", "machine", answers.machine);
    for (const hxc::Adapter& adapter : answers.adapters) {
        for (const auto& [name, query] : kQueries) {
            add(NumberText(adapter.number), name, adapter.*query);
        }
    }
}

void AddEvents(MetricText& text, const Snapshot& snapshot) {
    const EventCounts& counts = snapshot.events.Counts();
    text.Begin("hxraid_events_total", kCounter, "Events that were collected, over restarts.");
    for (const auto& [kind, count] : counts.told) {
        text.Add({{"class", kind.first}, {"severity", kind.second}}, static_cast<double>(count));
    }
    text.Begin("hxraid_events_lost_total", kCounter, "Events that were lost, over restarts.");
    text.Add({}, static_cast<double>(counts.lost));
    text.Begin("hxraid_event_store_first", kGauge, "The number of the oldest event in the store.");
    text.Add({}, static_cast<double>(snapshot.store.first));
    text.Begin("hxraid_event_store_next", kGauge, "The number that the next event will get.");
    text.Add({}, static_cast<double>(snapshot.store.next));
}

void AddDeliveries(MetricText& text, const Snapshot& snapshot) {
    const std::vector<hxc::Sink>& sinks = snapshot.answers.service.sinks;
    const auto add = [&](std::string_view name, std::string_view help, auto value_of) {
        text.Begin(name, kGauge, help);
        for (const hxc::Sink& each : sinks) text.Add({{"sink", each.name}}, value_of(each));
    };
    add("hxraid_sink_failing", "1 while alerts cannot be delivered.",
        [](const hxc::Sink& it) { return it.is_failing ? 1.0 : 0.0; });
    add("hxraid_sink_waiting", "Alerts that wait for their delivery.",
        [](const hxc::Sink& it) { return static_cast<double>(it.waiting); });
    add("hxraid_sink_given_up", "Alerts that were given up.",
        [](const hxc::Sink& it) { return static_cast<double>(it.given_up); });
    text.Begin("hxraid_alert_deliveries_total", kCounter,
               "Attempts to deliver alerts that have ended, over restarts.");
    for (const auto& [name, queue] : snapshot.sinks) {
        for (const auto& [result, count] : {std::pair("delivered", queue.delivered_letters),
                                            std::pair("failed", queue.failed_letters)}) {
            text.Add({{"sink", name}, {"result", result}}, static_cast<double>(count));
        }
    }
}

void AddService(MetricText& text, const Snapshot& snapshot) {
    const auto add = [&](std::string_view name, MetricType type, std::string_view help,
                         double value) {
        text.Begin(name, type, help);
        text.Add({}, value);
    };
    text.Begin("hxraid_build_info", kGauge, "The version of the service.");
    text.Add({{"version", snapshot.version}}, 1);
    add("hxraid_snapshot_timestamp_seconds", kGauge, "When these metrics were written.",
        static_cast<double>(snapshot.written_at));
    if (snapshot.looked_at != 0) {
        add("hxraid_look_timestamp_seconds", kGauge, "When the machine was looked at last.",
            static_cast<double>(snapshot.looked_at));
    }
    add("hxraid_round_interval_seconds", kGauge, "The time between two rounds.",
        Seconds(snapshot.interval));
    add("hxraid_collecting", kGauge, "1 when the last check-in could be made, else 0.",
        snapshot.is_collecting ? 1 : 0);
    const Work& work = snapshot.work;
    add("hxraid_rounds_total", kCounter, "Rounds that have ended since the service's start.",
        static_cast<double>(work.rounds));
    add("hxraid_round_seconds_total", kCounter, "How long they took in all.",
        Seconds(work.in_rounds));
    add("hxraid_last_round_seconds", kGauge, "How long the last of them took.",
        Seconds(work.last_round));
    add("hxraid_looks_total", kCounter, "Looks at the whole machine since the service's start.",
        static_cast<double>(work.looks));
}

}  // namespace

std::string MetricsText(const Snapshot& snapshot) {
    MetricText text;
    const Machine machine = MachineOf(snapshot.answers);
    AddService(text, snapshot);
    AddQueries(text, snapshot.answers);
    AddConditions(text, snapshot.overview);
    AddAdapterInfo(text, machine, snapshot.facts);
    AddFlash(text, machine);
    AddVirtualDiskInfo(text, machine);
    AddRows(text, kVirtualDiskRows, machine.virtual_disks);
    AddRows(text, kGroupRows, machine.groups);
    AddDiskInfo(text, machine, snapshot.facts);
    AddRows(text, kDiskRows, machine.disks);
    AddRows(text, kBatteryRows, machine.batteries);
    AddRows(text, kElementRows, machine.elements);
    AddStatesOf(text, machine);
    AddTasks(text, snapshot.tasks);
    AddEvents(text, snapshot);
    AddDeliveries(text, snapshot);
    return text.Take();
}

}  // namespace hxservice
