// Answers of broken firmware: what nobody asked for, and never a byte outside the answer.
#include "incidents/hxsim_hostile_answer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <vector>

namespace {

using testing::Each;

constexpr int kRounds = 24;  // several times each way

// Three records of 40 bytes, with room behind them that is nobody's.
struct Answer {
    RequestHeader header{};
    std::array<unsigned char, 120> records{};
    std::array<unsigned char, 64> behind{};

    Answer() {
        header.requestType = HX_REQUEST_BY_INDEX;
        header.startingIndexOrId = 7;
        header.numRequested = 5;
        header.numReturned = 3;
        header.nextStartingIndex = HX_LIST_COMPLETE;
        behind.fill(0xA5);
    }

    bool HasTextWithoutEnd() const { return std::ranges::find(records, 0) == records.end(); }
};

std::vector<Answer> HostileAnswers() {
    std::vector<Answer> answers(kRounds);
    for (Answer& answer : answers) {
        hxsim::MakePageHostile(answer.header, answer.records.data(), answer.records.size());
    }
    return answers;
}

template <class Condition>
bool Any(Condition condition) {
    return std::ranges::any_of(HostileAnswers(), condition);
}

TEST(HostileAnswer, CountsMoreThanWasAskedFor) {
    EXPECT_TRUE(Any([](const Answer& answer) { return answer.header.numReturned == 6; }));
    EXPECT_TRUE(Any([](const Answer& answer) { return answer.header.numReturned == 65535; }));
}

TEST(HostileAnswer, SendsCallersRoundInCircles) {
    EXPECT_TRUE(Any([](const Answer& answer) { return answer.header.nextStartingIndex == 7; }));
    EXPECT_TRUE(Any([](const Answer& answer) { return answer.header.nextStartingIndex == 0; }));
}

TEST(HostileAnswer, PromisesMoreAndGivesNothing) {
    EXPECT_TRUE(Any([](const Answer& answer) {
        return answer.header.numReturned == 0 && answer.header.nextStartingIndex != 65535;
    }));
}

TEST(HostileAnswer, GivesTextsWithoutEnd) {
    EXPECT_TRUE(Any([](const Answer& answer) {
        return answer.HasTextWithoutEnd() && answer.records[0] == 'A';
    }));
}

TEST(HostileAnswer, GivesCountsOf255) {
    EXPECT_TRUE(
        Any([](const Answer& answer) { return std::ranges::count(answer.records, 0xFF) == 120; }));
}

TEST(HostileAnswer, LeavesTheRequestAndWhatLiesBehindAlone) {
    for (const Answer& answer : HostileAnswers()) {
        EXPECT_EQ(5, answer.header.numRequested);
        EXPECT_EQ(7, answer.header.startingIndexOrId);
        EXPECT_EQ(HX_REQUEST_BY_INDEX, answer.header.requestType);
        EXPECT_THAT(answer.behind, Each(0xA5));
    }
}

TEST(HostileAnswer, TakesAnAnswerWithoutRecords) {
    for (int round = 0; round < kRounds; ++round) {
        RequestHeader header{};
        header.numRequested = 65535;
        hxsim::MakePageHostile(header, nullptr, 0);
        EXPECT_EQ(65535, header.numRequested);
    }
}

TEST(HostileAnswer, OfRecordsAloneStaysInsideThem) {
    for (int round = 0; round < kRounds; ++round) {
        Answer answer;
        hxsim::MakeRecordHostile(answer.records.data(), answer.records.size());
        EXPECT_THAT(answer.behind, Each(0xA5));
    }
}

TEST(HostileAnswer, ComesInTheSameOrderEveryTime) {
    // Whatever came before, six answers are one round.
    const std::vector<Answer> answers = HostileAnswers();
    for (std::size_t i = 6; i < answers.size(); ++i) {
        EXPECT_EQ(answers[i - 6].header.numReturned, answers[i].header.numReturned);
        EXPECT_EQ(answers[i - 6].records, answers[i].records);
    }
}

}  // namespace
