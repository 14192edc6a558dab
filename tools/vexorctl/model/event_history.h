// What the stored events tell together: how long what lasted, and what has been initialised.
#pragma once

#include <vector>

#include "model/ask_controller.h"
#include "model/initialisations.h"
#include "model/timeline.h"

namespace vexorctl {

struct History {
    std::vector<Period> periods;  // in the order of their beginnings
    Initialisations initialised;
};

/// By all stored events. Throws Failure when the store cannot be read; one event that cannot be had
/// is noted as a fault.
History ReadHistory(Controller& controller);

/// The same, empty where no events can be read or where it is not known what they mean; nothing of
/// it is a fault.
History KnownHistory(Controller& controller);

}  // namespace vexorctl
