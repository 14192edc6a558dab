// The settling of consequences, with rules of the test's own.
#include "rules/hxsim_settle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>

#include "model/hxsim_machine.h"
#include "rules/hxsim_settling.h"

namespace hxsim {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

bool LightAllLamps(Settling& settling) {
    bool changed = false;
    for (Disk& disk : settling.adapter.disks) {
        changed = changed || !disk.locate_light;
        disk.locate_light = true;
    }
    return changed;
}

bool PutOutAllLamps(Settling& settling) {
    bool changed = false;
    for (Disk& disk : settling.adapter.disks) {
        changed = changed || disk.locate_light;
        disk.locate_light = false;
    }
    return changed;
}

// Comes to an end after as many rounds as the slots count.
bool CountToThree(Settling& settling) {
    for (Disk& disk : settling.adapter.disks) {
        if (disk.slot == 3) return false;
        ++disk.slot;
    }
    return true;
}

bool DoNothing(Settling&) { return false; }

Adapter OneDisk() {
    Adapter adapter;
    adapter.id = 2;
    adapter.disks.emplace_back().slot = 0;
    return adapter;
}

std::string WhyNotSettled(std::span<const SettlingRule> rules) {
    Adapter adapter = OneDisk();
    try {
        Settle(adapter, 0, rules);
    } catch (const UnsettledError& error) {
        return error.what();
    }
    return {};
}

TEST(Settling, GoesOnUntilNothingFollows) {
    Adapter adapter = OneDisk();
    Settle(adapter, 0, std::array{SettlingRule{"count", CountToThree}});
    EXPECT_EQ(adapter.disks[0].slot, 3);
}

TEST(Settling, NamesTheTwoRulesThatUndoEachOther) {
    const std::array rules{
        SettlingRule{"count to three", CountToThree},
        SettlingRule{"light all lamps", LightAllLamps},
        SettlingRule{"do nothing", DoNothing},
        SettlingRule{"put out all lamps", PutOutAllLamps},
    };
    EXPECT_EQ(WhyNotSettled(rules),
              "Adapter 2 does not come to rest: \"light all lamps\" and \"put out all lamps\" undo "
              "each other. This is an error of the virtual controller; report it.");
}

TEST(Settling, NamesARuleThatUndoesItself) {
    const std::array rules{SettlingRule{"blink",
                                        [](Settling& settling) {
                                            bool& lamp = settling.adapter.disks[0].locate_light;
                                            lamp = !lamp;
                                            return true;
                                        }},
                           SettlingRule{"do nothing", DoNothing}};
    EXPECT_THAT(WhyNotSettled(rules), AllOf(HasSubstr("\"blink\""), Not(HasSubstr("nothing"))));
}

}  // namespace
}  // namespace hxsim
