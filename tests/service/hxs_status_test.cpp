// The published status: its members and its bound.
#include "service/hxs_status.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

namespace {

using hxservice::StatusText;
using nlohmann::json;

// What a snapshot refers to, and the snapshot.
struct Round {
    hxconditions::Overview overview;
    hxconditions::Counts counts;
    hxconditions::Answers answers;
    hxservice::Facts facts;
    std::vector<hxservice::RunningTask> tasks;
    hxservice::EventTally events;
    std::map<std::string, hxservice::SinkQueue> sinks;

    std::string Text() const {
        return StatusText({.written_at = 1795000000,
                           .looked_at = 1794999990,
                           .interval = std::chrono::seconds(10),
                           .is_once = false,
                           .version = "7.8.9",
                           .collection = "1 adapter, 3 events collected since the start",
                           .is_collecting = true,
                           .store = {.first = 2, .next = 5},
                           .overview = overview,
                           .counts = counts,
                           .answers = answers,
                           .facts = facts,
                           .tasks = tasks,
                           .events = events,
                           .sinks = sinks});
    }
};

json StatusOf(const hxconditions::Overview& overview) {
    Round round;
    round.overview = overview;
    round.counts.adapters = 1;
    round.counts.disks = 8;
    return json::parse(round.Text());
}

hxconditions::Overview OverviewOf(std::size_t heads, const std::string& sentence) {
    hxconditions::Overview overview;
    for (std::size_t number = 0; number < heads; ++number) {
        hxconditions::Condition head;
        head.code = hxconditions::Code::kDiskFailed;
        head.level = hxconditions::Level::kWarning;
        head.object.kind = hxconditions::Kind::kDisk;
        head.object.address = "a0/pd" + std::to_string(number);
        head.sentence = sentence;
        overview.heads.push_back(std::move(head));
    }
    overview.warning = heads;
    if (heads != 0) overview.overall = hxconditions::Level::kWarning;
    return overview;
}

TEST(ServiceStatus, TellsTheServiceTheStoreAndTheConditions) {
    const json status = StatusOf(OverviewOf(1, "a0/pd0 failed"));
    EXPECT_EQ(status["schema"], "hxraidsvc-status/1");
    EXPECT_EQ(status["version"], "7.8.9");
    EXPECT_EQ(status["written_at"], 1795000000);
    EXPECT_EQ(status["written"], "2026-11-18T11:06:40Z");
    EXPECT_EQ(status["interval_s"], 10.0);
    EXPECT_EQ(status["once"], false);
    EXPECT_EQ(status["collecting"], true);
    EXPECT_EQ(status["store"]["first"], 2);
    EXPECT_EQ(status["store"]["next"], 5);
    EXPECT_EQ(status["overall"], "warning");
    EXPECT_EQ(status["counts"]["warning"], 1);
    EXPECT_EQ(status["machine"]["disks"], 8);
    EXPECT_TRUE(status["machine"]["virtual_disks"].is_null());
    ASSERT_EQ(status["conditions"].size(), 1U);
    EXPECT_EQ(status["conditions"][0]["code"], "DISK_FAILED");
    EXPECT_EQ(status["left_out"], 0);
}

TEST(ServiceStatus, StaysSmallAndCountsWhatHasNoRoom) {
    const hxconditions::Overview overview = OverviewOf(1024, std::string(200, 'x'));
    const json status = StatusOf(overview);
    EXPECT_LE(status.dump().size(), 64000U);
    EXPECT_GT(status["conditions"].size(), 50U);
    EXPECT_EQ(status["conditions"].size() + status["left_out"].get<std::size_t>(), 1024U);
    EXPECT_EQ(status["conditions"][0]["object"]["address"], "a0/pd0");
    EXPECT_EQ(status["counts"]["warning"], 1024);
}

TEST(ServiceStatus, IsTextAlsoForNamesThatAreNone) {
    EXPECT_EQ(StatusOf(OverviewOf(1, "disk \xFF\"\n"))["conditions"].size(), 1U);
}

hxservice::RunningTask Rebuild(unsigned number) {
    hxservice::RunningTask task;
    task.object.kind = hxconditions::Kind::kVirtualDisk;
    task.object.address = "a0/vd" + std::to_string(number);
    task.object.name = "DATA";
    task.activity = {.kind = 6, .state = 1, .percent = 29, .seconds_left = {}};
    task.first_seen = 1794990000;
    task.percent_per_hour = 12.04;
    task.seconds_left = 21180;
    return task;
}

TEST(ServiceStatus, TellsTasksWithTheirRateAndTimeLeft) {
    Round round;
    round.tasks = {Rebuild(1)};
    round.tasks.push_back(Rebuild(2));
    round.tasks[1].percent_per_hour.reset();
    round.tasks[1].seconds_left.reset();
    const json tasks = json::parse(round.Text())["tasks"];
    EXPECT_EQ(tasks[0].dump(),
              R"({"activity":"rebuild","first_seen":"2026-11-18T08:20:00Z","object":{)"
              R"("address":"a0/vd1","kind":"vd","name":"DATA","serial":null},)"
              R"("percent":29,"percent_per_hour":12.0,"seconds_left":21180,"state":"running"})");
    EXPECT_TRUE(tasks[1]["percent_per_hour"].is_null());
    EXPECT_TRUE(tasks[1]["seconds_left"].is_null());
}

TEST(ServiceStatus, TellsAdaptersInBriefWithoutCountingWhatWasNotRead) {
    using hxconditions::Query;
    Round round;
    hxconditions::Adapter& adapter = round.answers.adapters.emplace_back();
    adapter.serial = "VC1";
    adapter.info.result = Query::Result::kRead;
    adapter.disks_query.result = Query::Result::kRead;
    adapter.disks.resize(3);
    adapter.virtual_disks_query.result = Query::Result::kFailed;
    round.facts.adapters = {{.number = 0, .firmware = "1.2.3.4", .driver = "", .bios = ""}};
    const json status = json::parse(round.Text());
    EXPECT_EQ(status["adapters"][0]["serial"], "VC1");
    EXPECT_EQ(status["adapters"][0]["disks"], 3);
    EXPECT_TRUE(status["adapters"][0]["virtual_disks"].is_null());
    EXPECT_TRUE(status["adapters"][0]["battery_percent"].is_null());
    EXPECT_EQ(status["versions"]["adapters"][0]["firmware"], "1.2.3.4");
    EXPECT_TRUE(status["versions"]["adapters"][0]["bios"].is_null());
}

TEST(ServiceStatus, TellsTheCountersAndTheLastFiveEvents) {
    Round round;
    round.facts.counters = {{"any", 7}, {"disk", {}}};
    for (std::uint64_t number = 0; number < 7; ++number) {
        hxservice::StoredEvent event;
        event.number = number;
        event.severity = "major";
        event.text = "a0/pd5 has failed";
        event.event.event_class = 2;
        event.event.code = 2;
        event.event.time = 1795000000;
        round.events.Count(event);
    }
    const json status = json::parse(round.Text());
    EXPECT_EQ(status["counters"].dump(), R"({"any":7,"disk":null})");
    ASSERT_EQ(status["events"].size(), 5U);
    EXPECT_EQ(status["events"][4].dump(),
              R"({"adapter":"a0","class":"disk","code":2,"number":6,"severity":"major",)"
              R"("text":"a0/pd5 has failed","time":"2026-11-18T11:06:40Z"})");
}

TEST(ServiceStatus, TellsDeliveriesThatFailAlone) {
    Round round;
    round.answers.service.sinks = {
        {.name = "mail", .error = {}},
        {.name = "hook", .is_failing = true, .error = "refused", .waiting = 3}};
    const json deliveries = json::parse(round.Text())["deliveries"];
    ASSERT_EQ(deliveries.size(), 1U);
    EXPECT_EQ(deliveries[0].dump(),
              R"({"error":"refused","failing":true,"given_up":0,"sink":"hook","waiting":3})");
}

TEST(ServiceStatus, StaysSmallForFourAdaptersOf256DisksOfWhichEachHasATaskAndACondition) {
    Round round;
    round.overview = OverviewOf(1024, std::string(200, 'x'));
    for (unsigned number = 0; number < 1024; ++number) round.tasks.push_back(Rebuild(number));
    for (unsigned number = 0; number < 4; ++number) {
        hxconditions::Adapter& adapter = round.answers.adapters.emplace_back();
        adapter.number = number;
        adapter.disks.resize(256);
        round.facts.adapters.push_back(
            {number, std::string(1000, 'f'), std::string(1000, 'd'), std::string(1000, 'b')});
        hxservice::StoredEvent event;
        event.text = std::string(5000, 'e');
        round.events.Count(event);
    }
    round.answers.service.sinks.assign(
        100, {.name = std::string(1000, 's'), .is_failing = true, .error = std::string(1000, 'r')});
    const std::string text = round.Text();
    EXPECT_LE(text.size(), 64000U);
    const json status = json::parse(text);
    EXPECT_EQ(status["tasks"].size() + status["tasks_left_out"].get<std::size_t>(), 1024U);
    EXPECT_GT(status["conditions"].size(), 30U);
}

}  // namespace
