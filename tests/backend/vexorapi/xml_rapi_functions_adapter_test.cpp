// The functions of the library itself and of the adapters, from command to result: what the
// controller is asked, and the literal text that its answer becomes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "XMLWriter_document.h"
#include "hxfake.h"
#include "reference_writer.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "xml_rapi_functions_adapter_sample.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Vendor : public testing::Test {
protected:
    Vendor() { hxfake::Reset(); }
    ~Vendor() override { hxfake::Reset(); }

    TemporaryRoot root;
};

// ---- HX_API_Version ----------------------------------------------------------------------------

class ApiVersion : public Vendor {
protected:
    static std::string Answer(const char* version) {
        hxfake::On<&HX_API_Version>().Always(version);
        return Send("<HX_API_Version type=\"function\"/>").text;
    }
    static std::string Element(const std::string& text) {
        return "<HX_API_Version type=\"function\">\n"
               "  <RetVal type=\"string\">" +
               text +
               "</RetVal>\n"
               "</HX_API_Version>";
    }
};

TEST_F(ApiVersion, IsWrittenAsText) {
    EXPECT_EQ(
        "<HX_API_Version type=\"function\">\n"
        "  <RetVal type=\"string\">4.1.0.2048</RetVal>\n"
        "</HX_API_Version>",
        Answer("4.1.0.2048"));
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_API_Version()"));
}

TEST_F(ApiVersion, IsEmptyWhenTheControllerLibraryTellsNone) {
    EXPECT_EQ(Element(""), Answer(nullptr));
}

TEST_F(ApiVersion, IsEmptyWhenTheControllerLibraryTellsAnEmptyOne) {
    EXPECT_EQ(Element(""), Answer(""));
}

TEST_F(ApiVersion, HoldsMarkupAsItStands) {
    EXPECT_EQ(Element("1 < 2 & <b>\"]]>%s%n"), Answer("1 < 2 & <b>\"]]>%s%n"));
}

TEST_F(ApiVersion, Of127CharactersIsWrittenWhole) {
    const std::string version(127, 'v');
    EXPECT_EQ(Element(version), Answer(version.c_str()));
}

TEST_F(ApiVersion, Of128CharactersOrMoreIsCutToLeaveRoomForItsEnd) {
    for (const std::size_t length : {128u, 129u, 512u, 5000u}) {
        EXPECT_EQ(Element(std::string(127, 'v')), Answer(std::string(length, 'v').c_str()))
            << length;
    }
}

TEST_F(ApiVersion, ReadsNoParameter) {
    hxfake::On<&HX_API_Version>().Always("4.1");
    EXPECT_EQ(Element("4.1"), Send("<HX_API_Version type=\"function\"><RetVal>9</RetVal>"
                                   "<AdapterID>1</AdapterID></HX_API_Version>")
                                  .text);
}

// ---- HX_Adapter_GetCount -----------------------------------------------------------------------

class AdapterCount : public Vendor, public testing::WithParamInterface<int> {};

TEST_P(AdapterCount, IsWrittenAsRetVal) {
    hxfake::On<&HX_Adapter_GetCount>().Always(static_cast<HX_U8>(GetParam()));
    const Reply reply = Send("<HX_Adapter_GetCount type=\"function\"/>");
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ("<HX_Adapter_GetCount type=\"function\">\n  <RetVal type=\"U8\">" +
                  std::to_string(GetParam()) + "</RetVal>\n</HX_Adapter_GetCount>",
              reply.text);
}

INSTANTIATE_TEST_SUITE_P(Counts, AdapterCount, testing::Values(0, 1, 9, 10, 99, 100, 254, 255),
                         testing::PrintToStringParamName());

// ---- HX_Adapter_GetInfo: parameters ------------------------------------------------------------

class AdapterInfo : public Vendor {
protected:
    static Reply Ask(const std::string& children) {
        return Send("<HX_Adapter_GetInfo type=\"function\">" + children + "</HX_Adapter_GetInfo>");
    }

