// The record writers: each one's text for records of zeros, of ones and of distinct bytes, at any
// depth and at the document's end; the completion of disks; users; paged replies.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "XMLWriter.h"
#include "XMLWriter_document.h"
#include "vxevent_golden.h"
#include "xml_rapi_functions_records.h"
#include "xml_rapi_records.h"

namespace {

// ---- every writer ------------------------------------------------------------------------------

// A writer and the file of its expected text: below golden/records three elements called "Record",
// at depth 1, of a record whose bytes are all 0, one whose bytes are all 255, and a distinct one.
struct Writer {
    const char* name;
    int (*write_three)(XMLWR_Doc* doc);
    int (*write_distinct)(XMLWR_Doc* doc);
    int (*write_none)(XMLWR_Doc* doc);
    int (*write_without)(XMLWR_Doc* doc, std::size_t byte);
    std::size_t bytes;    // of the record
    std::size_t unshown;  // of them: reserved, or left out
    friend void PrintTo(const Writer& it, std::ostream* os) { *os << it.name; }
};

template <auto writer>
struct Writing;
template <class R, int (*writer)(XMLWR_Doc*, const char*, R*, HX_U32)>
struct Writing<writer> {
    using Record = std::remove_const_t<R>;

    static int Three(XMLWR_Doc* doc) {
        std::vector<Record> records(3);
        std::memset(static_cast<void*>(&records[0]), 0, sizeof(Record));
        std::memset(static_cast<void*>(&records[1]), 255, sizeof(Record));
        records[2] = Distinct<Record>();
        return writer(doc, "Record", records.data(), 3);
    }
    static int OneDistinct(XMLWR_Doc* doc) {
        Record record = Distinct<Record>();
        return writer(doc, "Record", &record, 1);
    }
    // A record of letters, but for one byte of 0, which changes every kind of value: a number, a
    // flag, and a text, which it ends.
    static int Without(XMLWR_Doc* doc, std::size_t byte) {
        Record record;
        std::memset(static_cast<void*>(&record), 'A', sizeof record);
        if (byte < sizeof record) reinterpret_cast<char*>(&record)[byte] = 0;
        return writer(doc, "Record", &record, 1);
    }
    static int None(XMLWR_Doc* doc) { return writer(doc, "Record", nullptr, 0); }
};

template <auto writer>
constexpr Writer Of(const char* name, std::size_t unshown) {
    using It = Writing<writer>;
    return {name,   It::Three, It::OneDistinct, It::None, It::Without, sizeof(typename It::Record),
            unshown};
}

constexpr Writer kWriters[] = {
    Of<&XML_RA_RequestHeader_Entity_Info>("RequestHeader_Entity_Info", 6),
    Of<&XML_RA_Link_Endpoint_Info>("Link_Endpoint_Info", 2),
    Of<&XML_RA_Link_Entity_Info>("Link_Entity_Info", 4),
    Of<&XML_RA_PM_Info>("PM_Info", 28),
    Of<&XML_RA_HD_Config>("HD_Config", 2),
    Of<&XML_RA_HD_SMART_Status>("HD_SMART_Status", 5),
    Of<&XML_RA_HD_RCT_Records>("HD_RCT_Records", 3),
    Of<&XML_RA_HD_RAID_Status>("HD_RAID_Status", 3),
    Of<&XML_RA_Create_LD_Param>("Create_LD_Param", 222),
    Of<&XML_RA_LD_Status>("LD_Status", 1),
    Of<&XML_RA_LD_Config>("LD_Config", 3),
    Of<&XML_RA_Version_Info>("Version_Info", 0),
    Of<&XML_RA_Version_Info_CIM>("Version_Info_CIM", 0),
    Of<&XML_RA_Version_Info_BIOS>("Version_Info_BIOS", 264),
    Of<&XML_RA_Adapter_Info>("Adapter_Info", 67),
    Of<&XML_RA_DG_Config>("DG_Config", 13),
    Of<&XML_RA_Adapter_Config_V2>("Adapter_Config_V2", 10),
    Of<&XML_RA_BBU_GetInfo>("BBU_GetInfo", 25),
    Of<&XML_RA_Enclosure_Info>("Enclosure_Info", 41),
    Of<&XML_RA_ENC_ElementInfo>("ENC_ElementInfo", 5),
    Of<&XML_RA_ENC_ElementConfig>("ENC_ElementConfig", 7),
    Of<&XML_RA_HD_Info>("HD_Info", 102),
    Of<&XML_RA_HD_BGA_Status>("HD_BGA_Status", 57),
    Of<&XML_RA_HD_MBR_Info>("HD_MBR_Info", 1),
    Of<&XML_RA_HD_FreeSpaceInfo>("HD_FreeSpaceInfo", 4),
    Of<&XML_RA_HD_Block_Info>("HD_Block_Info", 5),
    Of<&XML_RA_Exp_Info>("Exp_Info", 37),
    Of<&XML_RA_Block_Info>("Block_Info", 7),
    Of<&XML_RA_LD_Info>("LD_Info", 18),
    Of<&XML_RA_DG_Info>("DG_Info", 37),
    Of<&XML_RA_Create_DG_Param>("Create_DG_Param", 430),
    Of<&XML_RA_DG_Size>("DG_Size", 424),
};

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

// The text of depth 1 as it is at another depth.
std::string AtDepth(const std::string& text, int depth) {
    std::string moved;
    for (const std::string& line : Lines(text)) {
        moved += std::string(static_cast<std::size_t>(2 * depth), ' ') + line.substr(2) + '\n';
    }
    return moved;
}

class RecordWriter : public testing::TestWithParam<Writer> {
protected:
    RecordWriter() {
        XMLWR_Init(doc);
        doc->Depth = 1;
    }
    std::string Expected() const {
        return GoldenText("records/" + std::string(GetParam().name) + ".txt");
    }
    Document doc;
};

TEST_P(RecordWriter, WritesRecordsOfZerosOfOnesAndOfDistinctBytes) {
    EXPECT_EQ(1, GetParam().write_three(doc));
    EXPECT_EQ(Expected(), doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

TEST_P(RecordWriter, WritesTheSameAtEveryDepth) {
    for (const int depth : {0, 2, 3, 7}) {
        XMLWR_Init(doc);
        doc->Depth = static_cast<std::int16_t>(depth);
        EXPECT_EQ(1, GetParam().write_three(doc));
        EXPECT_EQ(AtDepth(Expected(), depth), doc.Text());
        EXPECT_EQ(depth, doc->Depth);
    }
}

TEST_P(RecordWriter, ShowsEachByteOfTheRecordThatIsNotLeftOut) {
    const auto text_without = [&](std::size_t byte) {
        XMLWR_Init(doc);
        doc->Depth = 1;
        GetParam().write_without(doc, byte);
        return std::string(doc.Text());
    };
    const std::string whole = text_without(GetParam().bytes);
    std::size_t unshown = 0;
    for (std::size_t byte = 0; byte < GetParam().bytes; ++byte) {
        unshown += text_without(byte) == whole;
    }
    EXPECT_EQ(GetParam().unshown, unshown);
}

TEST_P(RecordWriter, WritesNothingForNoRecord) {
    EXPECT_EQ(1, GetParam().write_none(doc));
    EXPECT_EQ("", doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

// ---- at the document's end ---------------------------------------------------------------------

// The pieces that the lines are written in; each is written whole or not at all.
std::vector<std::string> Pieces(const std::string& text) {
    std::vector<std::string> pieces;
    for (const std::string& line : Lines(text)) {
        std::size_t at = 0;
        for (; line.compare(at, 2, "  ") == 0; at += 2) pieces.push_back("  ");
        if (line[at] != '<') {  // the items of an array, each with the blank behind it
            while (at < line.size()) {
                const std::size_t end = std::min(line.find(' ', at), line.size() - 1) + 1;
                pieces.push_back(line.substr(at, end - at));
                at = end;
            }
            pieces.push_back("\n");
            continue;
        }
        if (line[at + 1] == '/') {
            pieces.push_back(line.substr(at) + "\n");
            continue;
        }
        const std::size_t blank = line.find(' ', at);
        const std::size_t open = line.find('>', at);
        pieces.push_back(line.substr(at, blank - at));
        pieces.push_back(line.substr(blank, open - blank));
        pieces.push_back(">");
        if (open + 1 == line.size()) {
            pieces.push_back("\n");
        } else {
            const std::size_t end = line.rfind("</");
            pieces.push_back(line.substr(open + 1, end - open - 1));
            pieces.push_back(line.substr(end) + "\n");
        }
    }
    return pieces;
}

// What is left of them in a document that has room for so many bytes.
std::string ThatFit(const std::vector<std::string>& pieces, std::size_t room) {
    std::string text;
    for (const std::string& piece : pieces) {
        if (text.size() + piece.size() <= room) text += piece;
    }
    return text;
}

TEST_P(RecordWriter, DropsTheSinglePiecesThatDoNotFit) {
    const std::string three = Expected();
    const std::string distinct = three.substr(three.rfind("  <Record "));
    for (const int depth : {1, 3}) {
        const std::string whole = AtDepth(distinct, depth);
        const std::vector<std::string> pieces = Pieces(whole);
        ASSERT_EQ(whole, ThatFit(pieces, whole.size()));
        for (std::uint32_t room = 0; room <= whole.size(); ++room) {
            doc.LeaveRoom(room);
            doc->Depth = static_cast<std::int16_t>(depth);
            GetParam().write_distinct(doc);
            ASSERT_EQ(ThatFit(pieces, room), doc.Text(524287 - room)) << "room " << room;
            ASSERT_EQ(depth, doc->Depth);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, RecordWriter, testing::ValuesIn(kWriters),
                         [](const testing::TestParamInfo<Writer>& at) {
                             return std::string(at.param.name);
                         });

// ---- disks -------------------------------------------------------------------------------------

struct DiskType {
    int hd_type;
    int connection_type;
    int device_type;
    int can_logical_used;
};

class Disk : public testing::Test {
protected:
    Disk() {
        XMLWR_Init(doc);
        doc->Depth = 1;
    }

    // The value of the one element of this name behind the link.
    std::string Written(const std::string& element) {
        XMLWR_Init(doc);
        doc->Depth = 1;
        XML_RA_HD_Info(doc, "HD_Info", &disk, 1);
        const std::string_view text = doc.Text(0);
        const std::size_t name = text.rfind("<" + element + " ");
        const std::size_t from = text.find('>', name) + 1;
        const std::size_t end = text.find("</" + element + ">", from);
        return std::string(text.substr(from, end - from));
    }

    template <std::size_t n>
    static void Set(char (&field)[n], const std::string& text) {
        std::memset(field, 0, n);
        std::memcpy(field, text.data(), std::min(n, text.size()));
    }

    HD_Info disk{};
    Document doc;
};

TEST_F(Disk, IsCompletedFromItsHDType) {
    constexpr DiskType kTypes[] = {
        {0x00, 0, 0, 1},
        // The connection: the lowest of the bits 0 to 2 decides.
        {0x01, 5, 0, 1},
        {0x02, 9, 0, 1},
        {0x04, 6, 0, 1},
        {0x03, 5, 0, 1},
        {0x05, 5, 0, 1},
        {0x06, 9, 0, 1},
        {0x07, 5, 0, 1},
        // The device: bit 4 before bit 5 before bit 3.
        {0x10, 0, 1, 0},
        {0x20, 0, 13, 0},
        {0x08, 0, 5, 0},
        {0x30, 0, 1, 0},
        {0x18, 0, 1, 0},
        {0x28, 0, 13, 0},
        {0x38, 0, 1, 0},
        // Both, and bits that say nothing.
        {0x0C, 6, 5, 0},
        {0x3F, 5, 1, 0},
        {0xC0, 0, 0, 1},
        {0xFF, 5, 1, 0},
    };
    for (const DiskType& type : kTypes) {
        SCOPED_TRACE(type.hd_type);
        disk = {};
        disk.HDType = static_cast<HX_U8>(type.hd_type);
        EXPECT_EQ(std::to_string(type.hd_type), Written("HDType"));
        EXPECT_EQ(std::to_string(type.connection_type), Written("ConnectionType"));
        EXPECT_EQ(std::to_string(type.device_type), Written("DeviceType"));
        EXPECT_EQ(std::to_string(type.can_logical_used), Written("CanLogicalUsed"));
    }
}

TEST_F(Disk, KeepsWhatItSaysItself) {
    disk.HDType = 0xFF;
    disk.ConnectionType = 0x80;
    disk.DeviceType = 14;
    EXPECT_EQ("128", Written("ConnectionType"));
    EXPECT_EQ("14", Written("DeviceType"));
    EXPECT_EQ("0", Written("CanLogicalUsed"));
}

TEST_F(Disk, IsCompletedInTheCallersRecord) {
    disk.HDType = 0x12;
    XML_RA_HD_Info(doc, "HD_Info", &disk, 1);
    EXPECT_EQ(9, disk.ConnectionType);
    EXPECT_EQ(1, disk.DeviceType);
}

struct ModelCase {
    const char* name;
    std::string field;
    const char* shown;
};
void PrintTo(const ModelCase& each, std::ostream* out) { *out << each.name; }

const ModelCase kModels[] = {
    {"WithoutTheMaker", "KESTREL KR-2000 SATA   ", "KR-2000 SATA"},
    {"OfOneWordWhole", "KR-2000   ", "KR-2000"},
    {"WithoutTheFirstOfItsBlanks", "  KR-2000  ", " KR-2000"},
    {"ToTheLastCharacterOfItsField", "K 34567890123456789012345678901234567890XXXX",
     "34567890123456789012345678901234567890"},
    {"OfBlanksAsEmpty", std::string(40, ' '), ""},
};

class DiskModel : public Disk, public testing::WithParamInterface<ModelCase> {};

TEST_P(DiskModel, IsShown) {
    Set(disk.Model, GetParam().field);
    EXPECT_EQ(std::string("<![CDATA[") + GetParam().shown + "]]>", Written("Model"));
}

INSTANTIATE_TEST_SUITE_P(Models, DiskModel, testing::ValuesIn(kModels),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(Disk, ShowsSerialNumberAndFirmwareWithoutTrailingBlanksOnly) {
    Set(disk.SerialNo, "  S 1 2           ");
    Set(disk.FWVersion, " 0 1    ");
    EXPECT_EQ("<![CDATA[  S 1 2]]>", Written("SerialNo"));
    EXPECT_EQ("<![CDATA[ 0 1]]>", Written("FWVersion"));
}

TEST_F(Disk, ShowsNothingBehindANul) {
    Set(disk.SerialNo, std::string("S1  \0hidden", 11));
    EXPECT_EQ("<![CDATA[S1]]>", Written("SerialNo"));
}

// ---- users -------------------------------------------------------------------------------------

class UserValue : public testing::Test {
protected:
    UserValue() { XMLWR_Init(doc); }
    Document doc;
};

TEST_F(UserValue, OfANameClosesTheElementThatItIsIn) {
    VX_GetUserName user{};
    std::strcpy(user.UserName, "root");
    std::strcpy(user.DomaimName, "<kestrel>");
    doc->Depth = 1;
    EXPECT_EQ(1, XML_RA_UserName_Value(doc, "HX_GetUserName", &user, 1));
    EXPECT_EQ(
        "  <UserName type=\"string\">root</UserName>\n"
        "  <DomainName type=\"string\"><kestrel></DomainName>\n"
        "</HX_GetUserName>\n",
        doc.Text());
    EXPECT_EQ(0, doc->Depth);
}

TEST_F(UserValue, OfANameThatIsNotTerminatedEndsWithItsField) {
    VX_GetUserName user;
    std::memset(&user, 'x', sizeof user);
    doc->Depth = 1;
    XML_RA_UserName_Value(doc, "F", &user, 1);
    EXPECT_EQ("  <UserName type=\"string\">" + std::string(128, 'x') +
                  "</UserName>\n"
                  "  <DomainName type=\"string\">" +
                  std::string(128, 'x') +
                  "</DomainName>\n"
                  "</F>\n",
              doc.Text());
}

TEST_F(UserValue, OfAGroupIsItsName) {
    const struct {
        HX_U32 code;
        const char* name;
    } groups[] = {{1, "Administrator"}, {2, "ValidUser"},   {3, "UnknownUser"},
                  {0, "UnknownUser"},   {4, "UnknownUser"}, {0xFFFFFFFF, "UnknownUser"}};
    for (const auto& [code, name] : groups) {
        XMLWR_Init(doc);
        doc->Depth = 1;
        const auto group = static_cast<UserGroup>(code);
        EXPECT_EQ(1, XML_RA_UserGroup_Value(doc, "F", &group, 1));
        EXPECT_EQ("  <UserGroup type=\"string\">" + std::string(name) +
                      "</UserGroup>\n"
                      "</F>\n",
                  doc.Text());
        EXPECT_EQ(0, doc->Depth);
    }
}

TEST_F(UserValue, ClosesAnElementForEachValue) {
    const UserGroup groups[] = {ValidUser, AdminUser};
    doc->Depth = 2;
    XML_RA_UserGroup_Value(doc, "F", groups, 2);
    EXPECT_EQ(
        "    <UserGroup type=\"string\">ValidUser</UserGroup>\n"
        "  </F>\n"
        "  <UserGroup type=\"string\">Administrator</UserGroup>\n"
        "</F>\n",
        doc.Text());
}

TEST_F(UserValue, OfNobodyClosesNothing) {
    doc->Depth = 1;
    EXPECT_EQ(1, XML_RA_UserName_Value(doc, "F", nullptr, 0));
    EXPECT_EQ(1, XML_RA_UserGroup_Value(doc, "F", nullptr, 0));
    EXPECT_EQ("", doc.Text());
    EXPECT_EQ(1, doc->Depth);
}

// ---- paged replies -----------------------------------------------------------------------------

constexpr char kEmptyReply[] =
    "  <RequestHeader type=\"struct RequestHeader\">\n"
    "    <version type=\"U8\">1</version>\n"
    "    <requestType type=\"U8\">2</requestType>\n"
    "    <startingIndexOrId type=\"U16\">3</startingIndexOrId>\n"
    "    <numRequested type=\"U16\">4</numRequested>\n"
    "    <numReturned type=\"U16\">0</numReturned>\n"
    "    <nextStartingIndex type=\"U16\">65535</nextStartingIndex>\n"
    "  </RequestHeader>\n";

using ReplyWriter = int (*)(XMLWR_Doc*, const char*, RequestHeader*, HX_U32);
constexpr ReplyWriter kReplyWriters[] = {
    XML_RA_PM_Info_Request,
    XML_RA_HD_Config_Request,
    XML_RA_HD_Smart_Status_Request,
    XML_RA_HD_RAID_Status_Request,
    XML_RA_LD_Status_Request,
    XML_RA_LD_Config_Request,
    XML_RA_DG_Config_Request,
    XML_RA_HD_Info_Request,
    XML_RA_HD_BGA_Status_Request,
    XML_RA_HD_FreeSpaceInfo_Request,
    XML_RA_HD_Block_Info_Request,
    XML_RA_Exp_Info_Request,
    XML_RA_Block_Info_Request,
    XML_RA_LD_Info_Request,
    XML_RA_ENC_Enclosure_Info_Request,
    XML_RA_DG_Info_Request,
};

class PagedReply : public testing::Test {
protected:
    PagedReply() {
        XMLWR_Init(doc);
        doc->Depth = 1;
    }
    Document doc;
};

TEST_F(PagedReply, WithoutItemsIsItsHeaderAlone) {
    for (const ReplyWriter write : kReplyWriters) {
        RequestHeader header{1, 2, 3, 4, 0, 65535, {9, 9, 9, 9, 9, 9}};
        XMLWR_Init(doc);
        doc->Depth = 1;
        EXPECT_EQ(1, write(doc, "NotWritten", &header, 1));
        EXPECT_EQ(kEmptyReply, doc.Text());
        EXPECT_EQ(1, doc->Depth);
    }
}

TEST_F(PagedReply, OfNoneIsNothing) {
    for (const ReplyWriter write : kReplyWriters) {
        EXPECT_EQ(1, write(doc, "NotWritten", nullptr, 0));
        EXPECT_EQ("", doc.Text());
    }
}

TEST_F(PagedReply, FollowsTheItemsOfTheOneBefore) {
    struct {
        RequestHeader first;
        HD_SMART_Status items[2];
        RequestHeader second;
        HD_SMART_Status more[1];
    } replies{{0, 1, 0, 2, 2, 2, {}},
              {{1, 0, 10, {}}, {0, 0, 20, {}}},
              {0, 1, 2, 1, 1, 65535, {}},
              {{1, 0, 30, {}}}};
    EXPECT_EQ(1, XML_RA_HD_Smart_Status_Request(doc, "NotWritten", &replies.first, 2));
    EXPECT_EQ(
        "  <RequestHeader type=\"struct RequestHeader\">\n"
        "    <version type=\"U8\">0</version>\n"
        "    <requestType type=\"U8\">1</requestType>\n"
        "    <startingIndexOrId type=\"U16\">0</startingIndexOrId>\n"
        "    <numRequested type=\"U16\">2</numRequested>\n"
        "    <numReturned type=\"U16\">2</numReturned>\n"
        "    <nextStartingIndex type=\"U16\">2</nextStartingIndex>\n"
        "  </RequestHeader>\n"
        "  <HD_SMART_Status type=\"struct HD_SMART_Status\">\n"
        "    <SmartThresholdExceeded type=\"BOOL\">1</SmartThresholdExceeded>\n"
        "    <HDID type=\"U16\">10</HDID>\n"
        "  </HD_SMART_Status>\n"
        "  <HD_SMART_Status type=\"struct HD_SMART_Status\">\n"
        "    <SmartThresholdExceeded type=\"BOOL\">0</SmartThresholdExceeded>\n"
        "    <HDID type=\"U16\">20</HDID>\n"
        "  </HD_SMART_Status>\n"
        "  <RequestHeader type=\"struct RequestHeader\">\n"
        "    <version type=\"U8\">0</version>\n"
        "    <requestType type=\"U8\">1</requestType>\n"
        "    <startingIndexOrId type=\"U16\">2</startingIndexOrId>\n"
        "    <numRequested type=\"U16\">1</numRequested>\n"
        "    <numReturned type=\"U16\">1</numReturned>\n"
        "    <nextStartingIndex type=\"U16\">65535</nextStartingIndex>\n"
        "  </RequestHeader>\n"
        "  <HD_SMART_Status type=\"struct HD_SMART_Status\">\n"
        "    <SmartThresholdExceeded type=\"BOOL\">1</SmartThresholdExceeded>\n"
        "    <HDID type=\"U16\">30</HDID>\n"
        "  </HD_SMART_Status>\n",
        doc.Text());
}

}  // namespace
