// The configuration file: which file counts, which section is read, what its attributes become.
#include "vx_cfg.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "XMLWriter.h"
#include "debug_log.h"
#include "support/child_process.h"
#include "support/temporary_root.h"
#include "vx_cfg_parse.h"

// The records as a test compares and prints them.
bool operator==(const VX_Cfg_EventLog& a, const VX_Cfg_EventLog& b) {
    return a.LogEnable == b.LogEnable && a.MaxNumOfEvent == b.MaxNumOfEvent &&
           std::strcmp(a.Filename, b.Filename) == 0;
}
void PrintTo(const VX_Cfg_EventLog& cfg, std::ostream* out) {
    *out << int{cfg.LogEnable} << ' ' << cfg.MaxNumOfEvent << " \"" << cfg.Filename << '"';
}
bool operator==(const VX_Cfg_XmlWrapper& a, const VX_Cfg_XmlWrapper& b) {
    return a.InLogEnable == b.InLogEnable && a.OutLogEnable == b.OutLogEnable &&
           std::strcmp(a.Filename, b.Filename) == 0;
}
void PrintTo(const VX_Cfg_XmlWrapper& cfg, std::ostream* out) {
    *out << int{cfg.InLogEnable} << ' ' << int{cfg.OutLogEnable} << " \"" << cfg.Filename << '"';
}

namespace {

constexpr char kFile[] = "/vexorapi.ini";
constexpr std::string_view kEnabled = "<c><EventLogConfig type=\"config\" LogEnable=\"1\"/></c>";

// The event store's section, written at full length.
constexpr std::string_view kAll =
    "<c><EventLogConfig type=\"config\" LogEnable=\"1\" MaxNumOfEvent=\"500\" "
    "Filename=\"/e\"/></c>";

const VX_Cfg_EventLog kUntouched{.LogEnable = 77, .MaxNumOfEvent = 7777, .Filename = "before"};

class Configuration : public testing::Test {
protected:
    Configuration() { std::memcpy(&event_log_, &kUntouched, sizeof event_log_); }

    // Loads a section of the event log's shape out of a file that holds `text`.
    int Load(std::string_view text, const char* section = "EventLogConfig") {
        root_.Write(kFile, text);
        return VX_CfgLoad(&event_log_, section);
    }

    // The event log's settings when its section has these attributes.
    const VX_Cfg_EventLog& Settings(const std::string& attributes) {
        Load("<c><EventLogConfig type=\"config\" " + attributes + "/></c>");
        return event_log_;
    }

