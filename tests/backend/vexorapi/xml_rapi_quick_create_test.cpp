// Quick creation: which disks are free, which level is chosen, what the controller is asked for.
#include "xml_rapi_quick_create.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <vector>

#include "hxfake.h"
#include "scripted_controller.h"
#include "support/failing_allocations.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;

// ---- HDisFreeDiskForSkua ----

Block_Info Block(HX_U16 disk, HX_U16 virtual_disk) {
    Block_Info block{};
    block.HDID = disk;
    block.LDID = virtual_disk;
    return block;
}

constexpr HX_U16 kFree = 255;
constexpr HX_U16 kLast = 65535;
constexpr HX_U16 kDisk = 9;

using FreeDisk = ScriptedController;

TEST_F(FreeDisk, AsksForTheBlocksThenForAnOperatingSystem) {
    hxfake::On<&HX_BLK_GetInfo>().Once(0, hxfake::Page<Block_Info>(kLast, {}));
    EXPECT_EQ(HDisFreeDiskForSkua(2, 9), 0);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_BLK_GetInfo(2, {1, 0, 512})", "HX_DiskHasOS(2, 1, 1, [9])"));
}

TEST_F(FreeDisk, IsOneWhoseBlocksAreAllFree) {
    hxfake::On<&HX_BLK_GetInfo>().Once(
        0, hxfake::Page(kLast, {Block(kDisk, kFree), Block(kDisk, kFree)}));
    EXPECT_EQ(HDisFreeDiskForSkua(0, kDisk), 0);
}

TEST_F(FreeDisk, IsNotOneWithABlockOfAVirtualDisk) {
    hxfake::On<&HX_BLK_GetInfo>().Once(
        0, hxfake::Page(kLast, {Block(kDisk, kFree), Block(kDisk, 0), Block(kDisk, kFree)}));
    EXPECT_EQ(HDisFreeDiskForSkua(0, kDisk), 73);
}

TEST_F(FreeDisk, IsNotTouchedByTheBlocksOfOthers) {
    hxfake::On<&HX_BLK_GetInfo>().Once(0, hxfake::Page(kLast, {Block(8, 0), Block(265, 1)}));
    EXPECT_EQ(HDisFreeDiskForSkua(0, kDisk), 0);
}

TEST_F(FreeDisk, ComparesAllSixteenBitsOfTheVirtualDisk) {
    hxfake::On<&HX_BLK_GetInfo>().Once(0, hxfake::Page(kLast, {Block(kDisk, 0x01FF)}));
    EXPECT_EQ(HDisFreeDiskForSkua(0, kDisk), 73);
}

TEST_F(FreeDisk, IsNotOneWithAnOperatingSystem) {
    hxfake::On<&HX_BLK_GetInfo>().Once(0, hxfake::Page<Block_Info>(kLast, {}));
    hxfake::On<&HX_DiskHasOS>().Once(1);
    EXPECT_EQ(HDisFreeDiskForSkua(0, kDisk), 159);
}

TEST_F(FreeDisk, AnOperatingSystemOutweighsABlockAndAFailure) {
    hxfake::On<&HX_DiskHasOS>().Always(200);
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page(kLast, {Block(kDisk, 0)}))
        .Once(5, hxfake::Page<Block_Info>(kLast, {}));
    EXPECT_EQ(HDisFreeDiskForSkua(0, kDisk), 159);
    EXPECT_EQ(HDisFreeDiskForSkua(0, kDisk), 159);
}

TEST_F(FreeDisk, WalksFromPageToPage) {
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page(512, {Block(1, 0)}))
        .Once(0, hxfake::Page(700, {Block(2, 0)}))
        .Once(0, hxfake::Page(kLast, {Block(3, 0)}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_BLK_GetInfo(1, {1, 0, 512})", "HX_BLK_GetInfo(1, {1, 512, 512})",
                            "HX_BLK_GetInfo(1, {1, 700, 512})", "HX_DiskHasOS(1, 1, 1, [9])"));
}

