// The debug log and named-file prints: when they are on, what they write, and what stands in the
// way.
#include "vx_dbg.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <ostream>
#include <string>

#include "append_file.h"
#include "fresh_debug_log.h"
#include "support/child_process.h"
#include "support/temporary_root.h"

namespace {

// As the library is loaded, before any test runs.
const VX_DBG_Ext loaded_state = DBG_Ext;

std::size_t OpenDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

std::filesystem::perms ModeOf(const std::string& file) {
    return std::filesystem::status(file).permissions();
}

class DebugLogTest : public testing::Test {
protected:
    void Configure(const std::string& attributes) const {
        root_.Write("/vexorapi.ini",
                    "<config><DebugLogConfig type=\"config\" " + attributes + "/></config>");
    }

    void TurnOn(const std::string& file) const {
        Configure("LogEnable=\"1\" Filename=\"" + file + "\"");
        ASSERT_EQ(1, VX_DBG_Init(nullptr));
    }

    void LetOthersWrite() const { chmod(root_.Path("/").c_str(), 01777); }

    // A path in the temporary folder of exactly `length` characters.
    std::string PathOfLength(std::size_t length) const {
        std::string path = root_.Path("/");
        return path + std::string(length - path.size(), 'n');
    }

    const FreshDebugLog fresh_;
    TemporaryRoot root_;
    const std::string log_ = root_.Path("/debug.log");
};

// ---- The state ----

TEST_F(DebugLogTest, IsLoadedWithoutNameSettingsOrDescriptor) {
    EXPECT_EQ(0u, loaded_state.Flags);
    EXPECT_STREQ("", loaded_state.FileName);
    EXPECT_EQ(-1, loaded_state.FOut);
    EXPECT_EQ(0, loaded_state.Cfg.LogEnable);
}

TEST_F(DebugLogTest, NamesHaveRoomFor127Characters) {
    EXPECT_EQ(128u, sizeof DBG_Ext.FileName);
    EXPECT_EQ(256u, sizeof DBG_Ext.Cfg.Filename);
}

TEST_F(DebugLogTest, TakesANameOfOneCharacter) {
    Configure("LogEnable=\"1\" Filename=\"" + log_ + "\"");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(root_.Path("/"));
    EXPECT_EQ(1, VX_DBG_Init("l"));
    std::filesystem::current_path(before);
    EXPECT_TRUE(root_.Exists("/l"));
}

TEST_F(DebugLogTest, CopiesNothingBehindTheLongestName) {
    Configure("LogEnable=\"1\" Filename=\"" + log_ + "\"");
    char name[129] = {};
    PathOfLength(127).copy(name, 127);
    name[128] = 'x';  // would be the first byte of FOut
    EXPECT_EQ(1, VX_DBG_Init(name));
    EXPECT_EQ(-1, DBG_Ext.FOut);
}

TEST_F(DebugLogTest, MakesItsFileForAMessageWithoutCharacters) {
    TurnOn(log_);
    std::filesystem::remove(log_);
    EXPECT_EQ(0, VX_DBG_Printf("%s", ""));
    EXPECT_TRUE(root_.Exists("/debug.log"));
    EXPECT_EQ(0, VX_DBG_PrintFile(root_.Path("/other.log").c_str(), "%s", ""));
    EXPECT_TRUE(root_.Exists("/other.log"));
}

// The log is descriptor 0 then.
TEST_F(DebugLogTest, IsWrittenThoughStandardInputIsClosed) {
    TurnOn(log_);
    const int input = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    VX_DBG_Printf("message");
    VX_DBG_PrintFile(root_.Path("/other.log").c_str(), "other");
    EXPECT_EQ(-1, fcntl(STDIN_FILENO, F_GETFD));
    if (input >= 0) {
        dup2(input, STDIN_FILENO);
        close(input);
    }
    EXPECT_EQ("message", root_.Read("/debug.log"));
    EXPECT_EQ("other", root_.Read("/other.log"));
}

// ---- Messages of a parse ----

using GatheredMessages = DebugLogTest;

TEST_F(GatheredMessages, StandInTheLogInTheirOrderWhenTheParseEnds) {
    TurnOn(log_);
    {
        const GatheredTraces gathered;
        EXPECT_EQ(4, VX_DBG_Printf("one\n"));
        EXPECT_EQ(6, VX_DBG_Printf("%s\n", "two %"));
        EXPECT_EQ("", root_.Read("/debug.log"));
    }
    EXPECT_EQ("one\ntwo %\n", root_.Read("/debug.log"));
    VX_DBG_Printf("three\n");
    EXPECT_EQ("one\ntwo %\nthree\n", root_.Read("/debug.log"));
    EXPECT_EQ(-1, DBG_Ext.FOut);
}

TEST_F(GatheredMessages, AreWrittenWhenTheNextOneHasNoRoomBesideThem) {
    TurnOn(log_);
    const std::string most(65535, 'a');
    {
        const GatheredTraces gathered;
        VX_DBG_Printf("%s", most.c_str());
        VX_DBG_Printf("b");
        EXPECT_EQ("", root_.Read("/debug.log"));
        VX_DBG_Printf("c");
        EXPECT_EQ(most + "b", root_.Read("/debug.log"));
    }
    EXPECT_EQ(most + "bc", root_.Read("/debug.log"));
}

TEST_F(GatheredMessages, MayBeOneThatFillsAllTheirRoom) {
    TurnOn(log_);
    const std::string whole(65536, 'a');
    {
        const GatheredTraces gathered;
        VX_DBG_Printf("%s", whole.c_str());
        EXPECT_EQ("", root_.Read("/debug.log"));
    }
    EXPECT_EQ(whole, root_.Read("/debug.log"));
}

TEST_F(GatheredMessages, StandBeforeOneThatIsLongerThanAllTheirRoom) {
    TurnOn(log_);
    const std::string longer(65537, 'b');
    const GatheredTraces gathered;
    VX_DBG_Printf("a");
    VX_DBG_Printf("%s", longer.c_str());
    EXPECT_EQ("a" + longer, root_.Read("/debug.log"));
}

TEST_F(GatheredMessages, OfARequestEndWithTheLineThatSaysWhatIsLeftOut) {
    TurnOn(log_);
    const std::string most(kMostTraced - 10, 'a');
    {
        const RequestTraces request;
        const GatheredTraces gathered;
        VX_DBG_Printf("%s", most.c_str());
        VX_DBG_Printf("b");
        VX_DBG_Printf("more than there is room for");
        VX_DBG_Printf("c");
    }
    EXPECT_EQ("b" + std::string("The request's further messages are left out: it has filled the "
                                "16777216 bytes that one request may write to the debug log.\n"),
              root_.Read("/debug.log").substr(most.size()));
}

// ---- Starting it ----

using DebugLogInit = DebugLogTest;

TEST_F(DebugLogInit, StaysOffWithoutAConfigurationFileWhateverNameIsGiven) {
    EXPECT_EQ(0, VX_DBG_Init(log_.c_str()));
    EXPECT_EQ(0, VX_DBG_Printf("x"));
    EXPECT_FALSE(root_.Exists("/debug.log"));
}

TEST_F(DebugLogInit, StaysOffWhenTheSectionDoesNotEnableIt) {
    Configure("LogEnable=\"0\" Filename=\"" + log_ + "\"");
    root_.Write("/debug.log", "old");
    EXPECT_EQ(0, VX_DBG_Init(nullptr));
    EXPECT_EQ("old", root_.Read("/debug.log"));
}

TEST_F(DebugLogInit, StaysOffWithoutAnyName) {
    Configure("LogEnable=\"1\"");
    EXPECT_EQ(0, VX_DBG_Init(nullptr));
    EXPECT_EQ(0, VX_DBG_Printf("x"));
}

TEST_F(DebugLogInit, UsesAndEmptiesTheConfiguredFileWhenNoNameIsGiven) {
    root_.Write("/debug.log", "old");
    Configure("LogEnable=\"1\" Filename=\"" + log_ + "\"");
    EXPECT_EQ(1, VX_DBG_Init(nullptr));
    EXPECT_EQ(log_, DBG_Ext.FileName);
    EXPECT_EQ("", root_.Read("/debug.log"));
}

TEST_F(DebugLogInit, UsesTheConfiguredFileWhenTheGivenNameIsEmpty) {
    Configure("LogEnable=\"1\" Filename=\"" + log_ + "\"");
    EXPECT_EQ(1, VX_DBG_Init(""));
    EXPECT_TRUE(root_.Exists("/debug.log"));
}

TEST_F(DebugLogInit, PrefersTheGivenNameToTheConfiguredOne) {
    Configure("LogEnable=\"1\" Filename=\"" + log_ + "\"");
    EXPECT_EQ(1, VX_DBG_Init(root_.Path("/given.log").c_str()));
    EXPECT_TRUE(root_.Exists("/given.log"));
    EXPECT_FALSE(root_.Exists("/debug.log"));
}

TEST_F(DebugLogInit, NeedsNoConfiguredNameWhenOneIsGiven) {
    Configure("LogEnable=\"1\"");
    EXPECT_EQ(1, VX_DBG_Init(log_.c_str()));
    EXPECT_TRUE(root_.Exists("/debug.log"));
}

TEST_F(DebugLogInit, TakesAnyNonZeroLowByteAsEnabled) {
    Configure("LogEnable=\"255\" Filename=\"" + log_ + "\"");
    EXPECT_EQ(1, VX_DBG_Init(nullptr));
}

TEST_F(DebugLogInit, LoadsItsSectionOncePerProcess) {
    EXPECT_EQ(0, VX_DBG_Init(log_.c_str()));
    EXPECT_EQ(1u, DBG_Ext.Flags);
    Configure("LogEnable=\"1\"");
    EXPECT_EQ(0, VX_DBG_Init(log_.c_str()));
}

TEST_F(DebugLogInit, ForgetsSettingsThatWereNotLoaded) {
    DBG_Ext.Cfg.LogEnable = 1;
    EXPECT_EQ(0, VX_DBG_Init(log_.c_str()));
}

TEST_F(DebugLogInit, SwitchesToAnotherFileAndEmptiesThatOne) {
    TurnOn(log_);
    VX_DBG_Printf("one");
    root_.Write("/second.log", "old");
    EXPECT_EQ(1, VX_DBG_Init(root_.Path("/second.log").c_str()));
    EXPECT_EQ("", root_.Read("/second.log"));
    VX_DBG_Printf("two");
    EXPECT_EQ("one", root_.Read("/debug.log"));
    EXPECT_EQ("two", root_.Read("/second.log"));
}

TEST_F(DebugLogInit, ReturnsToTheConfiguredFileWhenCalledAgainWithoutAName) {
    TurnOn(log_);
    VX_DBG_Init(root_.Path("/second.log").c_str());
    EXPECT_EQ(1, VX_DBG_Init(nullptr));
    VX_DBG_Printf("x");
    EXPECT_EQ("x", root_.Read("/debug.log"));
}

TEST_F(DebugLogInit, KeepsTheNameGivenBeforeWhenNoneIsConfigured) {
    Configure("LogEnable=\"1\"");
    VX_DBG_Init(log_.c_str());
    VX_DBG_Printf("x");
    EXPECT_EQ(1, VX_DBG_Init(nullptr));
    EXPECT_EQ("", root_.Read("/debug.log"));
}

TEST_F(DebugLogInit, TakesItsOwnNameBack) {
    TurnOn(log_);
    EXPECT_EQ(1, VX_DBG_Init(DBG_Ext.FileName));
    EXPECT_EQ(log_, DBG_Ext.FileName);
}

TEST_F(DebugLogInit, IsActiveEvenWhenItsFileCannotBeOpened) {
    Configure("LogEnable=\"1\" Filename=\"" + root_.Path("/missing/debug.log") + "\"");
    EXPECT_EQ(1, VX_DBG_Init(nullptr));
}

TEST_F(DebugLogInit, CreatesTheFileForItsOwnerAlone) {
    const mode_t before = umask(0);
    TurnOn(log_);
    umask(before);
    EXPECT_EQ(std::filesystem::perms{0600}, ModeOf(log_));
}

TEST_F(DebugLogInit, LeavesTheModeOfAFileThatExists) {
    root_.Write("/debug.log", "old");
    std::filesystem::permissions(log_, std::filesystem::perms{0640});
    TurnOn(log_);
    EXPECT_EQ(std::filesystem::perms{0640}, ModeOf(log_));
}

TEST_F(DebugLogInit, HoldsNoDescriptorAfterwards) {
    const std::size_t before = OpenDescriptors();
    TurnOn(log_);
    EXPECT_EQ(before, OpenDescriptors());
    EXPECT_EQ(-1, DBG_Ext.FOut);
}

// ---- Names at their limit ----

using DebugLogName = DebugLogTest;

TEST_F(DebugLogName, GivenWith127CharactersIsTaken) {
    Configure("LogEnable=\"1\"");
    const std::string name = PathOfLength(127);
    EXPECT_EQ(1, VX_DBG_Init(name.c_str()));
    EXPECT_TRUE(std::filesystem::exists(name));
}

TEST_F(DebugLogName, GivenWith128CharactersIsNoName) {
    Configure("LogEnable=\"1\"");
    EXPECT_EQ(0, VX_DBG_Init(PathOfLength(128).c_str()));
    EXPECT_FALSE(std::filesystem::exists(PathOfLength(127)));
    EXPECT_FALSE(std::filesystem::exists(PathOfLength(128)));
}

TEST_F(DebugLogName, GivenWith128CharactersYieldsToTheConfiguredOne) {
    Configure("LogEnable=\"1\" Filename=\"" + log_ + "\"");
    EXPECT_EQ(1, VX_DBG_Init(PathOfLength(128).c_str()));
    EXPECT_EQ(log_, DBG_Ext.FileName);
}

TEST_F(DebugLogName, ConfiguredWith127CharactersIsTaken) {
    const std::string name = PathOfLength(127);
    TurnOn(name);
    EXPECT_TRUE(std::filesystem::exists(name));
}

TEST_F(DebugLogName, ConfiguredWith128CharactersIsNoName) {
    Configure("LogEnable=\"1\" Filename=\"" + PathOfLength(128) + "\"");
    EXPECT_EQ(0, VX_DBG_Init(nullptr));
    EXPECT_FALSE(std::filesystem::exists(PathOfLength(127)));
    EXPECT_FALSE(std::filesystem::exists(PathOfLength(128)));
}

TEST_F(DebugLogName, ConfiguredWith300CharactersIsNoName) {
    Configure("LogEnable=\"1\" Filename=\"" + std::string(300, 'n') + "\"");
    EXPECT_EQ(0, VX_DBG_Init(nullptr));
}

// ---- Messages ----

using DebugLogMessage = DebugLogTest;

TEST_F(DebugLogMessage, IsFormattedAndAppended) {
    TurnOn(log_);
    VX_DBG_Printf("Dir = %s\n", "a.b");
    VX_DBG_Printf("%d", 7);
    EXPECT_EQ("Dir = a.b\n7", root_.Read("/debug.log"));
}

TEST_F(DebugLogMessage, ReturnsItsNumberOfCharacters) {
    TurnOn(log_);
    EXPECT_EQ(10, VX_DBG_Printf("Dir = %s\n", "a.b"));
}

TEST_F(DebugLogMessage, IsNotFormattedWhenTheLogIsOff) {
    DBG_Ext.FileName[0] = 'x';
    EXPECT_EQ(0, VX_DBG_Printf("x"));
    DBG_Ext.FileName[0] = '\0';
    DBG_Ext.Cfg.LogEnable = 1;
    EXPECT_EQ(0, VX_DBG_Printf("x"));
}

TEST_F(DebugLogMessage, KeepsAPercentSignOfItsArguments) {
    TurnOn(log_);
    EXPECT_EQ(16, VX_DBG_Printf("[CD %d]:%s\n", 8, "%s%n 5%%"));
    EXPECT_EQ("[CD 8]:%s%n 5%%\n", root_.Read("/debug.log"));
}

TEST_F(DebugLogMessage, Of512KibIsWrittenWhole) {
    TurnOn(log_);
    const std::string document(524287, 'x');
    EXPECT_EQ(524306, VX_DBG_Printf("Buffer too small\n %s\n", document.c_str()));
    EXPECT_EQ("Buffer too small\n " + document + "\n", root_.Read("/debug.log"));
}

TEST_F(DebugLogMessage, EndsAtANulCharacter) {
    TurnOn(log_);
    EXPECT_EQ(3, VX_DBG_Printf("a%cb", '\0'));
    EXPECT_EQ("a", root_.Read("/debug.log"));
}

TEST_F(DebugLogMessage, RecreatesAFileThatWasRemovedForItsOwnerAlone) {
    TurnOn(log_);
    std::filesystem::remove(log_);
    const mode_t before = umask(0);
    VX_DBG_Printf("x");
    umask(before);
    EXPECT_EQ("x", root_.Read("/debug.log"));
    EXPECT_EQ(std::filesystem::perms{0600}, ModeOf(log_));
}

TEST_F(DebugLogMessage, IsCountedAndDroppedWhenOthersCouldHavePutALinkThere) {
    root_.Write("/real.log", "precious");
    std::filesystem::create_symlink(root_.Path("/real.log"), log_);
    LetOthersWrite();
    TurnOn(log_);
    EXPECT_EQ(1, VX_DBG_Printf("x"));
    EXPECT_EQ("precious", root_.Read("/real.log"));
}

TEST_F(DebugLogMessage, IsDroppedWhenOthersCouldHaveGivenAFileASecondName) {
    root_.Write("/real.log", "precious");
    std::filesystem::create_hard_link(root_.Path("/real.log"), log_);
    LetOthersWrite();
    TurnOn(log_);
    EXPECT_EQ(1, VX_DBG_Printf("x"));
    EXPECT_EQ("precious", root_.Read("/real.log"));
}

TEST_F(DebugLogMessage, IsCountedAndDroppedWhenTheFileCannotBeOpened) {
    TurnOn(root_.Path("/missing/debug.log"));
    EXPECT_EQ(3, VX_DBG_Printf("abc"));
    EXPECT_FALSE(root_.Exists("/missing"));
}

TEST_F(DebugLogMessage, IsDroppedAndNotCountedWithoutMemory) {
    if (kSanitized) GTEST_SKIP() << "the sanitizers end a process that has no memory";
    TurnOn(log_);
    EXPECT_EQ(0, InChildWithoutMemory([] { return VX_DBG_Printf("%0100000d", 1) & 0xFF; }));
    EXPECT_EQ("", root_.Read("/debug.log"));
}

TEST_F(DebugLogMessage, IsCutWhereTheFileMayNotGrowAndCountedWhole) {
    TurnOn(log_);
    EXPECT_EQ(10, InChild([] {
                  signal(SIGXFSZ, SIG_IGN);
                  const rlimit four_bytes{4, 4};
                  setrlimit(RLIMIT_FSIZE, &four_bytes);
                  return VX_DBG_Printf("0123456789");
              }));
    EXPECT_EQ("0123", root_.Read("/debug.log"));
}

TEST_F(DebugLogMessage, LeavesNoDescriptorBehind) {
    TurnOn(log_);
    const std::size_t before = OpenDescriptors();
    VX_DBG_Printf("x");
    EXPECT_EQ(before, OpenDescriptors());
    EXPECT_EQ(-1, DBG_Ext.FOut);
}

TEST_F(DebugLogMessage, TraceDoesNotEvaluateItsArgumentsWhenTheLogIsOff) {
    int evaluated = 0;
    VX_DBG_TRACE("%d", ++evaluated);
    EXPECT_EQ(0, evaluated);
}

TEST_F(DebugLogMessage, TraceIsAMessageWhenTheLogIsOn) {
    TurnOn(log_);
    VX_DBG_TRACE("%d", 5);
    EXPECT_EQ("5", root_.Read("/debug.log"));
}

// ---- The reserved name ----

// Runs a test in the temporary folder with the standard error stream in a file of it.
class ReservedName : public DebugLogTest {
protected:
    ReservedName() {
        std::filesystem::current_path(root_.Path("/"));
        const int captured = open("captured", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        dup2(captured, STDERR_FILENO);
        close(captured);
    }
    ~ReservedName() override {
        dup2(stderr_, STDERR_FILENO);
        close(stderr_);
        std::filesystem::current_path(folder_);
    }

    void ExpectNothingWritten() const {
        EXPECT_FALSE(root_.Exists("/stderr"));
        EXPECT_EQ("", root_.Read("/captured"));
    }

private:
    const std::filesystem::path folder_ = std::filesystem::current_path();
    const int stderr_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
};

TEST_F(ReservedName, MakesTheLogActiveWithoutAFile) {
    TurnOn("stderr");
    ExpectNothingWritten();
}

TEST_F(ReservedName, MessagesAreFormattedAndWrittenNowhere) {
    TurnOn("stderr");
    EXPECT_EQ(3, VX_DBG_Printf("abc"));
    ExpectNothingWritten();
}

TEST_F(ReservedName, PrintsAreFormattedAndWrittenNowhere) {
    EXPECT_EQ(3, VX_DBG_PrintFile("stderr", "abc"));
    ExpectNothingWritten();
}

TEST_F(ReservedName, LeavesTheStandardErrorStreamOpen) {
    TurnOn("stderr");
    VX_DBG_Printf("abc");
    VX_DBG_Shutdown();
    EXPECT_NE(-1, fcntl(STDERR_FILENO, F_GETFD));
}

TEST_F(ReservedName, LeavesAFileOfThatNameAlone) {
    root_.Write("/stderr", "old");
    TurnOn("stderr");
    VX_DBG_Printf("abc");
    EXPECT_EQ("old", root_.Read("/stderr"));
}

TEST_F(ReservedName, IsReservedOnlyAsAWhole) {
    VX_DBG_PrintFile("./stderr", "abc");
    EXPECT_EQ("abc", root_.Read("/stderr"));
}

// ---- Shutting down ----

using DebugLogShutdown = DebugLogTest;

TEST_F(DebugLogShutdown, ClosesWhatIsStillHeld) {
    DBG_Ext.FOut = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const int held = DBG_Ext.FOut;
    VX_DBG_Shutdown();
    EXPECT_EQ(-1, DBG_Ext.FOut);
    EXPECT_EQ(-1, fcntl(held, F_GETFD));
}

TEST_F(DebugLogShutdown, DirectlyAfterInitClosesNothingOfTheProcess) {
    TurnOn(log_);
    const int other = open("/dev/null", O_RDONLY | O_CLOEXEC);  // takes the number just given back
    VX_DBG_Shutdown();
    EXPECT_NE(-1, fcntl(other, F_GETFD));
    close(other);
}

TEST_F(DebugLogShutdown, KeepsTheSettings) {
    TurnOn(log_);
    VX_DBG_Shutdown();
    VX_DBG_Printf("x");
    EXPECT_EQ("x", root_.Read("/debug.log"));
}

// ---- Named-file prints ----

using NamedFilePrint = DebugLogTest;

TEST_F(NamedFilePrint, IsWrittenWithTheDebugLogOff) {
    EXPECT_EQ(14, VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "XMLCmd = %s\n", "<a/>"));
    EXPECT_EQ("XMLCmd = <a/>\n", root_.Read("/r.log"));
}

TEST_F(NamedFilePrint, AppendsToWhatIsThere) {
    root_.Write("/r.log", "old\n");
    VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "new\n");
    EXPECT_EQ("old\nnew\n", root_.Read("/r.log"));
}

