// The findings of one look at the machine, row by row, without memory.
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
    std::string identity;  // of the disk; empty when unknown
    std::string address;

    bool operator==(const LostMember&) const = default;
};

/// Among the values of a finding: the next step, where it depends on the cause and is not the
/// row's.
inline constexpr char kNextStep[] = "next_step";

struct Finding {
    Code code = Code::kNotWatched;
    Object object{};
    Values values{};
    std::uint64_t count = 0;  // grows as it gets worse: lost blocks, lost members
    std::vector<LostMember> lost{};
    std::vector<std::string> links{};  // identities of the objects whose conditions fold into it
    std::optional<Damping> up{};       // replaces the row's damping
};

/// Tells whether activities still make progress, for rows that need memory.
class Movement {
public:
    virtual ~Movement() = default;
    virtual bool Stands(const Object& object) const = 0;
};

/// Finds every row that needs only this look. `movement` may be null.
std::vector<Finding> FindAll(const Answers& answers, const Things& things,
                             const Movement* movement);

/// A finding with the values that all findings have.
Finding FindingOf(Code code, const Object& object);

/// "rebuild", "consistency check", ... as in sentences.
std::string_view ActivityText(unsigned kind);
/// "29 %", or "?" when unknown.
std::string PercentText(const std::optional<unsigned>& percent);
/// "power supply", "fan", ...
std::string_view ElementTypeText(unsigned type);
/// ", slot 3": how to find the disk among its neighbours.
std::string DiskIdText(const Object& object, const Disk& disk);

}  // namespace hxconditions
