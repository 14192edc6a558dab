// Which virtual disks have been initialised: no record of the controller tells, but the events of
// their creation and of initialisations do.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "model/timeline.h"

namespace vexorctl {

/// Takes the events in the order of their numbers.
class Initialisations {
public:
    void Take(const Happening& event);

    /// Whether the redundancy of the virtual disk has ever been made. Null when no event tells: it
    /// was created before the oldest one or before its adapter was found, events were lost since,
    /// or the end of an initialisation was not told. `runs`: an initialisation runs there now.
    std::optional<bool> Of(const std::string& object, bool runs) const;

private:
    enum class Seen { kNever, kNotTold, kDone };
    struct Fact {
        unsigned adapter;
        Seen seen;
    };
    std::map<std::string, Fact> facts_;
    std::map<unsigned, std::uint64_t> found_;  // when each adapter was found
};

}  // namespace vexorctl