TEST_F(NamedFilePrint, DoesNotTouchTheDebugLog) {
    TurnOn(log_);
    VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "x");
    EXPECT_EQ("", root_.Read("/debug.log"));
    EXPECT_EQ(log_, DBG_Ext.FileName);
}

TEST_F(NamedFilePrint, HasADescriptorOfItsOwn) {
    DBG_Ext.FOut = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const int held = DBG_Ext.FOut;
    VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "x");
    EXPECT_EQ(held, DBG_Ext.FOut);
    EXPECT_NE(-1, fcntl(held, F_GETFD));
}

TEST_F(NamedFilePrint, KeepsAPercentSignOfItsArguments) {
    EXPECT_EQ(6, VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "%s", "%n%s%d"));
    EXPECT_EQ("%n%s%d", root_.Read("/r.log"));
}

TEST_F(NamedFilePrint, Of512KibIsWrittenWhole) {
    const std::string text(524288, 'x');
    EXPECT_EQ(524288, VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "%s", text.c_str()));
    EXPECT_EQ(text, root_.Read("/r.log"));
}

TEST_F(NamedFilePrint, TakesANameLongerThanTheDebugLogsField) {
    const std::string name = PathOfLength(200);
    VX_DBG_PrintFile(name.c_str(), "x");
    EXPECT_TRUE(std::filesystem::exists(name));
}