// The last page alone decides. That is how it has always been.
TEST_F(FreeDisk, ForgetsWhatAnEarlierPageSaid) {
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page(512, {Block(kDisk, 0)}))
        .Once(0, hxfake::Page(kLast, {Block(3, 0)}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
}

TEST_F(FreeDisk, HearsWhatTheLastPageSays) {
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page(512, {Block(3, 0)}))
        .Once(0, hxfake::Page(kLast, {Block(kDisk, 0)}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 73);
}

TEST_F(FreeDisk, ReturnsTheCodeOfALastPageThatFailed) {
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page(512, {Block(kDisk, 0)}))
        .Once(5, hxfake::Page(kLast, {Block(kDisk, 0)}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 5);
}

TEST_F(FreeDisk, ForgetsAFailureBeforeTheLastPage) {
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(5, hxfake::Page<Block_Info>(512, {}))
        .Once(0, hxfake::Page<Block_Info>(kLast, {}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
}

// A page that failed without being written leaves the index where it was, so that it comes again.
TEST_F(FreeDisk, AsksAgainForAPageThatFailedOnce) {
    hxfake::On<&HX_BLK_GetInfo>().Once(5).Once(0, hxfake::Page<Block_Info>(kLast, {}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_BLK_GetInfo(1, {1, 0, 512})", "HX_BLK_GetInfo(1, {1, 0, 512})",
                            "HX_DiskHasOS(1, 1, 1, [9])"));
}

TEST_F(FreeDisk, GoesOnWhenAnIndexComesAgain) {
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page<Block_Info>(100, {}))
        .Once(0, hxfake::Page<Block_Info>(50, {}))
        .Once(0, hxfake::Page<Block_Info>(100, {}))
        .Once(0, hxfake::Page(kLast, {Block(kDisk, 0)}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 73);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_BLK_GetInfo(1, {1, 0, 512})", "HX_BLK_GetInfo(1, {1, 100, 512})",
                            "HX_BLK_GetInfo(1, {1, 50, 512})", "HX_BLK_GetInfo(1, {1, 100, 512})",
                            "HX_DiskHasOS(1, 1, 1, [9])"));
}

constexpr std::size_t kMostPages = 65536;

TEST_F(FreeDisk, CountsAWalkThatNeverEndsAsEndedAfter65536Pages) {
    hxfake::NoteCalls(false);
    hxfake::On<&HX_BLK_GetInfo>().Always(0, hxfake::Page<Block_Info>(0, {}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
    EXPECT_EQ(hxfake::On<&HX_BLK_GetInfo>().CallCount(), kMostPages);
}

TEST_F(FreeDisk, ReadsTheLastPageThatItMay) {
    hxfake::NoteCalls(false);
    std::size_t page = 0;
    hxfake::On<&HX_BLK_GetInfo>().Always([&](HX_U8, Info_Request* request) -> HX_U8 {
        request->header.nextStartingIndex = ++page == kMostPages ? kLast : HX_U16{0};
        return page == kMostPages ? HX_U8{0} : HX_U8{5};
    });
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
    EXPECT_EQ(page, kMostPages);
}

TEST_F(FreeDisk, ReturnsTheCodeOfTheLastPageOfAControllerThatOnlyFails) {
    hxfake::NoteCalls(false);
    hxfake::On<&HX_BLK_GetInfo>().Always(5);
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 5);
    EXPECT_EQ(hxfake::On<&HX_BLK_GetInfo>().CallCount(), kMostPages);
    EXPECT_EQ(hxfake::On<&HX_DiskHasOS>().CallCount(), 1U);
}

// Blocks of other disks, and one of ours in a virtual disk at `position`.
std::vector<Block_Info> FullPage(std::size_t position) {
    std::vector<Block_Info> blocks(512, Block(1, 0));
    blocks[position] = Block(kDisk, 0);
    return blocks;
}

TEST_F(FreeDisk, LooksAtEveryBlockOfAFullPage) {
    for (const std::size_t position : {0U, 255U, 256U, 511U}) {
        hxfake::On<&HX_BLK_GetInfo>().Once(0, hxfake::Page(kLast, FullPage(position)));
        EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 73) << position;
    }
}

TEST_F(FreeDisk, LooksAtNoMoreThanThePageHolds) {
    hxfake::On<&HX_BLK_GetInfo>().Once(
        0, hxfake::Page(kLast, std::vector<Block_Info>(512, Block(1, 0)), 65535));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
}

TEST_F(FreeDisk, LooksAtNoMoreThanIsReturned) {
    hxfake::On<&HX_BLK_GetInfo>().Once(
        0, hxfake::Page(kLast, {Block(1, 0), Block(kDisk, 0)}, HX_U16{1}));
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
}

TEST_F(FreeDisk, ClearsTheEntriesBeforeEveryCall) {
    int dirty = 0;
    hxfake::On<&HX_BLK_GetInfo>().Inspect([&](HX_U8, const Info_Request* request) {
        const auto* const bytes = reinterpret_cast<const char*>(request->blockInfo);
        dirty += std::any_of(bytes, bytes + 512 * sizeof(Block_Info),
                             [](char byte) { return byte != 0; });
    });
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page(512, FullPage(7)))
        .Once(0, hxfake::Page(512, FullPage(511)))
        .Once(0, hxfake::Page<Block_Info>(kLast, {}));
    HDisFreeDiskForSkua(1, kDisk);
    EXPECT_EQ(dirty, 0);
}

