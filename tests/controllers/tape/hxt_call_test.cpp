#include "tape/hxt_call.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace hxtape {
namespace {

constexpr PseudonymKey kCallKey{1, 2, 3};

// A list request with room for that many disks, as callers make it.
class DiskPage {
public:
    explicit DiskPage(HX_U16 room) : bytes_(sizeof(RequestHeader) + room * sizeof(HD_Info)) {
        header().requestType = HX_REQUEST_BY_INDEX;
        header().numRequested = room;
    }
    RequestHeader& header() { return *reinterpret_cast<RequestHeader*>(bytes_.data()); }
    HD_Info& disk(std::size_t i) {
        return reinterpret_cast<HD_Info*>(bytes_.data() + sizeof(RequestHeader))[i];
    }
    std::array<Part, 1> parts() {
        return {
            Page(reinterpret_cast<HD_Info_Request*>(bytes_.data()), &HD_Info_Request::hdInfo).part};
    }

private:
    std::vector<char> bytes_;
};

TEST(AListsRequest, IsWhatTheCallerSets) {
    DiskPage page(2);
    page.header().startingIndexOrId = 7;
    page.header().numReturned = 9;  // left over from the last call
    EXPECT_EQ(std::string("\0\x01\x07\0\x02\0", 6), RequestOf(page.parts(), nullptr));
}

TEST(AListsAnswer, HasNoMoreRecordsThanWereAskedFor) {
    DiskPage page(2);
    page.header().numReturned = 500;
    EXPECT_EQ(sizeof(RequestHeader) + 2 * sizeof(HD_Info), AnswerOf(page.parts(), nullptr).size());
}

TEST(AListsAnswer, FillsTheCallersRecords) {
    DiskPage recorded(2);
    recorded.header().numReturned = 2;
    std::strcpy(recorded.disk(1).SerialNo, "QD-17");
    const std::string answer = AnswerOf(recorded.parts(), nullptr);
    DiskPage asked(2);
    ASSERT_TRUE(FillIn(asked.parts(), answer));
    EXPECT_EQ(2, asked.header().numReturned);
    EXPECT_STREQ("QD-17", asked.disk(1).SerialNo);
}

TEST(AListsAnswer, ToALargerRequestIsRefused) {
    DiskPage recorded(2);
    recorded.header().numReturned = 2;
    DiskPage asked(1);
    EXPECT_FALSE(FillIn(asked.parts(), AnswerOf(recorded.parts(), nullptr)));
    EXPECT_EQ(0, asked.header().numReturned) << "nothing was written";
}

TEST(AnAnswer, OfAnotherSizeIsRefused) {
    BBU_Info battery{};
    const std::array parts{Out(&battery).part};
    const std::string answer(sizeof battery, 'x');
    EXPECT_FALSE(FillIn(parts, answer.substr(1)));
    EXPECT_FALSE(FillIn(parts, answer + "x"));
    EXPECT_FALSE(FillIn(parts, ""));
    EXPECT_EQ(0U, battery.status);
    EXPECT_TRUE(FillIn(parts, answer));
}

TEST(AnAnswer, OfEventsHasAtMostAsManyAsTheCallerTakes) {
    std::array<Event, 2> events{};
    HX_U8 count = 0;
    const std::array parts{CountOf(&count).part, Counted(events.data(), &count, 2).part};
    EXPECT_TRUE(FillIn(parts, '\x02' + std::string(2 * sizeof(Event), 'e')));
    EXPECT_EQ(2, count);
    EXPECT_FALSE(FillIn(parts, '\x03' + std::string(3 * sizeof(Event), 'e')));
}

TEST(APieceOfAnImage, IsAsLongAsItSays) {
    std::vector<char> memory(sizeof(Flash_Data));
    auto& piece = *reinterpret_cast<Flash_Data*>(memory.data());
    piece.DataLength = 3;
    piece.PageNum = 5;
    std::memcpy(piece.Data, "abc", 3);
    const std::array sent{Piece(HX_FLASH_WRITE, &piece).part};
    EXPECT_EQ(offsetof(Flash_Data, Data) + 3, RequestOf(sent, nullptr).size());
    EXPECT_EQ(std::string(3, '\0'), RequestOf(sent, &kCallKey).substr(offsetof(Flash_Data, Data)));
    EXPECT_EQ("", AnswerOf(sent, nullptr));
    const std::array asked{Piece(HX_FLASH_READ, &piece).part};
    EXPECT_EQ(std::string("\x05\0", 2), RequestOf(asked, nullptr));
    piece.DataLength = UINT32_MAX;
    EXPECT_EQ(sizeof(Flash_Data), AnswerOf(asked, nullptr).size());
}

TEST(AnAnonymousAnswer, HasNeitherSerialNumberNorAddressNorName) {
    DiskPage page(1);
    page.header().numReturned = 1;
    std::strcpy(page.disk(0).SerialNo, "QD-W17VSWPDW");
    std::strcpy(page.disk(0).Model, "Quadra QD-2000");
    std::memcpy(page.disk(0).WWN, "\x50\1\2\3\4\5\6\7", 8);
    std::memcpy(page.disk(0).Link.Self.SAS_Address, "\x50\1\2\3\4\5\6\7", 8);
    const std::string answer = AnswerOf(page.parts(), &kCallKey);
    EXPECT_EQ(std::string::npos, answer.find("W17VSWPDW"));
    EXPECT_EQ(std::string::npos, answer.find("\1\2\3\4\5\6\7"));
    EXPECT_NE(std::string::npos, answer.find("Quadra QD-2000"));
    DiskPage read(1);
    ASSERT_TRUE(FillIn(read.parts(), answer));
    EXPECT_EQ(0, std::memcmp(read.disk(0).WWN, read.disk(0).Link.Self.SAS_Address, 8))
        << "one address has one pseudonym wherever it stands";
    EXPECT_STREQ("QD-W17VSWPDW", page.disk(0).SerialNo) << "the caller gets what there is";

    Create_LD_Param param{};
    std::strcpy(param.Name, "PAYROLL");
    const std::array parts{Both(&param).part};
    EXPECT_EQ(std::string::npos, RequestOf(parts, &kCallKey).find("PAYROLL"));
    EXPECT_EQ(std::string::npos, AnswerOf(parts, &kCallKey).find("PAYROLL"));
}

// Whatever stands on a tape: nothing is written past a buffer, which the address sanitizer watches.
TEST(AnAnswer, OfAnyBytesIsTakenOrRefused) {
    std::mt19937 random(1);  // NOLINT(cert-msc51-cpp): the same inputs every time
    int taken = 0;
    for (int i = 0; i < 20000; ++i) {
        DiskPage page(static_cast<HX_U16>(random() % 3));
        std::vector<EncElementType_Info> elements(random() % 4);
        HX_U8 count = 0;
        std::vector<char> piece(sizeof(Flash_Data));
        const std::array counted{Counted(elements.data(), &count, elements.size()).part};
        const std::array image{
            Piece(HX_FLASH_READ, reinterpret_cast<Flash_Data*>(piece.data())).part};
        std::string answer = random() % 2 == 0 ? AnswerOf(page.parts(), nullptr) : std::string();
        answer.resize(random() % 600);
        for (std::size_t changes = random() % 8; changes > 0 && !answer.empty(); --changes) {
            answer[random() % std::min<std::size_t>(answer.size(), 20)] =
                static_cast<char>(random() % 4);
        }
        taken += FillIn(page.parts(), answer) ? 1 : 0;
        taken += FillIn(counted, answer) ? 1 : 0;
        taken += FillIn(image, answer) ? 1 : 0;
    }
    EXPECT_GT(taken, 10);
}

}  // namespace
}  // namespace hxtape
