// The one function behind every fixed path.
#include "root_path.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

class RootPathTest : public testing::Test {
protected:
    void SetUp() override { unsetenv("VEXORAPI_ROOT"); }
    void TearDown() override { unsetenv("VEXORAPI_ROOT"); }

    char path_[kRootPathSize];
};

TEST_F(RootPathTest, IsThePathItselfWithoutTheVariable) {
    EXPECT_STREQ("/vexorapi.ini", RootPath(path_, "/vexorapi.ini"));
}

TEST_F(RootPathTest, IsThePathItselfWhenTheVariableIsEmpty) {
    setenv("VEXORAPI_ROOT", "", 1);
    EXPECT_STREQ("/vexorapi.ini", RootPath(path_, "/vexorapi.ini"));
}

TEST_F(RootPathTest, StandsBelowTheFolderThatTheVariableNames) {
    setenv("VEXORAPI_ROOT", "/srv/raid", 1);
    EXPECT_STREQ("/srv/raid/var/log/hxraidsvc.log", RootPath(path_, "/var/log/hxraidsvc.log"));
}

TEST_F(RootPathTest, IsWrittenIntoTheCallersArray) {
    EXPECT_EQ(path_, RootPath(path_, "/vexorapi.ini"));
}

TEST_F(RootPathTest, FollowsTheVariableOnEveryCall) {
    setenv("VEXORAPI_ROOT", "/first", 1);
    EXPECT_STREQ("/first/a", RootPath(path_, "/a"));
    setenv("VEXORAPI_ROOT", "/second", 1);
    EXPECT_STREQ("/second/a", RootPath(path_, "/a"));
}

TEST_F(RootPathTest, FillsTheArrayToItsLastByte) {
    setenv("VEXORAPI_ROOT", "/srv", 1);
    char exact[8];
    EXPECT_STREQ("/srv/ab", RootPath(exact, "/ab"));
}

TEST_F(RootPathTest, IsNullAndEmptyRatherThanCutByOneByte) {
    setenv("VEXORAPI_ROOT", "/srv", 1);
    char short_by_one[7] = "before";
    EXPECT_EQ(nullptr, RootPath(short_by_one, "/ab"));
    EXPECT_STREQ("", short_by_one);
}

TEST_F(RootPathTest, IsNullWhenTheFolderAloneFillsTheArray) {
    setenv("VEXORAPI_ROOT", "/1234567", 1);
    char small[8] = "before";
    EXPECT_EQ(nullptr, RootPath(small, "/a"));
    EXPECT_STREQ("", small);
}

TEST_F(RootPathTest, IsNullForAFolderLongerThanAnyPath) {
    setenv("VEXORAPI_ROOT", ("/" + std::string(100000, 'x')).c_str(), 1);
    EXPECT_EQ(nullptr, RootPath(path_, "/vexorapi.ini"));
    EXPECT_STREQ("", path_);
}

TEST_F(RootPathTest, IsNullForAPathThatDoesNotFitByItself) {
    char small[4] = "old";
    EXPECT_EQ(nullptr, RootPath(small, "/abc"));
    EXPECT_STREQ("", small);
}

}  // namespace
