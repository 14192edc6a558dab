#include "common/timestamp.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include "tools/common/usage_message.h"

namespace {

using vexortools::Duration;
using vexortools::ParseDurationOrTime;
using vexortools::ParseTime;
using vexortools::Timestamp;
using vexortools::TimeText;

// Sets the zone of the process, and puts the former one back.
class Zone {
public:
    explicit Zone(const char* name) {
        const char* const former = getenv("TZ");
        if (former != nullptr) former_ = former;
        was_set_ = former != nullptr;
        Set(name);
    }
    ~Zone() { Set(was_set_ ? former_.c_str() : nullptr); }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

private:
    static void Set(const char* name) {
        if (name == nullptr) {
            unsetenv("TZ");
        } else {
            setenv("TZ", name, 1);
        }
        tzset();
    }

    std::string former_;
    bool was_set_ = false;
};

// Central Europe by its rules, so that no files of zones are needed.
constexpr char kBerlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";

std::int64_t Milliseconds(const char* text) { return ParseTime(text).time_since_epoch().count(); }

struct WrittenTime {
    const char* text;
    std::int64_t milliseconds;
};

TEST(Time, IsReadWithItsOffset) {
    const Zone zone("XYZ-5");  // nothing of it
    constexpr WrittenTime kTimes[] = {
        {"1970-01-01T00:00:00Z", 0},
        {"2026-11-21T05:10:44+00:00", 1795237844000},
        {"2026-11-21T05:10:44Z", 1795237844000},
        {"2026-11-21T05:10:44z", 1795237844000},
        {"2026-11-21t05:10:44z", 1795237844000},
        {"2026-11-21 05:10:44 UTC", 1795237844000},
        {"2026-11-21T06:10:44+01:00", 1795237844000},
        {"2026-11-21T06:10:44+0100", 1795237844000},
        {"2026-11-21T06:10:44+01", 1795237844000},
        {"2026-11-20T23:40:44-05:30", 1795237844000},
        {"2026-11-21 06:10:44 +0100", 1795237844000},
        {"2026-11-21T05:10Z", 1795237800000},
        {"2026-11-21T05:10:44.5Z", 1795237844500},
        {"2026-11-21T05:10:44,123456789+00:00", 1795237844123},
        {"1969-12-31T23:59:59Z", -1000},
        {"0000-01-01T00:00:00Z", -62167219200000},
        {"9999-12-31T23:59:59Z", 253402300799000},
        {"2024-02-29T00:00:00Z", 1709164800000},
        {"2000-02-29T00:00:00Z", 951782400000},
        {"2026-1-2T3:4:5Z", 1767323045000},
    };
    for (const WrittenTime& row : kTimes)
        EXPECT_EQ(Milliseconds(row.text), row.milliseconds) << row.text;
}

TEST(Time, IsLocalWithoutAnOffset) {
    const Zone zone(kBerlin);
    EXPECT_EQ(Milliseconds("2026-01-31"), 1769814000000);
    EXPECT_EQ(Milliseconds("2026-01-31T12:00:00"), 1769857200000);
    EXPECT_EQ(Milliseconds("2026-01-31 12:00"), 1769857200000);
    EXPECT_EQ(Milliseconds("2026-07-31T12:00:00.25"), 1785492000250);
    EXPECT_EQ(Milliseconds("1970-01-01T00:59:59"), -1000);
}

TEST(Time, ThatTheClocksSkippedIsRefused) {
    const Zone zone(kBerlin);
    EXPECT_EQ(UsageMessage([] { ParseTime("2026-03-29T02:30:00"); }),
              "\"2026-03-29T02:30:00\" is no time: the clocks of the local time zone skipped it; "
              "write another, or one with an offset");
    EXPECT_EQ(Milliseconds("2026-03-29T01:59:59"), 1774745999000);
    EXPECT_EQ(Milliseconds("2026-03-29T03:00:00"), 1774746000000);
    EXPECT_EQ(Milliseconds("2026-03-29T02:30:00Z"), 1774751400000);
}

TEST(Time, ThatDoesNotExistIsRefusedWithItsReason) {
    struct Impossible {
        const char* text;
        const char* reason;
    };
    constexpr Impossible kTimes[] = {
        {"2026-13-45", "there is no month 13"},
        {"2026-00-10", "there is no month 0"},
        {"2026-02-30", "there is no day 30 in month 2 of 2026, which has 28 days"},
        {"2026-02-29T12:00:00Z", "there is no day 29 in month 2 of 2026, which has 28 days"},
        {"1900-02-29", "there is no day 29 in month 2 of 1900, which has 28 days"},
        {"2024-02-30", "there is no day 30 in month 2 of 2024, which has 29 days"},
        {"2026-04-31", "there is no day 31 in month 4 of 2026, which has 30 days"},
        {"2026-01-00", "there is no day 0 in month 1 of 2026, which has 31 days"},
        {"2026-01-31T24:00:00", "there is no hour 24; the last is 23"},
        {"2026-01-31T12:60", "there is no minute 60; the last is 59"},
        {"2026-01-31T12:00:60Z", "there is no second 60; the last is 59"},
        {"2026-01-31T12:00:00+01:60", "there is no minute 60; the last is 59"},
        {"2026-01-31T12:00:00-25:00", "no zone is more than 24 hours from UTC"},
    };
    for (const Impossible& row : kTimes) {
        EXPECT_EQ(UsageMessage([&] { ParseTime(row.text); }),
                  "\"" + std::string(row.text) + "\" is no time: " + row.reason);
    }
}

TEST(Time, IsRefusedWithExamplesWhenItIsNone) {
    for (const char* const text : {"",
                                   "now",
                                   "2026",
                                   "2026-01",
                                   "2026-01-31T",
                                   "2026-01-31T12",
                                   "2026-01-31T12:",
                                   "2026-01-31T12:00:",
                                   "2026-01-31T12:00:00.",
                                   "2026-01-31T12:00:00+",
                                   "2026-01-31Z",
                                   "2026-01-31T12:00:00+1",
                                   "2026-01-31T12:00:00+010",
                                   "2026-01-31T12:00:00+01:",
                                   "2026-01-31T12:00:00ZZ",
                                   "2026-01-31T12:00:00 ",
                                   "2026-01-31X12:00:00",
                                   "26-01-31",
                                   "02026-01-31",
                                   "2026/01/31",
                                   "20260131T120000Z",
                                   " 2026-01-31",
                                   "-2026-01-31",
                                   "2026-001-31",
                                   "2026-01-31T12:00:00 CET"}) {
        EXPECT_EQ(UsageMessage([&] { ParseTime(text); }),
                  "\"" + std::string(text) +
                      "\" is no time; write one such as 2026-01-31, 2026-01-31T12:00:00 (local "
                      "time), 2026-01-31T12:00:00Z or 2026-01-31T12:00:00+01:00");
    }
}

TEST(Time, MayStandWhereADurationMayStand) {
    EXPECT_EQ(std::get<Duration>(ParseDurationOrTime("2h30m")), Duration(9000000));
    EXPECT_EQ(std::get<Duration>(ParseDurationOrTime("2026")), Duration(2026000));
    EXPECT_EQ(std::get<Timestamp>(ParseDurationOrTime("1970-01-01T00:00:01Z")),
              Timestamp(std::chrono::seconds(1)));
    EXPECT_EQ(UsageMessage([] { ParseDurationOrTime("2026-13-45"); }),
              "\"2026-13-45\" is no time: there is no month 13");
    EXPECT_EQ(UsageMessage([] { ParseDurationOrTime("soon"); }),
              "\"soon\" is neither a duration such as 2h30m, 90s or 1w nor a time such as "
              "2026-01-31 or 2026-01-31T12:00:00+01:00");
}

TEST(TimeText, HasItsZone) {
    const Zone zone(kBerlin);
    EXPECT_EQ(TimeText(1795237844, true), "2026-11-21T05:10:44Z");
    EXPECT_EQ(TimeText(1795237844, false), "2026-11-21T06:10:44+01:00");
    EXPECT_EQ(TimeText(0, false), "1970-01-01T01:00:00+01:00");
}

TEST(TimeText, CanBeReadAgainInEveryZone) {
    for (const char* const name : {"UTC", kBerlin, "NST3:30", "ABC-14", "XYZ-24", "XYZ24"}) {
        const Zone zone(name);
        for (const std::int64_t seconds :
             {std::int64_t{0}, std::int64_t{1795237844}, std::int64_t{253402000000}}) {
            for (const bool utc : {true, false}) {
                const std::string text = TimeText(seconds, utc);
                EXPECT_EQ(Milliseconds(text.c_str()), 1000 * seconds) << name << ' ' << text;
            }
        }
    }
}

TEST(TimeText, PastTheCalendarIsANumber) {
    EXPECT_EQ(TimeText(INT64_MAX, true), "9223372036854775807");
    EXPECT_EQ(TimeText(INT64_MAX, false), "9223372036854775807");
}

}  // namespace
