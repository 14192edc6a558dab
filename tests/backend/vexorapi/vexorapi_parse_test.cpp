// The parse of a command: path and depth, the selection of the function at the root, what reaches
// the function's handlers, the collected text, and the bounds of both.
#include "vexorapi_parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>

#include "vexorapi_parse_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// ---- the path ----------------------------------------------------------------------------------

TEST_F(ParseLog, TellsThePathsAndTextsOfThreeLevels) {
    EXPECT_EQ(1, Run(kThreeLevels));
    EXPECT_EQ(kThreeLevelsLogged, log.Text());
}

TEST_F(ParseLog, TellsNoTextWhereThereIsNone) {
    EXPECT_EQ(1, Run("<r><a/><b></b></r>"));
    EXPECT_EQ("Dir = r\nDir = r.a\nDir = r.a\nDir = r.b\nDir = r.b\nDir = r\n", log.Text());
}

TEST_F(ParseLog, TellsTheAttributesOfEveryElementThatAFunctionSees) {
    EXPECT_EQ(
        1, Run("<HX_API_Version x=\"1\" type=\"function\"><a y=\"%s\" z=\"\"/></HX_API_Version>"));
    EXPECT_EQ(
        "Dir = HX_API_Version\n"
        "[Atts]x:1 type:function \n"
        "Dir = HX_API_Version.a\n"
        "[Atts]y:%s z: \n"
        "Dir = HX_API_Version.a\n"
        "Dir = HX_API_Version\n",
        log.Text());
}

TEST_F(ParseLog, TracksElementsFiveLevelsDeep) {
    EXPECT_EQ(1, Run("<r><a><b><c><d><e>1</e></d></c></b></a></r>"));
    EXPECT_EQ(
        "Dir = r\n"
        "Dir = r.a\n"
        "Dir = r.a.b\n"
        "Dir = r.a.b.c\n"
        "Dir = r.a.b.c.d\n"
        "Dir = r.a.b.c.d.e\n"
        "Dir = r.a.b.c.d.e\n"
        "[CD 1]:1\n"
        "Dir = r.a.b.c.d\n"
        "[CD 1]:1\n"
        "Dir = r.a.b.c\n"
        "[CD 1]:1\n"
        "Dir = r.a.b\n"
        "[CD 1]:1\n"
        "Dir = r.a\n"
        "[CD 1]:1\n"
        "Dir = r\n"
        "[CD 1]:1\n",
        log.Text());
}

TEST_F(ParseLog, CutsThePathAtTheLastDotOfAName) {
    EXPECT_EQ(1, Run("<r><a.b/><c/></r>"));
    EXPECT_EQ(
        "Dir = r\n"
        "Dir = r.a.b\n"
        "Dir = r.a.b\n"
        "Dir = r.a.c\n"
        "Dir = r.a.c\n"
        "Dir = r.a\n",
        log.Text());
}

TEST_F(ParseLog, CutsThePathAtTheLastDotOfTheRootsName) {
    EXPECT_EQ(1, Run("<r.s><a/><b/></r.s>"));
    EXPECT_EQ("Dir = r.s\nDir = r.s.a\nDir = r.s.a\nDir = r.s.b\nDir = r.s.b\nDir = r.s\n",
              log.Text());
    EXPECT_STREQ("", elmt.DirName);
}

TEST_F(Parse, LeavesAnEmptyPathAtDepthZero) {
    EXPECT_EQ(1, Run("<r><a.b.c/></r>"));
    EXPECT_STREQ("", elmt.DirName);
    EXPECT_EQ(0, elmt.Depth);
}

TEST_F(ParseLog, KeepsAPathOf2047Characters) {
    const std::string name(2045, 'n');
    EXPECT_EQ(1, Run("<r><" + name + "/></r>"));
    EXPECT_EQ("Dir = r\nDir = r." + name + "\nDir = r." + name + "\nDir = r\n", log.Text());
}

