#include "common/command_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vexortools {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class CommandLine : public testing::Test {
protected:
    CommandLine() {
        parser_.Program().RequireCommands(1, 1);
        parser_.OptionsMayFollow();
        parser_.Program().AddText("--state", state_, "a file");
        const Command disk = parser_.Program().AddCommand("disk", "a disk's fate");
        disk.AddRequiredText("ADDRESS", address_, "such as a0/pd1");
        disk.AddFlag("--foreign,-f", foreign_, "with metadata");
        disk.AddText(
            "--size", [this](const std::string& text) { sizes_.push_back(text); }, "size");
        disk.WhenTyped([this] { done_ = address_; });
    }

    const CommandParser parser_{"tool", "tool 1.2", "Does things.", "The end."};
    std::string state_ = "default", address_, done_;
    bool foreign_ = false;
    std::vector<std::string> sizes_;
};

TEST_F(CommandLine, IsTakenApart) {
    parser_.Parse({"disk", "--size", "1GiB", "a0/pd1", "-f", "--state", "here"});
    EXPECT_EQ("a0/pd1", done_);
    EXPECT_EQ("here", state_);
    EXPECT_TRUE(foreign_);
    EXPECT_THAT(sizes_, ElementsAre("1GiB"));
}

TEST_F(CommandLine, LeavesWhatIsNotTypedAsItIs) {
    parser_.Parse({"disk", "a0/pd1"});
    EXPECT_EQ("default", state_);
    EXPECT_FALSE(foreign_);
    EXPECT_THAT(sizes_, IsEmpty());
}

TEST_F(CommandLine, KnowsItsCommands) {
    EXPECT_TRUE(parser_.Program().HasCommand("disk"));
    EXPECT_FALSE(parser_.Program().HasCommand("dis"));
    EXPECT_FALSE(parser_.Program().CommandTyped());
    parser_.Parse({"disk", "a0/pd1"});
    EXPECT_TRUE(parser_.Program().CommandTyped());
}

TEST_F(CommandLine, RefusesAValueOfAFlag) {
    for (const char* const word : {"--foreign=x", "--foreign=true", "--foreign="}) {
        try {
            parser_.Parse({"disk", "a0/pd1", word});
            ADD_FAILURE() << word << " was accepted";
        } catch (const UsageError& error) {
            EXPECT_STREQ("--foreign takes no value", error.what());
        }
    }
    parser_.Parse({"disk", "--", "--foreign=x"});
    EXPECT_EQ("--foreign=x", done_);
}

TEST_F(CommandLine, SaysWhatItCannotUnderstand) {
    EXPECT_THROW(parser_.Parse({}), UsageError);
    EXPECT_THROW(parser_.Parse({"disk"}), UsageError);
    EXPECT_THROW(parser_.Parse({"disk", "a0/pd1", "--nothing"}), UsageError);
    EXPECT_EQ("", done_);
}

TEST_F(CommandLine, SaysWhichOptionLacksItsValue) {
    try {
        parser_.Parse({"disk", "a0/pd1", "--size"});
        FAIL() << "it was understood";
    } catch (const ValueMissing& missing) {
        EXPECT_THAT(missing.what(), StartsWith("--size:"));
    }
}

TEST_F(CommandLine, AnswersHelpAndVersionWithTheirText) {
    const auto asked = [&](const char* word) -> std::string {
        try {
            parser_.Parse({word});
        } catch (const HelpAsked& help) {
            return help.text;
        }
        return "nothing was asked";
    };
    EXPECT_THAT(asked("--help"), StartsWith("Does things.\nUsage: tool "));
    EXPECT_THAT(asked("--help"), HasSubstr("a disk's fate"));
    EXPECT_THAT(asked("--help"), HasSubstr("The end."));
    EXPECT_EQ("tool 1.2\n", asked("--version"));
}

TEST(FlatCommandLine, KeepsWhatWasTypedInItsOrder) {
    const CommandParser parser;
    const Typed yes = parser.Program().AddFlag("--yes,-y");
    const Typed columns = parser.Program().AddOption("--columns");
    const Typed targets = parser.Program().AddArguments("TARGET");
    parser.Parse({"b", "--columns", "one", "a", "--columns=two", "-y", "-y"});
    EXPECT_EQ(2u, yes.Count());
    EXPECT_THAT(columns.Values(), ElementsAre("one", "two"));
    EXPECT_THAT(targets.Values(), ElementsAre("b", "a"));
}

TEST(FlatCommandLine, KnowsNoHelp) { EXPECT_THROW(CommandParser().Parse({"--help"}), UsageError); }

}  // namespace
}  // namespace vexortools
