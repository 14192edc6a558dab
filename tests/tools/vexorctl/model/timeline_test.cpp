#include "model/timeline.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "codes/activity.h"
#include "codes/event.h"

namespace vexorctl {
namespace {

using hxcodes::ActivityKind;
using hxcodes::Step;

Happening StepOf(Step step, std::uint64_t time, HX_U32 percent = 0) {
    hxcodes::EventFacts facts{
        .kind = *hxcodes::EventOf(ActivityKind::kRebuild, step), .adapter = 0, .device = 0};
    facts.params[0] = percent;
    return {.number = time, .facts = facts, .time = time, .object = "a0/vd0"};
}

Happening EventsLost(std::uint64_t time) {
    const hxcodes::EventFacts facts{
        .kind = hxcodes::EventKind::kEventError, .adapter = 0, .device = 0};
    return {.number = time, .facts = facts, .time = time, .object = "a0"};
}

Period PeriodOf(const std::vector<Happening>& events) {
    Timeline timeline(false);
    for (const Happening& each : events) timeline.Take(each);
    return timeline.Periods().front();
}

Happening EventOfVirtualDisk(hxcodes::EventKind kind, std::uint64_t time) {
    const hxcodes::EventFacts facts{.kind = kind, .adapter = 0, .device = 0};
    return {.number = time, .facts = facts, .time = time, .object = "a0/vd0"};
}

TEST(AFailedRebuild, IsPastWhenTheVirtualDiskIsWellOrAnotherOne) {
    const std::vector<Happening> failed = {StepOf(Step::kStart, 1000), StepOf(Step::kError, 1100)};
    EXPECT_FALSE(PeriodOf(failed).is_past);
    for (const auto kind :
         {hxcodes::EventKind::kVirtualDiskOnline, hxcodes::EventKind::kVirtualDiskDeleted,
          hxcodes::EventKind::kVirtualDiskCreated}) {
        std::vector<Happening> events = failed;
        events.push_back(EventOfVirtualDisk(kind, 1200));
        const Period period = PeriodOf(events);
        EXPECT_TRUE(period.is_past);
        EXPECT_EQ(period.how, PeriodEnd::kFailed);
        EXPECT_EQ(period.end, 1100U);
    }
    std::vector<Happening> worse = failed;
    worse.push_back(EventOfVirtualDisk(hxcodes::EventKind::kVirtualDiskOffline, 1200));
    EXPECT_FALSE(PeriodOf(worse).is_past);
}

TEST(ACheck, HasTheErrorsThatWereToldWhileItRan) {
    const auto step = [](Step which, std::uint64_t time) {
        Happening event = StepOf(which, time);
        event.facts.kind = *hxcodes::EventOf(ActivityKind::kCheck, which);
        return event;
    };
    Happening found = EventOfVirtualDisk(hxcodes::EventKind::kErrorsFound, 1100);
    found.facts.params[0] = 7;
    const Period with = PeriodOf({step(Step::kStart, 1000), found, step(Step::kComplete, 1100)});
    EXPECT_EQ(with.errors, 7U);
    EXPECT_EQ(with.how, PeriodEnd::kComplete);
    EXPECT_FALSE(PeriodOf({step(Step::kStart, 1000), step(Step::kComplete, 1100)}).errors);
    // Told outside of a check it is no check's.
    EXPECT_FALSE(PeriodOf({step(Step::kStart, 1000), step(Step::kComplete, 1050), found}).errors);
}

TEST(TheSpeedOfAnActivity, IsMeasuredFromItsStart) {
    const Period period = PeriodOf({StepOf(Step::kStart, 1000), StepOf(Step::kProgress, 1200, 20)});
    EXPECT_DOUBLE_EQ(PercentPerSecond(period).value(), 0.1);
}

TEST(TheSpeedOfAnActivity, IsNotKnownBeforeTwoPointsAre) {
    EXPECT_FALSE(PercentPerSecond(PeriodOf({StepOf(Step::kStart, 1000)})));
    // Of what began before the oldest event, one progress is one point.
    EXPECT_FALSE(PercentPerSecond(PeriodOf({StepOf(Step::kProgress, 1000, 40)})));
    EXPECT_FALSE(PercentPerSecond(
        PeriodOf({StepOf(Step::kStart, 1000), StepOf(Step::kProgress, 1000, 20)})));
}

TEST(TheSpeedOfAnActivity, LeavesPausesOut) {
    const Period period =
        PeriodOf({StepOf(Step::kStart, 1000), StepOf(Step::kProgress, 1200, 20),
                  StepOf(Step::kPause, 1300), StepOf(Step::kResume, 9000),
                  StepOf(Step::kProgress, 9100, 40), StepOf(Step::kProgress, 9200, 60)});
    EXPECT_DOUBLE_EQ(PercentPerSecond(period).value(), 0.2);
}

TEST(TheSpeedOfAnActivity, IsThatOfBeforeThePauseUntilItIsKnownAgain) {
    const Period period =
        PeriodOf({StepOf(Step::kStart, 1000), StepOf(Step::kProgress, 1200, 20),
                  StepOf(Step::kAutoPaused, 1300), StepOf(Step::kAutoResume, 9000),
                  StepOf(Step::kProgress, 9100, 40)});
    EXPECT_DOUBLE_EQ(PercentPerSecond(period).value(), 0.1);
}

TEST(TheSpeedOfAnActivity, IsNotMeasuredOverLostEvents) {
    const Period period =
        PeriodOf({StepOf(Step::kStart, 1000), EventsLost(1100), StepOf(Step::kProgress, 1200, 20)});
    EXPECT_FALSE(PercentPerSecond(period));
    EXPECT_TRUE(period.has_gap);
}

}  // namespace
}  // namespace vexorctl
