// Replays the inputs that the fuzzers keep.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/folders.h"

using FuzzTarget = const char* (*)(const std::uint8_t* data, std::size_t size);

/// Replays every file of a folder of the tree and returns the number of them.
inline int ReplayFolder(const std::string& folder, FuzzTarget target) {
    int inputs = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(kSourceFolder) + "/" + folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        EXPECT_STREQ(nullptr,
                     target(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()))
            << entry.path();
        ++inputs;
    }
    return inputs;
}

inline int ReplayCorpus(const std::string& target_name, FuzzTarget target) {
    return ReplayFolder("fuzz/corpus/" + target_name, target);
}
