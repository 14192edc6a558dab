// The table [conditions] of the event service's settings: how grave a condition is here. The
// service and vexorctl read it alike.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/toml.h"
#include "conditions/hxc_overview.h"

namespace vexorctl {

inline constexpr std::string_view kConditionsTable = "conditions";

/// Whether it is a key of that table.
bool IsConditionLevel(const vexortools::TomlValue& value);

/// Takes up such a key: CODE = "critical", "warning", "info" or "off". Returns what is wrong with
/// it.
std::optional<std::string> TakeConditionLevel(hxconditions::Settings& settings,
                                              const vexortools::TomlValue& value);

struct ConditionLevels {
    hxconditions::Settings settings;
    std::string complaint;   // why the file's are not used; empty: they are, or there is none
    bool is_denied = false;  // the file may not be read: who may is the event service
};

/// Those of /etc/hxraid/hxraidsvc.conf. Of a file with an error none is used.
ConditionLevels ReadConditionLevels();

}  // namespace vexorctl
