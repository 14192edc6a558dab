// The service's settings: one table of keys reads the file, checks it, and makes its manual page.
#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "common/duration.h"
#include "conditions/hxc_overview.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

using vexortools::Duration;

struct Settings {
    Duration collect_interval = std::chrono::seconds(10);
    Duration collect_jitter = std::chrono::seconds(1);
    Duration watch_interval = std::chrono::seconds(60);
    bool metrics_textfile = true;
    std::string metrics_listen{};  // empty: on nothing
    std::vector<SinkSettings> sinks{};
    hxconditions::Settings conditions{};

    bool operator==(const Settings&) const = default;
};

/// A key of the file that is neither of a sink nor a condition.
struct SettingRow {
    std::string_view key;  // with its table: "collect.interval"
    std::variant<Duration Settings::*, bool Settings::*, std::string Settings::*> field;
    Duration least{0}, most{0};                                                // of a duration
    std::optional<std::string> (*why_not)(const std::string& text) = nullptr;  // of a text
    std::string_view meaning;  // for the manual page, as sentences
};
/// What such a key may be, with its default: "A duration from 1s to 1h; 10s when it is left out."
std::string ValuesOf(const SettingRow& row);
std::span<const SettingRow> SettingRows();

/// The file cannot be used; what() has a line "FILE:LINE: WHAT" for each error.
struct SettingsError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The settings in that text; `file` is its name in messages. Throws SettingsError.
Settings ParseSettings(std::string_view text, const std::string& file);

enum class Missing { kDefaults, kError };

/// The settings of the file. One that does not exist is an error or means the defaults. Throws
/// SettingsError.
Settings ReadSettings(const std::string& path, Missing missing);

}  // namespace hxservice
