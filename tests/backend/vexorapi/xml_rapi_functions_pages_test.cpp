// Lists: what a controller is asked for page by page, whatever it answers, and what becomes of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "hxfake.h"
#include "support/request.h"
#include "support/temporary_root.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// ---- the lists ---------------------------------------------------------------------------------

/// Answers one call: `items` is the room behind the header.
using Controller = std::function<HX_U8(RequestHeader* header, unsigned char* items)>;

struct List {
    const char* name;
    const char* called;  // the function that the controller is asked by
    unsigned item_bytes;
    unsigned limit;     // items of a page
    unsigned cleared;   // bytes of the room that are cleared before each page
    unsigned in_a_kib;  // items that an adapter takes that moves 1 KiB in a call
    const char* id;     // the element that shows the item's number, ...
    unsigned id_at;     // ... where it stands in the item, ...
    unsigned ids;       // ... and how many of that name an item has, the first being the number
    void (*script)(Controller);
    friend void PrintTo(const List& it, std::ostream* os) { *os << it.name; }
};

template <auto function>
void Script(Controller controller) {
    hxfake::On<function>().Always([controller](HX_U8, auto* request) {
        return controller(&request->header,
                          reinterpret_cast<unsigned char*>(request) + sizeof(RequestHeader));
    });
}

constexpr List kLists[] = {
    {"HX_PD_GetHDInfo", "HX_PD_GetHDInfo_Ext", 248, 128, 31744, 4, "DevID", 0, 2,
     Script<&HX_PD_GetHDInfo_Ext>},
    {"HX_PD_GetHDInfo_Ext", "HX_PD_GetHDInfo_Ext", 248, 128, 31744, 4, "DevID", 0, 2,
     Script<&HX_PD_GetHDInfo_Ext>},
    {"HX_PD_GetExpanderInfo", "HX_PD_GetExpanderInfo", 132, 16, 2112, 7, "DevID", 0, 2,
     Script<&HX_PD_GetExpanderInfo>},
    {"HX_PD_GetPMInfo", "HX_PD_GetPMInfo", 80, 8, 640, 12, "DevID", 0, 2, Script<&HX_PD_GetPMInfo>},
    {"HX_PD_GetFreeSpaceInfo", "HX_PD_GetFreeSpaceInfo", 16, 128, 2048, 64, "ID", 0, 1,
     Script<&HX_PD_GetFreeSpaceInfo>},
    {"HX_PD_GetConfig", "HX_PD_GetConfig", 8, 128, 1024, 128, "HDID", 4, 1,
     Script<&HX_PD_GetConfig>},
    {"HX_PD_GetBGAStatus", "HX_PD_GetBGAStatus", 64, 128, 8192, 16, "HDID", 0, 1,
     Script<&HX_PD_GetBGAStatus>},
    {"HX_PD_GetSmartStatus", "HX_PD_GetSmartStatus", 8, 128, 1024, 128, "HDID", 2, 1,
     Script<&HX_PD_GetSmartStatus>},
    {"HX_PD_GetHDRaidStatus", "HX_PD_GetHDRaidStatus", 8, 128, 1024, 128, "HDID", 0, 1,
     Script<&HX_PD_GetHDRaidStatus>},
    {"HX_PD_GetSpareInfo", "HX_PD_GetHDRaidStatus", 8, 128, 1024, 128, "HDID", 0, 1,
     Script<&HX_PD_GetHDRaidStatus>},
    {"HX_BLK_GetInfo", "HX_BLK_GetInfo", 32, 512, 16384, 32, "ID", 0, 1, Script<&HX_BLK_GetInfo>},
    // Of 20480 bytes no more than 512.
    {"HX_BLK_GetHDBlock", "HX_BLK_GetHDBlock", 40, 512, 512, 25, "ID", 0, 1,
     Script<&HX_BLK_GetHDBlock>},
    {"HX_LD_GetInfo", "HX_LD_GetInfo", 312, 32, 9984, 3, "ID", 0, 1, Script<&HX_LD_GetInfo>},
    {"HX_LD_GetStatus", "HX_LD_GetStatus", 8, 32, 256, 128, "LDID", 6, 1, Script<&HX_LD_GetStatus>},
    {"HX_LD_GetConfig", "HX_LD_GetConfig", 24, 32, 768, 42, "LDID", 4, 1, Script<&HX_LD_GetConfig>},
    {"HX_DG_GetInfo", "HX_DG_GetInfo", 688, 64, 44032, 1, "DGID", 0, 1, Script<&HX_DG_GetInfo>},
    {"HX_DG_GetConfig", "HX_DG_GetConfig", 32, 64, 2048, 32, "DGID", 0, 1,
     Script<&HX_DG_GetConfig>},
    {"HX_ENC_GetEnclosureInfo", "HX_ENC_GetEnclosureInfo", 152, 32, 4864, 6, "DevID", 0, 2,
     Script<&HX_ENC_GetEnclosureInfo>},
};
static_assert(std::size(kLists) == 18);

