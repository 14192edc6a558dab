// The library as its callers open it, and the faults that are put in the way of their calls.
#include "calls/hxsim_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>

#include "codes/state.h"
#include "codes/status.h"
#include "hxraid.h"
#include "library/trouble.h"
#include "rules/hxsim_settle.h"
#include "rules/hxsim_settling.h"
#include "store/hxsim_store.h"
#include "support/child_process.h"
#include "support/temporary_root.h"
#include "topology/hxsim_topology.h"

namespace hxsim {
namespace {

using hxcodes::State;
using hxcodes::Status;
using testing::HasSubstr;
using testing::StartsWith;

class Session : public testing::Test {
protected:
    Session() { setenv("HXSIM_STATE", File().c_str(), 1); }
    ~Session() override {
        HX_API_Finalize();
        setenv("HXSIM_STATE", ":memory:", 1);
    }

    std::string File() const { return root_.Path("/hxsim.db"); }

    // Opens a small machine with these faults.
    void OpenWith(std::vector<Injection> injections) {
        Machine machine = MakeMachine(BuiltInTopology("default"), 1, RealNow());
        machine.injections = std::move(injections);
        Store::Create(File(), machine);
        ASSERT_EQ(HX_API_Initialize(), HX_SUCCESS);
    }

    std::size_t Injections() { return Store(File(), DefaultMachine).Current().injections.size(); }

    static HX_U8 GetInfo(HX_U8 adapter = 0) {
        HX_U8 count = 0;
        Adapter_Info info;
        return HX_Adapter_GetInfo(adapter, &count, &info);
    }

    static HX_U8 Work(Status status) {
        return Change("HX_Work", 0, [&](Adapter& adapter, Time) {
            adapter.disks[11].locate_light = true;
            return status;
        });
    }
    bool HasWorked() {
        return Store(File(), DefaultMachine).Current().adapters[0].disks[11].locate_light;
    }

