// Whatever happens, in whatever order: nothing is told that no look has seen, nothing is cleared
// that was not seen good, and what is told of a thing goes raised, changed, cleared.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "codes/event.h"
#include "conditions/hxc_json.h"
#include "machine.h"
#include "support/sanitized.h"

namespace hxconditions {
namespace {

class Fate {
public:
    explicit Fate(unsigned seed) : random_(seed) {}

    bool Is(unsigned percent) { return Below(100) < percent; }
    unsigned Below(unsigned bound) {
        return std::uniform_int_distribution<unsigned>(0, bound - 1)(random_);
    }

    // Breaks or mends one thing.
    void Change(Answers& answers) {
        switch (Below(10)) {
            case 0:
            case 1:
                Fail(answers, Below(8));
                break;
            case 2:
                Pull(answers, Below(8));
                break;
            case 3:
                Rebuild(answers, 1, Below(100), 1 + Below(3));
                break;
            case 4:
                DiskAt(answers, Below(8)).smart_alarm = Is(50);
                break;
            case 5:
                ElementAt(answers, 2).status = Below(9);
                break;
            case 6:
                if (answers.adapters[0].battery) answers.adapters[0].battery->status = Below(512);
                break;
            case 7:
                VirtualDiskAt(answers, Below(2)).cache = Is(50) ? 0x01 : 0x81;
                break;
            case 8:
                DiskAt(answers, Below(8)).serial = "QD-" + std::to_string(Below(100));
                break;
            default:
                answers = GoodMachine();
                break;
        }
    }

    Answers WithFailures(const Answers& truth) {
        Answers answers = truth;
        if (Is(4)) {
            answers.machine = Failed("HX_API_Initialize", 1);
            answers.adapters.clear();
            return answers;
        }
        Adapter& adapter = answers.adapters[0];
        if (Is(5)) FailAll(adapter);
        if (Is(10)) {
            adapter.virtual_disks_query = Failed("HX_LD_GetInfo", 7);
            adapter.virtual_disks.clear();
        }
        if (Is(10)) {
            adapter.disks_query = Failed("HX_PD_GetHDInfo_Ext", 7);
            adapter.disks.clear();
        }
        if (Is(10)) {
            adapter.enclosures_query = Failed("HX_ENC_GetElementInfo", 7);
            adapter.enclosures.clear();
        }
        if (Is(10)) {
            adapter.battery_query = Failed("HX_BBU_GetInfo", 7);
            adapter.battery.reset();
        }
        return answers;
    }

    std::vector<Event> Events() {
        std::vector<Event> events;
        while (Is(40)) {
            const auto& row = hxcodes::kEvents[Below(std::size(hxcodes::kEvents))];
            events.push_back(
                EventOf(hxcodes::ClassOf(row.code), hxcodes::CodeOf(row.code), Below(8), Below(3)));
        }
        return events;
    }

    void Move(Watcher& watcher) {
        watcher.Wait(Below(Is(10) ? 100000 : 90));
        if (Is(5)) watcher.now.real -= Below(1000000);
        if (Is(5)) watcher.now.real += Below(1000000);
        if (Is(3)) {
            watcher.now.boot = Below(100);
            watcher.now.boot_id += "'";
            NoteStart(watcher.state);
        }
    }

private:
    std::mt19937 random_;
};

std::string TextOf(const std::vector<Message>& messages) {
    std::string text;
    for (const Message& message : messages) text += MessageJson(message) + "\n";
    return text;
}

class Watching : public testing::TestWithParam<unsigned> {
protected:
    // What nobody may say: it is shown, not stale, and the answers do not say so.
    void ExpectEveryHeadIsSeen(const Answers& answers) const {
        const Overview once = LookOnce(answers, watcher.now, {});
        for (const Condition& head : watcher.overview.heads) {
            const Row& row = RowOf(head.code);
            const bool may_linger =
                row.down.seconds != 0 || row.down.looks != 0 || head.is_flapping || head.is_stale;
            const bool is_seen = row.needs == Needs::kLook && !may_linger;
            if (!is_seen || Find(watcher.overview, Code::kRebuildStalled) != nullptr) continue;
            if (head.code == Code::kBatteryRemoved) continue;  // or remembered
            if (head.code == Code::kDiskMissing) continue;     // or remembered
            EXPECT_NE(Find(once, head.code), nullptr) << row.name << " is not so";
        }
    }

    void ExpectClearsAreSeenGood(const Answers& answers) const {
        const Things things(answers, watcher.state.memory.numbers);
        for (const Message& message : watcher.messages) {
            if (message.change != Change::kCleared || !message.reason.empty()) continue;
            const Row& row = RowOf(message.condition.code);
            if (row.needs == Needs::kEvents) continue;
            EXPECT_TRUE(things.IsRead(message.condition.object, row.rests_on))
                << row.name << " was cleared unseen";
        }
    }

    void ExpectMessagesAlternate() {
        for (const Message& message : watcher.messages) {
            const std::string key = KeyOf(message.condition.code, message.condition.object);
            switch (message.change) {
                case Change::kRaised:
                    EXPECT_TRUE(told.insert({key, true}).second) << key << " twice";
                    break;
                case Change::kWorse:
                case Change::kBetter:
                    EXPECT_TRUE(told.contains(key)) << key << " was never raised";
                    break;
                case Change::kCleared:
                    EXPECT_EQ(told.erase(key), 1U) << key << " was never raised";
                    break;
                case Change::kPassed:
                    EXPECT_FALSE(told.contains(key)) << key << " still holds";
                    break;
            }
        }
    }

    Watcher watcher;
    std::map<std::string, bool> told;
};

// A killed service begins again with what it had written; all it had not written is asked again.
TEST_P(Watching, TellsTheTruthInAnyOrderOfThings) {
    constexpr unsigned kSequences = 50;
    constexpr unsigned kLooks = 20;
    for (unsigned sequence = 0; sequence < kSequences; ++sequence) {
        Fate fate(GetParam() * kSequences + sequence);
        watcher = Watcher();
        told.clear();
        Answers truth = GoodMachine();
        watcher.Look(truth);
        for (unsigned look = 0; look < kLooks && !HasFailure(); ++look) {
            fate.Change(truth);
            const Answers answers = fate.WithFailures(truth);
            const std::vector<Event> events = fate.Events();
            const State written = watcher.state;
            watcher.Look(answers, events);
            const std::string first = TextOf(watcher.messages);
            if (fate.Is(10)) {
                watcher.state = written;
                watcher.Look(answers, events);
                EXPECT_EQ(TextOf(watcher.messages), first);
            }
            ExpectEveryHeadIsSeen(answers);
            ExpectClearsAreSeenGood(answers);
            ExpectMessagesAlternate();
            fate.Move(watcher);
        }
        ASSERT_FALSE(HasFailure()) << "sequence " << sequence;
    }
}
INSTANTIATE_TEST_SUITE_P(Seeds, Watching, testing::Range(0U, kSanitized ? 3U : 10U));

}  // namespace
}  // namespace hxconditions
