#include "common/replace_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "common/read_file.h"
#include "tools/common/folder_case.h"

namespace {

using vexortools::Existing;
using vexortools::FileError;
using vexortools::NewFile;
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
    mode_t Mode() const {
        struct stat status;
        return stat((folder_ / "file").c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    // A file that somebody else wrote takes the place.
    void Put(const char* content, Existing existing) const {
        const NewFile file(folder_ / "file");
        std::ofstream(file.Path()) << content;
        file.Put(existing, 0666);
    }
    // The errno of what `work` throws; 0 when it throws nothing.
    static int ErrorOf(const std::function<void()>& work) {
        try {
            work();
            return 0;
        } catch (const FileError& failure) {
            return failure.error;
        }
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

TEST_F(FileToReplace, KeepsItsMode) {
    for (const mode_t mode : {0600U, 0640U, 0644U}) {
        ReplaceFile(folder_ / "file", "old");
        ASSERT_EQ(chmod((folder_ / "file").c_str(), mode), 0);
        ReplaceFile(folder_ / "file", "new");
        EXPECT_EQ(Mode(), mode);
    }
}

TEST_F(FileToReplace, HasNoTailOfALongerOlderOne) {
    ReplaceFile(folder_ / "file", std::string(100000, 'o'));
    Put("new", Existing::kReplace);
    EXPECT_EQ(Content(), "new");
    EXPECT_EQ(Files(), 1);
}

TEST_F(FileToReplace, IsKeptWhereThatIsAsked) {
    ReplaceFile(folder_ / "file", "old");
    EXPECT_EQ(ErrorOf([&] { Put("new", Existing::kKeep); }), EEXIST);
    EXPECT_EQ(Content(), "old");
    EXPECT_EQ(Files(), 1);
}

TEST_F(FileToReplace, HasTheModeThatIsAskedForWhenItIsNew) {
    const mode_t before = umask(027);
    Put("new", Existing::kKeep);
    umask(before);
    EXPECT_EQ(Content(), "new");
    EXPECT_EQ(Mode(), 0640U);
}

TEST_F(FileToReplace, ThatIsALinkIsReplacedAndItsTargetStays) {
    ReplaceFile(folder_ / "target", "theirs");
    std::filesystem::create_symlink(folder_ / "target", folder_ / "file");
    EXPECT_EQ(ErrorOf([&] { Put("new", Existing::kKeep); }), EEXIST);
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "file"));
    Put("new", Existing::kReplace);
    EXPECT_FALSE(std::filesystem::is_symlink(folder_ / "file"));
    EXPECT_EQ(Content(), "new");
    std::ifstream target(folder_ / "target");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(target), {}), "theirs");
}

TEST_F(FileToReplace, ThatIsADeviceOrAFifoIsRefused) {
    ASSERT_EQ(mkfifo((folder_ / "file").c_str(), 0600), 0);
    EXPECT_EQ(ErrorOf([&] { ReplaceFile(folder_ / "file", "text"); }), EINVAL);
    EXPECT_TRUE(std::filesystem::is_fifo(folder_ / "file"));
    EXPECT_EQ(Files(), 1);
}

// What a full disk does, as far as a process can be made to feel it.
class NoRoom {
public:
    NoRoom() {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit little{1000, before_.rlim_max};
        handler_ = signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &little);
    }
    ~NoRoom() {
        setrlimit(RLIMIT_FSIZE, &before_);
        signal(SIGXFSZ, handler_);
    }
    NoRoom(const NoRoom&) = delete;
    NoRoom& operator=(const NoRoom&) = delete;

private:
    rlimit before_{};
    sighandler_t handler_ = SIG_DFL;
};

TEST_F(FileToReplace, StaysWhenThereIsNoRoomForTheNewOne) {
    ReplaceFile(folder_ / "file", "old");
    {
        const NoRoom no_room;
        EXPECT_EQ(ErrorOf([&] { ReplaceFile(folder_ / "file", std::string(2000, 'n')); }), EFBIG);
        EXPECT_EQ(ErrorOf([&] { NewFile(folder_ / "file").Reserve(2000); }), EFBIG);
        EXPECT_TRUE(NewFile(folder_ / "file").Reserve(1000));
    }
    EXPECT_EQ(Content(), "old");
    EXPECT_EQ(Files(), 1);
}

TEST_F(FileToReplace, TakesNoMoreRoomThanItsContent) {
    const NewFile file(folder_ / "file");
    ASSERT_TRUE(file.Reserve(1 << 20));
    EXPECT_EQ(file.Size(), 0U);
    std::ofstream(file.Path()) << "text";
    file.Put(Existing::kKeep, 0600);
    struct stat status;
    ASSERT_EQ(stat((folder_ / "file").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 4);
    EXPECT_LT(status.st_blocks, 100);
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