using HeaderBytes = std::array<HX_U8, sizeof(RequestHeader)>;

HeaderBytes BytesOf(const RequestHeader& header) { return std::bit_cast<HeaderBytes>(header); }

// The header is set up once. Of each answer only the next index is carried over to where the next
// page starts; all else goes back to the controller as it was left.
TEST_F(FreeDisk, SendsTheHeaderBackAsTheControllerLeftIt) {
    std::vector<HeaderBytes> sent;
    hxfake::On<&HX_BLK_GetInfo>().Inspect(
        [&](HX_U8, const Info_Request* request) { sent.push_back(BytesOf(request->header)); });
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page(512, {Block(1, 0), Block(2, 0)}))
        .Once([](HX_U8, Info_Request* request) -> HX_U8 {
            request->header = {9, 8, 7, 300, 6, 600, {1, 2, 3, 4, 5, 6}};
            return 0;
        })
        .Once(0, hxfake::Page<Block_Info>(kLast, {}));
    HDisFreeDiskForSkua(1, kDisk);
    EXPECT_THAT(
        sent, ElementsAre(BytesOf({0, 1, 0, 512, 0, 0, {}}), BytesOf({0, 1, 512, 512, 2, 512, {}}),
                          BytesOf({9, 8, 600, 300, 6, 600, {1, 2, 3, 4, 5, 6}})));
}

// The controller fills as many entries as the header asks for.
TEST_F(FreeDisk, NeverAsksForMoreThanThePageHolds) {
    hxfake::On<&HX_BLK_GetInfo>()
        .Once([](HX_U8, Info_Request* request) -> HX_U8 {
            request->header.numRequested = 65535;
            request->header.nextStartingIndex = 600;
            return 0;
        })
        .Once(0, hxfake::Page<Block_Info>(kLast, {}));
    HDisFreeDiskForSkua(1, kDisk);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_BLK_GetInfo(1, {1, 0, 512})", "HX_BLK_GetInfo(1, {1, 600, 512})",
                            "HX_DiskHasOS(1, 1, 1, [9])"));
}

// The second page is not written at all: its entries must not be those of the first page again.
TEST_F(FreeDisk, IsNotJudgedByWhatThePageBeforeHeld) {
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page(512, {Block(kDisk, 0)}))
        .Once([](HX_U8, Info_Request* request) -> HX_U8 {
            request->header.nextStartingIndex = kLast;
            return 0;
        });
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 0);
}

