// What a command is going to do, and doing it: the plan is shown, the question asked, the objects
// looked at again and the change refused when one is not what it was, the commands sent, the result
// told.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_record.h"
#include "nouns/foresee.h"
#include "output/cell.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"

namespace vexorctl {

struct Change {
    std::string what{};                         // "Delete virtual disk a0/vd1 (data1)"
    std::vector<std::string> losses{};          // what will be lost or changed, a line each
    std::string confirm{};                      // the name to be typed; empty: nothing is asked
    std::vector<Command> commands{};            // sent in order, until one fails
    std::string address{};                      // of the object; empty when it is new
    std::optional<std::uint64_t> size_bytes{};  // the resulting size
    bool starts_task = false;                   // or may start one: it is told when it runs
    // Of a change that makes an object: lists those of its kind, to tell the new one's address.
    std::function<std::vector<Address>(Controller&)> created{};
    bool takes_every_disk = false;  // all free disks of the adapter, whichever they are
    // What it is about beside objects of adapters, as sightings call it, and what reads it again.
    std::string beside{};
    std::function<void()> look_beside{};
    // What it makes of the virtual disks of its adapter; null: they stay as they are.
    Alteration alters{};
    // Virtual disks that it makes unusable are no part of what was asked for: without --force it is
    // refused then.
    bool needs_force = false;
    std::vector<std::string> refusals{};  // why the controller will refuse it
    // Where more is to be done than to send the commands one after the other: does it, with what
    // sends a command and throws Failure when it is refused.
    std::function<void(const std::function<void(const Command&)>& send)> act{};
};

/// The columns of what every changing command prints.
std::vector<ColumnInfo> ChangeColumns();

/// Why the controller refused a question, for Change::refusals.
std::string ReasonOf(const Answer& refused);

/// Tells the resulting size that the controller computed, of `sectors` in its answer; or that it
/// refuses; or that the size is not known.
void TellAnsweredSize(const Answer& answer, std::optional<std::uint64_t> sectors, Change& change);

/// Carries the change out, shows it with --dry-run, or writes it to a file with --plan. Where the
/// invocation follows a reviewed plan, it is refused unless it is that plan. Throws Failure.
Exit CarryOut(Invocation& invocation, const Change& change);

/// A command of function F for the object, which most functions name by AdapterID and `id`.
template <class F>
Request<F> RequestFor(const Address& address, Parameter<F> id) {
    return {{F::AdapterID, address.adapter}, {id, address.id}};
}

/// The code of an option's value. Throws UsageError for a name that is none and for every name
/// where the controller's codes are not known; the number itself is taken too.
std::uint64_t CodeOption(Invocation& invocation, std::string_view option, CodeNames names);

/// The code that the controller has for `name`, which the command cannot do without. Throws Failure
/// when it is not known.
std::uint64_t CodeNamed(Controller& controller, CodeNames names, std::string_view name);

/// 1 for "on", 0 for "off"; null when the option was not given.
std::optional<unsigned> SwitchOption(const Invocation& invocation, std::string_view option);

/// The present value of a field that the library sets together with others. Throws Failure when it
/// is unknown, because the command would overwrite it with a value that nobody asked for.
template <class R, class Field>
auto Kept(const Record<R>& record, Field field, const Address& address) {
    auto value = record[field];
    if (!value) {
        throw Failure(Exit::kRefused, address.Text() + ": its " + std::string(field.name) +
                                          " cannot be read and would be overwritten; nothing was "
                                          "done");
    }
    return *std::move(value);
}

/// The addresses of all objects of a kind.
template <auto load>
std::vector<Address> AddressesOf(Controller& controller) {
    std::vector<Address> addresses;
    for (const auto& object : load(controller)) addresses.push_back(object.address);
    return addresses;
}

/// --wait[=TIMEOUT]
inline constexpr OptionRow kWaitOption{
    "--wait", "TIMEOUT", "Wait for the end of the task, at most 90s, 15m or 2h", "", true};

}  // namespace vexorctl
