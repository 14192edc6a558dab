// The text of every event, character for character.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <set>
#include <string>

#include "vxevent_text.h"

namespace {

// The event that every row of the tables below renders: all of its numbers differ.
Event SampleEvent(int event_class, int code) {
    Event event{};
    event.Class = static_cast<HX_U16>(event_class);
    event.Code = static_cast<HX_U16>(code);
    event.DeviceID = 3;
    event.Severity = 2;
    event.AdapterID = 1;
    event.SequenceNo = 99;
    event.Params[0] = 40;
    event.Params[1] = 0xABC;
    event.Params[2] = 7;
    event.Params[3] = 0xFFFFFFFE;
    return event;
}

std::string TextOf(const Event& event) {
    char text[512];
    const int length = VX_HX_EVT_Sprintf(&event, text);
    EXPECT_EQ(std::strlen(text), static_cast<std::size_t>(length));
    return text;
}

// The text between the time of 1 January 1970 and the line end.
std::string MessageOf(const Event& event) {
    const std::string text = TextOf(event);
    const std::string time = "Thu Jan  1 00:00:00 1970 ";
    EXPECT_EQ(time, text.substr(0, time.size()));
    EXPECT_EQ('\n', text.back());
    return text.substr(time.size(), text.size() - time.size() - 1);
}

struct Rendering {
    int code;
    const char* message;
};

template <std::size_t n>
void ExpectMessages(int event_class, const Rendering (&rows)[n]) {
    for (const Rendering& row : rows) {
        EXPECT_EQ(row.message, MessageOf(SampleEvent(event_class, row.code)))
            << "class " << event_class << " code " << row.code;
    }
}

// Every code that is in none of `rows`, and not `special` either, gives `unknown` with the code put
// in for its "#".
template <std::size_t n>
void ExpectUnknown(int event_class, const Rendering (&rows)[n], std::set<int> special,
                   const std::string& unknown) {
    for (const Rendering& row : rows) special.insert(row.code);
    const std::size_t place = unknown.find('#');
    for (int code = 0; code <= 65535; ++code) {
        if (special.contains(code)) continue;
        std::string expected = unknown;
        if (place != std::string::npos) expected.replace(place, 1, std::to_string(code));
        ASSERT_EQ(expected, MessageOf(SampleEvent(event_class, code)));
    }
}
constexpr Rendering kNone[] = {{-1, ""}};

constexpr Rendering kAdapterTexts[] = {
    {0, "EVT_CODE_SMART_FROM_OFF_TO_ON|[INFO]|1| "},
    {1, "EVT_CODE_SMART_FROM_ON_TO_OFF|[INFO]|1| "},
    {2, "EVT_CODE_ALARM_TURN_ON|[INFO]|1| "},
    {3, "EVT_CODE_ALARM_TURN_OFF|[INFO]|1| "},
    {4, "EVT_CODE_AUTO_REBUILD_ON|[INFO]|1| "},
    {5, "EVT_CODE_AUTO_REBUILD_OFF|[INFO]|1| "},
    {6, "EVT_CODE_HD_MP_RATE_CHANGE|[INFO]|1| "},
    {7, "EVT_CODE_COPY_BACK_ON|[INFO]|1| "},
    {8, "EVT_CODE_COPY_BACK_OFF|[INFO]|1| "},
    {65535, "EVT_CODE_EVT_ERR|[INFO]|99|7| "},
};

constexpr Rendering kVirtualDiskTexts[] = {
    {0, "EVT_CODE_LD_OFFLINE|[INFO]|3| "},
    {1, "EVT_CODE_LD_ONLINE|[INFO]|3| "},
    {2, "EVT_CODE_LD_CREATE|[INFO]|3| "},
    {3, "EVT_CODE_LD_DELETE|[INFO]|3| "},
    {4, "EVT_CODE_LD_DEGRADE|[INFO]|3| "},
    {5, "EVT_CODE_LD_PARTIALLYOPTIMAL|[INFO]|3| "},
    {6, "EVT_CODE_LD_CACHE_MODE_CHANGE|[INFO]|3| "},
    {7, "EVT_CODE_LD_FIXED|[INFO]|3| "},
    {8, "EVT_CODE_LD_FOUND_ERROR|[INFO]|3| "},
    {9, "EVT_CODE_LD_IMPORTED|[INFO]|3|40"},
    {20, "EVT_CODE_LD_CHECK_START|[INFO]|3| "},
    {21, "EVT_CODE_LD_CHECK_RESTART|[INFO]|3| "},
    {22, "EVT_CODE_LD_CHECK_PAUSE|[INFO]|3| "},
    {23, "EVT_CODE_LD_CHECK_RESUME|[INFO]|3| "},
    {24, "EVT_CODE_LD_CHECK_ABORT|[INFO]|3| "},
    {25, "EVT_CODE_LD_CHECK_COMPLETE|[INFO]|3| "},
    {26, "EVT_CODE_LD_CHECK_PROGRESS|[INFO]|3|40"},
    {27, "EVT_CODE_LD_CHECK_ERROR|[INFO]|3| "},
    {28, "EVT_CODE_LD_CHECK_AUTO_PAUSED|[INFO]|3| "},
    {29, "EVT_CODE_LD_CHECK_AUTO_RESUME|[INFO]|3| "},
    {30, "EVT_CODE_LD_FIX_START|[INFO]|3| "},
    {31, "EVT_CODE_LD_FIX_RESTART|[INFO]|3| "},
    {32, "EVT_CODE_LD_FIX_PAUSE|[INFO]|3| "},
    {33, "EVT_CODE_LD_FIX_RESUME|[INFO]|3| "},
    {34, "EVT_CODE_LD_FIX_ABORT|[INFO]|3| "},
    {35, "EVT_CODE_LD_FIX_COMPLETE|[INFO]|3| "},
    {36, "EVT_CODE_LD_FIX_PROGRESS|[INFO]|3|40"},
    {37, "EVT_CODE_LD_FIX_ERROR|[INFO]|3| "},
    {38, "EVT_CODE_LD_FIX_AUTO_PAUSED|[INFO]|3| "},
    {39, "EVT_CODE_LD_FIX_AUTO_RESUME|[INFO]|3| "},
    {40, "EVT_CODE_LD_INIT_QUICK_START|[INFO]|3| "},
    {41, "EVT_CODE_LD_INIT_QUICK_RESTART|[INFO]|3| "},
    {42, "EVT_CODE_LD_INIT_QUICK_PAUSE|[INFO]|3| "},
    {43, "EVT_CODE_LD_INIT_QUICK_RESUME|[INFO]|3| "},
    {44, "EVT_CODE_LD_INIT_QUICK_ABORT|[INFO]|3| "},
    {45, "EVT_CODE_LD_INIT_QUICK_COMPLETE|[INFO]|3| "},
    {46, "EVT_CODE_LD_INIT_QUICK_PROGRESS|[INFO]|3|40"},
    {47, "EVT_CODE_LD_INIT_QUICK_ERROR|[INFO]|3| "},
    {48, "EVT_CODE_LD_INIT_QUICK_AUTO_PAUSED|[INFO]|3| "},
    {49, "EVT_CODE_LD_INIT_QUICK_AUTO_RESUME|[INFO]|3| "},
    {50, "EVT_CODE_LD_INIT_BACK_START|[INFO]|3| "},
    {51, "EVT_CODE_LD_INIT_BACK_RESTART|[INFO]|3| "},
    {52, "EVT_CODE_LD_INIT_BACK_PAUSE|[INFO]|3| "},
    {53, "EVT_CODE_LD_INIT_BACK_RESUME|[INFO]|3| "},
    {54, "EVT_CODE_LD_INIT_BACK_ABORT|[INFO]|3| "},
    {55, "EVT_CODE_LD_INIT_BACK_COMPLETE|[INFO]|3| "},
    {56, "EVT_CODE_LD_INIT_BACK_PROGRESS|[INFO]|3|40"},
    {57, "EVT_CODE_LD_INIT_BACK_ERROR|[INFO]|3| "},
    {58, "EVT_CODE_LD_INIT_BACK_AUTO_PAUSED|[INFO]|3| "},
    {59, "EVT_CODE_LD_INIT_BACK_AUTO_RESUME|[INFO]|3| "},
    {60, "EVT_CODE_LD_INIT_FORE_START|[INFO]|3| "},
    {61, "EVT_CODE_LD_INIT_FORE_RESTART|[INFO]|3| "},
    {62, "EVT_CODE_LD_INIT_FORE_PAUSE|[INFO]|3| "},
    {63, "EVT_CODE_LD_INIT_FORE_RESUME|[INFO]|3| "},
    {64, "EVT_CODE_LD_INIT_FORE_ABORT|[INFO]|3| "},
    {65, "EVT_CODE_LD_INIT_FORE_COMPLETE|[INFO]|3| "},
    {66, "EVT_CODE_LD_INIT_FORE_PROGRESS|[INFO]|3|40"},
    {67, "EVT_CODE_LD_INIT_FORE_ERROR|[INFO]|3| "},
    {68, "EVT_CODE_LD_INIT_FORE_AUTO_PAUSED|[INFO]|3| "},
    {69, "EVT_CODE_LD_INIT_FORE_AUTO_RESUME|[INFO]|3| "},
    {70, "EVT_CODE_LD_REBUILD_START|[INFO]|3| "},
    {71, "EVT_CODE_LD_REBUILD_RESTART|[INFO]|3| "},
    {72, "EVT_CODE_LD_REBUILD_PAUSE|[INFO]|3| "},
    {73, "EVT_CODE_LD_REBUILD_RESUME|[INFO]|3| "},
    {74, "EVT_CODE_LD_REBUILD_ABORT|[INFO]|3| "},
    {75, "EVT_CODE_LD_REBUILD_COMPLETE|[INFO]|3| "},
    {76, "EVT_CODE_LD_REBUILD_PROGRESS|[INFO]|3|40 "},
    {77, "EVT_CODE_LD_REBUILD_ERROR|[INFO]|3| "},
    {78, "EVT_CODE_LD_REBUILD_AUTO_PAUSED|[INFO]|3| "},
    {79, "EVT_CODE_LD_REBUILD_AUTO_RESUME|[INFO]|3| "},
    {80, "EVT_CODE_LD_MIGRATION_START|[INFO]|3| "},
    {81, "EVT_CODE_LD_MIGRATION_RESTART|[INFO]|3| "},
    {82, "EVT_CODE_LD_MIGRATION_PAUSE|[INFO]|3| "},
    {83, "EVT_CODE_LD_MIGRATION_RESUME|[INFO]|3| "},
    {84, "EVT_CODE_LD_MIGRATION_ABORT|[INFO]|3| "},
    {85, "EVT_CODE_LD_MIGRATION_COMPLETE|[INFO]|3| "},
    {86, "EVT_CODE_LD_MIGRATION_PROGRESS|[INFO]|3|40"},
    {87, "EVT_CODE_LD_MIGRATION_ERROR|[INFO]|3| "},
    {88, "EVT_CODE_LD_MIGRATION_AUTO_PAUSED|[INFO]|3| "},
    {89, "EVT_CODE_LD_MIGRATION_AUTO_RESUME|[INFO]|3| "},
    {90, "EVT_CODE_LD_COPYBACK_START|[INFO]|3| "},
    {91, "EVT_CODE_LD_COPYBACK_RESTART|[INFO]|3| "},
    {92, "EVT_CODE_LD_COPYBACK_PAUSE|[INFO]|3| "},
    {93, "EVT_CODE_LD_COPYBACK_RESUME|[INFO]|3| "},
    {94, "EVT_CODE_LD_COPYBACK_ABORT|[INFO]|3| "},
    {95, "EVT_CODE_LD_COPYBACK_COMPLETE|[INFO]|3| "},
    {96, "EVT_CODE_LD_COPYBACK_PROGRESS|[INFO]|3|40"},
    {97, "EVT_CODE_LD_COPYBACK_ERROR|[INFO]|3| "},
    {98, "EVT_CODE_LD_COPYBACK_AUTO_PAUSED|[INFO]|3| "},
    {99, "EVT_CODE_LD_COPYBACK_AUTO_RESUME|[INFO]|3| "},
    {100, "EVT_CODE_LD_INCONSISTENT_LBA|[INFO]|3|0000002800000abc "},
};

constexpr Rendering kHardDiskTexts[] = {
    {0, "EVT_CODE_HD_OFFLINE|[INFO]|3| "},
    {1, "EVT_CODE_HD_ONLINE|[INFO]|3| "},
    {2, "EVT_CODE_HD_SETDOWN|[INFO]|3| "},
    {3, "EVT_CODE_HD_TIMEOUT|[INFO]|3| "},
    {4, "EVT_CODE_HD_RW_ERROR|[INFO]|3| "},
    {5, "EVT_CODE_HD_SMART|[INFO]|3| "},
    {6, "EVT_CODE_HD_ERROR_FIXED|[INFO]|3| "},
    {9, "EVT_CODE_HD_ASSIGN_SPARE|[INFO]|3| "},
    {10, "EVT_CODE_HD_REMOVE_SPARE|[INFO]|3| "},
    {11, "EVT_CODE_HD_SMART_THRESHOLD_OVER|[INFO]|3| "},
    {12, "EVT_CODE_HD_SMART_POLLING_FAIL|[INFO]|3| "},
    {13, "EVT_CODE_BAD_BLOCK_TBL_80_FULL|[INFO]|3| "},
    {14, "EVT_CODE_BAD_BLOCK_TBL_FULL|[INFO]|3| "},
    {15, "EVT_CODE_BAD_BLOCK_REASSIGNED|[INFO]|3| "},
    {16, "EVT_CODE_HD_CACHE_MODE_CHANGE|[INFO]|3| "},
    {17, "EVT_CODE_HD_MP_START|[INFO]|3| "},
    {18, "EVT_CODE_HD_MP_RESTART|[INFO]|3| "},
    {19, "EVT_CODE_HD_MP_PAUSE|[INFO]|3| "},
    {20, "EVT_CODE_HD_MP_RESUME|[INFO]|3| "},
    {21, "EVT_CODE_HD_MP_ABORT|[INFO]|3| "},
    {22, "EVT_CODE_HD_MP_COMPLETE|[INFO]|3| "},
    {23, "EVT_CODE_HD_MP_PROGRESS|[INFO]|3|40| "},
    {24, "EVT_CODE_HD_MP_ERROR|[INFO]|3| "},
    {25, "EVT_CODE_HD_MP_AUTO_PAUSED|[INFO]|3| "},
    {26, "EVT_CODE_HD_MP_AUTO_RESUME|[INFO]|3| "},
    {36, "EVT_CODE_HD_SC_ERROR|[INFO]|3|28|00000abc|00000007|fffffffe| "},
    {37, "EVT_CODE_HD_RCT_ADD|[INFO]|3|00000028|00000abc|7|fffffffe "},
    {38, "EVT_CODE_HD_RCT_REMOVE|[INFO]|3|00000028|00000abc|7|fffffffe "},
    {54, "EVT_CODE_HD_SETFREE|[INFO]|3| "},
};

constexpr Rendering kExpanderTexts[] = {
    {0, "EVT_CODE_EXPANDER_PLUG_IN|[INFO]|3| "},
    {1, "EVT_CODE_EXPANDER_PLUG_OUT|[INFO]|3| "},
};

constexpr Rendering kBatteryTexts[] = {
    {0, "EVT_CODE_BAT_PRESENT|[INFO]| "},
    {1, "EVT_CODE_BAT_NOT_PRESENT|[INFO]| "},
    {2, "EVT_CODE_BAT_NEW_BAT_DETECTED|[INFO]| "},
    {3, "EVT_CODE_BAT_NEED_REPLACE|[INFO]| "},
    {4, "EVT_CODE_BAT_REPLACED|[INFO]| "},
    {5, "EVT_CODE_BAT_REMOVED|[INFO]| "},
    {6, "EVT_CODE_BAT_RELEARN_STARTED|[INFO]| "},
    {7, "EVT_CODE_BAT_RELEARN_IN_PGRS|[INFO]| "},
    {8, "EVT_CODE_BAT_RELEARN_COMPLETED|[INFO]| "},
    {9, "EVT_CODE_BAT_RELEARN_TIMED_OUT|[INFO]| "},
    {10, "EVT_CODE_BAT_RELEARN_PENDING|[INFO]| "},
    {11, "EVT_CODE_BAT_RELEARN_POSTPONED|[INFO]| "},
    {12, "EVT_CODE_BAT_START_IN_4_DAYS|[INFO]| "},
    {13, "EVT_CODE_BAT_START_IN_2_DAYS|[INFO]| "},
    {14, "EVT_CODE_BAT_START_IN_1_DAY|[INFO]| "},
    {15, "EVT_CODE_BAT_START_IN_5_HOURS|[INFO]| "},
    {16, "EVT_CODE_BAT_DISCHARGING|[INFO]| "},
    {17, "EVT_CODE_BAT_STARTED_CHARGING|[INFO]| "},
    {18, "EVT_CODE_BAT_CHARGE_CMPLT|[INFO]| "},
    {19, "EVT_CODE_BAT_CHARGER_PROBLEM_DETECTED|[INFO]| "},
    {20, "EVT_CODE_BAT_CAPACITY_BELOW_THRESHOLD|[INFO]| "},
    {21, "EVT_CODE_BAT_CAPACITY_ABOVE_THRESHOLD|[INFO]| "},
    {22, "EVT_CODE_BAT_TEMP_IS_LOW|[INFO]| "},
    {23, "EVT_CODE_BAT_TEMP_IS_NORMAL|[INFO]| "},
    {24, "EVT_CODE_BAT_TEMP_IS_HIGH|[INFO]| "},
    {25, "EVT_CODE_BAT_VOLTAGE_LOW|[INFO]| "},
    {26, "EVT_CODE_BAT_VOLTAGE_NORMAL|[INFO]| "},
    {27, "EVT_CODE_BAT_VOLTAGE_HIGH|[INFO]| "},
    {28, "EVT_CODE_BAT_FORCE_WRITE_THROUGH|[INFO]| "},
    {29, "EVT_CODE_BAT_SAFE_TO_USE_WRITE_BACK|[INFO]| "},
};

constexpr Rendering kMiscTexts[] = {
    {1, "EVT_CODE_MISC_CHANGE_BACK_ACTIVITY_RATE|[INFO]|40| "},
    {5, "EVT_CODE_MISC_MUTLI_BIT_ECC_ERR|[INFO]|40|ABC|7 "},
    {6, "EVT_CODE_MISC_SINGLE_BIT_ECC_ERR|[INFO]|40| "},
    {7, "EVT_CODE_MISC_GET_SHUTDOWN_CMD|[INFO]| | "},
    {16, "EVT_CODE_MISC_PD_MISSING_FROM_CONFIG_AT_BOOT|[INFO]|3| "},
    {17, "EVT_CODE_MISC_VD_MISSING_DRIVES|[INFO]|3| "},
    {18, "EVT_CODE_MISC_VD_MISSING_AT_BOOT|[INFO]|3| "},
    {19, "EVT_CODE_MISC_PREVIOUS_CONFIG_MISSING_AT_BOOT|[INFO]| | "},
    {20, "EVT_CODE_MISC_PD_TOO_SMALL_FOR_AUTOREBUILD|[INFO]|3| "},
    {21, "EVT_CODE_MISC_PD_TOO_SMALL_FOR_COPYBACK|[INFO]|3| "},
    {22, "EVT_CODE_MISC_CHANGE_SYNC_RATE|[INFO]|40| "},
    {23, "EVT_CODE_MISC_CHANGE_INIT_RATE|[INFO]|40| "},
    {24, "EVT_CODE_MISC_CHANGE_REBUILD_RATE|[INFO]|40| "},
    {25, "EVT_CODE_MISC_CHANGE_MIGRATION_RATE|[INFO]|40| "},
    {26, "EVT_CODE_MISC_CHANGE_COPYBACK_RATE|[INFO]|40| "},
    {27, "EVT_CODE_MISC_CHANGE_MP_RATE|[INFO]|40| "},
};

constexpr Rendering kDiskGroupTexts[] = {
    {0, "EVT_CODE_ARRAY_CREATE|[INFO]|3| "},
    {1, "EVT_CODE_ARRAY_DELETE|[INFO]|3| "},
};

TEST(EventText, AdapterEventsCarrySeverityAndAdapter) { ExpectMessages(0, kAdapterTexts); }
TEST(EventText, VirtualDiskEventsCarrySeverityDeviceAndProgress) {
    ExpectMessages(1, kVirtualDiskTexts);
}
TEST(EventText, HardDiskEventsCarrySeverityDeviceAndParameters) {
    ExpectMessages(2, kHardDiskTexts);
}
TEST(EventText, ExpanderEventsCarrySeverityAndDevice) { ExpectMessages(4, kExpanderTexts); }
TEST(EventText, BatteryEventsCarryTheSeverityOnly) { ExpectMessages(9, kBatteryTexts); }
TEST(EventText, MiscEventsCarryTheParameterOrTheDevice) { ExpectMessages(12, kMiscTexts); }
TEST(EventText, DiskGroupEventsCarrySeverityAndDevice) { ExpectMessages(13, kDiskGroupTexts); }

TEST(EventText, UnlistedCodesOfAnAdapterAreUnknown) {
    ExpectUnknown(0, kAdapterTexts, {9}, "EVT_Unknown_Adpt| |#|3");
}
TEST(EventText, UnlistedCodesOfAVirtualDiskAreUnknown) {
    ExpectUnknown(1, kVirtualDiskTexts, {}, "EVT_Unknown_LD| |#|3");
}
TEST(EventText, UnlistedCodesOfAHardDiskAreUnknown) {
    ExpectUnknown(2, kHardDiskTexts, {}, "EVT_Unknown_HD| |#|3");
}
TEST(EventText, UnlistedCodesOfAnExpanderAreUnknownWithoutADevice) {
    ExpectUnknown(4, kExpanderTexts, {}, "EVT_Unknown_EXPANDER| |#| ");
}
TEST(EventText, UnlistedCodesOfABatteryAreUnknownWithoutADevice) {
    ExpectUnknown(9, kBatteryTexts, {}, "EVT_Unknown_BAT| |#| ");
}
TEST(EventText, UnlistedMiscCodesAreUnknown) {
    ExpectUnknown(12, kMiscTexts, {}, "EVT_Unknown_MISC| |#|3");
}
TEST(EventText, UnlistedCodesOfADiskGroupHaveNoMessage) {
    ExpectUnknown(13, kDiskGroupTexts, {}, "");
}
TEST(EventText, SasEventsAreAlwaysUnknown) { ExpectUnknown(7, kNone, {}, "EVT_Unknown_SAS| |#|3"); }
TEST(EventText, EnclosureEventsAreAlwaysUnknown) {
    ExpectUnknown(8, kNone, {}, "EVT_Unknown_ENCL| |#|3");
}
TEST(EventText, FlashEventsAreAlwaysUnknown) {
    ExpectUnknown(10, kNone, {}, "EVT_Unknown_FLASH| |#|3");
}
TEST(EventText, CacheEventsAreAlwaysUnknown) {
    ExpectUnknown(11, kNone, {}, "EVT_Unknown_CACHE| |#|3");
}
TEST(EventText, PortMultiplierEventsHaveNoMessage) { ExpectUnknown(3, kNone, {}, ""); }
TEST(EventText, MetadataEventsHaveNoMessage) { ExpectUnknown(5, kNone, {}, ""); }
TEST(EventText, BadSectorEventsHaveNoMessage) { ExpectUnknown(6, kNone, {}, ""); }

TEST(EventText, WithoutAMessageTheTimeAndOneBlankRemain) {
    EXPECT_EQ("Thu Jan  1 00:00:00 1970 \n", TextOf(SampleEvent(5, 0)));
}
TEST(EventText, OtherClassesTellClassAndAdapter) {
    EXPECT_EQ("EVT_Unknown| |20|1", MessageOf(SampleEvent(20, 7)));
    EXPECT_EQ("EVT_Unknown| |14|1", MessageOf(SampleEvent(14, 0)));
    EXPECT_EQ("EVT_Unknown| |65535|1", MessageOf(SampleEvent(65535, 65535)));
}
TEST(EventText, OfAVirtualDiskCreatedIsOneLine) {
    EXPECT_EQ("Thu Jan  1 00:00:00 1970 EVT_CODE_LD_CREATE|[INFO]|3| \n",
              TextOf(SampleEvent(1, 2)));
}

TEST(EventText, SeverityIsNamed) {
    const char* const names[] = {"[UNKNOWN]", "[OTHER]", "[INFO]",     "[WARNING]",
                                 "[MINOR]",   "[MAJOR]", "[CRITICAL]", "[FATAL]"};
    Event event = SampleEvent(13, 0);
    for (HX_U8 severity = 0; severity < 8; ++severity) {
        event.Severity = severity;
        EXPECT_EQ(std::string("EVT_CODE_ARRAY_CREATE|") + names[severity] + "|3| ",
                  MessageOf(event));
    }
}
TEST(EventText, SeverityFromEightOnIsUnknown) {
    Event event = SampleEvent(13, 0);
    for (const HX_U8 severity : {HX_U8{8}, HX_U8{9}, HX_U8{128}, HX_U8{255}}) {
        event.Severity = severity;
        EXPECT_EQ("EVT_CODE_ARRAY_CREATE|[UNKNOWN]|3| ", MessageOf(event));
    }
}

TEST(EventText, ParametersInDecimalAreSigned) {
    Event event = SampleEvent(2, 23);
    event.Params[0] = 0xFFFFFFFF;
    EXPECT_EQ("EVT_CODE_HD_MP_PROGRESS|[INFO]|3|-1| ", MessageOf(event));
    event.Params[0] = 0x80000000;
    EXPECT_EQ("EVT_CODE_HD_MP_PROGRESS|[INFO]|3|-2147483648| ", MessageOf(event));
    event.Params[0] = 2147483647;
    EXPECT_EQ("EVT_CODE_HD_MP_PROGRESS|[INFO]|3|2147483647| ", MessageOf(event));
}
TEST(EventText, SequenceNumberOfAnErrorIsSigned) {
    Event event = SampleEvent(0, 65535);
    event.SequenceNo = 0xFFFFFFF0;
    event.Params[2] = 1234567;
    EXPECT_EQ("EVT_CODE_EVT_ERR|[INFO]|-16|1234567| ", MessageOf(event));
}
TEST(EventText, DeviceAndAdapterNumbersAreUnsigned) {
    Event event = SampleEvent(1, 0);
    event.DeviceID = 65535;
    EXPECT_EQ("EVT_CODE_LD_OFFLINE|[INFO]|65535| ", MessageOf(event));
    event = SampleEvent(0, 0);
    event.AdapterID = 255;
    EXPECT_EQ("EVT_CODE_SMART_FROM_OFF_TO_ON|[INFO]|255| ", MessageOf(event));
}
TEST(EventText, HexadecimalWithoutWidthHasNoLeadingZeros) {
    Event event = SampleEvent(2, 36);
    event.Params[0] = 0;
    EXPECT_EQ("EVT_CODE_HD_SC_ERROR|[INFO]|3|0|00000abc|00000007|fffffffe| ", MessageOf(event));
    event.Params[0] = 0x90abcdef;
    EXPECT_EQ("EVT_CODE_HD_SC_ERROR|[INFO]|3|90abcdef|00000abc|00000007|fffffffe| ",
              MessageOf(event));
}
TEST(EventText, EccErrorIsInUpperCaseHexadecimal) {
    Event event = SampleEvent(12, 5);
    event.Params[1] = 0x9A0BCDEF;
    EXPECT_EQ("EVT_CODE_MISC_MUTLI_BIT_ECC_ERR|[INFO]|40|9A0BCDEF|7 ", MessageOf(event));
    event.Params[1] = 0;
    EXPECT_EQ("EVT_CODE_MISC_MUTLI_BIT_ECC_ERR|[INFO]|40|0|7 ", MessageOf(event));
}
TEST(EventText, InconsistentBlockBelowTwoToThe32IsShort) {
    Event event = SampleEvent(1, 100);
    event.Params[0] = 0;
    EXPECT_EQ("EVT_CODE_LD_INCONSISTENT_LBA|[INFO]|3|00000abc ", MessageOf(event));
}

// ---- The adapter-found event ------------------------------------------------------------------

class AdapterFound : public testing::Test {
protected:
    AdapterFound() { SetZone("UTC0"); }
    ~AdapterFound() override { SetZone("UTC0"); }

