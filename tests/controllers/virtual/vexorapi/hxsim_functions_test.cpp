// Every function of the controller through vexorApi, over the virtual controller: one request that
// is carried out and one that is refused, each on a machine as it is made.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "codes/state.h"
#include "codes/status.h"
#include "model/hxsim_invariants.h"
#include "model/hxsim_machine.h"
#include "store/hxsim_store.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "topology/hxsim_topology.h"

// Firmware may claim more than there is memory for, which is refused and no fault of the caller's.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }

namespace {

using hxcodes::State;
using hxcodes::Status;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// A request as a line: the function's name, then name=value; a comma in a value stands for the
// blank between two numbers. "{image}" is a path in the test's own folder.
std::string CommandOf(std::string_view line, const std::string& image) {
    std::istringstream words{std::string(line)};
    std::string name;
    words >> name;
    std::string command = "<" + name + " type=\"function\">";
    for (std::string word; words >> word;) {
        const std::size_t equals = word.find('=');
        const std::string child = word.substr(0, equals);
        std::string value = word.substr(equals + 1);
        for (char& each : value) {
            if (each == ',') each = ' ';
        }
        if (value == "{image}") value = image;
        command += "<" + child + ">" + value + "</" + child + ">";
    }
    return command + "</" + name + ">";
}

// The number in RetVal; nothing when there is none.
std::optional<int> CodeOf(const std::string& result) {
    constexpr std::string_view kOpen = "<RetVal type=\"U8\">";
    const std::size_t at = result.find(kOpen);
    if (at == std::string::npos) return std::nullopt;
    return std::atoi(result.c_str() + at + kOpen.size());
}

// What a result has as its code: the controller's status, or a number of the API's own.
struct Code {
    int number = 0;

    constexpr Code(int code) : number(code) {}
    constexpr Code(Status status) : number(NumberOf(status)) {}
};

struct Case {
    std::string_view request;              // carried out, and what its result then holds:
    std::string_view shows;                // "" where the code says it all
    std::string_view refused;              // "" for what is never refused
    Code code = 0;                         // with which it is refused
    std::vector<std::string_view> before;  // requests that make the first one possible
    std::vector<std::string_view> before_refused;
};

// Every test has a machine of its own.
class EveryFunction : public testing::TestWithParam<Case> {
protected:
    EveryFunction() {
        setenv("HXSIM_STATE", ":memory:", 1);
        vexorApiInit();
    }
    ~EveryFunction() override { vexorApiShutdown(); }

    std::string Ask(std::string_view request) {
        return Send(CommandOf(request, root_.Path("/image.bin"))).text;
    }

    void AskAll(const std::vector<std::string_view>& requests) {
        for (const std::string_view request : requests) {
            ASSERT_EQ(CodeOf(Ask(request)), HX_SUCCESS) << request;
        }
    }

    TemporaryRoot root_;
};

TEST_P(EveryFunction, CarriesOutWhatItCan) {
    AskAll(GetParam().before);
    const std::string result = Ask(GetParam().request);
    if (GetParam().shows.empty()) {
        EXPECT_EQ(CodeOf(result), HX_SUCCESS) << result;
    } else {
        EXPECT_THAT(result, HasSubstr(std::string(GetParam().shows)));
    }
}

TEST_P(EveryFunction, SaysWhyItRefuses) {
    if (GetParam().refused.empty()) GTEST_SKIP() << "answers whatever it is asked";
    AskAll(GetParam().before_refused);
    const std::string result = Ask(GetParam().refused);
    EXPECT_EQ(CodeOf(result), GetParam().code.number) << result;
}

// Broken firmware answers in a few ways in turn, and a request makes several calls: after so many
// requests each call has been answered in each way.
constexpr int kRequests = 12;
constexpr std::size_t kLongestLine = 1024;

// The function over firmware that says what nobody asked for.
class EveryFunctionOfBrokenFirmware : public EveryFunction {
protected:
    // The machine is in a file, where the test puts the fault into it.
    EveryFunctionOfBrokenFirmware() {
        vexorApiShutdown();
        hxsim::Store::Create(State(), hxsim::DefaultMachine());
        setenv("HXSIM_STATE", State().c_str(), 1);
        vexorApiInit();
    }

