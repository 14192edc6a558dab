// Expected bytes, written out by hand below golden/.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/folders.h"

/// The path of a file below golden/.
inline std::string GoldenPath(const std::string& name) {
    return std::string(kSourceFolder) + "/tests/backend/vexorapi/golden/" + name;
}

/// A file below golden/ as it stands.
inline std::string GoldenText(const std::string& name) {
    std::ifstream file(GoldenPath(name), std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The bytes that a file below golden/ tells: pairs of hexadecimal digits, "texts" as they
/// stand, "@n" (zeros up to offset n, in decimal), and comments from "#" to the line's end.
inline std::string GoldenBytes(const std::string& name) {
    std::ifstream file(GoldenPath(name));
    EXPECT_TRUE(file.is_open()) << name;
    std::string bytes;
    char first;
    while (file >> first) {
        std::string rest;
        if (first == '#') {
            std::getline(file, rest);
        } else if (first == '"') {
            std::getline(file, rest, '"');
            bytes += rest;
        } else if (first == '@') {
            std::size_t offset = 0;
            file >> offset;
            EXPECT_LE(bytes.size(), offset) << name;
            bytes.resize(offset, '\0');
        } else {
            file >> rest;
            EXPECT_EQ(1u, rest.size()) << name << " after byte " << bytes.size();
            bytes += static_cast<char>(std::stoi(first + rest, nullptr, 16));
        }
    }
    return bytes;
}
