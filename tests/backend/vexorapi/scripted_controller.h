// What the tests of functions over the controller library share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "hxfake.h"

/// A test with the scripted controller, all of whose answers it must use up.
class ScriptedController : public testing::Test {
protected:
    void SetUp() override { hxfake::Reset(); }
    void TearDown() override {
        EXPECT_EQ(hxfake::AnswersLeft(), 0U);
        hxfake::Reset();
    }
};

/// Whether every byte of the record is zero.
template <class T>
bool IsZero(const T& record) {
    const auto* const bytes = reinterpret_cast<const char*>(&record);
    return std::all_of(bytes, bytes + sizeof record, [](char byte) { return byte == 0; });
}
