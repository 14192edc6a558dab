// Every text is written as a JSON string, which YAML takes with all its escapes.
#include "service/generate/alert_rules.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "conditions/hxc_rows.h"

namespace hxservice {

namespace {

namespace hxc = hxconditions;

constexpr char kHead[] =
    "# Written by write_service_files from the table of conditions.\ngroups:\n";

// What a rule says for what only the service knows of the one condition.
const std::map<std::string_view, std::string_view, std::less<>> kInRules = {
    {"a", "{{ $labels.object }}"},
    {"advice", "Look at what vexorctl check says there"},
    {"enclosure", "{{ $labels.object }}"},
    {"folder", "/opt/kestrel/raid/db"},
    {"lost", "the lost disk"},
    {"needed", "the size of those beside it"},
    {"type", "element"},
    {"wait", "Wait until it is charged"},
};

// The text with its placeholders replaced; one that is missing above stays and fails the test of
// the rules.
std::string InRules(std::string_view text) {
    std::string filled;
    while (!text.empty()) {
        const std::size_t open = text.find('{');
        const std::size_t close = text.find('}', open);
        filled += text.substr(0, open);
        if (open == std::string_view::npos || close == std::string_view::npos) break;
        const auto found = kInRules.find(text.substr(open + 1, close - open - 1));
        filled += found == kInRules.end() ? text.substr(open, close + 1 - open) : found->second;
        text.remove_prefix(close + 1);
    }
    return filled;
}

std::string QuotedYaml(const std::string& text) { return nlohmann::json(text).dump(); }

// "VD_NO_REDUNDANCY": "HxraidVdNoRedundancy".
std::string AlertNameOf(std::string_view code) {
    std::string name = "Hxraid";
    bool begins = true;
    for (const char each : code) {
        if (each != '_') {
            const int letter = begins ? each : std::tolower(static_cast<unsigned char>(each));
            name += static_cast<char>(letter);
        }
        begins = each == '_';
    }
    return name;
}

struct Rule {
    std::string name;
    std::string expression;
    std::string wait;      // for how long it must hold
    std::string keep;      // for how long it goes on after that
    std::string severity;  // empty: that of the series
    std::string summary;   // the same for all, so that alerts can be grouped
    std::string description;
    std::string next_step;
    std::string doc;
};

std::string TextOf(const Rule& rule) {
    std::string text =
        "      - alert: " + rule.name + "\n        expr: " + QuotedYaml(rule.expression) + "\n";
    if (!rule.wait.empty()) text += "        for: " + rule.wait + "\n";
    if (!rule.keep.empty()) text += "        keep_firing_for: " + rule.keep + "\n";
    if (!rule.severity.empty()) {
        text += "        labels:\n          severity: " + rule.severity + "\n";
    }
    return text + "        annotations:\n          summary: " + QuotedYaml(rule.summary) +
           "\n          description: " + QuotedYaml(rule.description) +
           "\n          next_step: " + QuotedYaml(rule.next_step) +
           "\n          runbook_url: " + QuotedYaml(rule.doc) + "\n";
}

// What somebody has silenced or acknowledged on the machine is not alerted elsewhere either.
std::string UnlessQuiet(const std::string& code) {
    const std::string of = "{code=\"" + code + "\"} == 1";
    return "hxraid_condition" + of + " unless (hxraid_condition_silenced" + of +
           " or hxraid_condition_acknowledged" + of + ")";
}

Rule RuleOf(const hxc::Row& row) {
    const std::string code(row.name);
    const std::string meaning(row.meaning);
    std::string summary = meaning.substr(0, meaning.find(". "));
    if (summary.ends_with('.')) summary.pop_back();
    return {.name = AlertNameOf(code),
            .expression = UnlessQuiet(code),
            .wait = "",  // the service has waited already
            .keep = "5m",
            .severity = "",
            .summary = summary,
            .description = "{{ $labels.object }} of {{ $labels.instance }}: " + meaning,
            .next_step = InRules(row.next_step),
            .doc = "man:" + hxc::ManualOf(row)};
}

std::vector<Rule> RulesOfTheService() {
    const std::string manual = "man:hxraidsvc(8)";
    return {
        {.name = "HxraidServiceStale",
         .expression = "time() - hxraid_snapshot_timestamp_seconds > 3 * "
                       "hxraid_round_interval_seconds",
         .wait = "2m",
         .keep = "",
         .severity = "warning",
         .summary = "The event service has not reported for more than three rounds",
         .description = "hxraidsvc of {{ $labels.instance }} has not reported for "
                        "{{ $value | humanizeDuration }}: what is shown of it may be old.",
         .next_step = "systemctl status hxraidsvc",
         .doc = manual},
        {.name = "HxraidAbsent",
         .expression = "absent(hxraid_snapshot_timestamp_seconds)",
         .wait = "10m",
         .keep = "",
         .severity = "warning",
         .summary = "No machine tells anything of its RAID controllers",
         .description = "There is no metric of any hxraidsvc: is it running, and does the node "
                        "exporter read its folder of text files?",
         .next_step = "systemctl status hxraidsvc prometheus-node-exporter",
         .doc = manual},
        {.name = "HxraidCollectFailed",
         .expression = "hxraid_collect_success == 0",
         .wait = "5m",
         .keep = "",
         .severity = "warning",
         .summary = "Something of a RAID controller cannot be read",
         .description = "{{ $labels.query }} of adapter {{ $labels.adapter }} of "
                        "{{ $labels.instance }} cannot be read: its series are missing.",
         .next_step = "vexorctl check -v",
         .doc = manual},
    };
}

struct Recording {
    const char* name;
    const char* expression;
};
constexpr Recording kRecordings[] = {
    {"severity:hxraid_conditions:sum", "sum by (severity) (hxraid_conditions)"},
    {"instance_severity:hxraid_conditions:sum", "sum by (instance, severity) (hxraid_conditions)"},
    {"code_severity:hxraid_condition:count", "count by (code, severity) (hxraid_condition)"},
    {"state:hxraid_virtual_disks:sum", "sum by (state) (hxraid_virtual_disk_state)"},
    {"state:hxraid_disks:sum", "sum by (state) (hxraid_disk_state)"},
    {"instance:hxraid_virtual_disks_unprotected:count",
     "count by (instance) (hxraid_virtual_disk_survives == 0 and "
     "hxraid_virtual_disk_disks_active < hxraid_virtual_disk_disks_required)"},
    {"instance:hxraid_task_left_seconds:max", "max by (instance) (hxraid_task_left_seconds)"},
    {"class_severity:hxraid_events:rate1h",
     "sum by (class, severity) (rate(hxraid_events_total[1h]))"},
    {"instance:hxraid_round_seconds:avg5m",
     "rate(hxraid_round_seconds_total[5m]) / rate(hxraid_rounds_total[5m])"},
};

}  // namespace

std::string AlertRules() {
    std::string text = std::string(kHead) + "  - name: hxraid-conditions\n    rules:\n";
    const std::vector<Rule> own = RulesOfTheService();
    for (const hxc::Row& row : hxc::Rows()) {
        const Rule rule = RuleOf(row);
        // A service that is silent cannot tell it: the rule of that name looks at the time.
        const bool is_own = std::ranges::find(own, rule.name, &Rule::name) != own.end();
        if (hxc::LevelOf(row) != hxc::Level::kInfo && !is_own) text += TextOf(rule);
    }
    text += "  - name: hxraid-service\n    rules:\n";
    for (const Rule& rule : own) text += TextOf(rule);
    return text;
}

std::string RecordingRules() {
    std::string text = std::string(kHead) + "  - name: hxraid-sums\n    rules:\n";
    for (const Recording& each : kRecordings) {
        text += std::string("      - record: ") + each.name +
                "\n        expr: " + QuotedYaml(each.expression) + "\n";
    }
    return text;
}

}  // namespace hxservice
