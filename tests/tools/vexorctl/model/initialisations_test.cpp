#include "model/initialisations.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>

#include "codes/activity.h"
#include "codes/event.h"

namespace vexorctl {
namespace {

using hxcodes::ActivityKind;
using hxcodes::EventKind;
using hxcodes::Step;

constexpr EventKind kCreated = EventKind::kVirtualDiskCreated;
constexpr EventKind kDeleted = EventKind::kVirtualDiskDeleted;

EventKind Init(Step step) { return *hxcodes::EventOf(ActivityKind::kInitBackground, step); }

std::optional<bool> After(std::initializer_list<EventKind> kinds, bool runs = false) {
    Initialisations initialisations;
    for (const EventKind kind : kinds) {
        Happening event;
        event.facts.kind = kind;
        event.object = kind == EventKind::kEventError ? "a0" : "a0/vd0";
        initialisations.Take(event);
    }
    return initialisations.Of("a0/vd0", runs);
}

TEST(AVirtualDisk, IsNotInitialisedByItsCreation) { EXPECT_EQ(After({kCreated}), false); }

TEST(AVirtualDisk, IsInitialisedWhenAnInitialisationHasEnded) {
    EXPECT_EQ(After({kCreated, Init(Step::kStart)}, true), false);
    EXPECT_EQ(After({kCreated, Init(Step::kStart), Init(Step::kComplete)}), true);
    EXPECT_EQ(After({kCreated, Init(Step::kStart), Init(Step::kAbort)}), false);
}

TEST(AVirtualDisk, IsNotKnownToBeInitialisedWithoutEventsOfIt) {
    EXPECT_EQ(After({}), std::nullopt);
    EXPECT_EQ(After({kCreated, Init(Step::kStart)}), std::nullopt);  // its end was not collected
    EXPECT_EQ(After({kCreated, EventKind::kEventError}), std::nullopt);
    EXPECT_EQ(After({Init(Step::kComplete), kDeleted}), std::nullopt);
    EXPECT_EQ(After({Init(Step::kComplete), kDeleted, kCreated}), false);
}

TEST(AVirtualDisk, IsNotKnownToBeInitialisedWhenItWasThereBeforeItsAdapter) {
    EXPECT_EQ(After({EventKind::kAdapterFound, kCreated}), std::nullopt);
    EXPECT_EQ(After({EventKind::kAdapterFound, kCreated, Init(Step::kComplete)}), true);
    Initialisations later;
    Happening found;
    found.facts.kind = EventKind::kAdapterFound;
    found.object = "a0";
    found.time = 1000;
    later.Take(found);
    Happening created;
    created.facts.kind = kCreated;
    created.object = "a0/vd0";
    created.time = 1001;
    later.Take(created);
    EXPECT_EQ(later.Of("a0/vd0", false), false);
}

TEST(AVirtualDisk, StaysInitialisedWhileItIsInitialisedAgain) {
    EXPECT_EQ(After({kCreated, Init(Step::kComplete), Init(Step::kStart)}, true), true);
}

}  // namespace
}  // namespace vexorctl
