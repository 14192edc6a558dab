// Every input that the virtual controller's and the tools' fuzzers keep.
#include "replay.h"
#include "targets.h"

namespace {

TEST(FuzzReplay, OfResultsFindsNothing) { EXPECT_GT(ReplayCorpus("result", FuzzResult), 4); }

TEST(FuzzReplay, OfScenariosFindsNothing) {
    EXPECT_GT(ReplayCorpus("scenario", FuzzScenario), 2);
    EXPECT_GT(ReplayFolder("examples/scenarios", FuzzScenario), 5);
}

TEST(FuzzReplay, OfStateFilesWithDamagedPagesFindsNothing) {
    EXPECT_GT(ReplayCorpus("state_pages", FuzzStatePages), 4);
}

TEST(FuzzReplay, OfStateFilesWithDamagedRowsFindsNothing) {
    EXPECT_GT(ReplayCorpus("state_rows", FuzzStateRows), 4);
}

TEST(FuzzReplay, OfTopologiesFindsNothing) {
    EXPECT_GT(ReplayCorpus("topology", FuzzTopology), 3);
    EXPECT_GT(ReplayFolder("controllers/virtual/topology/topologies", FuzzTopology), 2);
}

}  // namespace
