// What a request costs the kernel.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <vector>

#include "child_process.h"
#include "hxfake.h"
#include "request.h"
#include "temporary_root.h"

namespace {

using testing::ElementsAre;

constexpr char kGetCount[] = "<HX_Adapter_GetCount type=\"function\"></HX_Adapter_GetCount>";

class SystemCalls : public testing::Test {
protected:
    SystemCalls() {
        hxfake::Reset();
        hxfake::NoteCalls(false);
    }
    ~SystemCalls() override { hxfake::Reset(); }

    void SetUp() override {
        if (kSanitized) GTEST_SKIP() << "a sanitizer makes system calls of its own";
        // The first requests teach the allocator its sizes and find the process its hash salt.
        for (int i = 0; i < 3; ++i) ASSERT_EQ(1, vexorApi(kGetCount, result, sizeof result));
    }

    // Of `requests` requests, one after the other.
    std::vector<long> Of(int requests) {
        return SystemCallsOf([&] {
            for (int i = 0; i < requests; ++i) vexorApi(kGetCount, result, sizeof result);
        });
    }

    TemporaryRoot root;
    char result[4096];
};

#if defined(__x86_64__)

TEST_F(SystemCalls, OfARequestAreOneLookForTheConfigurationFile) {
    EXPECT_THAT(Of(1), ElementsAre(SYS_access));
}

TEST_F(SystemCalls, OfThreeRequestsAreThreeLooks) {
    EXPECT_THAT(Of(3), ElementsAre(SYS_access, SYS_access, SYS_access));
}

#elif defined(__i386__)

// Half a megabyte is more than the 32-bit allocator ever keeps: the document is mapped each time.
TEST_F(SystemCalls, OfARequestAreOneLookForTheConfigurationFileAndTheDocument) {
    EXPECT_THAT(Of(1), ElementsAre(SYS_mmap2, SYS_access, SYS_munmap));
}

#endif

}  // namespace
