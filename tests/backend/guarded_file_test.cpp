// Which files are opened for writing, and what other users may have put in their place.
#include "guarded_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>

#include "support/child_process.h"
#include "support/temporary_root.h"

namespace {

constexpr uid_t kSomebody = 65534;
constexpr uid_t kAnother = 65533;

// A folder with a file in it, and another file beside it that a link can lead to.
class GuardedFileTest : public testing::Test {
protected:
    GuardedFileTest() {
        std::filesystem::create_directory(root_.Path("/folder"));
        SetMode("/folder", 0755);
        root_.Write("/target", "precious");
        SetMode("/target", 0644);
    }

    static const char* Text(const std::string& path) { return path.c_str(); }
    void SetMode(const char* name, mode_t mode) const {
        ASSERT_EQ(0, chmod(Text(root_.Path(name)), mode));
    }
    void GiveAway(const char* name, uid_t owner = kSomebody) const {
        ASSERT_EQ(0, lchown(Text(root_.Path(name)), owner, owner));
    }
    void Link(const std::string& target, const char* name) const {
        std::filesystem::create_symlink(target, root_.Path(name));
    }
    void SecondName(const char* name) const {
        std::filesystem::create_hard_link(root_.Path("/target"), root_.Path(name));
    }
    bool Opens(const char* name, int flags = O_RDWR | O_CREAT) const {
        return OpenGuarded(Text(root_.Path(name)), flags, 0600).file.IsOpen();
    }
    // Writes through the name. Returns what the target holds then.
    std::string TargetAfterWriting(const char* name) const {
        const GuardedFile opened = OpenGuarded(Text(root_.Path(name)), O_RDWR | O_CREAT, 0600);
        if (opened.file.IsOpen() && write(opened.file.Get(), "X", 1) != 1) return "not written";
        return root_.Read("/target");
    }

