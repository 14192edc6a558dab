// The document writer: its pieces, its layout, and what it does where the buffer ends.
#include "XMLWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "XMLWriter_document.h"

namespace {

// Appends `text` as one piece, as every operation of the writer does. Returns what it counted.
int Append(const Document& doc, std::string_view text) {
    const int written = XMLWR_MemCpy(doc, text.data(), static_cast<HX_U16>(text.size()));
    XMLWR_AddCurPos(doc, written);
    return written;
}

class XMLWriter : public testing::Test {
protected:
    XMLWriter() { XMLWR_Init(doc); }
    Document doc;
};

class XMLWriterInit : public testing::Test {
protected:
    Document doc;
};

TEST_F(XMLWriterInit, FillsTheWholeDocumentWithZeroBytes) {
    doc->Depth = -3;
    doc->CurPos = 77;
    EXPECT_EQ(1, XMLWR_Init(doc));
    EXPECT_EQ(0, doc->Depth);
    EXPECT_EQ(0u, doc->CurPos);
    EXPECT_EQ(524288, std::count(doc->Buf, doc->Buf + 524288, '\0'));
}

TEST_F(XMLWriterInit, RefusesNull) { EXPECT_EQ(0, XMLWR_Init(nullptr)); }

TEST_F(XMLWriter, ShutdownChangesNothing) {
    Append(doc, "text");
    doc->Depth = 2;
    XMLWR_Shutdown(doc);
    EXPECT_EQ("text", doc.Text());
    EXPECT_EQ(2, doc->Depth);
}

TEST(XMLWriterDocument, HoldsItsFieldsInThatOrder) {
    EXPECT_EQ(0u, offsetof(XMLWR_Doc, Depth));
    EXPECT_EQ(4u, offsetof(XMLWR_Doc, CurPos));
    EXPECT_EQ(8u, offsetof(XMLWR_Doc, Buf));
    EXPECT_EQ(524288u, sizeof(XMLWR_Doc::Buf));
}

// ---- pieces ------------------------------------------------------------------------------------

TEST_F(XMLWriter, MemCpyWritesAtTheCursorWithoutMovingIt) {
    Append(doc, "ab");
    EXPECT_EQ(3, XMLWR_MemCpy(doc, "xyz", 3));
    EXPECT_EQ(2u, doc->CurPos);
    EXPECT_EQ("abxyz", std::string_view(doc->Buf, 5));
}

TEST_F(XMLWriter, MemCpyTakesBytesAndNotText) {
    EXPECT_EQ(3, XMLWR_MemCpy(doc, "a\0b", 3));
    EXPECT_EQ(std::string_view("a\0b", 3), std::string_view(doc->Buf, 3));
}

TEST_F(XMLWriter, MemCpyOfNothingReturnsZero) { EXPECT_EQ(0, XMLWR_MemCpy(doc, "abc", 0)); }

TEST_F(XMLWriter, MemCpyTakes65535BytesAtOnce) {
    const std::string text(65535, 'm');
    EXPECT_EQ(65535, XMLWR_MemCpy(doc, text.data(), 65535));
    EXPECT_EQ(text, std::string_view(doc->Buf, 65535));
    EXPECT_EQ('\0', doc->Buf[65535]);
}

TEST_F(XMLWriter, APieceThatEndsAtByte524287IsWritten) {
    doc.LeaveRoom(4);
    EXPECT_EQ(4, Append(doc, "last"));
    EXPECT_EQ(kCapacity, doc->CurPos);
    EXPECT_EQ("last", doc.Text(kCapacity - 4));
}

TEST_F(XMLWriter, APieceThatWouldEndAtByte524288IsDroppedWhole) {
    doc.LeaveRoom(4);
    EXPECT_EQ(0, Append(doc, "extra"));
    EXPECT_EQ(kCapacity - 4, doc->CurPos);
    EXPECT_EQ(std::string_view("\0\0\0\0\0", 5), std::string_view(doc->Buf + kCapacity - 4, 5));
}

TEST_F(XMLWriter, AShorterPieceIsWrittenAfterADroppedOne) {
    doc.LeaveRoom(4);
    Append(doc, "extra");
    EXPECT_EQ(3, Append(doc, "fit"));
    EXPECT_EQ("fit", doc.Text(kCapacity - 4));
}

TEST_F(XMLWriter, AFullDocumentTakesNoFurtherPiece) {
    doc.LeaveRoom(0);
    EXPECT_EQ(0, Append(doc, "x"));
    XMLWR_PrintNewLine(doc);
    EXPECT_EQ(1, XMLWR_ElmtStartPrintf(doc, 0, "a", " %s", "b"));
    XMLWR_PrintTabs(doc);
    EXPECT_EQ(1, XMLWR_ElmtCharData(doc, 0, "text"));
    EXPECT_EQ(1, XMLWR_ElmtEnd(doc, 0, "a"));
    EXPECT_EQ(kCapacity, doc->CurPos);
    EXPECT_EQ('\0', doc->Buf[kCapacity]);
}

TEST_F(XMLWriter, ADocumentFilledByPiecesStopsAt524287Bytes) {
    const std::string text(8, '8');
    for (int i = 0; i < 65535; ++i) ASSERT_EQ(8, Append(doc, text)) << i;
    EXPECT_EQ(0, Append(doc, text));
    EXPECT_EQ(7, Append(doc, "1234567"));
    EXPECT_EQ(0, Append(doc, "x"));
    EXPECT_EQ(kCapacity, doc->CurPos);
    EXPECT_EQ("8888881234567", doc.Text(kCapacity - 13));
}

TEST_F(XMLWriter, SprintfFormatsAtTheCursorWithoutMovingIt) {
    Append(doc, "ab");
    EXPECT_EQ(6, XMLWR_Sprintf(doc, doc->Buf + doc->CurPos, "%s-%u", "four", 7u));
    EXPECT_EQ(2u, doc->CurPos);
    EXPECT_STREQ("abfour-7", doc->Buf);
}

TEST_F(XMLWriter, SprintfIgnoresItsSecondArgument) {
    char elsewhere[] = "untouched";
    Append(doc, "ab");
    EXPECT_EQ(4, XMLWR_Sprintf(doc, elsewhere, "text"));
    EXPECT_STREQ("untouched", elsewhere);
    EXPECT_EQ(4, XMLWR_Sprintf(doc, nullptr, "TEXT"));
    EXPECT_STREQ("abTEXT", doc->Buf);
}

TEST_F(XMLWriter, SprintfDoesNotFormatItsArgumentsAgain) {
    EXPECT_EQ(6, XMLWR_Sprintf(doc, nullptr, "%s", "%n%s%d"));
    EXPECT_STREQ("%n%s%d", doc->Buf);
}

TEST_F(XMLWriter, SprintfTakesATextOf1023Characters) {
    const std::string text(1023, 's');
    EXPECT_EQ(1023, XMLWR_Sprintf(doc, nullptr, "%s", text.c_str()));
    EXPECT_EQ(text, doc->Buf);
}

TEST_F(XMLWriter, SprintfCutsALongerTextToItsBuffer) {
    const std::string text(5000, 's');
    EXPECT_EQ(1023, XMLWR_Sprintf(doc, nullptr, "%s", text.c_str()));
    EXPECT_EQ(std::string(1023, 's'), doc->Buf);
}

TEST_F(XMLWriter, SprintfOfATextThatDoesNotFitReturnsZero) {
    doc.LeaveRoom(3);
    EXPECT_EQ(0, XMLWR_Sprintf(doc, nullptr, "%d", 1000));
    EXPECT_EQ('\0', doc->Buf[kCapacity - 3]);
}

TEST_F(XMLWriter, AddCurPosMovesTheCursor) {
    XMLWR_AddCurPos(doc, 5);
    XMLWR_AddCurPos(doc, 0);
    EXPECT_EQ(5u, doc->CurPos);
    XMLWR_AddCurPos(doc, 7);
    EXPECT_EQ(12u, doc->CurPos);
}

TEST_F(XMLWriter, AddCurPosOfMinusOneLeavesTheCursor) {
    XMLWR_AddCurPos(doc, 5);
    XMLWR_AddCurPos(doc, -1);
    EXPECT_EQ(5u, doc->CurPos);
}

TEST_F(XMLWriter, PrintTabsWritesTwoBlanksForEachOpenElement) {
    doc->Depth = 3;
    XMLWR_PrintTabs(doc);
    EXPECT_EQ("      ", doc.Text());
    EXPECT_EQ(3, doc->Depth);
}

TEST_F(XMLWriter, PrintTabsWritesNothingAtTheRoot) {
    XMLWR_PrintTabs(doc);
    EXPECT_EQ("", doc.Text());
}

TEST_F(XMLWriter, PrintTabsWritesNothingBelowTheRoot) {
    doc->Depth = -2;
    XMLWR_PrintTabs(doc);
    EXPECT_EQ("", doc.Text());
}

TEST_F(XMLWriter, PrintTabsDropsTheBlanksOfOneLevelTogether) {
    doc->Depth = 4;
    doc.LeaveRoom(5);
    XMLWR_PrintTabs(doc);
    EXPECT_EQ("    ", doc.Text(kCapacity - 5));
}

TEST_F(XMLWriter, PrintNewLineWritesALineFeed) {
    XMLWR_PrintNewLine(doc);
    EXPECT_EQ("\n", doc.Text());
}

// ---- start tags --------------------------------------------------------------------------------

TEST_F(XMLWriter, AStartTagStandsOnALineOfItsOwn) {
    EXPECT_EQ(1,
              XMLWR_ElmtStartPrintf(doc, 0, "R", " %s=\"%s\" %s=\"%d\"", "type", "U8", "width", 8));
    EXPECT_EQ("<R type=\"U8\" width=\"8\">\n", doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_F(XMLWriter, AStartTagIsIndentedByItsDepth) {
    doc->Depth = 2;
    XMLWR_ElmtStartPrintf(doc, 0, "R", "%s", "");
    EXPECT_EQ("    <R>\n", doc.Text());
    EXPECT_EQ(3, doc->Depth);
}

TEST_F(XMLWriter, AStartTagWithFlag4KeepsItsLineOpen) {
    XMLWR_ElmtStartPrintf(doc, 4, "R", " %s", "a");
    EXPECT_EQ("<R a>", doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_F(XMLWriter, AnEmptyElementStandsOnOneLine) {
    EXPECT_EQ(1, XMLWR_ElmtStartPrintf(doc, 1, "E", "%s", ""));
    EXPECT_EQ("<E></E>\n", doc.Text());
    EXPECT_EQ(0, doc->Depth);
}

TEST_F(XMLWriter, AnEmptyElementIsIndentedOnce) {
    doc->Depth = 1;
    XMLWR_ElmtStartPrintf(doc, 1, "E", " %s=\"%s\"", "type", "U8");
    EXPECT_EQ("  <E type=\"U8\"></E>\n", doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_F(XMLWriter, AnEmptyElementClosesWhateverElseItsFlagsSay) {
    XMLWR_ElmtStartPrintf(doc, 1 | 4, "E", "%s", "");
    EXPECT_EQ("<E></E>\n", doc.Text());
}

TEST_F(XMLWriter, AnEmptyElementOpenedBelowTheRootGetsNoEndTag) {
    doc->Depth = -1;
    EXPECT_EQ(1, XMLWR_ElmtStartPrintf(doc, 1, "E", "%s", ""));
    EXPECT_EQ("<E>", doc.Text());
    EXPECT_EQ(-1, doc->Depth);
}

TEST_F(XMLWriter, AttributeTextIsNotFormattedAgain) {
    XMLWR_ElmtStartPrintf(doc, 0, "%s%n", " a=\"%s\"", "%d%n");
    EXPECT_EQ("<%s%n a=\"%d%n\">\n", doc.Text());
}

TEST_F(XMLWriter, AttributeTextTakes511Characters) {
    const std::string attributes(511, 'a');
    XMLWR_ElmtStartPrintf(doc, 0, "R", "%s", attributes.c_str());
    EXPECT_EQ("<R" + attributes + ">\n", doc.Text());
}

TEST_F(XMLWriter, LongerAttributeTextIsCutToItsBuffer) {
    const std::string attributes(3000, 'a');
    XMLWR_ElmtStartPrintf(doc, 0, "R", "%s", attributes.c_str());
    EXPECT_EQ("<R" + std::string(511, 'a') + ">\n", doc.Text());
}

TEST_F(XMLWriter, ALongNameIsCutToItsBuffer) {
    const std::string name(3000, 'n');
    XMLWR_ElmtStartPrintf(doc, 0, name.c_str(), " %s", "a");
    EXPECT_EQ("<" + std::string(1022, 'n') + " a>\n", doc.Text());
}

TEST_F(XMLWriter, AStartTagLosesOnlyThePiecesThatDoNotFit) {
    struct Case {
        std::uint32_t room;
        const char* text;
    };
    // The pieces are "  ", "<name", " abcdefgh", ">" and the line feed.
    const Case cases[] = {
        {18, "  <name abcdefgh>\n"},
        {17, "  <name abcdefgh>"},
        {16, "  <name abcdefgh"},
        {15, "  <name>\n"},
        {9, "  <name>\n"},
        {8, "  <name>"},
        {7, "  <name"},
        {6, "  >\n"},
        {4, "  >\n"},
        {3, "  >"},
        {2, "  "},
        {1, ">"},
        {0, ""},
    };
    for (const Case& at : cases) {
        XMLWR_Init(doc);
        doc->Depth = 1;
        doc.LeaveRoom(at.room);
        EXPECT_EQ(1, XMLWR_ElmtStartPrintf(doc, 0, "name", " %s", "abcdefgh"));
        EXPECT_EQ(at.text, doc.Text(kCapacity - at.room)) << "room " << at.room;
        EXPECT_EQ(2, doc->Depth) << "room " << at.room;
    }
}

// ---- character data ----------------------------------------------------------------------------

TEST_F(XMLWriter, CharacterDataStandsOnAnIndentedLine) {
    doc->Depth = 2;
    EXPECT_EQ(1, XMLWR_ElmtCharData(doc, 0, "%u", 42u));
    EXPECT_EQ("    42\n", doc.Text());
    EXPECT_EQ(2, doc->Depth);
}

TEST_F(XMLWriter, CharacterDataWithFlag2ContinuesTheLine) {
    doc->Depth = 2;
    XMLWR_ElmtCharData(doc, 2, "%u", 42u);
    EXPECT_EQ("42\n", doc.Text());
}

TEST_F(XMLWriter, CharacterDataWithFlag4KeepsItsLineOpen) {
    doc->Depth = 2;
    XMLWR_ElmtCharData(doc, 4, "%u", 42u);
    EXPECT_EQ("    42", doc.Text());
}

TEST_F(XMLWriter, CharacterDataWithFlags6StandsInline) {
    doc->Depth = 2;
    XMLWR_ElmtCharData(doc, 6, "%u", 42u);
    EXPECT_EQ("42", doc.Text());
}

TEST_F(XMLWriter, CharacterDataIsNotEscaped) {
    XMLWR_ElmtCharData(doc, 6, "%s", "a & b < c > \"d\" %s");
    EXPECT_EQ("a & b < c > \"d\" %s", doc.Text());
}

TEST_F(XMLWriter, CharacterDataTakes511Characters) {
    const std::string text(511, 't');
    XMLWR_ElmtCharData(doc, 6, "%s", text.c_str());
    EXPECT_EQ(text, doc.Text());
}

TEST_F(XMLWriter, LongerCharacterDataIsCutToItsBuffer) {
    const std::string text(3000, 't');
    XMLWR_ElmtCharData(doc, 2, "%s", text.c_str());
    EXPECT_EQ(std::string(511, 't') + "\n", doc.Text());
}

TEST_F(XMLWriter, CharacterDataThatDoesNotFitStillEndsItsLine) {
    doc->Depth = 1;
    doc.LeaveRoom(5);
    EXPECT_EQ(1, XMLWR_ElmtCharData(doc, 0, "abcd"));
    EXPECT_EQ("  \n", doc.Text(kCapacity - 5));
}

// ---- end tags ----------------------------------------------------------------------------------

TEST_F(XMLWriter, AnEndTagIsIndentedAndEndsItsLine) {
    doc->Depth = 2;
    EXPECT_EQ(1, XMLWR_ElmtEnd(doc, 0, "R"));
    EXPECT_EQ("  </R>\n", doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_F(XMLWriter, AnEndTagWithFlag2ContinuesTheLine) {
    doc->Depth = 2;
    EXPECT_EQ(1, XMLWR_ElmtEnd(doc, 2, "R"));
    EXPECT_EQ("</R>\n", doc.Text());
}

TEST_F(XMLWriter, AnEndTagAndItsLineEndAreOnePiece) {
    doc->Depth = 1;
    doc.LeaveRoom(4);
    EXPECT_EQ(1, XMLWR_ElmtEnd(doc, 0, "R"));
    EXPECT_EQ("", doc.Text(kCapacity - 4));
    EXPECT_EQ(0, doc->Depth);
}

TEST_F(XMLWriter, AnEndTagThatEndsAtByte524287IsWritten) {
    doc->Depth = 1;
    doc.LeaveRoom(5);
    EXPECT_EQ(1, XMLWR_ElmtEnd(doc, 0, "R"));
    EXPECT_EQ("</R>\n", doc.Text(kCapacity - 5));
}

TEST_F(XMLWriter, ClosingMoreThanWasOpenedWritesNothing) {
    EXPECT_EQ(0, XMLWR_ElmtEnd(doc, 0, "R"));
    EXPECT_EQ(-1, doc->Depth);
    EXPECT_EQ(0, XMLWR_ElmtEnd(doc, 2, "R"));
    EXPECT_EQ(-2, doc->Depth);
    EXPECT_EQ("", doc.Text());
}

TEST_F(XMLWriter, AnEndTagWithALongNameIsCutToItsBuffer) {
    const std::string name(3000, 'n');
    doc->Depth = 1;
    EXPECT_EQ(1, XMLWR_ElmtEnd(doc, 0, name.c_str()));
    EXPECT_EQ("</" + std::string(1021, 'n'), doc.Text());
}

// ---- together ----------------------------------------------------------------------------------

TEST_F(XMLWriter, AScalarStandsOnOneLine) {
    doc->Depth = 1;
    XMLWR_ElmtStartPrintf(doc, 4, "RetVal", " %s=\"%s\"", "type", "U8");
    XMLWR_ElmtCharData(doc, 6, "%u", 0u);
    XMLWR_ElmtEnd(doc, 2, "RetVal");
    EXPECT_EQ("  <RetVal type=\"U8\">0</RetVal>\n", doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_F(XMLWriter, NestedElementsAreIndentedByTheirLevels) {
    XMLWR_ElmtStartPrintf(doc, 0, "a", "%s", "");
    XMLWR_ElmtStartPrintf(doc, 0, "b", " x=\"%u\"", 1u);
    XMLWR_ElmtStartPrintf(doc, 1, "c", "%s", "");
    XMLWR_ElmtCharData(doc, 0, "text");
    XMLWR_ElmtEnd(doc, 0, "b");
    XMLWR_ElmtEnd(doc, 0, "a");
    EXPECT_EQ(
        "<a>\n"
        "  <b x=\"1\">\n"
        "    <c></c>\n"
        "    text\n"
        "  </b>\n"
        "</a>\n",
        doc.Text());
}

TEST_F(XMLWriter, ThreeHundredLevelsAreIndentedByTheirNumber) {
    for (int level = 0; level < 300; ++level) XMLWR_ElmtStartPrintf(doc, 4, "a", "%s", "");
    EXPECT_EQ(300, doc->Depth);
    const std::uint32_t before = doc->CurPos;
    XMLWR_ElmtCharData(doc, 0, "x");
    EXPECT_EQ(std::string(600, ' ') + "x\n", doc.Text(before));
}

// ---- copying out -------------------------------------------------------------------------------

class XMLWriterStrCpy : public XMLWriter {
protected:
    std::string target = std::string(64, '~');
};

TEST_F(XMLWriterStrCpy, DeliversTheTextWithoutItsLastByte) {
    XMLWR_ElmtStartPrintf(doc, 0, "R", "%s", "");
    XMLWR_ElmtCharData(doc, 0, "v");
    XMLWR_ElmtEnd(doc, 0, "R");
    EXPECT_EQ("<R>\n  v\n</R>\n", doc.Text());
    EXPECT_EQ(12u, XMLWR_StrCpy(doc, target.data(), 64));
    EXPECT_STREQ("<R>\n  v\n</R>", target.data());
    EXPECT_EQ('~', target[13]);
}

TEST_F(XMLWriterStrCpy, CutsTheLastByteWhateverItIs) {
    Append(doc, "abc");
    EXPECT_EQ(2u, XMLWR_StrCpy(doc, target.data(), 64));
    EXPECT_STREQ("ab", target.data());
}

TEST_F(XMLWriterStrCpy, OfOneByteDeliversTheEmptyText) {
    Append(doc, "\n");
    EXPECT_EQ(0u, XMLWR_StrCpy(doc, target.data(), 64));
    EXPECT_STREQ("", target.data());
    EXPECT_EQ('~', target[1]);
}

TEST_F(XMLWriterStrCpy, CopiesBytesBehindANul) {
    Append(doc, std::string_view("a\0b\n", 4));
    EXPECT_EQ(3u, XMLWR_StrCpy(doc, target.data(), 64));
    EXPECT_EQ(std::string_view("a\0b\0~", 5), std::string_view(target.data(), 5));
}

TEST_F(XMLWriterStrCpy, OfADocumentAsLongAsTheTargetFillsIt) {
    Append(doc, "abcd\n");
    EXPECT_EQ(4u, XMLWR_StrCpy(doc, target.data(), 5));
    EXPECT_STREQ("abcd", target.data());
    EXPECT_EQ('~', target[5]);
}

TEST_F(XMLWriterStrCpy, NeverPassesTheTarget) {
    Append(doc, "abcd\n");
    EXPECT_EQ(0u, XMLWR_StrCpy(doc, target.data(), 4));
    EXPECT_STREQ("", target.data());
    EXPECT_EQ('~', target[4]);
}

TEST_F(XMLWriterStrCpy, OfAnEmptyDocumentDeliversTheEmptyText) {
    EXPECT_EQ(0u, XMLWR_StrCpy(doc, target.data(), 64));
    EXPECT_STREQ("", target.data());
    EXPECT_EQ('~', target[1]);
}

TEST_F(XMLWriterStrCpy, IntoNoRoomWritesNothing) {
    Append(doc, "abcd\n");
    EXPECT_EQ(0u, XMLWR_StrCpy(doc, target.data(), 0));
    EXPECT_EQ('~', target[0]);
}

TEST_F(XMLWriterStrCpy, OfAFullDocumentDelivers524286Bytes) {
    std::memset(doc->Buf, 'f', 524287);
    doc.LeaveRoom(0);
    std::string big(524288, '~');
    EXPECT_EQ(524286u, XMLWR_StrCpy(doc, big.data(), 524288));
    EXPECT_EQ(std::string(524286, 'f'), big.data());
    EXPECT_EQ('~', big[524287]);
}

}  // namespace