    std::string State() const { return root_.Path("/hxsim.db"); }

    void BreakFirmware() {
        hxsim::Injection injection;
        injection.id = 1;
        injection.hostile = true;
        hxsim::Store(State(), hxsim::DefaultMachine)
            .Change([&](hxsim::Machine& machine, hxsim::Time) {
                machine.injections.push_back(injection);
                return true;
            });
    }
};

TEST_P(EveryFunctionOfBrokenFirmware, EndsWithAWholeResult) {
    AskAll(GetParam().before);
    BreakFirmware();
    const std::string name(GetParam().request.substr(0, GetParam().request.find(' ')));
    for (int i = 0; i < kRequests; ++i) {
        const std::string result = Ask(i % 2 == 0 ? GetParam().request : std::string_view(name));
        if (result.empty()) continue;  // more was claimed than there is memory for
        ASSERT_THAT(result, StartsWith("<" + name + " type=\"function\">"));
        // What has been claimed may be more than a result holds; it is cut then.
        if (result.size() + kLongestLine > VEXORAPI_MAX_RESULT) continue;
        ASSERT_THAT(result, EndsWith("</" + name + ">"));
    }
    EXPECT_THAT(hxsim::Check(hxsim::Store(State(), hxsim::DefaultMachine).Current()), IsEmpty());
}

constexpr std::string_view kNoAutomaticRebuild =
    "HX_Adapter_SetConfig AdapterID=0 AutoRebuildOn=0 RebuildRate=70";
constexpr std::string_view kDisk5Offline = "HX_PD_SetHDStatus AdapterID=0 HD_ID=5 Action=2";
constexpr std::string_view kPatrolOfDisk11 = "HX_PD_StartMediaPatrol AdapterID=0 HD_ID=11";
constexpr std::string_view kMigrationOfGroup =
    "HX_DG_StartMigration AdapterID=0 DGID=0 RaidMode=6 NumParityDisk=2 PDCount=5 "
    "PDIDs=0,1,2,3,11";

const Case kCases[] = {
    {"HX_API_Version", "(virtual controller)</RetVal>", "", 0, {}, {}},
    {"HX_Adapter_GetCount", "<RetVal type=\"U8\">2</RetVal>", "", 0, {}, {}},
    {"HX_Adapter_GetInfo AdapterID=0",
     "VC08-24100001",
     "HX_Adapter_GetInfo AdapterID=7",
     Status::kNoAdapter,
     {},
     {}},
    {"HX_Adapter_SetConfig AdapterID=0 RebuildRate=80",
     "",
     "HX_Adapter_SetConfig AdapterID=0 RebuildRate=101",
     Status::kBadValue,
     {},
     {}},
    {"HX_AdapterMute AdapterID=0", "", "HX_AdapterMute AdapterID=1", Status::kNotSupported, {}, {}},
    {"HX_Adapter_GetConfig AdapterID=0",
     "<RebuildRate type=\"U8\">70<",
     "HX_Adapter_GetConfig AdapterID=9",
     Status::kNoAdapter,
     {},
     {}},
    {"HX_LocateArrayDevice AdapterID=0 deviceType=4 deviceId=3 ledStatus=1",
     "",
     "HX_LocateArrayDevice AdapterID=0 deviceType=1 deviceId=0 ledStatus=1",
     Status::kNoLight,
     {},
     {}},

    {"HX_ENC_GetEnclosureInfo AdapterID=0 requestType=1 numRequested=9",
     "OX-16 SAS SHELF",
     "HX_ENC_GetEnclosureInfo AdapterID=0 requestType=2 startingIndexOrId=9 numRequested=1",
     Status::kNoEnclosure,
     {},
     {}},
    {"HX_ENC_GetElementInfo AdapterID=0 ENC_ID=0",
     "<Count type=\"U8\">12<",
     "HX_ENC_GetElementInfo AdapterID=0 ENC_ID=5",
     Status::kNoEnclosure,
     {},
     {}},
    {"HX_ENC_GetElementConfig AdapterID=0 ENC_ID=0",
     "<Count type=\"U8\">12<",
     "HX_ENC_GetElementConfig AdapterID=0 ENC_ID=5",
     Status::kNoEnclosure,
     {},
     {}},

    {"HX_PD_GetHDInfo AdapterID=0 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">16<",
     "HX_PD_GetHDInfo AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_GetHDInfo_Ext AdapterID=1 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">8<",
     "HX_PD_GetHDInfo_Ext AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_GetExpanderInfo AdapterID=0 requestType=1 numRequested=9",
     "OX-24 EXPANDER",
     "HX_PD_GetExpanderInfo AdapterID=0 requestType=2 startingIndexOrId=3 numRequested=1",
     Status::kNoExpander,
     {},
     {}},
    {"HX_PD_GetPMInfo AdapterID=1 requestType=1 numRequested=9",
     "<NumberOfPorts type=\"U8\">5<",
     "HX_PD_GetPMInfo AdapterID=1 requestType=2 startingIndexOrId=3 numRequested=1",
     Status::kNoPortMultiplier,
     {},
     {}},
    {"HX_PD_GetFreeSpaceInfo AdapterID=0 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">16<",
     "HX_PD_GetFreeSpaceInfo AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_GetConfig AdapterID=0 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">16<",
     "HX_PD_GetConfig AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_GetSmartStatus AdapterID=0 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">16<",
     "HX_PD_GetSmartStatus AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_GetBGAStatus AdapterID=0 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">16<",
     "HX_PD_GetBGAStatus AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_GetHDRaidStatus AdapterID=0 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">16<",
     "HX_PD_GetHDRaidStatus AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_GetSpareInfo AdapterID=0 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">16<",
     "HX_PD_GetSpareInfo AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_GetRCT AdapterID=0 HD_ID=6 n=2 s=0 e=1",
     "<lba type=\"U64\">1842703<",
     "HX_PD_GetRCT AdapterID=0 HD_ID=15 n=2 s=0 e=1",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_SetConfig AdapterID=0 HD_ID=11 WriteCacheOn=1 SMARTOn=1 Online=1 DriveSpeed=10 HDID=11",
     "",
     "HX_PD_SetConfig AdapterID=0 HD_ID=15 WriteCacheOn=1 SMARTOn=1 Online=1 HDID=15",
     Status::kNoDisk,
     {},
     {}},
    {"HX_PD_WipeHDMDD AdapterID=0 HD_ID=13 Force=0",
     "",
     "HX_PD_WipeHDMDD AdapterID=0 HD_ID=4 Force=0",
     Status::kHoldsVirtualDisks,
     {},
     {}},
    {"HX_PD_SetHDStatus AdapterID=0 HD_ID=13 Action=2",
     "",
     "HX_PD_SetHDStatus AdapterID=0 HD_ID=13 Action=9",
     Status::kBadAction,
     {},
     {}},
    {"HX_PD_FreeHD2GlobalSpare AdapterID=0 HD_ID=13",
     "",
     "HX_PD_FreeHD2GlobalSpare AdapterID=0 HD_ID=4",
     Status::kDiskInUse,
     {},
     {}},
    {"HX_PD_FreeHD2DGSpare AdapterID=0 HD_ID=11 DG_ID=0",
     "",
     "HX_PD_FreeHD2DGSpare AdapterID=0 HD_ID=11 DG_ID=9",
     Status::kNoDiskGroup,
     {},
     {}},
    {"HX_PD_Spare2FreeHD AdapterID=0 HD_ID=9",
     "",
     "HX_PD_Spare2FreeHD AdapterID=0 HD_ID=11",
     Status::kDiskNotSpare,
     {},
     {}},
    {"HX_PD_StartMediaPatrol AdapterID=0 HD_ID=11",
     "",
     "HX_PD_StartMediaPatrol AdapterID=0 HD_ID=11",
     Status::kBusy,
     {},
     {kPatrolOfDisk11}},
    {"HX_PD_StartDataScrub AdapterID=0 HD_ID=11",
     "",
     "HX_PD_StartDataScrub AdapterID=0 HD_ID=11",
     Status::kBusy,
     {},
     {kPatrolOfDisk11}},
    {"HX_PD_BGAControl AdapterID=0 HD_ID=11 Action=1",
     "",
     "HX_PD_BGAControl AdapterID=0 HD_ID=11 Action=1",
     Status::kNoActivity,
     {kPatrolOfDisk11},
     {}},
    {"HX_PD_GetMBRInfo AdapterID=1 HDCount=2 HDIDs=2,3",
     "",
     "HX_PD_GetMBRInfo AdapterID=1 HDCount=2 HDIDs=2,99",
     Status::kNoDisk,
     {},
     {}},

    {"HX_BLK_GetInfo AdapterID=0 requestType=1 numRequested=99",
     "<StartLBA type=\"U64\">0<",
     "HX_BLK_GetInfo AdapterID=0 requestType=2 startingIndexOrId=60000 numRequested=1",
     Status::kNoBlock,
     {},
     {}},
    {"HX_BLK_GetHDBlock AdapterID=0 requestType=1 numRequested=99",
     "<numReturned type=\"U16\">16<",
     "HX_BLK_GetHDBlock AdapterID=0 requestType=2 startingIndexOrId=15 numRequested=1",
     Status::kNoDisk,
     {},
     {}},

    {"HX_LD_GetInfo AdapterID=0 requestType=1 numRequested=9",
     "<![CDATA[ARCHIVE]]>",
     "HX_LD_GetInfo AdapterID=0 requestType=2 startingIndexOrId=1 numRequested=1",
     Status::kNoVirtualDisk,
     {},
     {}},
    {"HX_LD_GetTargetLDInfo AdapterID=0 LD_ID=0",
     "<![CDATA[DATABASE]]>",
     "HX_LD_GetTargetLDInfo AdapterID=0 LD_ID=1",
     Status::kNoVirtualDisk,
     {},
     {}},
    {"HX_LD_GetStatus AdapterID=0 requestType=1 numRequested=9",
     "<numReturned type=\"U16\">2<",
     "HX_LD_GetStatus AdapterID=0 requestType=2 startingIndexOrId=1 numRequested=1",
     Status::kNoVirtualDisk,
     {},
     {}},
    {"HX_LD_GetConfig AdapterID=0 requestType=1 numRequested=9",
     "<numReturned type=\"U16\">2<",
     "HX_LD_GetConfig AdapterID=0 requestType=2 startingIndexOrId=1 numRequested=1",
     Status::kNoVirtualDisk,
     {},
     {}},
    {"HX_LD_SetConfig AdapterID=0 LD_ID=2 CacheMode=4 AutoRebuildOn=1 LDID=2 Name=RENAMED",
     "",
     "HX_LD_SetConfig AdapterID=0 LD_ID=1 CacheMode=4 AutoRebuildOn=1 LDID=1 Name=RENAMED",
     Status::kNoVirtualDisk,
     {},
     {}},
    {"HX_LD_Create AdapterID=0 RaidMode=1 HDCount=2 HDIDs=11,12 StripeBlockSize=64 Name=PAIR "
     "SectorCoefficient=1",
     "",
     "HX_LD_Create AdapterID=0 RaidMode=7 HDCount=2 HDIDs=11,12 StripeBlockSize=64 Name=PAIR "
     "SectorCoefficient=1",
     Status::kBadLevel,
     {},
     {}},
    {"HX_LD_QuickCreate AdapterID=1 Type=1",
     "",
     "HX_LD_QuickCreate AdapterID=1 Type=1",
     Status::kBadDiskCount,
     {},
     {"HX_LD_QuickCreate AdapterID=1 Type=1"}},
    {"HX_LD_GetMaxSize AdapterID=0 RaidMode=1 HDCount=2 HDIDs=11,12 StripeBlockSize=64",
     "",
     "HX_LD_GetMaxSize AdapterID=0 RaidMode=1 HDCount=2 HDIDs=0,11 StripeBlockSize=64",
     Status::kDiskTaken,
     {},
     {}},
    {"HX_LD_Delete AdapterID=0 LD_ID=2 deleteMBR=0",
     "",
     "HX_LD_Delete AdapterID=0 LD_ID=1 deleteMBR=0",
     Status::kNoVirtualDisk,
     {},
     {}},
    {"HX_LD_PauseAll AdapterID=0", "", "HX_LD_PauseAll AdapterID=9", Status::kNoAdapter, {}, {}},
    {"HX_LD_StartRebuild AdapterID=0 LD_ID=2 Rebuild_HD_ID=13",
     "",
     "HX_LD_StartRebuild AdapterID=0 LD_ID=2 Rebuild_HD_ID=13",
     Status::kWrongState,
     {kNoAutomaticRebuild, kDisk5Offline},
     {}},
    {"HX_LD_DG_StartRebuild AdapterID=0 ID=2 RebuildType=0 PDCount=1 PDIDs=13",
     "",
     "HX_LD_DG_StartRebuild AdapterID=0 ID=2 RebuildType=0 PDCount=1 PDIDs=13",
     Status::kWrongState,
     {kNoAutomaticRebuild, kDisk5Offline},
     {}},
    {"HX_LD_StartConsistencyCheck AdapterID=0 LD_ID=2 Type=0",
     "",
     "HX_LD_StartConsistencyCheck AdapterID=0 LD_ID=2 Type=5",
     Status::kBadAction,
     {},
     {}},
    {"HX_LD_StartINIT AdapterID=0 LD_ID=2 Init_Type=2",
     "",
     "HX_LD_StartINIT AdapterID=0 LD_ID=2 Init_Type=3",
     Status::kBadAction,
     {},
     {}},
    {"HX_LD_StartMigration AdapterID=1 LDID=0 RaidMode=5 HDCount=3 HDIDs=0,1,3",
     "",
     "HX_LD_StartMigration AdapterID=0 LDID=0 RaidMode=6 HDCount=4 HDIDs=0,1,2,3",
     Status::kOnDiskGroup,
     {},
     {}},
    {"HX_LD_GetMigratedLdSize AdapterID=1 LDID=0 RaidMode=5 HDCount=3 HDIDs=0,1,3",
     "",
     "HX_LD_GetMigratedLdSize AdapterID=0 LDID=0 RaidMode=6 HDCount=4 HDIDs=0,1,2,3",
     Status::kOnDiskGroup,
     {},
     {}},
    {"HX_LD_BGAControl AdapterID=0 LD_ID=2 Actions=1",
     "",
     "HX_LD_BGAControl AdapterID=0 LD_ID=2 Actions=1",
     Status::kNoActivity,
     {"HX_LD_StartConsistencyCheck AdapterID=0 LD_ID=2 Type=0"},
     {}},

    {"HX_DG_Create AdapterID=0 Name=PAIR RaidMode=1 PDCount=2 PDIDs=11,12",
     "",
     "HX_DG_Create AdapterID=1 Name=PAIR RaidMode=1 PDCount=2 PDIDs=3,4",
     Status::kNotSupported,
     {},
     {}},
    {"HX_DG_GetSizeOnly AdapterID=0 DGID=65535 RaidMode=1 PDCount=2 PDIDs=11,12",
     "",
     "HX_DG_GetSizeOnly AdapterID=0 DGID=65535 RaidMode=1 PDCount=2 PDIDs=11,11",
     Status::kDiskRepeated,
     {},
     {}},
    {"HX_DG_Modify AdapterID=0 DGID=0 Name=RENAMED RaidMode=5 PDCount=4 PDIDs=0,1,2,3",
     "",
     "HX_DG_Modify AdapterID=0 DGID=9 Name=RENAMED RaidMode=5 PDCount=4 PDIDs=0,1,2,3",
     Status::kNoDiskGroup,
     {},
     {}},
    {"HX_DG_GetInfo AdapterID=0 requestType=1 numRequested=9",
     "<![CDATA[GROUP_A]]>",
     "HX_DG_GetInfo AdapterID=0 requestType=2 startingIndexOrId=9 numRequested=1",
     Status::kNoDiskGroup,
     {},
     {}},
    {"HX_DG_GetConfig AdapterID=0 requestType=1 numRequested=9",
     "<Name type=\"string\">GROUP_A<",
     "HX_DG_GetConfig AdapterID=0 requestType=2 startingIndexOrId=9 numRequested=1",
     Status::kNoDiskGroup,
     {},
     {}},
    {"HX_DG_SetConfig AdapterID=0 DG_ID=0 DGID=0 WriteCacheOn=1 Name=RENAMED",
     "",
     "HX_DG_SetConfig AdapterID=0 DG_ID=9 DGID=9 WriteCacheOn=1 Name=RENAMED",
     1,
     {},
     {}},
    {"HX_DG_Delete AdapterID=0 DG_ID=0",
     "",
     "HX_DG_Delete AdapterID=0 DG_ID=9",
     Status::kNoDiskGroup,
     {},
     {}},
    {"HX_DG_StartMigration AdapterID=0 DGID=0 RaidMode=6 NumParityDisk=2 PDCount=5 "
     "PDIDs=0,1,2,3,11",
     "",
     "HX_DG_StartMigration AdapterID=0 DGID=9 RaidMode=6 PDCount=5 PDIDs=0,1,2,3,11",
     Status::kNoDiskGroup,
     {},
     {}},
    {"HX_DG_BGAControl AdapterID=0 DG_ID=0 Actions=1",
     "",
     "HX_DG_BGAControl AdapterID=0 DG_ID=0 Actions=1",
     Status::kNoActivity,
     {kMigrationOfGroup},
     {}},
    {"HX_CreateOrModify_VD AdapterID=0 VDID=65535 DGID=0 Name=SECOND RaidMode=5 Size=2097152",
     "",
     "HX_CreateOrModify_VD AdapterID=0 VDID=65535 DGID=9 Name=SECOND RaidMode=5 Size=2097152",
     Status::kNoDiskGroup,
     {"HX_LD_Delete AdapterID=0 LD_ID=0 deleteMBR=0"},
     {}},
    {"HX_LD_Create_OnDG AdapterID=0 DGID=0 Name=SECOND DGSlotNum=1 Size=2097152",
     "",
     "HX_LD_Create_OnDG AdapterID=0 DGID=0 Name=SECOND DGSlotNum=0 Size=2097152",
     Status::kSlotTaken,
     {},
     {}},
    {"HX_LD_Modify_OnDG AdapterID=0 VDID=0 DGID=0 Name=RENAMED",
     "",
     "HX_LD_Modify_OnDG AdapterID=0 VDID=9 DGID=0 Name=RENAMED",
     Status::kNoVirtualDisk,
     {},
     {}},

    {"HX_BBU_GetInfo AdapterID=0",
     "<percentage type=\"U8\">96<",
     "HX_BBU_GetInfo AdapterID=1",
     Status::kNoBattery,
     {},
     {}},
    {"HX_BBU_SetMaxCapacity BBU_ID=0 maxCapacity=1700", "", "", 0, {}, {}},
    {"HX_BBU_ActRelearn AdapterID=0",
     "",
     "HX_BBU_ActRelearn AdapterID=1",
     Status::kNoBattery,
     {},
     {}},
    {"HX_BBU_SetThreshold AdapterID=0 tempLowerBound=5 tempUpperBound=55 volLowerBound=3500 "
     "volUpperBound=4300",
     "",
     "HX_BBU_SetThreshold AdapterID=0 tempLowerBound=5 tempUpperBound=55 volLowerBound=4300 "
     "volUpperBound=3500",
     Status::kBadValue,
     {},
     {}},
    {"HX_BBU_ChangePower AdapterID=0 action=2",
     "",
     "HX_BBU_ChangePower AdapterID=0 action=9",
     Status::kBadAction,
     {},
     {}},
    {"HX_BBU_SetStatus AdapterID=0 status=0",
     "",
     "HX_BBU_SetStatus AdapterID=1 status=0",
     Status::kNoBattery,
     {},
     {}},

    {"HX_Flash_Erase AdapterID=0 Page=1",
     "",
     "HX_Flash_Erase AdapterID=0 Page=77",
     Status::kBadAction,
     {},
     {}},
    {"HX_Flash_Option AdapterID=0 Actions=240 Type=1 filepath={image}",
     "",
     "HX_Flash_Option AdapterID=0 Actions=15 Type=1 filepath={image}",
     1,
     {},
     {}},
    {"HX_BIOS_Version filepath={image}",
     "<VerMajor type=\"U16\">3<",
     "HX_BIOS_Version filepath={image}",
     1,
     {"HX_Flash_Option AdapterID=0 Actions=240 Type=1 filepath={image}"},
     {}},

    // What the host answers: a password that is right is for the tests that bring their own users.
    {"HX_GetUserName", "<UserName type=\"string\">root<", "", 0, {}, {}},
    {"HX_GetUserGroup lpszUsername=root", "", "", 0, {}, {}},
    {"HX_LogonUser lpszUsername=nobody.here",
     "<RetVal type=\"U8\">2<",
     "HX_LogonUser lpszUsername=nobody.here",
     2,
     {},
     {}},
};

std::string NameOfCase(const testing::TestParamInfo<Case>& info) {
    return std::string(info.param.request.substr(0, info.param.request.find(' ')));
}

// A foreign virtual disk comes with its disks out of another machine, and no function makes one.
class Import : public testing::Test {
protected:
    Import() {
        const std::string state = root_.Path("/hxsim.db");
        setenv("HXSIM_STATE", state.c_str(), 1);
        hxsim::Store(state, hxsim::DefaultMachine).Change([](hxsim::Machine& machine, hxsim::Time) {
            hxsim::Adapter& adapter = machine.adapters[0];
            hxsim::VirtualDisk* const archive = hxsim::Find(adapter.virtual_disks, 2);
            archive->foreign = true;
            archive->state = State::kForeign;
            for (HX_U16 id = 4; id <= 8; ++id) hxsim::Find(adapter.disks, id)->foreign = true;
            return true;
        });
        vexorApiInit();
    }
    ~Import() override { vexorApiShutdown(); }

