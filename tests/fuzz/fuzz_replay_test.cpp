// Every input that the library's fuzzers keep, through the same entries, with whatever compiler
// builds this.
#include "replay.h"
#include "targets.h"

namespace {

TEST(FuzzReplay, OfCommandsFindsNothing) { EXPECT_GT(ReplayCorpus("command", FuzzCommand), 10); }

TEST(FuzzReplay, OfConfigurationsFindsNothing) {
    EXPECT_GT(ReplayCorpus("configuration", FuzzConfiguration), 5);
}

TEST(FuzzReplay, OfEventStoresFindsNothing) {
    EXPECT_GT(ReplayCorpus("event_store", FuzzEventStore), 5);
}

TEST(FuzzReplay, OfEventTextsFindsNothing) {
    EXPECT_GT(ReplayCorpus("event_text", FuzzEventText), 4);
}

TEST(FuzzReplay, OfImagesFindsNothing) { EXPECT_GT(ReplayCorpus("images", FuzzImages), 5); }

TEST(FuzzReplay, OfLogonsFindsNothing) { EXPECT_GT(ReplayCorpus("logon", FuzzLogon), 5); }

TEST(FuzzReplay, OfLogsFindsNothing) { EXPECT_GT(ReplayCorpus("logs", FuzzLogs), 5); }

TEST(FuzzReplay, OfNumbersFindsNothing) { EXPECT_GT(ReplayCorpus("numbers", FuzzNumbers), 5); }

TEST(FuzzReplay, OfWriterCallsFindsNothing) { EXPECT_GT(ReplayCorpus("writer", FuzzWriter), 3); }

}  // namespace
