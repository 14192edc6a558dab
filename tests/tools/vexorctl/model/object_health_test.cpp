#include "model/object_health.h"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

#include "codes/enclosure.h"
#include "codes/named.h"
#include "conditions/machine.h"

namespace vexorctl {
namespace {

using hxconditions::Answers;
using vexortools::Address;
using vexortools::ObjectKind;

Address At(ObjectKind kind, unsigned id) { return {.adapter = 0, .kind = kind, .id = id}; }

std::optional<std::string_view> OfDisk(const Answers& answers, unsigned id) {
    return ObjectHealth(answers).OfDisk(At(ObjectKind::kDisk, id));
}
std::optional<std::string_view> OfVirtualDisk(const Answers& answers, unsigned id) {
    return ObjectHealth(answers).OfVirtualDisk(At(ObjectKind::kVirtualDisk, id));
}
std::optional<std::string_view> OfEnclosure(const Answers& answers) {
    return ObjectHealth(answers).OfEnclosure(At(ObjectKind::kEnclosure, 0));
}
std::optional<std::string_view> OfBattery(const Answers& answers) {
    return ObjectHealth(answers).OfBattery(At(ObjectKind::kAdapter, 0));
}

TEST(TheHealthOfAnObject, IsOkOnAGoodMachine) {
    const Answers answers = hxconditions::GoodMachine();
    EXPECT_EQ(OfDisk(answers, 5), "ok");
    EXPECT_EQ(OfVirtualDisk(answers, 1), "ok");
    EXPECT_EQ(OfEnclosure(answers), "ok");
    EXPECT_EQ(OfBattery(answers), "ok");
}

TEST(TheHealthOfAnObject, IsItsOwn) {
    const Answers answers = hxconditions::DegradedMachine();
    EXPECT_EQ(OfDisk(answers, 5),
              "warning");  // though it explains why the virtual disk is critical
    EXPECT_EQ(OfDisk(answers, 4), "ok");
    EXPECT_EQ(OfVirtualDisk(answers, 1), "critical");
    EXPECT_EQ(OfVirtualDisk(answers, 0), "ok");
}

TEST(TheHealthOfAnObject, IsThatOfItsElements) {
    Answers answers = hxconditions::GoodMachine();
    answers.adapters[0].enclosures[0].elements[0].status =
        hxcodes::NumberOf(hxcodes::ElementStatus::kCritical);
    EXPECT_EQ(OfEnclosure(answers), "critical");
}

TEST(TheHealthOfAnObject, IsUnknownWhereItWasNotSeen) {
    Answers answers = hxconditions::GoodMachine();
    hxconditions::DiskAt(answers, 5).smart_alarm.reset();
    EXPECT_EQ(OfDisk(answers, 5), std::nullopt);
    EXPECT_EQ(OfDisk(answers, 4), "ok");
    EXPECT_EQ(OfDisk(answers, 99), std::nullopt);
    hxconditions::FailAll(answers.adapters[0]);
    EXPECT_EQ(OfDisk(answers, 4), std::nullopt);
    EXPECT_EQ(OfVirtualDisk(answers, 1), std::nullopt);
    EXPECT_EQ(OfEnclosure(answers), std::nullopt);
    EXPECT_EQ(OfBattery(answers), std::nullopt);
}

TEST(TheHealthOfAnObject, IsBadAlsoWhereItIsNotAllSeen) {
    Answers answers = hxconditions::DegradedMachine();
    hxconditions::DiskAt(answers, 5).smart_alarm.reset();
    EXPECT_EQ(OfDisk(answers, 5), "warning");
}

}  // namespace
}  // namespace vexorctl
