// Processes that deliver alerts: limits, output, and the processes that they start.
#include "service/hxs_process.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "support/temporary_root.h"

namespace {

using hxservice::Children;
using hxservice::Job;
using hxservice::JobEnd;
using std::chrono::seconds;
using vexortools::Duration;

Job Shell(const std::string& script, const std::string& input = "") {
    return {.words = {"/bin/sh", "-c", script},
            .environment = {"PATH=/usr/bin:/bin", "COLOUR=red"},
            .input = input,
            .limit = seconds(60)};
}

// Waits for the end of one job; `now` stays as it is, so that no limit is reached.
JobEnd EndOf(Children& children, Duration now = Duration(0)) {
    constexpr int kPatience = 120000;
    for (;;) {
        std::vector<JobEnd> ended = children.TakeEnded(now);
        if (!ended.empty()) return ended.front();
        pollfd ready{children.Descriptor(), POLLIN, 0};
        if (poll(&ready, 1, kPatience) != 1) return {"", false, "it did not end", ""};
    }
}

// Killed, whether or not somebody has waited for it.
bool IsGone(pid_t process) {
    const std::string stat = "/proc/" + std::to_string(process) + "/stat";
    FILE* const file = std::fopen(stat.c_str(), "r");
    if (file == nullptr) return true;
    char state = '?';
    const int read = std::fscanf(file, "%*d %*s %c", &state);
    std::fclose(file);
    return read != 1 || state == 'Z';
}

// The number that the job's script writes into the file.
pid_t ProcessIn(const TemporaryRoot& root, const char* file, Children& children) {
    std::string text;
    while (text.find('\n') == std::string::npos) {
        EXPECT_TRUE(children.TakeEnded(seconds(59)).empty());
        text = root.Read(file);
        std::this_thread::yield();
    }
    return std::atoi(text.c_str());
}

TEST(DeliveringProcess, GetsItsInputAndEnvironmentAndTellsItsOutput) {
    Children children;
    children.Start("a", Shell("cat; echo $COLOUR; echo $HOME; echo err >&2", "in\n"), Duration(0));
    const JobEnd end = EndOf(children);
    EXPECT_EQ(end.name, "a");
    EXPECT_EQ(end.error, "");
    EXPECT_EQ(end.output, "in\nred\n\nerr\n");
    EXPECT_FALSE(children.Due());
}

TEST(DeliveringProcess, GetsInputThatNoPipeHolds) {
    Children children;
    children.Start("a", Shell("sleep 0; wc -c", std::string(1000000, 'x')), Duration(0));
    EXPECT_EQ(EndOf(children).output, "1000000\n");
}

TEST(DeliveringProcess, TellsHowItFailed) {
    Children children;
    children.Start("a", Shell("echo no line; exit 3"), Duration(0));
    JobEnd end = EndOf(children);
    EXPECT_EQ(end.error, "ended with exit status 3");
    EXPECT_EQ(end.output, "no line\n");
    EXPECT_TRUE(end.has_begun);
    children.Start("a", Shell("kill -9 $$"), Duration(0));
    EXPECT_EQ(EndOf(children).error, "ended by signal 9");
    Job missing = Shell("");
    missing.words = {"/none/at/all"};
    children.Start("a", missing, Duration(0));
    end = EndOf(children);
    EXPECT_EQ(end.error, "cannot be started: No such file or directory");
    EXPECT_FALSE(end.has_begun);
}

TEST(DeliveringProcess, KeepsTheFirstOfMuchOutput) {
    Children children;
    children.Start("a", Shell("head -c 300000 /dev/zero | tr '\\0' x"), Duration(0));
    const JobEnd end = EndOf(children);
    EXPECT_EQ(end.error, "");
    EXPECT_EQ(end.output, std::string(4096, 'x'));
    children.Start("a", Shell("exec yes"), Duration(0));
    EXPECT_NE(EndOf(children).error, "");  // its pipe was closed
}

TEST(DeliveringProcess, IsKilledAtItsLimitWithWhatItHasStarted) {
    const TemporaryRoot root;
    Children children;
    children.Start("a", Shell("sleep 1000 & echo $! >'" + root.Path("/pid") + "'; wait"),
                   Duration(0));
    EXPECT_EQ(children.Due(), seconds(60));
    const pid_t grandchild = ProcessIn(root, "/pid", children);
    ASSERT_GT(grandchild, 1);
    const JobEnd end = EndOf(children, seconds(60));
    EXPECT_EQ(end.error, "did not end within 1m");
    while (!IsGone(grandchild)) std::this_thread::yield();
}

// A session of its own, and an orphan besides.
std::string Daemon(const TemporaryRoot& root, const char* file, const char* before = "") {
    return std::string("(") + before +
           " setsid sh -c 'echo $$ >\"$1.new\"; mv \"$1.new\" \"$1\"; exec sleep 1000' sh '" +
           root.Path(file) + "' >/dev/null 2>&1 &); ";
}

TEST(DeliveringProcess, IsKilledWithWhatHasLeftItsSession) {
    const TemporaryRoot root;
    Children children;
    children.Start("a", Shell(Daemon(root, "/pid") + "sleep 1000"), Duration(0));
    const pid_t daemon = ProcessIn(root, "/pid", children);
    ASSERT_GT(daemon, 1);
    EXPECT_FALSE(IsGone(daemon));
    EXPECT_EQ(EndOf(children, seconds(60)).error, "did not end within 1m");
    while (!IsGone(daemon)) std::this_thread::yield();
}

TEST(DeliveringProcess, TakesWhatHasLeftItsSessionWithItWhenItEnds) {
    const TemporaryRoot root;
    Children children;
    const std::string wait = "while ! [ -e '" + root.Path("/pid") + "' ]; do sleep 0.01; done";
    children.Start("a", Shell(Daemon(root, "/pid") + wait), Duration(0));
    EXPECT_EQ(EndOf(children).error, "");
    const pid_t daemon = std::atoi(root.Read("/pid").c_str());
    ASSERT_GT(daemon, 1);
    while (!IsGone(daemon)) std::this_thread::yield();
}

TEST(DeliveringProcess, LeavesWhatAnotherOneHasStarted) {
    const TemporaryRoot root;
    Children children;
    children.Start("a", Shell(Daemon(root, "/pid") + "sleep 1000"), Duration(0));
    const pid_t daemon = ProcessIn(root, "/pid", children);
    ASSERT_GT(daemon, 1);
    children.Start("b", Shell("true"), Duration(0));
    EXPECT_EQ(EndOf(children).name, "b");
    EXPECT_FALSE(IsGone(daemon));
}

TEST(DeliveringProcess, MayLeaveProcessesThatGoOnWhenItsJobSaysSo) {
    const TemporaryRoot root;
    Children children;
    Job mail = Shell(Daemon(root, "/pid") + "while ! [ -e '" + root.Path("/pid") +
                     "' ]; do sleep 0.01; done");
    mail.may_leave_processes = true;
    children.Start("a", mail, Duration(0));
    EXPECT_EQ(EndOf(children).error, "");
    const pid_t daemon = std::atoi(root.Read("/pid").c_str());
    ASSERT_GT(daemon, 1);
    children.Start("b", Shell("true"), Duration(0));
    EXPECT_EQ(EndOf(children).name, "b");
    EXPECT_FALSE(IsGone(daemon));
    EXPECT_EQ(kill(daemon, SIGKILL), 0);
    while (!IsGone(daemon)) std::this_thread::yield();
}

TEST(DeliveringProcess, IsKilledWithWhatHidesItsEnvironmentAlsoWhereOthersMayStay) {
    const TemporaryRoot root;
    Children children;
    Job mail = Shell(Daemon(root, "/mail", "env -i") + "while ! [ -e '" + root.Path("/mail") +
                     "' ]; do sleep 0.01; done");
    mail.may_leave_processes = true;
    children.Start("a", mail, Duration(0));
    EXPECT_EQ(EndOf(children).error, "");
    const pid_t left = std::atoi(root.Read("/mail").c_str());
    ASSERT_GT(left, 1);
    children.Start("b", Shell(Daemon(root, "/pid", "env -i") + "sleep 1000"), Duration(0));
    const pid_t daemon = ProcessIn(root, "/pid", children);
    ASSERT_GT(daemon, 1);
    EXPECT_EQ(EndOf(children, seconds(60)).error, "did not end within 1m");
    while (!IsGone(daemon)) std::this_thread::yield();
    EXPECT_FALSE(IsGone(left));
    EXPECT_EQ(kill(left, SIGKILL), 0);
    while (!IsGone(left)) std::this_thread::yield();
}

TEST(DeliveringProcess, LeavesTheServicesOwnLimitsAsTheyAre) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_MSGQUEUE, &before), 0);
    Children children;
    children.Start("a", Shell("true"), Duration(0));
    EndOf(children);
    rlimit after{};
    ASSERT_EQ(getrlimit(RLIMIT_MSGQUEUE, &after), 0);
    EXPECT_EQ(after.rlim_cur, before.rlim_cur);
}

