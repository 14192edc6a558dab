#include "service/generate/dashboard.h"

#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "conditions/hxc_rows.h"

namespace hxservice {

namespace {

namespace hxc = hxconditions;
using PanelJson = nlohmann::ordered_json;

constexpr unsigned kColumns = 24;  // of Grafana's grid

struct Panel {
    const char* title;
    const char* type;
    const char* expression;
    const char* legend;  // empty: a table, of the series as they are now
    const char* unit;
    unsigned width, height;
};
// From left to right, and then down.
constexpr Panel kPanels[] = {
    {"Critical", "stat", "sum(hxraid_conditions{severity=\"critical\",instance=~\"$instance\"})",
     "critical", "none", 4, 4},
    {"Unknown", "stat", "sum(hxraid_conditions{severity=\"unknown\",instance=~\"$instance\"})",
     "unknown", "none", 4, 4},
    {"Warning", "stat", "sum(hxraid_conditions{severity=\"warning\",instance=~\"$instance\"})",
     "warning", "none", 4, 4},
    {"Machines", "stat", "count(hxraid_snapshot_timestamp_seconds{instance=~\"$instance\"})",
     "machines", "none", 4, 4},
    {"Virtual disks", "stat",
     "sum(hxraid_virtual_disk_state{state=\"optimal\",instance=~\"$instance\"})", "optimal", "none",
     4, 4},
    {"Age of the newest report", "stat",
     "max(time() - hxraid_snapshot_timestamp_seconds{instance=~\"$instance\"})", "oldest", "s", 4,
     4},
    {"What is wrong", "table", "hxraid_condition{instance=~\"$instance\"}", "", "none", 24, 9},
    {"Virtual disks: how many more disks may fail", "table",
     "hxraid_virtual_disk_survives{instance=~\"$instance\"} * on (instance, object) group_left "
     "(name, level) hxraid_virtual_disk_info",
     "", "none", 12, 8},
    {"Activities", "timeseries", "hxraid_task_progress_ratio{instance=~\"$instance\"}",
     "{{instance}} {{object}} {{activity}}", "percentunit", 12, 8},
    {"Time left", "timeseries", "hxraid_task_left_seconds{instance=~\"$instance\"}",
     "{{instance}} {{object}} {{activity}}", "s", 12, 8},
    {"Disks by state", "timeseries",
     "sum by (state) (hxraid_disk_state{instance=~\"$instance\"}) > 0", "{{state}}", "none", 12, 8},
    {"Remapped sectors", "timeseries",
     "topk(10, hxraid_disk_remapped{instance=~\"$instance\"}) > 0", "{{instance}} {{object}}",
     "none", 12, 8},
    {"Temperatures", "timeseries",
     "hxraid_element_celsius{instance=~\"$instance\"} or "
     "hxraid_battery_celsius{instance=~\"$instance\"}",
     "{{instance}} {{object}}", "celsius", 12, 8},
    {"Fans", "timeseries", "hxraid_element_rpm{instance=~\"$instance\"}", "{{instance}} {{object}}",
     "rotrpm", 12, 8},
    {"Batteries", "timeseries", "hxraid_battery_charge_ratio{instance=~\"$instance\"}",
     "{{instance}} {{object}}", "percentunit", 12, 8},
    {"Events by severity", "timeseries",
     "sum by (severity) (increase(hxraid_events_total{instance=~\"$instance\"}[1h]))",
     "{{severity}}", "none", 12, 8},
    {"How long a round takes", "timeseries", "hxraid_last_round_seconds{instance=~\"$instance\"}",
     "{{instance}}", "s", 12, 8},
};

// What a code means, from the table of conditions.
PanelJson Meanings() {
    PanelJson options;
    for (const hxc::Row& row : hxc::Rows()) {
        const std::string_view meaning = row.meaning.substr(0, row.meaning.find(". "));
        options[std::string(row.name)] = {
            {"text", std::string(row.name) + ": " + std::string(meaning)}};
    }
    PanelJson mapping = {{"type", "value"}, {"options", std::move(options)}};
    return {
        {{"matcher", {{"id", "byName"}, {"options", "code"}}},
         {"properties", PanelJson::array({{{"id", "mappings"},
                                           {"value", PanelJson::array({std::move(mapping)})}}})}}};
}

PanelJson JsonOf(const Panel& panel, std::size_t id, unsigned x, unsigned y) {
    const bool is_table = panel.legend[0] == '\0';
    PanelJson target = {{"refId", "A"}, {"expr", panel.expression}, {"instant", is_table}};
    target[is_table ? "format" : "legendFormat"] = is_table ? "table" : panel.legend;
    PanelJson json = {
        {"id", id},
        {"title", panel.title},
        {"type", panel.type},
        {"datasource", {{"type", "prometheus"}, {"uid", "${source}"}}},
        {"gridPos", {{"x", x}, {"y", y}, {"w", panel.width}, {"h", panel.height}}},
        {"fieldConfig", {{"defaults", {{"unit", panel.unit}}}, {"overrides", PanelJson::array()}}},
        {"targets", PanelJson::array({std::move(target)})}};
    if (is_table) json["fieldConfig"]["overrides"] = Meanings();
    return json;
}

PanelJson Variables() {
    const PanelJson source = {{"name", "source"}, {"type", "datasource"}, {"query", "prometheus"}};
    const PanelJson instance = {{"name", "instance"},
                                {"type", "query"},
                                {"datasource", {{"type", "prometheus"}, {"uid", "${source}"}}},
                                {"query", "label_values(hxraid_build_info, instance)"},
                                {"multi", true},
                                {"includeAll", true},
                                {"allValue", ".*"},
                                {"refresh", 2}};
    return PanelJson::array({source, instance});
}

}  // namespace

std::string Dashboard() {
    PanelJson panels = PanelJson::array();
    unsigned x = 0;
    unsigned y = 0;
    for (const Panel& panel : kPanels) {
        panels.push_back(JsonOf(panel, panels.size() + 1, x, y));
        x += panel.width;
        if (x < kColumns) continue;
        x = 0;
        y += panel.height;
    }
    const PanelJson json = {{"uid", "hxraid"},
                            {"title", "RAID controllers"},
                            {"tags", {"hxraid"}},
                            {"schemaVersion", 37},
                            {"editable", true},
                            {"refresh", "30s"},
                            {"time", {{"from", "now-6h"}, {"to", "now"}}},
                            {"templating", {{"list", Variables()}}},
                            {"panels", std::move(panels)}};
    return json.dump(2) + "\n";
}

}  // namespace hxservice
