// The entry points: the life of a request, case by case what it returns, leaves in the caller's
// buffer and logs; and the start and end of a process.
#include "vexorapi.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "XMLWriter_document.h"
#include "debug_log.h"
#include "hxfake.h"
#include "support/request.h"
#include "support/sanitized.h"
#include "support/temporary_root.h"
#include "vexorapi_version.h"
#include "vxevent_file.h"
#include "xml_rapi_executor.h"
#include "xml_rapi_requests.h"
#include "xml_vxapi.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kGetCount[] = "<HX_Adapter_GetCount type=\"function\"/>";

// What kGetCount is answered when the controller counts two adapters.
constexpr char kTwoAdapters[] =
    "<HX_Adapter_GetCount type=\"function\">\n"
    "  <RetVal type=\"U8\">2</RetVal>\n"
    "</HX_Adapter_GetCount>";

// The document behind it has one byte more, its last line end.
constexpr std::uint32_t kTwoAdaptersDocument = 92;

class Request : public testing::Test {
protected:
    Request() {
        hxfake::Reset();
        hxfake::On<&HX_Adapter_GetCount>().Always(2);
    }
    ~Request() override { hxfake::Reset(); }

    TemporaryRoot root;
};

class RequestDebugLog : public Request {
protected:
    DebugLog log{root};
};

// ---- what a request returns --------------------------------------------------------------------

TEST_F(Request, DeliversTheResultWithoutItsLastLineEnd) {
    const Reply reply = Send(kGetCount);
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(kTwoAdapters, reply.text);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetCount()"));
}

TEST_F(Request, IsServedWithoutBeingPreparedByAnInit) {
    EXPECT_EQ(1, Send(kGetCount).ok);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetCount()"));
}

TEST_F(Request, LeavesNothingToTheNextOne) {
    hxfake::On<&HX_Adapter_GetInfo>().Always(3);
    Send("<HX_Adapter_GetInfo type=\"function\"><AdapterID>7</AdapterID></HX_Adapter_GetInfo>");
    Send("<HX_Adapter_GetInfo type=\"function\"/>");
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_Adapter_GetInfo(7, &, &)", "HX_Adapter_GetInfo(0, &, &)"));
}

