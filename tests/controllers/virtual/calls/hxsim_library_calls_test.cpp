// The virtual controller as a library: opening and closing it, its version, and what it refuses.
#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "hxraid.h"

namespace {

// Room for whatever a function could write, and the byte that it is filled with beforehand.
constexpr std::size_t kRoom = 65536;
constexpr std::byte kUntouched{0xA5};

template <class T>
T Argument(std::byte* room) {
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<T>(room);
    } else {
        return T{1};
    }
}

// Calls a function for an adapter, with the same room for all that it could write, or none.
template <auto function>
HX_U8 Call(HX_U8 adapter, std::byte* room) {
    const auto call = [&]<class... A>(HX_U8 (*f)(HX_U8, A...)) {
        return f(adapter, Argument<A>(room)...);
    };
    return call(function);
}

struct Function {
    const char* name;
    HX_U8 (*call)(HX_U8 adapter, std::byte* room);
};

void PrintTo(const Function& function, std::ostream* out) { *out << function.name; }

// What tells something, and needs an address for it.
constexpr Function kTelling[] = {
    {"HX_Adapter_GetInfo", Call<&HX_Adapter_GetInfo>},
    {"HX_Adapter_GetConfig", Call<&HX_Adapter_GetConfig>},
    {"HX_ENC_GetEnclosureInfo", Call<&HX_ENC_GetEnclosureInfo>},
    {"HX_ENC_GetElementInfo", Call<&HX_ENC_GetElementInfo>},
    {"HX_ENC_GetElementConfig", Call<&HX_ENC_GetElementConfig>},
    {"HX_PD_GetHDInfo", Call<&HX_PD_GetHDInfo>},
    {"HX_PD_GetHDInfo_Ext", Call<&HX_PD_GetHDInfo_Ext>},
    {"HX_PD_GetExpanderInfo", Call<&HX_PD_GetExpanderInfo>},
    {"HX_PD_GetPMInfo", Call<&HX_PD_GetPMInfo>},
    {"HX_PD_GetFreeSpaceInfo", Call<&HX_PD_GetFreeSpaceInfo>},
    {"HX_PD_GetConfig", Call<&HX_PD_GetConfig>},
    {"HX_PD_GetBGAStatus", Call<&HX_PD_GetBGAStatus>},
    {"HX_PD_GetSmartStatus", Call<&HX_PD_GetSmartStatus>},
    {"HX_PD_GetHDRaidStatus", Call<&HX_PD_GetHDRaidStatus>},
    {"HX_PD_RCT_GetCount", Call<&HX_PD_RCT_GetCount>},
    {"HX_PD_GetRCT", Call<&HX_PD_GetRCT>},
    {"HX_PD_GetMBRInfo", Call<&HX_PD_GetMBRInfo>},
    {"HX_DiskHasOS", Call<&HX_DiskHasOS>},
    {"HX_BLK_GetInfo", Call<&HX_BLK_GetInfo>},
    {"HX_BLK_GetHDBlock", Call<&HX_BLK_GetHDBlock>},
    {"HX_LD_GetInfo", Call<&HX_LD_GetInfo>},
    {"HX_LD_GetTargetLDInfo", Call<&HX_LD_GetTargetLDInfo>},
    {"HX_LD_GetStatus", Call<&HX_LD_GetStatus>},
    {"HX_LD_GetConfig", Call<&HX_LD_GetConfig>},
    {"HX_LD_GetMaxSize", Call<&HX_LD_GetMaxSize>},
    {"HX_LD_GetMigratedLdSize", Call<&HX_LD_GetMigratedLdSize>},
    {"HX_DG_GetInfo", Call<&HX_DG_GetInfo>},
    {"HX_DG_GetConfig", Call<&HX_DG_GetConfig>},
    {"HX_CreateOrModify_DG", Call<&HX_CreateOrModify_DG>},
    {"HX_BBU_GetInfo", Call<&HX_BBU_GetInfo>},
    {"HX_Flash_Bin", Call<&HX_Flash_Bin>},
    {"HX_EVT_GetEvent", Call<&HX_EVT_GetEvent>},
};

