// Functions that take memory of their own, and there is none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "hxfake.h"
#include "support/failing_allocations.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "vexorapi_expat.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What every request takes beside its parser's blocks: the document and the function's record.
constexpr std::size_t kRequest = 2;

// The blocks that the parser of a command takes.
std::size_t ParserBlocks(const std::string& command) {
    ParseGuard guard;
    const ParseHandlers handlers{
        .start = [](void*, const XML_Char*, const XML_Char**) {},
        .end = [](void*, const XML_Char*) {},
        .text = [](void*, const XML_Char*, int) {},
        .doctype = nullptr,
    };
    const std::size_t before = AllocatedBlocks();
    EXPECT_EQ(1, RunExpat(command.data(), command.size(), nullptr, guard, handlers));
    return AllocatedBlocks() - before;
}

class WithoutMemory : public testing::Test {
protected:
    WithoutMemory() { hxfake::Reset(); }
    ~WithoutMemory() override { hxfake::Reset(); }

    // Allows the request `granted` blocks beyond those that each takes.
    static Reply Ask(const std::string& name, const std::string& children,
                     std::size_t granted = 0) {
        const std::string command =
            "<" + name + " type=\"function\">" + children + "</" + name + ">";
        const std::size_t parsing = ParserBlocks(command);
        const std::ptrdiff_t before = LiveBlocks();
        const Reply reply = [&] {
            const FailingAllocations failing(kRequest + parsing + granted);
            return Send(command);
        }();
        EXPECT_EQ(before, LiveBlocks());
        return reply;
    }
    static std::string Status(const std::string& name, int code) {
        return "<" + name + " type=\"function\">\n  <RetVal type=\"U8\">" + std::to_string(code) +
               "</RetVal>\n</" + name + ">";
    }

    TemporaryRoot root;
};

TEST_F(WithoutMemory, AListIsAnsweredWithAnEmptyResult) {
    for (const char* name :
         {"HX_PD_GetHDInfo", "HX_PD_GetHDInfo_Ext", "HX_PD_GetExpanderInfo", "HX_PD_GetPMInfo",
          "HX_PD_GetFreeSpaceInfo", "HX_PD_GetConfig", "HX_PD_GetBGAStatus", "HX_PD_GetSmartStatus",
          "HX_PD_GetHDRaidStatus", "HX_PD_GetSpareInfo", "HX_BLK_GetInfo", "HX_BLK_GetHDBlock",
          "HX_LD_GetInfo", "HX_LD_GetStatus", "HX_LD_GetConfig", "HX_DG_GetInfo", "HX_DG_GetConfig",
          "HX_ENC_GetEnclosureInfo"}) {
        SCOPED_TRACE(name);
        const Reply reply = Ask(name, "<numRequested>5</numRequested>");
        EXPECT_EQ(1, reply.ok);
        EXPECT_EQ("", reply.text);
        EXPECT_THAT(hxfake::Calls(), IsEmpty());
    }
}

TEST_F(WithoutMemory, AListThatGetsItsOneBlockIsAnswered) {
    const Reply reply = Ask("HX_PD_GetConfig", "<numRequested>5</numRequested>", 1);
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ("<HX_PD_GetConfig ", reply.text.substr(0, 17));
}

TEST_F(WithoutMemory, ARemapTableIsAnsweredWithAnEmptyResult) {
    for (const HX_U32 count : {0u, 5u, 150u}) {
        hxfake::ForgetCalls();
        hxfake::On<&HX_PD_RCT_GetCount>().Always(0, hxfake::Fill(count));
        const Reply reply = Ask("HX_PD_GetRCT", "<n>4</n>");
        EXPECT_EQ(1, reply.ok);
        EXPECT_EQ("", reply.text);
        EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_PD_RCT_GetCount(0, 0, &)"));
    }
}

TEST_F(WithoutMemory, ARemapTableThatNeedsNoneIsAnswered) {
    hxfake::On<&HX_PD_RCT_GetCount>().Always(9);
    EXPECT_EQ("<HX_PD_GetRCT ", Ask("HX_PD_GetRCT", "").text.substr(0, 14));
}

TEST_F(WithoutMemory, ARemapTableLargerThanMemoryIsAnsweredWithAnEmptyResult) {
    // Of these 16 bytes each are 4 GiB: 32 bits do not hold their number, and 64 bits ask for them.
    hxfake::On<&HX_PD_RCT_GetCount>().Always(0, hxfake::Fill(HX_U32{0x10000000}));
    const Reply reply = Ask("HX_PD_GetRCT", "<n>4</n>", sizeof(std::size_t) == 4 ? 1 : 0);
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ("", reply.text);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_PD_RCT_GetCount(0, 0, &)"));
}

TEST_F(WithoutMemory, AQuickCreationFailsWith4) {
    const Reply reply = Ask("HX_LD_QuickCreate", "");
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(Status("HX_LD_QuickCreate", 4), reply.text);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

class UsersWithoutMemory : public WithoutMemory {
protected:
    UsersWithoutMemory() {
        root.Write("/etc/passwd", "alice:x:1000:1000::/home/alice:/bin/sh\n");
        root.Write("/etc/shadow", "alice:*:19000:0:99999:7:::\n");
        root.Write("/etc/group", "root:x:0:alice\n");
    }
    // Wherever memory ends: the whole answer, one that says so, or none.
    static void Expect(const std::string& name, int code, const std::string& less) {
        const std::string alice = "<lpszUsername>alice</lpszUsername>";
        const std::string whole =
            Send("<" + name + " type=\"function\">" + alice + "</" + name + ">").text;
        ASSERT_NE(std::string::npos, whole.find(">" + std::to_string(code) + "</RetVal>"));
        ASSERT_NE(std::string::npos, whole.find(">Administrator</UserGroup>")) << whole;
        int empty = 0;
        for (std::size_t granted = 0; granted < 20; ++granted) {
            const Reply reply = Ask(name, alice, granted);
            EXPECT_EQ(1, reply.ok);
            if (reply.text.empty()) {
                ++empty;
            } else if (less.empty() || reply.text.find(less) == std::string::npos) {
                EXPECT_EQ(whole, reply.text) << granted;
            }
        }
        EXPECT_LT(0, empty);
    }
};

TEST_F(UsersWithoutMemory, AGroupIsTheUsersOrNone) { Expect("HX_GetUserGroup", 0, ""); }

// A shadow entry that cannot be read is none, as it always was: nobody is let in by it.
TEST_F(UsersWithoutMemory, ALogonTellsTheUsersGroupOrNone) {
    Expect("HX_LogonUser", 3, ">2</RetVal>");
}

TEST_F(WithoutMemory, AFlashImageFailsWith1) {
    root.Write("/image", "bytes");
    const Reply reply = Ask(
        "HX_Flash_Option", "<Actions>15</Actions><filepath>" + root.Path("/image") + "</filepath>");
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(Status("HX_Flash_Option", 1), reply.text);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

}  // namespace
