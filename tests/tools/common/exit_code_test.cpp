#include "common/exit_code.h"

#include <gtest/gtest.h>

namespace {

using vexortools::Exit;
using vexortools::ExitMeaning;
using vexortools::MoreSerious;

// Scripts compare the numbers, so none may ever change.
TEST(ExitCode, IsANumberThatScriptsRelyOn) {
    EXPECT_EQ(CodeOf(Exit::kDone), 0);
    EXPECT_EQ(CodeOf(Exit::kRefused), 1);
    EXPECT_EQ(CodeOf(Exit::kUsage), 2);
    EXPECT_EQ(CodeOf(Exit::kNoObject), 3);
    EXPECT_EQ(CodeOf(Exit::kNotPermitted), 4);
    EXPECT_EQ(CodeOf(Exit::kUnavailable), 5);
    EXPECT_EQ(CodeOf(Exit::kUndelivered), 6);
    EXPECT_EQ(CodeOf(Exit::kWaiting), 7);
    EXPECT_EQ(CodeOf(Exit::kNotConfirmed), 8);
    EXPECT_EQ(CodeOf(Exit::kInterrupted), 130);
}

TEST(ExitCode, OfSeveralFailuresIsTheMostSeriousOnes) {
    constexpr Exit kAscending[] = {Exit::kDone,        Exit::kRefused,      Exit::kNoObject,
                                   Exit::kWaiting,     Exit::kNotConfirmed, Exit::kNotPermitted,
                                   Exit::kUndelivered, Exit::kUsage,        Exit::kUnavailable,
                                   Exit::kInterrupted};
    for (std::size_t i = 1; i < std::size(kAscending); ++i) {
        EXPECT_EQ(MoreSerious(kAscending[i - 1], kAscending[i]), kAscending[i]);
        EXPECT_EQ(MoreSerious(kAscending[i], kAscending[i - 1]), kAscending[i]);
        EXPECT_EQ(MoreSerious(kAscending[i], kAscending[i]), kAscending[i]);
    }
}

TEST(ExitCode, HelpHasALineForEachRow) {
    constexpr ExitMeaning kRows[] = {{Exit::kDone, "done"}, {Exit::kInterrupted, "interrupted"}};
    EXPECT_EQ(vexortools::ExitCodeHelp(kRows), "Exit codes:\n  0  done\n  130  interrupted");
}

}  // namespace
