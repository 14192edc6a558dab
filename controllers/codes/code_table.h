// A controller's codes as programs need them that show them: one struct of names and sentences.
//
// What the interface itself fixes (levels, types of elements, severities and classes of events)
// holds for every controller; all else is the choice of whoever makes the controller. So a program
// asks which controller answers before it uses OwnCodes, and uses NoCodes for one it does not know,
// or a table that it has read from a file: spans over strings that whoever has read it keeps.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "codes/named.h"
#include "codes/status.h"

namespace hxcodes {

/// Why a call is refused.
struct RefusalText {
    HX_U32 code;
    std::string_view name;
    std::string_view sentence;
    Fault fault;
};

/// The text of an event.
struct EventText {
    HX_U16 event_class;
    HX_U16 code;
    HX_U8 severity;
    std::string key;       // as the library writes it: EVT_CODE_LD_CREATE
    std::string sentence;  // with the places {object}, {1}, {2}, ... where its values go
};

struct CodeTable {
    std::span<const RefusalText> refusals{};
    std::span<const EventText> events{};  // in the order of the library's texts

    // The controller's own codes.
    std::span<const Named> activities{};
    std::span<const Named> activity_states{};
    std::span<const Named> battery_bits{};
    std::span<const Named> battery_features{};
    std::span<const Named> block_bits{};
    std::span<const Named> cache_bits{};
    std::span<const Named> check_types{};
    std::span<const Named> connections{};
    std::span<const Named> controls{};
    std::span<const Named> devices{};
    std::span<const Named> disk_actions{};
    std::span<const Named> disk_bits{};
    std::span<const Named> disk_features{};
    std::span<const Named> element_states{};
    std::span<const Named> images{};
    std::span<const Named> inits{};
    std::span<const Named> link_speeds{};
    std::span<const Named> powers{};
    std::span<const Named> rebuild_types{};
    std::span<const Named> remap_reasons{};
    std::span<const Named> roundings{};
    std::span<const Named> states{};

    // The interface's codes.
    std::span<const Named> element_types{};
    std::span<const Named> event_classes{};
    std::span<const Named> level_bits{};
    std::span<const Named> levels{};
    std::span<const Named> rate_bits{};
    std::span<const Named> severities{};
};

/// Where the names of a kind of code stand, and what a table in a file calls it.
struct CodeList {
    std::string_view name;
    std::span<const Named> CodeTable::*names;
};

/// Every list of names that is the controller's own.
std::span<const CodeList> CodeLists();

/// The codes of our own controllers.
const CodeTable& OwnCodes();

/// The codes of a controller that nobody knows: the interface's alone.
const CodeTable& NoCodes();

}  // namespace hxcodes
