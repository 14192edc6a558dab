// What sinks are told, when, and what becomes of it: with sinks and a clock of the test's own.
#include "service/hxs_alerts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "service/hxs_state_file.h"
#include "service/scripted_deliverer.h"
#include "service/scripted_source.h"
#include "support/temporary_root.h"

namespace {

namespace hxc = hxconditions;
using hxservice::Alerts;
using hxservice::Outbox;
using hxservice::Policy;
using hxservice::SinkSettings;
using std::chrono::minutes;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using vexortools::Duration;

constexpr hxc::Ticks kDay = 86400;

hxc::Condition ConditionOf(hxc::Code code, unsigned disk) {
    hxc::Condition condition;
    condition.code = code;
    condition.level = hxc::LevelOf(hxc::RowOf(code));
    condition.object.kind = hxc::Kind::kDisk;
    condition.object.adapter = 0;
    condition.object.id = disk;
    condition.object.address = "a0/pd" + std::to_string(disk);
    condition.object.identity = "disk QD-" + std::to_string(disk);
    condition.sentence = condition.object.address + " " + std::string(hxc::RowOf(code).name);
    condition.since = 1000;
    return condition;
}

// A machine whose conditions a test raises and clears, a clock, and the sinks.
class AlertsTest : public testing::Test {
protected:
    Alerts& Made(std::vector<SinkSettings> sinks, Outbox box = {}) {
        alerts_.emplace(deliverer, log, "host1", std::move(sinks), std::move(box));
        return *alerts_;
    }
    // A look that found these conditions.
    void Look(std::vector<hxc::Condition> heads, std::vector<hxc::Message> messages = {},
              bool has_events = false) {
        hxc::Look look;
        look.state.now = ticks;
        for (const hxc::Condition& head : heads) {
            look.state.told[hxc::KeyOf(head.code, head.object)];
        }
        look.messages = std::move(messages);
        look.overview.heads = std::move(heads);
        alerts_->Take(look, {}, has_events, now, 1000000);
    }
    // Serves until nothing is due now.
    bool Serve() {
        bool is_look_due = false;
        do {
            is_look_due |= alerts_->Serve(now, 1000000, [this] { ++saves; });
        } while (alerts_->Due().value_or(Duration::max()) <= now);
        return is_look_due;
    }
    void Pass(Duration time) {
        now += time;
        ticks += std::chrono::duration_cast<seconds>(time).count();
    }
    // "raised a0/pd5" and so on, of the letters since the last call.
    std::vector<std::string> Told() {
        std::vector<std::string> told;
        for (const auto& sent : std::exchange(deliverer.letters, {})) {
            std::string line;
            const auto json = nlohmann::json::parse(sent.letter.json);
            for (const auto& each : json["alerts"]) {
                line += (line.empty() ? "" : ", ") + each["change"].get<std::string>() + " " +
                        each["object"]["address"].get<std::string>() +
                        (each["may_be_repeat"].get<bool>() ? " again?" : "");
            }
            told.push_back(line);
        }
        return told;
    }

    ScriptedDeliverer deliverer;
    KeptLog log;
    Duration now = std::chrono::hours(1);
    hxc::Ticks ticks = 5000;
    int saves = 0;
    std::optional<Alerts> alerts_;
    const hxc::Condition failed = ConditionOf(hxc::Code::kDiskFailed, 5);
    const hxc::Condition tripped = ConditionOf(hxc::Code::kDiskPredictedFailure, 4);

    static hxc::Message Raised(const hxc::Condition& condition) {
        return {hxc::Change::kRaised, condition, std::nullopt, 0, ""};
    }
    static hxc::Message Cleared(const hxc::Condition& condition) {
        return {hxc::Change::kCleared, condition, std::nullopt, 60, ""};
    }
};

using Alert = AlertsTest;

TEST_F(Alert, TellsWhatIsRaisedAndClearedOnce) {
    Made({SinkNamed("pager")});
    Look({failed}, {Raised(failed)});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5"));
    Look({failed});
    Serve();
    EXPECT_THAT(Told(), IsEmpty());
    Look({}, {Cleared(failed)});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("cleared a0/pd5"));
}

TEST_F(Alert, WaitsTwoSecondsAfterEventsAndTellsAllInOneLetter) {
    Made({SinkNamed("pager")});
    Look({failed}, {Raised(failed)}, true);
    Serve();
    EXPECT_THAT(Told(), IsEmpty());
    EXPECT_EQ(alerts_->Due(), now + seconds(2));
    Pass(seconds(2));
    Look({failed, tripped}, {Raised(tripped)});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5, raised a0/pd4"));
}