List Named(std::string_view name) {
    return *std::ranges::find_if(kLists, [name](const List& list) { return name == list.name; });
}

// ---- requests and answers ----------------------------------------------------------------------

// The texts of all elements of this name.
std::vector<unsigned> NumbersOf(const std::string& text, const std::string& element) {
    std::vector<unsigned> numbers;
    const std::string open = "<" + element + " ";
    for (std::size_t at = 0; (at = text.find(open, at)) != std::string::npos; ++at) {
        numbers.push_back(static_cast<unsigned>(std::stoul(text.substr(text.find('>', at) + 1))));
    }
    return numbers;
}

// 0, 1, 2 and so on.
std::vector<unsigned> First(std::size_t count) {
    std::vector<unsigned> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0u);
    return numbers;
}

class Listing : public testing::TestWithParam<List> {
protected:
    Listing() : list(GetParam()) {
        // Memory that nobody has written is not zero by chance.
        mallopt(M_PERTURB, 0xA5);
        hxfake::Reset();
    }
    ~Listing() override {
        hxfake::Reset();
        mallopt(M_PERTURB, 0);
    }

    static void AdapterMoves(HX_U16 kib) {
        Adapter_Info info{};
        info.MaxBufferSize = kib;
        hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Fill(info));
    }

    // Asks adapter 3 for so many items from the first one on; `more` are other children.
    void Ask(unsigned wanted, const std::string& more = "") {
        const std::string name = list.name;
        const Reply reply =
            Send("<" + name + " type=\"function\"><AdapterID>3</AdapterID>" +
                 "<requestType>1</requestType><numRequested>" + std::to_string(wanted) +
                 "</numRequested>" + more + "</" + name + ">");
        EXPECT_EQ(1, reply.ok);
        text = reply.text;
    }

    // Asks for eight items. The first page holds so many, the next begins so many items further on.
    void AskForTwoPages(unsigned first, unsigned second) {
        int page = 0;
        list.script([&](RequestHeader* header, unsigned char* items) {
            return Page(header, items, ++page == 2 ? second : first,
                        header->startingIndexOrId + first);
        });
        Ask(8);
    }

    // The lines in the controller's log that follow the question for the adapter's buffer.
    std::vector<std::string> Calls() const {
        std::vector<std::string> calls = hxfake::Calls();
        EXPECT_FALSE(calls.empty());
        if (calls.empty()) return calls;
        EXPECT_EQ("HX_Adapter_GetInfo(3, &, &)", calls.front());
        calls.erase(calls.begin());
        return calls;
    }
    std::string Call(unsigned start, unsigned wanted) const {
        return std::string(list.called) + "(3, {1, " + std::to_string(start) + ", " +
               std::to_string(wanted) + "})";
    }

    // The result's numbers: RetVal, and of the header startingIndexOrId, numRequested, numReturned
    // and nextStartingIndex.
    std::vector<unsigned> Head() const {
        std::vector<unsigned> head;
        for (const char* element :
             {"RetVal", "startingIndexOrId", "numRequested", "numReturned", "nextStartingIndex"}) {
            const std::vector<unsigned> numbers = NumbersOf(text, element);
            EXPECT_EQ(1u, numbers.size()) << element;
            if (!numbers.empty()) head.push_back(numbers.front());
        }
        return head;
    }
    // The items' numbers.
    std::vector<unsigned> Items() const {
        const std::vector<unsigned> all = NumbersOf(text, list.id);
        std::vector<unsigned> items;
        for (std::size_t i = 0; i < all.size(); i += list.ids) items.push_back(all[i]);
        return items;
    }

    // Puts items with these numbers where the controller's answer goes.
    void Put(unsigned char* items, unsigned first, unsigned count) const {
        for (unsigned i = 0; i < count; ++i) {
            unsigned char* const item = items + i * list.item_bytes;
            std::memset(item, 0, list.item_bytes);
            const auto number = static_cast<HX_U16>(first + i);
            std::memcpy(item + list.id_at, &number, sizeof number);
        }
    }
    // Answers with `count` items from the one asked for on.
    HX_U8 Page(RequestHeader* header, unsigned char* items, unsigned count, unsigned next) const {
        Put(items, header->startingIndexOrId, std::min(count, list.limit));
        header->numReturned = static_cast<HX_U16>(count);
        header->nextStartingIndex = static_cast<HX_U16>(next);
        return 0;
    }
    // A controller with so many items, of which it hands out at most `page` in a call.
    Controller Holding(unsigned total, unsigned page = 65535) const {
        return [this, total, page](RequestHeader* header, unsigned char* items) {
            const unsigned start = header->startingIndexOrId;
            const unsigned count = std::min({total - start, page, unsigned{header->numRequested}});
            return Page(header, items, count, start + count == total ? 65535 : start + count);
        };
    }

    const List list;
    std::string text;
    TemporaryRoot root;
};

