// The lists of the virtual controller, page by page: every list function keeps the same rules.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <numeric>
#include <ostream>
#include <string>
#include <vector>

#include "controllers/virtual/support/list_calls.h"
#include "controllers/virtual/support/requests.h"
#include "hxraid.h"

namespace {

using Bytes = std::vector<std::byte>;
// A list function without its types.
struct ListFunction {
    const char* name;
    std::size_t record_size;
    HX_U8 (*call)(HX_U8 adapter, std::byte* request);
    HX_U16 (*id_of)(const std::byte* record);
    HX_U8 missing;  // the code for an ID that no object has
    Ids ids[2];     // by adapter, in order
};

void PrintTo(const ListFunction& function, std::ostream* out) { *out << function.name; }

template <auto function>
struct Untyped;
template <class Request, HX_U8 (*function)(HX_U8, Request*)>
struct Untyped<function> {
    using Record = typename RequestParts<Request>::Record;
    static HX_U8 Call(HX_U8 adapter, std::byte* request) {
        return function(adapter, reinterpret_cast<Request*>(request));
    }
};

template <auto function, auto id>
ListFunction Row(const char* name, HX_U8 missing, Ids of_adapter_0, Ids of_adapter_1) {
    using Record = typename Untyped<function>::Record;
    return {name,
            sizeof(Record),
            Untyped<function>::Call,
            [](const std::byte* bytes) {
                Record record;
                std::memcpy(&record, bytes, sizeof record);
                return HX_U16{id(record)};
            },
            missing,
            {std::move(of_adapter_0), std::move(of_adapter_1)}};
}

Ids FirstIds(std::size_t count) {
    Ids ids(count);
    std::iota(ids.begin(), ids.end(), HX_U16{0});
    return ids;
}

// Where a record keeps its ID.
constexpr auto kLink = [](const auto& record) { return record.Link.Self.DevID; };
constexpr auto kId = [](const auto& record) { return record.ID; };
constexpr auto kHdId = [](const auto& record) { return record.HDID; };
constexpr auto kLdId = [](const auto& record) { return record.LDID; };
constexpr auto kDgId = [](const auto& record) { return record.DGID; };

const Ids kDisks0{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 16};
const Ids kDisks1{0, 1, 2, 3, 4, 5, 6, 7};
const Ids kBlocks0 = FirstIds(25);
const Ids kBlocks1 = FirstIds(10);

const ListFunction kLists[] = {
    Row<&HX_PD_GetHDInfo, kLink>("HX_PD_GetHDInfo", 205, kDisks0, kDisks1),
    Row<&HX_PD_GetHDInfo_Ext, kLink>("HX_PD_GetHDInfo_Ext", 205, kDisks0, kDisks1),
    Row<&HX_PD_GetFreeSpaceInfo, kId>("HX_PD_GetFreeSpaceInfo", 205, kDisks0, kDisks1),
    Row<&HX_PD_GetConfig, kHdId>("HX_PD_GetConfig", 205, kDisks0, kDisks1),
    Row<&HX_PD_GetBGAStatus, kHdId>("HX_PD_GetBGAStatus", 205, kDisks0, kDisks1),
    Row<&HX_PD_GetSmartStatus, kHdId>("HX_PD_GetSmartStatus", 205, kDisks0, kDisks1),
    Row<&HX_PD_GetHDRaidStatus, kHdId>("HX_PD_GetHDRaidStatus", 205, kDisks0, kDisks1),
    Row<&HX_BLK_GetHDBlock, kId>("HX_BLK_GetHDBlock", 205, kDisks0, kDisks1),
    Row<&HX_BLK_GetInfo, kId>("HX_BLK_GetInfo", 206, kBlocks0, kBlocks1),
    Row<&HX_LD_GetInfo, kId>("HX_LD_GetInfo", 207, {0, 2}, {0}),
    Row<&HX_LD_GetStatus, kLdId>("HX_LD_GetStatus", 207, {0, 2}, {0}),
    Row<&HX_LD_GetConfig, kLdId>("HX_LD_GetConfig", 207, {0, 2}, {0}),
    Row<&HX_DG_GetInfo, kDgId>("HX_DG_GetInfo", 208, {0}, {}),
    Row<&HX_DG_GetConfig, kDgId>("HX_DG_GetConfig", 208, {0}, {}),
    Row<&HX_ENC_GetEnclosureInfo, kLink>("HX_ENC_GetEnclosureInfo", 209, {0}, {}),
    Row<&HX_PD_GetExpanderInfo, kLink>("HX_PD_GetExpanderInfo", 210, {0}, {}),
    Row<&HX_PD_GetPMInfo, kLink>("HX_PD_GetPMInfo", 211, {}, {0}),
};

constexpr std::byte kUntouchedByte{0xA5};
constexpr std::size_t kGuard = 1024;  // bytes behind the records asked for

class SimulatorList : public testing::TestWithParam<ListFunction> {
protected:
    void SetUp() override { HX_API_Initialize(); }
    void TearDown() override { HX_API_Finalize(); }

