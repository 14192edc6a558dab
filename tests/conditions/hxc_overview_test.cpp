// Order and folding: what leads, what explains, and what says why nothing mends it.
#include "conditions/hxc_overview.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/state.h"
#include "machine.h"

namespace hxconditions {
namespace {

// A state in which every row holds, each on a thing of its own that nothing links to another.
State AllAtOnce() {
    State state;
    unsigned number = 0;
    for (const Row& row : Rows()) {
        Held& held = state.held.emplace_back();
        Object object;
        object.kind = row.kind;
        object.id = number++;
        object.identity = std::string(row.name);
        object.address = "x/" + std::to_string(object.id);
        held.found = FindingOf(row.code, object);
        held.is_shown = true;
    }
    return state;
}

TEST(AllRowsAtOnce, ComeInTheOrderOfTheirRanksHoweverTheyAreShuffled) {
    State state = AllAtOnce();
    std::string expected;
    for (const Row& row : Rows()) {
        expected += (expected.empty() ? "" : " ") + std::string(row.name);
    }
    std::mt19937 random(7);
    for (int i = 0; i < 1000; ++i) {
        std::ranges::shuffle(state.held, random);
        ASSERT_EQ(HeadsOf(OverviewOf(state, {}, 0, true)), expected);
    }
}

TEST(EquallyGraveOnes, ComeByAdapterKindAndNumber) {
    State state;
    const auto add = [&](unsigned adapter, Kind kind, unsigned id, const char* name) {
        Object object;
        object.adapter = adapter;
        object.kind = kind;
        object.id = id;
        object.address = object.identity = name;
        Held& held = state.held.emplace_back();
        held.found = FindingOf(Code::kDiskSmartOff, object);
        held.is_shown = true;
    };
    add(1, Kind::kAdapter, 0, "a1");
    add(0, Kind::kDisk, 10, "a0/pd10");
    add(0, Kind::kDisk, 9, "a0/pd9");
    add(0, Kind::kAdapter, 0, "a0");
    std::string order;
    for (const Condition& head : OverviewOf(state, {}, 0, true).heads) {
        order += head.object.address + " ";
    }
    EXPECT_EQ(order, "a0 a0/pd9 a0/pd10 a1 ");
}

TEST(ASilencedCondition, ComesLast) {
    State state = AllAtOnce();
    state.silences.push_back({.code = Code::kVdOffline, .until = 100});
    const Overview overview = OverviewOf(state, {}, 0, true);
    EXPECT_EQ(overview.heads.back().code, Code::kVdOffline);
    EXPECT_EQ(overview.silenced, 1U);
    EXPECT_EQ(ExitCodeOf(overview.overall), 2);
}

TEST(AnUnreadListOfVirtualDisks, BeatsAWarmFanAndAFailedDiskBeatsAnUnreadBattery) {
    Answers answers = GoodMachine();
    ElementAt(answers, 2).status = NumberOf(hxcodes::ElementStatus::kNoncritical);
    answers.adapters[0].virtual_disks_query = Failed("HX_LD_GetInfo", 7);
    answers.adapters[0].virtual_disks.clear();
    EXPECT_EQ(HeadsOf(LookOnce(answers, {}, {})), "VDS_UNREADABLE ENC_ELEMENT_WARNING");
    EXPECT_EQ(ExitCodeOf(LookOnce(answers, {}, {}).overall), 3);
    answers = GoodMachine();
    DiskAt(answers, 7).status =
        NumberOf(hxcodes::DiskBit::kFailed) | NumberOf(hxcodes::DiskBit::kUnavailable);
    answers.adapters[0].battery_query = Failed("HX_BBU_GetInfo", 7);
    EXPECT_EQ(HeadsOf(LookOnce(answers, {}, {})), "DISK_FAILED BATTERY_UNREADABLE");
    EXPECT_EQ(ExitCodeOf(LookOnce(answers, {}, {}).overall), 1);
}

// ---- Folding ----

struct Pair {
    const char* name;
    void (*fault)(Answers&);
    Code head;
    Code folded;
};

constexpr unsigned kConfigured =
    NumberOf(hxcodes::DiskBit::kOnline) | NumberOf(hxcodes::DiskBit::kConfigured);

void LoseDisk(Answers& it) { Fail(it, 5); }
void LoseDiskOfGroup(Answers& it) {
    Fail(it, 2);
    it.adapters[0].groups[0].state = NumberOf(hxcodes::State::kDegraded);
    VirtualDisk on_group = VirtualDiskAt(it, 0);
    on_group.id = 2;
    on_group.name = "ONGROUP";
    on_group.group = 0;
    on_group.members[0].disk = 2;
    on_group.members[1].disk = 3;
    it.adapters[0].virtual_disks.push_back(on_group);
    Lose(it, 2, 0);
}

const Pair kPairs[] = {
    {"AFailedDisk", LoseDisk, Code::kVdNoRedundancy, Code::kDiskFailed},
    {"AMissingDisk", [](Answers& it) { Pull(it, 5); }, Code::kVdNoRedundancy, Code::kDiskMissing},
    {"AnOfflineDisk",
     [](Answers& it) {
         LoseDisk(it);
         DiskAt(it, 5).status = 0x85;
     },
     Code::kVdNoRedundancy, Code::kDiskOffline},
    {"AMemberThatAnnouncesItsFailure",
     [](Answers& it) {
         LoseDisk(it);
         DiskAt(it, 4).smart_alarm = true;
     },
     Code::kVdNoRedundancy, Code::kDiskPredictedFailure},
    {"AFailedDiskThatAnnouncedIt",
     [](Answers& it) {
         DiskAt(it, 7).status = 0xA0;
         DiskAt(it, 7).smart_alarm = true;
     },
     Code::kDiskFailed, Code::kDiskPredictedFailure},
    {"ADiskGroup", LoseDiskOfGroup, Code::kVdNoRedundancy, Code::kDgDegraded},
    {"APausedRebuild",
     [](Answers& it) {
         LoseDisk(it);
         Rebuild(it, 1, 29, 2);
     },
     Code::kVdNoRedundancy, Code::kRebuildPaused},
    {"AnAbortedRebuild",
     [](Answers& it) {
         LoseDisk(it);
         Rebuild(it, 1, 29);
         VirtualDiskAt(it, 1).activity = Activity{};
     },
     Code::kVdNoRedundancy, Code::kRebuildAborted},
    {"AnAutomaticRebuildThatIsOff",
     [](Answers& it) {
         LoseDisk(it);
         DiskAt(it, 7).status |= NumberOf(hxcodes::DiskBit::kGlobalSpare);
         it.adapters[0].auto_rebuild = false;
     },
     Code::kVdNoRedundancy, Code::kAutoRebuildOff},
    {"ASpareThatIsTooSmall",
     [](Answers& it) {
         LoseDisk(it);
         DiskAt(it, 7).status |= NumberOf(hxcodes::DiskBit::kGlobalSpare);
         DiskAt(it, 7).sectors = 5;
     },
     Code::kVdNoRedundancy, Code::kSpareTooSmall},
    {"TheCollectorOfSpares",
     [](Answers& it) {
         LoseDisk(it);
         DiskAt(it, 7).status |= NumberOf(hxcodes::DiskBit::kGlobalSpare);
         it.adapters[0].is_linux_raid = true;
         it.adapters[0].spares_collected_ago_s = 400;
     },
     Code::kVdNoRedundancy, Code::kSpareCollectorStopped},
    {"NoSpare", LoseDisk, Code::kVdNoRedundancy, Code::kSpareNone},
    {"AReplacementThatIsTooSmall",
     [](Answers& it) {
         LoseDisk(it);
         DiskAt(it, 5).status = NumberOf(hxcodes::DiskBit::kOnline);
         DiskAt(it, 5).free_sectors = 5;
     },
     Code::kVdNoRedundancy, Code::kReplacementTooSmall},
    {"AForeignDisk",
     [](Answers& it) {
         VirtualDiskAt(it, 1).state = NumberOf(hxcodes::State::kForeign);
         DiskAt(it, 5).status = 0x86;
     },
     Code::kVdForeign, Code::kDiskForeign},
    {"WriteThroughForABattery",
     [](Answers& it) {
         VirtualDiskAt(it, 0).cache = 0x81;
         it.adapters[0].battery->status = 1;
     },
     Code::kBatteryLow, Code::kCacheForcedWriteThrough},
    {"WriteThroughForARelearn",
     [](Answers& it) {
         VirtualDiskAt(it, 0).cache = 0x81;
         it.adapters[0].battery->status = 0x11;
     },
     Code::kBatteryRelearning, Code::kCacheForcedWriteThrough},
    {"WriteThroughForABatteryThatIsGone",
     [](Answers& it) {
         VirtualDiskAt(it, 0).cache = 0x81;
         it.adapters[0].battery.reset();
         it.adapters[0].battery_query.result = Query::Result::kNone;
     },
     Code::kBatteryRemoved, Code::kCacheForcedWriteThrough},
    {"AnUnreadListOfADeadAdapter", [](Answers& it) { FailAll(it.adapters[0]); },
     Code::kAdapterUnreadable, Code::kVdsUnreadable},
    {"AnImplausibleList",
     [](Answers& it) {
         it.adapters[0].disks_query.result = Query::Result::kImplausible;
         it.adapters[0].disks_query.call = "HX_PD_GetHDInfo_Ext";
         it.adapters[0].disks_query.what = "the list does not go on";
     },
     Code::kAnswerImplausible, Code::kDisksUnreadable},
};

class Folding : public testing::TestWithParam<Pair> {};

TEST_P(Folding, PutsItUnderItsHead) {
    Answers answers = GoodMachine();
    GetParam().fault(answers);
    const Overview overview = LookOnce(answers, {}, {});
    const auto head = std::ranges::find(overview.heads, GetParam().head, &Condition::code);
    ASSERT_NE(head, overview.heads.end()) << HeadsOf(overview);
    EXPECT_NE(std::ranges::find(head->folded, GetParam().folded, &Condition::code),
              head->folded.end());
    EXPECT_EQ(std::ranges::find(overview.heads, GetParam().folded, &Condition::code),
              overview.heads.end());
}

std::string NameOfPair(const testing::TestParamInfo<Pair>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Pairs, Folding, testing::ValuesIn(kPairs), NameOfPair);

TEST(DisksOfAnEnclosureThatIsGone, FoldIntoItWhenThereAreTwo) {
    Watcher watcher;
    Answers answers = GoodMachine();
    watcher.LookFor(60, answers);
    answers.adapters[0].enclosures.clear();
    Pull(answers, 2);
    watcher.LookFor(60, answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "DISK_MISSING ENC_GONE");
    Pull(answers, 3);
    watcher.LookFor(60, answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "ENC_GONE");
    EXPECT_EQ(watcher.overview.heads[0].sentence, "enclosure a0/enc0 with 8 disks is gone");
}

TEST(DisksOfAnEnclosureThatIsGone, FoldIntoItWhenTheyWereFree) {
    Watcher watcher;
    Answers answers = GoodMachine();
    watcher.LookFor(60, answers);
    answers.adapters[0].enclosures.clear();
    Pull(answers, 3);
    const auto is_free = [](const Disk& disk) { return disk.id == 7; };
    ASSERT_EQ(std::erase_if(answers.adapters[0].disks, is_free), 1U);
    watcher.LookFor(60, answers);
    EXPECT_EQ(HeadsOf(watcher.overview), "ENC_GONE");
}

TEST(ADiskInSeveralVirtualDisks, FoldsIntoTheWorstAndNamesAll) {
    Answers answers = GoodMachine();
    VirtualDisk second = VirtualDiskAt(answers, 1);
    second.id = 2;
    second.name = "MORE";
    second.level = 0x06;
    second.members.push_back({7, NumberOf(hxcodes::State::kOptimal), 100});
    DiskAt(answers, 7).status = kConfigured;
    answers.adapters[0].virtual_disks.push_back(second);
    Fail(answers, 5);
    const Overview overview = LookOnce(answers, {}, {});
    EXPECT_EQ(HeadsOf(overview), "VD_NO_REDUNDANCY VD_REDUNDANCY_REDUCED");
    EXPECT_EQ(overview.heads[0].folded[0].code, Code::kDiskFailed);
    EXPECT_NE(overview.heads[0].folded[0].sentence.find("it concerns a0/vd1 and a0/vd2"),
              std::string::npos);
    EXPECT_EQ(overview.heads[1].sentence,
              "MORE (a0/vd2) has lost a0/pd5 and survives 1 more; no spare fits");
}

const Condition& DegradedGroup(const std::vector<Condition>& conditions) {
    return *std::ranges::find(conditions, Code::kDgDegraded, &Condition::code);
}

TEST(ADegradedDiskGroup, NamesWhatItHasLost) {
    Answers answers = GoodMachine();
    answers.adapters[0].groups[0].state = NumberOf(hxcodes::State::kDegraded);
    Fail(answers, 2);
    const Overview unused = LookOnce(answers, {}, {});
    ASSERT_EQ(HeadsOf(unused), "DISK_FAILED DG_DEGRADED");
    EXPECT_EQ(unused.heads[1].sentence,
              "SPACE (a0/dg0) has lost a0/pd2; no virtual disk lies on it");
    EXPECT_EQ(unused.heads[1].next_step, "Replace a0/pd2");
    answers = GoodMachine();
    LoseDiskOfGroup(answers);
    const Overview used = LookOnce(answers, {}, {});
    EXPECT_EQ(DegradedGroup(used.heads[0].folded).sentence, "SPACE (a0/dg0) has lost a0/pd2");
}

TEST(ADegradedDiskGroup, WaitsWhileAnotherDiskTakesTheLostOnesPlace) {
    Answers answers = GoodMachine();
    answers.adapters[0].groups[0].state = NumberOf(hxcodes::State::kDegraded);
    const Overview overview = LookOnce(answers, {}, {});
    ASSERT_EQ(HeadsOf(overview), "DG_DEGRADED");
    EXPECT_EQ(overview.heads[0].sentence,
              "SPACE (a0/dg0) has lost a disk whose place another one takes; no virtual disk lies "
              "on it");
    EXPECT_EQ(overview.heads[0].next_step, "Wait for the rebuild");
    EXPECT_TRUE(overview.heads[0].command.empty());
}

TEST(TheFirstHindranceThatHolds, IsTold) {
    Answers answers = DegradedMachine();
    DiskAt(answers, 7).status |= NumberOf(hxcodes::DiskBit::kGlobalSpare);
    DiskAt(answers, 7).sectors = 5;
    const Overview overview = LookOnce(answers, {}, {});
    EXPECT_EQ(overview.heads[0].hindrance, Code::kSpareTooSmall);
    EXPECT_EQ(overview.heads[0].sentence,
              "DATA (a0/vd1) has no redundancy left: a0/pd5 failed; spare a0/pd7 is too small "
              "(2.5 KiB < 100 GiB)");
    EXPECT_EQ(overview.heads[0].next_step, "Replace the spare by one of 100 GiB or more");
}

TEST(ARaid10WithOneDiskOut, SaysWhichDisksMayStillFail) {
    Answers answers = GoodMachine();
    VirtualDisk& data = VirtualDiskAt(answers, 1);
    data.level = 0x10;
    data.members.push_back({7, NumberOf(hxcodes::State::kOptimal), data.members[0].sectors});
    DiskAt(answers, 7).status = kConfigured;
    Fail(answers, 4);
    const Overview overview = LookOnce(answers, {}, {});
    EXPECT_EQ(overview.heads[0].sentence,
              "DATA (a0/vd1) survives no failure of a0/pd5, while a0/pd6 or a0/pd7 may still fail: "
              "a0/pd4 failed; no spare fits");
}

struct OfflineCase {
    std::string name;
    void (*fault)(Answers&);
    std::string next_step;
};
class AnOfflineVirtualDisk : public testing::TestWithParam<OfflineCase> {};
TEST_P(AnOfflineVirtualDisk, IsMendedByWhatItsCauseAllows) {
    Answers answers = GoodMachine();
    Fail(answers, 4);
    GetParam().fault(answers);
    VirtualDiskAt(answers, 1).state = NumberOf(hxcodes::State::kOffline);
    const Overview overview = LookOnce(answers, {}, {});
    ASSERT_EQ(overview.heads[0].code, Code::kVdOffline);
    EXPECT_EQ(overview.heads[0].next_step, GetParam().next_step);
    // Another one on the same disks, which are folded into the first.
    answers.adapters[0].virtual_disks.push_back(VirtualDiskAt(answers, 1));
    answers.adapters[0].virtual_disks.back().id = 2;
    answers.adapters[0].virtual_disks.back().name = "MORE";
    const Overview both = LookOnce(answers, {}, {});
    ASSERT_EQ(HeadsOf(both), "VD_OFFLINE VD_OFFLINE");
    EXPECT_EQ(both.heads[1].next_step, GetParam().next_step);
}
INSTANTIATE_TEST_SUITE_P(
    Causes, AnOfflineVirtualDisk,
    testing::Values(
        OfflineCase{"Pulled", [](Answers& it) { Pull(it, 5); },
                    "Put the disk that was pulled last back first; restore from a backup if none "
                    "comes back"},
        OfflineCase{"SetOffline",
                    [](Answers& it) {
                        Fail(it, 5);
                        DiskAt(it, 5).status = 0x85;
                    },
                    "Set it online again"},
        OfflineCase{"Failed", [](Answers& it) { Fail(it, 5); },
                    "Replace the failed disks and restore from a backup"}),
    [](const auto& each) { return each.param.name; });

TEST(AReportedHindrance, ExplainsTheHeadOfItsVirtualDisk) {
    class Standing : public Movement {
        bool Stands(const Object& object) const override { return object.address == "a0/vd1"; }
    };
    Answers answers = DegradedMachine();
    Rebuild(answers, 1, 29);
    EXPECT_EQ(HeadsOf(LookOnce(answers, {}, {})), "VD_REBUILDING_UNPROTECTED");
    const Standing standing;
    const Overview look = LookOnce(answers, {}, {}, &standing);
    Condition stalled;
    stalled.code = Code::kRebuildStalled;
    stalled.level = Level::kWarning;
    stalled.object.kind = Kind::kVirtualDisk;
    stalled.object.adapter = 0;
    stalled.object.id = 1;
    stalled.object.address = "a0/vd1";
    stalled.sentence = "the rebuild has not moved for 31 min";
    stalled.next_step = "Raise the rate";
    const Overview overview = WithFound(look, {stalled});
    ASSERT_EQ(overview.heads[0].code, Code::kVdNoRedundancy);
    EXPECT_EQ(overview.heads[0].hindrance, Code::kRebuildStalled);
    EXPECT_EQ(overview.heads[0].next_step, "Raise the rate");
    EXPECT_TRUE(overview.heads[0].sentence.ends_with("; the rebuild has not moved for 31 min"));
    EXPECT_EQ(overview.warning, look.warning) << "it is counted once, under its head";
}

TEST(WhatWasLastSeen, FoldsIntoTheControllerThatIsNotReached) {
    Answers answers;
    answers.machine.result = Query::Result::kFailed;
    Condition seen;
    seen.code = Code::kDiskFailed;
    seen.level = Level::kWarning;
    seen.object.kind = Kind::kDisk;
    seen.object.adapter = 0;
    seen.is_stale = true;
    const Overview overview = WithFound(LookOnce(answers, {}, {}), {seen});
    EXPECT_EQ(overview.warning, 0U);
    ASSERT_EQ(overview.heads[0].code, Code::kControllerUnreachable);
    EXPECT_EQ(overview.heads[0].folded.size(), 1U);
}

TEST(AWatchedCondition, HasItsTimeAndItsSilence) {
    const Overview look = LookOnce(DegradedMachine(), {}, {});
    Condition watched = look.heads[0];
    watched.since = 77;
    watched.since_is = SinceIs::kEvent;
    watched.silenced_until = 99;
    Condition other = look.heads[0];
    other.object.name = "ANOTHER";
    other.since = 88;
    const Overview overview = WithWatched(look, {other, watched});
    EXPECT_EQ(overview.silenced, 1U);
    EXPECT_EQ(overview.heads.back().code, look.heads[0].code) << "silenced ones come last";
    EXPECT_EQ(overview.heads.back().since, 77);
    EXPECT_EQ(WithoutSilenced(overview).silenced, 1U);
    EXPECT_EQ(WithoutSilenced(overview).critical, 0U);
}

TEST(FurtherHeads, HaveTheirPlacesAndCount) {
    const Overview look = LookOnce(DegradedMachine(), {}, {});
    Condition worse;
    worse.code = Code::kVdOffline;
    worse.level = Level::kCritical;
    Condition less;
    less.code = Code::kEventsLost;
    less.level = Level::kWarning;
    const Overview overview = WithFound(look, {less, worse});
    ASSERT_EQ(overview.heads.size(), look.heads.size() + 2);
    EXPECT_EQ(overview.heads.front().code, Code::kVdOffline);
    EXPECT_EQ(overview.critical, look.critical + 1);
    EXPECT_EQ(overview.warning, look.warning + 1);
    EXPECT_EQ(overview.overall, Level::kCritical);
}

}  // namespace
}  // namespace hxconditions
