// The consequences of a change, drawn rule by rule until nothing follows any more.
#include "rules/hxsim_settle.h"

#include "rules/hxsim_activity_conditions.h"
#include "rules/hxsim_alarm.h"
#include "rules/hxsim_array_state.h"
#include "rules/hxsim_copyback.h"
#include "rules/hxsim_hot_spare.h"
#include "rules/hxsim_rebuild.h"
#include "rules/hxsim_settling.h"

namespace hxsim {
namespace {

// Each returns whether it has changed anything. The order is that in which events are told.
constexpr bool (*kRules[])(Settling& settling) = {
    DropOrphans,      LetBlocksFallOutOfDate, FollowBlocks,     AnnounceStates,
    SettleMigrations, SettleActivities,       ReplaceLostDisks, StartRebuilds,
    StartCopybacks,   SettleDiskActivities,   ReturnSpares,
};

}  // namespace

void Settle(Adapter& adapter, Time now) {
    Settling settling{adapter, now};
    bool changed = false;
    do {
        changed = false;
        for (const auto rule : kRules) changed = rule(settling) || changed;
    } while (changed);
    SetGroupStates(adapter);
    TellOfSmallSpares(settling);
    UpdateAlarm(adapter, settling.new_alarm_cause);
}

}  // namespace hxsim