    // The result with these codes and elements.
    static std::string Result(int status, int count, const std::string& elements) {
        return "<HX_Adapter_GetInfo type=\"function\">\n"
               "  <RetVal type=\"U8\">" +
               std::to_string(status) +
               "</RetVal>\n"
               "  <Count type=\"U8\">" +
               std::to_string(count) + "</Count>\n" + elements + "</HX_Adapter_GetInfo>";
    }
};

struct Parameter {
    const char* name;
    const char* children;
    const char* call;
    friend void PrintTo(const Parameter& it, std::ostream* os) { *os << it.children; }
};

class AdapterInfoParameter : public AdapterInfo, public testing::WithParamInterface<Parameter> {};

TEST_P(AdapterInfoParameter, ReachesTheController) {
    EXPECT_EQ(1, Ask(GetParam().children).ok);
    EXPECT_THAT(hxfake::Calls(), ElementsAre(GetParam().call));
}

constexpr char kAdapter0[] = "HX_Adapter_GetInfo(0, &, &)";
constexpr char kAdapter1[] = "HX_Adapter_GetInfo(1, &, &)";
constexpr char kAdapter7[] = "HX_Adapter_GetInfo(7, &, &)";

INSTANTIATE_TEST_SUITE_P(
    Commands, AdapterInfoParameter,
    testing::Values(
        Parameter{"Given", "<AdapterID>7</AdapterID>", kAdapter7},
        Parameter{"Absent", "", kAdapter0},
        Parameter{"Empty", "<AdapterID></AdapterID>", kAdapter0},
        Parameter{"EmptyTag", "<AdapterID/>", kAdapter0},
        Parameter{"WithoutADigit", "<AdapterID>seven</AdapterID>", kAdapter0},
        Parameter{"WithBlanks", "<AdapterID> \n 7 \n </AdapterID>", kAdapter7},
        Parameter{"WithASign", "<AdapterID>-7</AdapterID>", kAdapter7},
        Parameter{"WithLeadingZeros", "<AdapterID>007</AdapterID>", kAdapter7},
        Parameter{"OfSeveralNumbers", "<AdapterID>7 8 9</AdapterID>", kAdapter7},
        Parameter{"InCdata", "<AdapterID><![CDATA[7]]></AdapterID>", kAdapter7},
        Parameter{"InPieces", "<AdapterID>2<!-- -->54</AdapterID>",
                  "HX_Adapter_GetInfo(254, &, &)"},
        Parameter{"OfMoreThan8Bits", "<AdapterID>263</AdapterID>", kAdapter7},
        Parameter{"OfMoreThan16Bits", "<AdapterID>65543</AdapterID>", kAdapter7},
        Parameter{"WithAttributes", "<AdapterID type=\"U16\" width=\"9\">7</AdapterID>", kAdapter7},
        Parameter{"Repeated", "<AdapterID>1</AdapterID><AdapterID>7</AdapterID>", kAdapter7},
        Parameter{"RepeatedAndThenEmpty", "<AdapterID>7</AdapterID><AdapterID/>", kAdapter7},
        Parameter{"RepeatedAndThenWithoutADigit",
                  "<AdapterID>7</AdapterID><AdapterID>seven</AdapterID>", kAdapter7},
        Parameter{"InOtherCase", "<adapterid>7</adapterid>", kAdapter0},
        Parameter{"OfAnotherName", "<AdapterId>7</AdapterId><Adapter_ID>7</Adapter_ID>", kAdapter0},
        Parameter{"WithAPrefix", "<x:AdapterID>7</x:AdapterID>", kAdapter0},
        Parameter{"AmongUnknownOnes", "<a>1</a><AdapterID>7</AdapterID><RetVal>2</RetVal>",
                  kAdapter7},
        Parameter{"OnTheSecondLevel", "<a><AdapterID>7</AdapterID></a>", kAdapter7},
        Parameter{"OnTheThirdLevel", "<a><b><AdapterID>7</AdapterID></b></a>", kAdapter7},
        Parameter{"OnTheFourthLevel", "<a><b><c><AdapterID>7</AdapterID></c></b></a>", kAdapter0},
        Parameter{"WithAChild", "<AdapterID>1<AdapterID>7</AdapterID></AdapterID>", kAdapter7},
        Parameter{"WithTextBeforeAChild", "<AdapterID>7<a/></AdapterID>", kAdapter0},
        Parameter{"WithTextBehindAChild", "<AdapterID>1<a>2</a>3</AdapterID>",
                  "HX_Adapter_GetInfo(23, &, &)"},
        Parameter{"OfTheFunctionsOwnName", "<HX_Adapter_GetInfo>7</HX_Adapter_GetInfo>", kAdapter0},
        Parameter{"WithinTheFunctionsOwnName",
                  "<HX_Adapter_GetInfo><AdapterID>7</AdapterID></HX_Adapter_GetInfo>", kAdapter7},
        Parameter{"AsTextOfTheFunction", "7", kAdapter0}),
    [](const testing::TestParamInfo<Parameter>& at) { return std::string(at.param.name); });

