// The settings file: what is read, and what is refused with its line.
#include "service/hxs_settings.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "support/temporary_root.h"

namespace {

using hxservice::Missing;
using hxservice::ParseSettings;
using hxservice::ReadSettings;
using hxservice::Settings;
using hxservice::SettingsError;
using std::chrono::milliseconds;
using std::chrono::seconds;

std::string ComplaintAbout(const std::string& text) {
    try {
        ParseSettings(text, "f.conf");
        return "";
    } catch (const SettingsError& error) {
        return error.what();
    }
}

TEST(ServiceSettings, AreTheDefaultsInAnEmptyFile) {
    const Settings settings = ParseSettings("", "f.conf");
    EXPECT_EQ(settings.collect_interval, seconds(10));
    EXPECT_EQ(settings.collect_jitter, seconds(1));
    EXPECT_EQ(ParseSettings("[collect]\n", "f.conf"), settings);
}

TEST(ServiceSettings, AreReadFromTheirTables) {
    const Settings settings =
        ParseSettings("# often\n[collect]\ninterval = \"1m30s\"\njitter = \"250ms\"\n", "f.conf");
    EXPECT_EQ(settings.collect_interval, seconds(90));
    EXPECT_EQ(settings.collect_jitter, milliseconds(250));
}

TEST(ServiceSettings, NameTheLineAndTheNearestOfAnUnknownKey) {
    EXPECT_EQ(ComplaintAbout("[collect]\njitter = \"1s\"\nintervals = \"5s\"\n"),
              "f.conf:3: there is no key \"collect.intervals\"; did you mean "
              "\"collect.interval\"?");
    EXPECT_EQ(ComplaintAbout("verbose = true\n"), "f.conf:1: there is no key \"verbose\"");
    EXPECT_EQ(ComplaintAbout("\n[colect]\n"),
              "f.conf:2: there is no table \"colect\"; did you mean \"collect\"?");
}

TEST(ServiceSettings, RefuseAValueOfAnotherType) {
    for (const std::string value : {"10", "true", "1.5", "\"soon\"", "[\"10s\"]", "1979-05-27"}) {
        EXPECT_EQ(ComplaintAbout("[collect]\ninterval = " + value + "\n"),
                  "f.conf:2: \"collect.interval\" must be a duration in quotation marks, such as "
                  "\"10s\"");
    }
}

TEST(ServiceSettings, SayWhereMetricsGoButNotToBoth) {
    EXPECT_TRUE(ParseSettings("", "f.conf").metrics_textfile);
    EXPECT_EQ(ParseSettings("", "f.conf").metrics_listen, "");
    const Settings settings =
        ParseSettings("[metrics]\nlisten = \"127.0.0.1:9834\"\ntextfile = false\n", "f.conf");
    EXPECT_FALSE(settings.metrics_textfile);
    EXPECT_EQ(settings.metrics_listen, "127.0.0.1:9834");
    EXPECT_EQ(ComplaintAbout("[metrics]\nlisten = \"127.0.0.1:9834\"\n"),
              "f.conf:2: \"metrics.listen\" needs \"metrics.textfile\" = false: a Prometheus that "
              "asks for both would have every series twice");
    EXPECT_EQ(ComplaintAbout("[metrics]\ntextfile = \"no\"\n"),
              "f.conf:2: \"metrics.textfile\" must be true or false");
    EXPECT_EQ(ComplaintAbout("[metrics]\nlisten = 9834\n"),
              "f.conf:2: \"metrics.listen\" must be a text in quotation marks");
    EXPECT_EQ(ComplaintAbout("[metrics]\ntextfile = false\nlisten = \"0.0.0.0:9834\"\n"),
              "f.conf:3: \"metrics.listen\" must be an address of this machine alone with a port, "
              "such as \"127.0.0.1:9834\" or \"[::1]:9834\", or \"systemd\"");
}

TEST(ServiceSettings, RefuseAValueOutOfItsLimits) {
    EXPECT_EQ(ComplaintAbout("collect.interval = \"999ms\""),
              "f.conf:1: \"collect.interval\" must be from 1s to 1h");
    EXPECT_EQ(ComplaintAbout("collect.interval = \"1h1ms\""),
              "f.conf:1: \"collect.interval\" must be from 1s to 1h");
    EXPECT_EQ(ComplaintAbout("collect.interval = \"1s\""), "");
    EXPECT_EQ(ComplaintAbout("collect.interval = \"1h\""), "");
    EXPECT_EQ(ComplaintAbout("collect.jitter = \"0s\""), "");
}

TEST(ServiceSettings, TellEveryErrorAtOnce) {
    EXPECT_EQ(ComplaintAbout("[collect]\nintervals = \"5s\"\njitter = 3\n"),
              "f.conf:2: there is no key \"collect.intervals\"; did you mean "
              "\"collect.interval\"?\n"
              "f.conf:3: \"collect.jitter\" must be a duration in quotation marks, such as \"1s\"");
}

TEST(ServiceSettings, NameTheLineThatIsNoToml) {
    const std::string complaint = ComplaintAbout("[collect]\ninterval = \n");
    EXPECT_TRUE(complaint.starts_with("f.conf:2: ")) << complaint;
    EXPECT_EQ(complaint.find('\n'), std::string::npos) << complaint;
}

TEST(ServiceSettings, HaveATableForEachSink) {
    const Settings settings = ParseSettings(
        "[sink.pager]\nkind = \"command\"\ncommand = [\"/usr/bin/page\", \"ops\"]\n"
        "policy = \"diminishing\"\nlevel = \"critical\"\nlimit = \"5s\"\nqueue = 7\n"
        "[sink.log]\nkind = \"command\"\ncommand = [\"/bin/log\"]\n",
        "f.conf");
    ASSERT_EQ(settings.sinks.size(), 2U);
    const hxservice::SinkSettings& pager = settings.sinks[0];
    EXPECT_EQ(pager.name, "pager");
    EXPECT_EQ(pager.command, (std::vector<std::string>{"/usr/bin/page", "ops"}));
    EXPECT_EQ(pager.policy, hxservice::Policy::kDiminishing);
    EXPECT_EQ(pager.level, hxconditions::Level::kCritical);
    EXPECT_EQ(pager.limit, seconds(5));
    EXPECT_EQ(pager.queue, 7);
    EXPECT_EQ(settings.sinks[1].policy, hxservice::Policy::kOnce);
    EXPECT_EQ(settings.sinks[1].level, hxconditions::Level::kMinorUnknown);
}

TEST(ServiceSettings, RefuseWhatIsWrongWithASink) {
    struct Row {
        const char *text, *complaint;
    };
    const Row rows[] = {
        {"[sink.a]\n", "1: [sink.a] needs the key \"kind\""},
        {"[sink.a]\nkind = \"command\"\n", "2: [sink.a] needs the key \"command\""},
        {"[[sink]]\nkind = \"journal\"\n", "1: a sink is a table with a name, such as [sink.page]"},
        {"[sink.a]\nkind = \"fax\"\n", "2: \"sink.a.kind\" must be "},
        {"[sink.a]\nkind = \"command\"\ncommand = [\"page\"]\n",
         "2: [sink.a]: the program \"page\" must be named by its whole path"},
        {"[sink.a]\nkind = \"command\"\ncommands = [\"/bin/x\"]\n",
         "3: there is no key \"sink.a.commands\"; did you mean \"sink.a.command\"?"},
        {"[sink.a]\ncommand = \"/bin/x\"\n",
         "2: \"sink.a.command\" must be a list of texts, such as [\"/usr/bin/page\", \"ops\"]"},
        {"[sink.a]\ncommand = []\n", "2: \"sink.a.command\" must be a list of texts"},
        {"[sink.a]\nkind = \"mail\"\n", "2: [sink.a] needs the key \"to\""},
        {"[sink.a]\nkind = \"mail\"\nto = [\"a b\"]\n",
         "2: [sink.a]: \"a b\" is no mail address: "},
        {"[sink.a]\nkind = \"mail\"\nto = [\"a\"]\nfrom = \"-x\"\n",
         "2: [sink.a]: \"-x\" is no mail address: "},
        {"[sink.a]\nkind = \"mail\"\nto = [\"a\"]\nprogram = \"sendmail\"\n",
         "2: [sink.a]: the program \"sendmail\" must be named by its whole path"},
        {"[sink.a]\nkind = \"mail\"\nto = \"a\"\n",
         "3: \"sink.a.to\" must be a list of texts, such as [\"root\", \"storage@example.org\"]"},
        {"[sink.a]\nkind = \"journal\"\nto = [\"a\"]\n",
         "2: [sink.a] is of kind \"journal\", which has no key \"to\""},
        {"[sink.a]\nkind = \"webhook\"\n", "2: [sink.a] needs the key \"url\""},
        {"[sink.a]\nkind = \"webhook\"\nurl = \"http://a/\"\n",
         "2: [sink.a]: the url \"http://a/\" must begin with https:// and "},
        {"[sink.a]\nkind = \"webhook\"\nurl = \"https://a/\"\nsecret_file = \"x\"\n",
         "2: [sink.a]: the file \"x\" must be named by its whole path"},
        {"[sink.a]\npolicy = \"often\"\n",
         "2: \"sink.a.policy\" must be one of \"once\", \"always\", \"daily\", \"diminishing\""},
        {"[sink.a]\nlevel = 3\n", "2: \"sink.a.level\" must be one of \"critical\", "},
        {"[sink.a]\nlimit = \"11m\"\n",
         "2: \"sink.a.limit\" must be a duration from 1s to 10m, such as \"30s\""},
        {"[sink.a]\nqueue = 0\n", "2: \"sink.a.queue\" must be a number from 1 to 10000"},
        {"[sink.\"a b\"]\nqueue = 1\n", "2: a sink cannot be named \"a b\"; "},
        {"[sink]\npager = 1\n", "2: \"sink.pager\" is no key; a sink is a table, such as "},
    };
    for (const Row& row : rows) {
        const std::string complaint = ComplaintAbout(row.text);
        EXPECT_TRUE(complaint.starts_with(std::string("f.conf:") + row.complaint)) << complaint;
    }
}

TEST(ServiceSettings, SetTheLevelsOfConditions) {
    using hxconditions::Code;
    using hxconditions::Level;
    const Settings settings = ParseSettings(
        "[conditions]\nCACHE_UNPROTECTED = \"info\"\nSPARE_NONE = \"warning\"\n"
        "DISK_SMART_OFF = \"off\"\nVD_OFFLINE = \"critical\"\n",
        "f.conf");
    const std::map<Code, Level> levels = {{Code::kVdOffline, Level::kCritical},
                                          {Code::kCacheUnprotected, Level::kInfo},
                                          {Code::kSpareNone, Level::kWarning}};
    EXPECT_EQ(settings.conditions.levels, levels);
    EXPECT_EQ(settings.conditions.off, std::set<Code>{Code::kDiskSmartOff});
    EXPECT_EQ(ParseSettings("[conditions]\n", "f.conf"), Settings());
    struct Row {
        const char *text, *complaint;
    };
    const Row rows[] = {
        {"CACHE_UNPROTECTD = \"info\"",
         "there is no condition \"CACHE_UNPROTECTD\"; did you mean "
         "\"CACHE_UNPROTECTED\"?"},
        {"SPARE_NONE = \"grave\"",
         "\"conditions.SPARE_NONE\" must be one of \"critical\", \"warning\", \"info\", \"off\""},
        {"SPARE_NONE = false",
         "\"conditions.SPARE_NONE\" must be one of \"critical\", \"warning\", \"info\", \"off\""},
        {"VD_OFFLINE = \"off\"",
         "\"conditions.VD_OFFLINE\" stays critical: it tells of data that is lost or in danger"},
        {"VD_GONE = \"warning\"",
         "\"conditions.VD_GONE\" stays critical: it tells of data that is lost or in danger"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(ComplaintAbout(std::string("[conditions]\n") + row.text),
                  std::string("f.conf:2: ") + row.complaint);
    }
}

TEST(ServiceSettings, OfAFileThatIsNotThereAreTheDefaultsOrAnError) {
    const TemporaryRoot root;
    const std::string path = root.Path("/hxraidsvc.conf");
    EXPECT_EQ(ReadSettings(path, Missing::kDefaults), Settings());
    EXPECT_THROW(ReadSettings(path, Missing::kError), SettingsError);
    root.Write("/hxraidsvc.conf", "collect.interval = \"20s\"\n");
    EXPECT_EQ(ReadSettings(path, Missing::kError).collect_interval, seconds(20));
}

TEST(ServiceSettings, HaveARowForEachKeyWithItsMeaning) {
    EXPECT_EQ(hxservice::SettingRows().size(), 5U);
    for (const hxservice::SettingRow& row : hxservice::SettingRows()) {
        EXPECT_FALSE(row.meaning.empty()) << row.key;
        const auto* const duration =
            std::get_if<hxservice::Duration hxservice::Settings::*>(&row.field);
        if (duration == nullptr) continue;
        EXPECT_GE(Settings().**duration, row.least) << row.key;
        EXPECT_LE(Settings().**duration, row.most) << row.key;
    }
}

}  // namespace