TEST_F(FreeDisk, WithoutMemoryIsFour) {
    const FailingAllocations no_memory;
    EXPECT_EQ(HDisFreeDiskForSkua(1, kDisk), 4);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(FreeDisk, LeavesNoMemoryBehind) {
    const std::ptrdiff_t before = LiveBlocks();
    hxfake::On<&HX_BLK_GetInfo>()
        .Once(0, hxfake::Page<Block_Info>(kLast, {}))
        .Once(5, hxfake::Page<Block_Info>(kLast, {}));
    HDisFreeDiskForSkua(1, kDisk);
    HDisFreeDiskForSkua(1, kDisk);
    EXPECT_EQ(LiveBlocks(), before);
}

// ---- GetRaidMode ----

constexpr HX_U16 k00 = 0x0001;
constexpr HX_U16 k01 = 0x0002;
constexpr HX_U16 k10 = 0x0004;
constexpr HX_U16 k11 = 0x0008;
constexpr HX_U16 k05 = 0x0010;
constexpr HX_U16 k06 = 0x0020;
constexpr HX_U16 k50 = 0x0040;
constexpr HX_U16 k60 = 0x0100;
constexpr HX_U16 kEvery = k00 | k01 | k10 | k11 | k05 | k06 | k50 | k60;

struct Choice {
    HX_U16 offered;
    int disks;
    int level;
    int disks_used;
};

void PrintTo(const Choice& choice, std::ostream* out) {
    *out << "offered " << choice.offered << ", disks " << choice.disks;
}

Adapter_Info AdapterOffering(HX_U16 levels) {
    Adapter_Info info{};
    info.LogicalDriverMode = levels;
    return info;
}

Create_LD_Param ParamOf(int disks) {
    Create_LD_Param param{};
    param.HDCount = static_cast<HX_U8>(disks);
    return param;
}

class RaidModeChoice : public ScriptedController, public testing::WithParamInterface<Choice> {};

TEST_P(RaidModeChoice, FitsTheAdapterAndTheNumberOfDisks) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(0, hxfake::Fill(AdapterOffering(GetParam().offered)));
    Create_LD_Param param = ParamOf(GetParam().disks);
    EXPECT_EQ(GetRaidMode(2, 1, &param), GetParam().level);
    EXPECT_EQ(param.HDCount, GetParam().disks_used);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetInfo(2, &, &)"));
}

// Each level alone, around the fewest disks that it takes. What no level fits is level 0x00.
INSTANTIATE_TEST_SUITE_P(OfOne, RaidModeChoice,
                         testing::Values(Choice{k00, 2, 0x00, 2},      //
                                         Choice{k00, 128, 0x00, 128},  //
                                         Choice{k01, 2, 0x01, 2},      //
                                         Choice{k01, 3, 0x01, 2},      //
                                         Choice{k01, 128, 0x01, 2},    //
                                         Choice{k05, 2, 0x00, 2},      //
                                         Choice{k05, 3, 0x05, 3},      //
                                         Choice{k05, 4, 0x05, 4},      //
                                         Choice{k05, 128, 0x05, 128},  //
                                         Choice{k11, 2, 0x00, 2},      //
                                         Choice{k11, 3, 0x11, 3},      //
                                         Choice{k11, 4, 0x00, 4},      //
                                         Choice{k11, 5, 0x11, 5},      //
                                         Choice{k11, 127, 0x11, 127},  //
                                         Choice{k06, 2, 0x00, 2},      //
                                         Choice{k06, 3, 0x06, 3},      //
                                         Choice{k06, 4, 0x06, 4},      //
                                         Choice{k10, 2, 0x00, 2},      //
                                         Choice{k10, 3, 0x00, 3},      //
                                         Choice{k10, 4, 0x10, 4},      //
                                         Choice{k10, 5, 0x00, 5},      //
                                         Choice{k10, 6, 0x10, 6},      //
                                         Choice{k50, 4, 0x00, 4},      //
                                         Choice{k50, 5, 0x00, 5},      //
                                         Choice{k50, 6, 0x50, 6},      //
                                         Choice{k50, 7, 0x00, 7},      //
                                         Choice{k50, 8, 0x50, 8},      //
                                         Choice{k60, 4, 0x00, 4},      //
                                         Choice{k60, 6, 0x60, 6},      //
                                         Choice{k60, 7, 0x00, 7},      //
                                         Choice{k60, 128, 0x60, 128}));

INSTANTIATE_TEST_SUITE_P(OfAll, RaidModeChoice,
                         testing::Values(Choice{kEvery, 2, 0x01, 2},  //
                                         Choice{kEvery, 3, 0x06, 3},  //
                                         Choice{kEvery, 4, 0x10, 4},  //
                                         Choice{kEvery, 5, 0x06, 5},  //
                                         Choice{kEvery, 6, 0x60, 6},  //
                                         Choice{kEvery, 7, 0x06, 7},  //
                                         Choice{kEvery, 8, 0x60, 8}));

