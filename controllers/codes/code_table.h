// A controller's codes for programs that print them: one struct of names and sentences.
//
// The interface fixes levels, types of elements, and severities and classes of events for every
// controller; all other codes are each maker's choice. So a program checks which controller answers
// before it uses OwnCodes; for an unknown one it uses NoCodes or a table read from a file, whose
// reader owns the strings behind the spans.
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
    std::string key;       // as the library prints it: EVT_CODE_LD_CREATE
    std::string sentence;  // with the placeholders {object}, {1}, {2}, ...
};

struct CodeTable {
    std::span<const RefusalText> refusals{};
    std::span<const EventText> events{};  // sorted like the library's texts

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

/// The member with the names of a kind of code, and its name in a table file.
struct CodeList {
    std::string_view name;
    std::span<const Named> CodeTable::*names;
};

/// Every list of names that depends on the controller.
std::span<const CodeList> CodeLists();

/// The codes of our own controllers.
const CodeTable& OwnCodes();

/// The codes for an unknown controller: only those of the interface.
const CodeTable& NoCodes();

}  // namespace hxcodes
