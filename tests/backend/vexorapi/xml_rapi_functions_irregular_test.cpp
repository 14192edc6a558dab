// The functions that are more than one call: those that ask every adapter, and those that look,
// merge or choose before they call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "hxfake.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "xml_rapi_functions_records.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Irregular : public testing::Test {
protected:
    Irregular() {
        // Memory that nobody has written is not zero by chance.
        mallopt(M_PERTURB, 0xA5);
        hxfake::Reset();
    }
    ~Irregular() override {
        hxfake::Reset();
        mallopt(M_PERTURB, 0);
    }

    // The function with these children, each "name=value".
    static std::string Ask(const std::string& name, const std::vector<std::string>& children) {
        std::string command = "<" + name + " type=\"function\">";
        for (const std::string& child : children) {
            const std::size_t equals = child.find('=');
            const std::string element = child.substr(0, equals);
            command += "<" + element + ">" + child.substr(equals + 1) + "</" + element + ">";
        }
        const Reply reply = Send(command + "</" + name + ">");
        EXPECT_EQ(1, reply.ok);
        return reply.text;
    }

    static std::string Status(const std::string& name, int code) {
        return "<" + name + " type=\"function\">\n  <RetVal type=\"U8\">" + std::to_string(code) +
               "</RetVal>\n</" + name + ">";
    }

    TemporaryRoot root;
};

// The texts of all elements of this name.
std::vector<std::string> Values(const std::string& text, const std::string& element) {
    std::vector<std::string> values;
    const std::string open = "<" + element + " ";
    for (std::size_t at = 0; (at = text.find(open, at)) != std::string::npos;) {
        at = text.find('>', at) + 1;
        values.push_back(text.substr(at, text.find('<', at) - at));
    }
    return values;
}

// ---- every adapter -----------------------------------------------------------------------------

EncElementType_Info Element(HX_U8 id) {
    EncElementType_Info element{};
    element.ElementID = id;
    return element;
}
EncElement_Config Thresholds(HX_U8 id) {
    EncElement_Config config{};
    config.ElementID = id;
    return config;
}
Adapter_Config_V2 Rate(HX_U8 rate) {
    Adapter_Config_V2 config{};
    config.BGARate = rate;
    return config;
}

class EveryAdapter : public Irregular {
protected:
    static void Adapters(HX_U8 count) { hxfake::On<&HX_Adapter_GetCount>().Always(count); }

    // Three adapters with two, no and three elements; the last status is what is returned.
    template <auto function, class Record>
    static void ExpectElementsInAdapterOrder(const std::string& name, Record (*element)(HX_U8)) {
        Adapters(3);
        hxfake::On<function>()
            .Once(8, hxfake::Records({element(11), element(12)}))
            .Once(0, hxfake::Records(std::vector<Record>{}))
            .Once(9, hxfake::Records({element(31), element(32), element(33)}));
        const std::string text = Ask(name, {"AdapterID=255", "ENC_ID=700"});
        EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetCount()", name + "(0, 700, &, &)",
                                                 "HX_Adapter_GetCount()", name + "(1, 700, &, &)",
                                                 "HX_Adapter_GetCount()", name + "(2, 700, &, &)",
                                                 "HX_Adapter_GetCount()"));
        EXPECT_THAT(Values(text, "RetVal"), ElementsAre("9"));
        EXPECT_THAT(Values(text, "Count"), ElementsAre("5"));
        EXPECT_THAT(Values(text, "ElementID"), ElementsAre("11", "12", "31", "32", "33"));
    }
};

TEST_F(EveryAdapter, IsAskedForTheStateOfEnclosureElementsInAdapterOrder) {
    ExpectElementsInAdapterOrder<&HX_ENC_GetElementInfo>("HX_ENC_GetElementInfo", Element);
}

TEST_F(EveryAdapter, IsAskedForTheThresholdsOfEnclosureElementsInAdapterOrder) {
    ExpectElementsInAdapterOrder<&HX_ENC_GetElementConfig>("HX_ENC_GetElementConfig", Thresholds);
}

