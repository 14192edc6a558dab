// Every input that the fuzzers keep, through the same entries, with whatever compiler builds this.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/folders.h"
#include "targets.h"

namespace {

using Target = const char* (*)(const std::uint8_t* data, std::size_t size);

// Replays one folder of the corpus and returns the number of its inputs.
int Replay(const std::string& folder, Target target) {
    int inputs = 0;
    const std::string path = std::string(kSourceFolder) + "/fuzz/corpus/" + folder;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        EXPECT_STREQ(nullptr,
                     target(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()))
            << entry.path();
        ++inputs;
    }
    return inputs;
}

TEST(FuzzReplay, OfCommandsFindsNothing) { EXPECT_GT(Replay("command", FuzzCommand), 10); }

TEST(FuzzReplay, OfConfigurationsFindsNothing) {
    EXPECT_GT(Replay("configuration", FuzzConfiguration), 5);
}

TEST(FuzzReplay, OfNumbersFindsNothing) { EXPECT_GT(Replay("numbers", FuzzNumbers), 5); }

}  // namespace
