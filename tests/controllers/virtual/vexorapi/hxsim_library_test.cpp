// What vexorApi makes of the virtual controller over a while: virtual disks of whatever is free,
// and a store of events that is too small for them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "model/hxsim_machine.h"
#include "rules/hxsim_event_queue.h"
#include "store/hxsim_store.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "topology/hxsim_topology.h"

namespace {

// The value of the first element of that name; empty when there is none.
std::string ValueOf(const std::string& result, const std::string& name) {
    const std::size_t tag = result.find('<' + name + ' ');
    if (tag == std::string::npos) return "";
    const std::size_t value = result.find('>', tag) + 1;
    return result.substr(value, result.find("</", value) - value);
}

std::string Ask(const std::string& name, const std::string& children) {
    return Send('<' + name + " type=\"function\">" + children + "</" + name + '>').text;
}

// ---- Virtual disks of whatever is free ----

struct QuickCase {
    unsigned disks;
    HX_U8 level;
    unsigned members;
    std::uint64_t sectors;
};

// Each disk has 1000 stripes of 64 KiB for data.
constexpr HX_U8 kRaid1 = 0x01, kRaid1e = 0x11, kRaid10 = 0x10, kRaid6 = 0x06, kRaid60 = 0x60;
constexpr QuickCase kQuick[] = {
    {2, kRaid1, 2, 128000}, {3, kRaid6, 3, 128000},  {4, kRaid10, 4, 256000},
    {5, kRaid6, 5, 384000}, {6, kRaid60, 6, 256000},
};

std::string SmallDisks(unsigned disks, const std::string& info) {
    return R"({"name": "few", "disk_models": [{"name": "TARNWELL", "serials": "6TW", "sectors": )" +
           std::to_string(128000 + hxsim::kMetadata) + R"(}], "adapters": [{"info": {)" + info +
           R"(}, "disks": [{"at": {"port": 0}, "model": "TARNWELL", "count": )" +
           std::to_string(disks) + "}]}]}";
}

class QuickCreate : public testing::TestWithParam<QuickCase> {
protected:
    void Make(unsigned disks, const std::string& info = "") {
        const std::string state = root_.Path("/hxsim.db");
        hxsim::Store::Create(state,
                             hxsim::MakeMachine(SmallDisks(disks, info), 1, hxsim::RealNow()));
        setenv("HXSIM_STATE", state.c_str(), 1);
        vexorApiInit();
    }
    ~QuickCreate() override { vexorApiShutdown(); }

    hxsim::VirtualDisk TheOne() {
        const auto rows = hxsim::Store(root_.Path("/hxsim.db"), hxsim::DefaultMachine)
                              .Current()
                              .adapters.at(0)
                              .virtual_disks;
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? hxsim::VirtualDisk{} : rows.front();
    }