// Each level before the next less wanted one that could be made of the same disks.
INSTANTIATE_TEST_SUITE_P(OfTwo, RaidModeChoice,
                         testing::Values(Choice{k60 | k50, 6, 0x60, 6},  //
                                         Choice{k50 | k10, 6, 0x50, 6},  //
                                         Choice{k10 | k06, 4, 0x10, 4},  //
                                         Choice{k06 | k11, 3, 0x06, 3},  //
                                         Choice{k11 | k05, 3, 0x11, 3},  //
                                         Choice{k05 | k01, 3, 0x05, 3},  //
                                         Choice{k01 | k00, 2, 0x01, 2}));

INSTANTIATE_TEST_SUITE_P(OfSome, RaidModeChoice,
                         testing::Values(Choice{k00 | k01 | k05 | k10, 5, 0x05, 5},
                                         Choice{k00 | k01 | k05 | k10, 4, 0x10, 4},
                                         Choice{k00 | k01, 3, 0x01, 2},
                                         Choice{k11 | k05, 4, 0x05, 4},
                                         Choice{k01 | k50, 5, 0x01, 2}));

INSTANTIATE_TEST_SUITE_P(OfNone, RaidModeChoice,
                         testing::Values(Choice{0, 2, 0x00, 2}, Choice{0, 6, 0x00, 6},
                                         Choice{0xFE80, 6, 0x00, 6}));

INSTANTIATE_TEST_SUITE_P(OfFewerThanTwoDisks, RaidModeChoice,
                         testing::Values(Choice{kEvery, 0, 0x00, 0}, Choice{kEvery, 1, 0x00, 1}));

using RaidMode = ScriptedController;

TEST_F(RaidMode, IsPlainWhenNoBetterOneIsWanted) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(0, hxfake::Fill(AdapterOffering(kEvery)));
    Create_LD_Param param = ParamOf(6);
    EXPECT_EQ(GetRaidMode(2, 0, &param), 0x00);
    EXPECT_EQ(param.HDCount, 6);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetInfo(2, &, &)"));
}

TEST_F(RaidMode, IsChosenWhateverTrueIsSpeltAs) {
    hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Fill(AdapterOffering(kEvery)));
    for (const HX_BOOLEAN type : std::initializer_list<HX_BOOLEAN>{1, 2, 128, 255}) {
        Create_LD_Param param = ParamOf(6);
        EXPECT_EQ(GetRaidMode(2, type, &param), 0x60);
    }
}

TEST_F(RaidMode, DoesNotLookAtTheCode) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(3, hxfake::Fill(AdapterOffering(k05)));
    Create_LD_Param param = ParamOf(3);
    EXPECT_EQ(GetRaidMode(2, 1, &param), 0x05);
}

TEST_F(RaidMode, IsPlainWhenTheAdapterFailsWithoutWriting) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(3);
    Create_LD_Param param = ParamOf(6);
    EXPECT_EQ(GetRaidMode(2, 1, &param), 0x00);
}

TEST_F(RaidMode, HandsTheControllerAZeroedRecord) {
    Adapter_Info given;
    std::memset(&given, 1, sizeof given);
    hxfake::On<&HX_Adapter_GetInfo>().Inspect(
        [&](HX_U8, HX_U8*, const Adapter_Info* info) { given = *info; });
    Create_LD_Param param = ParamOf(6);
    GetRaidMode(2, 1, &param);
    EXPECT_TRUE(IsZero(given));
}

TEST_F(RaidMode, ChangesNothingButTheNumberOfDisks) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(0, hxfake::Fill(AdapterOffering(k01)));
    Create_LD_Param param;
    std::memset(&param, 0x11, sizeof param);
    Create_LD_Param expected = param;
    expected.HDCount = 2;
    EXPECT_EQ(GetRaidMode(2, 1, &param), 0x01);
    EXPECT_EQ(std::memcmp(&param, &expected, sizeof param), 0);
}