TEST_F(AdapterInfo, ReadsANumberThatOverflowsAsEveryAdapter) {
    hxfake::On<&HX_Adapter_GetCount>().Always(1);
    Ask("<AdapterID>99999999999999999999</AdapterID>");
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_Adapter_GetCount()", kAdapter0, "HX_Adapter_GetCount()"));
}

TEST_F(AdapterInfo, ReadsTheNumberInAVeryLongText) {
    Ask("<AdapterID>" + std::string(2046, ' ') + "7</AdapterID>");
    Ask("<AdapterID>" + std::string(2047, ' ') + "7</AdapterID>");
    EXPECT_THAT(hxfake::Calls(), ElementsAre(kAdapter7, kAdapter0));
}

// ---- HX_Adapter_GetInfo: one adapter -----------------------------------------------------------

TEST_F(AdapterInfo, WritesAnAdapterFieldByField) {
    hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({DistinctAdapter()}));
    const Reply reply = Ask("<AdapterID>1</AdapterID>");
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(Result(0, 1, kDistinctAdapterElement), reply.text);
    EXPECT_THAT(hxfake::Calls(), ElementsAre(kAdapter1));
}

TEST_F(AdapterInfo, WritesACodeAndNoAdapterWhenTheControllerRefuses) {
    hxfake::On<&HX_Adapter_GetInfo>().Always(11);
    const Reply reply = Ask("<AdapterID>1</AdapterID>");
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(
        "<HX_Adapter_GetInfo type=\"function\">\n"
        "  <RetVal type=\"U8\">11</RetVal>\n"
        "  <Count type=\"U8\">0</Count>\n"
        "</HX_Adapter_GetInfo>",
        reply.text);
}

TEST_F(AdapterInfo, WritesWhatTheControllerReturnedTogetherWithItsCode) {
    hxfake::On<&HX_Adapter_GetInfo>().Always(11, hxfake::Records({DistinctAdapter()}));
    EXPECT_EQ(Result(11, 1, kDistinctAdapterElement), Ask("<AdapterID>1</AdapterID>").text);
}

TEST_F(AdapterInfo, WritesAsManyAdaptersAsTheControllerClaims) {
    // One record is filled and three are claimed: the others are zero, never what memory held.
    hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({DistinctAdapter()}, 3));
    const Document expected;
    XMLWR_Init(expected);
    expected->Depth = 1;
    const Adapter_Info others[2]{};
    reference::RecordAdapterInfo(expected, "AdapterInfo", others, 2);
    EXPECT_EQ(Result(0, 3, kDistinctAdapterElement + std::string(expected.Text())),
              Ask("<AdapterID>1</AdapterID>").text);
}