// ---- what differs from list to list ------------------------------------------------------------

TEST_P(Listing, ComesInPagesOfItsLimit) {
    list.script(Holding(list.limit + 100));
    Ask(list.limit + 3);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, list.limit), Call(list.limit, 3)));
    EXPECT_THAT(Head(),
                ElementsAre(0, list.limit + 3, list.limit + 3, list.limit + 3, list.limit + 3));
    EXPECT_EQ(First(list.limit + 3), Items());
}

TEST_P(Listing, ComesInPagesThatTheAdapterMoves) {
    AdapterMoves(1);
    list.script(Holding(1000));
    const unsigned page = std::min(list.in_a_kib, list.limit);
    Ask(page + 1);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, page), Call(page, 1)));
    EXPECT_EQ(First(page + 1), Items());
}

TEST_P(Listing, ComesInPagesOfItsLimitFromAnAdapterThatMovesMore) {
    AdapterMoves(static_cast<HX_U16>(list.item_bytes * list.limit / 1024 + 1));
    list.script(Holding(1000));
    Ask(list.limit + 1);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, list.limit), Call(list.limit, 1)));
}

TEST_P(Listing, CountsTheItemsThatTheAdapterMovesIn16Bits) {
    // 64 KiB for each byte of an item are 65536 items, which count as none.
    AdapterMoves(static_cast<HX_U16>(64 * list.item_bytes));
    list.script(Holding(1000));
    Ask(5);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, 0)));
    EXPECT_THAT(Head(), ElementsAre(0, 0, 5, 0, 0));

    hxfake::ForgetCalls();
    AdapterMoves(static_cast<HX_U16>(64 * list.item_bytes + 1));
    Ask(list.limit);
    EXPECT_EQ(Call(0, std::min(list.in_a_kib, list.limit)), Calls().front());
}

TEST_P(Listing, ComesInPagesOfItsLimitFromAnAdapterThatMovesMost) {
    AdapterMoves(65535);
    list.script(Holding(1000));
    Ask(list.limit + 1);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, list.limit), Call(list.limit, 1)));
}

TEST_P(Listing, ShowsTheControllerAClearRoom) {
    std::string room;
    list.script([&](RequestHeader*, unsigned char* items) {
        room.assign(reinterpret_cast<char*>(items), list.item_bytes * list.limit);
        return 9;
    });
    Ask(1);
    EXPECT_EQ(std::string(list.item_bytes * list.limit, '\0'), room);
}