TEST_F(Request, TakesAnEmptyCommandForNone) {
    const Reply reply = Send("");
    EXPECT_EQ(0, reply.ok);
    EXPECT_EQ("untouched", reply.text);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(Request, TakesNoRoomForAnError) {
    const Reply reply = Send(kGetCount, 0);
    EXPECT_EQ(0, reply.ok);
    EXPECT_EQ("untouched", reply.text);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(Request, RefusesANullCommand) {
    const Reply reply = Send(static_cast<const char*>(nullptr));
    EXPECT_EQ(0, reply.ok);
    EXPECT_EQ("untouched", reply.text);
}

TEST_F(Request, RefusesANullResult) {
    EXPECT_EQ(0, vexorApi(kGetCount, nullptr, 1000));
    EXPECT_EQ(0, vexorApi(kGetCount, nullptr, 0));
    EXPECT_EQ(0, vexorApi(nullptr, nullptr, 1000));
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

struct Command {
    const char* name;
    const char* text;
    friend void PrintTo(const Command& it, std::ostream* os) { *os << it.text; }
};

std::string CaseName(const testing::TestParamInfo<Command>& at) { return at.param.name; }

class MalformedRequest : public Request, public testing::WithParamInterface<Command> {};

TEST_P(MalformedRequest, ReturnsZeroAndLeavesTheResultUntouched) {
    const Reply reply = Send(GetParam().text);
    EXPECT_EQ(0, reply.ok);
    EXPECT_EQ("untouched", reply.text);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Commands, MalformedRequest,
    testing::Values(
        Command{"NoXml", "x"}, Command{"Blank", " "},
        Command{"NoEnd", "<HX_Adapter_GetCount type=\"function\">"},
        Command{"WrongEnd", "<HX_Adapter_GetCount type=\"function\"></x>"},
        Command{"TwoRoots", "<HX_Adapter_GetCount type=\"function\"/><r/>"},
        Command{"JunkBehind", "<HX_Adapter_GetCount type=\"function\"/>x"},
        Command{"TypeTwice", "<HX_Adapter_GetCount type=\"function\" type=\"function\"/>"},
        Command{"BadUtf8",
                "<HX_Adapter_GetCount type=\"function\">\xFF"
                "</HX_Adapter_GetCount>"},
        Command{"UnknownEncoding", "<?xml version=\"1.0\" encoding=\"no-such-encoding\"?><r/>"},
        Command{"UnknownEntity", "<r>&e;</r>"}),
    CaseName);

class DeclinedRequest : public Request, public testing::WithParamInterface<Command> {};

TEST_P(DeclinedRequest, ReturnsZeroAndEmptiesTheResult) {
    const Reply reply = Send(GetParam().text);
    EXPECT_EQ(0, reply.ok);
    EXPECT_EQ("", reply.text);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Commands, DeclinedRequest,
    testing::Values(Command{"NoType", "<HX_Adapter_GetCount/>"},
                    Command{"AnotherType", "<HX_Adapter_GetCount type=\"config\"/>"},
                    Command{"UnknownName", "<HX_Adapter_GetCounts type=\"function\"/>"},
                    Command{"OtherCase", "<HX_ADAPTER_GETCOUNT type=\"function\"/>"},
                    Command{"NoEntryForHDMPCheck", "<HX_PD_HDMPCheck type=\"function\"/>"},
                    Command{"NoEntryForCreateOrModifyDG",
                            "<HX_CreateOrModify_DG type=\"function\"/>"},
                    Command{"FunctionAsAChild",
                            "<r type=\"function\"><HX_Adapter_GetCount type=\"function\"/></r>"}),
    CaseName);

TEST_F(Request, DeclinesNamesOfAnyLength) {
    for (const std::size_t length : {63u, 64u, 65u, 127u, 128u, 2047u, 2048u, 5000u, 200000u}) {
        const std::string name(length, 'H');
        const Reply reply =
            Send("<" + name + " type=\"function\"><" + name + ">1</" + name + "></" + name + ">");
        EXPECT_EQ(0, reply.ok) << length;
        EXPECT_EQ("", reply.text) << length;
    }
}

TEST_F(Request, IgnoresChildrenWithNamesOfAnyLength) {
    for (const std::size_t length : {63u, 64u, 2047u, 2048u, 5000u, 200000u}) {
        const std::string name(length, 'A');
        const Reply reply = Send("<HX_Adapter_GetInfo type=\"function\"><" + name + ">9</" + name +
                                 "><AdapterID>7</AdapterID></HX_Adapter_GetInfo>");
        EXPECT_EQ(1, reply.ok) << length;
        EXPECT_EQ("HX_Adapter_GetInfo(7, &, &)", hxfake::Calls().back()) << length;
    }
}

TEST_F(Request, TakesACommandOfTwoMegabytes) {
    const Reply reply = Send("<HX_Adapter_GetCount type=\"function\"><!--" +
                             std::string(2000000, 'c') + "--></HX_Adapter_GetCount>");
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(kTwoAdapters, reply.text);
}

TEST_F(Request, WritesTheNulOfADeclinedCommandIntoTheSmallestBuffer) {
    const Reply reply = Send("<r/>", 1);
    EXPECT_EQ(0, reply.ok);
    EXPECT_EQ("", reply.text);
}

// ---- the result's length -----------------------------------------------------------------------

TEST_F(Request, DeliversADocumentOfOneByteLessThanTheBuffer) {
    ASSERT_EQ(kTwoAdaptersDocument, sizeof kTwoAdapters);
    const Reply reply = Send(kGetCount, kTwoAdaptersDocument + 1);
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(kTwoAdapters, reply.text);
}

TEST_F(RequestDebugLog, CallsADocumentOfExactlyTheBuffersSizeTooLong) {
    const Reply reply = Send(kGetCount, kTwoAdaptersDocument);
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ("", reply.text);
    EXPECT_EQ(
        "Dir = HX_Adapter_GetCount\n"
        "[Atts]type:function \n"
        "Dir = HX_Adapter_GetCount\n"
        "pFD->FuncName=HX_Adapter_GetCount\n"
        "\n"
        "Buffer too small\n"
        " <HX_Adapter_GetCount type=\"function\">\n"
        "  <RetVal type=\"U8\">2</RetVal>\n"
        "</HX_Adapter_GetCount>\n"
        "\n",
        log.Text());
}

TEST_F(RequestDebugLog, CallsADocumentLongerThanTheBufferTooLong) {
    const Reply reply = Send(kGetCount, kTwoAdaptersDocument - 1);
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ("", reply.text);
    EXPECT_THAT(log.Text(), testing::HasSubstr("\nBuffer too small\n <HX_Adapter_GetCount"));
}

TEST_F(RequestDebugLog, TellsNothingOfADocumentThatFits) {
    Send(kGetCount, kTwoAdaptersDocument + 1);
    EXPECT_THAT(log.Text(), testing::Not(testing::HasSubstr("Buffer too small")));
}

TEST_F(Request, EmptiesTheSmallestBuffer) {
    const Reply reply = Send(kGetCount, 1);
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ("", reply.text);
}

TEST_F(RequestDebugLog, TellsTheWholeOfADocumentThatFillsTheWriter) {
    // 255 adapters of four kilobytes each: the document is as long as a document can be.
    hxfake::On<&HX_Adapter_GetCount>().Always(255);
    hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({Adapter_Info{}}));
    const char* const command =
        "<HX_Adapter_GetInfo type=\"function\"><AdapterID>255</AdapterID></HX_Adapter_GetInfo>";
    const Reply whole = Send(command);
    ASSERT_EQ(1, whole.ok);
    ASSERT_GT(whole.text.size(), 524200u);
    const std::size_t before = log.Text().size();
    const Reply reply = Send(command, 1000);
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ("", reply.text);
    const std::string told = log.Text().substr(before);
    const std::size_t at = told.find("Buffer too small\n <HX_Adapter_GetInfo");
    ASSERT_NE(std::string::npos, at);
    // The log shows the document's last byte too, which a caller never gets.
    const std::string document = told.substr(at + std::strlen("Buffer too small\n "));
    EXPECT_EQ(whole.text, document.substr(0, document.size() - 2));
    EXPECT_EQ("\n", document.substr(document.size() - 1));
}

// ---- the debug log -----------------------------------------------------------------------------

TEST_F(RequestDebugLog, TracesACommandOfThreeLevels) {
    EXPECT_EQ(1, Send(kThreeLevels).ok);
    EXPECT_EQ(std::string(kThreeLevelsLogged) + "pFD->FuncName=HX_Adapter_GetCount\n\n",
              log.Text());
}

TEST_F(RequestDebugLog, TellsTheErrorOfAMalformedCommand) {
    EXPECT_EQ(0, Send("<a>\n<b>\n</a>").ok);
    EXPECT_EQ("Dir = a\nDir = a.b\nXML_Error:mismatched tag at line 3", log.Text());
}

TEST_F(RequestDebugLog, TellsNothingOfAnEmptyCommandOrOfNoRoom) {
    Send("");
    Send(kGetCount, 0);
    Send(static_cast<const char*>(nullptr));
    EXPECT_EQ("", log.Text());
}

TEST_F(RequestDebugLog, TellsADeclinedCommandsPathOnly) {
    Send("<r type=\"function\"/>");
    EXPECT_EQ("Dir = r\nDir = r\n", log.Text());
}

TEST_F(RequestDebugLog, TellsTheReadingOfTheConfigurationFirst) {
    root.Write("/vexorapi.ini",
               "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"0\" OutLogEnable=\"256\""
               " Filename=\"requests\"/></c>");
    EXPECT_EQ(1, Send(kGetCount).ok);
    EXPECT_EQ(
        "Dir = c\n"
        "Dir = c.XmlWrapperLogConfig\n"
        "XMLWR_CharDataToDec=0\n"
        "XMLWR_CharDataToDec=256\n"
        "Filename requests\n"
        "Dir = c.XmlWrapperLogConfig\n"
        "Dir = c\n"
        "Dir = HX_Adapter_GetCount\n"
        "[Atts]type:function \n"
        "Dir = HX_Adapter_GetCount\n"
        "pFD->FuncName=HX_Adapter_GetCount\n"
        "\n",
        log.Text());
}

TEST_F(RequestDebugLog, TellsTheVendorExecutorsNoToAManagementFunction) {
    const Reply reply = Send("<VX_Module_GetInfo type=\"function\"/>");
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(
        "Dir = VX_Module_GetInfo\n"
        "Dir = VX_Module_GetInfo\n"
        "pFD->FuncName=VX_Module_GetInfo\n"
        "\n"
        "pFD->FuncName=VX_Module_GetInfo\n"
        "\n",
        log.Text());
}

TEST_F(RequestDebugLog, NeverAsksTheManagementExecutorForAVendorFunctionThatDidNotFit) {
    Send(kGetCount, 1);
    const std::string told = log.Text();
    const std::string line = "pFD->FuncName=";
    EXPECT_EQ(told.find(line), told.rfind(line));
}

// What one request may write, and what stands at its end when it had more to write.
constexpr std::size_t kMostTraced = 16777216;
constexpr char kLeftOut[] =
    "The request's further messages are left out: it has filled the 16777216 bytes that one "
    "request "
    "may write to the debug log.\n";

// Elements in a path of the greatest length, each of which is told with its whole path, twice.
std::string CommandOfLongPaths(int elements) {
    std::string command = "<HX_Adapter_GetCount type=\"function\">";
    std::string ends = "</HX_Adapter_GetCount>";
    for (int depth = 0; depth < 20; ++depth) {
        const std::string name(100, static_cast<char>('a' + depth));
        command += "<" + name + ">";
        ends.insert(0, "</" + name + ">");
    }
    for (int element = 0; element < elements; ++element) command += "<a/>";
    return command + ends;
}

TEST_F(RequestDebugLog, HoldsSixteenMebibytesOfARequestAtMost) {
    EXPECT_EQ(1, Send(CommandOfLongPaths(4300)).ok);
    const std::string text = log.Text();
    ASSERT_TRUE(text.ends_with(kLeftOut)) << text.size();
    const std::size_t traced = text.size() - std::strlen(kLeftOut);
    EXPECT_LE(traced, kMostTraced);
    // Whole messages only: the next one, a path, would have passed the bound.
    EXPECT_GT(traced, kMostTraced - 2100);
    EXPECT_EQ('\n', text[traced - 1]);
    EXPECT_EQ(text.find(kLeftOut), traced);
}

TEST_F(RequestDebugLog, HoldsARequestThatFillsItsBoundWhole) {
    EXPECT_EQ(1, Send(CommandOfLongPaths(4000)).ok);
    const std::string text = log.Text();
    EXPECT_GT(text.size(), kMostTraced - 600000);
    EXPECT_TRUE(text.ends_with("pFD->FuncName=HX_Adapter_GetCount\n\n"));
}

// Documented parameters, over and over. A quarter of them, because each message opens its file.
TEST_F(RequestDebugLog, HoldsAMebibyteOfParametersWhole) {
    std::string command = "<HX_LD_Create type=\"function\">\n  <AdapterID>0</AdapterID>\n";
    while (command.size() < 1048576 / 4) {
        command +=
            "  <CreateLDParam>\n    <RaidMode>5</RaidMode>\n    <HDCount>3</HDCount>\n"
            "    <StripeBlockSize>64</StripeBlockSize>\n    <HDIDs>0 1 2</HDIDs>\n"
            "    <Name>data</Name>\n    <Size>1024</Size>\n  </CreateLDParam>\n";
    }
    EXPECT_EQ(1, Send(command + "</HX_LD_Create>").ok);
    EXPECT_TRUE(log.Text().ends_with("pFD->FuncName=HX_LD_Create\n\n"));
    EXPECT_LT(log.Text().size(), kMostTraced / 4);
}

TEST_F(RequestDebugLog, HoldsWhateverComesBehindSuchARequest) {
    Send(CommandOfLongPaths(4300));
    std::size_t before = log.Text().size();
    // Formatting takes sanitizers long.
    const std::string text(kSanitized ? 100000 : kMostTraced + 1, 'x');
    EXPECT_EQ(static_cast<int>(text.size()), VX_DBG_Printf("%s", text.c_str()));
    EXPECT_EQ(before + text.size(), log.Text().size());
    before = log.Text().size();
    EXPECT_EQ(1, Send(kGetCount).ok);
    EXPECT_EQ(
        "Dir = HX_Adapter_GetCount\n"
        "[Atts]type:function \n"
        "Dir = HX_Adapter_GetCount\n"
        "pFD->FuncName=HX_Adapter_GetCount\n"
        "\n",
        log.Text().substr(before));
}

// What the controller library logs while it serves a request is part of the request.
TEST_F(RequestDebugLog, CountsMessagesThatItLeavesOut) {
    int formatted = 0;
    hxfake::On<&HX_Adapter_GetCount>().Always([&]() -> HX_U8 {
        const std::string text(kMostTraced, 'x');
        formatted = VX_DBG_Printf("%s", text.c_str());
        return 0;
    });
    EXPECT_EQ(1, Send(kGetCount).ok);
    EXPECT_EQ(static_cast<int>(kMostTraced), formatted);
    EXPECT_TRUE(log.Text().ends_with(std::string("GetCount\n\n") + kLeftOut));
}

// ---- management functions ----------------------------------------------------------------------

TEST_F(Request, AnswersTheModuleVersions) {
    vexorApiInit();
    const Reply reply = Send("<VX_Module_GetInfo type=\"function\"></VX_Module_GetInfo>");
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(
        "<VX_Module_GetInfo type=\"function\">\n"
        "  <RetVal type=\"U8\">0</RetVal>\n"
        "  <product type=\"struct VX_VER_INFO\">\n"
        "    <Major type=\"U32\">1</Major>\n"
        "    <Minor type=\"U32\">0</Minor>\n"
        "    <OEM type=\"U32\">0</OEM>\n"
        "    <Build type=\"U32\">16</Build>\n"
        "  </product>\n"
        "  <php_vexorapi type=\"struct VX_VER_INFO\">\n"
        "    <Major type=\"U32\">1</Major>\n"
        "    <Minor type=\"U32\">0</Minor>\n"
        "    <OEM type=\"U32\">0</OEM>\n"
        "    <Build type=\"U32\">14</Build>\n"
        "  </php_vexorapi>\n"
        "  <vexorapi type=\"struct VX_VER_INFO\">\n"
        "    <Major type=\"U32\">1</Major>\n"
        "    <Minor type=\"U32\">2</Minor>\n"
        "    <OEM type=\"U32\">0</OEM>\n"
        "    <Build type=\"U32\">2</Build>\n"
        "  </vexorapi>\n"
        "  <hxraidsvc type=\"struct VX_VER_INFO\">\n"
        "    <Major type=\"U32\">1</Major>\n"
        "    <Minor type=\"U32\">0</Minor>\n"
        "    <OEM type=\"U32\">0</OEM>\n"
        "    <Build type=\"U32\">7</Build>\n"
        "  </hxraidsvc>\n"
        "</VX_Module_GetInfo>",
        reply.text);
}

TEST_F(Request, AnswersTheEventServicesVersionFromItsFile) {
    root.Write("/hxraidver.dat", "2.1.0.35\n");
    const Reply reply = Send("<VX_Module_GetInfo type=\"function\"/>");
    EXPECT_THAT(reply.text, testing::EndsWith("  <hxraidsvc type=\"struct VX_VER_INFO\">\n"
                                              "    <Major type=\"U32\">2</Major>\n"
                                              "    <Minor type=\"U32\">1</Minor>\n"
                                              "    <OEM type=\"U32\">0</OEM>\n"
                                              "    <Build type=\"U32\">35</Build>\n"
                                              "  </hxraidsvc>\n"
                                              "</VX_Module_GetInfo>"));
}

TEST_F(Request, IgnoresTheChildrenOfTheModuleVersions) {
    const Reply reply = Send(
        "<VX_Module_GetInfo type=\"function\"><product>9</product><RetVal>7</RetVal>"
        "</VX_Module_GetInfo>");
    EXPECT_EQ(1, reply.ok);
    EXPECT_THAT(reply.text, testing::HasSubstr("<RetVal type=\"U8\">0</RetVal>"));
}

// ---- executors that do not know the function ---------------------------------------------------

class Executor : public testing::Test {
protected:
    // A request whose name no table has, as no command can make it.
    Executor() {
        elmt->Ext = std::calloc(1, sizeof(XML_RA_FuncData) + sizeof(XML_VX_FuncData));
        std::strcpy(static_cast<char*>(elmt->Ext), "HX_NoSuchFunction");
        XMLWR_Init(doc);
    }
    ~Executor() override { std::free(elmt->Ext); }

    std::unique_ptr<XMLElement> elmt{new XMLElement{}};
    Document doc;
};

TEST_F(Executor, OfVendorFunctionsDeclinesAnUnknownName) {
    EXPECT_EQ(0, VX_XMLFunc_HX_RApi(elmt.get(), doc));
    EXPECT_EQ("", doc.Text());
}

TEST_F(Executor, OfManagementFunctionsDeclinesAnUnknownName) {
    EXPECT_EQ(0, VX_XMLFunc_VX_Api(elmt.get(), doc));
    EXPECT_EQ("", doc.Text());
}

// ---- the request log ---------------------------------------------------------------------------

class RequestLog : public Request {
protected:
    void Configure(int in, int out) const {
        root.Write("/vexorapi.ini", "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"" +
                                        std::to_string(in) + "\" OutLogEnable=\"" +
                                        std::to_string(out) + "\" Filename=\"" +
                                        root.Path("/requests.log") + "\"/></c>");
    }
    std::string Log() const { return root.Read("/requests.log"); }
};

TEST_F(RequestLog, HoldsTheCommandAndTheResult) {
    Configure(1, 1);
    Send(kGetCount);
    EXPECT_EQ(
        "XMLCmd = <HX_Adapter_GetCount type=\"function\"/>\n"
        "XMLRet = <HX_Adapter_GetCount type=\"function\">\n"
        "  <RetVal type=\"U8\">2</RetVal>\n"
        "</HX_Adapter_GetCount>\n",
        Log());
}

TEST_F(RequestLog, HoldsTheCommandOnly) {
    Configure(1, 0);
    Send(kGetCount);
    EXPECT_EQ("XMLCmd = <HX_Adapter_GetCount type=\"function\"/>\n", Log());
}

TEST_F(RequestLog, HoldsTheResultOnly) {
    Configure(0, 1);
    Send(kGetCount);
    EXPECT_EQ(
        "XMLRet = <HX_Adapter_GetCount type=\"function\">\n"
        "  <RetVal type=\"U8\">2</RetVal>\n"
        "</HX_Adapter_GetCount>\n",
        Log());
}

TEST_F(RequestLog, IsNotMadeWhenItIsOff) {
    Configure(0, 0);
    Send(kGetCount);
    EXPECT_FALSE(root.Exists("/requests.log"));
}

TEST_F(RequestLog, GrowsWithEachRequest) {
    Configure(1, 0);
    Send("<a/>");
    Send("<b/>");
    EXPECT_EQ("XMLCmd = <a/>\nXMLCmd = <b/>\n", Log());
}

TEST_F(RequestLog, FollowsTheConfigurationFromOneRequestToTheNext) {
    Configure(1, 0);
    Send("<a/>");
    Configure(0, 0);
    Send("<b/>");
    Configure(1, 1);
    Send("<c/>");
    EXPECT_EQ("XMLCmd = <a/>\nXMLCmd = <c/>\nXMLRet = \n", Log());
}

TEST_F(RequestLog, HoldsTheCommandOnlyWhenItIsMalformed) {
    Configure(1, 1);
    Send("<a>");
    EXPECT_EQ("XMLCmd = <a>\n", Log());
}

TEST_F(RequestLog, HoldsAnEmptyResultWhenTheCommandIsDeclined) {
    Configure(1, 1);
    Send("<a/>");
    EXPECT_EQ("XMLCmd = <a/>\nXMLRet = \n", Log());
}

TEST_F(RequestLog, HoldsAnEmptyResultWhenItDidNotFit) {
    Configure(1, 1);
    Send(kGetCount, kTwoAdaptersDocument);
    EXPECT_EQ("XMLCmd = <HX_Adapter_GetCount type=\"function\"/>\nXMLRet = \n", Log());
}

TEST_F(RequestLog, HoldsNothingOfAnEmptyCommandOrOfNoRoom) {
    Configure(1, 1);
    Send("");
    Send(kGetCount, 0);
    Send(static_cast<const char*>(nullptr));
    EXPECT_FALSE(root.Exists("/requests.log"));
}

TEST_F(RequestLog, HoldsACommandThatLooksLikeAFormat) {
    Configure(1, 0);
    Send("<a>%s%n%d%%</a>");
    EXPECT_EQ("XMLCmd = <a>%s%n%d%%</a>\n", Log());
}

TEST_F(RequestLog, HoldsALongCommandWhole) {
    Configure(1, 0);
    const std::string command = "<a>" + std::string(300000, 'x') + "</a>";
    Send(command);
    EXPECT_EQ("XMLCmd = " + command + "\n", Log());
}

TEST_F(RequestLog, IsReadableByItsOwnerOnly) {
    Configure(1, 1);
    Send(kGetCount);
    struct stat status {};
    ASSERT_EQ(0, stat(root.Path("/requests.log").c_str(), &status));
    EXPECT_EQ(0600u, status.st_mode & 07777u);
}

TEST_F(RequestLog, ThatIsADirectoryIsDropped) {
    Configure(1, 1);
    std::filesystem::create_directory(root.Path("/requests.log"));
    EXPECT_EQ(kTwoAdapters, Send(kGetCount).text);
}

TEST_F(RequestLog, ThatIsAFifoNeverBlocks) {
    Configure(1, 1);
    ASSERT_EQ(0, mkfifo(root.Path("/requests.log").c_str(), 0600));
    EXPECT_EQ(kTwoAdapters, Send(kGetCount).text);
}

TEST_F(RequestLog, WithoutANameIsDropped) {
    root.Write(
        "/vexorapi.ini",
        "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"1\" OutLogEnable=\"1\"/></c>");
    EXPECT_EQ(kTwoAdapters, Send(kGetCount).text);
}

TEST_F(RequestLog, WithANameTooLongForItsFieldIsDropped) {
    // Its first 255 bytes name a file that could be made, and so does the whole of it.
    const std::string folder = "/" + std::string(100, 'd') + "/" + std::string(80, 'd') + "/";
    root.Write(folder + "other", "");
    const std::string name = root.Path(folder) + std::string(120, 'n');
    root.Write("/vexorapi.ini",
               "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"1\" OutLogEnable=\"1\""
               " Filename=\"" +
                   name + "\"/></c>");
    EXPECT_EQ(kTwoAdapters, Send(kGetCount).text);
    EXPECT_FALSE(std::filesystem::exists(name.substr(0, 255)));
    EXPECT_FALSE(std::filesystem::exists(name));
}

TEST_F(RequestLog, StaysOffWhenItsSectionIsOfAnotherType) {
    root.Write("/vexorapi.ini", "<c><XmlWrapperLogConfig InLogEnable=\"1\" Filename=\"" +
                                    root.Path("/requests.log") + "\"/></c>");
    Send(kGetCount);
    EXPECT_FALSE(root.Exists("/requests.log"));
}

// ---- the start and the end of a process --------------------------------------------------------

class ProcessLife : public Request {
protected:
    // The outcome of the last initialisation lives as long as the process: each test begins and
    // ends behind a successful one.
    ProcessLife() { Succeed(); }
    ~ProcessLife() override {
        Succeed();
        vexorApiShutdown();
    }
    static void Succeed() {
        hxfake::Reset();
        vexorApiInit();
        hxfake::ForgetCalls();
    }

    static void SpoilVersions() {
        productVersionMajor = 91;
        eventSvcVersionBuild = 94;
    }
};

TEST_F(ProcessLife, BeginsWithTheControllerLibrary) {
    EXPECT_EQ(1, vexorApiInit());
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_API_Initialize()"));
}

TEST_F(ProcessLife, EndsWithTheControllerLibrary) {
    EXPECT_EQ(1, vexorApiShutdown());
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_API_Finalize()"));
}

TEST_F(ProcessLife, SetsTheVersions) {
    SpoilVersions();
    EXPECT_EQ(1, vexorApiInit());
    EXPECT_EQ(1, productVersionMajor);
    EXPECT_EQ(7, eventSvcVersionBuild);
}

TEST_F(ProcessLife, CountsNoInitialisations) {
    vexorApiInit();
    vexorApiInit();
    vexorApiShutdown();
    EXPECT_EQ(1, vexorApiInit());
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_API_Initialize()", "HX_API_Initialize()",
                                             "HX_API_Finalize()", "HX_API_Initialize()"));
}