TEST_F(EveryAdapter, IsAskedForSettingsOfWhichTheLastRemain) {
    Adapters(3);
    hxfake::On<&HX_Adapter_GetConfig>()
        .Once(8, hxfake::Records({Rate(10)}))
        .Once(0, hxfake::Records({Rate(20)}))
        .Once(9, hxfake::Records({Rate(30)}));
    const std::string text = Ask("HX_Adapter_GetConfig", {"AdapterID=255"});
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_Adapter_GetCount()", "HX_Adapter_GetConfig(0, &, &)",
                            "HX_Adapter_GetCount()", "HX_Adapter_GetConfig(1, &, &)",
                            "HX_Adapter_GetCount()", "HX_Adapter_GetConfig(2, &, &)",
                            "HX_Adapter_GetCount()"));
    EXPECT_THAT(Values(text, "RetVal"), ElementsAre("9"));
    EXPECT_THAT(Values(text, "Count"), ElementsAre("3"));
    // As many as are counted, though only the first was ever filled.
    EXPECT_THAT(Values(text, "BGARate"), ElementsAre("30", "0", "0"));
}

TEST_F(EveryAdapter, LeavesTheSettingsOfTheOneBeforeWhenItWritesNone) {
    Adapters(2);
    hxfake::On<&HX_Adapter_GetConfig>().Once(0, hxfake::Records({Rate(10)})).Once(9);
    const std::string text = Ask("HX_Adapter_GetConfig", {"AdapterID=255"});
    EXPECT_THAT(Values(text, "RetVal"), ElementsAre("9"));
    // The count that it leaves alone is that of the one before, too.
    EXPECT_THAT(Values(text, "Count"), ElementsAre("2"));
    EXPECT_THAT(Values(text, "BGARate"), ElementsAre("10", "0"));
}

TEST_F(EveryAdapter, MeansNoneWithoutAnyAdapter) {
    for (const char* name : {"HX_Adapter_GetInfo", "HX_Adapter_GetConfig", "HX_ENC_GetElementInfo",
                             "HX_ENC_GetElementConfig"}) {
        hxfake::ForgetCalls();
        const std::string function = name;
        EXPECT_EQ("<" + function +
                      " type=\"function\">\n"
                      "  <RetVal type=\"U8\">0</RetVal>\n"
                      "  <Count type=\"U8\">0</Count>\n"
                      "</" +
                      function + ">",
                  Ask(name, {"AdapterID=255"}));
        EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetCount()"));
    }
}

TEST_F(EveryAdapter, AddsTheElementsIn8Bits) {
    Adapters(2);
    hxfake::On<&HX_ENC_GetElementInfo>()
        .Once(0, hxfake::Records({Element(1)}, 200))
        .Once(0, hxfake::Records({Element(2)}, 100));
    const std::string text = Ask("HX_ENC_GetElementInfo", {"AdapterID=255"});
    EXPECT_THAT(Values(text, "Count"), ElementsAre("44"));
    EXPECT_THAT(Values(text, "ElementID"), SizeIs(44));
}

TEST_F(EveryAdapter, HasRoomForAsManyElementsAsItCanCount) {
    // The second one's elements begin behind 255, the most that there can be.
    Adapters(2);
    const auto fill = [](HX_U8, HX_U16, EncElement_Config* elements, HX_U8* count) -> HX_U8 {
        for (HX_U8 i = 0; i < 255; ++i) elements[i] = Thresholds(i);
        *count = 255;
        return 0;
    };
    hxfake::On<&HX_ENC_GetElementConfig>().Always(fill);
    const std::string text = Ask("HX_ENC_GetElementConfig", {"AdapterID=255"});
    EXPECT_THAT(Values(text, "Count"), ElementsAre("254"));
    EXPECT_THAT(Values(text, "ElementID"), SizeIs(254));
}

TEST_F(EveryAdapter, IsHandedClearElements) {
    Adapters(3);
    std::vector<bool> clear;
    hxfake::On<&HX_ENC_GetElementInfo>().Always(
        [&](HX_U8, HX_U16, EncElementType_Info* elements, HX_U8* count) -> HX_U8 {
            const auto* const bytes = reinterpret_cast<const char*>(elements);
            clear.push_back(std::all_of(bytes, bytes + 255 * sizeof *elements,
                                        [](char byte) { return byte == 0; }));
            for (HX_U8 i = 0; i < 100; ++i) elements[i] = Element(i);
            *count = 100;
            return 0;
        });
    Ask("HX_ENC_GetElementInfo", {"AdapterID=255"});
    EXPECT_THAT(clear, ElementsAre(true, true, true));
}

