// The helpers over expat's attribute list.
#include "vexorapi_element.h"

#include <gtest/gtest.h>

#include "vexorapi_parse_fixture.h"

namespace {

using LoggedAttributes = ParseLog;

const char* kAttributes[] = {"name",  "first", "Name", "second", "name",
                             "third", "empty", "",     nullptr};
const char* kNoAttributes[] = {nullptr};

TEST(Attributes, AreFoundByTheirExactName) {
    EXPECT_STREQ("first", GetXMLAtts("name", kAttributes));
    EXPECT_STREQ("second", GetXMLAtts("Name", kAttributes));
    EXPECT_STREQ("", GetXMLAtts("empty", kAttributes));
}

TEST(Attributes, AreNullWhenMissing) {
    EXPECT_EQ(nullptr, GetXMLAtts("nam", kAttributes));
    EXPECT_EQ(nullptr, GetXMLAtts("names", kAttributes));
    EXPECT_EQ(nullptr, GetXMLAtts("first", kAttributes));
    EXPECT_EQ(nullptr, GetXMLAtts("name", kNoAttributes));
}

TEST(Attributes, CompareAsStrcmpDoes) {
    EXPECT_EQ(0, StrCmpXMLAtts("name", "first", kAttributes));
    EXPECT_LT(StrCmpXMLAtts("name", "g", kAttributes), 0);
    EXPECT_GT(StrCmpXMLAtts("name", "firs", kAttributes), 0);
    EXPECT_EQ(0, StrCmpXMLAtts("empty", "", kAttributes));
}

TEST(Attributes, CompareAsMinusOneWhenMissing) {
    EXPECT_EQ(-1, StrCmpXMLAtts("nothing", "", kAttributes));
    EXPECT_EQ(-1, StrCmpXMLAtts("name", "first", kNoAttributes));
}

TEST_F(LoggedAttributes, StandInTheirOrder) {
    PrintXMLAtts(kAttributes);
    EXPECT_EQ("[Atts]name:first Name:second name:third empty: \n", log.Text());
}

TEST_F(LoggedAttributes, AreNoneInAnEmptyList) {
    PrintXMLAtts(kNoAttributes);
    EXPECT_EQ("[Atts]\n", log.Text());
}

}  // namespace
