// Programs that are run for a change, and words for attributes.
#include "system/hxmd_run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>

#include "support/temporary_root.h"
#include "system/hxmd_word.h"

using hxmd::Outcome;

namespace {

class AProgram : public testing::Test {
protected:
    void Write(const std::string& script) {
        root_.Write("/sbin/mdadm", "#!/bin/sh\n" + script);
        std::filesystem::permissions(root_.Path("/sbin/mdadm"), std::filesystem::perms(0755));
    }
    std::string File(const std::string& name) const { return root_.Path("/" + name); }

    TemporaryRoot root_;
};

TEST_F(AProgram, GetsItsArgumentsAsTheyAre) {
    Write("for each; do echo \"[$each]\"; done > '" + File("arguments") + "'\n");
    const hxmd::Ran ran = hxmd::Run("/sbin/mdadm", {"--name=a b", "$(id);'\"", "", "*"});
    EXPECT_EQ(ran.outcome, Outcome::kSucceeded);
    EXPECT_EQ(root_.Read("/arguments"), "[--name=a b]\n[$(id);'\"]\n[]\n[*]\n");
}

TEST_F(AProgram, GetsNeitherTheEnvironmentNorDescriptorsNorInput) {
    const int kept = open("/dev/null", O_RDONLY);  // deliberately not close-on-exec
    ASSERT_GE(kept, 0);
    setenv("HXMD_SECRET", "1", 1);
    Write("/usr/bin/env | grep -v -E '^(PWD|_|SHLVL)=' | sort > '" + File("environment") +
          "'\n[ -e /proc/self/fd/" + std::to_string(kept) +
          " ] && exit 3\nread -r line && exit 4\n" + "exit 0\n");
    const hxmd::Ran ran = hxmd::Run("/sbin/mdadm", {});
    unsetenv("HXMD_SECRET");
    close(kept);
    EXPECT_EQ(ran.outcome, Outcome::kSucceeded) << ran.exit_code;
    EXPECT_EQ(root_.Read("/environment"), "LC_ALL=C\nPATH=/usr/sbin:/usr/bin:/sbin:/bin\n");
}

TEST_F(AProgram, FailsWithItsFirstLine) {
    Write("echo 'mdadm: no such array' >&2\necho more\nexit 2\n");
    const hxmd::Ran ran = hxmd::Run("/sbin/mdadm", {});
    EXPECT_EQ(ran.outcome, Outcome::kFailed);
    EXPECT_EQ(ran.exit_code, 2);
    EXPECT_EQ(ran.message, "mdadm: no such array");
}

TEST_F(AProgram, FailsWhenASignalEndsIt) {
    Write("kill -9 $$\n");
    const hxmd::Ran ran = hxmd::Run("/sbin/mdadm", {});
    EXPECT_EQ(ran.outcome, Outcome::kFailed);
    EXPECT_EQ(ran.exit_code, -1);
}

TEST_F(AProgram, FailsWhenItIsMissing) {
    const hxmd::Ran ran = hxmd::Run("/sbin/mdadm", {});
    EXPECT_EQ(ran.outcome, Outcome::kFailed);
    EXPECT_EQ(ran.message, "/sbin/mdadm cannot be started.");
}

TEST_F(AProgram, MayWriteMoreThanAPipeHolds) {
    Write("head -c 300000 /dev/zero | tr '\\0' x\n");
    const hxmd::Ran ran = hxmd::Run("/sbin/mdadm", {});
    EXPECT_EQ(ran.outcome, Outcome::kSucceeded);
    EXPECT_EQ(ran.message, std::string(4096, 'x'));
}

TEST_F(AProgram, IsKilledWhenItNeverStopsWriting) {
    Write("exec yes\n");
    const hxmd::Ran ran = hxmd::Run("/sbin/mdadm", {}, std::chrono::milliseconds(50));
    EXPECT_EQ(ran.outcome, Outcome::kTimedOut);
    EXPECT_EQ(ran.exit_code, -1);
}

TEST_F(AProgram, IsWaitedForWhereTheHostIgnoresItsChildren) {
    Write("read -r go < '" + File("gate") + "'\necho done > '" + File("end") + "'\n");
    ASSERT_EQ(std::system(("mkfifo '" + File("gate") + "'").c_str()), 0);
    const auto before = signal(SIGCHLD, SIG_IGN);
    // Opened for both, so that the program finds a line and its writer whenever it comes.
    const int gate = open(File("gate").c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(write(gate, "go\n", 3), 3);
    const hxmd::Ran ran = hxmd::Run("/sbin/mdadm", {});
    signal(SIGCHLD, before);
    close(gate);
    EXPECT_EQ(ran.outcome, Outcome::kUnknown);
    EXPECT_EQ(root_.Read("/end"), "done\n");
}

TEST_F(AProgram, IsRunAgainWhileADeviceIsBusy) {
    Write("echo x >> '" + File("count") + "'\n[ $(wc -l < '" + File("count") +
          "') -lt 3 ] || exit 0\necho 'mdadm: /dev/sda1: Device or resource busy' >&2\nexit 1\n");
    EXPECT_EQ(hxmd::RunMdadm({"--stop"}).outcome, Outcome::kSucceeded);
    EXPECT_EQ(root_.Read("/count"), "x\nx\nx\n");
}

TEST_F(AProgram, IsNotRunAgainAfterAnotherFailure) {
    Write("echo x >> '" + File("count") + "'\nexit 1\n");
    EXPECT_EQ(hxmd::RunMdadm({"--stop"}).outcome, Outcome::kFailed);
    EXPECT_EQ(root_.Read("/count"), "x\n");
}

TEST(AWord, ReplacesTheAttribute) {
    const TemporaryRoot root;
    root.Write("/sys/block/md127/md/sync_action", "recover\n");
    EXPECT_EQ(hxmd::WriteWord("md127/md/sync_action", "idle"), 0);
    EXPECT_EQ(root.Read("/sys/block/md127/md/sync_action"), "idle");
}

TEST(AWord, IsRefusedWhereThereIsNoSuchAttribute) {
    const TemporaryRoot root;
    EXPECT_EQ(hxmd::WriteWord("md127/md/sync_action", "idle"), ENOENT);
    EXPECT_FALSE(root.Exists("/sys"));
}

}  // namespace
