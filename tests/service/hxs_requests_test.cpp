// What people ask of the service by its socket: conditions acknowledged and silenced, and requests
// that are refused.
#include "service/hxs_requests.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "service/scripted_deliverer.h"
#include "service/scripted_source.h"

namespace {

namespace hxc = hxconditions;
using hxservice::Caller;

class ServiceRequest : public testing::Test {
protected:
    ServiceRequest() : alerts_(deliverer_, log_, "host1", {SinkNamed("pager")}, {}) {
        Hold(hxc::Code::kDiskFailed, 5);
        Hold(hxc::Code::kDiskPredictedFailure, 5);
        Hold(hxc::Code::kDiskFailed, 6);
        state.now = 100;
    }
    void Hold(hxc::Code code, unsigned disk) {
        hxc::Held& held = state.held.emplace_back();
        held.found.code = code;
        held.found.object.kind = hxc::Kind::kDisk;
        held.found.object.adapter = 0;
        held.found.object.id = disk;
        held.found.object.address = "a0/pd" + std::to_string(disk);
        held.found.object.serial = "QD-" + std::to_string(disk);
        held.found.object.identity = "disk QD-" + std::to_string(disk);
        held.is_shown = true;
    }
    nlohmann::json Ask(const std::string& request, bool may_change = true) {
        const hxc::Overview overview = hxc::OverviewOf(state, {}, 1000, true);
        reply = hxservice::ReplyTo(request, {"eva", may_change}, {state, overview, alerts_, 1000});
        EXPECT_TRUE(reply.text.ends_with("\n"));
        return nlohmann::json::parse(reply.text);
    }
    std::string ErrorOf(const std::string& request, bool may_change = true) {
        const nlohmann::json answer = Ask(request, may_change);
        EXPECT_FALSE(reply.has_changed);
        return answer["ok"] == false ? answer["error"].get<std::string>() : "";
    }
    unsigned Acknowledged() const {
        unsigned count = 0;
        for (const hxc::Held& held : state.held) count += held.acknowledged ? 1U : 0U;
        return count;
    }

    hxc::State state;
    hxservice::Reply reply;
    ScriptedDeliverer deliverer_;
    KeptLog log_;
    hxservice::Alerts alerts_;
};

TEST_F(ServiceRequest, AcknowledgesByObjectByConditionOrByBoth) {
    EXPECT_EQ(Ask(R"({"do":"ack","object":"a0/pd5","code":"DISK_FAILED","note":"ordered"})")["done"]
                  .size(),
              1U);
    EXPECT_TRUE(reply.has_changed);
    ASSERT_TRUE(state.held[0].acknowledged);
    EXPECT_EQ(state.held[0].acknowledged->by, "eva");
    EXPECT_EQ(state.held[0].acknowledged->at, 1000);
    EXPECT_EQ(state.held[0].acknowledged->note, "ordered");
    EXPECT_EQ(Acknowledged(), 1U);
    Ask(R"({"do":"ack","object":"QD-5"})");
    EXPECT_EQ(Acknowledged(), 2U);
    Ask(R"({"do":"ack","code":"DISK_FAILED"})");
    EXPECT_EQ(Acknowledged(), 3U);
}

TEST_F(ServiceRequest, SilencesForATimeAndEndsThat) {
    Ask(R"({"do":"silence","object":"a0/pd5","seconds":3600,"note":"works"})");
    EXPECT_TRUE(reply.has_changed);
    ASSERT_EQ(state.silences.size(), 1U);
    EXPECT_EQ(state.silences[0].identity, "disk QD-5");
    EXPECT_EQ(state.silences[0].until, 3700);
    EXPECT_FALSE(state.silences[0].is_sticky);
    EXPECT_EQ(Ask(R"({"do":"list"})")["silences"][0]["until"], "1970-01-01T01:16:40Z");
    Ask(R"({"do":"silence","object":"a0/pd5","end":true})");
    EXPECT_TRUE(state.silences.empty());
    EXPECT_EQ(ErrorOf(R"({"do":"silence","object":"a0/pd5","end":true})"),
              "there is no such silence");
}

TEST_F(ServiceRequest, SilencesAheadOnlyACodeAndSticky) {
    const std::string ahead = R"({"do":"silence","code":"VD_OFFLINE","seconds":60)";
    EXPECT_NE(ErrorOf(ahead + "}"), "");
    EXPECT_TRUE(Ask(ahead + R"(,"sticky":true})")["ok"]);
    EXPECT_NE(ErrorOf(ahead + R"(,"sticky":true,"object":"a9/vd9"})"), "");
}

TEST_F(ServiceRequest, ForMoreThanNinetyDaysIsRefused) {
    const auto silence = [](const std::string& length) {
        return R"({"do":"silence","object":"a0/pd5","seconds":)" + length + "}";
    };
    for (const char* const length : {"0", "-1", "7776001", "1e99", "\"8h\"", "null", "1.5"}) {
        EXPECT_EQ(ErrorOf(silence(length)), "a silence needs an end, at most 90 days from now")
            << length;
    }
    EXPECT_TRUE(Ask(silence("7776000"))["ok"]);
}

TEST_F(ServiceRequest, ThatIsNoneIsRefused) {
    for (const char* const request : {"", "{", "[]", "7", "\xff", "{\"do\":7}", "{}"}) {
        EXPECT_NE(ErrorOf(request), "") << request;
    }
    EXPECT_EQ(ErrorOf(R"({"do":"ack"})"), "name a condition, an object, or both");
    EXPECT_EQ(ErrorOf(R"({"do":"ack","code":"DISK_BROKEN"})"), "there is no condition DISK_BROKEN");
    EXPECT_EQ(ErrorOf(R"({"do":"ack","object":"a0/pd7"})"),
              "no condition that holds is meant; vexorctl alert list shows those that do");
    EXPECT_EQ(ErrorOf(R"({"do":"test","sink":"fax"})"),
              "there is no such sink; hxraidsvc.conf(5) tells how to make one");
    EXPECT_EQ(ErrorOf(std::string(2000, '[')), "the request is no JSON");
}

TEST_F(ServiceRequest, OfSomebodyElseMayOnlyRead) {
    for (const char* const request : {R"({"do":"ack","object":"a0/pd5"})", R"({"do":"test"})",
                                      R"({"do":"silence","object":"a0/pd5","seconds":60})"}) {
        EXPECT_EQ(ErrorOf(request, false), "only root and members of the group hxraid may do that");
    }
    EXPECT_EQ(Acknowledged(), 0U);
    EXPECT_EQ(Ask(R"({"do":"list"})", false)["conditions"].size(), 2U);
}

TEST_F(ServiceRequest, TriesASinkAndTellsHowItEnded) {
    deliverer_.errors["pager"] = "no line";
    EXPECT_EQ(Ask(R"({"do":"test"})")["done"][0], "pager");
    EXPECT_EQ(Ask(R"({"do":"list"})")["sinks"][0]["testing"], true);
    for (int i = 0; i < 2; ++i) alerts_.Serve(std::chrono::seconds(1), 1000, [] {});
    const nlohmann::json sink = Ask(R"({"do":"list"})")["sinks"][0];
    EXPECT_EQ(sink["testing"], false);
    EXPECT_EQ(sink["tested"], "no line");
    EXPECT_EQ(sink["failing"], false);
    EXPECT_EQ(deliverer_.letters.at(0).letter.level, "test");
    EXPECT_EQ(Ask(R"({"do":"history"})")["history"][0]["what"], "test failed");
}

}  // namespace