TEST_F(EveryAdapter, IsAskedAnewByEachRequest) {
    Adapters(2);
    hxfake::On<&HX_ENC_GetElementInfo>().Always(0, hxfake::Records({Element(1), Element(2)}));
    Ask("HX_ENC_GetElementInfo", {"AdapterID=255"});
    const std::string text = Ask("HX_ENC_GetElementInfo", {"AdapterID=255"});
    EXPECT_THAT(Values(text, "Count"), ElementsAre("4"));
}

TEST_F(EveryAdapter, IsAskedUpToTheLastOf255) {
    Adapters(255);
    Ask("HX_ENC_GetElementInfo", {"AdapterID=255"});
    EXPECT_EQ(255u, hxfake::On<&HX_ENC_GetElementInfo>().CallCount());
    EXPECT_EQ(256u, hxfake::On<&HX_Adapter_GetCount>().CallCount());
    EXPECT_EQ("HX_ENC_GetElementInfo(254, 0, &, &)", hxfake::Calls()[509]);
}

TEST_F(EveryAdapter, IsNotMeantByAnyOtherNumber) {
    Adapters(3);
    Ask("HX_ENC_GetElementInfo", {"AdapterID=254"});
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_ENC_GetElementInfo(254, 0, &, &)"));
}

// ---- HX_Adapter_SetConfig ----------------------------------------------------------------------

class AdapterSettings : public Irregular {
protected:
    AdapterSettings() {
        hxfake::On<&HX_Adapter_SetConfig>().Inspect(
            [this](HX_U8, Adapter_Config_V2* config) { set = *config; });
    }

    // The adapter can set the rates of these bits, and all its settings are distinct.
    static void Adapter(HX_U8 features) {
        Adapter_Info info{};
        info.Features = features;
        hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({info}));
        Adapter_Config_V2 current;
        std::memset(&current, 200, sizeof current);
        hxfake::On<&HX_Adapter_GetConfig>().Always(0, hxfake::Records({current}));
    }
    static std::string SetAll() {
        return Ask(
            "HX_Adapter_SetConfig",
            {"AlarmOn=1", "AutoRebuildOn=2", "BGARate=3", "SyncRate=4", "InitRate=5",
             "RebuildRate=6", "MigrationRate=7", "CopybackRate=8", "PollSMARTStatus=9",
             "MediaPatrolRate=10", "CopyBack=11", "InterruptCoalescing=12", "ModuleConsolidate=13",
             "v_atapi_disable=14", "port_phy_ctrl=15 16 17 18 19 20 21 22"});
    }
    static constexpr Adapter_Config_V2 kAsked{
        1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, {15, 16, 17, 18, 19, 20, 21, 22}, {}};

    Adapter_Config_V2 set{};
};

struct RateBit {
    HX_U8 bit;
    HX_U8 Adapter_Config_V2::*rate;
};
constexpr RateBit kRateBits[] = {
    {0x01, &Adapter_Config_V2::RebuildRate},     {0x02, &Adapter_Config_V2::InitRate},
    {0x04, &Adapter_Config_V2::SyncRate},        {0x08, &Adapter_Config_V2::MigrationRate},
    {0x10, &Adapter_Config_V2::MediaPatrolRate}, {0x40, &Adapter_Config_V2::CopybackRate},
};

TEST_F(AdapterSettings, KeepTheOneRateThatTheAdapterDoesNotSupport) {
    for (const auto& [bit, rate] : kRateBits) {
        Adapter(static_cast<HX_U8>(~bit));
        SetAll();
        Adapter_Config_V2 expected = kAsked;
        expected.*rate = 200;
        EXPECT_EQ(0, std::memcmp(&expected, &set, sizeof set)) << "bit " << unsigned{bit};
    }
}

TEST_F(AdapterSettings, ChangeTheOneRateThatTheAdapterSupports) {
    for (const auto& [bit, rate] : kRateBits) {
        Adapter(bit);
        SetAll();
        Adapter_Config_V2 expected = kAsked;
        for (const RateBit& row : kRateBits) expected.*row.rate = 200;
        expected.*rate = kAsked.*rate;
        EXPECT_EQ(0, std::memcmp(&expected, &set, sizeof set)) << "bit " << unsigned{bit};
    }
}

