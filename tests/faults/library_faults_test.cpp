// The library under faults: seventeen things that callers do with it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "fault_injector.h"
#include "fault_sweep.h"
#include "hxfake.h"
#include "support/temporary_root.h"
#include "vexorapi.h"
#include "vexorapi_version.h"
#include "vxevent.h"
#include "xml_rapi_flash.h"

namespace {

constexpr char kEventFile[] = "/opt/kestrel/raid/db/vx_hx_raid.ev";
constexpr char kSeqNoFile[] = "/opt/kestrel/raid/db/vx_hx_seqnum.ev";

const TemporaryRoot* root = nullptr;  // of the test that runs
const TemporaryRoot& Root() { return *root; }

// ---- A request ----

std::string command;
int returned;
std::array<char, VEXORAPI_MAX_RESULT> result;

void SendCommand() { returned = vexorApi(command.c_str(), result.data(), VEXORAPI_MAX_RESULT); }

std::string Reply() { return std::to_string(returned) + " " + result.data(); }

// Nothing of an earlier run stays: neither files nor what the controller was told to answer.
void Clean(const std::string& next_command) {
    for (const char* const name : {"/vexorapi.ini", kEventFile, kSeqNoFile, "/image", "/log",
                                   "/hxraidver.dat", "/var/log/hxraidsvc.log"}) {
        std::filesystem::remove(Root().Path(name));
    }
    std::filesystem::create_directories(Root().Path("/opt/kestrel/raid/db"));
    std::filesystem::create_directories(Root().Path("/var/log"));
    hxfake::Reset();
    hxfake::NoteCalls(false);
    VX_EvInit();
    command = next_command;
    returned = -1;
    std::strcpy(result.data(), "untouched");
}

std::string Function(const std::string& name, const std::string& children) {
    return "<" + name + " type=\"function\">" + children + "</" + name + ">";
}

// Without memory a request is refused, untouched, or answered with the empty result. Nothing else
// that fails may change an answer of a controller.
bool IsRefusal(int kind, const std::string&, const std::string& seen) {
    if (kind != kFaultAllocation) return false;
    return seen == "0 untouched" || seen == "1 " || seen == "0 ";
}

// The function itself had no memory: it says so with a code.
bool IsRefusalOrCode(int kind, const std::string& usual, const std::string& seen) {
    return IsRefusal(kind, usual, seen) ||
           (kind == kFaultAllocation && seen.find("<RetVal type=\"U8\">0<") == std::string::npos &&
            seen.find("<RetVal type=\"U8\">") != std::string::npos);
}

// ---- The scenarios ----

void PrepareVersion() { Clean(Function("HX_API_Version", "")); }

void PrepareCreation() {
    Clean(Function("HX_LD_Create",
                   "<AdapterID>0</AdapterID><RaidMode>5</RaidMode><HDIDs>1 2 3</HDIDs>"
                   "<Name>data</Name><Size>1000</Size>"));
    hxfake::On<&HX_LD_Create>().Always([](HX_U8, Create_LD_Param*) { return HX_U8{0}; });
}

void PrepareDisks() {
    Clean(Function("HX_PD_GetHDInfo", "<AdapterID>0</AdapterID><numRequested>300</numRequested>"));
    static std::vector<HD_Info> disks(300);
    hxfake::On<&HX_PD_GetHDInfo_Ext>().Always(hxfake::List(disks));
    hxfake::On<&HX_PD_GetHDInfo>().Always(hxfake::List(disks));
}

void PrepareAllAdapters() {
    Clean(Function("HX_Adapter_GetInfo", "<AdapterID>255</AdapterID>"));
    hxfake::On<&HX_Adapter_GetCount>().Always([] { return HX_U8{4}; });
    hxfake::On<&HX_Adapter_GetInfo>().Always([](HX_U8 adapter, HX_U8* count, Adapter_Info* info) {
        *count = 1;
        *info = {};
        info->PortCount = adapter;
        return HX_U8{0};
    });
}

void PrepareQuickCreation() {
    Clean(Function("HX_LD_QuickCreate", "<AdapterID>0</AdapterID>"));
    static std::vector<HD_Info> disks(3);
    static std::vector<Block_Info> blocks(3);
    for (HX_U16 id = 0; id < 3; ++id) {
        disks[id].Link.Self.DevID = id;
        disks[id].Status = 1;
        disks[id].Size.value = 1000000;
        blocks[id].ID = id;
        blocks[id].HDID = id;
        blocks[id].LDID = 255;
        blocks[id].Size.value = 1000000;
    }
    hxfake::On<&HX_PD_GetHDInfo_Ext>().Always(hxfake::List(disks));
    hxfake::On<&HX_PD_GetHDInfo>().Always(hxfake::List(disks));
    hxfake::On<&HX_BLK_GetInfo>().Always(hxfake::List(blocks));
}

void PrepareRemapTable() {
    Clean(Function("HX_PD_GetRCT", "<AdapterID>0</AdapterID><HD_ID>1</HD_ID>"));
    hxfake::On<&HX_PD_RCT_GetCount>().Always([](HX_U8, HX_U16, HX_U32* count) {
        *count = 500;
        return HX_U8{0};
    });
}

void PrepareUsers(const std::string& next_command) {
    Clean(next_command);
    const std::string hash = "$1$salt$ez2vlPGdaLYkJam5pWs/Y1";  // of "secret"
    Root().Write("/etc/passwd", "root:x:0:0::/:/bin/sh\nanna:x:9:9::/:/bin/sh\n");
    Root().Write("/etc/shadow", "root:" + hash + ":1::::::\nanna:" + hash + ":1::::::\n");
    Root().Write("/etc/group", "root:x:0:anna\n");
}
void PrepareLogon() {
    PrepareUsers(Function("HX_LogonUser",
                          "<lpszUsername>anna</lpszUsername><lpszPassword>secret</lpszPassword>"));
}
void PrepareGroup() {
    PrepareUsers(Function("HX_GetUserGroup", "<lpszUsername>anna</lpszUsername>"));
}

// Whatever fails, nobody is let in who was not before; a group that was seen is the right one.
bool IsNoLogon(int kind, const std::string& usual, const std::string& seen) {
    return IsRefusal(kind, usual, seen) ||
           seen.find("<RetVal type=\"U8\">0<") == std::string::npos ||
           seen.find("UnknownUser") != std::string::npos;
}

void PrepareImageVersion() {
    const std::string path = Root().Path("/image");
    Clean(Function("HX_BIOS_Version", "<filepath>" + path + "</filepath>"));
    Root().Write("/image", std::string(64, '\2'));
}
bool IsFailedFile(int kind, const std::string& usual, const std::string& seen) {
    return IsRefusal(kind, usual, seen) || seen.find("<RetVal type=\"U8\">1<") != std::string::npos;
}

constexpr std::size_t kImage = 70000;

void PrepareSave() {
    Clean("");
    hxfake::On<&HX_Flash_Bin>().Always([](HX_U8, HX_U8, HX_U8, Flash_Data* piece) {
        const std::size_t from = std::size_t{piece->PageNum} * sizeof piece->Data;
        piece->DataLength =
            static_cast<HX_U32>(std::min<std::size_t>(sizeof piece->Data, kImage - from));
        std::memset(piece->Data, 'a' + piece->PageNum, piece->DataLength);
        piece->isLastPage = from + piece->DataLength == kImage;
        return HX_U8{0};
    });
}
void Save() {
    static std::string path = Root().Path("/image");
    path.resize(kFilePathSize);
    returned = HX_Flash_Option(0, HX_FLASH_READ, 1, reinterpret_cast<HX_U8*>(path.data()));
}
std::string SavedImage() { return std::to_string(returned) + " " + Root().Read("/image"); }
// The code is the controller's: a write that failed is not reported by the interface. Callers look
// at the file's length. What stands in it are bytes of the image, or nothing.
bool IsCutImage(int kind, const std::string& usual, const std::string& seen) {
    if (seen.starts_with("1 ")) return seen.size() == 2;
    return kind == kFaultWrite && seen.size() < usual.size();
}

std::size_t sent;
void PrepareSending() {
    Clean("");
    Root().Write("/image", std::string(kImage, 'i'));
    sent = 0;
    hxfake::On<&HX_Flash_Bin>().Always([](HX_U8, HX_U8, HX_U8, Flash_Data* piece) {
        sent += piece->DataLength;
        if (piece->isLastPage != 0) sent += 1000000;
        return HX_U8{0};
    });
}
void SendImage() {
    static std::string path = Root().Path("/image");
    path.resize(kFilePathSize);
    returned = HX_Flash_Option(0, HX_FLASH_WRITE, 1, reinterpret_cast<HX_U8*>(path.data()));
}
std::string SentImage() { return std::to_string(returned) + " " + std::to_string(sent); }
// Never is a part of an image marked as its end.
bool IsNotSent(int, const std::string&, const std::string& seen) {
    return seen.starts_with("1 ") && seen.size() < 8;
}

// Its first parameter is the number with digits that an answer has nowhere else.
Event MarkedEvent(HX_U32 number) {
    Event event{};
    event.Class = 2;
    event.Code = 1;
    event.SequenceNo = number;
    event.Params[0] = 10000000 + number;
    return event;
}

HX_U32 waiting_from, waiting_to;  // numbers of the controller's waiting events
void QueueEvents(HX_U32 first, HX_U32 count) {
    waiting_from = first;
    waiting_to = first + count;
    hxfake::On<&HX_EVT_GetEvent>().Always(
        [](HX_U8 adapter, HX_U8 most, HX_U8* count_of, Event* events) {
            if (adapter != 0) return HX_U8{0};
            for (; *count_of < most && waiting_from < waiting_to; ++*count_of) {
                *events++ = MarkedEvent(waiting_from++);
            }
            return HX_U8{0};
        });
}
void CheckIn() { VX_EvFile_CheckIn(1); }

void PrepareStore() {
    QueueEvents(1, 120);
    CheckIn();
}

void PrepareEvents() {
    Clean(Function("VX_HX_EVT_GetEvents", "<n>20</n><s>4294967295</s><e>4294967295</e>"));
    PrepareStore();
}
// A store that cannot be read is answered with the numbers that were asked for and with zeros, and
// so are slots that cannot be; every other event is the one of its number.
bool IsUnreadStore(int kind, const std::string& usual, const std::string& seen) {
    if (IsRefusal(kind, usual, seen)) return true;
    // What MarkedEvent puts into an event's first parameter.
    for (std::size_t at = 0; (at = seen.find("10000", at)) != std::string::npos; at += 8) {
        if (usual.find(seen.substr(at, 8)) == std::string::npos) return false;
    }
    return kind == kFaultOpen || kind == kFaultRead;
}

void PrepareCheckIn() {
    Clean("");
    PrepareStore();
    QueueEvents(121, 60);
}
// The numbers of the events in the store, as its readers get them.
std::string StoredNumbers() {
    std::vector<Event> events(300);
    HX_U32 n = 300;
    HX_U32 s = 0;
    HX_U32 e = 0;
    VX_EvGet(&n, &s, &e, events.data());
    std::string numbers;
    for (HX_U32 i = 0; i < std::min<HX_U32>(n, 300); ++i) {
        numbers += std::to_string(events[i].SequenceNo) + " ";
    }
    return numbers;
}
// Events that could not be stored are lost, in whole polls; none is there twice, none is out of
// order. A write that failed leaves zeros, or what stood there before.
bool AreOrdered(const std::string& numbers, std::size_t newest) {
    std::istringstream in(numbers);
    std::size_t last = 0;
    for (std::size_t number = 0; in >> number;) {
        if (number == 0) continue;
        if (number <= last || number > newest) return false;
        last = number;
    }
    return true;
}
bool IsOrdered(int, const std::string&, const std::string& seen) { return AreOrdered(seen, 180); }

void PrepareReset() {
    Clean(Function("VX_HX_EVT_Reset", ""));
    PrepareStore();
}
// Either nothing has happened or the store is empty. A write that failed leaves some of it, as
// zeros where its slots are gone.
std::string ResetOutcome() { return Reply() + "\n" + StoredNumbers(); }
bool IsResetOrNot(int kind, const std::string& usual, const std::string& seen) {
    const bool answered = seen.substr(0, seen.find('\n')) == usual.substr(0, usual.find('\n'));
    const std::string numbers = seen.substr(seen.rfind('\n') + 1);
    const bool untouched = numbers.starts_with("1 2 3 ") && numbers.ends_with("119 120 ");
    const bool is_cut = (kind == kFaultRead || kind == kFaultWrite) && AreOrdered(numbers, 120);
    return (answered || IsRefusal(kind, usual, seen.substr(0, seen.rfind('\n')))) &&
           (numbers.empty() || untouched || is_cut);
}

void PrepareModules() {
    Clean(Function("VX_Module_GetInfo", ""));
    STORE_KEY(HXRAIDSVC, 9, 9, 9, 9);  // of an earlier reading
    Root().Write("/hxraidver.dat", "2.1.0.35\n");
}
// The usual answer with other numbers of the service, which stand last.
std::string WithService(std::string answer, const char* const (&numbers)[4]) {
    std::size_t at = answer.find("\">", answer.find("<hxraidsvc ")) + 2;
    for (const char* const number : numbers) {
        at = answer.find("\">", at) + 2;
        answer.replace(at, answer.find('<', at) - at, number);
    }
    return answer;
}
// A file that cannot be opened is one that is not there. One that cannot be read is empty: no field
// ends with a dot, so that the earlier numbers stay, and the build is 0.
bool IsBuiltInVersion(int kind, const std::string& usual, const std::string& seen) {
    return IsRefusal(kind, usual, seen) ||
           (kind == kFaultOpen && seen == WithService(usual, {"1", "0", "0", "7"})) ||
           (kind == kFaultRead && seen == WithService(usual, {"9", "9", "9", "0"}));
}

void PrepareLogged() {
    Clean(Function("HX_Adapter_GetCount", ""));
    hxfake::On<&HX_Adapter_GetCount>().Always([] { return HX_U8{2}; });
    Root().Write("/vexorapi.ini",
                 "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"1\" OutLogEnable=\"1\" "
                 "Filename=\"" +
                     Root().Path("/log") + "\"/></c>");
}
// The answer does not depend on the log, in which whole messages may be missing.
std::string LoggedOutcome() { return Reply(); }

int logged;
void PrepareServiceLog() { Clean(""); }
void LogLine() { logged = LogPrintf("a message of %d\n", 7); }
std::string LoggedLine() {
    const std::string line = Root().Read("/var/log/hxraidsvc.log");
    return std::to_string(logged) + " " + (line.size() < 24 ? line : line.substr(24));
}
bool IsDroppedLine(int kind, const std::string&, const std::string& seen) {
    const bool told =
        seen.starts_with("15 ") || (seen.starts_with("0 ") && kind == kFaultAllocation);
    return told && (kind != kFaultRead);
}

constexpr FaultScenario kScenarios[] = {
    {"AVersion", "HX_API_Version", PrepareVersion, SendCommand, Reply, IsRefusal},
    {"ACreation", ">0</RetVal>", PrepareCreation, SendCommand, Reply, IsRefusal},
    {"AListOf300Disks", ">300</numReturned>", PrepareDisks, SendCommand, Reply, IsRefusalOrCode},
    {"AllAdapters", ">4</Count>", PrepareAllAdapters, SendCommand, Reply, IsRefusal},
    {"AQuickCreation", ">0</RetVal>", PrepareQuickCreation, SendCommand, Reply, IsRefusalOrCode},
    {"ARemapTable", ">500</Count>", PrepareRemapTable, SendCommand, Reply, IsRefusalOrCode},
    {"ALogon", "Administrator", PrepareLogon, SendCommand, Reply, IsNoLogon},
    {"AUserGroup", "Administrator", PrepareGroup, SendCommand, Reply, IsNoLogon},
    {"AnImagesVersion", ">514<", PrepareImageVersion, SendCommand, Reply, IsFailedFile},
    {"SavingAnImage", "0 aaa", PrepareSave, Save, SavedImage, IsCutImage},
    {"SendingAnImage", "0 1070000", PrepareSending, SendImage, SentImage, IsNotSent},
    {"AQueryOfEvents", "<e type=\"U32\">119</e>", PrepareEvents, SendCommand, Reply, IsUnreadStore},
    {"ACheckIn", "1 2 3 4 ", PrepareCheckIn, CheckIn, StoredNumbers, IsOrdered},
    {"AReset", "VX_HX_EVT_Reset", PrepareReset, SendCommand, ResetOutcome, IsResetOrNot},
    {"ModuleVersions", ">35</Build>", PrepareModules, SendCommand, Reply, IsBuiltInVersion},
    {"ALoggedRequest", "HX_Adapter_GetCount", PrepareLogged, SendCommand, LoggedOutcome, IsRefusal},
    {"AServiceLogsLine", "15 : a message of 7", PrepareServiceLog, LogLine, LoggedLine,
     IsDroppedLine},
};

class LibraryUnderFaults : public testing::TestWithParam<FaultScenario> {};

TEST_P(LibraryUnderFaults, AnswersAsDocumented) {
    const TemporaryRoot folder;
    root = &folder;
    vexorApiInit();
    ExpectDocumentedUnderFaults(GetParam());
    root = nullptr;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, LibraryUnderFaults, testing::ValuesIn(kScenarios),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
