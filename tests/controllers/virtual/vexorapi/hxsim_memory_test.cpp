// Memory that runs out at every allocation of a request in turn: a call is refused or done, the
// process lives, and the next call finds everything as it should be.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "hxraid.h"
#include "support/faults.h"
#include "support/temporary_root.h"

#include "vexorapi.h"

namespace {

constinit char result[VEXORAPI_MAX_RESULT];

// Allocates nothing of its own. Empty when the library took no command or lost its result.
const char* Ask(const char* command) {
    result[0] = '\0';
    if (vexorApi(command, result, sizeof result) != 1) result[0] = '\0';
    return result;
}

// The controller refuses with 230, what the library does itself with 1.
bool IsRefusal(const std::string& text) {
    return text.find("<RetVal type=\"U8\">230<") != std::string::npos ||
           text.find("<RetVal type=\"U8\">1<") != std::string::npos;
}

class WithoutMemory : public testing::Test {
protected:
    // The default machine, in a file below the temporary root.
    WithoutMemory() {
        unsetenv("HXSIM_STATE");
        vexorApiInit();
    }
    ~WithoutMemory() override {
        vexorApiShutdown();
        setenv("HXSIM_STATE", ":memory:", 1);
    }

    // Does `work` with its first allocation failing, with its second, and so on until none does;
    // then the same with all that follow failing, too. `check` looks at what came of each.
    static void FailEach(const std::function<void()>& work, const std::function<void()>& check) {
        for (const int all_behind : {0, 1}) {
            for (unsigned long number = 1;; ++number) {
                FaultsFailAllocation(number, all_behind);
                work();
                const unsigned long made = FaultsAllocations();
                FaultsFailAllocation(0, 0);
                SCOPED_TRACE("allocation " + std::to_string(number));
                check();
                if (HasFatalFailure() || made < number) break;
            }
        }
    }

    // A command that changes nothing: refused or answered in full, and as ever afterwards.
    static void ExpectWholeOrRefused(const char* command) {
        const std::string whole = Ask(command);
        ASSERT_NE(whole, "");
        FailEach([&] { Ask(command); },
                 [&] {
                     const std::string got = result;
                     ASSERT_TRUE(got.empty() || IsRefusal(got) || got == whole) << got;
                     ASSERT_EQ(Ask(command), whole);
                 });
    }

    TemporaryRoot root_;
};

class ListWithoutMemory : public WithoutMemory, public testing::WithParamInterface<const char*> {};

TEST_P(ListWithoutMemory, IsWholeOrRefused) {
    const std::string name = GetParam();
    ExpectWholeOrRefused(("<" + name +
                          " type=\"function\"><AdapterID>0</AdapterID><requestType>1</requestType>"
                          "<startingIndexOrId>0</startingIndexOrId><numRequested>64</numRequested>"
                          "</" +
                          name + ">")
                             .c_str());
}

INSTANTIATE_TEST_SUITE_P(Of, ListWithoutMemory,
                         testing::Values("HX_PD_GetHDInfo", "HX_PD_GetHDRaidStatus",
                                         "HX_BLK_GetInfo", "HX_LD_GetInfo", "HX_DG_GetInfo",
                                         "HX_ENC_GetEnclosureInfo", "HX_PD_GetSmartStatus"),
                         [](const auto& about) { return std::string(about.param); });

TEST_F(WithoutMemory, TheAdapterIsToldOrRefused) {
    ExpectWholeOrRefused(
        "<HX_Adapter_GetInfo type=\"function\"><AdapterID>0</AdapterID></HX_Adapter_GetInfo>");
}

TEST_F(WithoutMemory, AnImageOfTheFlashIsReadOrRefused) {
    const std::string file = root_.Path("/image");
    ExpectWholeOrRefused(("<HX_Flash_Option type=\"function\"><Actions>240</Actions>"
                          "<AdapterID>0</AdapterID><Type>1</Type><filepath>" +
                          file + "</filepath></HX_Flash_Option>")
                             .c_str());
}

TEST_F(WithoutMemory, EventsAreTakenOrStay) {
    static Event events[8];
    HX_U8 count = 0;
    HX_U8 status = 0;
    FailEach(
        [&] {
            count = 0;
            status = HX_EVT_GetEvent(0, 8, &count, events);
        },
        [&] {
            // SQLite tells some of its own want of memory as a file that cannot be used.
            ASSERT_TRUE(status == HX_SUCCESS || status == 230 || status == 229) << int{status};
            if (status != HX_SUCCESS) {
                ASSERT_EQ(count, 0);
                // Reads the machine again, which the next call would have to do first.
                Adapter_Info info;
                ASSERT_EQ(HX_Adapter_GetInfo(0, &count, &info), HX_SUCCESS);
                return;
            }
            ASSERT_NE(count, 0);
            ASSERT_EQ(HX_Flash_Erase(0, 2), HX_SUCCESS);  // tells another event
        });
}

TEST_F(WithoutMemory, QuickCreationMakesAVirtualDiskOrNone) {
    constexpr char kCreate[] =
        "<HX_LD_QuickCreate type=\"function\"><AdapterID>0</AdapterID><Type>1</Type>"
        "</HX_LD_QuickCreate>";
    constexpr char kList[] =
        "<HX_LD_GetInfo type=\"function\"><AdapterID>0</AdapterID><requestType>1</requestType>"
        "<startingIndexOrId>0</startingIndexOrId><numRequested>64</numRequested></HX_LD_GetInfo>";
    constexpr HX_U16 kNextNumber = 1;  // the lowest that is free
    const std::string before = Ask(kList);
    FailEach([&] { Ask(kCreate); },
             [&] {
                 const std::string answer = result;
                 const std::string after = Ask(kList);
                 ASSERT_NE(after, "");
                 if (after == before) {
                     ASSERT_EQ(answer.find("<RetVal type=\"U8\">0<"), std::string::npos) << answer;
                     return;
                 }

                 ASSERT_EQ(HX_LD_Delete(0, kNextNumber, 0), HX_SUCCESS);
                 ASSERT_EQ(Ask(kList), before);
             });
}

TEST_F(WithoutMemory, TheLibraryOpensOrTellsWhyNot) {
    FailEach(
        [&] {
            vexorApiShutdown();
            vexorApiInit();
        },
        [&] {
            const std::string count =
                Ask("<HX_Adapter_GetCount type=\"function\"></HX_Adapter_GetCount>");
            const bool open = count.find(">2<") != std::string::npos;
            ASSERT_TRUE(open || count.find(">0<") != std::string::npos) << count;
            vexorApiShutdown();
            vexorApiInit();
        });
}

}  // namespace
