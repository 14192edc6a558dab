#include "service/hxs_settings.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <variant>
#include <vector>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/read_file.h"
#include "common/toml.h"
#include "model/condition_levels.h"
#include "service/hxs_listener.h"

namespace hxservice {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;
using vexortools::DurationText;
using vexortools::EmptyTomlTable;
using vexortools::Quoted;
using vexortools::TomlValue;

constexpr SettingRow kRows[] = {
    {"collect.interval", &Settings::collect_interval, seconds(1), hours(1), nullptr,
     "The time between two check-ins, from the end of one to the start of the next."},
    {"collect.jitter", &Settings::collect_jitter, milliseconds(0), hours(1), nullptr,
     "Each wait is longer by a random part of this time, so that many machines that were started "
     "together do not work together."},
    {"watch.interval", &Settings::watch_interval, seconds(5), hours(1), nullptr,
     "The longest time between two looks at the whole machine. An event makes the service look at "
     "once."},
    {"metrics.textfile",
     &Settings::metrics_textfile,
     {},
     {},
     nullptr,
     "Whether the metrics are written for the node exporter. A change holds from the next start "
     "on."},
    {"metrics.listen",
     &Settings::metrics_listen,
     {},
     {},
     WhyNoListenAddress,
     "Where the metrics can be asked for by HTTP, under /metrics: an address of this machine alone "
     "with a port, such as \"127.0.0.1:9834\", or \"systemd\" for the socket that "
     "hxraidsvc-metrics.socket opens. It needs metrics.textfile = false: a Prometheus that asks "
     "for both would have every series twice. A change holds from the next start on."},
};

constexpr std::size_t kMostBytes = std::size_t{1} << 20;

using Complaint = std::optional<std::string>;

std::vector<std::string_view> Keys() {
    std::vector<std::string_view> keys;
    for (const SettingRow& row : kRows) keys.push_back(row.key);
    return keys;
}

std::vector<std::string_view> Tables() {
    std::vector<std::string_view> tables;
    for (const SettingRow& row : kRows) tables.push_back(row.key.substr(0, row.key.find('.')));
    tables.emplace_back("sink");
    tables.emplace_back(vexorctl::kConditionsTable);
    return tables;
}

std::string DidYouMean(const std::string& typed, const std::vector<std::string_view>& names) {
    const std::string_view nearest = vexortools::NearestName(typed, names);
    return nearest.empty() ? "" : "; did you mean " + Quoted(nearest) + "?";
}

Complaint TakeInto(Duration& field, const SettingRow& row, const TomlValue& value) {
    const auto* const text = std::get_if<std::string>(&value.value);
    std::optional<Duration> duration;
    if (text != nullptr) {
        try {
            duration = vexortools::ReadDuration(*text);
        } catch (const vexortools::UsageError& failure) {
            return Quoted(value.key) + ": " + failure.what();
        }
    }
    if (!duration) {
        return Quoted(value.key) + " must be a duration in quotation marks, such as \"" +
               DurationText(field) + "\"";
    }
    if (*duration < row.least || *duration > row.most) {
        return Quoted(value.key) + " must be from " + DurationText(row.least) + " to " +
               DurationText(row.most);
    }
    field = *duration;
    return std::nullopt;
}

Complaint TakeInto(bool& field, const SettingRow& /*row*/, const TomlValue& value) {
    const auto* const flag = std::get_if<bool>(&value.value);
    if (flag == nullptr) return Quoted(value.key) + " must be true or false";
    field = *flag;
    return std::nullopt;
}

Complaint TakeInto(std::string& field, const SettingRow& row, const TomlValue& value) {
    const auto* const text = std::get_if<std::string>(&value.value);
    if (text == nullptr) return Quoted(value.key) + " must be a text in quotation marks";
    if (const Complaint why = row.why_not(*text)) return Quoted(value.key) + " " + *why;
    field = *text;
    return std::nullopt;
}

std::string ValueText(Duration value) { return DurationText(value); }
std::string ValueText(bool value) { return value ? "true" : "false"; }
std::string ValueText(const std::string& value) { return value.empty() ? "none" : value; }

Complaint TakeValue(Settings& settings, const TomlValue& value) {
    if (vexorctl::IsConditionLevel(value)) {
        return vexorctl::TakeConditionLevel(settings.conditions, value);
    }
    if (value.key.starts_with("sink.")) return TakeSinkValue(settings.sinks, value);
    if (std::holds_alternative<EmptyTomlTable>(value.value)) {
        const std::vector<std::string_view> tables = Tables();
        if (std::ranges::find(tables, value.key) != tables.end()) return std::nullopt;
        return "there is no table " + Quoted(value.key) + DidYouMean(value.key, tables);
    }
    if (value.key == "sink") return "a sink is a table with a name, such as [sink.page]";
    const auto* const row = std::ranges::find(kRows, value.key, &SettingRow::key);
    if (row == std::end(kRows)) {
        return "there is no key " + Quoted(value.key) + DidYouMean(value.key, Keys());
    }
    return std::visit([&](auto field) { return TakeInto(settings.*field, *row, value); },
                      row->field);
}

}  // namespace

std::span<const SettingRow> SettingRows() { return kRows; }

std::string ValuesOf(const SettingRow& row) {
    std::string values = "A text";
    if (std::holds_alternative<bool Settings::*>(row.field)) values = "True or false";
    if (std::holds_alternative<Duration Settings::*>(row.field)) {
        values = "A duration from " + DurationText(row.least) + " to " + DurationText(row.most);
    }
    const Settings defaults;
    return values + "; " +
           std::visit([&](auto field) { return ValueText(defaults.*field); }, row.field) +
           " when it is left out.";
}

Settings ParseSettings(std::string_view text, const std::string& file) {
    Settings settings;
    std::string complaints;
    std::vector<unsigned> sink_lines;  // where each sink begins
    unsigned listen_line = 0;
    const auto complain = [&](unsigned line, const std::string& what) {
        complaints +=
            (complaints.empty() ? "" : "\n") + file + ":" + std::to_string(line) + ": " + what;
    };
    try {
        for (const TomlValue& value : vexortools::ParseToml(text)) {
            if (const Complaint what = TakeValue(settings, value)) complain(value.line, *what);
            if (value.key == "metrics.listen") listen_line = value.line;
            const std::size_t known = settings.sinks.size();
            if (known > sink_lines.size()) sink_lines.resize(known, value.line);
        }
        for (std::size_t index = 0; index < settings.sinks.size() && complaints.empty(); ++index) {
            if (const Complaint what = CheckSink(settings.sinks[index])) {
                complain(sink_lines[index], *what);
            }
        }
        if (!settings.metrics_listen.empty() && settings.metrics_textfile) {
            complain(
                listen_line,
                "\"metrics.listen\" needs \"metrics.textfile\" = false: a Prometheus that asks "
                "for both would have every series twice");
        }
    } catch (const vexortools::TomlError& error) {
        complain(error.line, error.what());
    }
    if (!complaints.empty()) throw SettingsError(complaints);
    return settings;
}

Settings ReadSettings(const std::string& path, Missing missing) {
    try {
        return ParseSettings(
            vexortools::ReadFile(path.c_str(), vexortools::FileKind::kRegular, kMostBytes), path);
    } catch (const vexortools::FileError& error) {
        const bool is_missing = error.error == ENOENT || error.error == ENOTDIR;
        if (is_missing && missing == Missing::kDefaults) return {};
        throw SettingsError(path + ": " + error.what());
    }
}

}  // namespace hxservice
