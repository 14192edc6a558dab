// What a monitoring plugin prints, and the JSON of it.
#include "conditions/hxc_check.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <vector>

#include "conditions/hxc_json.h"
#include "machine.h"

namespace hxconditions {
namespace {

using Json = nlohmann::ordered_json;

// DATA on pd4 to pd6 has lost pd5, pd7 is free, and no service watches.
Answers WorkedExample() {
    Answers answers = GoodMachine();
    answers.adapters.pop_back();
    answers.adapters[0].virtual_disks.erase(answers.adapters[0].virtual_disks.begin());
    VirtualDiskAt(answers, 1).id = 0;
    Fail(answers, 5);
    DiskAt(answers, 5).serial = "QD-W17J22K63";
    DiskAt(answers, 5).bay = "phy 5";
    return answers;
}

std::string First(const Answers& answers) {
    return FirstLine(LookOnce(answers, {}, {}), CountsOf(answers));
}

TEST(TheFirstLine, TellsTheEffectItsCauseAndItsHindrance) {
    EXPECT_EQ(First(WorkedExample()),
              "CRITICAL: DATA (a0/vd0) has no redundancy left: a0/pd5 failed; no spare fits");
}

TEST(TheFirstLine, TellsHowLongAgoWhenSomebodyWatched) {
    Watcher watcher;
    Answers answers = WorkedExample();
    watcher.LookFor(60, answers);
    watcher.Wait(11 * 60);
    watcher.Look(answers);
    EXPECT_EQ(FirstLine(watcher.overview, CountsOf(answers)),
              "CRITICAL: DATA (a0/vd0) has no redundancy left: a0/pd5 failed 12 min ago; "
              "no spare fits");
}

TEST(TheLongOutput, NamesWhatIsFoldedAndWhatToDo) {
    Watcher watcher;
    Answers answers = WorkedExample();
    watcher.LookFor(60, answers);
    const auto lines = LongOutput(watcher.overview, FirstLine(watcher.overview, CountsOf(answers)));
    const std::vector<std::string> expected = {
        "[critical] VD_NO_REDUNDANCY a0/vd0 DATA, since at least 2027-01-15 08:00:00 UTC",
        "  DISK_FAILED a0/pd5 (QD-W17J22K63, phy 5); SPARE_NONE: a0/pd7 (free, 1.8 TiB) would fit",
        "  -> vexorctl task start a0/vd0 --kind rebuild --disk a0/pd7     or replace a0/pd5",
    };
    EXPECT_EQ(lines, expected);
}

TEST(TheLongOutput, HasTheSentenceOfEveryHeadThatTheFirstLineHasNot) {
    Answers answers = WorkedExample();
    answers.service.is_here = false;
    const Overview overview = LookOnce(answers, {}, {});
    const auto lines = LongOutput(overview, FirstLine(overview, CountsOf(answers)));
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_EQ(lines[3], "[info] NOT_WATCHED hxraidsvc");
    EXPECT_EQ(lines[4],
              "  no event service watches this machine, so what only its memory can tell was not "
              "looked at");
    EXPECT_EQ(lines[5], "  -> systemctl start hxraidsvc     Let the event service run here");
}

TEST(TheFirstLine, OfAGoodMachineTellsWhatWasSeen) {
    EXPECT_EQ(First(GoodMachine()), "OK: 2 adapters, 2 virtual disks, 8 disks, all well");
}

TEST(TheFirstLine, OfAControllerThatIsNotReachedSaysSo) {
    Answers answers;
    answers.machine = Failed("HX_API_Initialize", 230);
    answers.reason = "no state file";
    EXPECT_EQ(First(answers), "UNKNOWN: the controller cannot be reached: no state file");
    answers.machine.result = Query::Result::kRead;
    EXPECT_EQ(First(answers), "UNKNOWN: the controller cannot be reached: it lists no adapter");
}

TEST(TheFirstLine, CountsTheOthersAndTheSilencedOnes) {
    Watcher watcher;
    Answers answers = GoodMachine();
    answers.adapters[0].flash.bios = false;
    answers.store.state = Store::State::kDamaged;
    DiskAt(answers, 7).status = 0x81;
    watcher.LookFor(60, answers);
    Silences(watcher.state, {.code = Code::kStoreDamaged}, 86400);
    watcher.Look(answers);
    const std::string line = FirstLine(watcher.overview, CountsOf(answers));
    EXPECT_EQ(line,
              "WARNING: a0/pd7 (QD-7, slot 7) was set offline 1 min ago; it is in no virtual "
              "disk; and 2 more; 1 silenced");
    EXPECT_EQ(FirstLine(WithoutSilenced(watcher.overview), CountsOf(answers)),
              "WARNING: a0/pd7 (QD-7, slot 7) was set offline 1 min ago; it is in no virtual "
              "disk; and 1 more; 1 silenced");
}

Answers WithVirtualDisks(unsigned count, bool degraded) {
    Answers answers = GoodMachine();
    Adapter& adapter = answers.adapters[0];
    const VirtualDisk one = adapter.virtual_disks[0];
    adapter.virtual_disks.clear();
    for (unsigned i = 0; i < count; ++i) {
        VirtualDisk& each = adapter.virtual_disks.emplace_back(one);
        each.id = i;
        each.name = std::string(300, 'x') + "|\n\x1b[2J";
        if (degraded) each.state = 5;
    }
    return answers;
}

TEST(TheFirstLine, IsOneShortLineWhateverNamesAndNumbersThereAre) {
    for (const unsigned count : {0U, 1U, 300U}) {
        const Answers answers = WithVirtualDisks(count, true);
        const Overview overview = LookOnce(answers, {}, {});
        const std::string line = FirstLine(overview, CountsOf(answers));
        EXPECT_LE(line.size(), kLongestFirstLine);
        EXPECT_EQ(line.find_first_of("|\n\x1b"), std::string::npos) << line;
        for (const std::string& each : LongOutput(overview, line)) {
            EXPECT_EQ(each.find_first_of("|\n\x1b"), std::string::npos) << each;
        }
        EXPECT_EQ(line.find("; and 299 more") != std::string::npos, count == 300) << line;
    }
}

TEST(PerformanceData, FollowTheGrammarAtAnyNumber) {
    const std::regex item("[a-z0-9_]+=-?[0-9]+%?(;(~|-?[0-9]+)?:?(-?[0-9]+)?){0,2};?");
    for (const unsigned count : {0U, 1U, 300U}) {
        const Answers answers = WithVirtualDisks(count, count != 1);
        const std::string data = PerformanceData(answers, LookOnce(answers, {}, {}));
        EXPECT_LE(data.size(), kLongestPerformanceData);
        std::istringstream items(data);
        for (std::string each; items >> each;) EXPECT_TRUE(std::regex_match(each, item)) << each;
    }
}

TEST(PerformanceData, BeginWithTheCountsAndTheWorstVirtualDisk) {
    const Answers answers = WorkedExample();
    EXPECT_EQ(
        PerformanceData(answers, LookOnce(answers, {}, {})),
        "vds=1 vds_offline=0;;0 vds_unprotected=1;;0 vds_reduced=0;0 disks=8 disks_failed=1;0 "
        "disks_missing=0;0 disks_predicted=0;0 spares=0 conditions_critical=1;;0 "
        "conditions_warning=0;0 conditions_unknown=0;0 a0_vd0_survives=0;1:; "
        "a0_battery_charge=96%;40: a0_battery_temperature=29;5:50; a0_enc0_el2_rpm=2500 "
        "a0_enc0_el5_temperature=27;5:45;0:55");
}

TEST(PerformanceData, LeaveOutWhatWasNotRead) {
    Answers answers = GoodMachine();
    answers.adapters[1].virtual_disks_query = Failed("HX_LD_GetInfo", 7);
    answers.adapters[0].battery->percent.reset();
    const std::string data = PerformanceData(answers, LookOnce(answers, {}, {}));
    EXPECT_EQ(data.find("vds"), std::string::npos) << data;
    EXPECT_EQ(data.find("battery_charge"), std::string::npos) << data;
    EXPECT_NE(data.find("disks=8"), std::string::npos) << data;
}

TEST(PerformanceData, TellHowFarARebuildIs) {
    Answers answers = WorkedExample();
    Rebuild(answers, 0, 29);
    const std::string data = PerformanceData(answers, LookOnce(answers, {}, {}));
    EXPECT_NE(data.find("a0_vd0_survives=0;1:; a0_vd0_progress=29% "), std::string::npos) << data;
}

// ---- JSON ----

TEST(TheJson, OfAConditionIsThatOfTheBook) {
    Watcher watcher;
    Answers answers = WorkedExample();
    watcher.LookFor(60, answers);
    const Json json = Json::parse(ConditionJson(watcher.overview.heads[0]));
    EXPECT_EQ(json["code"], "VD_NO_REDUNDANCY");
    EXPECT_EQ(json["level"], "critical");
    EXPECT_EQ(json["rank"], 120);
    EXPECT_EQ(json["object"].dump(),
              R"({"kind":"vd","address":"a0/vd0","name":"DATA","serial":null})");
    EXPECT_EQ(json["since"], "2027-01-15T08:00:00Z");
    EXPECT_EQ(json["since_is"], "at_or_before");
    EXPECT_EQ(json["cause"].dump(), R"([{"code":"DISK_FAILED","address":"a0/pd5"}])");
    EXPECT_EQ(json["hindrance"], "SPARE_NONE");
    EXPECT_EQ(json["next_step"].dump(),
              R"({"text":"Rebuild onto a0/pd7, or replace a0/pd5","command":["vexorctl","task",)"
              R"("start","a0/vd0","--kind","rebuild","--disk","a0/pd7"]})");
    EXPECT_EQ(json["stale"], false);
    EXPECT_TRUE(json["acknowledged"].is_null());
    EXPECT_EQ(json["folded"].size(), 2U);
}

TEST(TheJson, OfWhatWasNotReadIsNullAndNotZero) {
    Answers answers = GoodMachine();
    answers.adapters[0].virtual_disks_query = Failed("HX_LD_GetInfo", 7);
    answers.adapters[0].virtual_disks.clear();
    const Json json = Json::parse(OverviewJson(LookOnce(answers, {}, {}), CountsOf(answers)));
    EXPECT_EQ(json["overall"], "unknown");
    EXPECT_EQ(json["counts"].dump(), R"({"critical":0,"unknown":1,"warning":0,"info":0,)"
                                     R"("acknowledged":0,"silenced":0,"switched_off":0})");
    EXPECT_EQ(json["machine"].dump(),
              R"({"adapters":2,"virtual_disks":null,"disks":8,"spares":0})");
    EXPECT_EQ(CountsText(CountsOf(answers)), "2 adapters, ? virtual disks, 8 disks");
}

TEST(TheJson, TakesNamesThatAreNoUtf8) {
    Answers answers = GoodMachine();
    VirtualDiskAt(answers, 1).name = "\xff\xfe";
    VirtualDiskAt(answers, 1).state = 5;
    const std::string json = OverviewJson(LookOnce(answers, {}, {}), {});
    EXPECT_TRUE(Json::accept(json)) << json;
}

TEST(TheJson, OfAMessageTellsWhatHasChanged) {
    Watcher watcher;
    Answers answers = DiskFails(watcher);
    Rebuild(answers, 1, 0);
    watcher.Look(answers);
    const Json json = Json::parse(MessageJson(watcher.messages[0]));
    EXPECT_EQ(json["change"], "better");
    EXPECT_EQ(json["was"], "VD_NO_REDUNDANCY");
    EXPECT_TRUE(json["lasted_s"].is_null());
}

}  // namespace
}  // namespace hxconditions
