// The service log: its lines, its clock, and what stands in the way of its file.
#include "log.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <string>

#include "support/child_process.h"
#include "support/temporary_root.h"

namespace {

using testing::MatchesRegex;

constexpr char kLog[] = "/var/log/hxraidsvc.log";

// A time stamp as asctime writes it, without its line end.
#define STAMP                                            \
    "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) "                     \
    "(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) " \
    "[ 1-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9] 20[0-9]{2}"

std::size_t OpenDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

// Whether any descriptor of this process is `file`; `flags` gets the descriptor's own.
bool HoldsOpen(const std::string& file, int& flags) {
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        std::error_code error;
        const auto link = "/proc/self/fd/" + std::to_string(descriptor);
        if (std::filesystem::read_symlink(link, error) != file) continue;
        flags = fcntl(descriptor, F_GETFD);
        return true;
    }
    return false;
}

class ServiceLog : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directories(root_.Path("/var/log")); }
    void TearDown() override { CloseLog(); }

    TemporaryRoot root_;
};

TEST_F(ServiceLog, LineIsTheTimeStampAColonABlankAndTheMessage) {
    LogPrintf("disk %d of adapter %s failed\n", 3, "A");
    EXPECT_THAT(root_.Read(kLog), MatchesRegex(STAMP ": disk 3 of adapter A failed\n"));
}

TEST_F(ServiceLog, AddsNoLineEnd) {
    LogPrintf("started");
    EXPECT_THAT(root_.Read(kLog), MatchesRegex(STAMP ": started"));
}

TEST_F(ServiceLog, AppendsLineAfterLine) {
    LogPrintf("one\n");
    LogPrintf("two\n");
    EXPECT_THAT(root_.Read(kLog), MatchesRegex(STAMP ": one\n" STAMP ": two\n"));
}

TEST_F(ServiceLog, KeepsWhatTheFileHeldBefore) {
    root_.Write(kLog, "old\n");
    LogPrintf("new\n");
    EXPECT_THAT(root_.Read(kLog), MatchesRegex("old\n" STAMP ": new\n"));
}

TEST_F(ServiceLog, CountsTheMessageWithoutItsTimeStamp) { EXPECT_EQ(7, LogPrintf("disk %d\n", 3)); }

TEST_F(ServiceLog, WritesAPercentSignOfTheArgumentsAsItIs) {
    EXPECT_EQ(17, LogPrintf("%s\n", "100% %n %s %5d%%"));
    EXPECT_THAT(root_.Read(kLog), MatchesRegex(STAMP ": 100% %n %s %5d%%\n"));
}

TEST_F(ServiceLog, WritesAMessageOf512KibWhole) {
    const std::string text(524288, 'x');
    EXPECT_EQ(524289, LogPrintf("%s\n", text.c_str()));
    const std::string log = root_.Read(kLog);
    ASSERT_EQ(24u + 2u + 524289u, log.size());
    EXPECT_EQ(": " + text + "\n", log.substr(24));
}

TEST_F(ServiceLog, WritesAnEmptyMessageAsItsTimeStamp) {
    EXPECT_EQ(0, LogPrintf("%s", ""));
    EXPECT_THAT(root_.Read(kLog), MatchesRegex(STAMP ": "));
}

TEST_F(ServiceLog, IsCreatedForItsOwnerAlone) {
    const mode_t before = umask(0);
    LogPrintf("x\n");
    umask(before);
    EXPECT_EQ(std::filesystem::perms{0600},
              std::filesystem::status(root_.Path(kLog)).permissions());
}

TEST_F(ServiceLog, DropsTheLineAndCountsItWhenTheFolderIsMissing) {
    std::filesystem::remove_all(root_.Path("/var"));
    EXPECT_EQ(2, LogPrintf("x\n"));
    EXPECT_FALSE(root_.Exists("/var"));
}

TEST_F(ServiceLog, DropsTheLineAndCountsItWhenThePathDoesNotFit) {
    setenv("VEXORAPI_ROOT", std::string(5000, 'x').c_str(), 1);
    EXPECT_EQ(2, LogPrintf("x\n"));
    EXPECT_EQ(1, InitLog());
}

TEST_F(ServiceLog, DropsTheLineWithoutWaitingWhenItsNameIsAFifo) {
    ASSERT_EQ(0, mkfifo(root_.Path(kLog).c_str(), 0600));
    EXPECT_EQ(2, LogPrintf("x\n"));
    EXPECT_EQ(1, InitLog());
}

TEST_F(ServiceLog, DropsTheLineWhenItsNameIsAFolder) {
    std::filesystem::create_directory(root_.Path(kLog));
    EXPECT_EQ(2, LogPrintf("x\n"));
    EXPECT_EQ(1, InitLog());
}

TEST_F(ServiceLog, DropsTheLineWhenOthersCouldHavePutALinkThere) {
    root_.Write("/real.log", "precious");
    std::filesystem::create_symlink(root_.Path("/real.log"), root_.Path(kLog));
    chmod(root_.Path("/var/log").c_str(), 0777);
    EXPECT_EQ(2, LogPrintf("x\n"));
    EXPECT_EQ(1, InitLog());
    EXPECT_EQ("precious", root_.Read("/real.log"));
}

TEST_F(ServiceLog, CountsNothingWithoutMemory) {
    if (kSanitized) GTEST_SKIP() << "the sanitizers end a process that has no memory";
    EXPECT_EQ(0, InChildWithoutMemory([] { return LogPrintf("%0100000d\n", 1) & 0xFF; }));
    EXPECT_EQ("", root_.Read(kLog));
}