// A storm of events puts nothing off for ever.
TEST_F(Alert, WaitsNoLongerForEventsThatGoOn) {
    Made({SinkNamed("pager")});
    for (int second = 0; second < 3; ++second) {
        Look({failed}, second == 0 ? std::vector{Raised(failed)} : std::vector<hxc::Message>{},
             true);
        Serve();
        Pass(seconds(1));
    }
    Serve();
    EXPECT_THAT(Told(), SizeIs(1));
}

TEST_F(Alert, TellsANewSinkWhatIsWrongAlready) {
    Made({SinkNamed("pager")});
    Look({failed});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5"));
}

TEST_F(Alert, IsQuietAboutWhatIsAcknowledgedOrSilenced) {
    Made({SinkNamed("pager")});
    hxc::Condition acknowledged = failed;
    acknowledged.acknowledged = hxc::Acknowledgement{.by = "root", .at = 1, .note = ""};
    hxc::Condition silenced = tripped;
    silenced.silenced_until = 2000000;
    Look({acknowledged, silenced});
    Serve();
    EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Alert, IsSentAgainByThePolicyOfItsSink) {
    struct Row {
        Policy policy;
        std::vector<int> days;  // after the first day
    };
    const Row rows[] = {{Policy::kOnce, {}},
                        {Policy::kDaily, {1, 2, 3, 4, 5, 6, 7, 8}},
                        {Policy::kAlways, {1, 2, 3, 4, 5, 6, 7, 8}},
                        {Policy::kDiminishing, {1, 3, 7}}};
    for (const Row& row : rows) {
        SinkSettings sink = SinkNamed("pager");
        sink.policy = row.policy;
        Made({sink});
        Look({failed}, {Raised(failed)});
        Serve();
        Told();
        std::vector<int> days;
        for (int day = 1; day <= 8; ++day) {
            Pass(seconds(kDay));
            Look({failed});
            Serve();
            const std::vector<std::string> told = Told();
            if (told == std::vector<std::string>{"repeat a0/pd5"}) days.push_back(day);
        }
        EXPECT_EQ(days, row.days) << static_cast<int>(row.policy);
    }
}

TEST_F(Alert, IsSentAgainByAlwaysWhenItsExplanationChanges) {
    SinkSettings sink = SinkNamed("pager");
    sink.policy = Policy::kAlways;
    Made({sink, SinkNamed("mail")});
    Look({failed}, {Raised(failed)});
    Serve();
    Told();
    hxc::Condition hindered = failed;
    hindered.hindrance = hxc::Code::kSpareNone;
    Look({hindered});
    Serve();
    ASSERT_THAT(deliverer.letters, SizeIs(1));
    EXPECT_EQ(deliverer.letters[0].sink, "pager");
}

TEST_F(Alert, BelowItsSinksLevelIsNotSent) {
    SinkSettings sink = SinkNamed("pager");
    sink.level = hxc::Level::kCritical;
    Made({sink});
    Look({failed}, {Raised(failed)});
    Look({}, {Cleared(failed)});
    Serve();
    EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Alert, ThatASinkKnowsIsFollowedBelowItsLevel) {
    SinkSettings sink = SinkNamed("pager");
    sink.level = hxc::Level::kCritical;
    Made({sink});
    const hxc::Condition worse = ConditionOf(hxc::Code::kVdNoRedundancy, 0);
    const hxc::Condition better = ConditionOf(hxc::Code::kVdRebuildingUnprotected, 0);
    Look({worse}, {Raised(worse)});
    Look({better}, {{hxc::Change::kBetter, better, worse.code, 0, ""}});
    Look({}, {Cleared(better)});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd0, better a0/pd0, cleared a0/pd0"));
}

TEST_F(Alert, WaitsForASinkThatFailsAndIsMarkedAsARepeat) {
    Made({SinkNamed("pager")});
    deliverer.errors["pager"] = "busy";
    Look({failed}, {Raised(failed)});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5"));
    EXPECT_EQ(alerts_->Due(), now + seconds(1));
    Pass(seconds(1));
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5 again?"));
    EXPECT_EQ(alerts_->Due(), now + seconds(2));
    deliverer.errors.clear();
    Pass(seconds(2));
    Look({failed, tripped}, {Raised(tripped)});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5 again?, raised a0/pd4"));
    EXPECT_EQ(alerts_->Due(), std::nullopt);
    EXPECT_EQ(alerts_->Box().sinks.at("pager").failed_letters, 2U);
    EXPECT_EQ(alerts_->Box().sinks.at("pager").delivered_letters, 1U);
    EXPECT_THAT(log.lines,
                ElementsAre("alerts cannot be delivered by pager: busy",
                            "alerts are delivered by pager again", "2 alerts delivered by pager"));
}

