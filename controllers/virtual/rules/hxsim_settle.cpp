// Applies the settling rules until none of them changes anything more.
#include "rules/hxsim_settle.h"

#include <string>
#include <vector>

#include "rules/hxsim_activity_conditions.h"
#include "rules/hxsim_alarm.h"
#include "rules/hxsim_array_state.h"
#include "rules/hxsim_copyback.h"
#include "rules/hxsim_hot_spare.h"
#include "rules/hxsim_rebuild.h"

namespace hxsim {
namespace {

// The order determines the order of events.
constexpr SettlingRule kRules[] = {
    {"drop orphans", DropOrphans},
    {"let blocks fall out of date", LetBlocksFallOutOfDate},
    {"follow blocks", FollowBlocks},
    {"announce states", AnnounceStates},
    {"settle migrations", SettleMigrations},
    {"settle activities", SettleActivities},
    {"replace lost disks", ReplaceLostDisks},
    {"start rebuilds", StartRebuilds},
    {"start copybacks", StartCopybacks},
    {"settle disk activities", SettleDiskActivities},
    {"return spares", ReturnSpares},
};

// Far above the need of sound rules: long runs of random changes took at most 4 rounds.
constexpr unsigned kMostRounds = 256;

using RuleNames = std::vector<std::string_view>;

// Applies every rule once. Returns the names of those that have changed something.
RuleNames Round(Settling& settling, std::span<const SettlingRule> rules) {
    RuleNames changed;
    for (const SettlingRule& rule : rules) {
        if (rule.apply(settling)) changed.push_back(rule.name);
    }
    return changed;
}

[[noreturn]] void ThrowUnsettled(const Adapter& adapter, const RuleNames& names) {
    std::string text = "Adapter " + std::to_string(adapter.id) + " does not come to rest: ";
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i != 0) text += i + 1 == names.size() ? " and " : ", ";
        text += '"' + std::string(names[i]) + '"';
    }
    text += names.size() == 1 ? " undoes itself." : " undo each other.";
    throw UnsettledError(text + " This is an error of the virtual controller; report it.");
}

}  // namespace

void Settle(Adapter& adapter, Time now) { Settle(adapter, now, kRules); }

void Settle(Adapter& adapter, Time now, std::span<const SettlingRule> rules) {
    Settling settling{adapter, now};
    unsigned rounds = 0;
    for (RuleNames changed = Round(settling, rules); !changed.empty();
         changed = Round(settling, rules)) {
        if (++rounds == kMostRounds) ThrowUnsettled(adapter, changed);
    }
    SetGroupStates(adapter);
    TellOfSmallSpares(settling);
    UpdateAlarm(adapter, settling.new_alarm_cause);
}

}  // namespace hxsim