    struct Answer {
        HX_U8 status;
        RequestHeader header;
        Bytes records;  // the room for them, and the guard
    };

    static Answer AskFor(HX_U8 adapter, HX_U8 type, HX_U16 start, HX_U16 wanted) {
        const std::size_t room = wanted * GetParam().record_size + kGuard;
        Bytes request(sizeof(RequestHeader) + room, kUntouchedByte);
        RequestHeader header{};
        header.requestType = type;
        header.startingIndexOrId = start;
        header.numRequested = wanted;
        header.numReturned = 0xA5A5;
        header.nextStartingIndex = 0xA5A5;
        std::memcpy(request.data(), &header, sizeof header);
        Answer answer{};
        answer.status = GetParam().call(adapter, request.data());
        std::memcpy(&answer.header, request.data(), sizeof answer.header);
        answer.records.assign(request.begin() + sizeof header, request.end());
        return answer;
    }

    // The first records of an answer, which has not touched what lies behind them.
    static Bytes Records(const Answer& answer, std::size_t count) {
        const auto end =
            answer.records.begin() + static_cast<std::ptrdiff_t>(count * GetParam().record_size);
        EXPECT_EQ(Bytes(static_cast<std::size_t>(answer.records.end() - end), kUntouchedByte),
                  Bytes(end, answer.records.end()));
        return {answer.records.begin(), end};
    }

    static Bytes Whole(HX_U8 adapter) {
        const Answer answer = AskFor(adapter, HX_REQUEST_BY_INDEX, 0, 512);
        EXPECT_EQ(0, answer.status);
        return Records(answer, GetParam().ids[adapter].size());
    }
};

TEST_P(SimulatorList, HasTheObjectsOfEachAdapterInOrder) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        const Answer answer = AskFor(adapter, HX_REQUEST_BY_INDEX, 0, 512);
        EXPECT_EQ(0, answer.status);
        EXPECT_EQ(HX_LIST_COMPLETE, answer.header.nextStartingIndex);
        Ids ids;
        for (std::size_t i = 0; i < answer.header.numReturned; ++i) {
            ids.push_back(GetParam().id_of(answer.records.data() + i * GetParam().record_size));
        }
        EXPECT_EQ(GetParam().ids[adapter], ids);
    }
}

TEST_P(SimulatorList, IsTheSameInPagesOfEverySize) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        const std::size_t count = GetParam().ids[adapter].size();
        const Bytes whole = Whole(adapter);
        for (HX_U16 size = 1; size <= count + 1; ++size) {
            Bytes collected;
            HX_U16 start = 0;
            while (start != HX_LIST_COMPLETE) {
                const Answer answer = AskFor(adapter, HX_REQUEST_BY_INDEX, start, size);
                ASSERT_EQ(0, answer.status);
                const std::size_t left = count - start;
                const std::size_t returned = size < left ? size : left;
                ASSERT_EQ(returned, answer.header.numReturned);
                const Bytes records = Records(answer, returned);
                collected.insert(collected.end(), records.begin(), records.end());
                ASSERT_EQ(size < left ? start + size : HX_LIST_COMPLETE,
                          answer.header.nextStartingIndex);
                start = answer.header.nextStartingIndex;
            }
            EXPECT_EQ(whole, collected) << "in pages of " << size;
        }
    }
}

