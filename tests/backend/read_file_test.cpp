// How the small files that steer the library are read.
#include "read_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <string>

#include "support/temporary_root.h"

namespace {

TEST(ReadFile, ReadsWhatThereIs) {
    const TemporaryRoot root;
    root.Write("/file", "abcdef");
    const Descriptor file = OpenForRead(root.Path("/file").c_str());
    char bytes[4] = {};
    EXPECT_EQ(4u, ReadBytes(file.Get(), bytes, sizeof bytes));
    EXPECT_EQ("abcd", std::string(bytes, 4));
    EXPECT_EQ(2u, ReadBytes(file.Get(), bytes, sizeof bytes));
    EXPECT_EQ("ef", std::string(bytes, 2));
    EXPECT_EQ(0u, ReadBytes(file.Get(), bytes, sizeof bytes));
}

TEST(ReadFile, OpensRegularFilesAlone) {
    const TemporaryRoot root;
    EXPECT_FALSE(OpenForRead(root.Path("/missing").c_str()).IsOpen());
    EXPECT_FALSE(OpenForRead(root.Path("/").c_str()).IsOpen());
    EXPECT_FALSE(OpenForRead("/dev/null").IsOpen());
    ASSERT_EQ(0, mkfifo(root.Path("/fifo").c_str(), 0600));
    EXPECT_FALSE(OpenForRead(root.Path("/fifo").c_str()).IsOpen());
}

TEST(ReadFile, OpensForThisProgramAlone) {
    const TemporaryRoot root;
    root.Write("/file", "");
    const Descriptor file = OpenForRead(root.Path("/file").c_str());
    EXPECT_EQ(FD_CLOEXEC, fcntl(file.Get(), F_GETFD));
}

// A pipe that an alarm fills when it rings the third time; before, it only interrupts.
int pipe_ends[2];
volatile int rings = 0;
void Ring(int) {
    rings = rings + 1;
    if (rings != 3) return;
    [[maybe_unused]] const ssize_t written = write(pipe_ends[1], "abc", 3);
    close(pipe_ends[1]);
}

TEST(ReadFile, GoesOnWhenItIsInterrupted) {
    ASSERT_EQ(0, pipe2(pipe_ends, O_CLOEXEC));
    struct sigaction ring {};
    ring.sa_handler = Ring;  // without SA_RESTART: it interrupts what it finds waiting
    sigaction(SIGALRM, &ring, nullptr);
    const itimerval every_5_ms{{0, 5000}, {0, 5000}};
    setitimer(ITIMER_REAL, &every_5_ms, nullptr);
    char bytes[8];
    const std::size_t length = ReadBytes(pipe_ends[0], bytes, sizeof bytes);
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    signal(SIGALRM, SIG_DFL);
    close(pipe_ends[0]);
    EXPECT_EQ("abc", std::string(bytes, length));
    EXPECT_LE(3, rings);
}

}  // namespace
