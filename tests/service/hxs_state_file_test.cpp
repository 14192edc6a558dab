// What is remembered from one start to the next, and a file that cannot be read.
#include "service/hxs_state_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "conditions/hxc_state.h"
#include "service/hxs_state_json.h"
#include "support/temporary_root.h"

namespace {

using hxconditions::Code;
using hxservice::ParseState;
using hxservice::Saved;
using hxservice::StateFile;
using hxservice::StateText;

// Something of each kind of member.
hxconditions::State FullState() {
    using namespace hxconditions;
    State state;
    state.now = 1000;
    state.boot = 2000;
    state.boot_id = "boot";
    state.looks = 7;
    state.started = 900;
    Held& held = state.held.emplace_back();
    held.found.code = Code::kDiskFailed;
    held.found.object.kind = Kind::kDisk;
    held.found.object.address = "a0/pd5";
    held.found.object.identity = "disk QD-5";
    held.found.values["o"] = "a0/pd5";
    held.found.lost.push_back({"disk QD-6", "a0/pd6"});
    held.found.links = {"vd DATA"};
    held.found.up = Damping{.seconds = 5, .looks = 2};
    held.is_shown = true;
    held.since = 123;
    held.since_is = SinceIs::kEvent;
    held.good_since = 999;
    held.hits = {1, 2, 3};
    held.event =
        Event{.adapter = 1, .event_class = 2, .code = 2, .time = 5, .params = {1, 2, 3, 4}};
    held.acknowledged = Acknowledgement{.by = "root", .at = 77, .note = "ordered"};
    state.raises["key"] = {10, 20};
    state.told["key"].causes = {"cause"};
    state.silences.push_back({.code = Code::kDiskFailed, .identity = "disk QD-5", .until = 5000});
    state.memory.numbers[3] = "adapter VC";
    state.memory.clock_differences["adapter VC"] = -5;
    state.memory.links["disk QD-5"].phys = 4;
    state.memory.remaps["disk QD-5"].push_back({.at = 1, .count = 2});
    state.memory.progress["vd DATA"].activity.percent = 29;
    return state;
}

// The path of a state file that was saved, and that another program has changed by `statement`
// since.
std::string SavedAndThen(const TemporaryRoot& root, const char* statement) {
    const std::string path = root.Path("/state.db");
    StateFile(path).Save({FullState(), 42});
    const hxsqlite::Connection other(
        path, hxsqlite::Access::kWrite,
        [](hxsqlite::Trouble, const std::string&, const std::string& why) { return why; });
    other.Execute(statement);
    return path;
}

TEST(ServiceState, IsTheSameAfterItWasKept) {
    const std::string text = StateText(FullState());
    const hxconditions::State again = ParseState(text);
    EXPECT_EQ(StateText(again), text);
    ASSERT_EQ(again.held.size(), 1U);
    EXPECT_EQ(again.held[0].found.code, Code::kDiskFailed);
    EXPECT_EQ(again.held[0].found.up->seconds, 5U);
    EXPECT_EQ(again.held[0].event->params[3], 4U);
    EXPECT_EQ(again.held[0].acknowledged->note, "ordered");
    EXPECT_EQ(again.silences[0].until, 5000);
    EXPECT_EQ(again.memory.numbers.at(3), "adapter VC");
    EXPECT_EQ(again.memory.clock_differences.at("adapter VC"), -5);
    EXPECT_EQ(again.memory.progress.at("vd DATA").activity.percent, 29U);
}

TEST(ServiceState, IsRefusedWhenItIsAnotherOnes) {
    for (const std::string text : {"", "{", "[]", "[1,2]", "null", "7"}) {
        EXPECT_THROW(ParseState(text), hxservice::StateTextError) << text;
    }
    std::string text = StateText(FullState());
    text.replace(text.find("DISK_FAILED"), 11, "DISK_BROKEN");
    EXPECT_THROW(ParseState(text), hxservice::StateTextError);
}

TEST(ServiceStateFile, HoldsWhatWasSaved) {
    const TemporaryRoot root;
    const std::string path = root.Path("/state.db");
    {
        StateFile file(path);
        EXPECT_EQ(file.TakeSaved().place, std::nullopt);
        file.Save({FullState(), 41});
        hxservice::Outbox box;
        box.sinks["mail"].delivered_letters = 5;
        box.sinks["mail"].failed_letters = 2;
        file.Save(
            {FullState(), 42, box, {.told = {{{"disk", "ma\"jor"}, 1000000000007}}, .lost = 12}});
    }
    StateFile file(path);
    const Saved saved = file.TakeSaved();
    EXPECT_EQ(file.Damage(), "");
    EXPECT_EQ(saved.place, 42U);
    EXPECT_EQ(StateText(saved.state), StateText(FullState()));
    EXPECT_EQ(saved.events.told.at({"disk", "ma\"jor"}), 1000000000007U);
    EXPECT_EQ(saved.events.lost, 12U);
    EXPECT_EQ(saved.alerts.sinks.at("mail").delivered_letters, 5U);
    EXPECT_EQ(saved.alerts.sinks.at("mail").failed_letters, 2U);
}

// It was made by a version that did not count.
TEST(ServiceStateFile, WithoutCountsOfEventsBeginsWithNone) {
    const TemporaryRoot root;
    const std::string path = SavedAndThen(root, "DELETE FROM kept WHERE name = 'events'");
    StateFile file(path);
    EXPECT_EQ(file.Damage(), "");
    EXPECT_EQ(file.TakeSaved().place, 42U);
}

TEST(ServiceStateFile, IsSetAsideWhenItsCountsAreDamaged) {
    const TemporaryRoot root;
    const std::string path =
        SavedAndThen(root, "UPDATE kept SET value = '{\"told\":[7]}' WHERE name = 'events'");
    EXPECT_NE(StateFile(path).Damage(), "");
}

TEST(ServiceStateFile, IsSetAsideWhenItIsNoDatabase) {
    const TemporaryRoot root;
    root.Write("/state.db", std::string(5000, 'x'));
    const std::string path = root.Path("/state.db");
    StateFile file(path);
    EXPECT_TRUE(file.Damage().starts_with(path + " is damaged: ")) << file.Damage();
    EXPECT_TRUE(file.Damage().ends_with("; it is " + path + ".damaged now")) << file.Damage();
    EXPECT_EQ(root.Read("/state.db.damaged"), std::string(5000, 'x'));
    file.Save({FullState(), 42});
    EXPECT_EQ(StateFile(path).Damage(), "");
}

TEST(ServiceStateFile, IsSetAsideWhenItsTextIsDamaged) {
    const TemporaryRoot root;
    const std::string path =
        SavedAndThen(root, "UPDATE kept SET value = '[1' WHERE name = 'conditions'");
    StateFile file(path);
    EXPECT_NE(file.Damage(), "");
    EXPECT_EQ(file.TakeSaved().place, std::nullopt);
}

// A file that is made has its tables before it has its name, so that no start leaves an empty one.
TEST(ServiceStateFile, IsSetAsideWhenItIsEmpty) {
    const TemporaryRoot root;
    const std::string path = root.Path("/state.db");
    StateFile(path).Save({FullState(), 42});
    std::filesystem::resize_file(path, 0);
    StateFile file(path);
    EXPECT_EQ(file.Damage(), path + " is damaged: it is empty; it is " + path + ".damaged now");
    EXPECT_EQ(file.TakeSaved().place, std::nullopt);
    file.Save({FullState(), 43});
    EXPECT_EQ(StateFile(path).TakeSaved().place, 43U);
}

TEST(ServiceStateFile, OfAKilledStartIsMadeAnew) {
    const TemporaryRoot root;
    root.Write("/state.db.new", "half");
    const std::string path = root.Path("/state.db");
    EXPECT_EQ(StateFile(path).Damage(), "");
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
}

// A file that is there and cannot be opened is not damaged for that.
TEST(ServiceStateFile, StaysWhereItCannotBeOpened) {
    const TemporaryRoot root;
    const std::string path = root.Path("/state.db");
    std::filesystem::create_directory(path);
    EXPECT_THROW(StateFile{path}, hxsqlite::StoreError);
    EXPECT_TRUE(std::filesystem::is_directory(path));
    EXPECT_FALSE(std::filesystem::exists(path + ".damaged"));
}

TEST(ServiceStateFile, OfAnotherVersionIsSetAside) {
    const TemporaryRoot root;
    const std::string path = SavedAndThen(root, "PRAGMA user_version = 99");
    EXPECT_EQ(StateFile(path).Damage(),
              path + " is no state of this version of the service; it is " + path + ".damaged now");
}

}  // namespace
