// Which conditions an event tells of: by the columns of the controllers' table of events.
#pragma once

#include <string_view>
#include <vector>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_things.h"

namespace hxconditions {

/// Names of conditions with blanks between them.
struct EventCodes {
    std::string_view raises;
    std::string_view clears;
};
EventCodes CodesOf(const Event& event);

std::vector<Code> CodesIn(std::string_view names);
bool Raises(const Event& event, Code code);
bool Clears(const Event& event, Code code);

/// What the event is of; as it is listed, or by its address alone where it is not.
Object ObjectOf(const Event& event, const Things& things);

/// The activity whose step the event tells of; 0 where there is none.
unsigned ActivityOf(const Event& event);

}  // namespace hxconditions
