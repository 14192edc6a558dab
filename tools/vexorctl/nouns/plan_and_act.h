// What a command is going to do, and doing it: the plan is shown, the question asked, the change
// refused when something has moved since the look, the commands sent, the result told.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "output/cell.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"

namespace vexorctl {

struct Change {
    std::string what;                 // "Delete virtual disk a0/vd1 (data1)"
    std::vector<std::string> losses;  // what will be lost or changed, a line each
    std::string confirm;              // the name to be typed; empty: nothing is asked
    std::vector<Command> commands;    // sent in order, until one fails
    std::string address;              // of the object; when it is new, `find` tells it afterwards
    std::optional<std::uint64_t> size_bytes;  // the resulting size
    bool starts_task = false;                 // or may start one: it is told when it runs
    std::function<std::string()> find{};
    std::string image_file{};        // that goes to or comes from the flash
    std::uint64_t image_pieces = 0;  // 0: their number is not known
};

/// The columns of what every changing command prints.
std::vector<ColumnInfo> ChangeColumns();

/// Carries the change out, or shows it with --dry-run. Throws Failure.
Exit CarryOut(Invocation& invocation, const Change& change);

/// The fields AdapterID and `id`, by which most functions name their object.
Fields AddressFields(const Address& address, std::string_view id);

/// The code of an option's value. Throws UsageError for a name that is none; the number itself is
/// taken too.
std::string CodeOption(const Invocation& invocation, std::string_view option,
                       std::span<const hxcodes::Named> names);

/// "1" for "on", "0" for "off"; `otherwise` when the option was not given.
std::string SwitchOption(const Invocation& invocation, std::string_view option,
                         std::uint64_t otherwise);

/// --wait[=TIMEOUT]
inline constexpr OptionRow kWaitOption{
    "--wait", "TIMEOUT", "Wait for the end of the task, at most 90s, 15m or 2h", "", true};

}  // namespace vexorctl