    TemporaryRoot root_;
};

constexpr char kUntouched[] = "precious";
constexpr char kWritten[] = "Xrecious";

// ---- What it opens ----

TEST_F(GuardedFileTest, MakesAFileWithTheMode) {
    const mode_t before = umask(0);
    const GuardedFile opened = OpenGuarded(Text(root_.Path("/new")), O_WRONLY | O_CREAT, 0640);
    umask(before);
    ASSERT_TRUE(opened.file.IsOpen());
    EXPECT_EQ(S_IFREG | 0640U, opened.status.mode);
    EXPECT_EQ(FD_CLOEXEC, fcntl(opened.file.Get(), F_GETFD));
}

TEST_F(GuardedFileTest, MakesNoFileUnlessAsked) {
    EXPECT_FALSE(Opens("/new", O_RDWR));
    EXPECT_FALSE(root_.Exists("/new"));
}

TEST_F(GuardedFileTest, KeepsWhatAFileHolds) {
    EXPECT_TRUE(Opens("/target"));
    EXPECT_EQ(kUntouched, root_.Read("/target"));
}

TEST_F(GuardedFileTest, OpensCharacterDevicesAlone) {
    const GuardedFile opened = OpenGuarded("/dev/null", O_RDWR, 0);
    EXPECT_TRUE(opened.file.IsOpen());
    EXPECT_TRUE(S_ISCHR(opened.status.mode));
    ASSERT_EQ(0, mkfifo(Text(root_.Path("/fifo")), 0600));
    EXPECT_FALSE(Opens("/fifo"));
    EXPECT_FALSE(Opens("/folder"));
    EXPECT_FALSE(Opens("/folder", O_RDWR));
}

TEST_F(GuardedFileTest, OpensNoNameThatNamesNoFile) {
    EXPECT_FALSE(OpenGuarded("", O_RDWR | O_CREAT, 0600).file.IsOpen());
    EXPECT_FALSE(OpenGuarded("/", O_RDWR | O_CREAT, 0600).file.IsOpen());
    EXPECT_FALSE(Opens("/target/"));
    EXPECT_FALSE(Opens("/folder/new/"));
    EXPECT_FALSE(Opens("/target/below"));
    EXPECT_FALSE(Opens("/missing/new"));
    EXPECT_FALSE(Opens("/folder/.."));
    EXPECT_FALSE(OpenGuarded(std::string(5000, '/').c_str(), O_RDWR, 0).file.IsOpen());
}

TEST_F(GuardedFileTest, OpensWhatStandsInTheWorkingFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(root_.Path("/"));
    Link("target", "/link");
    const bool plain = OpenGuarded("target", O_RDWR, 0).file.IsOpen();
    const bool link = OpenGuarded("folder/..//./link", O_RDWR, 0).file.IsOpen();
    std::filesystem::current_path(before);
    EXPECT_TRUE(plain);
    EXPECT_TRUE(link);
}

// As on a kernel without openat2, or where a sandbox forbids it.
bool ForbidOpenat2() {
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{std::size(filter), filter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST_F(GuardedFileTest, NeedsNoHelpOfTheKernel) {
    Link("../target", "/folder/link");
    std::filesystem::create_directory(root_.Path("/shared"));
    SetMode("/shared", 0777);
    SecondName("/shared/second");
    EXPECT_EQ(7, InChild([&] {
                  if (!ForbidOpenat2() || syscall(SYS_openat2, AT_FDCWD, "/", nullptr, 0) != -1 ||
                      errno != ENOSYS) {
                      return 0;
                  }
                  return (Opens("/folder/new") ? 1 : 0) + (Opens("/folder/link", O_RDWR) ? 2 : 0) +
                         (Opens("/shared/second", O_RDWR) ? 0 : 4);
              }));
    EXPECT_TRUE(root_.Exists("/folder/new"));
}

// ---- Links of one's own, in a folder of one's own ----

TEST_F(GuardedFileTest, FollowsALink) {
    Link("../target", "/folder/link");
    EXPECT_EQ(kWritten, TargetAfterWriting("/folder/link"));
}

TEST_F(GuardedFileTest, FollowsALinkToAWholePath) {
    Link(root_.Path("/target"), "/folder/link");
    EXPECT_EQ(kWritten, TargetAfterWriting("/folder/link"));
}

TEST_F(GuardedFileTest, FollowsALinkToAFolderOnTheWay) {
    Link("..", "/folder/up");
    EXPECT_EQ(kWritten, TargetAfterWriting("/folder/up/target"));
    Link(root_.Path("/folder"), "/there");
    EXPECT_EQ("Xrecious", TargetAfterWriting("/there/up/folder/up/target"));
}

TEST_F(GuardedFileTest, MakesTheFileThatALinkLeadsTo) {
    Link("new", "/folder/link");
    EXPECT_TRUE(Opens("/folder/link"));
    EXPECT_TRUE(root_.Exists("/folder/new"));
}

TEST_F(GuardedFileTest, OpensAFileOfTwoNames) {
    SecondName("/folder/second");
    EXPECT_EQ(kWritten, TargetAfterWriting("/folder/second"));
}

// As many links as the kernel follows itself.
TEST_F(GuardedFileTest, FollowsFortyLinksAndNotOneMore) {
    Link("target", "/link1");
    for (int i = 2; i <= 41; ++i) {
        Link("link" + std::to_string(i - 1), ("/link" + std::to_string(i)).c_str());
    }
    EXPECT_TRUE(Opens("/link40", O_RDWR));
    EXPECT_FALSE(Opens("/link41", O_RDWR));
}

TEST_F(GuardedFileTest, FollowsNoLinkToItself) {
    Link("link", "/link");
    EXPECT_FALSE(Opens("/link"));
}

// The longest path has 4095 characters. A cut target would be another file's name.
TEST_F(GuardedFileTest, FollowsALinkWhoseTargetFitsWithTheRestOfThePath) {
    const auto slashes = [&](std::size_t length) {
        const std::string target = root_.Path("/folder");
        return std::string(length - target.size(), '/') + target;
    };
    root_.Write("/folder/file", "");
    Link(slashes(4090), "/fits");  // and "/file"
    Link(slashes(4091), "/too_long");
    EXPECT_TRUE(Opens("/fits/file", O_RDWR));
    EXPECT_FALSE(Opens("/too_long/file", O_RDWR));
    // A NUL behind the field would fall on the descriptor of the folder and make it number 0.
    const Descriptor null(open("/dev/null", O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(STDIN_FILENO, dup2(null.Get(), STDIN_FILENO));
    EXPECT_FALSE(Opens("/too_long/file", O_RDWR));
    EXPECT_NE(-1, fcntl(STDIN_FILENO, F_GETFD));
}

// ---- Folders that others may write ----

class SharedFolderGuard : public GuardedFileTest, public testing::WithParamInterface<mode_t> {
protected:
    SharedFolderGuard() { SetMode("/folder", GetParam()); }
};

TEST_P(SharedFolderGuard, MayHoldTheFile) {
    EXPECT_TRUE(Opens("/folder/new"));
    EXPECT_TRUE(Opens("/folder/new"));
}

TEST_P(SharedFolderGuard, MayHoldNoLink) {
    Link("../target", "/folder/link");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/folder/link"));
}

TEST_P(SharedFolderGuard, MayHoldNoLinkToAFolderOnTheWay) {
    Link("..", "/folder/up");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/folder/up/target"));
}

TEST_P(SharedFolderGuard, MayHoldNoSecondName) {
    SecondName("/folder/second");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/folder/second"));
}

TEST_P(SharedFolderGuard, MayBeLedToFromElsewhere) {
    root_.Write("/folder/file", "");
    Link("folder/file", "/link");
    EXPECT_TRUE(Opens("/link", O_RDWR));
}

TEST_P(SharedFolderGuard, MayBeLedToFromElsewhereButNotToASecondName) {
    SecondName("/folder/second");
    Link("folder/second", "/link");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/link"));
}

TEST_P(SharedFolderGuard, MayHoldNoFileOfSomebodyElse) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    root_.Write("/folder/file", "");
    GiveAway("/folder/file");
    EXPECT_FALSE(Opens("/folder/file", O_RDWR));
}

INSTANTIATE_TEST_SUITE_P(Modes, SharedFolderGuard, testing::Values(0777, 01777, 0775, 0702),
                         [](const testing::TestParamInfo<mode_t>& test) {
                             char text[8];
                             std::snprintf(text, sizeof text, "%o", test.param);
                             return std::string(text);
                         });

// ---- What belongs to others ----

class OthersFiles : public GuardedFileTest {
protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    }
};

TEST_F(OthersFiles, ALinkIsNotFollowed) {
    Link("../target", "/folder/link");
    GiveAway("/folder/link");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/folder/link"));
}

TEST_F(OthersFiles, ALinkOnTheWayIsNotFollowed) {
    Link("..", "/folder/up");
    GiveAway("/folder/up");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/folder/up/target"));
}

TEST_F(OthersFiles, ALinkBehindOnesOwnIsNotFollowed) {
    Link("../target", "/folder/link");
    GiveAway("/folder/link");
    Link("folder/link", "/mine");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/mine"));
}

TEST_F(OthersFiles, AFolderHoldsNoLink) {
    Link("../target", "/folder/link");
    GiveAway("/folder");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/folder/link"));
}

TEST_F(OthersFiles, AFolderMayHoldTheFile) {
    GiveAway("/folder");
    EXPECT_TRUE(Opens("/folder/new"));
}

TEST_F(OthersFiles, AFileOfTwoNamesIsNotOpened) {
    SecondName("/folder/second");
    GiveAway("/target");
    EXPECT_EQ(kUntouched, TargetAfterWriting("/folder/second"));
}

TEST_F(OthersFiles, AFileOfOneNameInOnesOwnFolderIsOpened) {
    GiveAway("/target");
    EXPECT_EQ(kWritten, TargetAfterWriting("/target"));
}

// As the user of a web server, who is not root.
TEST_F(OthersFiles, RootsLinksAreFollowedAndOtherUsersAreNot) {
    GiveAway("/", kAnother);
    GiveAway("/target", kAnother);
    Link("target", "/of_root");
    Link("target", "/of_somebody");
    GiveAway("/of_somebody");
    EXPECT_EQ(2, InChild([&] {
                  if (seteuid(kAnother) != 0) return 4;
                  return (Opens("/of_root", O_RDWR) ? 2 : 0) +
                         (Opens("/of_somebody", O_RDWR) ? 1 : 0);
              }));
}

}  // namespace