TEST_F(Alert, ThatCouldNotEvenBeBegunIsNoRepeat) {
    Made({SinkNamed("pager")});
    deliverer.errors["pager"] = "cannot be started: Resource temporarily unavailable";
    deliverer.begins = false;
    Look({failed}, {Raised(failed)});
    Serve();
    deliverer.errors.clear();
    Pass(seconds(1));
    Told();
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5"));
}

TEST_F(Alert, WaitsAtMostTenMinutesForTheNextAttempt) {
    Made({SinkNamed("pager")});
    deliverer.errors["pager"] = "busy";
    Look({failed}, {Raised(failed)});
    for (int attempt = 0; attempt < 30; ++attempt) {
        Serve();
        Pass(*alerts_->Due() - now);
    }
    Serve();
    EXPECT_EQ(alerts_->Due(), now + minutes(10));
}

TEST_F(Alert, IsNotSentAgainBeforeItsReceiverWantsIt) {
    SinkSettings sink = SinkNamed("hook");
    sink.kind = hxservice::SinkKind::kWebhook;
    Made({sink});
    deliverer.errors["hook"] = "the receiver answered 503";
    deliverer.wait = minutes(2);
    Look({failed}, {Raised(failed)});
    Serve();
    EXPECT_EQ(alerts_->Due(), now + minutes(2));
    Pass(minutes(2));
    deliverer.wait = std::chrono::milliseconds(1);  // sooner than the wait after two failures
    Serve();
    EXPECT_GE(*alerts_->Due(), now + seconds(2));
    deliverer.errors.clear();
    Pass(*alerts_->Due() - now);
    Serve();
    EXPECT_EQ(alerts_->Due(), std::nullopt);
}

TEST_F(Alert, OfManyMachinesDoesNotComeAgainAtOneTime) {
    const auto wait_of = [&](const std::string& name, hxservice::SinkKind kind) {
        SinkSettings sink = SinkNamed(name);
        sink.kind = kind;
        Made({sink});
        deliverer.errors[name] = "the receiver answered 500";
        Look({failed}, {Raised(failed)});
        Serve();
        return *alerts_->Due() - now;
    };
    std::set<Duration> waits;
    for (int number = 0; number < 20; ++number) {
        const std::string name = "hook" + std::to_string(number);
        const Duration wait = wait_of(name, hxservice::SinkKind::kWebhook);
        EXPECT_GE(wait, seconds(1));
        EXPECT_LT(wait, std::chrono::milliseconds(1250));
        EXPECT_EQ(wait, wait_of(name, hxservice::SinkKind::kWebhook)) << "the same after a crash";
        EXPECT_EQ(wait_of(name, hxservice::SinkKind::kCommand), seconds(1));
        waits.insert(wait);
    }
    EXPECT_GT(waits.size(), 10U);
}

TEST_F(Alert, MakesItsSinkAConditionAfterThreeFailuresUntilItIsDelivered) {
    Made({SinkNamed("pager")});
    deliverer.errors["pager"] = "busy";
    Look({failed}, {Raised(failed)});
    EXPECT_FALSE(Serve());
    Pass(seconds(1));
    EXPECT_FALSE(Serve());
    EXPECT_FALSE(alerts_->Health()[0].is_failing);
    Pass(seconds(2));
    EXPECT_TRUE(Serve());
    EXPECT_TRUE(alerts_->Health()[0].is_failing);
    EXPECT_EQ(alerts_->Health()[0].error, "busy");
    EXPECT_EQ(alerts_->Health()[0].waiting, 1U);
    deliverer.errors.clear();
    Pass(seconds(4));
    EXPECT_TRUE(Serve());
    EXPECT_FALSE(alerts_->Health()[0].is_failing);
}

TEST_F(Alert, OfAFailingSinkGoesToTheOthers) {
    Made({SinkNamed("pager"), SinkNamed("mail")});
    hxc::Condition failing = ConditionOf(hxc::Code::kDeliveryFailing, 0);
    failing.object = {};
    failing.object.kind = hxc::Kind::kSink;
    failing.object.name = "pager";
    failing.object.identity = "sink pager";
    failing.object.address = "?";
    Look({failing}, {Raised(failing)});
    Serve();
    ASSERT_THAT(deliverer.letters, SizeIs(1));
    EXPECT_EQ(deliverer.letters[0].sink, "mail");
}

TEST_F(Alert, GivesTheOldestUpWhenTooManyWait) {
    SinkSettings sink = SinkNamed("pager");
    sink.queue = 2;
    Made({sink});
    std::vector<hxc::Condition> heads;
    for (unsigned disk = 0; disk < 3; ++disk) {
        heads.push_back(ConditionOf(hxc::Code::kDiskFailed, disk));
    }
    Look(heads);
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd1, raised a0/pd2"));
    EXPECT_EQ(alerts_->Health()[0].given_up, 1U);
    alerts_->ForgetGivenUp("pager");
    EXPECT_EQ(alerts_->Health()[0].given_up, 0U);
}

