#include "nouns/foresee.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codes/level.h"
#include "codes/named.h"
#include "conditions/machine.h"

namespace vexorctl {
namespace {

using hxconditions::Answers;
using Texts = std::vector<std::string>;

Alteration Off(unsigned disk) {
    return [disk](hxconditions::Adapter& adapter) { SwitchDisk(adapter, disk, false); };
}

TEST(WhatIsForeseen, IsNothingWhereNothingChanges) {
    const Foreseen foreseen = Compare(hxconditions::GoodMachine(), [](hxconditions::Adapter&) {});
    EXPECT_EQ(foreseen.effects, Texts());
    EXPECT_EQ(foreseen.unusable, Texts());
}

TEST(WhatIsForeseen, IsHowManyDisksMayFailStill) {
    const Foreseen foreseen = Compare(hxconditions::GoodMachine(), Off(5));
    ASSERT_FALSE(foreseen.effects.empty());
    EXPECT_EQ(foreseen.effects.front(),
              "a0/vd1 (DATA) survives 1 failed disk now, no failed disk afterwards");
    EXPECT_EQ(foreseen.unusable, Texts());
}

TEST(WhatIsForeseen, IsThatAVirtualDiskGoesOffline) {
    const Foreseen foreseen = Compare(hxconditions::DegradedMachine(), Off(4));
    EXPECT_EQ(foreseen.effects,
              Texts{"a0/vd1 (DATA) goes offline, all of it: it survives no failed disk now"});
    EXPECT_EQ(foreseen.unusable, Texts{"a0/vd1 (DATA)"});
}

TEST(WhatIsForeseen, IsThatOneThatIsOfflineLosesMore) {
    Answers answers = hxconditions::DegradedMachine();
    Off(4)(answers.adapters.front());
    const Foreseen foreseen = Compare(answers, Off(6));
    EXPECT_EQ(foreseen.effects,
              Texts{"a0/vd1 (DATA) is offline already and loses one more of its disks"});
    EXPECT_EQ(foreseen.unusable, Texts());
}

TEST(WhatIsForeseen, IsThatItCanBeUsedAgain) {
    Answers answers = hxconditions::DegradedMachine();
    Off(4)(answers.adapters.front());
    const Foreseen foreseen =
        Compare(answers, [](hxconditions::Adapter& adapter) { SwitchDisk(adapter, 4, true); });
    EXPECT_EQ(foreseen.effects,
              Texts{"a0/vd1 (DATA) can be used again and survives no failed disk"});
}

TEST(WhatIsForeseen, IsTheLossOfAllDataWhereTooManyDisksAreEmptied) {
    const Foreseen foreseen =
        Compare(hxconditions::GoodMachine(), [](hxconditions::Adapter& adapter) {
            EmptyDisk(adapter, 4);
            EmptyDisk(adapter, 5);
        });
    ASSERT_FALSE(foreseen.effects.empty());
    EXPECT_EQ(foreseen.effects.front(),
              "all data of a0/vd1 (DATA) is lost: RAID 5 does not survive the loss of so many of "
              "its disks");
    EXPECT_EQ(foreseen.unusable, Texts{"a0/vd1 (DATA)"});
}

TEST(WhatIsForeseen, IsWhatANewVirtualDiskSurvives) {
    const Foreseen foreseen =
        Compare(hxconditions::GoodMachine(), [](hxconditions::Adapter& adapter) {
            AddVirtualDisk(adapter, "NEW", hxcodes::NumberOf(hxcodes::Level::kRaid0), 0, {7});
        });
    EXPECT_EQ(foreseen.effects, Texts{"NEW will survive no failed disk"});
}

TEST(WhatIsForeseen, IsWhichSpareStepsIn) {
    const Foreseen foreseen =
        Compare(hxconditions::GoodMachine(),
                [](hxconditions::Adapter& adapter) { MakeSpare(adapter, 7, {}); });
    ASSERT_FALSE(foreseen.effects.empty());
    EXPECT_EQ(foreseen.effects.back(),
              "for a lost disk of a0/vd1 (DATA) steps in: no spare now, a0/pd7 afterwards");
}

}  // namespace
}  // namespace vexorctl
