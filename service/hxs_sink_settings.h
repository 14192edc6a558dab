// The settings of the sinks, to which alerts are sent: one table of keys reads them, checks them,
// and makes their part of the manual page.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "common/duration.h"
#include "common/toml.h"
#include "conditions/hxc_rows.h"

namespace hxservice {

enum class SinkKind : std::uint8_t { kCommand, kJournal, kMail, kWebhook };

/// How often a condition that stays is sent.
enum class Policy : std::uint8_t {
    kOnce,         // never again
    kAlways,       // when what explains it changes, and daily
    kDaily,        // each day
    kDiminishing,  // after 1, 2, 4, ... days
};

struct SinkSettings {
    std::string name;  // "pager" of the table [sink.pager]
    std::optional<SinkKind> kind;
    Policy policy = Policy::kOnce;
    hxconditions::Level level = hxconditions::Level::kMinorUnknown;  // the least grave one sent
    std::int64_t queue = 200;                                        // so many alerts wait at most
    vexortools::Duration limit = std::chrono::seconds(30);
    std::vector<std::string> command;
    std::string program = "/usr/sbin/sendmail";
    std::string from;
    std::vector<std::string> to;
    std::string url;
    std::string ca_file;
    std::string secret_file;

    bool operator==(const SinkSettings&) const = default;
};

/// A key of a sink's table. The alternatives say how its value is written.
struct SinkRow {
    std::string_view key;
    std::variant<std::string SinkSettings::*, std::vector<std::string> SinkSettings::*,
                 std::int64_t SinkSettings::*, vexortools::Duration SinkSettings::*,
                 std::optional<SinkKind> SinkSettings::*, Policy SinkSettings::*,
                 hxconditions::Level SinkSettings::*>
        field;
    std::string_view of;            // the kind of sink that has it; empty: every kind
    std::string_view values;        // which values it takes, for the manual page
    std::string_view meaning;       // as sentences
    std::string_view example = {};  // of a list
};
std::span<const SinkRow> SinkRows();

std::string_view NameOf(SinkKind kind);

/// Takes a value whose key is "sink.NAME.KEY" into its sink, which is made when it is new. Returns
/// what is wrong with it.
std::optional<std::string> TakeSinkValue(std::vector<SinkSettings>& sinks,
                                         const vexortools::TomlValue& value);

/// What is wrong with a sink after all its values were taken.
std::optional<std::string> CheckSink(const SinkSettings& sink);

}  // namespace hxservice
