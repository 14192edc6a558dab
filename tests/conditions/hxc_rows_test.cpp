// The table: what has been delivered stays, and every event is somebody's.
#include "conditions/hxc_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "codes/event.h"
#include "conditions/hxc_event_codes.h"

namespace hxconditions {
namespace {

std::string LineOf(const Row& row) {
    return std::string(row.name) + " " + std::to_string(row.rank) + " " +
           std::string(row.message_id) + " " + std::string(row.clear_id);
}

TEST(ACodeThatWasDelivered, KeepsItsNameItsRankAndItsMessageIds) {
    std::ifstream file(std::string(TESTS_CONDITIONS_DIR) + "/codes.golden");
    std::vector<std::string> golden;
    for (std::string line; std::getline(file, line);) golden.push_back(line);
    std::vector<std::string> lines;
    for (const Row& row : Rows()) lines.push_back(LineOf(row));
    EXPECT_EQ(lines, golden)
        << "a new code gets a line; a line is never changed and never taken out";
}

TEST(MessageIds, AreAllDifferent) {
    std::set<std::string_view> seen;
    for (const Row& row : Rows()) {
        EXPECT_TRUE(seen.insert(row.message_id).second) << row.name;
        EXPECT_TRUE(seen.insert(row.clear_id).second) << row.name;
    }
}

TEST(ARow, IsFoundByItsNameAlone) {
    for (const Row& row : Rows()) EXPECT_EQ(FindRow(row.name), row.code);
    EXPECT_FALSE(FindRow("VD_"));
    EXPECT_FALSE(FindRow(""));
}

TEST(ExitCodes, AreThoseOfMonitoringPlugins) {
    EXPECT_EQ(ExitCodeOf(std::nullopt), 0);
    EXPECT_EQ(ExitCodeOf(Level::kInfo), 0);
    EXPECT_EQ(ExitCodeOf(Level::kWarning), 1);
    EXPECT_EQ(ExitCodeOf(Level::kCritical), 2);
    EXPECT_EQ(ExitCodeOf(Level::kUnknown), 3);
    EXPECT_EQ(ExitCodeOf(Level::kMinorUnknown), 3);
    EXPECT_LT(Level::kUnknown, Level::kWarning) << "it may hide something critical";
    EXPECT_LT(Level::kWarning, Level::kMinorUnknown);
}

TEST(WhatHasLostData, CannotBeLowered) {
    EXPECT_FALSE(MayBeLowered(RowOf(Code::kVdOffline)));
    EXPECT_FALSE(MayBeLowered(RowOf(Code::kVdGone)));
    EXPECT_FALSE(MayBeLowered(RowOf(Code::kVdDirtyDegraded)));
    EXPECT_TRUE(MayBeLowered(RowOf(Code::kVdNoRedundancy)));
}

// ---- Events ----

struct Told {
    hxcodes::EventKind kind;
    std::string raises, clears;
};

std::vector<Told> AllEvents() {
    std::vector<Told> events;
    for (const hxcodes::EventRow& row : hxcodes::kEvents) {
        events.push_back({row.code, std::string(row.raises), std::string(row.clears)});
    }
    for (const hxcodes::ActivityRow& activity : hxcodes::kActivities) {
        for (const hxcodes::StepRow& step : hxcodes::kSteps) {
            const auto kind = hxcodes::EventOf(activity.code, step.code);
            if (!kind || hxcodes::HasCode(hxcodes::kEvents, NumberOf(*kind))) continue;
            Event event;
            event.event_class = hxcodes::ClassOf(*kind);
            event.code = hxcodes::CodeOf(*kind);
            const EventCodes codes = CodesOf(event);
            events.push_back({*kind, std::string(codes.raises), std::string(codes.clears)});
        }
    }
    return events;
}

std::size_t WordsIn(const std::string& names) {
    if (names.empty()) return 0;
    return static_cast<std::size_t>(std::ranges::count(names, ' ')) + 1;
}

TEST(TheEventsTable, NamesOnlyConditionsThatThereAre) {
    for (const Told& event : AllEvents()) {
        EXPECT_EQ(CodesIn(event.raises).size(), WordsIn(event.raises)) << event.raises;
        EXPECT_EQ(CodesIn(event.clears).size(), WordsIn(event.clears)) << event.clears;
    }
}

TEST(ARowOfEvents, IsRaisedBySomeEvent) {
    std::set<Code> raised;
    for (const Told& event : AllEvents()) {
        for (const Code code : CodesIn(event.raises)) raised.insert(code);
    }
    for (const Row& row : Rows()) {
        EXPECT_TRUE(row.needs != Needs::kEvents || raised.contains(row.code)) << row.name;
    }
}

// Settings that were changed, activities that go their way, and notices.
constexpr std::string_view kTellsNothingOfHealth[] = {
    "0,0",   "0,1",  "0,2",  "0,3",  "0,6",  "0,7",  "0,8",   "0,9",   "1,24",  "1,26",  "1,28",
    "1,29",  "1,34", "1,36", "1,38", "1,39", "1,46", "1,48",  "1,49",  "1,56",  "1,58",  "1,59",
    "1,6",   "1,66", "1,68", "1,69", "1,76", "1,78", "1,79",  "1,84",  "1,86",  "1,88",  "1,89",
    "1,94",  "1,96", "1,98", "1,99", "10,0", "12,1", "12,22", "12,23", "12,24", "12,25", "12,26",
    "12,27", "12,7", "13,0", "13,1", "2,10", "2,15", "2,16",  "2,19",  "2,20",  "2,21",  "2,23",
    "2,25",  "2,26", "2,36", "2,37", "2,38", "2,54", "2,6",   "2,9",   "9,10",  "9,11",  "9,12",
    "9,13",  "9,14", "9,15", "9,16", "9,17", "9,6",  "9,7",
};

std::string NumberText(const Told& event) {
    return std::to_string(hxcodes::ClassOf(event.kind)) + "," +
           std::to_string(hxcodes::CodeOf(event.kind));
}

TEST(AnEvent, TellsOfAConditionOrIsListedAsTellingOfNone) {
    std::set<std::string> silent;
    for (const Told& event : AllEvents()) {
        if (event.raises.empty() && event.clears.empty()) silent.insert(NumberText(event));
    }
    const std::set<std::string> listed(std::begin(kTellsNothingOfHealth),
                                       std::end(kTellsNothingOfHealth));
    EXPECT_EQ(silent, listed);
}

}  // namespace
}  // namespace hxconditions
