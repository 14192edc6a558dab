// The rows that need memory: objects that are gone, activities that stand still, values that were
// better before.
#pragma once

#include <vector>

#include "conditions/hxc_finding.h"
#include "conditions/hxc_state.h"

namespace hxconditions {

/// Tells which activities stand still, from the remembered progress.
class RememberedMovement : public Movement {
public:
    RememberedMovement(const Memory& memory, Ticks now) : memory_(memory), now_(now) {}
    bool Stands(const Object& object) const override;

private:
    const Memory& memory_;
    Ticks now_;
};

/// Stores the progress of each activity. Call it before the functions that find.
void RememberProgress(Memory& memory, const Answers& answers, const Things& things, Ticks now);

/// The findings from comparing this look with the memory.
std::vector<Finding> FindFromMemory(const Memory& memory, const Answers& answers,
                                    const Things& things, Ticks now);

/// Stores what this look has seen in the memory.
void Remember(Memory& memory, const Answers& answers, const Things& things, Ticks now);

}  // namespace hxconditions
