// The published status: its members and its bound.
#include "service/hxs_status.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using hxservice::Report;
using hxservice::StatusText;
using nlohmann::json;

json StatusOf(const hxconditions::Overview& overview) {
    hxconditions::Counts counts;
    counts.adapters = 1;
    counts.disks = 8;
    return json::parse(StatusText({.written_at = 1795000000,
                                   .interval = std::chrono::seconds(10),
                                   .is_once = false,
                                   .version = "7.8.9",
                                   .collection = "1 adapter, 3 events collected since the start",
                                   .is_collecting = true,
                                   .store = {.first = 2, .next = 5},
                                   .overview = overview,
                                   .counts = counts}));
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

}  // namespace
