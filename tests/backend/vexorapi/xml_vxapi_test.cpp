// The management functions, from the command to the result.
#include "xml_vxapi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "debug_log.h"
#include "reference_writer.h"
#include "support/request.h"
#include "vexorapi_version.h"
#include "vxevent_golden.h"
#include "vxevent_store.h"
#include "vxevent_text.h"

namespace {

using testing::HasSubstr;

class Management : public EventStore {
protected:
    Management() { VX_VER_INIT(); }

    /// The result of the command, which a function must take, with the line end that results lack.
    static std::string ResultOf(const std::string& name, const std::string& children = "") {
        const std::string command =
            "<" + name + " type=\"function\">" + children + "</" + name + ">";
        const Reply reply = Send(command);
        EXPECT_EQ(1, reply.ok) << command;
        return reply.text + "\n";
    }
    static std::string EventsOf(const std::string& children) {
        return ResultOf("VX_HX_EVT_GetEvents", children);
    }
};

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

/// The value of the first element called `name`.
std::string ValueOf(const std::string& result, const std::string& name) {
    const std::size_t tag = result.find("<" + name + " ");
    if (tag == std::string::npos) return "no such element";
    const std::size_t value = result.find('>', tag) + 1;
    return result.substr(value, result.find("</", value) - value);
}

// ---- The table ----------------------------------------------------------------------------------

TEST(ManagementTable, KnowsTheFourFunctionsAndTheirHandlers) {
    const auto expect = [](const char* name, XML_StartElementHandler start,
                           XML_EndElementHandler end) {
        XMLElement elmt{};
        EXPECT_EQ(1, VX_FuncElementDispatcher(&elmt, name, nullptr)) << name;
        EXPECT_EQ(start, elmt.StartHandler) << name;
        EXPECT_EQ(end, elmt.EndHandler) << name;
        EXPECT_EQ(nullptr, elmt.CharDataHandler) << name;
    };
    expect("VX_Module_GetInfo", XML_VX_Module_GetInfo_SEH, XML_VX_Module_GetInfo_EEH);
    expect("VX_HX_EVT_GetChangeCounters", XML_VX_HX_EVT_GetChangeCounters_SEH,
           XML_VX_HX_EVT_GetChangeCounters_EEH);
    expect("VX_HX_EVT_GetEvents", XML_VX_HX_EVT_GetEvents_SEH, XML_VX_HX_EVT_GetEvents_EEH);
    expect("VX_HX_EVT_Reset", XML_VX_HX_EVT_Reset_SEH, XML_VX_HX_EVT_Reset_EEH);
}

TEST(ManagementTable, DeclinesEveryOtherNameAndChangesNothing) {
    for (const char* const name : {"", "VX_", "vx_module_getinfo", "VX_Module_GetInf",
                                   "VX_Module_GetInfo2", "VX_HX_EVT_Get", "HX_API_Version"}) {
        XMLElement elmt{};
        EXPECT_EQ(0, VX_FuncElementDispatcher(&elmt, name, nullptr)) << name;
        EXPECT_EQ(nullptr, elmt.StartHandler) << name;
        EXPECT_EQ(nullptr, elmt.EndHandler) << name;
        EXPECT_EQ(0u, elmt.ExtNeeds.bytes) << name;
    }
}

TEST(ManagementTable, AsksForNoMoreRecordThanTheFunctionNeeds) {
    const auto size_of = [](const char* name) {
        XMLElement elmt{};
        VX_FuncElementDispatcher(&elmt, name, nullptr);
        return elmt.ExtNeeds;
    };
    EXPECT_EQ(64u + 72, size_of("VX_Module_GetInfo").bytes);
    EXPECT_EQ(64u + 68, size_of("VX_HX_EVT_GetChangeCounters").bytes);
    EXPECT_EQ(64u + 1, size_of("VX_HX_EVT_Reset").bytes);
    EXPECT_EQ(64u + 48 + 2000 * 64, size_of("VX_HX_EVT_GetEvents").bytes);
    EXPECT_EQ(64u + 48, size_of("VX_HX_EVT_GetEvents").zeroed);  // the events are not
}

TEST(ManagementTable, ExecutorDeclinesARecordOfAnotherFunction) {
    XML_VX_FuncData record{};
    std::strcpy(record.FuncName, "HX_API_Version");
    const auto elmt = std::make_unique<XMLElement>();
    const auto doc = std::make_unique<XMLWR_Doc>();
    elmt->Ext = &record;
    EXPECT_EQ(0, VX_XMLFunc_VX_Api(elmt.get(), doc.get()));
    EXPECT_EQ(0u, doc->CurPos);
}

TEST_F(Management, ExecutorNamesTheFunctionInTheDebugLog) {
    const DebugLog log(root_);
    ResultOf("VX_HX_EVT_Reset");
    EXPECT_THAT(log.Text(), HasSubstr("\npFD->FuncName=VX_HX_EVT_Reset\n\n"));
}

// ---- Results -----------------------------------------------------------------------------------

TEST_F(Management, ModuleInfoTellsFourVersions) {
    root_.Write("/hxraidver.dat", "2.1.0.35\n");
    EXPECT_EQ(GoldenText("vxevent_module_info.xml"), ResultOf("VX_Module_GetInfo"));
}

TEST_F(Management, ModuleInfoIgnoresChildren) {
    root_.Write("/hxraidver.dat", "2.1.0.35\n");
    EXPECT_EQ(GoldenText("vxevent_module_info.xml"),
              ResultOf("VX_Module_GetInfo", "<product><Major>7</Major></product>"));
}

TEST_F(Management, ChangeCountersComeInTheirOwnOrderWithResultOne) {
    std::string counters;
    for (char value = 1; value <= 14; ++value) counters += std::string({value, 0, 0, 0});
    root_.Write(kEventFile, std::string("Ombra Event File v0.1") + std::string(31, '\0') +
                                counters + "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(GoldenText("vxevent_change_counters.xml"), ResultOf("VX_HX_EVT_GetChangeCounters"));
}

TEST_F(Management, ResetEmptiesTheStoreAndAnswersWithNothing) {
    CheckIn(DiskEvents(1, 3));
    EXPECT_EQ(GoldenText("vxevent_reset.xml"), ResultOf("VX_HX_EVT_Reset"));
    EXPECT_EQ(112u, root_.Read(kEventFile).size());
}

TEST_F(Management, EventsComeWithTheirTexts) {
    root_.Write(kEventFile, GoldenBytes("vxevent_two_events.hex"));
    EXPECT_EQ(GoldenText("vxevent_two_events.xml"), EventsOf("<n>2</n><s>0</s><e>0</e>"));
}

TEST_F(Management, ExtentListsNoEvents) {
    SetCapacity(50);
    CheckIn(DiskEvents(1, 70));
    EXPECT_EQ(GoldenText("vxevent_extent.xml"), EventsOf("<n>0</n>"));
    EXPECT_EQ(GoldenText("vxevent_extent.xml"), EventsOf(""));
    EXPECT_EQ(GoldenText("vxevent_extent.xml"), EventsOf("<n></n><s>5</s>"));
}

TEST_F(Management, NewestEventsAreAskedForWithAllOnes) {
    CheckIn(DiskEvents(1, 100));
    const std::string result = EventsOf("<n>20</n><s>4294967295</s><e>4294967295</e>");
    EXPECT_EQ("20", ValueOf(result, "n"));
    EXPECT_EQ("80", ValueOf(result, "s"));
    EXPECT_EQ("99", ValueOf(result, "e"));
    EXPECT_EQ(20u, CountOf(result, "<Event type=\"struct Event\">"));
}

TEST_F(Management, AtMostTwoThousandEventsAreReturned) {
    CheckIn(DiskEvents(1, 2100));
    const std::string result = EventsOf("<n>5000</n>");
    EXPECT_EQ("2000", ValueOf(result, "n"));
    EXPECT_EQ("1999", ValueOf(result, "e"));
}

TEST_F(Management, EventsOfAMissingStoreAreZeros) {
    const std::string result = EventsOf("<n>2</n><s>7</s><e>8</e>");
    EXPECT_EQ("2", ValueOf(result, "n"));
    EXPECT_EQ("7", ValueOf(result, "s"));
    EXPECT_EQ("8", ValueOf(result, "e"));
    EXPECT_EQ(2u, CountOf(result,
                          "Thu Jan  1 00:00:00 1970 "
                          "EVT_CODE_SMART_FROM_OFF_TO_ON|[UNKNOWN]|0| \n"));
}

// The longest event that there is, with or without its sense data.
Event LongestEvent(HX_U8 sense_length) {
    Event event;
    std::memset(&event, 0xFF, sizeof event);
    event.Class = 2;
    event.Code = 36;
    event.Severity = 6;
    event.SequenceNo = 0;
    event.SenseDataLength = sense_length;
    return event;
}

TEST_F(Management, PagesOfEightHundredEventsWithoutSenseDataAreWhole) {
    CheckIn(std::vector<Event>(1700, LongestEvent(0)));
    HX_U32 listed = 0;
    for (HX_U32 next = 0; next < 1700;) {
        const std::string result =
            EventsOf("<n>800</n><s>" + std::to_string(next) + "</s><e>0</e>");
        const auto whole = static_cast<HX_U32>(CountOf(result, "\n  </Event>\n"));
        EXPECT_EQ(std::to_string(whole), ValueOf(result, "n"));
        EXPECT_TRUE(result.ends_with("\n  </Event>\n</VX_HX_EVT_GetEvents>\n"));
        listed += whole;
        next = static_cast<HX_U32>(std::stoul(ValueOf(result, "e"))) + 1;
    }
    EXPECT_EQ(1700u, listed);
}

TEST_F(Management, SevenHundredOfTheLongestEventsAreWhole) {
    CheckIn(std::vector<Event>(700, LongestEvent(255)));
    const std::string result = EventsOf("<n>700</n>");
    EXPECT_EQ(700u, CountOf(result, "\n  </Event>\n"));
    EXPECT_TRUE(result.ends_with("\n  </Event>\n</VX_HX_EVT_GetEvents>\n"));
}

TEST_F(Management, LargerPageArrivesCut) {
    CheckIn(DiskEvents(1, 2000));
    const std::string result = EventsOf("<n>2000</n>");
    EXPECT_EQ(524287u, result.size());
    EXPECT_EQ("2000", ValueOf(result, "n"));
    EXPECT_GT(1300u, CountOf(result, "\n  </Event>\n"));
    EXPECT_LT(800u, CountOf(result, "\n  </Event>\n"));
}

// ---- Sense data --------------------------------------------------------------------------------

class SenseData : public Management {
protected:
    std::string ResultWith(HX_U8 length) {
        Event event = MakeEvent(2, 1, 0);
        event.SenseDataLength = length;
        for (HX_U8 i = 0; i < 30; ++i) event.SenseData[i] = static_cast<HX_U8>(100 + i);
        CheckIn({event});
        return EventsOf("<n>1</n><s>4294967295</s><e>4294967295</e>");
    }
};

TEST_F(SenseData, OfLengthZeroHasNoElement) {
    EXPECT_EQ(0u, CountOf(ResultWith(0), "<SenseData "));
}

TEST_F(SenseData, OfOneByteHasNoBlank) {
    EXPECT_THAT(ResultWith(1), HasSubstr("    <SenseDataLength type=\"U8\">1</SenseDataLength>\n"
                                         "    <SenseData type=\"U8\" width=\"1\">\n"
                                         "      100\n"
                                         "    </SenseData>\n"
                                         "    <Event type=\"string\">"));
}

constexpr char kThirtyBytes[] =
    "    <SenseData type=\"U8\" width=\"30\">\n"
    "      100 101 102 103 104 105 106 107 108 109 110 111 112 113 114 115 116 117 118 119 120 121 "
    "122 123 124 125 126 127 128 129\n"
    "    </SenseData>\n";

TEST_F(SenseData, OfThirtyBytesIsWhole) {
    EXPECT_THAT(ResultWith(30),
                HasSubstr("    <SenseDataLength type=\"U8\">30</SenseDataLength>\n" +
                          std::string(kThirtyBytes)));
}

TEST_F(SenseData, BeyondThirtyBytesTellsItsLengthAndStopsAtThirty) {
    EXPECT_THAT(ResultWith(31),
                HasSubstr("    <SenseDataLength type=\"U8\">31</SenseDataLength>\n" +
                          std::string(kThirtyBytes)));
    EXPECT_THAT(ResultWith(255),
                HasSubstr("    <SenseDataLength type=\"U8\">255</SenseDataLength>\n" +
                          std::string(kThirtyBytes)));
}

// ---- Parameters --------------------------------------------------------------------------------

/// What the handlers read from the children of a "VX_HX_EVT_GetEvents" element.
class Parameters : public Management {
protected:
    Parameters() : elmt_(std::make_unique<XMLElement>()), data_(new XML_VX_FuncData) {
        std::memset(data_.get(), 0, sizeof *data_);
        elmt_->Ext = data_.get();
    }
    void End(const char* name, const std::string& text) {
        std::memcpy(elmt_->CharDataBuf, text.c_str(), text.size() + 1);
        elmt_->CharDataIndex = static_cast<HX_U16>(text.size());
        XML_VX_HX_EVT_GetEvents_EEH(elmt_.get(), name);
    }
    const VX_HX_EVT_GetEvents& Query() const { return data_->VX_HX_EVT_GetEvents; }

    std::unique_ptr<XMLElement> elmt_;
    std::unique_ptr<XML_VX_FuncData> data_;
};

TEST_F(Parameters, AreNumbersOf32Bits) {
    End("n", "1");
    End("s", " 4294967295 ");
    End("e", "\n  77\n");
    EXPECT_EQ(1u, Query().n);
    EXPECT_EQ(4294967295u, Query().s);
    EXPECT_EQ(77u, Query().e);
}

TEST_F(Parameters, WithoutADigitLeaveTheFieldAsItWas) {
    End("n", "5");
    End("n", "none");
    End("n", "");
    EXPECT_EQ(5u, Query().n);
}

TEST_F(Parameters, OfOtherNamesAreIgnored) {
    End("N", "5");
    End("nn", "5");
    End("VX_HX_EVT_GetEvents", "5");
    EXPECT_EQ(0u, Query().n);
    EXPECT_EQ(0u, Query().nn);
}

TEST_F(Parameters, LanguageKeepsFifteenCharacters) {
    End("Lang", "123456789012345");
    EXPECT_STREQ("123456789012345", Query().Lang);
    End("Lang", "1234567890123456");
    EXPECT_STREQ("123456789012345", Query().Lang);
    End("Lang", "en");
    EXPECT_STREQ("en", Query().Lang);
    End("Lang", std::string(2047, 'x'));
    EXPECT_STREQ("xxxxxxxxxxxxxxx", Query().Lang);
    EXPECT_EQ(0u, Query().ev[0].Class);
}

TEST_F(Parameters, LanguageIsToldInTheDebugLog) {
    const DebugLog log(root_);
    End("Lang", "en_GB.and.more.than.fits");
    EXPECT_EQ("Lang = en_GB.and.more.than.fits\n", log.Text());
}

TEST_F(Parameters, ReachTheQueryThroughACommand) {
    CheckIn(DiskEvents(1, 10));
    const std::string result =
        EventsOf("<Lang>en</Lang><e>4</e><page><n>2</n></page><s>4294967295</s>");
    EXPECT_EQ("2", ValueOf(result, "n"));
    EXPECT_EQ("3", ValueOf(result, "s"));
    EXPECT_EQ("4", ValueOf(result, "e"));
}

// ---- The document's end -----------------------------------------------------------------------

// The events written piece by piece by the reference writer.
void WriteLiterally(XMLWR_Doc* doc, const std::vector<Event>& events) {
    for (const Event& event : events) {
        reference::ElmtStartPrintf(doc, 0, "Event", " %s=\"%s\"", "type", "struct Event");
        reference::ElmtNonArrayData(doc, "Class", "U16", "%u", event.Class);
        reference::ElmtNonArrayData(doc, "Code", "U16", "%u", event.Code);
        reference::ElmtNonArrayData(doc, "TimeStamp", "U32", "%u", event.TimeStamp);
        reference::ElmtNonArrayData(doc, "DeviceID", "U16", "%u", event.DeviceID);
        reference::ElmtNonArrayData(doc, "Severity", "U8", "%u", event.Severity);
        reference::ElmtNonArrayData(doc, "AdapterID", "U8", "%u", event.AdapterID);
        reference::ElmtStartArrayData(doc, "Params", "U32", 4);
        reference::PrintTabs(doc);
        for (int i = 0; i < 4; ++i) {
            reference::ElmtCharData(doc, 6, i < 3 ? "%u " : "%u", event.Params[i]);
        }
        reference::PrintNewLine(doc);
        reference::ElmtEnd(doc, 0, "Params");
        reference::ElmtNonArrayData(doc, "SenseDataLength", "U8", "%u", event.SenseDataLength);
        if (event.SenseDataLength > 0) {
            const int width = std::min<int>(event.SenseDataLength, 30);
            reference::ElmtStartArrayData(doc, "SenseData", "U8", width);
            reference::PrintTabs(doc);
            for (int i = 0; i < width; ++i) {
                reference::ElmtCharData(doc, 6, i < width - 1 ? "%u " : "%u", event.SenseData[i]);
            }
            reference::PrintNewLine(doc);
            reference::ElmtEnd(doc, 0, "SenseData");
        }
        char text[512];
        VX_HX_EVT_Sprintf(&event, text);
        reference::ElmtNonArrayData(doc, "Event", "string", "%s", text);
        reference::ElmtEnd(doc, 0, "Event");
    }
}

std::vector<Event> RandomEvents(std::size_t count) {
    std::mt19937 random(7);
    std::vector<Event> events(count);
    for (Event& event : events) {
        std::uint32_t words[16];
        for (std::uint32_t& word : words) word = static_cast<std::uint32_t>(random());
        std::memcpy(&event, words, sizeof event);
        event.Class %= 15;
        event.Code %= 110;
        if (random() % 2 == 0) event.SenseDataLength = 0;
    }
    return events;
}

// More events than fill the document, though nothing is shorter than their elements.
TEST_F(Management, ALargerPageArrivesAsIfAllOfItHadBeenWritten) {
    const Event shortest = MakeEvent(5, 0, 0);
    CheckIn(std::vector<Event>(2000, shortest));
    const auto literal = std::make_unique<XMLWR_Doc>();
    reference::Init(literal.get());
    reference::ElmtStartPrintf(literal.get(), 0, "VX_HX_EVT_GetEvents", " %s=\"%s\"", "type",
                               "function");
    reference::ElmtNonArrayData(literal.get(), "RetVal", "U8", "%u", 0u);
    reference::ElmtNonArrayData(literal.get(), "n", "U32", "%u", 2000u);
    reference::ElmtNonArrayData(literal.get(), "s", "U32", "%u", 0u);
    reference::ElmtNonArrayData(literal.get(), "e", "U32", "%u", 1999u);
    const std::uint32_t before = literal->CurPos;
    WriteLiterally(literal.get(), {shortest});
    EXPECT_EQ(430u, literal->CurPos - before);
    WriteLiterally(literal.get(), std::vector<Event>(1999, shortest));
    ASSERT_EQ(524287u, literal->CurPos);
    // Compared as a whole: the difference of two such texts is nothing to print.
    EXPECT_TRUE(std::string(literal->Buf, 524286) + "\n" == EventsOf("<n>2000</n>"));
}

class TwoDocuments {
public:
    void ExpectEqualFrom(std::uint32_t cursor, const std::vector<Event>& events) {
        for (XMLWR_Doc* const doc : {fused_.get(), literal_.get()}) {
            doc->Depth = 1;
            doc->CurPos = cursor;
        }
        XML_VX_HX_EVT_TranslateEvents(fused_.get(), "Event", events.data(),
                                      static_cast<HX_U32>(events.size()));
        WriteLiterally(literal_.get(), events);
        ASSERT_EQ(literal_->CurPos, fused_->CurPos) << "from " << cursor;
        ASSERT_EQ(literal_->Depth, fused_->Depth);
        ASSERT_EQ(
            0, std::memcmp(literal_->Buf + cursor, fused_->Buf + cursor, literal_->CurPos - cursor))
            << "from " << cursor;
    }

private:
    std::unique_ptr<XMLWR_Doc> fused_ = std::make_unique<XMLWR_Doc>();
    std::unique_ptr<XMLWR_Doc> literal_ = std::make_unique<XMLWR_Doc>();
};

TEST(EventRows, AreTheBytesOfThePieces) {
    TwoDocuments documents;
    documents.ExpectEqualFrom(0, RandomEvents(900));
}

TEST(EventRows, LoseWhatThePiecesLoseWhereverTheDocumentEnds) {
    const std::vector<Event> events = RandomEvents(3);
    TwoDocuments documents;
    for (std::uint32_t cursor = 524287 - 2500; cursor <= 524287; ++cursor) {
        documents.ExpectEqualFrom(cursor, events);
    }
}

}  // namespace