TEST_P(SimulatorList, GivesEachObjectByItsId) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        Bytes collected;
        for (const HX_U16 id : GetParam().ids[adapter]) {
            const Answer answer = AskFor(adapter, HX_REQUEST_BY_ID, id, 3);
            ASSERT_EQ(0, answer.status);
            ASSERT_EQ(1, answer.header.numReturned);
            EXPECT_EQ(HX_LIST_COMPLETE, answer.header.nextStartingIndex);
            const Bytes record = Records(answer, 1);
            collected.insert(collected.end(), record.begin(), record.end());
        }
        EXPECT_EQ(Whole(adapter), collected);
    }
}

TEST_P(SimulatorList, RefusesAnIdThatNoObjectHas) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        const Ids& ids = GetParam().ids[adapter];
        for (const HX_U16 id : {HX_U16{15}, HX_U16{25}, HX_U16{255}, HX_U16{65535}}) {
            if (std::ranges::find(ids, id) != ids.end()) continue;
            const Answer answer = AskFor(adapter, HX_REQUEST_BY_ID, id, 1);
            EXPECT_EQ(GetParam().missing, answer.status);
            EXPECT_EQ(0xA5A5, answer.header.numReturned);
            Records(answer, 0);
        }
    }
}

TEST_P(SimulatorList, IsCompletePastItsEnd) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        const auto count = static_cast<HX_U16>(GetParam().ids[adapter].size());
        for (const HX_U16 start : {count, static_cast<HX_U16>(count + 1), HX_U16{65535}}) {
            const Answer answer = AskFor(adapter, HX_REQUEST_BY_INDEX, start, 4);
            EXPECT_EQ(0, answer.status);
            EXPECT_EQ(0, answer.header.numReturned);
            EXPECT_EQ(HX_LIST_COMPLETE, answer.header.nextStartingIndex);
            Records(answer, 0);
        }
    }
}

TEST_P(SimulatorList, WritesNothingForARequestOfNothing) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        const Answer answer = AskFor(adapter, HX_REQUEST_BY_INDEX, 0, 0);
        EXPECT_EQ(0, answer.status);
        EXPECT_EQ(0, answer.header.numReturned);
        EXPECT_EQ(GetParam().ids[adapter].empty() ? HX_LIST_COMPLETE : 0,
                  answer.header.nextStartingIndex);
        Records(answer, 0);
        for (const HX_U16 id : GetParam().ids[adapter]) {
            Records(AskFor(adapter, HX_REQUEST_BY_ID, id, 0), 0);
        }
    }
}

TEST_P(SimulatorList, RefusesEveryOtherKindOfRequest) {
    for (const HX_U8 type : {HX_U8{0}, HX_U8{3}, HX_U8{255}}) {
        const Answer answer = AskFor(0, type, 0, 4);
        EXPECT_EQ(204, answer.status);
        EXPECT_EQ(0xA5A5, answer.header.numReturned);
        Records(answer, 0);
    }
}

TEST_P(SimulatorList, LeavesTheRestOfTheHeaderAsItWas) {
    const Answer answer = AskFor(0, HX_REQUEST_BY_INDEX, 0, 4);
    EXPECT_EQ(HX_REQUEST_BY_INDEX, answer.header.requestType);
    EXPECT_EQ(0, answer.header.startingIndexOrId);
    EXPECT_EQ(4, answer.header.numRequested);
}

std::string ListFunctionName(const testing::TestParamInfo<ListFunction>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Each, SimulatorList, testing::ValuesIn(kLists), ListFunctionName);

}  // namespace