TEST_F(AdapterInfo, WritesAdapterAfterAdapter) {
    hxfake::On<&HX_Adapter_GetInfo>().Always(
        0, hxfake::Records({DistinctAdapter(), DistinctAdapter()}));
    EXPECT_EQ(Result(0, 2, kDistinctAdapterElement + kDistinctAdapterElement),
              Ask("<AdapterID>1</AdapterID>").text);
}

TEST_F(AdapterInfo, HandsTheControllerAZeroCountAndAClearRecord) {
    HX_U8 count = 99;
    Adapter_Info record = DistinctAdapter();
    hxfake::On<&HX_Adapter_GetInfo>().Inspect([&](HX_U8, HX_U8* items, Adapter_Info* info) {
        count = *items;
        record = *info;
    });
    Ask("<AdapterID>1</AdapterID>");
    EXPECT_EQ(0, count);
    const Adapter_Info clear{};
    EXPECT_EQ(0, std::memcmp(&clear, &record, sizeof clear));
}

TEST_F(AdapterInfo, WithoutPortsHasNoPortElement) {
    Adapter_Info info = DistinctAdapter();
    info.PortCount = 0;
    hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({info}));
    EXPECT_EQ(Result(0, 1,
                     std::string(kAdapterOpen) + "    <PortCount type=\"U8\">0</PortCount>\n" +
                         kAdapterLimits + kAdapterSerialNo + kAdapterClose),
              Ask("").text);
}

TEST_F(AdapterInfo, WithASerialNumberThatBeginsWith0HasNone) {
    Adapter_Info info = DistinctAdapter();
    std::memcpy(info.SerialNo, "0123456789", 10);
    hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({info}));
    EXPECT_EQ(Result(0, 1,
                     std::string(kAdapterOpen) + kAdapterPortCount + kAdapterLimits +
                         "    <SerialNo type=\"string\"><![CDATA[]]></SerialNo>\n" + kAdapterPorts +
                         kAdapterClose),
              Ask("").text);
}

// ---- HX_Adapter_GetInfo: every adapter ---------------------------------------------------------

// An adapter that is all zero but for its slot.
Adapter_Info AdapterInSlot(HX_U32 slot) {
    Adapter_Info info{};
    info.SlotNumber = slot;
    return info;
}

// What a controller with `adapters` adapters in these slots is answered for all of them, by the
// reference writer.
std::string ReferenceResult(int status, unsigned count, const std::vector<Adapter_Info>& adapters) {
    const Document doc;
    reference::Init(doc);
    reference::ElmtStartPrintf(doc, 0, "HX_Adapter_GetInfo", " %s=\"%s\"", "type", "function");
    reference::ElmtNonArrayData(doc, "RetVal", "U8", "%d", status);
    reference::ElmtNonArrayData(doc, "Count", "U8", "%u", count);
    reference::RecordAdapterInfo(doc, "AdapterInfo", adapters.data(),
                                 static_cast<unsigned>(adapters.size()));
    reference::ElmtEnd(doc, 0, "HX_Adapter_GetInfo");
    return std::string(doc.Text().substr(0, doc->CurPos - 1));
}

class InfoOfEveryAdapter : public AdapterInfo {
protected:
    static Reply AskAll() { return Ask("<AdapterID>255</AdapterID>"); }

    // A controller with this many adapters, each in the slot of its number plus 1000.
    static void Install(HX_U8 adapters) {
        hxfake::On<&HX_Adapter_GetCount>().Always(adapters);
        hxfake::On<&HX_Adapter_GetInfo>().Always(
            [](HX_U8 adapter, HX_U8* count, Adapter_Info* info) -> HX_U8 {
                *count = 1;
                *info = AdapterInSlot(1000u + adapter);
                return 0;
            });
    }
    static std::vector<Adapter_Info> Installed(unsigned adapters) {
        std::vector<Adapter_Info> all;
        for (unsigned i = 0; i < adapters; ++i) all.push_back(AdapterInSlot(1000 + i));
        return all;
    }
};