TEST_F(AdapterSettings, DependOnNoOtherBit) {
    Adapter(0x5F);
    SetAll();
    EXPECT_EQ(0, std::memcmp(&kAsked, &set, sizeof set));
}

TEST_F(AdapterSettings, AreSetWhateverTheQueriesAnswer) {
    Adapter(0);
    Adapter_Config_V2 current;
    std::memset(&current, 200, sizeof current);
    hxfake::On<&HX_Adapter_GetConfig>().Always(5, hxfake::Records({current}));
    Adapter_Info info{};
    info.Features = 0x01;
    hxfake::On<&HX_Adapter_GetInfo>().Always(6, hxfake::Records({info}));
    hxfake::On<&HX_Adapter_SetConfig>().Always(7);
    EXPECT_EQ(Status("HX_Adapter_SetConfig", 7), SetAll());
    EXPECT_EQ(6, set.RebuildRate);
    EXPECT_EQ(200, set.InitRate);
}

TEST_F(AdapterSettings, HaveNoRateThatNobodyTells) {
    // Both queries fail without writing.
    hxfake::On<&HX_Adapter_GetConfig>().Always(5);
    hxfake::On<&HX_Adapter_GetInfo>().Always(6);
    SetAll();
    Adapter_Config_V2 expected = kAsked;
    for (const RateBit& row : kRateBits) expected.*row.rate = 0;
    EXPECT_EQ(0, std::memcmp(&expected, &set, sizeof set));
}

// ---- HX_DG_SetConfig ---------------------------------------------------------------------------

class GroupSettings : public Irregular {};

TEST_F(GroupSettings, AreNotSetOfAGroupThatIsMissing) {
    hxfake::On<&HX_DG_GetConfig>().Always(7);
    EXPECT_EQ(Status("HX_DG_SetConfig", 1),
              Ask("HX_DG_SetConfig", {"AdapterID=2", "DG_ID=300", "DGID=400", "WriteCacheOn=1"}));
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_DG_GetConfig(2, {2, 300, 1})"));
}

TEST_F(GroupSettings, AreSetOfAGroupThatIsThere) {
    hxfake::On<&HX_DG_SetConfig>().Always(9);
    EXPECT_EQ(Status("HX_DG_SetConfig", 9),
              Ask("HX_DG_SetConfig", {"AdapterID=2", "DG_ID=300", "DGID=400", "WriteCacheOn=1"}));
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_DG_GetConfig(2, {2, 300, 1})", "HX_DG_SetConfig(2, 300, &)"));
}

TEST_F(GroupSettings, AreLookedForWithAClearRequest) {
    DG_Config_Request request;
    std::memset(&request, 1, sizeof request);
    hxfake::On<&HX_DG_GetConfig>().Inspect(
        [&](HX_U8, DG_Config_Request* list) { request = *list; });
    Ask("HX_DG_SetConfig", {"DG_ID=300"});
    DG_Config_Request expected{};
    expected.header.requestType = 2;
    expected.header.startingIndexOrId = 300;
    expected.header.numRequested = 1;
    EXPECT_EQ(0, std::memcmp(&expected, &request, sizeof request));
}

// ---- HX_BBU_SetThreshold -----------------------------------------------------------------------

class Thresholding : public Irregular {
protected:
    static std::string SetAll() {
        return Ask("HX_BBU_SetThreshold", {"AdapterID=2", "tempLowerBound=5", "tempUpperBound=60",
                                           "volLowerBound=3000", "volUpperBound=4200"});
    }
};

TEST_F(Thresholding, SetsTemperatureAndThenVoltage) {
    SetAll();
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_BBU_SetThreshold(2, 1, 5, 60)",
                                             "HX_BBU_SetThreshold(2, 2, 3000, 4200)"));
}

TEST_F(Thresholding, GoesOnAndReportsNothingWhenTheTemperatureFails) {
    hxfake::On<&HX_BBU_SetThreshold>().Once(9).Once(0);
    EXPECT_EQ(Status("HX_BBU_SetThreshold", 0), SetAll());
    EXPECT_THAT(hxfake::Calls(), SizeIs(2));
}

TEST_F(Thresholding, ReportsTheVoltagesCode) {
    hxfake::On<&HX_BBU_SetThreshold>().Once(0).Once(9);
    EXPECT_EQ(Status("HX_BBU_SetThreshold", 9), SetAll());
}

// ---- HX_DG_StartMigration ----------------------------------------------------------------------

