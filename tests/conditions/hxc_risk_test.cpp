// What a virtual disk is near to, in a sentence.
#include "conditions/hxc_risk.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codes/disk.h"
#include "machine.h"

namespace hxconditions {
namespace {

using hxcodes::DiskBit;

Risk RiskOfData(const Answers& answers, const RebuildRates& rates = {}) {
    for (Risk& each : RisksOf(answers, rates)) {
        if (each.name == "DATA") return each;
    }
    return {};
}

TEST(ARisk, OfAGoodVirtualDiskWithoutASpareNamesTheFreeDisk) {
    Answers answers = GoodMachine();
    for (Disk& disk : answers.adapters[0].disks) disk.enclosure.reset();
    const Risk risk = RiskOfData(answers);
    EXPECT_EQ(risk.sentence,
              "DATA (a0/vd1) survives 1 failed disk; no spare would step in: there is none; a0/pd7 "
              "is free and would suffice; how long the rebuild of 100 GiB takes is not known: none "
              "was measured");
    EXPECT_FALSE(IsAtRisk(risk));
}

TEST(ARisk, WithASpareAndARateTellsTheWindow) {
    Answers answers = GoodMachine();
    for (Disk& disk : answers.adapters[0].disks) disk.enclosure.reset();
    DiskAt(answers, 7).status |= NumberOf(DiskBit::kGlobalSpare);
    const Risk risk = RiskOfData(answers, {{0, 209715200.0 / 1200}});
    EXPECT_EQ(risk.sentence,
              "DATA (a0/vd1) survives 1 failed disk; a0/pd7 would step in; its rebuild of 100 GiB "
              "takes about 20 min");
    EXPECT_EQ(risk.exposure_s, 1200);
    EXPECT_FALSE(risk.free);
}

TEST(ARisk, OfALostMemberIsThatTheNextFailureLosesData) {
    Answers answers = GoodMachine();
    Fail(answers, 5);
    const Risk risk = RiskOfData(answers);
    EXPECT_TRUE(
        risk.sentence.starts_with("DATA (a0/vd1) survives no further failed disk; no spare "
                                  "steps in: there is none; "))
        << risk.sentence;
    EXPECT_EQ(risk.lost, std::vector<std::string>{"a0/pd5"});
    EXPECT_EQ(risk.needed, (std::vector<std::string>{"a0/pd4", "a0/pd6"}));
    EXPECT_TRUE(IsAtRisk(risk));
}

TEST(ARisk, TellsWhyASpareDoesNotFit) {
    Answers answers = GoodMachine();
    Disk& spare = DiskAt(answers, 7);
    spare.status |= NumberOf(DiskBit::kGlobalSpare);
    spare.sectors = 1000;
    EXPECT_EQ(RiskOfData(answers).no_spare, "a0/pd7 is too small (500 KiB < 100 GiB)");
    spare.sectors = 3907029168;
    spare.status |= NumberOf(DiskBit::kFailed);
    EXPECT_EQ(RiskOfData(answers).no_spare, "a0/pd7 is broken");
    spare.status = NumberOf(DiskBit::kOnline) | NumberOf(DiskBit::kGroupSpare);
    spare.group = 0;
    EXPECT_EQ(RiskOfData(answers).no_spare, "a0/pd7 serves another disk group");
    spare.status = NumberOf(DiskBit::kOnline) | NumberOf(DiskBit::kGlobalSpare);
    answers.adapters[0].auto_rebuild = false;
    EXPECT_EQ(RiskOfData(answers).no_spare, "a0/pd7 fits, but automatic rebuild is off");
    answers.adapters[0].auto_rebuild = true;
    EXPECT_EQ(RiskOfData(answers).spare, "a0/pd7");
}

TEST(ARisk, TakesTheSmallestSpareThatSuffices) {
    Answers answers = GoodMachine();
    DiskAt(answers, 7).status |= NumberOf(DiskBit::kGlobalSpare);
    Disk smaller = DiskAt(answers, 7);
    smaller.id = 8;
    smaller.sectors /= 2;
    answers.adapters[0].disks.push_back(smaller);
    EXPECT_EQ(RiskOfData(answers).spare, "a0/pd8");
}

TEST(ARisk, NamesWhatTakesSeveralMembersAlongAndWhichAreWeak) {
    Answers answers = GoodMachine();
    DiskAt(answers, 4).smart_alarm = true;
    DiskAt(answers, 6).remapped = 12;
    const Risk risk = RiskOfData(answers);
    ASSERT_EQ(risk.shared.size(), 1U);
    EXPECT_EQ(risk.shared[0].place, "a0/enc0");
    EXPECT_TRUE(
        risk.sentence.ends_with("; a0/pd4 announces its failure; a0/pd6 has remapped "
                                "sectors (12); a0/enc0 takes 3 of its disks along"))
        << risk.sentence;
}

TEST(ARisk, WithoutTheListOfDisksIsNotKnown) {
    Answers answers = GoodMachine();
    answers.adapters[0].disks_query = Failed("HX_PD_GetHDInfo_Ext", 7);
    answers.adapters[0].disks.clear();
    const Risk risk = RiskOfData(answers);
    EXPECT_FALSE(risk.survives);
    EXPECT_TRUE(
        risk.sentence.starts_with("DATA (a0/vd1) survives an unknown number of failed disks"));
    EXPECT_FALSE(IsAtRisk(risk));
}

TEST(ARisk, OfALevelWithoutRedundancyIsThere) {
    Answers answers = GoodMachine();
    VirtualDiskAt(answers, 1).level = 0;
    const Risk risk = RiskOfData(answers);
    EXPECT_TRUE(risk.sentence.starts_with("DATA (a0/vd1) is raid0 and survives no failed disk"))
        << risk.sentence;
    EXPECT_TRUE(IsAtRisk(risk));
}

}  // namespace
}  // namespace hxconditions