TEST_F(InfoOfEveryAdapter, OfNoneIsNone) {
    Install(0);
    EXPECT_EQ(
        "<HX_Adapter_GetInfo type=\"function\">\n"
        "  <RetVal type=\"U8\">0</RetVal>\n"
        "  <Count type=\"U8\">0</Count>\n"
        "</HX_Adapter_GetInfo>",
        AskAll().text);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetCount()"));
}

TEST_F(InfoOfEveryAdapter, OfOneIsThatOne) {
    hxfake::On<&HX_Adapter_GetCount>().Always(1);
    hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({DistinctAdapter()}));
    EXPECT_EQ(Result(0, 1, kDistinctAdapterElement), AskAll().text);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_Adapter_GetCount()", kAdapter0, "HX_Adapter_GetCount()"));
}

TEST_F(InfoOfEveryAdapter, OfTwoStandsInAdapterOrder) {
    hxfake::On<&HX_Adapter_GetCount>().Always(2);
    Adapter_Info second = DistinctAdapter();
    second.PortCount = 0;
    hxfake::On<&HX_Adapter_GetInfo>()
        .Once(0, hxfake::Records({DistinctAdapter()}))
        .Once(0, hxfake::Records({second}));
    EXPECT_EQ(Result(0, 2,
                     kDistinctAdapterElement + kAdapterOpen +
                         "    <PortCount type=\"U8\">0</PortCount>\n" + kAdapterLimits +
                         kAdapterSerialNo + kAdapterClose),
              AskAll().text);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_Adapter_GetCount()", kAdapter0, "HX_Adapter_GetCount()", kAdapter1,
                            "HX_Adapter_GetCount()"));
}

TEST_F(InfoOfEveryAdapter, OfSixIsWrittenWhole) {
    Install(6);
    EXPECT_EQ(ReferenceResult(0, 6, Installed(6)), AskAll().text);
}

TEST_F(InfoOfEveryAdapter, Of255IsCutWhereTheDocumentEnds) {
    Install(255);
    const Reply reply = AskAll();
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(ReferenceResult(0, 255, Installed(255)), reply.text);
    EXPECT_GT(reply.text.size(), 524200u);
    EXPECT_EQ(255u, hxfake::On<&HX_Adapter_GetInfo>().CallCount());
    EXPECT_EQ(256u, hxfake::On<&HX_Adapter_GetCount>().CallCount());
}

TEST_F(InfoOfEveryAdapter, KeepsTheLastAdaptersCode) {
    hxfake::On<&HX_Adapter_GetCount>().Always(3);
    hxfake::On<&HX_Adapter_GetInfo>()
        .Once(5, hxfake::Records({AdapterInSlot(1)}))
        .Once(0, hxfake::Records({AdapterInSlot(2)}))
        .Once(8, hxfake::Records({AdapterInSlot(3)}));
    EXPECT_EQ(ReferenceResult(8, 3, {AdapterInSlot(1), AdapterInSlot(2), AdapterInSlot(3)}),
              AskAll().text);
}

TEST_F(InfoOfEveryAdapter, ForgetsTheCodesOfAllButTheLast) {
    hxfake::On<&HX_Adapter_GetCount>().Always(2);
    hxfake::On<&HX_Adapter_GetInfo>()
        .Once(5, hxfake::Records({AdapterInSlot(1)}))
        .Once(0, hxfake::Records({AdapterInSlot(2)}));
    EXPECT_EQ(ReferenceResult(0, 2, {AdapterInSlot(1), AdapterInSlot(2)}), AskAll().text);
}

TEST_F(InfoOfEveryAdapter, PacksAdaptersThatReturnDifferentNumbers) {
    hxfake::On<&HX_Adapter_GetCount>().Always(3);
    hxfake::On<&HX_Adapter_GetInfo>()
        .Once(0, hxfake::Records({AdapterInSlot(1), AdapterInSlot(2)}))
        .Once(0, hxfake::Records(std::vector<Adapter_Info>{}))
        .Once(0, hxfake::Records({AdapterInSlot(3), AdapterInSlot(4), AdapterInSlot(5)}));
    EXPECT_EQ(ReferenceResult(0, 5,
                              {AdapterInSlot(1), AdapterInSlot(2), AdapterInSlot(3),
                               AdapterInSlot(4), AdapterInSlot(5)}),
              AskAll().text);
}

