// What every test can rely on, whichever test ran before it in the same process.
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

// Twice: the second of them runs after the first has changed what both rely on.
class Environment : public testing::TestWithParam<int> {};

TEST_P(Environment, IsTheSameForEachTest) {
    EXPECT_STREQ(":memory:", std::getenv("HXSIM_STATE"));
    EXPECT_EQ(nullptr, std::getenv("VEXORAPI_ROOT"));
    unsetenv("HXSIM_STATE");
    setenv("VEXORAPI_ROOT", "/left/behind", 1);
}

INSTANTIATE_TEST_SUITE_P(Twice, Environment, testing::Values(1, 2));

}  // namespace