    static void SetZone(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    static Event Found(HX_U8 sense_length, const std::string& sense) {
        Event event = SampleEvent(0, 9);
        event.SenseDataLength = sense_length;
        std::memcpy(event.SenseData, sense.data(), sense.size());
        return event;
    }
};

TEST_F(AdapterFound, CarriesItsSerialNumber) {
    EXPECT_EQ("EVT_CODE_ADAPTER_FOUND|[INFO]|1|SN-0815| ", MessageOf(Found(7, "SN-0815")));
}
TEST_F(AdapterFound, WithoutSenseDataHasNoSerialNumber) {
    EXPECT_EQ("EVT_CODE_ADAPTER_FOUND_NO_SERIAL|[INFO]|1| ", MessageOf(Found(0, "SN-0815")));
}
TEST_F(AdapterFound, WithAnEmptySerialNumberKeepsItsPlace) {
    EXPECT_EQ("EVT_CODE_ADAPTER_FOUND|[INFO]|1|| ", MessageOf(Found(1, "")));
}
TEST_F(AdapterFound, SerialNumberEndsAtItsNulWhateverTheLength) {
    EXPECT_EQ("EVT_CODE_ADAPTER_FOUND|[INFO]|1|ABCDEF| ", MessageOf(Found(2, "ABCDEF")));
}
TEST_F(AdapterFound, UnterminatedSerialNumberStopsAtThirtyCharacters) {
    EXPECT_EQ("EVT_CODE_ADAPTER_FOUND|[INFO]|1|123456789012345678901234567890| ",
              MessageOf(Found(255, "123456789012345678901234567890")));
}
TEST_F(AdapterFound, IsDatedInLocalTime) {
    SetZone("EST5EDT,M3.2.0,M11.1.0");
    Event event = Found(0, "");
    event.TimeStamp = 1700000000;  // 22:13:20 UTC, in winter
    EXPECT_EQ("Tue Nov 14 17:13:20 2023 EVT_CODE_ADAPTER_FOUND_NO_SERIAL|[INFO]|1| \n",
              TextOf(event));
    event.TimeStamp = 1689372800;  // 22:13:20 UTC, in summer
    EXPECT_EQ("Fri Jul 14 18:13:20 2023 EVT_CODE_ADAPTER_FOUND_NO_SERIAL|[INFO]|1| \n",
              TextOf(event));
}
// As a process finds it that has run since before the host's zone was set.
TEST_F(AdapterFound, IsDatedInTheZoneThatIsSetWhileTheProcessRuns) {
    SetZone("EST5");
    EXPECT_EQ("Wed Dec 31 19:00:00 1969 EVT_CODE_ADAPTER_FOUND_NO_SERIAL|[INFO]|1| \n",
              TextOf(Found(0, "")));
    setenv("TZ", "JST-9", 1);
    EXPECT_EQ("Thu Jan  1 09:00:00 1970 EVT_CODE_ADAPTER_FOUND_NO_SERIAL|[INFO]|1| \n",
              TextOf(Found(0, "")));
}
TEST_F(AdapterFound, CanBeDatedBefore1970) {
    SetZone("WEST12");
    EXPECT_EQ("Wed Dec 31 12:00:00 1969 EVT_CODE_ADAPTER_FOUND_NO_SERIAL|[INFO]|1| \n",
              TextOf(Found(0, "")));
}
TEST_F(AdapterFound, IsDatedTheSameOnBothWordSizesFrom2038On) {
    SetZone("EST5");
    Event event = Found(0, "");
    event.TimeStamp = 0x80000000;
    EXPECT_EQ("Mon Jan 18 22:14:08 2038 EVT_CODE_ADAPTER_FOUND_NO_SERIAL|[INFO]|1| \n",
              TextOf(event));
}
TEST_F(AdapterFound, AloneFollowsTheTimeZone) {
    SetZone("EST5");
    EXPECT_EQ("Thu Jan  1 00:00:00 1970 EVT_CODE_ALARM_TURN_ON|[INFO]|1| \n",
              TextOf(SampleEvent(0, 2)));
    EXPECT_EQ("Thu Jan  1 00:00:00 1970 EVT_CODE_LD_IMPORTED|[INFO]|3|40\n",
              TextOf(SampleEvent(1, 9)));
}

// ---- Time --------------------------------------------------------------------------------------

std::string TimeOf(std::uint32_t seconds) {
    Event event{};
    event.Class = 5;
    event.TimeStamp = seconds;
    return TextOf(event);
}

TEST(EventTime, IsAsctimeInUtc) {
    EXPECT_EQ("Thu Jan  1 00:00:00 1970 \n", TimeOf(0));
    EXPECT_EQ("Tue Feb 29 23:59:59 2000 \n", TimeOf(951868799));
    EXPECT_EQ("Wed Mar  1 00:00:00 2000 \n", TimeOf(951868800));
    EXPECT_EQ("Tue Jan 19 03:14:07 2038 \n", TimeOf(0x7FFFFFFF));
    EXPECT_EQ("Tue Jan 19 03:14:08 2038 \n", TimeOf(0x80000000));
    EXPECT_EQ("Sun Feb 28 23:59:59 2100 \n", TimeOf(4107542399));
    EXPECT_EQ("Mon Mar  1 00:00:00 2100 \n", TimeOf(4107542400));
    EXPECT_EQ("Sun Feb  7 06:28:15 2106 \n", TimeOf(0xFFFFFFFF));
}

// What the platform gives, with the blank that stands behind the time.
std::string PlatformTime(std::uint32_t seconds) {
    const std::time_t time = seconds;
    std::tm utc;
    char text[64];
    std::string line = asctime_r(gmtime_r(&time, &utc), text);
    return line.insert(line.size() - 1, " ");
}

TEST(EventTime, AgreesWithThePlatformOnEveryDay) {
    for (std::uint64_t day = 0; day * 86400 <= UINT32_MAX; ++day) {
        const auto first = static_cast<std::uint32_t>(day * 86400);
        ASSERT_EQ(PlatformTime(first), TimeOf(first));
        if (first > 0) {
            ASSERT_EQ(PlatformTime(first - 1), TimeOf(first - 1));
        }
    }
}
TEST(EventTime, AgreesWithThePlatformOnEverySecondOfADay) {
    for (std::uint32_t second = 0; second < 86400; ++second) {
        ASSERT_EQ(PlatformTime(1700000000 + second), TimeOf(1700000000 + second));
    }
}
TEST(EventTime, ThatNoCalendarHoldsHasAFixedText) {
    char text[24];
    EXPECT_EQ(text + 24, PutTimeText(text, nullptr));
    EXPECT_EQ("??? ??? ?? ??:??:?? ????", std::string(text, 24));
}
TEST(EventTime, BeyondTheYear9999HasAFixedText) {
    std::tm time{};
    time.tm_year = 10000 - 1900;
    char text[24];
    PutTimeText(text, &time);
    EXPECT_EQ("??? ??? ?? ??:??:?? ????", std::string(text, 24));
}

// ---- Bounds -------------------------------------------------------------------------------------

// Events of every listed kind, as long as they can get.
TEST(EventText, NeverTouchesMoreThanItPromises) {
    Event event;
    std::memset(&event, 0xFF, sizeof event);
    event.Severity = 6;
    const auto check = [&](int event_class, int code) {
        event.Class = static_cast<HX_U16>(event_class);
        event.Code = static_cast<HX_U16>(code);
        for (const HX_U32 number : {0x80000000u, 0xFFFFFFFFu}) {
            std::fill_n(event.Params, 4, number);
            event.SequenceNo = number;
            std::array<char, 512> text;
            text.fill('#');
            VX_HX_EVT_Sprintf(&event, text.data());
            for (std::size_t i = kLongestEventText; i < text.size(); ++i) {
                ASSERT_EQ('#', text[i]) << "class " << event_class << " code " << code;
            }
        }
    };
    for (int event_class = 0; event_class < 16; ++event_class) {
        for (int code = 0; code < 130; ++code) check(event_class, code);
        check(event_class, 65535);
    }
}

// Whatever a controller delivers renders as one line that ends where its length says.
TEST(EventText, OfRandomBytesIsATerminatedText) {
    std::mt19937 random(1);
    for (int round = 0; round < 200000; ++round) {
        Event event;
        std::uint32_t words[sizeof event / 4];
        for (std::uint32_t& word : words) word = static_cast<std::uint32_t>(random());
        std::memcpy(&event, words, sizeof event);
        event.Class %= 16;
        event.Code %= 128;
        const std::string text = TextOf(event);
        ASSERT_LT(text.size(), kLongestEventText);
        ASSERT_EQ('\n', text.back());
    }
}

}  // namespace