// What is done with numbers alone, and can be done at any time.
constexpr Function kByNumbers[] = {
    {"HX_AdapterMute", Call<&HX_AdapterMute>},
    {"HX_LocateArrayDevice", Call<&HX_LocateArrayDevice>},
};

// What changes the machine, or starts something on it.
constexpr Function kChanging[] = {
    {"HX_PD_WipeHDMDD", Call<&HX_PD_WipeHDMDD>},
    {"HX_PD_SetHDStatus", Call<&HX_PD_SetHDStatus>},
    {"HX_PD_FreeHD2GlobalSpare", Call<&HX_PD_FreeHD2GlobalSpare>},
    {"HX_PD_FreeHD2DGSpare", Call<&HX_PD_FreeHD2DGSpare>},
    {"HX_PD_Spare2FreeHD", Call<&HX_PD_Spare2FreeHD>},
    {"HX_PD_StartMediaPatrol", Call<&HX_PD_StartMediaPatrol>},
    {"HX_PD_HDMPCheck", Call<&HX_PD_HDMPCheck>},
    {"HX_PD_StartDataScrub", Call<&HX_PD_StartDataScrub>},
    {"HX_PD_BGAControl", Call<&HX_PD_BGAControl>},
    {"HX_LD_Delete", Call<&HX_LD_Delete>},
    {"HX_LD_Import", Call<&HX_LD_Import>},
    {"HX_LD_PauseAll", Call<&HX_LD_PauseAll>},
    {"HX_LD_StartRebuild", Call<&HX_LD_StartRebuild>},
    {"HX_LD_StartConsistencyCheck", Call<&HX_LD_StartConsistencyCheck>},
    {"HX_LD_StartINIT", Call<&HX_LD_StartINIT>},
    {"HX_LD_BGAControl", Call<&HX_LD_BGAControl>},
    {"HX_DG_Delete", Call<&HX_DG_Delete>},
    {"HX_DG_BGAControl", Call<&HX_DG_BGAControl>},
    {"HX_BBU_SetThreshold", Call<&HX_BBU_SetThreshold>},
    {"HX_BBU_ChangePower", Call<&HX_BBU_ChangePower>},
    {"HX_BBU_SetStatus", Call<&HX_BBU_SetStatus>},
    {"HX_Flash_Erase", Call<&HX_Flash_Erase>},
};

// What changes it as a record says.
constexpr Function kOfARecord[] = {
    {"HX_Adapter_SetConfig", Call<&HX_Adapter_SetConfig>},
    {"HX_PD_SetConfig", Call<&HX_PD_SetConfig>},
    {"HX_LD_SetConfig", Call<&HX_LD_SetConfig>},
    {"HX_LD_Create", Call<&HX_LD_Create>},
    {"HX_LD_StartMigration", Call<&HX_LD_StartMigration>},
    {"HX_DG_SetConfig", Call<&HX_DG_SetConfig>},
    {"HX_CreateOrModify_VD", Call<&HX_CreateOrModify_VD>},
    {"HX_DG_StartMigration", Call<&HX_DG_StartMigration>},
    {"HX_LD_DG_StartRebuild", Call<&HX_LD_DG_StartRebuild>},
};

class SimulatorFunction : public testing::TestWithParam<Function> {
protected:
    void SetUp() override { HX_API_Initialize(); }
    void TearDown() override { HX_API_Finalize(); }

    HX_U8 CallFor(HX_U8 adapter) { return GetParam().call(adapter, room_.data()); }
    void ExpectNothingWritten() { EXPECT_EQ(std::vector(kRoom, kUntouched), room_); }

private:
    std::vector<std::byte> room_ = std::vector(kRoom, kUntouched);
};

