// Numbers stay with disks and arrays, whatever the kernel calls them.
#include "rules/hxmd_identity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "rules/hxmd_state.h"

using namespace hxmd;

namespace {

Disk DiskOf(const std::string& name, const std::string& key) {
    Disk disk;
    disk.name = name;
    disk.key = key;
    disk.serial = key;
    disk.sectors = 1000;
    return disk;
}

Array ArrayOf(char digit, unsigned places) {
    Array array;
    array.uuid = std::string(31, '0') + digit;
    array.state = ArrayState::kRunning;
    array.level = 0x01;
    array.disks = DiskCount{.now = places};
    return array;
}

void AddMember(Array& array, const std::string& key, unsigned slot) {
    Member& member = array.members.emplace_back();
    member.device = key;
    member.slot = slot;
    member.present = !key.empty();
    member.state = MemberState{.in_sync = true};
}

class Numbers : public testing::Test {
protected:
    // The machine as it is after a look of who may save what is learned.
    void Look(Numbering numbering = Numbering::kNewToo, std::int64_t now = 1) {
        found_ = machine_;
        Identify(found_, kept_, numbering, now);
    }
    // The ID of the disk of that key; kNoId when it is not listed.
    HX_U16 IdOf(const std::string& key) {
        const auto disk = std::ranges::find(found_.disks, key, &Disk::key);
        return disk == found_.disks.end() ? kNoId : disk->id;
    }
    Machine machine_;
    Machine found_;
    Kept kept_;
};

TEST_F(Numbers, AreTheLowestThatWereNeverUsed) {
    machine_.disks = {DiskOf("sdb", "b"), DiskOf("sda", "a")};
    Look();
    EXPECT_EQ(IdOf("b"), 0);
    EXPECT_EQ(IdOf("a"), 1);
    EXPECT_EQ(found_.disks[0].key, "b");  // ascending
}

TEST_F(Numbers, StayWithADiskThatComesBackUnderAnotherName) {
    machine_.disks = {DiskOf("sda", "a"), DiskOf("sdb", "b")};
    Look();
    machine_.disks = {DiskOf("sda", "c")};  // another disk has the name meanwhile
    Look();
    EXPECT_EQ(IdOf("c"), 2);
    machine_.disks = {DiskOf("sda", "b"), DiskOf("sdc", "a")};
    Look();
    EXPECT_EQ(IdOf("a"), 0);
    EXPECT_EQ(IdOf("b"), 1);
}

TEST_F(Numbers, AreNotGivenByWhoCannotSaveThem) {
    machine_.disks = {DiskOf("sda", "a")};
    Look();
    machine_.disks.push_back(DiskOf("sdb", "b"));
    Look(Numbering::kKnownOnly);
    EXPECT_EQ(IdOf("a"), 0);
    EXPECT_EQ(found_.disks.size(), 1U);
    EXPECT_EQ(kept_.known_disks.size(), 1U);
}

TEST_F(Numbers, OfArraysAreGivenAgainWhenAllAreUsed) {
    for (unsigned i = 0; i < kMostArrays; ++i) {
        KeptArray& row = kept_.known_arrays.emplace_back();
        row.id = static_cast<HX_U16>(i);
        row.uuid = std::to_string(i);
        row.left = 100 + i % 7;
    }
    kept_.known_arrays[200].left = 50;
    kept_.known_blocks.push_back({.id = 3, .disk = 1, .array = 200, .slot = 0, .start = 0});
    machine_.arrays = {ArrayOf('a', 1)};
    Look();
    EXPECT_EQ(found_.arrays.at(0).id, 200);  // gone for the longest time
    EXPECT_TRUE(kept_.known_blocks.empty());
    for (KeptArray& row : kept_.known_arrays) row.left = 0;
    machine_.arrays = {ArrayOf('b', 1)};
    found_ = machine_;
    Kept all_there = kept_;
    Identify(found_, all_there, Numbering::kKnownOnly, 1);
    EXPECT_TRUE(found_.arrays.empty());
}

TEST_F(Numbers, OfTwoArraysWithOneUuidAreGivenOnce) {
    machine_.arrays = {ArrayOf('a', 1), ArrayOf('a', 1)};
    Look();
    EXPECT_EQ(found_.arrays.size(), 1U);
}

TEST_F(Numbers, OfAnArrayWithoutAUuidAreNotGiven) {
    machine_.arrays = {ArrayOf('a', 1)};
    machine_.arrays[0].uuid.reset();
    Look();
    EXPECT_TRUE(found_.arrays.empty());
}

TEST_F(Numbers, RememberWhenAnArrayLeft) {
    machine_.arrays = {ArrayOf('a', 1)};
    Look();
    machine_.arrays.clear();
    Look(Numbering::kNewToo, 77);
    EXPECT_EQ(kept_.known_arrays.at(0).left, 77);
    Look(Numbering::kNewToo, 99);
    EXPECT_EQ(kept_.known_arrays.at(0).left, 77);
    machine_.arrays = {ArrayOf('a', 1)};
    Look();
    EXPECT_EQ(kept_.known_arrays.at(0).left, 0);
}

// ---- Blocks and missing disks ----

class Places : public Numbers {
protected:
    Places() {
        machine_.disks = {DiskOf("sda", "a"), DiskOf("sdb", "b"), DiskOf("sdc", "c")};
        machine_.arrays = {ArrayOf('1', 2)};
        AddMember(machine_.arrays[0], "a", 0);
        AddMember(machine_.arrays[0], "b", 1);
        Look();
    }
    Array& TheArray() { return machine_.arrays[0]; }
};

TEST_F(Places, HaveABlockEach) {
    ASSERT_EQ(kept_.known_blocks.size(), 2U);
    EXPECT_EQ(found_.arrays[0].members[0].block, 0);
    EXPECT_EQ(found_.arrays[0].members[1].block, 1);
    EXPECT_EQ(found_.arrays[0].members[1].disk, 1);
}

TEST_F(Places, WhoseDiskWasPulledKeepItsBlockAndListItAsMissing) {
    std::erase_if(machine_.disks, [](const Disk& disk) { return disk.key == "b"; });
    TheArray().members[1].device.clear();
    TheArray().members[1].present = false;
    Look();
    EXPECT_EQ(found_.arrays[0].members[1].block, 1);
    EXPECT_EQ(found_.arrays[0].members[1].disk, 1);
    ASSERT_EQ(IdOf("b"), 1);
    EXPECT_FALSE(found_.disks[1].present);
    EXPECT_EQ(found_.disks[1].serial, "b");
    EXPECT_EQ(RoleOf(found_, found_.disks[1], false).bits, 0x84);
}

TEST_F(Places, ThatAreEmptyListTheDiskThatLeftThem) {
    std::erase_if(machine_.disks, [](const Disk& disk) { return disk.key == "b"; });
    TheArray().members.pop_back();
    Look();
    EXPECT_EQ(IdOf("b"), 1);
    // Once another disk fills the place nobody waits for the old one.
    AddMember(TheArray(), "c", 1);
    Look();
    EXPECT_EQ(IdOf("b"), kNoId);
    EXPECT_EQ(found_.arrays[0].members[1].block, 2);
    EXPECT_EQ(kept_.known_blocks.size(), 2U);
}

TEST_F(Places, OfTwoMembersDuringAReplacementHaveTwoBlocks) {
    AddMember(TheArray(), "c", 1);
    TheArray().members[2].state = MemberState{.spare = true, .replacement = true};
    Look();
    EXPECT_EQ(found_.arrays[0].members[1].block, 1);
    EXPECT_EQ(found_.arrays[0].members[2].block, 2);
}

TEST_F(Numbers, OfADiskThatNoArrayWaitsForAreNotListed) {
    machine_.disks = {DiskOf("sda", "a")};
    Look();
    machine_.disks.clear();
    Look();
    EXPECT_TRUE(found_.disks.empty());
}

}  // namespace