TEST_F(ParseLog, DropsWhatPasses2047CharactersOfThePath) {
    const std::string name(3000, 'n');
    EXPECT_EQ(1, Run("<r><" + name + "><a/></" + name + "></r>"));
    const std::string kept = "r." + std::string(2045, 'n');
    EXPECT_THAT(log.Text(), StartsWith("Dir = r\nDir = " + kept + "\nDir = " + kept + "\n"));
    EXPECT_STREQ("", elmt.DirName);
}

TEST_F(ParseLog, LeavesAPathWithoutADotAsItIs) {
    const std::string name(3000, 'n');
    EXPECT_EQ(1, Run("<" + name + "><a/></" + name + ">"));
    const std::string line = "Dir = " + std::string(2047, 'n') + "\n";
    EXPECT_EQ(line + line + line + line, log.Text());
}

TEST_F(Parse, BoundsThePathThatDottedSiblingsFill) {
    InstallHandlers();
    EXPECT_EQ(1, Run("<r>" + Times(3000, "<a.b/>") + "</r>"));
    ASSERT_EQ(6001u, handler_calls.size());
    EXPECT_EQ("start a.b at 1 r.a.b", handler_calls[1]);
    EXPECT_EQ("end a.b at 1 r.a text 0 []", handler_calls[2]);
    EXPECT_EQ("start a.b at 1 r.a.a.b", handler_calls[3]);
    const std::string prefix = "start a.b at 1 ";
    std::size_t longest = 0;
    for (const std::string& call : handler_calls) {
        if (call.starts_with(prefix)) longest = std::max(longest, call.size() - prefix.size());
    }
    EXPECT_EQ(2047u, longest);
    EXPECT_STREQ("", elmt.DirName);
}

// Short names and texts are copied in words, whose number depends on the length.
TEST_F(Parse, KeepsNamesAndTextsOfEveryLength) {
    const std::string alphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (std::size_t length = 1; length <= alphabet.size(); ++length) {
        const std::string name = alphabet.substr(0, length);
        handler_calls.clear();
        InstallHandlers();
        EXPECT_EQ(1, Run("<r><" + name + ">" + name + "</" + name + "></r>"));
        EXPECT_THAT(handler_calls,
                    ElementsAre("start r at 0 r", "start " + name + " at 1 r." + name,
                                "end " + name + " at 1 r text " + std::to_string(length) + " [" +
                                    name + "]"));
    }
}

// The end of an element that had children finds the path of its own.
TEST_F(Parse, ReturnsToThePathOfTheParent) {
    InstallHandlers();
    EXPECT_EQ(1, Run("<r><a><b/></a><c/></r>"));
    EXPECT_EQ("end a at 1 r text 0 []", handler_calls[4]);
    EXPECT_EQ("start c at 1 r.c", handler_calls[5]);
}

// ---- the selection of the function -------------------------------------------------------------

class Selection : public Parse, public testing::WithParamInterface<const char*> {};

TEST_P(Selection, IsTheFunctionAtTheRoot) {
    const char* atts[] = {"type", "function", nullptr};
    RA_StartElement(&elmt, GetParam(), atts);
    EXPECT_NE(nullptr, elmt.StartHandler);
    EXPECT_NE(nullptr, elmt.EndHandler);
    EXPECT_EQ(nullptr, elmt.CharDataHandler);
    ASSERT_NE(nullptr, elmt.Ext);
    EXPECT_STREQ(GetParam(), FunctionName());
    EXPECT_EQ(1, elmt.Depth);
}

INSTANTIATE_TEST_SUITE_P(OfTheController, Selection, testing::Values("HX_Adapter_GetInfo"));
INSTANTIATE_TEST_SUITE_P(OfTheManagement, Selection, testing::Values("VX_Module_GetInfo"));

