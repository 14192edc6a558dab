// The enclosure, what it measures, and the expander in it; the port multiplier.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

namespace {

using testing::Each;
using testing::ElementsAre;

using SimulatorEnclosure = SimulatorTest;
using SimulatorExpander = SimulatorTest;
using SimulatorPortMultiplier = SimulatorTest;

TEST_F(SimulatorEnclosure, TellsWhatItIs) {
    const Enclosure_Info info = TheOne(HX_ENC_GetEnclosureInfo, 0, 0);
    EXPECT_EQ(0, info.AdapterID);
    EXPECT_EQ(1, info.Status);
    EXPECT_STREQ("50A4858400000000", info.LogicalID);
    EXPECT_STREQ("ORMSKIRK", info.VendorID);
    EXPECT_STREQ("OX-16 SAS SHELF ", info.ProductID);
    EXPECT_STREQ("1.20", info.RevisionLevel);
    EXPECT_THAT(info.Reserved2, Each(0));
}

TEST_F(SimulatorEnclosure, HoldsTheExpander) {
    const Enclosure_Info info = TheOne(HX_ENC_GetEnclosureInfo, 0, 0);
    EXPECT_EQ(1, info.ExpanderCount);
    EXPECT_THAT(info.ExpanderIDs, Each(0));
}

TEST_F(SimulatorEnclosure, AnswersAtTheExpandersInnerPhy) {
    const Link_Entity link = TheOne(HX_ENC_GetEnclosureInfo, 0, 0).Link;
    EXPECT_EQ(2, link.Parent.DevType);
    EXPECT_EQ(0, link.Parent.DevID);
    EXPECT_THAT(link.Parent.PhyID, ElementsAre(24, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(5, link.Self.DevType);
    EXPECT_EQ(0, link.Self.EnclosureID);
    EXPECT_THAT(link.Self.SAS_Address, ElementsAre(0x50, 0xA4, 0x85, 0x84, 0, 0, 0, 0));
}

// ---- What it measures ----

constexpr HX_U8 kElements = 12;

struct Elements {
    EncElementType_Info states[kElements + 1];
    EncElement_Config thresholds[kElements + 1];
};

// Both lists of elements, and the byte 0xA5 wherever nothing has been written.
Elements ElementsOfTheEnclosure() {
    Elements elements;
    std::memset(&elements, 0xA5, sizeof elements);
    HX_U8 count = 0xA5;
    EXPECT_EQ(0, HX_ENC_GetElementInfo(0, 0, elements.states, &count));
    EXPECT_EQ(kElements, count);
    count = 0xA5;
    EXPECT_EQ(0, HX_ENC_GetElementConfig(0, 0, elements.thresholds, &count));
    EXPECT_EQ(kElements, count);
    return elements;
}

TEST_F(SimulatorEnclosure, HasElementsOfEachKindNumberedInOrder) {
    const Elements elements = ElementsOfTheEnclosure();
    std::vector<int> types;
    for (int i = 0; i < kElements; ++i) {
        EXPECT_EQ(i, elements.states[i].ElementID);
        EXPECT_EQ(0, elements.states[i].EnclosureID);
        EXPECT_EQ(1, elements.states[i].Status);
        EXPECT_EQ(0, elements.states[i].Reserved);
        types.push_back(elements.states[i].Type);
    }
    EXPECT_THAT(types, ElementsAre(2, 2, 3, 3, 3, 4, 4, 4, 5, 6, 0x12, 0x12));
}

TEST_F(SimulatorEnclosure, GivesEachElementsThresholdsUnderItsNumber) {
    const Elements elements = ElementsOfTheEnclosure();
    for (int i = 0; i < kElements; ++i) {
        EXPECT_EQ(i, elements.thresholds[i].ElementID);
        EXPECT_EQ(elements.states[i].Type, elements.thresholds[i].Type);
        EXPECT_EQ(0, elements.thresholds[i].EnclosureID);
        EXPECT_EQ(1, elements.thresholds[i].Status);
        EXPECT_THAT(elements.thresholds[i].Reserved, Each(0));
    }
}

TEST_F(SimulatorEnclosure, WritesNothingBehindItsLastElement) {
    const Elements elements = ElementsOfTheEnclosure();
    EXPECT_EQ(0xA5, elements.states[kElements].Type);
    EXPECT_EQ(0xA5, elements.thresholds[kElements].Type);
}

TEST_F(SimulatorEnclosure, HasSoundPowerSupplies) {
    const EncElementType_Info supply = ElementsOfTheEnclosure().states[1];
    EXPECT_EQ(0, supply.TempWarn);
    EXPECT_EQ(1, supply.HotSwap);
    EXPECT_EQ(0, supply.DCOverCurrent);
    EXPECT_EQ(0, supply.DCOverVoltage);
    EXPECT_EQ(0, supply.DCUnderVoltage);
}

TEST_F(SimulatorEnclosure, HasFansThatTurn) {
    const Elements elements = ElementsOfTheEnclosure();
    EXPECT_EQ(3, elements.states[2].CurSpeedcode);
    EXPECT_EQ(4180, elements.states[2].CurSpeed);
    EXPECT_EQ(4150, elements.states[4].CurSpeed);
}

TEST_F(SimulatorEnclosure, MeasuresTemperaturesFromMinusTwentyUp) {
    const Elements elements = ElementsOfTheEnclosure();
    EXPECT_EQ(47, elements.states[5].Temperature);  // 27 degrees Celsius
    EXPECT_EQ(61, elements.states[7].Temperature);  // 41
    EXPECT_EQ(0, elements.states[7].OTFailure);
    EXPECT_EQ(0, elements.states[7].OTWarning);
    EXPECT_EQ(0, elements.states[7].UTFailure);
    EXPECT_EQ(0, elements.states[7].UTWarning);
}

TEST_F(SimulatorEnclosure, HasAClosedDoorAndASilentAlarm) {
    const Elements elements = ElementsOfTheEnclosure();
    EXPECT_THAT(elements.states[8].ElementData, Each(0));
    EXPECT_THAT(elements.states[9].ElementData, Each(0));
}

TEST_F(SimulatorEnclosure, MeasuresVoltagesInHundredthsOfAVolt) {
    const Elements elements = ElementsOfTheEnclosure();
    EXPECT_EQ(503, elements.states[10].Voltage);
    EXPECT_EQ(1208, elements.states[11].Voltage);
    EXPECT_EQ(0, elements.states[11].WarnOver);
    EXPECT_EQ(0, elements.states[11].CritUnder);
}

TEST_F(SimulatorEnclosure, HasThresholdsForTemperaturesAndVoltagesOnly) {
    const Elements elements = ElementsOfTheEnclosure();
    const auto thresholds = [&](int i) {
        const EncElement_Config& config = elements.thresholds[i];
        return std::vector<int>{config.highCriticalThreshold, config.highWarningThreshold,
                                config.lowCriticalThreshold, config.lowWarningThreshold};
    };
    EXPECT_THAT(thresholds(6), ElementsAre(80, 70, 20, 25));   // 60, 50, 0 and 5 degrees Celsius
    EXPECT_THAT(thresholds(10), ElementsAre(20, 10, 20, 10));  // 10 and 5 percent either way
    for (const int i : {0, 1, 2, 3, 4, 8, 9}) EXPECT_THAT(thresholds(i), Each(0));
}

TEST_F(SimulatorEnclosure, ThatIsNotThereHasNoElements) {
    for (const auto& [adapter, id] : {std::pair{0, 1}, {0, 65535}, {1, 0}}) {
        EncElementType_Info state{};
        EncElement_Config thresholds{};
        HX_U8 count = 7;
        EXPECT_EQ(209, HX_ENC_GetElementInfo(static_cast<HX_U8>(adapter), static_cast<HX_U16>(id),
                                             &state, &count));
        EXPECT_EQ(0, count);
        count = 7;
        EXPECT_EQ(209, HX_ENC_GetElementConfig(static_cast<HX_U8>(adapter), static_cast<HX_U16>(id),
                                               &thresholds, &count));
        EXPECT_EQ(0, count);
        EXPECT_EQ(0, state.Type);
        EXPECT_EQ(0, thresholds.Type);
    }
}

TEST_F(SimulatorEnclosure, NeedsAnAddressForItsElementsAndOneForTheirCount) {
    EncElementType_Info state{};
    HX_U8 count = 7;
    EXPECT_EQ(203, HX_ENC_GetElementInfo(0, 0, &state, nullptr));
    EXPECT_EQ(203, HX_ENC_GetElementInfo(0, 0, nullptr, &count));
    EXPECT_EQ(7, count);
    EXPECT_EQ(0, state.Type);
}

// ---- What stands between adapters and disks ----

TEST_F(SimulatorExpander, TellsWhatItIs) {
    const Exp_Info info = TheOne(HX_PD_GetExpanderInfo, 0, 0);
    EXPECT_EQ(0, info.AdapterID);
    EXPECT_STREQ("ORMSKIRK", info.VendorID);
    EXPECT_STREQ("OX-24 EXPANDER  ", info.ProductID);
    EXPECT_STREQ("0212", info.ProductRev);
    EXPECT_STREQ("VARDELL ", info.ComponentVendorID);
    EXPECT_EQ(0x0524, info.ComponentID);
    EXPECT_EQ(2, info.ComponentRevisionID);
    EXPECT_THAT(info.Reserved, Each(0));
}

TEST_F(SimulatorExpander, CountsItsPhysAndRoutes) {
    const Exp_Info info = TheOne(HX_PD_GetExpanderInfo, 0, 0);
    EXPECT_EQ(25, info.PhyCount);
    EXPECT_EQ(512, info.MaxRouteIndexes);
    EXPECT_EQ(3, info.ExpChangeCount);
    EXPECT_EQ(0, info.Configuring);
    EXPECT_EQ(1, info.RouteTableConfigurable);
}

TEST_F(SimulatorExpander, HangsOnFourPortsOfTheAdapter) {
    const Link_Entity link = TheOne(HX_PD_GetExpanderInfo, 0, 0).Link;
    EXPECT_EQ(1, link.Parent.DevType);
    EXPECT_EQ(0, link.Parent.DevID);
    EXPECT_EQ(4, link.Parent.PhyCnt);
    EXPECT_THAT(link.Parent.PhyID, ElementsAre(0, 1, 2, 3, 0, 0, 0, 0));
    EXPECT_THAT(link.Parent.SAS_Address, ElementsAre(0x50, 0xA4, 0x85, 0x80, 0, 0, 0, 1));
    EXPECT_EQ(65535, link.Parent.EnclosureID);
    EXPECT_EQ(2, link.Self.DevType);
    EXPECT_EQ(4, link.Self.PhyCnt);
    EXPECT_EQ(0, link.Self.EnclosureID);
    EXPECT_THAT(link.Self.SAS_Address, ElementsAre(0x50, 0xA4, 0x85, 0x81, 0, 0, 0, 0));
}

TEST_F(SimulatorPortMultiplier, TellsWhatItsRegistersSay) {
    const PM_Info info = TheOne(HX_PD_GetPMInfo, 1, 0);
    EXPECT_EQ(1, info.AdapterID);
    EXPECT_EQ(6, info.ProductRevision);
    EXPECT_EQ(0x0E, info.PMSpecRevision);
    EXPECT_EQ(5, info.NumberOfPorts);
    EXPECT_EQ(0xFAC7, info.VendorId);
    EXPECT_EQ(0x3705, info.DeviceId);
    EXPECT_THAT(info.Reserved, Each(0));
}

TEST_F(SimulatorPortMultiplier, HangsOnTheLastPortOfTheAdapter) {
    const Link_Entity link = TheOne(HX_PD_GetPMInfo, 1, 0).Link;
    EXPECT_EQ(1, link.Parent.DevType);
    EXPECT_EQ(1, link.Parent.DevID);
    EXPECT_THAT(link.Parent.PhyID, ElementsAre(3, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(link.Parent.SAS_Address, ElementsAre(0x50, 0xA4, 0x85, 0x80, 0, 0, 1, 4));
    EXPECT_EQ(3, link.Self.DevType);
    EXPECT_THAT(link.Self.SAS_Address, Each(0));
    EXPECT_EQ(65535, link.Self.EnclosureID);
}

}  // namespace
