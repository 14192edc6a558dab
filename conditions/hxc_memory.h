// The rows that need memory: what was there and is not, what does not move, what was better before.
#pragma once

#include <vector>

#include "conditions/hxc_finding.h"
#include "conditions/hxc_state.h"

namespace hxconditions {

/// Which activities stand, by what was remembered of them.
class RememberedMovement : public Movement {
public:
    RememberedMovement(const Memory& memory, Ticks now) : memory_(memory), now_(now) {}
    bool Stands(const Object& object) const override;

private:
    const Memory& memory_;
    Ticks now_;
};

/// Notes how far each activity has got. To be called before anything is found.
void RememberProgress(Memory& memory, const Answers& answers, const Things& things, Ticks now);

/// What the memory finds wrong with this look.
std::vector<Finding> FindFromMemory(const Memory& memory, const Answers& answers,
                                    const Things& things, Ticks now);

/// Takes what this look has seen into the memory.
void Remember(Memory& memory, const Answers& answers, const Things& things, Ticks now);

}  // namespace hxconditions
