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
    {"collect.interval", &Settings::collect_interval, seconds(1), hours(1),
     "The time between two check-ins, from the end of one to the start of the next."},
    {"collect.jitter", &Settings::collect_jitter, milliseconds(0), hours(1),
     "Each wait is longer by a random part of this time, so that many machines that were started "
     "together do not work together."},
    {"watch.interval", &Settings::watch_interval, seconds(5), hours(1),
     "The longest time between two looks at the whole machine. An event makes the service look at "
     "once."},
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
    const auto* const row = std::ranges::find(kRows, value.key, &SettingRow::key);
    if (row == std::end(kRows)) {
        return "there is no key " + Quoted(value.key) + DidYouMean(value.key, Keys());
    }
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
               DurationText(Settings().*row->field) + "\"";
    }
    if (*duration < row->least || *duration > row->most) {
        return Quoted(value.key) + " must be from " + DurationText(row->least) + " to " +
               DurationText(row->most);
    }
    settings.*row->field = *duration;
    return std::nullopt;
}

}  // namespace

std::span<const SettingRow> SettingRows() { return kRows; }

Settings ParseSettings(std::string_view text, const std::string& file) {
    Settings settings;
    std::string complaints;
    std::vector<unsigned> sink_lines;  // where each sink begins
    const auto complain = [&](unsigned line, const std::string& what) {
        complaints +=
            (complaints.empty() ? "" : "\n") + file + ":" + std::to_string(line) + ": " + what;
    };
    try {
        for (const TomlValue& value : vexortools::ParseToml(text)) {
            if (const Complaint what = TakeValue(settings, value)) complain(value.line, *what);
            const std::size_t known = settings.sinks.size();
            if (known > sink_lines.size()) sink_lines.resize(known, value.line);
        }
        for (std::size_t index = 0; index < settings.sinks.size() && complaints.empty(); ++index) {
            if (const Complaint what = CheckSink(settings.sinks[index])) {
                complain(sink_lines[index], *what);
            }
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