TEST_F(Parse, ClearsTheHandlersWhenTheRootNamesNoFunction) {
    InstallHandlers();
    elmt.CharDataHandler = NoteText;
    const char* atts[] = {"type", "function", nullptr};
    RA_StartElement(&elmt, "HX_NoSuchFunction", atts);
    EXPECT_EQ(nullptr, elmt.StartHandler);
    EXPECT_EQ(nullptr, elmt.EndHandler);
    EXPECT_EQ(nullptr, elmt.CharDataHandler);
    EXPECT_EQ(nullptr, elmt.Ext);
    EXPECT_THAT(handler_calls, IsEmpty());
}

TEST_F(Parse, ClearsTheHandlersWhenTheRootCloses) {
    EXPECT_EQ(1, Run("<HX_Adapter_GetInfo type=\"function\"/>"));
    EXPECT_EQ(nullptr, elmt.StartHandler);
    EXPECT_EQ(nullptr, elmt.EndHandler);
    EXPECT_EQ(nullptr, elmt.CharDataHandler);
    EXPECT_NE(nullptr, elmt.Ext);
}

TEST_F(Parse, FindsTheTypeBehindOtherAttributes) {
    EXPECT_EQ(1, Run("<HX_Adapter_GetInfo a=\"1\" b=\"2\" type=\"function\"/>"));
    EXPECT_NE(nullptr, elmt.Ext);
}

// ---- what stays of a password ------------------------------------------------------------------

class ParsedPassword : public Parse, public testing::WithParamInterface<const char*> {};

TEST_P(ParsedPassword, IsWipedFromTheContextWithTheRecord) {
    Run(GetParam());
    EXPECT_STREQ("wonder", elmt.CharDataBuf);
    FreeRecord(elmt);
    EXPECT_EQ(nullptr, elmt.Ext);
    const std::string_view context(reinterpret_cast<const char*>(&elmt), sizeof elmt);
    EXPECT_EQ(std::string_view::npos, context.find("onder"));
}

INSTANTIATE_TEST_SUITE_P(
    LogonCommands, ParsedPassword,
    testing::Values("<HX_LogonUser type=\"function\"><lpszPassword>wonder</lpszPassword>"
                    "</HX_LogonUser>",
                    "<HX_LogonUser type=\"function\"><lpszPassword>wonder</lpszPassword></wrong>",
                    "<HX_LogonUser type=\"function\"><lpszPassword>wonder</wrong>",
                    "<HX_LogonUser type=\"function\"><lpszPassword>wonder"));

struct Unselected {
    const char* name;
    const char* document;
    friend void PrintTo(const Unselected& it, std::ostream* os) { *os << it.document; }
};

class ParseOf : public Parse, public testing::WithParamInterface<Unselected> {};

TEST_P(ParseOf, SelectsNothing) {
    EXPECT_EQ(1, Run(GetParam().document));
    EXPECT_EQ(nullptr, elmt.Ext);
    EXPECT_EQ(nullptr, elmt.StartHandler);
    EXPECT_EQ(nullptr, elmt.EndHandler);
}

INSTANTIATE_TEST_SUITE_P(
    Roots, ParseOf,
    testing::Values(
        Unselected{"RootWithoutType", "<HX_Adapter_GetCount/>"},
        Unselected{"RootOfAnotherType", "<HX_Adapter_GetCount type=\"functions\"/>"},
        Unselected{"RootOfTypeInCapitals", "<HX_Adapter_GetCount type=\"Function\"/>"},
        Unselected{"RootOfEmptyType", "<HX_Adapter_GetCount type=\"\"/>"},
        Unselected{"RootWithTypeNameInCapitals", "<HX_Adapter_GetCount Type=\"function\"/>"},
        Unselected{"RootNameInOtherCase", "<hx_adapter_getcount type=\"function\"/>"},
        Unselected{"RootNameCutShort", "<HX_Adapter_GetCoun type=\"function\"/>"},
        Unselected{"RootNameWithMore", "<HX_Adapter_GetCount2 type=\"function\"/>"},
        Unselected{"RootNameWithPrefix", "<x:HX_Adapter_GetCount type=\"function\"/>"},
        Unselected{"ChildOfTypeFunction", "<r><HX_Adapter_GetCount type=\"function\"/></r>"},
        Unselected{"ChildOfAnUnknownFunction",
                   "<r type=\"function\"><HX_Adapter_GetCount type=\"function\"/></r>"}),
    [](const testing::TestParamInfo<Unselected>& at) { return std::string(at.param.name); });