    TemporaryRoot root_;
    VX_Cfg_EventLog event_log_;
    VX_Cfg_XmlWrapper wrapper_{.InLogEnable = 77, .OutLogEnable = 78, .Filename = "before"};
};

// ---- Which file counts ----

using ConfigurationFile = Configuration;

TEST_F(ConfigurationFile, AbsentLoadsNothing) {
    EXPECT_EQ(0, VX_CfgLoad(&event_log_, "EventLogConfig"));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, AbsentLeavesTheRequestLogOff) {
    VX_Cfg_XmlWrapper prepared{};
    EXPECT_EQ(0, VX_CfgLoad(&prepared, "XmlWrapperLogConfig"));
    EXPECT_EQ((VX_Cfg_XmlWrapper{0, 0, ""}), prepared);
}

TEST_F(ConfigurationFile, AbsentCostsOneSystemCall) {
    if (kSanitized) GTEST_SKIP() << "the sanitizers make system calls of their own";
    const std::vector<long> calls =
        SystemCallsOf([&] { VX_CfgLoad(&event_log_, "EventLogConfig"); });
    EXPECT_EQ((std::vector<long>{SYS_access}), calls);
}

TEST_F(ConfigurationFile, BelowAFileIsAbsent) {
    root_.Write("/file", "");
    setenv("VEXORAPI_ROOT", root_.Path("/file").c_str(), 1);
    EXPECT_EQ(0, VX_CfgLoad(&event_log_, "EventLogConfig"));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, BelowAFileCostsOneSystemCall) {
    if (kSanitized) GTEST_SKIP() << "the sanitizers make system calls of their own";
    root_.Write("/file", "");
    setenv("VEXORAPI_ROOT", root_.Path("/file").c_str(), 1);
    const std::vector<long> calls =
        SystemCallsOf([&] { VX_CfgLoad(&event_log_, "EventLogConfig"); });
    EXPECT_EQ((std::vector<long>{SYS_access}), calls);
}

TEST_F(ConfigurationFile, WithAPathThatDoesNotFitIsAbsent) {
    setenv("VEXORAPI_ROOT", std::string(5000, 'x').c_str(), 1);
    EXPECT_EQ(0, VX_CfgLoad(&event_log_, "EventLogConfig"));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, EmptyLoadsNothing) {
    EXPECT_EQ(0, Load(""));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, Of65535BytesIsParsed) {
    EXPECT_EQ(1, Load(std::string(kEnabled) + std::string(65535 - kEnabled.size(), '\n')));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(ConfigurationFile, Of65536BytesCountsAsAbsent) {
    EXPECT_EQ(0, Load(std::string(kEnabled) + std::string(65536 - kEnabled.size(), '\n')));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, Of65537BytesCountsAsAbsent) {
    EXPECT_EQ(0, Load(std::string(kEnabled) + std::string(65537 - kEnabled.size(), '\n')));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, OfTwiceThatSizeCountsAsAbsent) {
    EXPECT_EQ(0, Load(std::string(kEnabled) + std::string(131072, '\n')));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, ThatIsAFolderCountsAsAbsent) {
    std::filesystem::create_directory(root_.Path(kFile));
    EXPECT_EQ(0, VX_CfgLoad(&event_log_, "EventLogConfig"));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, ThatIsAFifoCountsAsAbsentWithoutWaiting) {
    ASSERT_EQ(0, mkfifo(root_.Path(kFile).c_str(), 0600));
    EXPECT_EQ(0, VX_CfgLoad(&event_log_, "EventLogConfig"));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, ThatLinksToAnEndlessDeviceCountsAsAbsent) {
    std::filesystem::create_symlink("/dev/zero", root_.Path(kFile));
    EXPECT_EQ(0, VX_CfgLoad(&event_log_, "EventLogConfig"));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, ThatLinksToItselfCountsAsAbsent) {
    std::filesystem::create_symlink(root_.Path(kFile), root_.Path(kFile));
    EXPECT_EQ(0, VX_CfgLoad(&event_log_, "EventLogConfig"));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(ConfigurationFile, IsFollowedThroughALink) {
    root_.Write("/real.ini", kEnabled);
    std::filesystem::create_symlink(root_.Path("/real.ini"), root_.Path(kFile));
    EXPECT_EQ(1, VX_CfgLoad(&event_log_, "EventLogConfig"));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(ConfigurationFile, IsReadAfreshEveryTime) {
    Load(kEnabled);
    Load("<c><EventLogConfig type=\"config\" LogEnable=\"2\"/></c>");
    EXPECT_EQ((VX_Cfg_EventLog{2, 0, ""}), event_log_);
}

TEST_F(ConfigurationFile, LoadsNothingWithoutMemory) {
    if (kSanitized) GTEST_SKIP() << "the sanitizers end a process that has no memory";
    root_.Write(kFile, kEnabled);
    EXPECT_EQ(0, InChildWithoutMemory([&] { return VX_CfgLoad(&event_log_, "EventLogConfig"); }));
}

TEST_F(ConfigurationFile, LeavesNoDescriptorBehind) {
    const auto open_descriptors = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    const auto before = open_descriptors();
    Load(kEnabled);
    EXPECT_EQ(before, open_descriptors());
}

// ---- Its bytes ----

using ConfigurationBytes = Configuration;

TEST_F(ConfigurationBytes, AreReadAsTheyAre) {
    root_.Write(kFile, std::string("a\r\n\0b", 5));
    char bytes[8] = "xxxxxxx";
    EXPECT_EQ(5u, VX_CfgLoadFile(bytes, sizeof bytes));
    EXPECT_EQ(std::string("a\r\n\0bxx\0", 8), std::string(bytes, 8));
}

TEST_F(ConfigurationBytes, AreReadUpToTheBuffersSize) {
    root_.Write(kFile, "123456");
    char bytes[8] = "xxxxxxx";
    EXPECT_EQ(4u, VX_CfgLoadFile(bytes, 4));
    EXPECT_STREQ("1234xxx", bytes);
}

TEST_F(ConfigurationBytes, AreNoneWithoutAFile) {
    char bytes[8] = "xxxxxxx";
    EXPECT_EQ(0u, VX_CfgLoadFile(bytes, sizeof bytes));
    EXPECT_STREQ("xxxxxxx", bytes);
}

// ---- Which section is read ----

using ConfigurationSection = Configuration;

TEST_F(ConfigurationSection, OfTheEventStoreHasThreeSettings) {
    EXPECT_EQ(1, Load(kAll));
    EXPECT_EQ((VX_Cfg_EventLog{1, 500, "/e"}), event_log_);
}

TEST_F(ConfigurationSection, OfTheRequestLogHasThreeSettings) {
    root_.Write(kFile,
                "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"1\" OutLogEnable=\"2\" "
                "Filename=\"/r\"/></c>");
    EXPECT_EQ(1, VX_CfgLoad(&wrapper_, "XmlWrapperLogConfig"));
    EXPECT_EQ((VX_Cfg_XmlWrapper{1, 2, "/r"}), wrapper_);
}

TEST_F(ConfigurationSection, OfTheDebugLogHasTwoSettings) {
    EXPECT_EQ(1, Load("<c><DebugLogConfig type=\"config\" LogEnable=\"1\" MaxNumOfEvent=\"9\" "
                      "Filename=\"/d\"/></c>",
                      "DebugLogConfig"));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, "/d"}), event_log_);
}

TEST_F(ConfigurationSection, ServesAllThreeServicesFromOneFile) {
    root_.Write(kFile,
                "<config>\n"
                "  <EventLogConfig type=\"config\" LogEnable=\"1\" MaxNumOfEvent=\"7\"/>\n"
                "  <XmlWrapperLogConfig type=\"config\" OutLogEnable=\"1\"/>\n"
                "  <DebugLogConfig type=\"config\" LogEnable=\"3\"/>\n"
                "</config>\n");
    VX_CfgLoad(&event_log_, "EventLogConfig");
    EXPECT_EQ((VX_Cfg_EventLog{1, 7, ""}), event_log_);
    VX_CfgLoad(&wrapper_, "XmlWrapperLogConfig");
    EXPECT_EQ((VX_Cfg_XmlWrapper{0, 1, ""}), wrapper_);
    VX_CfgLoad(&event_log_, "DebugLogConfig");
    EXPECT_EQ((VX_Cfg_EventLog{3, 0, ""}), event_log_);
}

TEST_F(ConfigurationSection, MayStandUnderARootOfAnyName) {
    EXPECT_EQ(1, Load("<any.name type=\"x\"><EventLogConfig LogEnable=\"1\" type=\"config\"/>"
                      "</any.name>"));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(ConfigurationSection, ZeroesTheWholeRecordWhenItHasNoSettings) {
    Load("<c><EventLogConfig type=\"config\"/></c>");
    const VX_Cfg_EventLog zero{};
    EXPECT_EQ(0, std::memcmp(&event_log_, &zero, sizeof zero));
}

// Files that hold no section to read: the load succeeds and the record stays as it was.
struct NoSection {
    const char* name;
    const char* section;
    const char* text;
};
void PrintTo(const NoSection& row, std::ostream* out) { *out << row.name; }

class NoSectionIn : public Configuration, public testing::WithParamInterface<NoSection> {};

TEST_P(NoSectionIn, LeavesTheRecordAlone) {
    EXPECT_EQ(1, Load(GetParam().text, GetParam().section));
    EXPECT_EQ(kUntouched, event_log_);
}

constexpr NoSection kNoSections[] = {
    {"EmptyRoot", "EventLogConfig", "<c/>"},
    {"AnotherSectionThanAskedFor", "DebugLogConfig",
     "<c><EventLogConfig type=\"config\" LogEnable=\"1\"/></c>"},
    {"SectionWithoutType", "EventLogConfig", "<c><EventLogConfig LogEnable=\"1\"/></c>"},
    {"SectionOfAnotherType", "EventLogConfig",
     "<c><EventLogConfig type=\"function\" LogEnable=\"1\"/></c>"},
    {"TypeInCapitals", "EventLogConfig",
     "<c><EventLogConfig type=\"CONFIG\" LogEnable=\"1\"/></c>"},
    {"TypeWithABlank", "EventLogConfig",
     "<c><EventLogConfig type=\"config \" LogEnable=\"1\"/></c>"},
    {"TypeAttributeInCapitals", "EventLogConfig",
     "<c><EventLogConfig Type=\"config\" LogEnable=\"1\"/></c>"},
    {"NameInLowerCase", "EventLogConfig",
     "<c><eventlogconfig type=\"config\" LogEnable=\"1\"/></c>"},
    {"LongerName", "EventLogConfig", "<c><EventLogConfig2 type=\"config\" LogEnable=\"1\"/></c>"},
    {"SectionAsRoot", "EventLogConfig", "<EventLogConfig type=\"config\" LogEnable=\"1\"/>"},
    {"SectionOneLevelTooDeep", "EventLogConfig",
     "<c><d><EventLogConfig type=\"config\" LogEnable=\"1\"/></d></c>"},
    {"SectionInsideOfAnother", "EventLogConfig",
     "<c><DebugLogConfig type=\"config\">"
     "<EventLogConfig type=\"config\" LogEnable=\"1\"/></DebugLogConfig></c>"},
    {"SectionOfNoService", "OtherConfig", "<c><OtherConfig type=\"config\" LogEnable=\"1\"/></c>"},
    {"NoNameAskedFor", "", "<c><EventLogConfig type=\"config\" LogEnable=\"1\"/></c>"},
    {"SectionInAComment", "EventLogConfig",
     "<c><!--<EventLogConfig type=\"config\" LogEnable=\"1\"/>--></c>"},
    {"BlankFile", "EventLogConfig", " \n"},
    {"ErrorBeforeTheSection", "EventLogConfig",
     "<c><a></b><EventLogConfig type=\"config\" LogEnable=\"1\"/></c>"},
    {"ErrorInTheSectionsTag", "EventLogConfig",
     "<c><EventLogConfig type=\"config\" LogEnable=\"1\" LogEnable=\"1\"/></c>"},
};
INSTANTIATE_TEST_SUITE_P(Files, NoSectionIn, testing::ValuesIn(kNoSections),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(ConfigurationSection, OfANameTooLongForItsFieldIsNone) {
    for (const std::size_t length : {128u, 300u, 10000u}) {
        const std::string name(length, 'n');
        EXPECT_EQ(1, Load("<c><" + name + " type=\"config\"/><EventLogConfig type=\"config\"/></c>",
                          name.c_str()));
        EXPECT_EQ(kUntouched, event_log_);
    }
}

TEST(SectionName, FillsItsFieldButForTheNulOrIsEmpty) {
    const std::string longest(127, 'n');
    XMLElmtCfg elmt{};
    SetCfgName(elmt, longest.c_str());
    EXPECT_EQ(longest, elmt.CfgName);
    SetCfgName(elmt, (longest + "n").c_str());
    EXPECT_EQ(std::string(128, '\0'), std::string(elmt.CfgName, sizeof elmt.CfgName));
    SetCfgName(elmt, "a");
    EXPECT_EQ("a" + std::string(127, '\0'), std::string(elmt.CfgName, sizeof elmt.CfgName));
}

TEST_F(ConfigurationSection, ThatOccursTwiceIsTheLaterOne) {
    Load(
        "<c><EventLogConfig type=\"config\" LogEnable=\"1\" MaxNumOfEvent=\"5\" Filename=\"/a\"/>"
        "<EventLogConfig type=\"config\" LogEnable=\"2\"/></c>");
    EXPECT_EQ((VX_Cfg_EventLog{2, 0, ""}), event_log_);
}

TEST_F(ConfigurationSection, IsNotClearedByALaterOneWithoutType) {
    Load("<c><EventLogConfig type=\"config\" LogEnable=\"1\"/><EventLogConfig/></c>");
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(ConfigurationSection, IsClearedByAnElementInside) {
    Load(
        "<c><EventLogConfig type=\"config\" LogEnable=\"1\" Filename=\"/a\"><x/>"
        "</EventLogConfig></c>");
    EXPECT_EQ((VX_Cfg_EventLog{0, 0, ""}), event_log_);
}

TEST_F(ConfigurationSection, IsReplacedByTheAttributesOfAnElementInside) {
    Load(
        "<c><EventLogConfig type=\"config\" LogEnable=\"1\"><x MaxNumOfEvent=\"3\"/>"
        "</EventLogConfig></c>");
    EXPECT_EQ((VX_Cfg_EventLog{0, 3, ""}), event_log_);
}

TEST_F(ConfigurationSection, IsNotTouchedByElementsTwoLevelsInside) {
    Load(
        "<c><EventLogConfig type=\"config\"><x LogEnable=\"1\"><y LogEnable=\"2\"/></x>"
        "</EventLogConfig></c>");
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(ConfigurationSection, EndsBeforeTheElementsBehindIt) {
    Load(
        "<c><EventLogConfig type=\"config\" LogEnable=\"1\"></EventLogConfig>"
        "<x><y LogEnable=\"2\"/></x></c>");
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(ConfigurationSection, IgnoresTextInside) {
    Load("<c><EventLogConfig type=\"config\" LogEnable=\"1\">2</EventLogConfig></c>");
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

// ---- What its attributes become ----

using ConfigurationSetting = Configuration;

TEST_F(ConfigurationSetting, NumberOf257Stores1InEightBits) {
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), Settings("LogEnable=\"257\""));
}

TEST_F(ConfigurationSetting, NumberOf256Stores0InEightBits) {
    EXPECT_EQ((VX_Cfg_EventLog{0, 0, ""}), Settings("LogEnable=\"256\""));
}

TEST_F(ConfigurationSetting, NumberOf65535IsTheLargestOfSixteenBits) {
    EXPECT_EQ((VX_Cfg_EventLog{0, 65535, ""}), Settings("MaxNumOfEvent=\"65535\""));
}

TEST_F(ConfigurationSetting, NumberOf65537Stores1InSixteenBits) {
    EXPECT_EQ((VX_Cfg_EventLog{0, 1, ""}), Settings("MaxNumOfEvent=\"65537\""));
}

TEST_F(ConfigurationSetting, NumberBeyond32BitsStoresAllOnes) {
    EXPECT_EQ((VX_Cfg_EventLog{255, 65535, ""}),
              Settings("LogEnable=\"4294967296\" MaxNumOfEvent=\"99999999999999999999\""));
}

TEST_F(ConfigurationSetting, NumberIsTheFirstOneOfItsText) {
    EXPECT_EQ((VX_Cfg_EventLog{5, 12, ""}),
              Settings("LogEnable=\"yes, -5 or 6\" MaxNumOfEvent=\"12 13\""));
}

TEST_F(ConfigurationSetting, NumberWithoutADigitStores0) {
    EXPECT_EQ((VX_Cfg_EventLog{0, 0, ""}), Settings("LogEnable=\"on\" MaxNumOfEvent=\"\""));
}

TEST_F(ConfigurationSetting, MissingNumbersStore0) {
    EXPECT_EQ((VX_Cfg_EventLog{0, 0, "/e"}), Settings("Filename=\"/e\""));
}

TEST_F(ConfigurationSetting, NumbersOfTheRequestLogAreCutAndDefaultedAlike) {
    root_.Write(kFile, "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"258\"/></c>");
    VX_CfgLoad(&wrapper_, "XmlWrapperLogConfig");
    EXPECT_EQ((VX_Cfg_XmlWrapper{2, 0, ""}), wrapper_);
}

TEST_F(ConfigurationSetting, NamesAreCaseSensitive) {
    EXPECT_EQ((VX_Cfg_EventLog{0, 0, ""}), Settings("logenable=\"1\" FileName=\"/e\""));
}

TEST_F(ConfigurationSetting, OrderDoesNotMatter) {
    EXPECT_EQ((VX_Cfg_EventLog{1, 2, "/e"}),
              Settings("Filename=\"/e\" MaxNumOfEvent=\"2\" LogEnable=\"1\""));
}

TEST_F(ConfigurationSetting, FilenameIsDecodedFromItsMarkup) {
    EXPECT_EQ((VX_Cfg_EventLog{0, 0, "/a&b \xC3\xA9"}), Settings("Filename=\"/a&amp;b &#233;\""));
}

TEST_F(ConfigurationSetting, FilenameOf255CharactersIsKept) {
    const std::string name(255, 'n');
    EXPECT_EQ(name, Settings("Filename=\"" + name + "\"").Filename);
}

// What follows a value in the parser's memory is the next attribute, not zeros.
TEST_F(ConfigurationSetting, FilenameOf255CharactersWritesNothingBehindItsField) {
    struct {
        VX_Cfg_EventLog cfg;
        char behind[16];
    } room{};
    root_.Write(kFile, "<c><EventLogConfig type=\"config\" Filename=\"" + std::string(255, 'n') +
                           "\" Other=\"oooo\"/></c>");
    EXPECT_EQ(1, VX_CfgLoad(&room.cfg, "EventLogConfig"));
    EXPECT_EQ(std::string(16, '\0'), std::string(room.behind, sizeof room.behind));
}

TEST_F(ConfigurationSetting, FilenameOf256CharactersIsAbsent) {
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}),
              Settings("LogEnable=\"1\" Filename=\"" + std::string(256, 'n') + "\""));
}

TEST_F(ConfigurationSetting, FilenameOf60000CharactersIsAbsent) {
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}),
              Settings("LogEnable=\"1\" Filename=\"" + std::string(60000, 'n') + "\""));
}