    TemporaryRoot root_;
};

TEST_F(Session, RefusesEveryCallBeforeItIsOpenAndAfterItIsClosed) {
    EXPECT_EQ(GetInfo(), Status::kNotInitialized);
    EXPECT_EQ(HX_Adapter_GetCount(), 0);
    Store::Create(File(), DefaultMachine());
    EXPECT_EQ(HX_API_Initialize(), HX_SUCCESS);
    EXPECT_EQ(GetInfo(), HX_SUCCESS);
    EXPECT_EQ(HX_Adapter_GetCount(), 2);
    HX_API_Finalize();
    EXPECT_EQ(GetInfo(), Status::kNotInitialized);
    EXPECT_EQ(HX_Adapter_GetCount(), 0);
}

TEST_F(Session, MayBeOpenedTwiceAndClosedTwice) {
    Store::Create(File(), DefaultMachine());
    EXPECT_EQ(HX_API_Initialize(), HX_SUCCESS);
    EXPECT_EQ(HX_API_Initialize(), HX_SUCCESS);
    HX_API_Finalize();
    HX_API_Finalize();
    EXPECT_FALSE(IsOpen());
}

TEST_F(Session, IsNotOpenWhenTheStateFileCannotBeUsed) {
    root_.Write("/hxsim.db", std::string(5000, 'x'));
    EXPECT_EQ(HX_API_Initialize(), Status::kNoState);
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(GetInfo(), Status::kNotInitialized);
    EXPECT_THAT(hx_trouble(), StartsWith(File() + " is damaged or no state file"));
}

TEST_F(Session, MakesNoMachineInAFileThatIsNamedAndNotThere) {
    EXPECT_EQ(HX_API_Initialize(), Status::kNoState);
    EXPECT_FALSE(IsOpen());
    EXPECT_FALSE(root_.Exists("/hxsim.db"));
    EXPECT_EQ(hx_trouble(), File() +
                                ": there is no machine; make one with \"hxsimctl init --state " +
                                File() + "\", or name another file in HXSIM_STATE.");
}

TEST_F(Session, MakesNoMachineInAnEmptyFileThatIsNamed) {
    root_.Write("/hxsim.db", "");
    EXPECT_EQ(HX_API_Initialize(), Status::kNoState);
    EXPECT_EQ(root_.Read("/hxsim.db"), "");
    EXPECT_THAT(hx_trouble(), StartsWith(File() + ": there is no machine; "));
}

TEST_F(Session, MakesTheDefaultMachineWhereNoFileIsNamed) {
    unsetenv("HXSIM_STATE");  // below VEXORAPI_ROOT then
    EXPECT_EQ(HX_API_Initialize(), HX_SUCCESS);
    EXPECT_EQ(HX_Adapter_GetCount(), 2);
    EXPECT_TRUE(root_.Exists("/var/lib/vexorapi/hxsim.db"));
}

TEST_F(Session, ForgetsItsTroubleWhenItIsOpened) {
    EXPECT_EQ(HX_API_Initialize(), Status::kNoState);
    Store::Create(File(), DefaultMachine());
    EXPECT_EQ(HX_API_Initialize(), HX_SUCCESS);
    EXPECT_STREQ(hx_trouble(), "");
}

TEST_F(Session, RefusesCallsWhenTheStateFileHasBecomeUnusable) {
    OpenWith({});
    Store store(File(), DefaultMachine);
    store.Change([](Machine& machine, Time) {
        machine.adapters[0].blocks[0].start = 5;
        return true;
    });
    EXPECT_EQ(GetInfo(), Status::kNoState);
    EXPECT_THAT(hx_trouble(), HasSubstr("a0/pd0 has sectors 0 to 4 in no block"));
    EXPECT_EQ(Work(Status::kSuccess), Status::kNoState);
    EXPECT_EQ(HX_Adapter_GetCount(), 0);
}

TEST_F(Session, KnowsItsAdapters) {
    OpenWith({});
    EXPECT_EQ(GetInfo(1), HX_SUCCESS);
    EXPECT_EQ(GetInfo(2), Status::kNoAdapter);
    EXPECT_EQ(GetInfo(HX_ALL_ADAPTERS), Status::kNoAdapter);
}

TEST_F(Session, SavesWhatASuccessfulCallChanges) {
    OpenWith({});
    EXPECT_EQ(Work(Status::kSuccess), HX_SUCCESS);
    EXPECT_TRUE(HasWorked());
}

TEST_F(Session, SavesNothingOfARefusedCall) {
    OpenWith({});
    const std::string before = root_.Read("/hxsim.db-wal");
    EXPECT_EQ(Work(Status::kBusy), Status::kBusy);
    EXPECT_FALSE(HasWorked());
    EXPECT_EQ(root_.Read("/hxsim.db-wal"), before);
}

TEST_F(Session, CatchesWhatIsThrownAndSavesNothingOfIt) {
    OpenWith({});
    EXPECT_EQ(Change("HX_Work", 0,
                     [](Adapter& adapter, Time) -> Status {
                         adapter.disks[11].locate_light = true;
                         throw std::bad_alloc();
                     }),
              Status::kNoMemory);
    EXPECT_EQ(Look("HX_Work", 0,
                   [](const Adapter&, Time) -> Status { throw std::logic_error("broken"); }),
              Status::kNoState);
    EXPECT_FALSE(HasWorked());
}

TEST_F(Session, TellsThatRulesUndoEachOtherAndSavesNothingOfIt) {
    OpenWith({});
    const auto blink = [](Settling& settling) {
        bool& lamp = settling.adapter.disks[11].locate_light;
        lamp = !lamp;
        return true;
    };
    EXPECT_EQ(Change("HX_Work", 0,
                     [&](Adapter& adapter, Time now) -> Status {
                         adapter.disks[11].locate_light = true;
                         Settle(adapter, now, std::array{SettlingRule{"blink", blink}});
                         return Status::kSuccess;
                     }),
              Status::kUnsettled);
    EXPECT_FALSE(HasWorked());
    EXPECT_EQ(Work(Status::kSuccess), HX_SUCCESS) << "the next call finds a sound machine";
}

TEST_F(Session, DrawsWhatFollowsFromAChange) {
    OpenWith({});
    EXPECT_EQ(Change("HX_Work", 0,
                     [](Adapter& adapter, Time) -> Status {
                         adapter.config.AutoRebuildOn = 0;
                         adapter.disks[0].failed = true;
                         return Status::kSuccess;
                     }),
              HX_SUCCESS);
    EXPECT_EQ(Store(File(), DefaultMachine).Current().adapters[0].virtual_disks[0].state,
              State::kDegraded);
}

TEST_F(Session, GoesOnInAForkedChild) {
    OpenWith({});
    EXPECT_EQ(InChild([&] { return Work(Status::kSuccess); }), HX_SUCCESS);
    EXPECT_TRUE(HasWorked());
    EXPECT_EQ(GetInfo(), HX_SUCCESS);
}

TEST_F(Session, KeepsAMachineInMemoryUntilItIsClosed) {
    setenv("HXSIM_STATE", ":memory:", 1);
    EXPECT_EQ(HX_API_Initialize(), HX_SUCCESS);
    EXPECT_EQ(Work(Status::kSuccess), HX_SUCCESS);
    const auto located = [] {
        return Look("HX_Work", 0, [](const Adapter& adapter, Time) {
            return adapter.disks[11].locate_light ? Status::kSuccess : Status::kNoLight;
        });
    };
    EXPECT_EQ(located(), Status::kSuccess);
    HX_API_Finalize();
    EXPECT_EQ(HX_API_Initialize(), HX_SUCCESS);
    EXPECT_EQ(located(), Status::kNoLight);
}

// ---- Faults ----

TEST_F(Session, MeetsAFaultAsOftenAsItIsToAndThenNoMore) {
    OpenWith({{.id = 1, .call = "HX_Adapter_GetInfo", .code = 7, .times = 2}});
    EXPECT_EQ(GetInfo(), 7);
    EXPECT_EQ(Injections(), 1U);
    EXPECT_EQ(GetInfo(), 7);
    EXPECT_EQ(Injections(), 0U);
    EXPECT_EQ(GetInfo(), HX_SUCCESS);
}

TEST_F(Session, MeetsAFaultAfterTheCallsThatItLetsThrough) {
    OpenWith({{.id = 1, .call = "HX_Adapter_GetInfo", .code = 7, .times = 1, .after = 2}});
    EXPECT_EQ(GetInfo(), HX_SUCCESS);
    EXPECT_EQ(GetInfo(), HX_SUCCESS);
    EXPECT_EQ(GetInfo(), 7);
    EXPECT_EQ(GetInfo(), HX_SUCCESS);
}

TEST_F(Session, MeetsAFaultForEver) {
    OpenWith({{.id = 1, .call = "HX_Adapter_GetInfo", .code = 7}});
    for (int i = 0; i < 5; ++i) EXPECT_EQ(GetInfo(), 7);
    EXPECT_EQ(Injections(), 1U);
}

TEST_F(Session, MeetsAFaultOfEveryCallInEachOfThem) {
    OpenWith({{.id = 1, .call = "", .code = 9}});
    EXPECT_EQ(GetInfo(), 9);
    EXPECT_EQ(Work(Status::kSuccess), 9);
    EXPECT_FALSE(HasWorked());
}

TEST_F(Session, MeetsNoFaultOfAnotherCallOrAdapter) {
    OpenWith({{.id = 1, .call = "HX_LD_GetInfo", .code = 7, .times = 1},
              {.id = 2, .call = "HX_Adapter_GetInfo", .code = 8, .times = 1, .adapter = 1}});
    EXPECT_EQ(GetInfo(0), HX_SUCCESS);
    EXPECT_EQ(GetInfo(1), 8);
    EXPECT_EQ(Injections(), 1U);
}

TEST_F(Session, SharesTheCountOfAFaultWithOtherProcesses) {
    OpenWith({{.id = 1, .call = "HX_Adapter_GetInfo", .code = 7, .times = 2}});
    EXPECT_EQ(InChild([] { return GetInfo(); }), 7);
    EXPECT_EQ(GetInfo(), 7);
    EXPECT_EQ(GetInfo(), HX_SUCCESS);
}

// It looks whether there are events before it takes them.
TEST_F(Session, MeetsAFaultOfEveryCallOnceWhenItTakesEvents) {
    OpenWith({{.id = 1, .call = "", .code = 7, .times = 1, .after = 1}});
    std::array<Event, 2> events{};
    HX_U8 count = 0;
    EXPECT_EQ(HX_EVT_GetEvent(0, 2, &count, events.data()), HX_SUCCESS);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(HX_EVT_GetEvent(0, 2, &count, events.data()), 7);
    EXPECT_EQ(HX_EVT_GetEvent(0, 2, &count, events.data()), HX_SUCCESS);
    EXPECT_EQ(events[0].SequenceNo, 3U);
}

TEST_F(Session, AnswersAsBrokenFirmwareWhenItTakesEvents) {
    OpenWith({{.id = 1, .call = "", .times = 1, .hostile = true}});
    std::array<Event, 2> events{};
    HX_U8 count = 0;
    EXPECT_EQ(HX_EVT_GetEvent(0, 2, &count, events.data()), HX_SUCCESS);
    EXPECT_EQ(count, 255);
    EXPECT_EQ(HX_EVT_GetEvent(0, 2, &count, events.data()), HX_SUCCESS);
    EXPECT_EQ(count, 2);
}

TEST_F(Session, IsHostileForTheCallThatIsHit) {
    OpenWith({{.id = 1, .call = "HX_Work", .times = 1, .hostile = true}});
    const auto hostile = [] {
        return Look("HX_Work", 0, [](const Adapter&, Time) {
            return IsHostile() ? Status::kSuccess : Status::kNoChange;
        });
    };
    EXPECT_FALSE(IsHostile());
    EXPECT_EQ(hostile(), Status::kSuccess);
    EXPECT_EQ(hostile(), Status::kNoChange);
}

}  // namespace
}  // namespace hxsim