TEST_F(Parse, KeepsTheRootsFunctionWhateverItsChildrenName) {
    EXPECT_EQ(1, Run("<HX_Adapter_GetInfo type=\"function\">"
                     "<HX_Adapter_GetCount type=\"function\"/></HX_Adapter_GetInfo>"));
    ASSERT_NE(nullptr, elmt.Ext);
    EXPECT_STREQ("HX_Adapter_GetInfo", FunctionName());
}

TEST_F(Parse, DoesNotTakeAnElement65536LevelsDeepForARoot) {
    const std::string open = "<HX_Adapter_GetCount type=\"function\">";
    const std::string close = "</HX_Adapter_GetCount>";
    EXPECT_EQ(1, Run("<r>" + Times(65535, "<a>") + open + Times(5, "<a>") + Times(5, "</a>") +
                     close + Times(65535, "</a>") + "</r>"));
    EXPECT_EQ(nullptr, elmt.Ext);
    EXPECT_EQ(0, elmt.Depth);
}

TEST_F(Parse, CallsNoHandlerBelowTheThirdLevelHoweverDeep) {
    InstallHandlers();
    EXPECT_EQ(1, Run("<r>" + Times(70000, "<a>") + Times(70000, "</a>") + "</r>"));
    EXPECT_EQ(7u, handler_calls.size());
}

// ---- what reaches the handlers -----------------------------------------------------------------

TEST_F(Parse, CallsTheHandlersForThreeLevelsBelowTheRoot) {
    InstallHandlers();
    EXPECT_EQ(1, Run("<r><a><b><c><d><e/></d></c></b></a></r>"));
    EXPECT_THAT(handler_calls,
                ElementsAre("start r at 0 r", "start a at 1 r.a", "start b at 2 r.a.b",
                            "start c at 3 r.a.b.c", "end c at 3 r.a.b text 0 []",
                            "end b at 2 r.a text 0 []", "end a at 1 r text 0 []"));
}

TEST_F(Parse, PassesAttributesToTheStartHandler) {
    InstallHandlers();
    EXPECT_EQ(1, Run("<r x=\"1\"><a y=\"2\" z=\"3\"/></r>"));
    EXPECT_THAT(handler_calls, ElementsAre("start r x=1 at 0 r", "start a y=2 z=3 at 1 r.a",
                                           "end a at 1 r text 0 []"));
}

TEST_F(Parse, ShowsTheEndHandlerALeafsTextAndItsParentTheSame) {
    InstallHandlers();
    EXPECT_EQ(1, Run("<F><a><b>1</b></a></F>"));
    EXPECT_THAT(handler_calls,
                ElementsAre("start F at 0 F", "start a at 1 F.a", "start b at 2 F.a.b",
                            "end b at 2 F.a text 1 [1]", "end a at 1 F text 1 [1]"));
}

TEST_F(Parse, LosesTheTextBeforeTheFirstChild) {
    EXPECT_EQ("end a at 1 r text 0 []", TextAtEnd("<r><a>before<b/></a></r>"));
}

TEST_F(Parse, ShowsAParentItsLastChildsTextAndWhatFollowed) {
    EXPECT_EQ("end a at 1 r text 5 [2 \n x]", TextAtEnd("<r><a>x<b>1</b>y<c>2</c> \n x</a></r>"));
}