TEST_P(Listing, ClearsItsRoomBeforeEachPage) {
    const std::size_t size = list.item_bytes * list.limit;
    std::string room;
    list.script([&](RequestHeader* header, unsigned char* items) {
        room.assign(reinterpret_cast<char*>(items), size);
        std::memset(items, 0xEE, size);
        header->numReturned = 1;
        header->nextStartingIndex = static_cast<HX_U16>(header->nextStartingIndex + 1);
        return 0;
    });
    Ask(3);
    EXPECT_EQ(3u, Calls().size());
    EXPECT_EQ(std::string(list.cleared, '\0') + std::string(size - list.cleared, '\xEE'), room);
}

TEST_P(Listing, TakesNoPageOfMoreThanItsRoomHolds) {
    list.script([&](RequestHeader* header, unsigned char* items) {
        return Page(header, items, list.limit + 1, 65535);
    });
    Ask(list.limit + 5);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, list.limit)));
    EXPECT_THAT(Head(), ElementsAre(0, 0, list.limit + 5, 0, 65535));
    EXPECT_THAT(Items(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, Listing, testing::ValuesIn(kLists),
                         [](const testing::TestParamInfo<List>& at) {
                             return std::string(at.param.name);
                         });

// ---- what holds for each alike -----------------------------------------------------------------

class Pages : public Listing {};

TEST_P(Pages, EndWhereTheListDoes) {
    list.script(Holding(list.limit + 2));
    Ask(2 * list.limit);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, list.limit), Call(list.limit, list.limit)));
    EXPECT_THAT(Head(), ElementsAre(0, 65535, 2 * list.limit, list.limit + 2, 65535));
    EXPECT_EQ(First(list.limit + 2), Items());
}

TEST_P(Pages, EndWhereTheListFitsExactly) {
    list.script(Holding(2 * list.limit));
    Ask(2 * list.limit);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, list.limit), Call(list.limit, list.limit)));
    EXPECT_THAT(Head(), ElementsAre(0, 65535, 2 * list.limit, 2 * list.limit, 65535));
    EXPECT_EQ(First(2 * list.limit), Items());
}

TEST_P(Pages, EndWhenAsManyHaveComeAsWereWanted) {
    // This controller never says that its list is complete.
    list.script([&](RequestHeader* header, unsigned char* items) {
        return Page(header, items, header->numRequested,
                    header->startingIndexOrId + header->numRequested);
    });
    Ask(list.limit + 4);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, list.limit), Call(list.limit, 4)));
    EXPECT_THAT(Head(),
                ElementsAre(0, list.limit + 4, list.limit + 4, list.limit + 4, list.limit + 4));
    EXPECT_EQ(First(list.limit + 4), Items());
}

TEST_P(Pages, MayBeShorterThanAskedFor) {
    list.script(Holding(1000, 3));
    Ask(8);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, 8), Call(3, 5), Call(6, 2)));
    EXPECT_THAT(Head(), ElementsAre(0, 8, 8, 8, 8));
    EXPECT_EQ(First(8), Items());
}

TEST_P(Pages, EndWithAnError) {
    int page = 0;
    list.script([&](RequestHeader* header, unsigned char* items) -> HX_U8 {
        if (++page == 3) return 77;
        return Page(header, items, 2, header->startingIndexOrId + 2u);
    });
    Ask(8);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, 8), Call(2, 6), Call(4, 4)));
    EXPECT_THAT(Head(), ElementsAre(77, 4, 8, 4, 4));
    EXPECT_EQ(First(4), Items());
}

TEST_P(Pages, LeaveOutWhatComesWithAnError) {
    list.script([&](RequestHeader* header, unsigned char* items) -> HX_U8 {
        Page(header, items, 2, 2);
        return 255;
    });
    Ask(8);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, 8)));
    EXPECT_THAT(Head(), ElementsAre(255, 0, 8, 0, 2));
    EXPECT_THAT(Items(), IsEmpty());
}

TEST_P(Pages, EndWithAnEmptyOne) {
    AskForTwoPages(2, 0);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, 8), Call(2, 6)));
    EXPECT_THAT(Head(), ElementsAre(0, 2, 8, 2, 4));
    EXPECT_EQ(First(2), Items());
}

