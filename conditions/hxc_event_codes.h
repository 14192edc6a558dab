// The conditions that an event starts or ends, from the table of events of our own controllers.
#pragma once

#include <string_view>
#include <vector>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_things.h"

namespace hxconditions {

/// Names of conditions, separated by blanks.
struct EventCodes {
    std::string_view raises;
    std::string_view clears;
};
EventCodes CodesOf(const Event& event);

std::vector<Code> CodesIn(std::string_view names);
bool Raises(const Event& event, Code code);
bool Clears(const Event& event, Code code);

/// The object of an event: the listed one, or one with only an address when it is not listed.
Object ObjectOf(const Event& event, const Things& things);

/// The activity whose step the event reports; 0 when there is none.
unsigned ActivityOf(const Event& event);

}  // namespace hxconditions
