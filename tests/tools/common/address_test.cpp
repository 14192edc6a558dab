#include "common/address.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/common/usage_message.h"

namespace {

using vexortools::Address;
using vexortools::ObjectKind;
using vexortools::ParseSelector;
using vexortools::Selector;

struct WrittenAddress {
    const char* text;
    Address address;
};
constexpr WrittenAddress kAddresses[] = {
    {"a0", {0, ObjectKind::kAdapter, 0, 0}},
    {"a254", {254, ObjectKind::kAdapter, 0, 0}},
    {"a0/pd12", {0, ObjectKind::kDisk, 12, 0}},
    {"a1/vd65534", {1, ObjectKind::kVirtualDisk, 65534, 0}},
    {"a0/dg2", {0, ObjectKind::kDiskGroup, 2, 0}},
    {"a0/enc0", {0, ObjectKind::kEnclosure, 0, 0}},
    {"a0/enc1/el3", {0, ObjectKind::kElement, 1, 3}},
};

TEST(Address, IsReadAndWrittenInOneForm) {
    for (const WrittenAddress& row : kAddresses) {
        const Selector selector = ParseSelector(row.text);
        EXPECT_EQ(selector.form, Selector::Form::kAddress) << row.text;
        EXPECT_EQ(selector.address, row.address) << row.text;
        EXPECT_EQ(selector.typed, row.text);
        EXPECT_EQ(row.address.Text(), row.text);
    }
}

TEST(Address, OfAnObjectThatIsCalledByNameOrSerialNumberIsNotKnown) {
    const Selector name = ParseSelector("name:a0/vd1");
    EXPECT_EQ(name.form, Selector::Form::kName);
    EXPECT_EQ(name.text, "a0/vd1");
    EXPECT_EQ(name.typed, "name:a0/vd1");
    const Selector serial = ParseSelector("serial:5XW0 PR1T");
    EXPECT_EQ(serial.form, Selector::Form::kSerial);
    EXPECT_EQ(serial.text, "5XW0 PR1T");
}

TEST(Address, IsRefusedWithTheGrammarWhenItIsNone) {
    for (const char* const text : {"",
                                   "a",
                                   "a255",
                                   "a-1",
                                   "a+1",
                                   "a 0",
                                   " a0",
                                   "A0",
                                   "a0/",
                                   "a0//pd1",
                                   "a0/pd",
                                   "a0/pd65535",
                                   "a0/pd1/",
                                   "a0/pd1/el2",
                                   "a0/vd1x",
                                   "a0/el3",
                                   "a0/enc0/",
                                   "a0/enc0/el",
                                   "a0/enc0/el65535",
                                   "a0/enc0/el3/",
                                   "a0/enc0/pd3",
                                   "pd0",
                                   "vd0",
                                   "name:",
                                   "serial:",
                                   "NAME:x",
                                   "0"}) {
        EXPECT_EQ(UsageMessage([&] { ParseSelector(text); }),
                  "\"" + std::string(text) +
                      "\" is no address; say a0, a0/pd12, a0/vd1, a0/dg2, a0/enc0, a0/enc0/el3, "
                      "name:NAME or serial:NUMBER");
    }
}

TEST(Address, OfAnotherKindOfObjectIsRefusedWhereOneKindIsNeeded) {
    EXPECT_EQ(UsageMessage([] { ParseSelector("a0/enc0", ObjectKind::kDisk); }),
              "a0/enc0 is the address of an enclosure; a disk is needed");
    EXPECT_EQ(UsageMessage([] { ParseSelector("a0/vd0", ObjectKind::kAdapter); }),
              "a0/vd0 is the address of a virtual disk; an adapter is needed");
    EXPECT_EQ(ParseSelector("a0/pd1", ObjectKind::kDisk).address.id, 1U);
    EXPECT_EQ(ParseSelector("name:x", ObjectKind::kDisk).text, "x");
}

std::vector<std::string> Written(std::vector<std::string> texts) {
    return vexortools::WithRangesWritten(texts);
}

TEST(Range, OfAddressesNamesEachOfThem) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(Written({"a0/pd4-6"}), (Texts{"a0/pd4", "a0/pd5", "a0/pd6"}));
    EXPECT_EQ(Written({"a1/vd7-7"}), Texts{"a1/vd7"});
    EXPECT_EQ(Written({"a0/dg0-1", "a0/pd9"}), (Texts{"a0/dg0", "a0/dg1", "a0/pd9"}));
    EXPECT_EQ(Written({"a0/pd65533-65534"}), (Texts{"a0/pd65533", "a0/pd65534"}));
    EXPECT_EQ(Written({"a0/pd0-1023"}).size(), vexortools::kMostInRange);
}

TEST(Range, IsNoOtherText) {
    const std::vector<std::string> others = {"",
                                             "-",
                                             "a0/pd4-",
                                             "a0/pd-4",
                                             "a0/pd4-x",
                                             "a0/pd4--5",
                                             "a0/pd4-5 ",
                                             "a0/pd4-+5",
                                             "a0-1",
                                             "a0/enc0/el1-2",
                                             "name:x-1",
                                             "serial:a0/pd1-2",
                                             "a0/pd4-a0/pd5",
                                             "a0/pd1-65535",
                                             "a0/pd1-99999999999999999999"};
    EXPECT_EQ(Written(others), others);
}

TEST(Range, IsRefusedWhenItRunsBackwardsOrIsTooLong) {
    EXPECT_EQ(UsageMessage([] { Written({"a0/pd5-4"}); }),
              "\"a0/pd5-4\" runs backwards; the lower number comes first");
    EXPECT_EQ(UsageMessage([] { Written({"a0/pd0-1024"}); }),
              "\"a0/pd0-1024\" names more than 1024 objects");
}

}  // namespace
