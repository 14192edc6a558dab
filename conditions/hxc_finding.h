// What one look at the machine finds wrong, row by row, before any memory is asked.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_object.h"
#include "conditions/hxc_rows.h"
#include "conditions/hxc_text.h"
#include "conditions/hxc_things.h"

namespace hxconditions {

/// A member that a virtual disk or disk group has lost.
struct LostMember {
    std::string identity;  // of the disk; empty where none is known
    std::string address;

    bool operator==(const LostMember&) const = default;
};

struct Finding {
    Code code = Code::kNotWatched;
    Object object{};
    Values values{};
    std::uint64_t count = 0;  // grows when it gets worse: lost blocks, lost members
    std::vector<LostMember> lost{};
    std::vector<std::string> links{};  // identities of the things whose conditions it takes up
    std::optional<Damping> up{};       // instead of the row's
};

/// What an activity looked like before, for rows that need memory: whether it still moves.
class Movement {
public:
    virtual ~Movement() = default;
    virtual bool Stands(const Object& object) const = 0;
};

/// Every row that needs nothing but this look. `movement` may be null.
std::vector<Finding> FindAll(const Answers& answers, const Things& things,
                             const Movement* movement);

/// A finding whose values begin with those that every one has.
Finding FindingOf(Code code, const Object& object);

/// "rebuild", "consistency check", ... as in sentences.
std::string_view ActivityText(unsigned kind);
/// "29 %", or "?" where it is not told.
std::string PercentText(const std::optional<unsigned>& percent);
/// "power supply", "fan", ...
std::string_view ElementTypeText(unsigned type);
/// ", slot 3": what tells a disk from its neighbours.
std::string DiskIdText(const Object& object, const Disk& disk);

}  // namespace hxconditions