TEST_F(ConfigurationSetting, FilenameOf256CharactersIsAbsentForTheRequestLogToo) {
    root_.Write(kFile, "<c><XmlWrapperLogConfig type=\"config\" OutLogEnable=\"1\" Filename=\"" +
                           std::string(256, 'n') + "\"/></c>");
    VX_CfgLoad(&wrapper_, "XmlWrapperLogConfig");
    EXPECT_EQ((VX_Cfg_XmlWrapper{0, 1, ""}), wrapper_);
}

// ---- Malformed and hostile files ----

using MalformedConfiguration = Configuration;

TEST_F(MalformedConfiguration, KeepsWhatStoodBeforeTheError) {
    EXPECT_EQ(1, Load("<c><EventLogConfig type=\"config\" LogEnable=\"1\"/></d>"));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(MalformedConfiguration, CutShortKeepsWhatStoodBeforeItsEnd) {
    EXPECT_EQ(1, Load("<c><EventLogConfig type=\"config\" LogEnable=\"1\"/>"));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(MalformedConfiguration, TellsTheErrorAndItsLineWithoutALineEnd) {
    const DebugLog log(root_);
    Load("<c>\n</d>");
    EXPECT_EQ("Dir = c\nXML_Error:mismatched tag at line 2", log.Text());
}

TEST_F(MalformedConfiguration, SurvivesElementsNestedToItsFullSize) {
    std::string text;
    for (int depth = 0; depth < 21845; ++depth) text += "<a>";
    EXPECT_EQ(1, Load(text));
    EXPECT_EQ(kUntouched, event_log_);
}

TEST_F(MalformedConfiguration, SurvivesNamesAndTextsOfItsFullSize) {
    const std::string name(20000, 'n');
    EXPECT_EQ(1, Load("<" + name + ">" + std::string(20000, 't') +
                      "<EventLogConfig type=\"config\" "
                      "LogEnable=\"1\">" +
                      std::string(3000, 't') + "</EventLogConfig></" + name + ">"));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_F(MalformedConfiguration, SurvivesSiblingsWithDotsThatLengthenThePath) {
    std::string text = "<c>";
    for (int sibling = 0; sibling < 5000; ++sibling) text += "<a.bbbb/>";
    EXPECT_EQ(1, Load(text + "<EventLogConfig type=\"config\" LogEnable=\"1\"/></c>"));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

// A document type of `count` declarations before an enabling section.
std::string Declaring(int count, const std::string& declaration) {
    std::string text = "<!DOCTYPE c [";
    for (int number = 0; number < count; ++number) {
        text += declaration;
        text.replace(text.rfind('#'), 1, std::to_string(number));
        text += '>';
    }
    return text + "]>" + std::string(kEnabled);
}

struct Declaration {
    const char* name;
    const char* text;  // without its ">"; the "#" becomes its number
};
void PrintTo(const Declaration& row, std::ostream* out) { *out << row.name; }

class Declarations : public Configuration, public testing::WithParamInterface<Declaration> {};

TEST_P(Declarations, UpTo256AreParsed) {
    EXPECT_EQ(1, Load(Declaring(256, GetParam().text)));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

TEST_P(Declarations, Beyond256StopTheParseAsAnError) {
    const DebugLog log(root_);
    EXPECT_EQ(1, Load(Declaring(257, GetParam().text)));
    EXPECT_EQ(kUntouched, event_log_);
    EXPECT_EQ("XML_Error:parsing aborted at line 1", log.Text());
}

constexpr Declaration kDeclarations[] = {
    {"Entities", "<!ENTITY e# 'x'"},           {"ParameterEntities", "<!ENTITY % e# 'x'"},
    {"Elements", "<!ELEMENT e# (a|b)*"},       {"AttributeLists", "<!ATTLIST c a# CDATA 'x'"},
    {"Notations", "<!NOTATION n# SYSTEM 'x'"},
};
INSTANTIATE_TEST_SUITE_P(Kinds, Declarations, testing::ValuesIn(kDeclarations),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(MalformedConfiguration, DoesNotReadExternalEntities) {
    root_.Write("/secret", "7");
    EXPECT_EQ(1, Load("<!DOCTYPE c [<!ENTITY e SYSTEM \"" + root_.Path("/secret") +
                      "\">]><c>&e;<EventLogConfig type=\"config\" LogEnable=\"1\"/></c>"));
    EXPECT_EQ((VX_Cfg_EventLog{1, 0, ""}), event_log_);
}

// ---- What the debug log tells of a load ----

using ConfigurationTrace = Configuration;

TEST_F(ConfigurationTrace, TellsThePathsNumbersNameAndText) {
    const DebugLog log(root_);
    Load(
        "<c><EventLogConfig type=\"config\" LogEnable=\"1\" MaxNumOfEvent=\"20\" "
        "Filename=\"/e\">ab</EventLogConfig></c>");
    EXPECT_EQ(
        "Dir = c\n"
        "Dir = c.EventLogConfig\n"
        "XMLWR_CharDataToDec=1\n"
        "XMLWR_CharDataToDec=20\n"
        "Filename /e\n"
        "Dir = c.EventLogConfig\n"
        "[CD 2]:ab\n"
        "Dir = c\n"
        "[CD 2]:ab\n",
        log.Text());
}

TEST_F(ConfigurationTrace, ScansNoNumberThatIsMissing) {
    const DebugLog log(root_);
    Load("<c><EventLogConfig type=\"config\"/></c>");
    EXPECT_EQ("Dir = c\nDir = c.EventLogConfig\nDir = c.EventLogConfig\nDir = c\n", log.Text());
}

TEST_F(ConfigurationTrace, DoesNotTellANameThatCountsAsAbsent) {
    const DebugLog log(root_);
    Settings("Filename=\"" + std::string(256, 'n') + "\"");
    EXPECT_EQ("Dir = c\nDir = c.EventLogConfig\nDir = c.EventLogConfig\nDir = c\n", log.Text());
}

TEST_F(ConfigurationTrace, IsSilentWhenTheFileIsAbsent) {
    const DebugLog log(root_);
    VX_CfgLoad(&event_log_, "EventLogConfig");
    EXPECT_EQ("", log.Text());
}

// ---- The pieces of the parse ----

class ConfigurationParse : public testing::Test {
protected:
    const std::unique_ptr<XMLElmtCfg> elmt_ = std::make_unique<XMLElmtCfg>();
    const char* no_attributes_[1] = {nullptr};
    const char* config_[3] = {"type", "config", nullptr};
};

struct SectionHandlers {
    const char* name;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    void (*writer)(XMLElmtCfg*, XMLWR_Doc*);
};
void PrintTo(const SectionHandlers& row, std::ostream* out) { *out << row.name; }
constexpr SectionHandlers kHandlers[] = {
    {"EventLogConfig", XML_EventLogConfig_SEH, XML_EventLogConfig_EEH, XML_EventLogConfig_Ret},
    {"XmlWrapperLogConfig", XML_XmlWrapperLogConfig_SEH, XML_XmlWrapperLogConfig_EEH,
     XML_XmlWrapperLogConfig_Ret},
    {"DebugLogConfig", XML_DebugLogConfig_SEH, XML_DebugLogConfig_EEH, XML_DebugLogConfig_Ret},
};

class SectionOf : public ConfigurationParse, public testing::WithParamInterface<SectionHandlers> {};

TEST_P(SectionOf, IsDispatchedToItsHandlers) {
    std::strcpy(elmt_->CfgName, GetParam().name);
    EXPECT_EQ(1, CFG_FuncElementDispatcher(elmt_.get(), GetParam().name, no_attributes_));
    EXPECT_EQ(GetParam().start, elmt_->StartHandler);
    EXPECT_EQ(GetParam().end, elmt_->EndHandler);
    EXPECT_EQ(nullptr, elmt_->CharDataHandler);
}

TEST_P(SectionOf, IsDeclinedWhenItIsNotTheOneAskedFor) {
    std::strcpy(elmt_->CfgName, "OtherConfig");
    EXPECT_EQ(0, CFG_FuncElementDispatcher(elmt_.get(), GetParam().name, no_attributes_));
    EXPECT_EQ(nullptr, elmt_->StartHandler);
    EXPECT_EQ(nullptr, elmt_->EndHandler);
}

TEST_P(SectionOf, EndsAndIsWrittenWithoutEffect) {
    const auto document = std::make_unique<XMLWR_Doc>();
    XMLWR_Init(document.get());
    XMLElmtCfg before;
    std::memcpy(&before, elmt_.get(), sizeof before);
    GetParam().end(elmt_.get(), GetParam().name);
    GetParam().writer(elmt_.get(), document.get());
    EXPECT_EQ(0, std::memcmp(&before, elmt_.get(), sizeof before));
    EXPECT_EQ(0u, document->CurPos);
}

INSTANTIATE_TEST_SUITE_P(Services, SectionOf, testing::ValuesIn(kHandlers),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(ConfigurationParse, DeclinesASectionOfNoService) {
    std::strcpy(elmt_->CfgName, "OtherConfig");
    EXPECT_EQ(0, CFG_FuncElementDispatcher(elmt_.get(), "OtherConfig", no_attributes_));
    EXPECT_EQ(nullptr, elmt_->StartHandler);
}

TEST_F(ConfigurationParse, HoldsTheSectionsHandlersUntilTheSectionEnds) {
    VX_Cfg_EventLog cfg{};
    elmt_->Ext = &cfg;
    std::strcpy(elmt_->CfgName, "EventLogConfig");
    CFG_StartElement(elmt_.get(), "c", no_attributes_);
    CFG_StartElement(elmt_.get(), "EventLogConfig", config_);
    EXPECT_EQ(&XML_EventLogConfig_SEH, elmt_->StartHandler);
    EXPECT_STREQ("c.EventLogConfig", elmt_->DirName);
    CFG_EndElement(elmt_.get(), "EventLogConfig");
    EXPECT_EQ(nullptr, elmt_->StartHandler);
    EXPECT_EQ(nullptr, elmt_->EndHandler);
    EXPECT_STREQ("c", elmt_->DirName);
    EXPECT_EQ(1, elmt_->Depth);
}

// Counts the calls of handlers that a test puts into the slots.
int handler_calls = 0;
void XMLCALL CountEnd(void*, const XML_Char*) { ++handler_calls; }
void XMLCALL CountText(void*, const XML_Char*, int) { ++handler_calls; }

TEST_F(ConfigurationParse, CallsTheEndHandlerForElementsInsideOfTheSectionOnly) {
    handler_calls = 0;
    for (const char* name : {"c", "EventLogConfig", "x", "y"}) {
        CFG_StartElement(elmt_.get(), name, no_attributes_);
    }
    elmt_->EndHandler = CountEnd;
    CFG_EndElement(elmt_.get(), "y");
    EXPECT_EQ(0, handler_calls);
    CFG_EndElement(elmt_.get(), "x");
    EXPECT_EQ(1, handler_calls);
    CFG_EndElement(elmt_.get(), "EventLogConfig");
    CFG_EndElement(elmt_.get(), "c");
    EXPECT_EQ(1, handler_calls);
    EXPECT_EQ(nullptr, elmt_->EndHandler);
}

TEST_F(ConfigurationParse, CollectsTextAndPassesItOn) {
    handler_calls = 0;
    elmt_->CharDataHandler = CountText;
    CFG_CharacterDataHandler(elmt_.get(), "abc", 2);
    EXPECT_STREQ("ab", elmt_->CharDataBuf);
    EXPECT_EQ(2, elmt_->CharDataIndex);
    EXPECT_EQ(1, handler_calls);
}

TEST_F(ConfigurationParse, KeepsTheFirst2047BytesOfAText) {
    const std::string text(3000, 't');
    CFG_CharacterDataHandler(elmt_.get(), text.c_str(), 2000);
    CFG_CharacterDataHandler(elmt_.get(), text.c_str(), 1000);
    EXPECT_EQ(2047, elmt_->CharDataIndex);
    EXPECT_EQ(std::string(2047, 't'), elmt_->CharDataBuf);
}

TEST_F(ConfigurationParse, BeginsASectionWithoutHandlersOfAnother) {
    CFG_StartElement(elmt_.get(), "c", no_attributes_);
    elmt_->EndHandler = &CountEnd;
    elmt_->CharDataHandler = &CountText;
    CFG_StartElement(elmt_.get(), "DebugLogConfig", config_);
    EXPECT_EQ(nullptr, elmt_->EndHandler);
    EXPECT_EQ(nullptr, elmt_->CharDataHandler);
}

TEST_F(ConfigurationParse, LeavesTheArrayWidthAlone) {
    elmt_->ArrayWidth = 5;
    CFG_StartElement(elmt_.get(), "c", no_attributes_);
    EXPECT_EQ(5, elmt_->ArrayWidth);
}

}  // namespace