TEST_P(Pages, EndWithOneOfMoreThanIsStillWanted) {
    AskForTwoPages(3, 6);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, 8), Call(3, 5)));
    EXPECT_THAT(Head(), ElementsAre(0, 3, 8, 3, 6));
    EXPECT_EQ(First(3), Items());
}

TEST_P(Pages, MayHoldMoreThanAskedForAsLongAsItIsWanted) {
    AdapterMoves(1);
    const unsigned page = std::min(list.in_a_kib, list.limit);
    const unsigned more = std::min(page + 1, list.limit);
    list.script([&](RequestHeader* header, unsigned char* items) {
        return Page(header, items, more, 65535);
    });
    Ask(more);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, page)));
    EXPECT_EQ(First(more), Items());
}

TEST_P(Pages, EndWithTheIndex65535Only) {
    int page = 0;
    list.script([&](RequestHeader* header, unsigned char* items) {
        return Page(header, items, 1, ++page == 1 ? 65534 : 65535);
    });
    Ask(8);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, 8), Call(65534, 7)));
    EXPECT_THAT(Head(), ElementsAre(0, 65535, 8, 2, 65535));
    EXPECT_THAT(Items(), ElementsAre(0, 65534));
}

TEST_P(Pages, EndWhenWhatIsWantedHasComeThoughTheIndexStandsStill) {
    list.script(
        [&](RequestHeader* header, unsigned char* items) { return Page(header, items, 1, 0); });
    Ask(3);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, 3), Call(0, 2), Call(0, 1)));
    EXPECT_THAT(Items(), ElementsAre(0, 0, 0));
}

TEST_P(Pages, BeginWhereTheRequestSays) {
    list.script(Holding(60));
    Ask(3, "<startingIndexOrId>57</startingIndexOrId><nextStartingIndex>9</nextStartingIndex>");
    EXPECT_THAT(Calls(), ElementsAre(Call(57, 3)));
    EXPECT_THAT(Items(), ElementsAre(57, 58, 59));
}

TEST_P(Pages, CarryTheRequestsHeader) {
    std::vector<RequestHeader> headers;
    list.script([&](RequestHeader* header, unsigned char* items) {
        headers.push_back(*header);
        return Page(header, items, 1, header->startingIndexOrId + 1u);
    });
    Ask(2,
        "<version>7</version><requestType>6</requestType><numReturned>500</numReturned>"
        "<nextStartingIndex>400</nextStartingIndex>");
    const RequestHeader expected[] = {{7, 6, 0, 2, 500, 400, {}}, {7, 6, 1, 1, 1, 1, {}}};
    ASSERT_EQ(2u, headers.size());
    EXPECT_EQ(0, std::memcmp(expected, headers.data(), sizeof expected));
    EXPECT_EQ(std::vector<unsigned>{7}, NumbersOf(text, "version"));
    EXPECT_EQ(std::vector<unsigned>{6}, NumbersOf(text, "requestType"));
}

TEST_P(Pages, AreNotAskedForWhenNothingIsWanted) {
    Ask(0,
        "<startingIndexOrId>12</startingIndexOrId><numReturned>13</numReturned>"
        "<nextStartingIndex>14</nextStartingIndex>");
    EXPECT_THAT(Calls(), IsEmpty());
    EXPECT_THAT(Head(), ElementsAre(0, 12, 0, 0, 14));
    EXPECT_THAT(Items(), IsEmpty());
}

TEST_P(Pages, AreNotAskedForWhenTheRequestsListIsComplete) {
    Ask(5, "<nextStartingIndex>65535</nextStartingIndex>");
    EXPECT_THAT(Calls(), IsEmpty());
    EXPECT_THAT(Head(), ElementsAre(0, 0, 5, 0, 65535));
}

TEST_P(Pages, AreNotAskedForWhenTheNumberWantedIsNegativeIn16Bits) {
    list.script(Holding(10));
    for (const unsigned wanted : {32768u, 65535u}) {
        hxfake::ForgetCalls();
        Ask(wanted);
        EXPECT_THAT(Calls(), IsEmpty());
        EXPECT_THAT(Head(), ElementsAre(0, 0, wanted, 0, 0));
    }
}

