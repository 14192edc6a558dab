// The main of every GoogleTest program. All tests of a program run in one process, so each one is
// started with the same environment, whatever the one before it left behind; and a program in which
// nothing runs fails, because ctest would count it as passed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

class SameEnvironmentForEach : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& /*test*/) override {
        setenv("HXSIM_STATE", ":memory:", 1);  // never the state file of whoever runs the test
        unsetenv("VEXORAPI_ROOT");
    }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest& tests = *testing::UnitTest::GetInstance();
    tests.listeners().Append(new SameEnvironmentForEach);  // GoogleTest deletes it
    const int status = RUN_ALL_TESTS();
    if (tests.test_to_run_count() == 0) {
        std::fputs("no test was run\n", stderr);
        return EXIT_FAILURE;
    }
    return status;
}