TEST_F(ServiceLog, LeavesNoDescriptorOpenBehindALine) {
    const std::size_t before = OpenDescriptors();
    LogPrintf("x\n");
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_F(ServiceLog, OpensAndClosesWithZero) {
    EXPECT_EQ(0, InitLog());
    EXPECT_EQ(0, CloseLog());
}

TEST_F(ServiceLog, OpensWithOneWhenTheFolderIsMissing) {
    std::filesystem::remove_all(root_.Path("/var"));
    EXPECT_EQ(1, InitLog());
}

TEST_F(ServiceLog, OpeningCreatesTheFile) {
    InitLog();
    EXPECT_TRUE(root_.Exists(kLog));
}

TEST_F(ServiceLog, OpenLogIsClosedOnExec) {
    InitLog();
    int flags = 0;
    ASSERT_TRUE(HoldsOpen(root_.Path(kLog), flags));
    EXPECT_EQ(FD_CLOEXEC, flags & FD_CLOEXEC);
}

TEST_F(ServiceLog, ClosingReleasesTheFile) {
    InitLog();
    CloseLog();
    int flags = 0;
    EXPECT_FALSE(HoldsOpen(root_.Path(kLog), flags));
}

TEST_F(ServiceLog, ClosingWhatIsNotOpenReturnsOne) { EXPECT_EQ(1, CloseLog()); }

TEST_F(ServiceLog, ClosingTwiceReturnsOneAndClosesNothingOfTheProcess) {
    InitLog();
    CloseLog();
    const int other = open("/dev/null", O_RDONLY | O_CLOEXEC);  // takes the number just given back
    EXPECT_EQ(1, CloseLog());
    EXPECT_NE(-1, fcntl(other, F_GETFD));
    close(other);
}

TEST_F(ServiceLog, ClosingAfterAFailedOpeningReturnsOne) {
    std::filesystem::remove_all(root_.Path("/var"));
    InitLog();
    EXPECT_EQ(1, CloseLog());
}

TEST_F(ServiceLog, OpeningTwiceHoldsOneDescriptor) {
    const std::size_t before = OpenDescriptors();
    InitLog();
    EXPECT_EQ(0, InitLog());
    EXPECT_EQ(before + 1, OpenDescriptors());
}

TEST_F(ServiceLog, LineClosesALogThatItsCallerHadOpened) {
    const std::size_t before = OpenDescriptors();
    InitLog();
    LogPrintf("x\n");
    EXPECT_EQ(before, OpenDescriptors());
    EXPECT_EQ(1, CloseLog());
}

// ---- The clock ----

std::tm Moment(int year, int month, int day, int hour, int minute, int second, int weekday) {
    std::tm time{};
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = second;
    time.tm_wday = weekday;
    return time;
}

TEST(ServiceLogClock, WritesATimeAsAsctimeDoes) {
    char text[kTimeTextSize];
    EXPECT_STREQ("Thu Feb 29 23:59:58 2024\n", TimeToStr(Moment(2024, 2, 29, 23, 59, 58, 4), text));
}

TEST(ServiceLogClock, PadsTheDayWithABlankAndTheTimeWithZeros) {
    char text[kTimeTextSize];
    EXPECT_STREQ("Sun Dec  1 01:02:03 2030\n", TimeToStr(Moment(2030, 12, 1, 1, 2, 3, 0), text));
}

TEST(ServiceLogClock, WritesTheLastYearOfFourDigits) {
    char text[kTimeTextSize];
    EXPECT_STREQ("Fri Dec 31 23:59:59 9999\n",
                 TimeToStr(Moment(9999, 12, 31, 23, 59, 59, 5), text));
}

TEST(ServiceLogClock, WritesAYearOfFiveDigitsAsTheFirstSecondOf1970) {
    char text[kTimeTextSize];
    EXPECT_STREQ("Thu Jan  1 00:00:00 1970\n", TimeToStr(Moment(10000, 1, 1, 0, 0, 0, 6), text));
}

TEST(ServiceLogClock, WritesAYearBeyondAllNumbersAsTheFirstSecondOf1970) {
    std::tm time = Moment(2000, 1, 1, 0, 0, 0, 6);
    time.tm_year = INT_MAX;
    char text[kTimeTextSize];
    EXPECT_STREQ("Thu Jan  1 00:00:00 1970\n", TimeToStr(time, text));
}

class TimeZone : public testing::Test {
protected:
    void TearDown() override {
        unsetenv("TZ");
        tzset();
    }
};

TEST_F(TimeZone, NowFollowsTheZoneOfTheMoment) {
    std::tm now{};
    setenv("TZ", "AAA-5", 1);
    ASSERT_TRUE(GetNow(now));
    EXPECT_EQ(5 * 3600, now.tm_gmtoff);
    setenv("TZ", "BBB+3", 1);
    ASSERT_TRUE(GetNow(now));
    EXPECT_EQ(-3 * 3600, now.tm_gmtoff);
}

TEST_F(TimeZone, NowIsTheCurrentTime) {
    const std::time_t before = std::time(nullptr);
    std::tm now{};
    ASSERT_TRUE(GetNow(now));
    const std::time_t seconds = std::mktime(&now);
    EXPECT_LE(before, seconds);
    EXPECT_GE(std::time(nullptr), seconds);
}

TEST_F(TimeZone, NowAsTextEndsItsLine) { EXPECT_THAT(NowToStr(), MatchesRegex(STAMP "\n")); }

TEST_F(TimeZone, NowAsTextLeavesTheProcessesOwnTimesAlone) {
    const std::time_t epoch = 0;
    const std::tm* const of_the_process = std::gmtime(&epoch);
    NowToStr();
    EXPECT_EQ(70, of_the_process->tm_year);
}

}  // namespace
