#include "tape/hxt_player.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "support/temporary_root.h"

namespace hxtape {
namespace {

class ATapeThatIsPlayed : public testing::Test {
protected:
    ATapeThatIsPlayed() {
        std::ofstream tape(Path("/tape"));
        tape << HeadText(0, false) << LineOf({"HX_LD_GetStatus", "a", 0, "1"})
             << LineOf({"HX_LD_Delete", "a", 0, ""}) << LineOf({"HX_LD_GetStatus", "b", 0, "other"})
             << LineOf({"HX_LD_GetStatus", "a", 0, "2"});
    }
    std::string Path(const char* name) const { return root_.Path(name); }
    static std::string Answer(Player& player, const std::string& request) {
        const TapeCall* const call = player.Next("HX_LD_GetStatus", request, Effect::kReads);
        return call == nullptr ? "none" : call->answer;
    }

    TemporaryRoot root_;
};

TEST_F(ATapeThatIsPlayed, AnswersEachCallInItsOwnOrderAndThenWithTheLast) {
    Player player(Path("/tape"), "");
    EXPECT_EQ("other", Answer(player, "b"));
    EXPECT_EQ("1", Answer(player, "a"));
    EXPECT_EQ("2", Answer(player, "a"));
    EXPECT_EQ("2", Answer(player, "a"));
    EXPECT_EQ("none", Answer(player, "c"));
}

TEST_F(ATapeThatIsPlayed, ChangesNothingMoreOftenThanWasRecorded) {
    Player player(Path("/tape"), "");
    EXPECT_NE(nullptr, player.Next("HX_LD_Delete", "a", Effect::kChanges));
    EXPECT_EQ(nullptr, player.Next("HX_LD_Delete", "a", Effect::kChanges));
}

TEST_F(ATapeThatIsPlayed, GoesOnInTheNextProcess) {
    Player first(Path("/tape"), Path(""));
    EXPECT_EQ("1", Answer(first, "a"));
    Player second(Path("/tape"), Path(""));
    EXPECT_EQ("2", Answer(second, "a"));
    EXPECT_EQ("other", Answer(second, "b"));
}

TEST_F(ATapeThatIsPlayed, NotesWhatItMisses) {
    Player player(Path("/tape"), Path(""));
    player.Miss("HX_LD_GetStatus", "c");
    std::ifstream file(Path(kMissedFile));
    EXPECT_EQ("HX_LD_GetStatus 63\n", std::string(std::istreambuf_iterator<char>(file), {}));
}

}  // namespace
}  // namespace hxtape