class Migration : public Irregular {
protected:
    // What the controller is to migrate.
    static CreateOrModify_DG_Param Start() {
        CreateOrModify_DG_Param param;
        std::memset(&param, 1, sizeof param);
        hxfake::On<&HX_DG_StartMigration>().Inspect(
            [&](HX_U8, CreateOrModify_DG_Param* migration) { param = *migration; });
        Ask("HX_DG_StartMigration", {"AdapterID=2", "DGID=300", "RaidMode=6", "StripeBlockSize=9"});
        EXPECT_THAT(hxfake::Calls(),
                    ElementsAre("HX_DG_GetInfo(2, {2, 300, 1})", "HX_DG_StartMigration(2, &)"));
        return param;
    }
};

TEST_F(Migration, KeepsTheGroupsBlockAndStripeSize) {
    DG_Info group{};
    group.DGID = 999;
    group.RaidMode = 5;
    group.StripeBlockSize = 128;
    group.BlockSize = 4096;
    hxfake::On<&HX_DG_GetInfo>().Always(7, hxfake::Page(65535, {group}));
    CreateOrModify_DG_Param expected{};
    expected.DGID = 300;
    expected.RaidMode = 6;
    expected.StripeBlockSize = 128;
    expected.BlockSize = 4096;
    const CreateOrModify_DG_Param param = Start();
    EXPECT_EQ(0, std::memcmp(&expected, &param, sizeof param));
}

TEST_F(Migration, HasNoSizesOfAGroupThatIsNotTold) {
    hxfake::On<&HX_DG_GetInfo>().Always(7);
    const CreateOrModify_DG_Param param = Start();
    EXPECT_EQ(0, param.StripeBlockSize);
    EXPECT_EQ(0u, param.BlockSize);
}

// ---- HX_LD_QuickCreate -------------------------------------------------------------------------

class QuickCreation : public Irregular {
protected:
    // The level chosen for two free disks, and how many of them are used.
    static std::pair<int, int> Level(const std::string& type) {
        Adapter_Info info{};
        info.LogicalDriverMode = 0x0003;
        hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Fill(info));
        hxfake::On<&HX_BLK_GetInfo>().Always(0, hxfake::Page(65535, std::vector<Block_Info>{}));
        hxfake::On<&HX_PD_GetHDRaidStatus>().Always(
            0, hxfake::Page(65535, {HD_RAID_Status{3, 0, 0, {}}, HD_RAID_Status{4, 0, 0, {}}}));
        std::pair<int, int> level{-1, -1};
        hxfake::On<&HX_LD_Create>().Inspect([&](HX_U8, Create_LD_Param* param) {
            level = {param->RaidMode, param->HDCount};
        });
        Ask("HX_LD_QuickCreate", {"AdapterID=2", "Type=" + type});
        return level;
    }
};

TEST_F(QuickCreation, OfType0HasNoRedundancy) { EXPECT_EQ(std::pair(0, 2), Level("0")); }

TEST_F(QuickCreation, OfType1HasTheBestLevel) { EXPECT_EQ(std::pair(1, 2), Level("1")); }

TEST_F(QuickCreation, OfAnyOtherTypeHasTheBestLevelToo) {
    EXPECT_EQ(std::pair(1, 2), Level("200"));
    EXPECT_EQ(std::pair(0, 2), Level("256"));  // 0 in 8 bits
}

// ---- records that are asked for and come back
// ----------------------------------------------------

class Answer : public Irregular {};

TEST_F(Answer, IsTheRequestItselfWhereTheControllerWritesNothing) {
    const std::string text =
        Ask("HX_LD_GetMaxSize", {"RaidMode=5", "HDCount=3", "HDIDs=7 8 9", "Name=mine"});
    EXPECT_THAT(Values(text, "RaidMode"), ElementsAre("5"));
    EXPECT_THAT(Values(text, "HDCount"), ElementsAre("3"));
    EXPECT_NE(std::string::npos, text.find("      7 8 9 0 0 0 "));
    EXPECT_NE(std::string::npos, text.find("<Name type=\"string\"><![CDATA[mine]]></Name>"));
    EXPECT_THAT(Values(text, "Size"), ElementsAre("0"));
}

