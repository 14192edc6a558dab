// The command tree: every noun, and the list of where each one's commands are. A noun has one
// source, noun_NAME.cpp, which defines Commands() of its namespace and nothing else that others
// see; so it has no header of its own.
#pragma once

#include <span>

#include "shell/command_rows.h"

namespace vexorctl {

/// The nouns, in the order of the help.
std::span<const NounRow> Nouns();

// clang-format off
namespace adapter_noun { std::span<const CommandRow> Commands(); }
namespace enclosure_noun { std::span<const CommandRow> Commands(); }
namespace disk_noun { std::span<const CommandRow> Commands(); }
namespace vd_noun { std::span<const CommandRow> Commands(); }
namespace dg_noun { std::span<const CommandRow> Commands(); }
namespace task_noun { std::span<const CommandRow> Commands(); }
namespace battery_noun { std::span<const CommandRow> Commands(); }
namespace flash_noun { std::span<const CommandRow> Commands(); }
namespace event_noun { std::span<const CommandRow> Commands(); }
namespace alert_noun { std::span<const CommandRow> Commands(); }
namespace user_noun { std::span<const CommandRow> Commands(); }
namespace counters_noun { std::span<const CommandRow> Commands(); }
namespace config_noun { std::span<const CommandRow> Commands(); }
namespace overview_noun { std::span<const CommandRow> Commands(); }
namespace apply_noun { std::span<const CommandRow> Commands(); }
namespace check_noun { std::span<const CommandRow> Commands(); }
namespace risk_noun { std::span<const CommandRow> Commands(); }
namespace timeline_noun { std::span<const CommandRow> Commands(); }
namespace call_noun { std::span<const CommandRow> Commands(); }
namespace xml_noun { std::span<const CommandRow> Commands(); }
namespace tape_noun { std::span<const CommandRow> Commands(); }
namespace support_bundle_noun { std::span<const CommandRow> Commands(); }
namespace completion_noun { std::span<const CommandRow> Commands(); }
namespace help_noun { std::span<const CommandRow> Commands(); }
namespace version_noun { std::span<const CommandRow> Commands(); }
// clang-format on

}  // namespace vexorctl
