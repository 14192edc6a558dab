#include "model/plan_file.h"

#include <gtest/gtest.h>

#include <string>

namespace vexorctl {
namespace {

PlanFile DeletionPlan() {
    return {.made_by = "vexorctl 9.9",
            .made_at = "2026-01-31T12:00:00Z",
            .host = "store1",
            .words = {"vd", "delete", "--", "a0/vd2"},
            .what = "Delete virtual disk a0/vd2",
            .effects = {"all data on it will be lost", "its disks: a0/pd4, a0/pd5"},
            .size_bytes = 512,
            .functions = {"<HX_LD_Delete type=\"function\"></HX_LD_Delete>"},
            .objects = {{"a0/vd2", {{"name", "AR\"CHIVE"}, {"state", "optimal"}}}}};
}

std::string WhyNot(const std::string& text) {
    try {
        ReadPlan(text);
    } catch (const PlanFileError& error) {
        return error.what();
    }
    return "";
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    text.replace(text.find(from), from.size(), to);
    return text;
}

TEST(APlan, IsReadAsItWasWritten) {
    EXPECT_EQ(ReadPlan(WritePlan(DeletionPlan())), DeletionPlan());
    PlanFile without_size = DeletionPlan();
    without_size.size_bytes.reset();
    EXPECT_EQ(ReadPlan(WritePlan(without_size)), without_size);
}

TEST(APlan, HasEachKeyOnce) {
    const std::string text = WritePlan(DeletionPlan());
    EXPECT_EQ(WhyNot(Replaced(text, "\"host\"", "\"hots\"")),
              "has the key \"hots\", which is not known");
    EXPECT_EQ(WhyNot(Replaced(text, "\"host\": \"store1\",", "")), "lacks the key \"host\"");
    EXPECT_EQ(WhyNot(Replaced(text, "\"host\"", "\"made_by\"")), "has the key \"made_by\" twice");
    EXPECT_EQ(WhyNot(Replaced(text, "\"fact\"", "\"host\"")),
              "a fact has the key \"host\", which is not known");
}

TEST(APlan, HasValuesOfTheRightTypes) {
    const std::string text = WritePlan(DeletionPlan());
    EXPECT_EQ(WhyNot(Replaced(text, "512", "-512")),
              "\"size_bytes\" has to be a whole number or null");
    EXPECT_EQ(WhyNot(Replaced(text, "512", "\"512\"")),
              "\"size_bytes\" has to be a whole number or null");
    EXPECT_EQ(WhyNot(Replaced(text, "\"store1\"", "null")), "\"host\" has to be a text");
    EXPECT_EQ(WhyNot(Replaced(text, "\"vd\"", "1")), "\"command\" has to be a list of texts");
}

TEST(APlan, IsNoOtherDocument) {
    EXPECT_EQ(WhyNot(""), "is not JSON: line 1");
    EXPECT_EQ(WhyNot("{}"), "is no plan of vexorctl");
    EXPECT_EQ(WhyNot("[]"), "is no plan of vexorctl");
    EXPECT_EQ(WhyNot(Replaced(WritePlan(DeletionPlan()), "plan/1", "plan/2")),
              "is no plan of the form vexorctl-plan/1 but \"vexorctl-plan/2\"");
    EXPECT_EQ(WhyNot(std::string(100000, '[')), "is nested too deeply");
}

TEST(APlan, NamesACommand) {
    PlanFile plan = DeletionPlan();
    plan.words.clear();
    EXPECT_EQ(WhyNot(WritePlan(plan)), "names no command");
}

}  // namespace
}  // namespace vexorctl
