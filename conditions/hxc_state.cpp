// Acknowledgements and silences.
#include "conditions/hxc_state.h"

#include <algorithm>
#include <utility>

namespace hxconditions {

namespace {

// Removes the object from the memory, so that a condition ended by acknowledgement is not found
// again.
void Forget(Memory& memory, const Held& held) {
    const std::string& identity = held.found.object.identity;
    memory.adapters.erase(identity);
    memory.virtual_disks.erase(identity);
    memory.batteries.erase(identity);
    memory.enclosures.erase(identity);
    memory.elements.erase(identity);
    memory.free_disks.erase(identity);
    memory.links.erase(identity);
    if (held.found.code != Code::kEncGone) return;
    std::erase_if(memory.elements,
                  [&](const auto& each) { return each.first.ends_with(" of " + identity); });
}

}  // namespace

void NoteStart(State& state) { state.started.reset(); }

bool EndsByAcknowledgement(const Held& held) {
    return RowOf(held.found.code).ends_by_ack ||
           (held.is_from_memory && held.found.code == Code::kDiskMissing);
}

bool Acknowledge(State& state, Code code, const std::string& identity, const Acknowledgement& ack) {
    const auto held = std::ranges::find_if(state.held, [&](const Held& each) {
        return each.is_shown && each.found.code == code && each.found.object.identity == identity;
    });
    if (held == state.held.end()) return false;
    held->acknowledged = ack;
    if (EndsByAcknowledgement(*held)) Forget(state.memory, *held);
    return true;
}

void Silences(State& state, Silence silence, Ticks duration) {
    silence.until = state.now + std::min(duration, kLongestSilence);
    state.silences.push_back(std::move(silence));
}

std::string KeyOf(Code code, const Object& object) {
    const Row& row = RowOf(code);
    const bool alone = row.family == Family::kNone || row.family == Family::kHindrance;
    const std::string kind =
        alone ? std::string(row.name) : "family " + std::to_string(static_cast<int>(row.family));
    return kind + " of " + object.identity;
}

}  // namespace hxconditions