    TemporaryRoot root_;
};

TEST_P(QuickCreate, MakesOneVirtualDiskOfAllFreeDisks) {
    Make(GetParam().disks);
    EXPECT_EQ(ValueOf(Ask("HX_LD_QuickCreate", "<AdapterID>0</AdapterID><Type>1</Type>"), "RetVal"),
              "0");
    const hxsim::VirtualDisk made = TheOne();
    EXPECT_EQ(made.level, GetParam().level);
    EXPECT_EQ(made.width, GetParam().members);
    EXPECT_EQ(made.size, GetParam().sectors);
}

TEST_P(QuickCreate, WithoutRedundancyMakesOneOfAllTheirSpace) {
    Make(GetParam().disks);
    EXPECT_EQ(ValueOf(Ask("HX_LD_QuickCreate", "<AdapterID>0</AdapterID><Type>0</Type>"), "RetVal"),
              "0");
    const hxsim::VirtualDisk made = TheOne();
    EXPECT_EQ(made.level, 0x00);
    EXPECT_EQ(made.width, GetParam().disks);
    EXPECT_EQ(made.size, 128000U * GetParam().disks);
}

std::string NameOfQuick(const testing::TestParamInfo<QuickCase>& info) {
    return "Of" + std::to_string(info.param.disks);
}
INSTANTIATE_TEST_SUITE_P(FreeDisks, QuickCreate, testing::ValuesIn(kQuick), NameOfQuick);

using QuickCreateOnOtherAdapters = QuickCreate;

TEST_F(QuickCreateOnOtherAdapters, TakesTheLevelOfOddNumbersWhereThereIsNoRaid6) {
    Make(3, R"("LogicalDriverMode": 31)");
    EXPECT_EQ(ValueOf(Ask("HX_LD_QuickCreate", "<AdapterID>0</AdapterID><Type>1</Type>"), "RetVal"),
              "0");
    EXPECT_EQ(TheOne().level, kRaid1e);
    EXPECT_EQ(TheOne().size, 192000U);
}

// ---- A store that is too small ----

class SmallStore : public testing::Test {
protected:
    SmallStore() {
        std::filesystem::create_directories(root_.Path("/opt/kestrel/raid/db"));
        root_.Write(
            "/vexorapi.ini",
            "<c><EventLogConfig type=\"config\" LogEnable=\"1\" MaxNumOfEvent=\"20\"/></c>");
        hxsim::Store::Create(
            State(), hxsim::MakeMachine(hxsim::BuiltInTopology("small"), 1, hxsim::RealNow()));
        setenv("HXSIM_STATE", State().c_str(), 1);
        vexorApiInit();
    }
    ~SmallStore() override { vexorApiShutdown(); }

    std::string State() const { return root_.Path("/hxsim.db"); }

    // So many events, of devices that are numbered from `first` on.
    void Happen(HX_U16 first, HX_U16 count) {
        hxsim::Store(State(), hxsim::DefaultMachine)
            .Change([&](hxsim::Machine& machine, hxsim::Time now) {
                for (HX_U16 i = 0; i < count; ++i) {
                    hxsim::Queue(machine.adapters[0], now, hxcodes::EventKind::kDiskOnline,
                                 static_cast<HX_U16>(first + i));
                }
                return true;
            });
    }

    static std::string Newest(unsigned count) {
        return Ask("VX_HX_EVT_GetEvents",
                   "<n>" + std::to_string(count) + "</n><s>4294967295</s><e>4294967295</e>");
    }

    TemporaryRoot root_;
};

// 30 rounds of 7 events, checked in after each: 10 events came with the machine.
TEST_F(SmallStore, KeepsTheNewestOfALongStoryAndGoesOnCounting) {
    constexpr HX_U16 kRounds = 30, kEach = 7;
    VX_EvFile_CheckIn(1);
    for (HX_U16 round = 0; round < kRounds; ++round) {
        Happen(static_cast<HX_U16>(1000 + kEach * round), kEach);
        VX_EvFile_CheckIn(1);
    }
    const std::string extent = Newest(20);
    EXPECT_EQ(ValueOf(extent, "n"), "20");
    EXPECT_EQ(ValueOf(extent, "s"), "200");  // of the 220 that there were
    EXPECT_EQ(ValueOf(extent, "e"), "219");
    EXPECT_EQ(ValueOf(extent, "DeviceID"), "1190");  // the oldest that is left
    EXPECT_EQ(ValueOf(Newest(1), "DeviceID"), "1209");
}

// The controller's own queue runs over between two check-ins, and says so in the store.
TEST_F(SmallStore, TellsOfTheEventsThatTheControllerHasLost) {
    VX_EvFile_CheckIn(1);
    Happen(1, 600);
    VX_EvFile_CheckIn(1);
    // 511 and the row that tells of 89: the store has room for the last 20.
    EXPECT_EQ(ValueOf(Newest(20), "e"), "521");
    EXPECT_EQ(ValueOf(Newest(1), "DeviceID"), "600");
    Happen(601, 1);
    VX_EvFile_CheckIn(1);
    EXPECT_EQ(ValueOf(Newest(1), "e"), "522");
}

}  // namespace
