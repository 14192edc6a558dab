// States and activities of arrays and disks, each as Linux 6.1 was seen to show them.
#include "rules/hxmd_state.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "codes/disk.h"

using namespace hxmd;
using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::State;

namespace {

// One letter a place: + in sync, - nothing there, x faulty, ! in sync and pulled, > being filled.
Array ArrayOf(HX_U8 level, std::string_view places) {
    Array array;
    array.state = ArrayState::kRunning;
    array.level = level;
    array.layout = 2;  // of raid5 another thing than of raid10, where it is two near copies
    array.component_kib = 1000;
    array.sectors = 8000;
    array.action = SyncAction::kIdle;
    array.disks = DiskCount{.now = places.size()};
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (places[i] == '-') continue;
        Member& member = array.members.emplace_back();
        member.state = MemberState{.in_sync = places[i] == '+' || places[i] == '!',
                                   .faulty = places[i] == 'x',
                                   .spare = places[i] == '>'};
        member.slot = i;
        member.present = places[i] != '!';
        member.disk = static_cast<HX_U16>(i);
    }
    return array;
}

struct Case {
    HX_U8 level;
    const char* places;
    StateCode state;
};
constexpr Case kCases[] = {
    {0x00, "++", State::kOptimal},
    {0x00, "+!", State::kOffline},
    {0x01, "++", State::kOptimal},
    {0x01, "+-", State::kDegraded},
    {0x01, "+!", State::kDegraded},
    {0x01, "+>", State::kDegraded},
    {0x01, "++-", State::kPartiallyOptimal},
    {0x01, "+--", State::kDegraded},
    {0x01, "xx", State::kOffline},
    {0x04, "++-", State::kDegraded},
    {0x05, "+++", State::kOptimal},
    {0x05, "++x", State::kDegraded},
    {0x05, "+!x", State::kOffline},
    {0x06, "++++", State::kOptimal},
    {0x06, "+++-", State::kPartiallyOptimal},
    {0x06, "++--", State::kDegraded},
    {0x06, "+---", State::kOffline},
    {0x10, "++++", State::kOptimal},
    {0x10, "+-++", State::kDegraded},
    {0x10, "+-+-", State::kDegraded},
    {0x10, "--++", State::kOffline},
    {0x10, "+-+", State::kDegraded},  // odd: each disk shares copies with its neighbours
    {0x10, "--+", State::kOffline},
};

TEST(AnArray, IsAsGoodAsTheMembersThatAreThere) {
    for (const Case& each : kCases) {
        EXPECT_EQ(StateOf(ArrayOf(each.level, each.places)), each.state)
            << unsigned{each.level} << ' ' << each.places;
    }
}

TEST(AnArray, OfThreeCopiesKeepsRedundancyWhenOneIsLost) {
    Array array = ArrayOf(0x10, "++-+++");
    array.layout = 3;
    EXPECT_EQ(StateOf(array), State::kPartiallyOptimal);
    EXPECT_EQ(LevelOf(array), 0x10U);
}

TEST(AnArray, OfTwoNearCopiesOverAnOddNumberOfDisksIsLevel1E) {
    EXPECT_EQ(LevelOf(ArrayOf(0x10, "+++")), 0x11U);
    EXPECT_EQ(LevelOf(ArrayOf(0x10, "++++")), 0x10U);
    EXPECT_EQ(LevelOf(ArrayOf(0x05, "+++")), 0x05U);
}

// Stopped in its first synchronisation with a disk away, it could not even be started.
TEST(AnArray, HasNoRedundancyBeforeItsFirstSynchronisationHasEnded) {
    Array array = ArrayOf(0x06, "+++-");
    array.resync_start = 1024;
    EXPECT_EQ(StateOf(array), State::kDegraded);
    array = ArrayOf(0x06, "++++");
    array.resync_start = 1024;
    EXPECT_EQ(StateOf(array), State::kOptimal);
}

TEST(AnArray, ThatIsIncompleteOrBrokenIsOffline) {
    Array array = ArrayOf(0x05, "++-");
    array.state = ArrayState::kInactive;
    array.level.reset();
    array.disks.reset();
    EXPECT_EQ(StateOf(array), State::kOffline);
    EXPECT_EQ(ActivityOf(array), Activity{});
    array = ArrayOf(0x00, "++");
    array.state = ArrayState::kBroken;  // its members stay in_sync
    EXPECT_EQ(StateOf(array), State::kOffline);
}

TEST(AnArray, OfAnUnknownStateIsNotTakenForOptimal) {
    Array array = ArrayOf(0x01, "++");
    array.state = ArrayState::kUnknown;
    EXPECT_EQ(StateOf(array), State::kOffline);
}

TEST(AnArray, OfImpossiblyManyPlacesIsNotOptimal) {
    Array array = ArrayOf(0x10, "++");
    array.disks = DiskCount{.now = UINT64_MAX};
    EXPECT_EQ(StateOf(array), State::kOffline);
    array.layout = UINT64_MAX;
    EXPECT_NE(StateOf(array), State::kOptimal);
}

// ---- Activities ----

struct ActionCase {
    SyncAction action;
    ActivityCode kind;
};
constexpr ActionCase kActions[] = {
    {SyncAction::kRecover, ActivityKind::kRebuild},   {SyncAction::kResync, ActivityKind::kFix},
    {SyncAction::kCheck, ActivityKind::kCheck},       {SyncAction::kRepair, ActivityKind::kFix},
    {SyncAction::kReshape, ActivityKind::kMigration},
};

