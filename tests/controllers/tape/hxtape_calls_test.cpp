// The library that stands between, over the virtual controller: what is recorded is what it
// answers, and what is played back is what was recorded, without a controller.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "hxraid.h"
#include "library/trouble.h"
#include "support/temporary_root.h"
#include "tape/hxt_tape.h"

namespace hxtape {
namespace {

class TheTapeLibrary : public testing::Test {
protected:
    TheTapeLibrary() {
        unsetenv(kRecordVariable);
        unsetenv(kReplayVariable);
        unsetenv(kKeyVariable);
        unsetenv(kFolderVariable);
        setenv(kControllerVariable, HXSIM, 1);
        setenv("HXSIM_STATE", ":memory:", 1);
        std::ofstream(tape_) << HeadText(0, false);
    }
    ~TheTapeLibrary() override { HX_API_Finalize(); }

    void Record() {
        HX_API_Finalize();
        unsetenv(kReplayVariable);
        setenv(kRecordVariable, tape_.c_str(), 1);
    }
    void Replay() {
        HX_API_Finalize();
        unsetenv(kRecordVariable);
        unsetenv(kControllerVariable);
        setenv(kReplayVariable, tape_.c_str(), 1);
    }

    static HX_U8 AskDisks(HX_U16 room, std::vector<char>& page) {
        page.assign(sizeof(RequestHeader) + room * sizeof(HD_Info), '\0');
        auto& header = *reinterpret_cast<RequestHeader*>(page.data());
        header.requestType = HX_REQUEST_BY_INDEX;
        header.numRequested = room;
        return HX_PD_GetHDInfo(0, reinterpret_cast<HD_Info_Request*>(page.data()));
    }

    TemporaryRoot root_;
    std::string tape_ = root_.Path("/tape");
};

TEST_F(TheTapeLibrary, PlaysBackWhatItRecorded) {
    Record();
    ASSERT_EQ(HX_SUCCESS, HX_API_Initialize());
    const std::string version = HX_API_Version();
    const HX_U8 adapters = HX_Adapter_GetCount();
    EXPECT_GT(adapters, 0);
    std::vector<char> recorded;
    ASSERT_EQ(HX_SUCCESS, AskDisks(3, recorded));
    LD_Info disk{};
    const HX_U8 refusal = HX_LD_GetTargetLDInfo(0, 999, &disk);
    EXPECT_NE(HX_SUCCESS, refusal);

    Replay();
    EXPECT_EQ(HX_SUCCESS, HX_API_Initialize());
    EXPECT_EQ(refusal, HX_LD_GetTargetLDInfo(0, 999, &disk)) << "in any order";
    std::vector<char> played;
    EXPECT_EQ(HX_SUCCESS, AskDisks(3, played));
    EXPECT_EQ(recorded, played);
    EXPECT_EQ(adapters, HX_Adapter_GetCount());
    EXPECT_EQ(version, HX_API_Version());
}

TEST_F(TheTapeLibrary, RefusesWhatWasNotRecorded) {
    Record();
    ASSERT_EQ(HX_SUCCESS, HX_API_Initialize());
    Replay();
    ASSERT_EQ(HX_SUCCESS, HX_API_Initialize());
    std::vector<char> page;
    EXPECT_EQ(255, AskDisks(3, page));
    EXPECT_STREQ("The tape has no answer to HX_PD_GetHDInfo.", hx_trouble());
    EXPECT_EQ(0, HX_Adapter_GetCount()) << "a count that is not known is none";
    EXPECT_EQ(255, HX_LD_Delete(0, 0, 0));
    EXPECT_EQ(nullptr, HX_API_Version());
}

TEST_F(TheTapeLibrary, RefusesAnAnswerThatIsNone) {
    std::ofstream(tape_, std::ios::app) << LineOf({"HX_BBU_GetInfo", std::string(1, '\0'), 0, "x"});
    Replay();
    BBU_Info battery{};
    EXPECT_EQ(255, HX_BBU_GetInfo(0, &battery));
}

TEST_F(TheTapeLibrary, TellsWhyItCannotBeUsed) {
    EXPECT_EQ(229, HX_API_Initialize());
    EXPECT_STREQ("Either HXT_RECORD or HXT_REPLAY has to name a tape; vexorctl tape sets it.",
                 hx_trouble());
    setenv(kReplayVariable, "/nonexistent", 1);
    EXPECT_EQ(229, HX_API_Initialize());
    EXPECT_STREQ("No such file or directory", hx_trouble());
    unsetenv(kReplayVariable);
    setenv(kRecordVariable, tape_.c_str(), 1);
    setenv(kControllerVariable, "/nonexistent/libhxraid.so", 1);
    EXPECT_EQ(229, HX_API_Initialize());
    EXPECT_EQ(0U, std::string(hx_trouble()).find("The controller library cannot be loaded: "));
}

TEST_F(TheTapeLibrary, WritesNoNamesWithAKey) {
    setenv(kKeyVariable, "000102030405060708090a0b0c0d0e0f", 1);
    Record();
    ASSERT_EQ(HX_SUCCESS, HX_API_Initialize());
    std::vector<char> page;
    ASSERT_EQ(HX_SUCCESS, AskDisks(1, page));
    const HD_Info& disk = reinterpret_cast<HD_Info_Request*>(page.data())->hdInfo[0];
    const std::string serial(disk.SerialNo, strnlen(disk.SerialNo, sizeof disk.SerialNo));
    ASSERT_FALSE(serial.empty());
    for (const TapeCall& call : ReadTape(tape_).calls) {
        EXPECT_EQ(std::string::npos, call.answer.find(serial)) << call.function;
    }
    HX_API_Finalize();
    setenv(kKeyVariable, "short", 1);
    EXPECT_EQ(229, HX_API_Initialize()) << "no tape is better than one with the names in it";
}

}  // namespace
}  // namespace hxtape
