// The library as the commands see it: ask one function, read one list, with what went wrong kept
// beside what was found.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/exit_code.h"
#include "model/fault.h"
#include "model/library_session.h"
#include "model/result_tree.h"

namespace vexorctl {

/// A request's children, in order.
using Fields = std::vector<std::pair<std::string_view, std::string>>;

struct Command {
    std::string_view function;
    Fields fields;
};

/// A paged list of the library: its function, the element of one item, and the path of the field
/// that holds an item's ID.
struct ListSource {
    std::string_view function;
    std::string_view item;
    std::string_view id;
};

/// The command's text, as it is sent.
std::string CommandText(const Command& command);

struct Answer {
    Exit exit = Exit::kDone;
    std::uint64_t status = 0;  // RetVal, where it is a status
    Value result;
    std::string complaint;  // why it is not kDone, as a sentence
};

/// What went wrong, as documents tell it: the function, the code and its name.
Fault FaultOf(const Command& command, const Answer& answer);

/// The result's RetVal; 0 where it is a text, a count or a constant instead of a status.
std::uint64_t StatusOf(const Value& result);

/// "The adapter has no disk with that ID. (no_disk, code 205)"; "code 77" where it has no name.
std::string RefusalText(std::uint64_t status);

class Controller {
public:
    Controller() = default;

    /// Sends one command and reads its result. Never throws for what the controller says.
    Answer Ask(const Command& command);

    /// Like Ask, but a failure is noted as a fault of `address` and null is returned.
    std::optional<Value> Get(std::string_view address, const Command& command);

    /// All items of a paged list, in the order of the controller. A page that did not fit or cannot
    /// be parsed is asked for again in smaller ones, down to single items. An item that cannot be
    /// parsed even so is left out and noted as a fault, and the list goes on behind it. Any other
    /// failure is noted too and ends the list.
    std::vector<Value> List(unsigned adapter, const ListSource& source);

    /// The numbers of the adapters there are.
    const std::vector<unsigned>& Adapters();

    /// The adapters that the last Select chose; all of them when none was.
    const std::vector<unsigned>& Selected();

    /// Restricts Selected to these; one that is not there becomes a fault with Exit::kNoObject.
    void Select(const std::vector<unsigned>& adapters);

    /// Remembers the change counters as they are; CountersStand tells whether they still are so.
    void RememberCounters();
    bool CountersStand();

    /// Notes what went wrong with one object.
    void Note(Fault fault, Exit exit);

    std::vector<Fault>& faults() { return faults_; }
    Exit exit() const { return exit_; }

private:
    Session& Opened();
    void NoteAnswer(std::string_view address, std::string_view function, const Answer& answer);
    void NoteUnreadable(std::string_view address, const ListSource& source, std::uint64_t index,
                        const Answer& answer);

    std::optional<Session> session_;
    std::optional<std::vector<unsigned>> adapters_;
    std::optional<std::vector<unsigned>> selected_;
    std::optional<std::string> counters_;
    bool chosen_ = false;  // by the user: then a function that an adapter lacks is a fault
    std::vector<Fault> faults_;
    Exit exit_ = Exit::kDone;
};

}  // namespace vexorctl
