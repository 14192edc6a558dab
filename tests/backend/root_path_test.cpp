// The one function behind every fixed path.
#include "root_path.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/folders.h"
#include "support/temporary_root.h"

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

// ---- In a privileged process --------------------------------------------------------------------

// A copy of a program that prints its path, in a folder that VEXORAPI_ROOT names.
class PrivilegedRootPathTest : public testing::Test {
protected:
    PrivilegedRootPathTest() {
        std::filesystem::copy_file(std::string(kProgramFolder) + "/print_root_path", program_);
    }

    // Lends the copy to another user (root may) or to another of our groups (anybody may). Returns
    // false when neither can be done here.
    bool Privilege() const {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0) {
            return chown(program_.c_str(), kNobody, getegid()) == 0 &&
                   chmod(program_.c_str(), 04755) == 0;
        }
        std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
        if (getgroups(static_cast<int>(groups.size()), groups.data()) < 0) return false;
        const auto other = std::ranges::find_if(groups, [](gid_t id) { return id != getegid(); });
        return other != groups.end() && chown(program_.c_str(), geteuid(), *other) == 0 &&
               chmod(program_.c_str(), 02755) == 0;
    }

    std::string Printed() const {
        FILE* const output = popen(program_.c_str(), "re");
        if (output == nullptr) return "not started";
        char line[kRootPathSize] = "";
        EXPECT_EQ(line, std::fgets(line, sizeof line, output));
        EXPECT_EQ(0, pclose(output));
        return line;
    }

    const TemporaryRoot root_;
    const std::string program_ = root_.Path("/print_root_path");
};

TEST_F(PrivilegedRootPathTest, FollowsTheVariableWithoutPrivileges) {
    EXPECT_EQ("ordinary " + root_.Path("/vexorapi.ini") + "\n", Printed());
}

TEST_F(PrivilegedRootPathTest, NeverFollowsTheVariableWithPrivileges) {
    if (kSanitized) GTEST_SKIP() << "the leak sanitizer cannot look into a privileged process";
    if (!Privilege()) GTEST_SKIP() << "neither root nor in a second group";
    const std::string printed = Printed();
    if (printed.starts_with("ordinary")) GTEST_SKIP() << "set-ID bits mean nothing here (nosuid)";
    EXPECT_EQ("privileged /vexorapi.ini\n", printed);
}

}  // namespace