// ---- HX_LD_QuickCreate ----

HD_RAID_Status Disk(HX_U16 id, HX_U8 status = 0) {
    HD_RAID_Status disk{};
    disk.HDID = id;
    disk.Status = status;
    return disk;
}

class QuickCreate : public ScriptedController {
protected:
    void SetUp() override {
        ScriptedController::SetUp();
        hxfake::On<&HX_BLK_GetInfo>().Always(0, hxfake::Page<Block_Info>(kLast, {}));
        hxfake::On<&HX_LD_Create>().Inspect(
            [this](HX_U8, const Create_LD_Param* param) { given_ = *param; });
        std::memset(&given_, 0x11, sizeof given_);
    }
    void ThereAre(const std::vector<HD_RAID_Status>& disks, std::optional<HX_U16> returned = {}) {
        hxfake::On<&HX_PD_GetHDRaidStatus>().Once(0, hxfake::Page(kLast, disks, returned));
    }
    void TheAdapterOffers(HX_U16 levels) {
        hxfake::On<&HX_Adapter_GetInfo>().Once(0, hxfake::Fill(AdapterOffering(levels)));
    }
    std::vector<HX_U16> DisksGiven() const { return {given_.HDIDs, given_.HDIDs + given_.HDCount}; }

    Create_LD_Param given_;
};

TEST_F(QuickCreate, ListsDisksChecksEachAndMakesTheVirtualDisk) {
    ThereAre({Disk(3), Disk(7)});
    TheAdapterOffers(kEvery);
    EXPECT_EQ(HX_LD_QuickCreate(2, 1), 0);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_PD_GetHDRaidStatus(2, {1, 0, 128})",  //
                            "HX_BLK_GetInfo(2, {1, 0, 512})", "HX_DiskHasOS(2, 1, 1, [3])",
                            "HX_BLK_GetInfo(2, {1, 0, 512})", "HX_DiskHasOS(2, 1, 1, [7])",
                            "HX_Adapter_GetInfo(2, &, &)", "HX_LD_Create(2, &)"));
}

TEST_F(QuickCreate, FillsTheParameterAndLeavesTheRestZero) {
    ThereAre({Disk(3), Disk(7), Disk(300)});
    TheAdapterOffers(k05);
    HX_LD_QuickCreate(2, 1);
    Create_LD_Param expected{};
    expected.RaidMode = 0x05;
    expected.HDCount = 3;
    expected.RoundingScheme = 0;
    expected.SubLDCount = 0;
    expected.StripeBlockSize = 64;
    expected.NumParityDisk = 2;
    expected.CachePolicy = 4;
    expected.InitializationOption = 0;
    expected.SectorCoefficient = 1;
    expected.HDIDs[0] = 3;
    expected.HDIDs[1] = 7;
    expected.HDIDs[2] = 300;
    std::strcpy(expected.Name, "NEW_VD");
    EXPECT_EQ(std::memcmp(&given_, &expected, sizeof expected), 0);
    EXPECT_THAT(given_.Name, StrEq("NEW_VD"));
}

TEST_F(QuickCreate, ReturnsTheControllersCode) {
    ThereAre({Disk(3)});
    hxfake::On<&HX_LD_Create>().Once(42);
    EXPECT_EQ(HX_LD_QuickCreate(2, 0), 42);
}

TEST_F(QuickCreate, AtThePlainLevelTakesAllFreeDisks) {
    ThereAre({Disk(1), Disk(2), Disk(3)});
    TheAdapterOffers(kEvery);
    HX_LD_QuickCreate(2, 0);
    EXPECT_EQ(given_.RaidMode, 0x00);
    EXPECT_EQ(given_.NumParityDisk, 2);
    EXPECT_THAT(DisksGiven(), ElementsAre(1, 2, 3));
}

TEST_F(QuickCreate, AtLevelOneTakesTheFirstTwoDisks) {
    ThereAre({Disk(1), Disk(2), Disk(3)});
    TheAdapterOffers(k00 | k01);
    HX_LD_QuickCreate(2, 1);
    EXPECT_EQ(given_.RaidMode, 0x01);
    EXPECT_EQ(given_.NumParityDisk, 2);
    EXPECT_EQ(given_.HDCount, 2);
    EXPECT_THAT(std::vector<HX_U16>(given_.HDIDs, given_.HDIDs + 4), ElementsAre(1, 2, 3, 0));
}