TEST_F(InfoOfEveryAdapter, CountsAnAdapterThatLeavesTheCountAloneAsTheOneBefore) {
    hxfake::On<&HX_Adapter_GetCount>().Always(3);
    hxfake::On<&HX_Adapter_GetInfo>()
        .Once(9)  // the count is still the 0 that it begins with
        .Once(0, hxfake::Records({AdapterInSlot(1), AdapterInSlot(2)}))
        .Once(9);
    EXPECT_EQ(
        ReferenceResult(9, 4, {AdapterInSlot(1), AdapterInSlot(2), Adapter_Info{}, Adapter_Info{}}),
        AskAll().text);
}

TEST_F(InfoOfEveryAdapter, AddsTheNumbersIn8Bits) {
    // 200 and 100 make 44; the second adapter's records stand behind the first one's 200.
    hxfake::On<&HX_Adapter_GetCount>().Always(2);
    hxfake::On<&HX_Adapter_GetInfo>()
        .Once(0, hxfake::Records({AdapterInSlot(1)}, 200))
        .Once(0, hxfake::Records({AdapterInSlot(2)}, 100));
    std::vector<Adapter_Info> written(44);
    written[0] = AdapterInSlot(1);
    EXPECT_EQ(ReferenceResult(0, 44, written), AskAll().text);
}

TEST_F(InfoOfEveryAdapter, WrapsToNoneWhenTheNumbersMake256) {
    hxfake::On<&HX_Adapter_GetCount>().Always(2);
    hxfake::On<&HX_Adapter_GetInfo>()
        .Once(0, hxfake::Records({AdapterInSlot(1)}, 255))
        .Once(0, hxfake::Records({AdapterInSlot(2)}, 1));
    EXPECT_EQ(Result(0, 0, ""), AskAll().text);
}

TEST_F(InfoOfEveryAdapter, GivesTheLastOneRoomForAllThatItMayReturn) {
    // The second adapter begins at the last place there is and fills as many as it can claim.
    hxfake::On<&HX_Adapter_GetCount>().Always(2);
    hxfake::On<&HX_Adapter_GetInfo>()
        .Once(0, hxfake::Records({AdapterInSlot(1)}, 255))
        .Once([](HX_U8, HX_U8* count, Adapter_Info* info) -> HX_U8 {
            for (HX_U32 i = 0; i < 255; ++i) info[i] = AdapterInSlot(2000 + i);
            *count = 255;
            return 0;
        });
    std::vector<Adapter_Info> written(254);
    written[0] = AdapterInSlot(1);
    EXPECT_EQ(ReferenceResult(0, 254, written), AskAll().text);
}

TEST_F(InfoOfEveryAdapter, EndsWhereTheCountOfAdaptersFallsTo) {
    Install(0);
    hxfake::On<&HX_Adapter_GetCount>().Once(3).Once(3).Always(2);
    EXPECT_EQ(ReferenceResult(0, 2, Installed(2)), AskAll().text);
    EXPECT_EQ(3u, hxfake::On<&HX_Adapter_GetCount>().CallCount());
}

TEST_F(InfoOfEveryAdapter, GoesOnWhenTheCountOfAdaptersGrows) {
    Install(0);
    hxfake::On<&HX_Adapter_GetCount>().Once(1).Always(3);
    EXPECT_EQ(ReferenceResult(0, 3, Installed(3)), AskAll().text);
}

TEST_F(InfoOfEveryAdapter, BeginsAnewWithEachRequest) {
    Install(2);
    AskAll();
    EXPECT_EQ(ReferenceResult(0, 2, Installed(2)), AskAll().text);
}

}  // namespace
