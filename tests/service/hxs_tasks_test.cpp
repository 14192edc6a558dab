// Rates and times left, from looks at a machine whose clock is the test's.
#include "service/hxs_tasks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>

namespace {

using hxconditions::Query;
using hxservice::RunningTask;
using hxservice::TaskHistory;

constexpr unsigned kRebuild = 6;
constexpr unsigned kRunning = 1;
constexpr unsigned kPaused = 2;

class ServiceTasks : public testing::Test {
protected:
    ServiceTasks() {
        answers.machine.result = Query::Result::kRead;
        hxconditions::Adapter& adapter = answers.adapters.emplace_back();
        adapter.serial = "VC1";
        for (Query* query : {&adapter.info, &adapter.virtual_disks_query, &adapter.disks_query,
                             &adapter.groups_query}) {
            query->result = Query::Result::kRead;
        }
        hxconditions::VirtualDisk& virtual_disk = adapter.virtual_disks.emplace_back();
        virtual_disk.name = "DATA";
        virtual_disk.sectors = 1000;
    }

    // The task after a look; null when none is told.
    std::optional<RunningTask> See(std::int64_t at, std::optional<unsigned> percent,
                                   unsigned state = kRunning) {
        auto& activity = answers.adapters[0].virtual_disks[0].activity;
        activity.reset();
        if (percent)
            activity = {.kind = kRebuild, .state = state, .percent = percent, .seconds_left = {}};
        return Look(at);
    }
    std::optional<RunningTask> Look(std::int64_t at) {
        history.Take(answers, {.real = 1000000 + at, .boot = at, .boot_id = "boot"});
        if (history.Running().empty()) return std::nullopt;
        return history.Running().front();
    }

    hxconditions::Answers answers;
    TaskHistory history;
};

TEST_F(ServiceTasks, HaveARateOnceTheyHaveMoved) {
    EXPECT_FALSE(See(0, 10)->percent_per_hour);
    EXPECT_FALSE(See(60, 10)->seconds_left);
    const auto task = See(3600, 20);
    EXPECT_DOUBLE_EQ(*task->percent_per_hour, 10);
    EXPECT_EQ(task->seconds_left, 8U * 3600);
    EXPECT_EQ(task->first_seen, 1000000);
    EXPECT_EQ(task->object.address, "a0/vd0");
    EXPECT_EQ(See(3660, 20)->seconds_left, 8U * 3600 - 60);
}

TEST_F(ServiceTasks, HaveLessTimeLeftWhileTheirPercentStandsButNeverLessThanNone) {
    See(0, 98);
    See(100, 99);
    EXPECT_EQ(See(150, 99)->seconds_left, 50U);
    EXPECT_EQ(See(900, 99)->seconds_left, 0U);
}

TEST_F(ServiceTasks, AreMeasuredAnewAfterAPause) {
    See(0, 10);
    See(100, 20);
    EXPECT_FALSE(See(200, 20, kPaused)->percent_per_hour);
    EXPECT_FALSE(See(90000, 20)->percent_per_hour);
    EXPECT_DOUBLE_EQ(*See(90100, 21)->percent_per_hour, 36);
}

TEST_F(ServiceTasks, ThatBeginAgainAreOthers) {
    See(0, 50);
    See(100, 60);
    const auto again = See(200, 3);
    EXPECT_FALSE(again->percent_per_hour);
    EXPECT_EQ(again->first_seen, 1000200);
}

TEST_F(ServiceTasks, ThatEndedAreToldNoMoreAndForgotten) {
    See(0, 50);
    See(100, 60);
    EXPECT_FALSE(See(200, {}));
    EXPECT_FALSE(See(300, 70)->percent_per_hour);
}

TEST_F(ServiceTasks, AreNotToldButRememberedWhileTheirListCannotBeRead) {
    See(0, 50);
    See(3600, 60);
    hxconditions::Adapter& adapter = answers.adapters[0];
    const auto kept = adapter.virtual_disks;
    adapter.virtual_disks.clear();
    adapter.virtual_disks_query.result = Query::Result::kFailed;
    EXPECT_FALSE(Look(7200));
    adapter.virtual_disks = kept;
    adapter.virtual_disks_query.result = Query::Result::kRead;
    EXPECT_DOUBLE_EQ(*See(7300, 70)->percent_per_hour, 20.0 * 3600 / 7300);
}

TEST_F(ServiceTasks, ThatTellTheirTimeLeftAreBelieved) {
    answers.adapters[0].virtual_disks[0].activity = {
        .kind = kRebuild, .state = kRunning, .percent = 5, .seconds_left = 77};
    EXPECT_EQ(Look(0)->seconds_left, 77U);
}

}  // namespace