TEST_F(QuickCreate, AtLevelSixtyHasFourParityDisks) {
    ThereAre({Disk(1), Disk(2), Disk(3), Disk(4), Disk(5), Disk(6)});
    TheAdapterOffers(kEvery);
    HX_LD_QuickCreate(2, 1);
    EXPECT_EQ(given_.RaidMode, 0x60);
    EXPECT_EQ(given_.NumParityDisk, 4);
}

TEST_F(QuickCreate, TakesNoDiskWithABitThatKeepsItFromUse) {
    ThereAre({Disk(1, 0x04), Disk(2, 0x08), Disk(3, 0x40), Disk(4, 0x80), Disk(5, 0xFF)});
    HX_LD_QuickCreate(2, 0);
    EXPECT_EQ(given_.HDCount, 0);
    EXPECT_EQ(hxfake::On<&HX_BLK_GetInfo>().CallCount(), 0U);
}

TEST_F(QuickCreate, TakesADiskWithAnyOtherBit) {
    ThereAre({Disk(1, 0x01), Disk(2, 0x02), Disk(3, 0x10), Disk(4, 0x20), Disk(5, 0x33)});
    HX_LD_QuickCreate(2, 0);
    EXPECT_THAT(DisksGiven(), ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(QuickCreate, TakesNoDiskThatIsNotFree) {
    ThereAre({Disk(1), Disk(2), Disk(3)});
    hxfake::On<&HX_BLK_GetInfo>().Always(0, hxfake::Page(kLast, {Block(2, 0)}));
    hxfake::On<&HX_DiskHasOS>().Once(0).Once(0).Once(1);
    HX_LD_QuickCreate(2, 0);
    EXPECT_THAT(DisksGiven(), ElementsAre(1));
}

TEST_F(QuickCreate, WithoutADiskStillAsksTheController) {
    ThereAre({});
    TheAdapterOffers(kEvery);
    hxfake::On<&HX_LD_Create>().Once(17);
    EXPECT_EQ(HX_LD_QuickCreate(2, 1), 17);
    EXPECT_EQ(given_.HDCount, 0);
    EXPECT_EQ(given_.RaidMode, 0);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_PD_GetHDRaidStatus(2, {1, 0, 128})",
                                             "HX_Adapter_GetInfo(2, &, &)", "HX_LD_Create(2, &)"));
}

TEST_F(QuickCreate, WithoutAListHasNoDisks) {
    hxfake::On<&HX_PD_GetHDRaidStatus>().Once(9);
    EXPECT_EQ(HX_LD_QuickCreate(2, 0), 0);
    EXPECT_EQ(given_.HDCount, 0);
}

TEST_F(QuickCreate, DoesNotLookAtTheCodeOfTheList) {
    hxfake::On<&HX_PD_GetHDRaidStatus>().Once(9, hxfake::Page(kLast, {Disk(3)}));
    HX_LD_QuickCreate(2, 0);
    EXPECT_THAT(DisksGiven(), ElementsAre(3));
}

std::vector<HD_RAID_Status> Disks(int count) {
    std::vector<HD_RAID_Status> disks;
    for (int id = 0; id < count; ++id) disks.push_back(Disk(static_cast<HX_U16>(id + 1000)));
    return disks;
}

TEST_F(QuickCreate, TakesUpTo128Disks) {
    ThereAre(Disks(128));
    HX_LD_QuickCreate(2, 0);
    EXPECT_EQ(given_.HDCount, 128);
    EXPECT_EQ(given_.HDIDs[0], 1000);
    EXPECT_EQ(given_.HDIDs[127], 1127);
}