TEST_P(Pages, AreAskedForUpToTheLargestNumberOf16BitsWithSign) {
    list.script(Holding(2));
    Ask(32767);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, list.limit)));
    EXPECT_THAT(Head(), ElementsAre(0, 65535, 32767, 2, 65535));
}

TEST_P(Pages, OfEveryAdapterAreOfTheListsLimit) {
    // No adapter has that number, and none is asked for its buffer.
    AdapterMoves(1);
    Ask(list.limit + 1, "<AdapterID>255</AdapterID>");
    EXPECT_THAT(hxfake::Calls(), ElementsAre(std::string(list.called) + "(255, {1, 0, " +
                                             std::to_string(list.limit) + "})"));
}

TEST_P(Pages, TakeTheBufferOfAnAdapterThatReportsAnError) {
    Adapter_Info info{};
    info.MaxBufferSize = 1;
    hxfake::On<&HX_Adapter_GetInfo>().Always(7, hxfake::Fill(info));
    Ask(list.limit);
    EXPECT_THAT(Calls(), ElementsAre(Call(0, std::min(list.in_a_kib, list.limit))));
}

INSTANTIATE_TEST_SUITE_P(Some, Pages,
                         testing::Values(Named("HX_PD_GetConfig"), Named("HX_PD_GetPMInfo"),
                                         Named("HX_BLK_GetHDBlock"), Named("HX_DG_GetInfo")),
                         [](const testing::TestParamInfo<List>& at) {
                             return std::string(at.param.name);
                         });

// ---- disks, which an adapter lists in one of two ways -------------------------------------------

class HDInfo : public Listing {};

TEST_P(HDInfo, AsksPlainlyForAPageThatTheExtendedCallRefuses) {
    hxfake::On<&HX_PD_GetHDInfo_Ext>().Always(99);
    Script<&HX_PD_GetHDInfo>(Holding(130));
    Ask(200);
    EXPECT_THAT(
        Calls(),
        ElementsAre("HX_PD_GetHDInfo_Ext(3, {1, 0, 128})", "HX_PD_GetHDInfo(3, {1, 0, 128})",
                    "HX_PD_GetHDInfo_Ext(3, {1, 128, 72})", "HX_PD_GetHDInfo(3, {1, 128, 72})"));
    EXPECT_THAT(Head(), ElementsAre(0, 65535, 200, 130, 65535));
    EXPECT_EQ(First(130), Items());
}

TEST_P(HDInfo, DoesNotAskPlainlyWhenTheExtendedCallWorks) {
    Script<&HX_PD_GetHDInfo_Ext>(Holding(0));
    Ask(1);
    EXPECT_THAT(Calls(), ElementsAre("HX_PD_GetHDInfo_Ext(3, {1, 0, 1})"));
}

TEST_P(HDInfo, KeepsThePlainCallsCodeWhenBothFail) {
    hxfake::On<&HX_PD_GetHDInfo_Ext>().Always(99);
    hxfake::On<&HX_PD_GetHDInfo>().Always(12);
    Ask(1);
    EXPECT_THAT(Head(), ElementsAre(12, 0, 1, 0, 0));
}

INSTANTIATE_TEST_SUITE_P(Plain, HDInfo, testing::Values(Named("HX_PD_GetHDInfo")),
                         [](const testing::TestParamInfo<List>& at) {
                             return std::string(at.param.name);
                         });

class HDInfoExt : public Listing {};

TEST_P(HDInfoExt, IsNotAskedForPlainly) {
    hxfake::On<&HX_PD_GetHDInfo_Ext>().Always(99);
    Ask(1);
    EXPECT_THAT(Calls(), ElementsAre("HX_PD_GetHDInfo_Ext(3, {1, 0, 1})"));
    EXPECT_THAT(Head(), ElementsAre(99, 0, 1, 0, 0));
}

INSTANTIATE_TEST_SUITE_P(Extended, HDInfoExt, testing::Values(Named("HX_PD_GetHDInfo_Ext")),
                         [](const testing::TestParamInfo<List>& at) {
                             return std::string(at.param.name);
                         });

}  // namespace
