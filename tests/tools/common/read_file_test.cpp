#include "common/read_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "tools/common/folder_case.h"

namespace {

using vexortools::FileError;
using vexortools::FileKind;
using vexortools::ReadFile;

class FileToRead : public FolderCase {
protected:
    std::string Write(const std::string& content) {
        std::ofstream(folder_ / "file", std::ios::binary) << content;
        return folder_ / "file";
    }

    // The errno of the failure; 0 when there is none.
    static int ErrorOf(const std::string& path, FileKind kind, std::size_t limit) {
        try {
            ReadFile(path.c_str(), kind, limit);
        } catch (const FileError& failure) {
            return failure.error;
        }
        return 0;
    }
};

TEST_F(FileToRead, IsReturnedToTheLastByte) {
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 200000U}) {
        const std::string content(size, 'x');
        EXPECT_EQ(ReadFile(Write(content).c_str(), FileKind::kRegular, size), content);
    }
    const std::string bytes("a\0b\r\n\xFF", 6);
    EXPECT_EQ(ReadFile(Write(bytes).c_str(), FileKind::kAny, 100), bytes);
}

TEST_F(FileToRead, OfMoreThanTheLimitIsRefused) {
    EXPECT_EQ(ErrorOf(Write("12345"), FileKind::kRegular, 5), 0);
    EXPECT_EQ(ErrorOf(Write("12345"), FileKind::kRegular, 4), EFBIG);
}

TEST_F(FileToRead, HasToBeARegularOneWhereThatIsAskedFor) {
    const std::string fifo = folder_ / "fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(ErrorOf(fifo, FileKind::kRegular, 5), EINVAL);
    EXPECT_EQ(ErrorOf(folder_, FileKind::kRegular, 5), EISDIR);
    EXPECT_EQ(ErrorOf(folder_, FileKind::kAny, 5), EISDIR);
    EXPECT_EQ(ErrorOf(folder_ / "none", FileKind::kAny, 5), ENOENT);
    EXPECT_EQ(ReadFile("/dev/null", FileKind::kAny, 5), "");
}

TEST_F(FileToRead, IsReadFromItsBeginningAsFarAsWanted) {
    const std::string path = Write("12345");
    EXPECT_EQ(vexortools::ReadBeginning(path.c_str(), 3), "123");
    EXPECT_EQ(vexortools::ReadBeginning(path.c_str(), 5), "12345");
    EXPECT_EQ(vexortools::ReadBeginning(path.c_str(), 9), "12345");
    EXPECT_THROW(vexortools::ReadBeginning(folder_.c_str(), 9), vexortools::FileError);
}

TEST_F(FileToRead, LeavesNoDescriptorOpenButStandardInput) {
    const auto lowest_free = [] {
        const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
        close(descriptor);
        return descriptor;
    };
    const int before = lowest_free();
    ReadFile(Write("text").c_str(), FileKind::kRegular, 10);
    ErrorOf(folder_, FileKind::kRegular, 10);
    EXPECT_EQ(lowest_free(), before);
}

}  // namespace