class TellingFunction : public SimulatorFunction {};
class FunctionOfARecord : public SimulatorFunction {};

TEST_P(SimulatorFunction, RefusesAnAdapterThatIsNotThere) {
    EXPECT_EQ(201, CallFor(2));
    EXPECT_EQ(201, CallFor(254));
    ExpectNothingWritten();
}

TEST_P(SimulatorFunction, RefusesAllAdaptersAtOnce) {
    EXPECT_EQ(201, CallFor(255));
    ExpectNothingWritten();
}

TEST_P(SimulatorFunction, RefusesWhileTheLibraryIsNotOpen) {
    HX_API_Finalize();
    EXPECT_EQ(200, CallFor(0));
    EXPECT_EQ(200, CallFor(255));
    ExpectNothingWritten();
}

TEST_P(TellingFunction, RefusesToWriteNowhere) { EXPECT_EQ(203, GetParam().call(0, nullptr)); }

TEST_P(FunctionOfARecord, RefusesToReadNowhere) { EXPECT_EQ(203, GetParam().call(0, nullptr)); }

std::string FunctionName(const testing::TestParamInfo<Function>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Telling, SimulatorFunction, testing::ValuesIn(kTelling), FunctionName);
INSTANTIATE_TEST_SUITE_P(ByNumbers, SimulatorFunction, testing::ValuesIn(kByNumbers), FunctionName);
INSTANTIATE_TEST_SUITE_P(Changing, SimulatorFunction, testing::ValuesIn(kChanging), FunctionName);
INSTANTIATE_TEST_SUITE_P(OfARecord, SimulatorFunction, testing::ValuesIn(kOfARecord), FunctionName);
INSTANTIATE_TEST_SUITE_P(Each, TellingFunction, testing::ValuesIn(kTelling), FunctionName);
INSTANTIATE_TEST_SUITE_P(Each, FunctionOfARecord, testing::ValuesIn(kOfARecord), FunctionName);

class SimulatorLibrary : public testing::Test {
protected:
    void TearDown() override { HX_API_Finalize(); }
};

TEST_F(SimulatorLibrary, TellsItsVersionOpenOrNot) {
    EXPECT_STREQ(PROJECT_VERSION " (virtual controller)", HX_API_Version());
    HX_API_Initialize();
    EXPECT_STREQ(PROJECT_VERSION " (virtual controller)", HX_API_Version());
}

TEST_F(SimulatorLibrary, HasNoAdaptersBeforeItIsOpened) { EXPECT_EQ(0, HX_Adapter_GetCount()); }

TEST_F(SimulatorLibrary, HasTwoAdaptersWhileItIsOpen) {
    EXPECT_EQ(0, HX_API_Initialize());
    EXPECT_EQ(2, HX_Adapter_GetCount());
}

TEST_F(SimulatorLibrary, CanBeOpenedTwice) {
    EXPECT_EQ(0, HX_API_Initialize());
    EXPECT_EQ(0, HX_API_Initialize());
    EXPECT_EQ(2, HX_Adapter_GetCount());
}

TEST_F(SimulatorLibrary, HasNoAdaptersAfterItIsClosed) {
    HX_API_Initialize();
    HX_API_Finalize();
    EXPECT_EQ(0, HX_Adapter_GetCount());
}

TEST_F(SimulatorLibrary, CanBeClosedWithoutHavingBeenOpened) {
    HX_API_Finalize();
    EXPECT_EQ(0, HX_API_Initialize());
    EXPECT_EQ(2, HX_Adapter_GetCount());
}

TEST_F(SimulatorLibrary, OpensAgainAfterItIsClosed) {
    HX_API_Initialize();
    HX_API_Finalize();
    EXPECT_EQ(0, HX_API_Initialize());
    EXPECT_EQ(2, HX_Adapter_GetCount());
}

}  // namespace
