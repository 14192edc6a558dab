// A temporary folder for the tests of files.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

class FolderCase : public testing::Test {
protected:
    FolderCase() {
        std::string folder = std::filesystem::temp_directory_path() / "tools-common-XXXXXX";
        folder_ = mkdtemp(folder.data());
    }
    ~FolderCase() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path folder_;
};
