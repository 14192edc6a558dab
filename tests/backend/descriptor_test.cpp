// The owner of a file descriptor.
#include "descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <utility>

namespace {

int Null() { return open("/dev/null", O_RDONLY | O_CLOEXEC); }

bool IsOpen(int descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

TEST(Descriptor, OwnsNoneAtFirst) {
    Descriptor none;
    EXPECT_FALSE(none.IsOpen());
    EXPECT_EQ(-1, none.Get());
    EXPECT_EQ(-1, none.Release());
    EXPECT_TRUE(none.Close());
    EXPECT_FALSE(Descriptor(-1).IsOpen());
}

TEST(Descriptor, ClosesItsFileAtItsEnd) {
    const int number = Null();
    {
        const Descriptor file(number);
        EXPECT_TRUE(file.IsOpen());
        EXPECT_EQ(number, file.Get());
    }
    EXPECT_FALSE(IsOpen(number));
}

TEST(Descriptor, OwnsNumberZeroLikeAnyOther) { EXPECT_TRUE(Descriptor(0).Release() == 0); }

TEST(Descriptor, ThatIsMovedFromOwnsNone) {
    const int number = Null();
    Descriptor file(number);
    Descriptor other(std::move(file));
    EXPECT_FALSE(file.IsOpen());  // NOLINT(bugprone-use-after-move): what is left is the question
    EXPECT_EQ(number, other.Get());
}

TEST(Descriptor, ThatIsAssignedClosesWhatItHad) {
    const int old_number = Null();
    const int number = Null();
    Descriptor file(old_number);
    Descriptor other(number);
    file = std::move(other);
    EXPECT_FALSE(IsOpen(old_number));
    EXPECT_EQ(number, file.Get());
    EXPECT_TRUE(IsOpen(number));
}

TEST(Descriptor, ThatIsAssignedToItselfStays) {
    Descriptor file(Null());
    Descriptor& same = file;
    file = std::move(same);
    EXPECT_TRUE(IsOpen(file.Get()));
}

TEST(Descriptor, ThatIsReleasedLeavesItsFileOpen) {
    const int number = Null();
    {
        Descriptor file(number);
        EXPECT_EQ(number, file.Release());
        EXPECT_FALSE(file.IsOpen());
    }
    EXPECT_TRUE(IsOpen(number));
    close(number);
}

TEST(Descriptor, ClosesOnceAndTellsWhetherThatWorked) {
    const int number = Null();
    Descriptor file(number);
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(IsOpen(number));
    EXPECT_TRUE(file.Close());
    Descriptor closed_by_another(number);
    EXPECT_FALSE(closed_by_another.Close());
    EXPECT_FALSE(closed_by_another.IsOpen());
}

}  // namespace