TEST_F(Answer, HoldsNothingWhenTheControllerFailsWithoutWriting) {
    hxfake::On<&HX_LD_GetTargetLDInfo>().Always(9);
    hxfake::On<&HX_BBU_GetInfo>().Always(9);
    const std::string disk = Ask("HX_LD_GetTargetLDInfo", {"LD_ID=7"});
    EXPECT_THAT(Values(disk, "RetVal"), ElementsAre("9"));
    EXPECT_THAT(Values(disk, "ID"), ElementsAre("0"));
    EXPECT_THAT(Values(disk, "Size"), ElementsAre("0"));
    EXPECT_NE(std::string::npos, disk.find("<Name type=\"string\"><![CDATA[]]></Name>"));
    const std::string battery = Ask("HX_BBU_GetInfo", {});
    EXPECT_THAT(Values(battery, "RetVal"), ElementsAre("9"));
    EXPECT_THAT(Values(battery, "status"), ElementsAre("0"));
    EXPECT_THAT(Values(battery, "flags"), ElementsAre("0"));
}

TEST_F(Answer, IsTheNumberThatADiskGroupGot) {
    hxfake::On<&HX_CreateOrModify_DG>().Always(
        [](HX_U8, CreateOrModify_DG_Param* param, HX_U8) -> HX_U8 {
            EXPECT_EQ(65535, param->DGID);
            param->DGID = 12;
            return 0;
        });
    EXPECT_EQ(
        "<HX_DG_Create type=\"function\">\n"
        "  <RetVal type=\"U8\">0</RetVal>\n"
        "  <CreateOrModifyDGParam type=\"struct CreateOrModify_DG_Param\">\n"
        "    <DGID type=\"HX_U16\">12</DGID>\n"
        "  </CreateOrModifyDGParam>\n"
        "</HX_DG_Create>",
        Ask("HX_DG_Create", {"DGID=5"}));
}

// ---- HX_PD_GetRCT ------------------------------------------------------------------------------

class RemapTable : public Irregular {
protected:
    // A disk with so many records, each of whose sectors is its number.
    static void Holding(HX_U32 total) {
        hxfake::On<&HX_PD_RCT_GetCount>().Always(0, hxfake::Fill(total));
        hxfake::On<&HX_PD_GetRCT>().Always(
            [](HX_U8, HX_U16, RCT_Record* records, HX_U32 count) -> HX_U8 {
                for (HX_U32 i = 0; i < count; ++i) records[i].sec = i;
                return 0;
            });
    }

    // Asks for `n` records from `s` on, and for `e` as the last one.
    void AskFor(const std::string& n, const std::string& s, const std::string& e) {
        text = Ask("HX_PD_GetRCT", {"AdapterID=1", "HD_ID=300", "n=" + n, "s=" + s, "e=" + e});
    }

    // RetVal, HD_ID, Count, n, s and e of the result.
    std::vector<std::string> Head() const {
        std::vector<std::string> head;
        for (const char* element : {"RetVal", "HD_ID", "Count", "n", "s", "e"}) {
            const std::vector<std::string> values = Values(text, element);
            EXPECT_THAT(values, SizeIs(1)) << element;
            head.insert(head.end(), values.begin(), values.end());
        }
        return head;
    }
    // The numbers of the records in the result.
    std::vector<std::string> Records() const { return Values(text, "sec"); }

    static std::vector<std::string> From(unsigned first, unsigned count) {
        std::vector<std::string> numbers;
        for (unsigned i = first; i < first + count; ++i) numbers.push_back(std::to_string(i));
        return numbers;
    }

    std::string text;
};

TEST_F(RemapTable, IsReadWholeAndShownInPart) {
    Holding(10);
    AskFor("4", "3", "6");
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_PD_RCT_GetCount(1, 300, &)", "HX_PD_GetRCT(1, 300, &, 10)"));
    EXPECT_THAT(Head(), ElementsAre("0", "300", "10", "4", "3", "6"));
    EXPECT_EQ(From(3, 4), Records());
}

// What is asked for of a table of so many records, and the range that is shown.
struct RangeCase {
    const char* name;
    HX_U32 held;
    std::vector<std::string> asked;  // n, s and e
    unsigned count;
    unsigned first;
    const char* last;
};
void PrintTo(const RangeCase& each, std::ostream* out) { *out << each.name; }