    TemporaryRoot root_;
};

TEST_F(Import, TakesAForeignVirtualDiskOver) {
    const std::string before =
        Send(CommandOf("HX_LD_GetTargetLDInfo AdapterID=0 LD_ID=2", "")).text;
    EXPECT_THAT(before, HasSubstr("<Status type=\"U8\">6<"));
    EXPECT_EQ(CodeOf(Send(CommandOf("HX_LD_Import AdapterID=0 LD_ID=2", "")).text), HX_SUCCESS);
    const std::string after = Send(CommandOf("HX_LD_GetTargetLDInfo AdapterID=0 LD_ID=2", "")).text;
    EXPECT_THAT(after, HasSubstr("<Status type=\"U8\">1<"));
}

TEST_F(Import, RefusesAVirtualDiskThatIsAtHome) {
    EXPECT_EQ(CodeOf(Send(CommandOf("HX_LD_Import AdapterID=0 LD_ID=0", "")).text),
              Status::kNotForeign);
}

INSTANTIATE_TEST_SUITE_P(Machine, EveryFunction, testing::ValuesIn(kCases), NameOfCase);
INSTANTIATE_TEST_SUITE_P(Machine, EveryFunctionOfBrokenFirmware, testing::ValuesIn(kCases),
                         NameOfCase);

}  // namespace
