// Typed elements and records: their literal text, and the record writers against the reference
// writer at every one of the document's last 6000 positions.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <random>
#include <string>

#include "XMLWriter.h"
#include "XMLWriter_document.h"
#include "reference_writer.h"
#include "support/child_process.h"
#include "xml_rapi_elements.h"
#include "xml_rapi_functions_adapter_sample.h"
#include "xml_rapi_records.h"
#include "xml_rapi_text.h"

namespace {

std::string Replaced(std::string text, const std::string& part, const std::string& by) {
    const std::size_t at = text.find(part);
    if (at == std::string::npos) return "the text holds no " + part;
    return text.replace(at, part.size(), by);
}

class Records : public testing::Test {
protected:
    Records() {
        XMLWR_Init(doc);
        doc->Depth = 1;
    }

    std::string Written(const Adapter_Info& info) {
        XML_RA_Adapter_Info(doc, "AdapterInfo", &info, 1);
        return std::string(doc.Text());
    }

    Document doc;
};

// ---- typed elements ----------------------------------------------------------------------------

TEST_F(Records, AScalarStandsOnOneLine) {
    EXPECT_EQ(1, XML_RA_ElmtNonArrayData(doc, "RetVal", "U8", "%u", 0u));
    EXPECT_EQ("  <RetVal type=\"U8\">0</RetVal>\n", doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_F(Records, AScalarIsIndentedByItsDepth) {
    doc->Depth = 3;
    XML_RA_ElmtNonArrayData(doc, "Size", "U64", "%llu", 18446744073709551615ull);
    EXPECT_EQ("      <Size type=\"U64\">18446744073709551615</Size>\n", doc.Text());
}

TEST_F(Records, AScalarAtTheRootIsNotIndented) {
    doc->Depth = 0;
    XML_RA_ElmtNonArrayData(doc, "VenID", "U16", "%x", 0xBEEFu);
    EXPECT_EQ("<VenID type=\"U16\">beef</VenID>\n", doc.Text());
}

TEST_F(Records, ATextIsNotEscaped) {
    XML_RA_ElmtNonArrayData(doc, "Name", "string", "<![CDATA[%s]]>", "a]]><b>&%s%n");
    EXPECT_EQ("  <Name type=\"string\"><![CDATA[a]]><b>&%s%n]]></Name>\n", doc.Text());
}

TEST_F(Records, AnEmptyTextLeavesNothingBetweenTheTags) {
    XML_RA_ElmtNonArrayData(doc, "Name", "string", "%s", "");
    EXPECT_EQ("  <Name type=\"string\"></Name>\n", doc.Text());
}

TEST_F(Records, ALongTextStaysWithinItsBuffer) {
    const std::string text(5000, 't');
    XML_RA_ElmtNonArrayData(doc, "Name", "string", "%s", text.c_str());
    EXPECT_EQ("  <Name type=\"string\">" + std::string(511, 't') + "</Name>\n", doc.Text());
}

TEST_F(Records, AnArrayOpensOnALineOfItsOwn) {
    EXPECT_EQ(1, XML_RA_ElmtStartArrayData(doc, "HDIDs", "U16", 128));
    EXPECT_EQ("  <HDIDs type=\"U16\" width=\"128\">\n", doc.Text());
    EXPECT_EQ(2, doc->Depth);
}

// ---- records -----------------------------------------------------------------------------------

TEST_F(Records, AVersionIsWrittenIn32Bits) {
    const Version_Info version{1, 4294967295, 0, 10};
    EXPECT_EQ(1, XML_RA_Version_Info(doc, "DriverVersion", &version, 1));
    EXPECT_EQ(
        "  <DriverVersion type=\"struct Version_Info\">\n"
        "    <VerMajor type=\"U32\">1</VerMajor>\n"
        "    <VerMinor type=\"U32\">4294967295</VerMinor>\n"
        "    <VerOEM type=\"U32\">0</VerOEM>\n"
        "    <VerBuild type=\"U32\">10</VerBuild>\n"
        "  </DriverVersion>\n",
        doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_F(Records, AnImageVersionIsWrittenIn16BitsUnderTheSameType) {
    const Version_Info_CIM version{1, 65535, 0, 10};
    EXPECT_EQ(1, XML_RA_Version_Info_CIM(doc, "BIOSVersion", &version, 1));
    EXPECT_EQ(
        "  <BIOSVersion type=\"struct Version_Info\">\n"
        "    <VerMajor type=\"U16\">1</VerMajor>\n"
        "    <VerMinor type=\"U16\">65535</VerMinor>\n"
        "    <VerOEM type=\"U16\">0</VerOEM>\n"
        "    <VerBuild type=\"U16\">10</VerBuild>\n"
        "  </BIOSVersion>\n",
        doc.Text());
}

TEST_F(Records, SeveralRecordsAreSiblingsOfOneName) {
    const Version_Info_CIM versions[] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    EXPECT_EQ(1, XML_RA_Version_Info_CIM(doc, "V", versions, 2));
    EXPECT_EQ(
        "  <V type=\"struct Version_Info\">\n"
        "    <VerMajor type=\"U16\">1</VerMajor>\n"
        "    <VerMinor type=\"U16\">2</VerMinor>\n"
        "    <VerOEM type=\"U16\">3</VerOEM>\n"
        "    <VerBuild type=\"U16\">4</VerBuild>\n"
        "  </V>\n"
        "  <V type=\"struct Version_Info\">\n"
        "    <VerMajor type=\"U16\">5</VerMajor>\n"
        "    <VerMinor type=\"U16\">6</VerMinor>\n"
        "    <VerOEM type=\"U16\">7</VerOEM>\n"
        "    <VerBuild type=\"U16\">8</VerBuild>\n"
        "  </V>\n",
        doc.Text());
}

TEST_F(Records, ARecordAtTheRootIsNotIndented) {
    doc->Depth = 0;
    const Version_Info_CIM version{1, 2, 3, 4};
    XML_RA_Version_Info_CIM(doc, "V", &version, 1);
    EXPECT_EQ(
        "<V type=\"struct Version_Info\">\n"
        "  <VerMajor type=\"U16\">1</VerMajor>\n"
        "  <VerMinor type=\"U16\">2</VerMinor>\n"
        "  <VerOEM type=\"U16\">3</VerOEM>\n"
        "  <VerBuild type=\"U16\">4</VerBuild>\n"
        "</V>\n",
        doc.Text());
}

TEST_F(Records, NoRecordWritesNothing) {
    EXPECT_EQ(1, XML_RA_Version_Info(doc, "V", nullptr, 0));
    EXPECT_EQ(1, XML_RA_Version_Info_CIM(doc, "V", nullptr, 0));
    EXPECT_EQ(1, XML_RA_Adapter_Info(doc, "V", nullptr, 0));
    EXPECT_EQ("", doc.Text());
}

TEST_F(Records, AnAdapterIsWrittenFieldByField) {
    const Adapter_Info info = DistinctAdapter();
    EXPECT_EQ(1, XML_RA_Adapter_Info(doc, "AdapterInfo", &info, 1));
    EXPECT_EQ(kDistinctAdapterElement, doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_F(Records, TheCallersRecordStaysAsItIs) {
    const Adapter_Info before = DistinctAdapter();
    const Adapter_Info info = before;
    XML_RA_Adapter_Info(doc, "AdapterInfo", &info, 1);
    EXPECT_EQ(0, std::memcmp(&before, &info, sizeof info));
}

TEST_F(Records, AnAdapterWithoutPortsHasNoPortElement) {
    Adapter_Info info = DistinctAdapter();
    info.PortCount = 0;
    EXPECT_EQ(std::string(kAdapterOpen) + "    <PortCount type=\"U8\">0</PortCount>\n" +
                  kAdapterLimits + kAdapterSerialNo + kAdapterClose,
              Written(info));
}

TEST_F(Records, AnAdapterWithEightPortsHasEightPortElements) {
    Adapter_Info info = DistinctAdapter();
    info.PortCount = 8;
    EXPECT_EQ(std::string(kAdapterOpen) + "    <PortCount type=\"U8\">8</PortCount>\n" +
                  kAdapterLimits + kAdapterSerialNo + kAdapterPorts + kAdapterOtherPorts +
                  kAdapterClose,
              Written(info));
}

TEST_F(Records, AnAdapterThatClaims255PortsShowsTheEightThatItsRecordHolds) {
    Adapter_Info info = DistinctAdapter();
    info.PortCount = 255;
    EXPECT_EQ(std::string(kAdapterOpen) + "    <PortCount type=\"U8\">255</PortCount>\n" +
                  kAdapterLimits + kAdapterSerialNo + kAdapterPorts + kAdapterOtherPorts +
                  kAdapterClose,
              Written(info));
}

TEST_F(Records, AnAddressOfZerosIsWrittenWithoutATrailingBlank) {
    Adapter_Info info = DistinctAdapter();
    std::memset(info.WWN, 0, sizeof info.WWN);
    EXPECT_EQ(Replaced(kDistinctAdapterElement, "80 0 1 2 255 100 99 9\n", "0 0 0 0 0 0 0 0\n"),
              Written(info));
}

TEST_F(Records, DiskGroupSupportIsWrittenAs0Or1) {
    Adapter_Info info = DistinctAdapter();
    info.DiskGroupSupport = 0;
    EXPECT_EQ(Replaced(kDistinctAdapterElement, "<DiskGroupSupport type=\"BOOL\">1",
                       "<DiskGroupSupport type=\"BOOL\">0"),
              Written(info));
}

TEST_F(Records, OtherTruthValuesAreWrittenAsTheyStand) {
    Adapter_Info info = DistinctAdapter();
    info.AlarmSupport = 255;
    EXPECT_EQ(Replaced(kDistinctAdapterElement, "<AlarmSupport type=\"BOOL\">1",
                       "<AlarmSupport type=\"BOOL\">255"),
              Written(info));
}

TEST_F(Records, ASerialNumberThatBeginsWith0IsEmpty) {
    Adapter_Info info = DistinctAdapter();
    std::memcpy(info.SerialNo, "01234567890123456789", 20);
    EXPECT_EQ(Replaced(kDistinctAdapterElement, "SN 12345", ""), Written(info));
}

TEST_F(Records, AnEmptySerialNumberIsEmpty) {
    Adapter_Info info = DistinctAdapter();
    std::memset(info.SerialNo, 0, 20);
    EXPECT_EQ(Replaced(kDistinctAdapterElement, "SN 12345", ""), Written(info));
}

TEST_F(Records, ASerialNumberThatFillsItsFieldIsWrittenWhole) {
    Adapter_Info info = DistinctAdapter();
    std::memcpy(info.SerialNo, "12345678901234567890", 20);
    EXPECT_EQ(Replaced(kDistinctAdapterElement, "SN 12345", "12345678901234567890"), Written(info));
}

TEST_F(Records, ASerialNumberEndsAtItsNul) {
    Adapter_Info info = DistinctAdapter();
    std::memcpy(info.SerialNo, "1 <&>\0hidden\0\0\0\0\0\0\0\0", 20);
    EXPECT_EQ(Replaced(kDistinctAdapterElement, "SN 12345", "1 <&>"), Written(info));
}

// ---- the serial number's text ------------------------------------------------------------------

std::string DigitsOf(const char (&field)[21]) {
    char text[21];
    std::memset(text, '~', sizeof text);
    digit_to_str(text, reinterpret_cast<const HX_U8*>(field), 20);
    return text;
}

TEST(DigitToStr, CopiesExactlyTheFieldAndTerminatesIt) {
    EXPECT_EQ("1234567890abcdefghij", DigitsOf("1234567890abcdefghij"));
}

TEST(DigitToStr, GivesTheEmptyTextForAFieldThatBeginsWith0) {
    EXPECT_EQ("", DigitsOf("0123\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"));
}

TEST(DigitToStr, TerminatesBehindTheLengthAskedFor) {
    char text[8] = "~~~~~~~";
    digit_to_str(text, reinterpret_cast<const HX_U8*>("12345"), 3);
    EXPECT_STREQ("123", text);
    EXPECT_EQ('~', text[4]);
}

// ---- against the reference writer --------------------------------------------------------------

class RecordsAgainstReference : public testing::Test {
protected:
    // Both documents with `room` bytes left at `depth`, and '#' behind the cursor.
    void Place(std::uint32_t room, int depth) {
        from = kCapacity - room;
        for (const Document* doc : {&real, &reference}) {
            doc->LeaveRoom(room);
            XMLWR_Doc* const it = *doc;
            it->Depth = static_cast<std::int16_t>(depth);
            std::memset(it->Buf + from, '#', room + 1);
        }
    }

    testing::AssertionResult Same() const {
        if (real->Depth != reference->Depth || real->CurPos != reference->CurPos) {
            return testing::AssertionFailure()
                   << "depth " << real->Depth << ", cursor " << real->CurPos << " instead of "
                   << reference->Depth << ", " << reference->CurPos;
        }
        const std::uint32_t first = from < 64 ? 0 : from - 64;
        if (real.Text(first) != reference.Text(first)) {
            return testing::AssertionFailure() << "text\n"
                                               << real.Text(first) << "\ninstead of\n"
                                               << reference.Text(first);
        }
        return testing::AssertionSuccess();
    }

    std::uint32_t Below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(engine() % limit);
    }

    // Numbers of every length, texts of every shape, and bytes that stand in no field.
    template <class R>
    R Random() {
        unsigned char bytes[sizeof(R)];
        const std::uint32_t wide = Below(4);
        for (unsigned char& byte : bytes) {
            byte = static_cast<unsigned char>(Below(4) >= wide ? Below(256) : 0);
        }
        R record;
        std::memcpy(&record, bytes, sizeof record);
        return record;
    }
    Adapter_Info RandomAdapter() {
        auto info = Random<Adapter_Info>();
        info.PortCount = static_cast<HX_U8>(Below(4) == 0 ? Below(256) : Below(10));
        if (Below(2) == 0) {
            for (char& byte : info.SerialNo) byte = static_cast<char>('0' + Below(10));
        }
        return info;
    }

    Document real;
    Document reference;
    std::uint32_t from = 0;
    std::minstd_rand engine{20};
};

const int kDepths[] = {1, 1, 0, 2, 5, -1};

// Longer than any name of the library's own, so that no fixed room for a name is taken on trust.
const char* const kNames[] = {"V", "AdapterInfo", "ANameOfExactly32CharactersInAll_",
                              "ANameOfExactly33CharactersInAll__",
                              "AVeryLongElementNameThatNoFunctionOfTheLibraryHasButAnotherMight"};

TEST_F(RecordsAgainstReference, ScalarsAndArrayTagsAgreeAtEachOfTheLastPositions) {
    for (std::uint32_t room = 0; room <= 6000; ++room) {
        Place(room, kDepths[room % std::size(kDepths)]);
        for (int i = 0; i < 8; ++i) {
            const char* const name = kNames[Below(std::size(kNames))];
            const unsigned number = Below(0xFFFFFFFF) >> Below(32);
            const std::string text(Below(12) == 0 ? Below(600) : Below(30), 't');
            const auto width = static_cast<HX_U8>(Below(129));
            const unsigned long long big = 0xFFFFFFFFFFFFFFFFull >> Below(64);
            switch (Below(5)) {
                case 0:
                    XML_RA_ElmtNonArrayData(real, name, "U32", "%u", number);
                    reference::ElmtNonArrayData(reference, name, "U32", "%u", number);
                    break;
                case 1:
                    XML_RA_ElmtNonArrayData(real, name, "U64", "%llu", big);
                    reference::ElmtNonArrayData(reference, name, "U64", "%llu", big);
                    break;
                case 2:
                    XML_RA_ElmtNonArrayData(real, name, "string", "<![CDATA[%s]]>", text.c_str());
                    reference::ElmtNonArrayData(reference, name, "string", "<![CDATA[%s]]>",
                                                text.c_str());
                    break;
                case 3:
                    XML_RA_ElmtStartArrayData(real, name, "U16", width);
                    reference::ElmtStartArrayData(reference, name, "U16", width);
                    break;
                default:
                    XMLWR_ElmtEnd(real, 0, name);
                    reference::ElmtEnd(reference, 0, name);
                    break;
            }
            ASSERT_TRUE(Same()) << "room " << room << ", call " << i;
        }
    }
}

TEST_F(RecordsAgainstReference, VersionsAgreeAtEachOfTheLastPositions) {
    for (std::uint32_t room = 0; room <= 6000; ++room) {
        for (const int depth : {1, kDepths[room % std::size(kDepths)]}) {
            Place(room, depth);
            for (int i = 0; i < 4; ++i) {
                const char* const name = kNames[Below(std::size(kNames))];
                const Version_Info versions[] = {Random<Version_Info>(), Random<Version_Info>()};
                const Version_Info_CIM images[] = {Random<Version_Info_CIM>(),
                                                   Random<Version_Info_CIM>()};
                const std::uint32_t count = Below(3);
                XML_RA_Version_Info(real, name, versions, count);
                reference::RecordVersionInfo(reference, name, versions, count);
                XML_RA_Version_Info_CIM(real, name, images, count);
                reference::RecordVersionInfoCim(reference, name, images, count);
                ASSERT_TRUE(Same()) << "room " << room << ", depth " << depth << ", call " << i;
            }
        }
    }
}

// Two adapters at 12002 positions are what the sanitizers are slowest at, and they look for bad
// accesses, which neighbouring positions only repeat: every fifth does there.
constexpr std::uint32_t kAdapterStep = kSanitized ? 5 : 1;

TEST_F(RecordsAgainstReference, AdaptersAgreeAtEachOfTheLastPositions) {
    for (std::uint32_t room = 0; room <= 6000; room += kAdapterStep) {
        for (const int depth : {1, kDepths[room % std::size(kDepths)]}) {
            Place(room, depth);
            const Adapter_Info adapters[] = {RandomAdapter(), RandomAdapter()};
            const char* const name = kNames[Below(std::size(kNames))];
            XML_RA_Adapter_Info(real, name, adapters, 2);
            reference::RecordAdapterInfo(reference, name, adapters, 2);
            ASSERT_TRUE(Same()) << "room " << room << ", depth " << depth;
        }
    }
}

TEST_F(RecordsAgainstReference, AdaptersAgreeUntilTheDocumentIsFull) {
    XMLWR_Init(real);
    reference::Init(reference);
    XMLWR_ElmtStartPrintf(real, 0, "HX_Adapter_GetInfo", " type=\"%s\"", "function");
    reference::ElmtStartPrintf(reference, 0, "HX_Adapter_GetInfo", " type=\"%s\"", "function");
    for (int i = 0; i < 200; ++i) {
        const Adapter_Info adapter = RandomAdapter();
        XML_RA_Adapter_Info(real, "AdapterInfo", &adapter, 1);
        reference::RecordAdapterInfo(reference, "AdapterInfo", &adapter, 1);
    }
    XMLWR_ElmtEnd(real, 0, "HX_Adapter_GetInfo");
    reference::ElmtEnd(reference, 0, "HX_Adapter_GetInfo");
    EXPECT_EQ(kCapacity, reference->CurPos);
    EXPECT_TRUE(Same());
}

}  // namespace