TEST(AnActivity, IsAsFarAsTheKernelSays) {
    for (const ActionCase& each : kActions) {
        Array array = ArrayOf(0x05, "++>");
        array.action = each.action;
        array.completed = Completed{.done = 500, .total = 2000};
        EXPECT_EQ(ActivityOf(array), (Activity{each.kind, ActivityState::kRunning, 25}));
        array.completed = Completed{.delayed = true};
        EXPECT_EQ(ActivityOf(array), (Activity{each.kind, ActivityState::kAutoPaused, 0}));
    }
}

TEST(AnActivity, IsNoneWhileNoDiskIsThereToBeFilled) {
    Array array = ArrayOf(0x05, "++-");
    array.action = SyncAction::kRecover;
    EXPECT_EQ(ActivityOf(array), Activity{});
}

TEST(AnActivity, IsACopybackWhileAMemberIsReplaced) {
    Array array = ArrayOf(0x05, "+++");
    array.action = SyncAction::kRecover;
    array.completed = Completed{.done = 1, .total = 2};
    array.members[0].state->want_replacement = true;
    Member& replacement = array.members.emplace_back();
    replacement.slot = 0;
    replacement.present = true;
    replacement.state = MemberState{.spare = true, .replacement = true};
    EXPECT_EQ(ActivityOf(array), (Activity{ActivityKind::kCopyback, ActivityState::kRunning, 50}));
    EXPECT_EQ(StateOf(array), State::kOptimal);
    EXPECT_EQ(StateOf(array.members[0]), State::kDegraded);
    EXPECT_EQ(StateOf(replacement), State::kRebuilding);
}

// While it is frozen sync_completed says "none"; the place stays where it was kept.
TEST(APausedArray, TellsByItsPlacesWhatItWasDoing) {
    Array rebuild = ArrayOf(0x05, "++>");
    rebuild.action = SyncAction::kFrozen;
    rebuild.members[2].recovery_start = 800;
    EXPECT_EQ(ActivityOf(rebuild), (Activity{ActivityKind::kRebuild, ActivityState::kPaused, 40}));

    Array resync = ArrayOf(0x05, "+++");
    resync.action = SyncAction::kFrozen;
    resync.resync_start = 1000;
    EXPECT_EQ(ActivityOf(resync), (Activity{ActivityKind::kFix, ActivityState::kPaused, 50}));

    Array reshape = ArrayOf(0x05, "++++");
    reshape.action = SyncAction::kFrozen;
    reshape.reshape_position = 800;
    EXPECT_EQ(ActivityOf(reshape),
              (Activity{ActivityKind::kMigration, ActivityState::kPaused, 10}));

    Array nothing = ArrayOf(0x05, "+++");
    nothing.action = SyncAction::kFrozen;
    EXPECT_EQ(ActivityOf(nothing), Activity{});
}

TEST(AnArray, ThatWaitsForItsFirstWriteHasItsSynchronisationBeforeIt) {
    Array array = ArrayOf(0x05, "+++");
    array.state = ArrayState::kReadAuto;
    EXPECT_EQ(ActivityOf(array), Activity{});
    array.resync_start = 500;
    EXPECT_EQ(ActivityOf(array), (Activity{ActivityKind::kFix, ActivityState::kAutoPaused, 25}));
}

// ---- Disks ----

class ADisk : public testing::Test {
protected:
    ADisk() {
        disk_.id = 1;
        disk_.state = "running";
        disk_.content.known = true;
    }
    HX_U8 Bits(bool spare = false) { return RoleOf(machine_, disk_, spare).bits; }
    Machine machine_;
    Disk disk_;
};

TEST_F(ADisk, IsFreeOnlyWhenNothingIsOnIt) {
    EXPECT_EQ(Bits(), 0x01);
    disk_.content.anything = true;
    EXPECT_EQ(Bits(), 0x05);
    disk_.content = {};  // nobody has looked
    EXPECT_EQ(Bits(), 0x05);
    disk_.content.known = true;
    disk_.partitions.emplace_back();
    EXPECT_EQ(Bits(), 0x05);
    disk_.partitions.clear();
    disk_.held = true;
    EXPECT_EQ(Bits(), 0x05);
    disk_.held = false;
    disk_.twice = true;
    EXPECT_EQ(Bits(), 0x05);
    disk_.twice = false;
    disk_.read_only = 1;
    EXPECT_EQ(Bits(), 0x05);
}

TEST_F(ADisk, ThatDoesNotAnswerIsUnavailable) {
    disk_.state = "offline";
    EXPECT_EQ(Bits(), 0x80);
    disk_.state.reset();  // virtio has none
    EXPECT_EQ(Bits(), 0x01);
    disk_.state = "live";  // of NVMe
    EXPECT_EQ(Bits(), 0x01);
    disk_.present = false;
    EXPECT_EQ(Bits(), 0x84);
}

TEST_F(ADisk, TellsWhatItDoesForItsArray) {
    machine_.arrays.push_back(ArrayOf(0x05, "+++"));
    machine_.arrays[0].id = 7;
    EXPECT_EQ(Bits(), 0x05);
    EXPECT_EQ(RoleOf(machine_, disk_, false).serves, 7);
    Member& member = machine_.arrays[0].members[1];
    member.state = MemberState{.spare = true};
    EXPECT_EQ(Bits(), 0x15);  // being filled
    member.state = MemberState{.faulty = true};
    EXPECT_EQ(Bits(), 0x25);
    member.state = MemberState{.spare = true};
    member.slot.reset();
    EXPECT_EQ(Bits(), 0x41);
    machine_.arrays[0].state = ArrayState::kInactive;  // there all members say "spare"
    EXPECT_EQ(Bits(), 0x05);
}

TEST_F(ADisk, CanBeASpareForAllArrays) { EXPECT_EQ(Bits(true), 0x09); }

}  // namespace