TEST_F(NamedFilePrint, IsCountedAndDroppedWhenOthersCouldHavePutALinkThere) {
    root_.Write("/real.log", "precious");
    std::filesystem::create_symlink("real.log", root_.Path("/r.log"));
    LetOthersWrite();
    EXPECT_EQ(1, VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "x"));
    EXPECT_EQ("precious", root_.Read("/real.log"));
}

TEST_F(NamedFilePrint, CreatesTheFileForItsOwnerAlone) {
    const mode_t before = umask(0);
    VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "x");
    umask(before);
    EXPECT_EQ(std::filesystem::perms{0600}, ModeOf(root_.Path("/r.log")));
}

TEST_F(NamedFilePrint, CountsTheMessageWithoutAName) {
    EXPECT_EQ(1, VX_DBG_PrintFile(nullptr, "x"));
    EXPECT_EQ(1, VX_DBG_PrintFile("", "x"));
}

TEST_F(NamedFilePrint, CountsNothingWithoutMemory) {
    if (kSanitized) GTEST_SKIP() << "the sanitizers end a process that has no memory";
    const std::string name = root_.Path("/r.log");
    EXPECT_EQ(0, InChildWithoutMemory(
                     [&] { return VX_DBG_PrintFile(name.c_str(), "%0100000d", 1) & 0xFF; }));
}

