#include "common/replace_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "common/read_file.h"
#include "tools/common/folder_case.h"

namespace {

using vexortools::FileError;
using vexortools::ReplaceFile;

class FileToReplace : public FolderCase {
protected:
    std::string Content() const {
        std::ifstream file(folder_ / "file", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // How many files the folder holds: no temporary one may be left.
    std::ptrdiff_t Files() const {
        return std::distance(std::filesystem::directory_iterator(folder_), {});
    }
};

TEST_F(FileToReplace, HasTheNewContentAndNothingIsLeftBesideIt) {
    ReplaceFile(folder_ / "file", "first");
    EXPECT_EQ(Content(), "first");
    const std::string second(200000, 'x');
    ReplaceFile(folder_ / "file", second);
    EXPECT_EQ(Content(), second);
    ReplaceFile(folder_ / "file", "");
    EXPECT_EQ(Content(), "");
    EXPECT_EQ(Files(), 1);
    struct stat status;
    ASSERT_EQ(stat((folder_ / "file").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(FileToReplace, StaysWhenTheNewOneCannotBePutThere) {
    std::filesystem::create_directories(folder_ / "file" / "inside");
    try {
        ReplaceFile(folder_ / "file", "text");
        FAIL() << "a folder was replaced";
    } catch (const FileError& failure) {
        EXPECT_EQ(failure.error, EISDIR);
    }
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / "file" / "inside"));
    EXPECT_EQ(Files(), 1);
    EXPECT_THROW(ReplaceFile(folder_ / "none" / "file", "text"), FileError);
}

}  // namespace