const RangeCase kRanges[] = {
    {"ShowsAtMost150Records", 1000, {"400", "0", "399"}, 150, 0, "399"},
    {"MovesARangeThatEndsBehindIt", 1000, {"20", "990", "1009"}, 20, 980, "999"},
    {"ShowsARangeThatEndsWithIt", 1000, {"20", "980", "1000"}, 20, 980, "1000"},
    {"ShowsNoMoreThanItHolds", 3, {"4", "0", "4"}, 3, 0, "2"},
    {"ShowsNothingWhenNothingIsAskedFor", 3, {"0", "2", "3"}, 0, 2, "3"},
    {"TakesTheLargestStart", 3, {"1", "4294967295", "4294967295"}, 1, 2, "2"},
    {"TakesTheLargestCount", 3, {"4294967295", "4294967295", "0"}, 3, 0, "0"},
};

class RangeOfARemapTable : public RemapTable, public testing::WithParamInterface<RangeCase> {};

TEST_P(RangeOfARemapTable, StaysWithinIt) {
    const RangeCase& range = GetParam();
    Holding(range.held);
    AskFor(range.asked[0], range.asked[1], range.asked[2]);
    EXPECT_THAT(Head(),
                ElementsAre("0", "300", std::to_string(range.held), std::to_string(range.count),
                            std::to_string(range.first), range.last));
    EXPECT_EQ(From(range.first, range.count), Records());
}

INSTANTIATE_TEST_SUITE_P(Ranges, RangeOfARemapTable, testing::ValuesIn(kRanges),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(RemapTable, MayBeEmpty) {
    Holding(0);
    AskFor("4", "3", "0");
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_PD_RCT_GetCount(1, 300, &)", "HX_PD_GetRCT(1, 300, &, 0)"));
    EXPECT_THAT(Head(), ElementsAre("0", "300", "0", "0", "0", "0"));
    EXPECT_THAT(Records(), IsEmpty());
}

TEST_F(RemapTable, HasALastRecordBeforeItsFirstWhenItIsEmpty) {
    Holding(0);
    AskFor("4", "3", "6");
    EXPECT_THAT(Head(), ElementsAre("0", "300", "0", "0", "0", "4294967295"));
}

TEST_F(RemapTable, IsReadIntoClearRecords) {
    hxfake::On<&HX_PD_RCT_GetCount>().Always(0, hxfake::Fill(HX_U32{200}));
    AskFor("3", "0", "2");
    EXPECT_THAT(Records(), ElementsAre("0", "0", "0"));
    EXPECT_THAT(Values(text, "lba"), ElementsAre("0", "0", "0"));
}

TEST_F(RemapTable, ThatCannotBeCountedIsNotRead) {
    hxfake::On<&HX_PD_RCT_GetCount>().Always(9);
    AskFor("4", "5", "6");
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_PD_RCT_GetCount(1, 300, &)"));
    // As asked for, and as many records.
    EXPECT_THAT(Head(), ElementsAre("9", "300", "0", "4", "5", "6"));
    EXPECT_THAT(Records(), ElementsAre("0", "0", "0", "0"));
}

TEST_F(RemapTable, ThatCannotBeCountedShowsAtMost150RecordsToo) {
    hxfake::On<&HX_PD_RCT_GetCount>().Always(9, hxfake::Fill(HX_U32{7}));
    for (const char* n : {"150", "151", "4294967295"}) {
        AskFor(n, "0", "0");
        EXPECT_THAT(Head(), ElementsAre("9", "300", "7", n, "0", "0"));
        EXPECT_THAT(Records(), SizeIs(150));
        EXPECT_THAT(Records(), Each("0"));
    }
}

TEST_F(RemapTable, ThatCannotBeReadShowsZeros) {
    Holding(10);
    hxfake::On<&HX_PD_GetRCT>().Always([](HX_U8, HX_U16, RCT_Record* records, HX_U32) -> HX_U8 {
        records[0].sec = 5;
        return 8;
    });
    AskFor("3", "0", "2");
    EXPECT_THAT(Head(), ElementsAre("8", "300", "10", "3", "0", "2"));
    EXPECT_THAT(Records(), ElementsAre("0", "0", "0"));
}

TEST_F(RemapTable, ShowsAsManyRecordsAsAreAskedForWhateverItHolds) {
    Holding(1000);
    AskFor("4", "0", "0");
    EXPECT_EQ(From(0, 4), Records());
}

}  // namespace