TEST_F(Alert, IsNotSentTwiceAtOnce) {
    Made({SinkNamed("pager")});
    deliverer.hangs = true;
    Look({failed}, {Raised(failed)});
    Serve();
    Look({failed, tripped}, {Raised(tripped)});
    Serve();
    EXPECT_THAT(deliverer.letters, SizeIs(1));
    EXPECT_TRUE(alerts_->IsBusy());
    EXPECT_EQ(alerts_->Due(), std::nullopt);
}

// What a crash leaves: the state file of each moment goes on in another process.
TEST_F(Alert, IsNeitherLostNorRepeatedInSilenceByACrash) {
    const TemporaryRoot root;
    const auto restarted = [&](const Outbox& box) {
        {
            hxservice::StateFile file(root.Path("/state.db"));
            file.Save({{}, 1, box});
        }
        return hxservice::StateFile(root.Path("/state.db")).TakeSaved().alerts;
    };
    Made({SinkNamed("pager")});
    Look({failed}, {Raised(failed)});
    const Outbox before = restarted(alerts_->Box());  // the round was saved
    deliverer.hangs = true;
    Serve();
    const Outbox during = restarted(alerts_->Box());  // the delivery has begun
    deliverer.hangs = false;
    Told();

    Made({SinkNamed("pager")}, before);
    Look({failed});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5"));
    const Outbox after = restarted(alerts_->Box());

    Made({SinkNamed("pager")}, during);
    Look({failed});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5 again?"));

    Made({SinkNamed("pager")}, after);
    EXPECT_EQ(after.sinks.at("pager").known.begin()->second.delivered, 1000000);
    Look({failed});
    Serve();
    EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Alert, AfterADamagedStateFileMayBeARepeat) {
    Outbox box;
    box.was_lost = true;
    Made({SinkNamed("pager")}, box);
    Look({failed}, {Raised(failed)});
    Look({failed, tripped}, {Raised(tripped)});
    Serve();
    EXPECT_THAT(Told(), ElementsAre("raised a0/pd5 again?, raised a0/pd4"));
}

TEST_F(Alert, IsSavedBeforeItIsSent) {
    Made({SinkNamed("pager")});
    Look({failed}, {Raised(failed)});
    deliverer.hangs = true;
    alerts_->Serve(now, 1000000, [this] {
        EXPECT_THAT(deliverer.letters, IsEmpty());
        EXPECT_EQ(alerts_->Box().sinks.at("pager").attempts, 1U);
        ++saves;
    });
    EXPECT_EQ(saves, 1);
    EXPECT_THAT(deliverer.letters, SizeIs(1));
}

TEST_F(Alert, OfASinkThatIsGoneIsForgotten) {
    Made({SinkNamed("pager"), SinkNamed("mail")});
    deliverer.errors["pager"] = "busy";
    Look({failed}, {Raised(failed)});
    Serve();
    alerts_->Configure({SinkNamed("mail")});
    EXPECT_FALSE(alerts_->Box().sinks.contains("pager"));
    EXPECT_EQ(alerts_->Due(), std::nullopt);
}

TEST_F(Alert, IsALetterForPeopleAndPrograms) {
    Made({SinkNamed("pager")});
    hxc::Condition condition = failed;
    condition.next_step = "Replace it";
    condition.command = {"vexorctl", "disk", "locate", "a0/pd5"};
    Look({condition, tripped}, {Raised(condition), Cleared(tripped)});
    Serve();
    const hxservice::Letter& letter = deliverer.letters.at(0).letter;
    EXPECT_EQ(letter.subject, "[WARNING] host1: a0/pd5 DISK_FAILED (and 1 more)");
    EXPECT_TRUE(
        letter.body.starts_with("raised: [warning] DISK_FAILED: a0/pd5 DISK_FAILED\n"
                                "  since 1970-01-01T00:16:40Z\n"
                                "  -> Replace it: vexorctl disk locate a0/pd5\n"))
        << letter.body;
    const auto json = nlohmann::json::parse(letter.json);
    EXPECT_EQ(json["schema"], "hxraidsvc-alert/1");
    EXPECT_EQ(json["alerts"][0]["dedup_key"], "host1/DISK_FAILED/disk QD-5");
    EXPECT_EQ(json["alerts"][0]["change"], "raised");
    EXPECT_EQ(json["attempt"], 1);
    EXPECT_EQ(json["conditions"].size(), 2U);
}

}  // namespace
