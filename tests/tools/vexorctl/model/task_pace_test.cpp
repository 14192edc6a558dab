#include "model/task_pace.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vexorctl {
namespace {

const std::vector<std::string> kObjects{"a0/vd0"};

Task RebuildAt(std::uint64_t percent) {
    Task task;
    task.address = {.adapter = 0, .kind = vexortools::ObjectKind::kVirtualDisk, .id = 0};
    task.percent = percent;
    return task;
}

// 20 percent in 200 seconds.
Period Rebuilding() {
    Period period;
    period.object = "a0/vd0";
    period.kind = "rebuild";
    period.is_activity = true;
    period.start = 1000;
    period.percent = 20;
    period.from = Mark{.time = 1000, .percent = 0};
    period.to = Mark{.time = 1200, .percent = 20};
    return period;
}

TaskPace PaceAt(std::uint64_t percent, const std::vector<Period>& periods) {
    return PaceOf(RebuildAt(percent), "rebuild", kObjects, periods, 2000000);
}

TEST(ThePaceOfATask, IsTakenFromItsEvents) {
    const TaskPace pace = PaceAt(30, {Rebuilding()});
    EXPECT_EQ(pace.start, 1000U);
    EXPECT_EQ(pace.seconds_left, 700U);
    EXPECT_EQ(pace.bytes_per_second, 1024000U);  // a thousandth of the sectors each second
}

TEST(ThePaceOfATask, IsUnknownWithoutEvents) {
    const TaskPace pace = PaceAt(30, {});
    EXPECT_FALSE(pace.start || pace.seconds_left || pace.bytes_per_second);
}

TEST(ThePaceOfATask, IsNotThatOfAnotherActivityOrObject) {
    Period other = Rebuilding();
    other.object = "a0/vd1";
    Period check = Rebuilding();
    check.kind = "check";
    Period ended = Rebuilding();
    ended.how = PeriodEnd::kComplete;
    EXPECT_FALSE(PaceAt(30, {other, check, ended}).start);
}

TEST(ThePaceOfATask, IsNotThatOfAnEarlierOneThatWasFurther) {
    EXPECT_FALSE(PaceAt(19, {Rebuilding()}).start);
    EXPECT_TRUE(PaceAt(20, {Rebuilding()}).start);
}

TEST(ThePaceOfATask, IsUnknownWhereEventsWereLost) {
    Period period = Rebuilding();
    period.has_gap = true;
    EXPECT_FALSE(PaceAt(30, {period}).seconds_left);
}

TEST(ThePaceOfATask, HasATimeLeftAlsoWhereTheBytesAreNotKnown) {
    const TaskPace pace =
        PaceOf(RebuildAt(30), "rebuild", kObjects, std::vector{Rebuilding()}, std::nullopt);
    EXPECT_EQ(pace.seconds_left, 700U);
    EXPECT_FALSE(pace.bytes_per_second);
}

TEST(ThePaceOfATask, IsUnknownWhereTheNumbersAreImpossible) {
    Period period = Rebuilding();
    period.from = Mark{.time = 0, .percent = 0};
    period.to = Mark{.time = UINT64_MAX, .percent = 1};
    EXPECT_FALSE(PaceAt(30, {period}).seconds_left);
    const TaskPace pace =
        PaceOf(RebuildAt(30), "rebuild", kObjects, std::vector{Rebuilding()}, UINT64_MAX);
    EXPECT_FALSE(pace.bytes_per_second);
    EXPECT_EQ(pace.seconds_left, 700U);
}

TEST(ThePaceOfATask, IsUnknownWhereItsProgressIs) {
    Task task = RebuildAt(0);
    task.percent.reset();
    EXPECT_FALSE(PaceOf(task, "rebuild", kObjects, std::vector{Rebuilding()}, 2000000).start);
}

}  // namespace
}  // namespace vexorctl