TEST_F(NamedFilePrint, LeavesNoDescriptorBehind) {
    const std::size_t before = OpenDescriptors();
    VX_DBG_PrintFile(root_.Path("/r.log").c_str(), "x");
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_F(NamedFilePrint, DropsWhatAFullDeviceDoesNotTake) {
    EXPECT_EQ(3, VX_DBG_PrintFile("/dev/full", "abc"));
}

// A terminal that nobody reads from, by the name of its far end.
class IdleTerminal {
public:
    IdleTerminal() {
        grantpt(master_);
        unlockpt(master_);
        ptsname_r(master_, name_, sizeof name_);
    }
    ~IdleTerminal() { close(master_); }
    IdleTerminal(const IdleTerminal&) = delete;
    IdleTerminal& operator=(const IdleTerminal&) = delete;

    const char* Name() const { return name_; }

    std::string Read() const {
        char text[64];
        const ssize_t length = read(master_, text, sizeof text);
        return length < 0 ? "" : std::string(text, static_cast<std::size_t>(length));
    }

private:
    const int master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    char name_[64] = "";
};

TEST_F(NamedFilePrint, IsWrittenToATerminal) {
    const IdleTerminal terminal;
    EXPECT_EQ(3, VX_DBG_PrintFile(terminal.Name(), "abc"));
    EXPECT_EQ("abc", terminal.Read());
}

TEST_F(NamedFilePrint, DoesNotWaitForATerminalThatTakesNoMore) {
    const IdleTerminal terminal;
    const std::string text(1 << 20, 'x');
    EXPECT_EQ(1 << 20, VX_DBG_PrintFile(terminal.Name(), "%s", text.c_str()));
}

TEST_F(NamedFilePrint, DoesNotMakeATerminalTheProcessesOwn) {
    const IdleTerminal terminal;
    EXPECT_EQ(1, InChild([&] {
                  setsid();
                  VX_DBG_PrintFile(terminal.Name(), "abc");
                  return open("/dev/tty", O_RDWR | O_CLOEXEC) < 0 ? 1 : 0;
              }));
}

// ---- What is no log: everything but files and character devices, by its own name or a link's ----

enum class Kind { kFolder, kFifo, kSocket };

struct NoLog {
    const char* name;
    Kind kind;
    bool linked;
};
void PrintTo(const NoLog& row, std::ostream* out) { *out << row.name; }

class UnopenableLog : public DebugLogTest, public testing::WithParamInterface<NoLog> {
protected:
    UnopenableLog() {
        const std::string made = GetParam().linked ? root_.Path("/target") : log_;
        switch (GetParam().kind) {
            case Kind::kFolder:
                std::filesystem::create_directory(made);
                break;
            case Kind::kFifo:
                mkfifo(made.c_str(), 0600);
                break;
            case Kind::kSocket: {
                sockaddr_un address{};
                address.sun_family = AF_UNIX;
                made.copy(address.sun_path, sizeof address.sun_path - 1);
                bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
                break;
            }
        }
        if (GetParam().linked) std::filesystem::create_symlink(made, log_);
        type_ = std::filesystem::status(log_).type();
    }
    ~UnopenableLog() override { close(socket_); }

    void ExpectUntouched() const { EXPECT_EQ(type_, std::filesystem::status(log_).type()); }

private:
    const int socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::filesystem::file_type type_{};
};

TEST_P(UnopenableLog, StartsAndDropsItsMessagesWithoutWaiting) {
    const std::size_t before = OpenDescriptors();
    TurnOn(log_);
    EXPECT_EQ(3, VX_DBG_Printf("abc"));
    ExpectUntouched();
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_P(UnopenableLog, DropsPrintsWithoutWaiting) {
    const std::size_t before = OpenDescriptors();
    EXPECT_EQ(3, VX_DBG_PrintFile(log_.c_str(), "abc"));
    ExpectUntouched();
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_P(UnopenableLog, CannotBeOpened) { EXPECT_FALSE(OpenForAppend(log_.c_str()).IsOpen()); }

INSTANTIATE_TEST_SUITE_P(Kinds, UnopenableLog,
                         testing::Values(NoLog{"Folder", Kind::kFolder, false},
                                         NoLog{"LinkToFolder", Kind::kFolder, true},
                                         NoLog{"Fifo", Kind::kFifo, false},
                                         NoLog{"LinkToFifo", Kind::kFifo, true},
                                         NoLog{"Socket", Kind::kSocket, false},
                                         NoLog{"LinkToSocket", Kind::kSocket, true}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(NamedFilePrint, PutsNothingIntoAFifoThatIsBeingRead) {
    const std::string fifo = root_.Path("/fifo");
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    VX_DBG_PrintFile(fifo.c_str(), "abc");
    char byte;
    EXPECT_EQ(0, read(reader, &byte, 1));
    close(reader);
}

// ---- The files beneath ----

using LogFile = DebugLogTest;

TEST_F(LogFile, OpenedForAppendingIsClosedOnExec) {
    const Descriptor log = OpenForAppend(log_.c_str());
    EXPECT_EQ(FD_CLOEXEC, fcntl(log.Get(), F_GETFD));
}

TEST_F(LogFile, OpenedForAppendingKeepsItsText) {
    root_.Write("/debug.log", "old");
    EXPECT_TRUE(OpenForAppend(log_.c_str()).IsOpen());
    EXPECT_EQ("old", root_.Read("/debug.log"));
}

TEST_F(LogFile, EveryAppendGoesBehindWhatOthersWrote) {
    const Descriptor log = OpenForAppend(log_.c_str());
    AppendBytes(log.Get(), "a", 1);
    root_.Write("/debug.log", "other");
    AppendBytes(log.Get(), "b", 1);
    EXPECT_EQ("otherb", root_.Read("/debug.log"));
}

// A pipe that an alarm empties again and again, so that a large write is cut short each time that
// the pipe is full.
int pipe_ends[2];
volatile std::size_t piped_bytes = 0;
void EmptyPipe(int) {
    const int error = errno;
    char bytes[4096];
    for (ssize_t length; (length = read(pipe_ends[0], bytes, sizeof bytes)) > 0;) {
        piped_bytes = piped_bytes + static_cast<std::size_t>(length);
    }
    errno = error;
}

TEST_F(LogFile, AppendGoesOnAfterAShortOrInterruptedWrite) {
    ASSERT_EQ(0, pipe2(pipe_ends, O_CLOEXEC));
    fcntl(pipe_ends[0], F_SETFL, O_NONBLOCK);
    struct sigaction empty_pipe {};
    empty_pipe.sa_handler = EmptyPipe;  // without SA_RESTART: it interrupts what it finds waiting
    sigaction(SIGALRM, &empty_pipe, nullptr);
    const itimerval every_5_ms{{0, 5000}, {0, 5000}};
    setitimer(ITIMER_REAL, &every_5_ms, nullptr);
    // The first write finds the pipe full and is interrupted with nothing taken.
    const std::string full(static_cast<std::size_t>(fcntl(pipe_ends[1], F_GETPIPE_SZ)), 'x');
    const ssize_t filled = write(pipe_ends[1], full.data(), full.size());
    const std::string text(300000, 'x');
    AppendBytes(pipe_ends[1], text.data(), text.size());
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    signal(SIGALRM, SIG_DFL);
    EmptyPipe(SIGALRM);
    close(pipe_ends[0]);
    close(pipe_ends[1]);
    EXPECT_EQ(300000u, piped_bytes - static_cast<std::size_t>(filled));
}

TEST_F(LogFile, EmptyingCreatesIt) {
    TruncateFile(log_.c_str());
    EXPECT_TRUE(root_.Exists("/debug.log"));
}

TEST_F(LogFile, EmptyingFollowsNoLinkOfSomebodyElse) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a link away";
    root_.Write("/real.log", "precious");
    std::filesystem::create_symlink(root_.Path("/real.log"), log_);
    ASSERT_EQ(0, lchown(log_.c_str(), 65534, 65534));
    TruncateFile(log_.c_str());
    EXPECT_EQ("precious", root_.Read("/real.log"));
    EXPECT_TRUE(std::filesystem::is_symlink(log_));
}

}  // namespace