// All walks of a request share its pages, and each disk that is still to come has one of them.
TEST_F(QuickCreate, ReadsNoMoreThan65536PagesForAllDisks) {
    hxfake::NoteCalls(false);
    ThereAre(Disks(128));
    std::vector<std::size_t> pages(1, 0);
    hxfake::On<&HX_BLK_GetInfo>().Always([&](HX_U8, Info_Request* request) -> HX_U8 {
        request->header.nextStartingIndex = 0;
        ++pages.back();
        return 0;
    });
    hxfake::On<&HX_DiskHasOS>().Inspect(
        [&](HX_U8, HX_U8, HX_U8, const HX_U16*) { pages.push_back(0); });
    HX_LD_QuickCreate(2, 0);
    EXPECT_EQ(hxfake::On<&HX_BLK_GetInfo>().CallCount(), kMostPages);
    ASSERT_EQ(pages.size(), 129U);
    EXPECT_EQ(pages[0], kMostPages - 127);
    EXPECT_TRUE(
        std::all_of(pages.begin() + 1, pages.end() - 1, [](std::size_t n) { return n == 1; }));
}

TEST_F(QuickCreate, JudgesEachDiskByAPageOfItsOwnWhenTheListNeverEnds) {
    hxfake::NoteCalls(false);
    ThereAre(Disks(3));
    hxfake::On<&HX_BLK_GetInfo>().Always(0, hxfake::Page(0, {Block(1001, 4)}));
    HX_LD_QuickCreate(2, 0);
    EXPECT_THAT(DisksGiven(), ElementsAre(1000, 1002));
}

TEST_F(QuickCreate, StartsEveryRequestWithAllItsPages) {
    hxfake::NoteCalls(false);
    hxfake::On<&HX_BLK_GetInfo>().Always(5);
    for (int request = 0; request < 2; ++request) {
        ThereAre(Disks(1));
        HX_LD_QuickCreate(2, 0);
    }
    EXPECT_EQ(hxfake::On<&HX_BLK_GetInfo>().CallCount(), 2 * kMostPages);
}

TEST_F(QuickCreate, TakesADiskWhoseListFailedOnceAndThenCame) {
    ThereAre({Disk(3)});
    hxfake::On<&HX_BLK_GetInfo>().Once(5).Once(0, hxfake::Page<Block_Info>(kLast, {}));
    HX_LD_QuickCreate(2, 0);
    EXPECT_THAT(DisksGiven(), ElementsAre(3));
}

TEST_F(QuickCreate, TakesNoMoreDisksThanTheListHolds) {
    ThereAre(Disks(128), 65535);
    HX_LD_QuickCreate(2, 0);
    EXPECT_EQ(given_.HDCount, 128);
    EXPECT_THAT(given_.Name, StrEq("NEW_VD"));
}

TEST_F(QuickCreate, TakesNoMoreDisksThanAreReturned) {
    ThereAre(Disks(5), HX_U16{2});
    HX_LD_QuickCreate(2, 0);
    EXPECT_THAT(DisksGiven(), ElementsAre(1000, 1001));
}

TEST_F(QuickCreate, HandsTheControllerAClearedList) {
    bool clear = false;
    hxfake::On<&HX_PD_GetHDRaidStatus>().Inspect([&](HX_U8, const HD_RAID_Status_Request* request) {
        const auto* const bytes = reinterpret_cast<const char*>(request->hdRaidStatus);
        clear = std::all_of(bytes, bytes + 128 * sizeof(HD_RAID_Status),
                            [](char byte) { return byte == 0; });
    });
    HX_LD_QuickCreate(2, 0);
    EXPECT_TRUE(clear);
}

TEST_F(QuickCreate, WithoutMemoryIsFour) {
    const FailingAllocations no_memory;
    EXPECT_EQ(HX_LD_QuickCreate(2, 1), 4);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(QuickCreate, TakesNoDiskThatCannotBeCheckedForLackOfMemory) {
    ThereAre({Disk(1), Disk(2)});
    const FailingAllocations no_memory(1);  // the list of disks
    EXPECT_EQ(HX_LD_QuickCreate(2, 0), 0);
    EXPECT_EQ(given_.HDCount, 0);
}

TEST_F(QuickCreate, LeavesNoMemoryBehind) {
    ThereAre({Disk(1), Disk(2)});
    const std::ptrdiff_t before = LiveBlocks();
    HX_LD_QuickCreate(2, 0);
    EXPECT_EQ(LiveBlocks(), before);
}

}  // namespace
