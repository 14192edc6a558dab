// What events of our own controllers say from their parameters.
#include "codes/event_sentence.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace hxcodes {
namespace {

std::string Said(EventKind kind, unsigned device, EventParams params) {
    return SentenceOf({.kind = kind, .adapter = 1, .device = device, .params = params})
        .value_or("nothing");
}

TEST(EventSentence, OfAnElementNamesItAndItsReading) {
    EXPECT_EQ("The fan a1/enc0/el2 is critical, 0 rpm",
              Said(EventKind::kElementCritical, 0, {2, HX_ELEMENT_FAN, 0, 0}));
    EXPECT_EQ("The temperature sensor a1/enc3/el7 is not as it should be, 51 degrees C",
              Said(EventKind::kElementWarning, 3, {7, HX_ELEMENT_TEMPERATURE, 71, 0}));
    EXPECT_EQ("The temperature sensor a1/enc3/el7 is ok",
              Said(EventKind::kElementOk, 3, {7, HX_ELEMENT_TEMPERATURE, 0, 0}));
    EXPECT_EQ("The power supply a1/enc0/el1 is critical",
              Said(EventKind::kElementCritical, 0, {1, HX_ELEMENT_POWER_SUPPLY, 5, 0}));
    EXPECT_EQ("The voltage sensor a1/enc0/el9 is ok, 12.05 V",
              Said(EventKind::kElementOk, 0, {9, HX_ELEMENT_VOLTAGE, 1205, 0}));
    EXPECT_EQ("The door a1/enc0/el3 is ok",
              Said(EventKind::kElementOk, 0, {3, HX_ELEMENT_DOOR, 0, 0}));
    EXPECT_EQ("The element a1/enc0/el3 is ok", Said(EventKind::kElementOk, 0, {3, 77, 0, 0}));
}

TEST(EventSentence, OfTheFlashNamesTheImage) {
    EXPECT_EQ("The image bios in the flash of a1 was erased",
              Said(EventKind::kFlashErased, 1, {1, 0, 0, 0}));
    EXPECT_EQ("The image boot_loader in the flash of a1 was written",
              Said(EventKind::kFlashWritten, 3, {3, 65536, 0, 0}));
    EXPECT_EQ("The image of unknown kind 9 in the flash of a1 is damaged",
              Said(EventKind::kFlashDamaged, 9, {9, 0, 0, 0}));
    EXPECT_EQ(Severity::kWarning, SeverityOf(EventKind::kFlashErased));
}

using DiskIds = std::vector<HX_U16>;

std::string Degraded(const DiskIds& fatal, const DiskIds& harmless) {
    return Said(EventKind::kVirtualDiskDegraded, 0, ParamsOfDegraded(fatal, harmless));
}

TEST(EventSentence, OfADegradedVirtualDiskNamesTheDisksThatMayNotFail) {
    EXPECT_EQ("Virtual disk a1/vd0 is degraded: no redundancy is left", Degraded({1, 2}, {}));
    EXPECT_EQ(
        "Virtual disk a1/vd0 is degraded: it survives no failure of a1/pd5; a1/pd6 or a1/pd7 may "
        "still fail",
        Degraded({5}, {6, 7}));
    EXPECT_EQ(
        "Virtual disk a1/vd0 is degraded: it survives no failure of a1/pd1 or a1/pd2; a1/pd3, "
        "a1/pd4, a1/pd5 or a1/pd6 may still fail",
        Degraded({1, 2}, {3, 4, 5, 6}));
    EXPECT_EQ(
        "Virtual disk a1/vd0 is degraded: it survives no failure of a1/pd1; one of 6 others may "
        "still fail",
        Degraded({1}, {3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(
        "Virtual disk a1/vd0 is degraded: it survives no failure of 7 of its disks; one of 8 "
        "others "
        "may still fail",
        Degraded({1, 2, 3, 4, 5, 6, 7}, {11, 12, 13, 14, 15, 16, 17, 18}));
}

TEST(EventSentence, IsNotMadeOfParametersThatTellNothing) {
    EXPECT_EQ("nothing", Said(EventKind::kVirtualDiskDegraded, 0, {}));
    EXPECT_EQ("nothing", Said(EventKind::kVirtualDiskPartiallyOptimal, 0, {}));
    EXPECT_EQ("nothing", Said(EventKind::kVirtualDiskOffline, 0, {1, 2, 3, 4}));
}

TEST(EventSentence, OfWhatGotBetterIsNoWarning) {
    EXPECT_EQ("Virtual disk a1/vd4 is better: it has some redundancy again",
              Said(EventKind::kVirtualDiskPartiallyOptimal, 4, {1, 0, 0, 0}));
    EXPECT_EQ(Severity::kInfo, SeverityOf(EventKind::kVirtualDiskPartiallyOptimal, 1));
    EXPECT_EQ(Severity::kWarning, SeverityOf(EventKind::kVirtualDiskPartiallyOptimal, 0));
    EXPECT_EQ(Severity::kMajor, SeverityOf(EventKind::kVirtualDiskDegraded, 1));
}

TEST(EventSentence, TellsAReplacementFromACopyback) {
    EXPECT_EQ("Disk a1/pd4 is too small to replace the one that was in its bay",
              Said(EventKind::kDiskTooSmallForCopyback, 4, {1, 0, 0, 0}));
    EXPECT_EQ("nothing", Said(EventKind::kDiskTooSmallForCopyback, 4, {}));
}

TEST(EventSentence, KnowsTheElementOfAnEnclosuresEvent) {
    const auto element = [](EventKind kind) {
        return ElementOf({.kind = kind, .params = {6, 1, 0, 0}});
    };
    EXPECT_EQ(6U, element(EventKind::kElementOk));
    EXPECT_EQ(std::nullopt, element(EventKind::kFlashErased));
    EXPECT_EQ(std::nullopt, element(static_cast<EventKind>(At(EventClass::kEnclosure, 50))));
}

}  // namespace
}  // namespace hxcodes