TEST(DeliveringProcess, LeavesNoDeadOrphans) {
    const TemporaryRoot root;
    Children children;
    children.Start("a", Shell(Daemon(root, "/pid") + "sleep 1000"), Duration(0));
    const pid_t daemon = ProcessIn(root, "/pid", children);
    ASSERT_GT(daemon, 1);
    EndOf(children, seconds(60));
    while (kill(daemon, 0) == 0) {
        children.TakeEnded(seconds(60));
        std::this_thread::yield();
    }
    EXPECT_EQ(errno, ESRCH);
}

TEST(DeliveringProcess, LeavesNothingBehindWhenItEnds) {
    Children children;
    children.Start("a", Shell("sleep 1000 >/dev/null 2>&1 & echo $!"), Duration(0));
    const JobEnd end = EndOf(children);
    EXPECT_EQ(end.error, "");
    EXPECT_GT(std::atoi(end.output.c_str()), 1);
}

TEST(DeliveringProcess, ThatCannotBeForkedHasNotBegun) {
    Children children;
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &old), 0);
    rlimit none = old;
    none.rlim_cur = 3;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    children.Start("a", Shell("true"), Duration(0));
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &old), 0);
    EXPECT_EQ(children.Due(), Duration(0));
    const JobEnd end = EndOf(children);
    EXPECT_EQ(end.error, "cannot be started: Too many open files");
    EXPECT_FALSE(end.has_begun);
}

}  // namespace