TEST_F(Parse, ClearsTheArrayWidthAtEveryStart) {
    const char* none[] = {nullptr};
    elmt.ArrayWidth = 8;
    RA_StartElement(&elmt, "r", none);
    EXPECT_EQ(0, elmt.ArrayWidth);
    elmt.ArrayWidth = 8;
    RA_StartElement(&elmt, "a", none);
    EXPECT_EQ(0, elmt.ArrayWidth);
    elmt.ArrayWidth = 8;
    RA_EndElement(&elmt, "a");
    EXPECT_EQ(8, elmt.ArrayWidth);
}

TEST_F(Parse, PassesTextToTheExtraHandlerOnceItIsCollected) {
    elmt.CharDataHandler = NoteText;
    RA_CharacterDataHandler(&elmt, "abcdef", 3);
    RA_CharacterDataHandler(&elmt, "xyz", 2);
    EXPECT_THAT(handler_calls, ElementsAre("text [abc] after 3", "text [xy] after 5"));
}

// ---- text --------------------------------------------------------------------------------------

TEST_F(Parse, CollectsTextThatComesInPieces) {
    EXPECT_EQ("end a at 1 r text 11 [1&2\n3<4\n\n56]",
              TextAtEnd("<r><a>1&amp;2\n3&#60;4\r\n\n<!-- 0 -->5<?pi 0?>6</a></r>"));
}

TEST_F(Parse, CollectsCdataAsItStands) {
    EXPECT_EQ("end a at 1 r text 12 [x<b>&amp;</y]",
              TextAtEnd("<r><a>x<![CDATA[<b>&amp;]]><![CDATA[</]]>y</a></r>"));
}

TEST_F(Parse, CollectsTextInUtf8) {
    EXPECT_EQ("end a at 1 r text 2 [\xC3\xA9]",
              TextAtEnd("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r><a>\xE9</a></r>"));
}

TEST_F(Parse, CollectsTheTextOfAnEntity) {
    EXPECT_EQ("end a at 1 r text 4 [1232]",
              TextAtEnd("<!DOCTYPE r [<!ENTITY e \"23\">]><r><a>1&e;2</a></r>"));
}

TEST_F(Parse, KeepsATextOf2047Bytes) {
    const std::string text(2047, '7');
    EXPECT_EQ("end a at 1 r text 2047 [" + text + "]", TextAtEnd("<r><a>" + text + "</a></r>"));
}

TEST_F(Parse, DropsTheTextBehind2047Bytes) {
    const std::string text(2047, '7');
    EXPECT_EQ("end a at 1 r text 2047 [" + text + "]", TextAtEnd("<r><a>" + text + "8</a></r>"));
}

TEST_F(Parse, CountsKeptBytesOnlyHoweverLongTheTextIs) {
    const std::string text(200000, '7');
    EXPECT_EQ("end a at 1 r text 2047 [" + text.substr(0, 2047) + "]",
              TextAtEnd("<r><a>" + text + "\n" + text + "</a></r>"));
}

TEST_F(Parse, FillsTheTextFromPiecesAndCutsThePieceThatPassesIt) {
    const std::string piece(1000, '1');
    for (int i = 0; i < 3; ++i) RA_CharacterDataHandler(&elmt, piece.data(), 1000);
    EXPECT_EQ(2047, elmt.CharDataIndex);
    EXPECT_EQ(std::string(2047, '1'), elmt.CharDataBuf);
    RA_CharacterDataHandler(&elmt, "2", 1);
    EXPECT_EQ(2047, elmt.CharDataIndex);
    EXPECT_EQ(std::string(2047, '1'), elmt.CharDataBuf);
}

TEST_F(ParseLog, TellsTheKeptText) {
    const std::string text(2047, '7');
    EXPECT_EQ(1, Run("<r>" + text + "888</r>"));
    EXPECT_EQ("Dir = r\nDir = r\n[CD 2047]:" + text + "\n", log.Text());
}

TEST_F(ParseLog, TellsTextWithoutFormattingItAgain) {
    EXPECT_EQ(1, Run("<r>%s%n%d</r>"));
    EXPECT_EQ("Dir = r\nDir = r\n[CD 6]:%s%n%d\n", log.Text());
}

}  // namespace