TEST_F(ProcessLife, ForgetsTheEventStoreInASecondInitialisation) {
    vexorApiInit();
    g_VX_EventExt.EvLogHeader.NumOfEvent = 3;
    g_VX_EventExt.HXChangeCounters.LD_Change = 5;
    vexorApiInit();
    EXPECT_EQ(0U, g_VX_EventExt.EvLogHeader.NumOfEvent);
    EXPECT_EQ(0U, g_VX_EventExt.HXChangeCounters.LD_Change);
}

TEST_F(ProcessLife, BeginsWhenTheControllerLibraryRefuses) {
    hxfake::On<&HX_API_Initialize>().Always(7);
    EXPECT_EQ(1, vexorApiInit());
}

TEST_F(ProcessLife, SetsTheVersionsInTheCallThatTheControllerLibraryRefusesFirst) {
    SpoilVersions();
    hxfake::On<&HX_API_Initialize>().Always(7);
    vexorApiInit();
    EXPECT_EQ(1, productVersionMajor);
}

TEST_F(ProcessLife, LeavesTheVersionsAfterARefusal) {
    hxfake::On<&HX_API_Initialize>().Once(7).Always(0);
    vexorApiInit();
    SpoilVersions();
    EXPECT_EQ(1, vexorApiInit());
    EXPECT_EQ(91, productVersionMajor);
    EXPECT_EQ(94, eventSvcVersionBuild);
}

TEST_F(ProcessLife, SetsTheVersionsAgainAfterTheNextSuccess) {
    hxfake::On<&HX_API_Initialize>().Once(7).Always(0);
    vexorApiInit();
    vexorApiInit();
    SpoilVersions();
    vexorApiInit();
    EXPECT_EQ(1, productVersionMajor);
}

TEST_F(ProcessLife, TellsTheRefusalInTheDebugLog) {
    const DebugLog log(root);
    hxfake::On<&HX_API_Initialize>().Always(7);
    vexorApiInit();
    EXPECT_EQ("vexorapi 526: HX_API_Initialize() Failed, RetVal = 7", log.Text());
}

TEST_F(ProcessLife, TellsNothingOfASuccess) {
    const DebugLog log(root);
    vexorApiInit();
    EXPECT_EQ("", log.Text());
}

TEST_F(ProcessLife, ServesRequestsAfterARefusal) {
    hxfake::On<&HX_API_Initialize>().Always(7);
    hxfake::On<&HX_Adapter_GetCount>().Always(2);
    vexorApiInit();
    EXPECT_EQ(kTwoAdapters, Send(kGetCount).text);
}

}  // namespace
