// Pieces of work for valgrind to count the instructions of: collection is switched on within
// Counted alone. Names the work on the command line, prints the bytes that it has written (of a
// command: read; of event texts: how many there are).
#include <array>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

#include "bench.h"
#include "vexorapi.h"
#include "vxevent_yardsticks.h"
#include "written.h"
#include "xml_rapi_records.h"
#include "yardsticks.h"

namespace {

using Work = std::function<std::size_t()>;

struct Entry {
    std::string name;
    Work work;
};

// Requests ---------------------------------------------------------------------------------------

std::array<char, 524288> result;

Work Served(std::string command) {
    return [command = std::move(command)] {
        vexorApi(command.c_str(), result.data(), result.size());
        return command.size();
    };
}

Work ParsedBare(std::string command) {
    return [command = std::move(command)] {
        yardstick::BareExpat(command);
        return command.size();
    };
}

// Event texts ------------------------------------------------------------------------------------

Work Rendered(std::vector<Event> events) {
    return [events = std::move(events)] {
        static std::array<char, kEventTextSize> text;  // not cleared for each work
        for (const Event& event : events) VX_HX_EVT_Sprintf(&event, text.data());
        return events.size();
    };
}

// Records ----------------------------------------------------------------------------------------

template <auto writer, class R>
Work Written(std::vector<R> records) {
    const std::shared_ptr<XMLWR_Doc> doc = std::make_shared<XMLWR_Doc>();
    return [doc, records = std::move(records)]() mutable {
        const auto count = static_cast<unsigned>(records.size());
        return bench::Written<writer>(*doc, "Element", records.data(), count).size();
    };
}

// Eight records: with all bytes zero; with short numbers and texts, as most are; and with no two
// bytes of a record alike, so that numbers are as long as their width allows and texts fill their
// fields.
template <auto writer, class R>
void AddRecord(std::vector<Entry>& entries, const std::string& name) {
    const auto add = [&](const char* filling, const std::array<HX_U8, sizeof(R)>& bytes) {
        std::vector<R> records(8);
        for (R& record : records) std::memcpy(&record, bytes.data(), sizeof record);
        entries.push_back({name + filling, Written<writer>(std::move(records))});
    };
    std::array<HX_U8, sizeof(R)> bytes{};
    add("/zeros", bytes);
    for (std::size_t i = 0; i < sizeof(R); i += 4) bytes[i] = 7;
    add("/small", bytes);
    HX_U8 next = 0;
    for (HX_U8& byte : bytes) byte = ++next == 0 ? ++next : next;
    add("/distinct", bytes);
}

std::vector<Entry> Entries() {
    std::vector<Entry> all{
        {"small_request/library", Served(std::string(bench::kSmallRequest))},
        {"small_request/bare_expat", ParsedBare(std::string(bench::kSmallRequest))},
        {"command/library", Served(bench::LongCommand(10000))},
        {"command/bare_expat", ParsedBare(bench::LongCommand(10000))},
        {"disk_list/library", Served(bench::DiskListCommand(100))},
        {"cut_disk_list/library", Served(bench::DiskListCommand(400))},
        {"adapter_list/library", Served("<HX_Adapter_GetInfo type=\"function\">"
                                        "<AdapterID>255</AdapterID></HX_Adapter_GetInfo>")},
        {"virtual_disk/library", Served("<HX_LD_GetTargetLDInfo type=\"function\">"
                                        "<AdapterID>0</AdapterID><LD_ID>1</LD_ID>"
                                        "</HX_LD_GetTargetLDInfo>")},
        {"adapter/library", Written<XML_RA_Adapter_Info>(std::vector{bench::SampleAdapter()})},
        {"disks/library", Written<XML_RA_HD_Info>(bench::SampleDisks(128))},
        {"groups/library", Written<XML_RA_DG_Info>(bench::SampleDiskGroups(64))},
        {"event_text/library", Rendered(yardstick::SampleEvents(1, 64))},
    };
    AddRecord<XML_RA_RequestHeader_Entity_Info, RequestHeader>(all, "record/RequestHeader");
    AddRecord<XML_RA_Link_Endpoint_Info, Link_Endpoint>(all, "record/Link_Endpoint");
    AddRecord<XML_RA_Link_Entity_Info, Link_Entity>(all, "record/Link_Entity");
    AddRecord<XML_RA_PM_Info, PM_Info>(all, "record/PM_Info");
    AddRecord<XML_RA_HD_Config, HD_Config>(all, "record/HD_Config");
    AddRecord<XML_RA_HD_SMART_Status, HD_SMART_Status>(all, "record/HD_SMART_Status");
    AddRecord<XML_RA_HD_RCT_Records, RCT_Record>(all, "record/RCT_Record");
    AddRecord<XML_RA_HD_RAID_Status, HD_RAID_Status>(all, "record/HD_RAID_Status");
    AddRecord<XML_RA_Create_LD_Param, Create_LD_Param>(all, "record/Create_LD_Param");
    AddRecord<XML_RA_LD_Status, LD_Status>(all, "record/LD_Status");
    AddRecord<XML_RA_LD_Config, LD_Config>(all, "record/LD_Config");
    AddRecord<XML_RA_Version_Info, Version_Info>(all, "record/Version_Info");
    AddRecord<XML_RA_Version_Info_CIM, Version_Info_CIM>(all, "record/Version_Info_CIM");
    AddRecord<XML_RA_Version_Info_BIOS, VX_BIOS_Version>(all, "record/VX_BIOS_Version");
    AddRecord<XML_RA_Adapter_Info, Adapter_Info>(all, "record/Adapter_Info");
    AddRecord<XML_RA_DG_Config, DG_Config>(all, "record/DG_Config");
    AddRecord<XML_RA_Adapter_Config_V2, Adapter_Config_V2>(all, "record/Adapter_Config_V2");
    AddRecord<XML_RA_BBU_GetInfo, BBU_Info>(all, "record/BBU_Info");
    AddRecord<XML_RA_Enclosure_Info, Enclosure_Info>(all, "record/Enclosure_Info");
    AddRecord<XML_RA_ENC_ElementInfo, EncElementType_Info>(all, "record/EncElementType_Info");
    AddRecord<XML_RA_ENC_ElementConfig, EncElement_Config>(all, "record/EncElement_Config");
    AddRecord<XML_RA_HD_Info, HD_Info>(all, "record/HD_Info");
    AddRecord<XML_RA_HD_BGA_Status, HD_BGA_Status>(all, "record/HD_BGA_Status");
    AddRecord<XML_RA_HD_MBR_Info, HD_MBR_Info>(all, "record/HD_MBR_Info");
    AddRecord<XML_RA_HD_FreeSpaceInfo, HD_FreeSpaceInfo>(all, "record/HD_FreeSpaceInfo");
    AddRecord<XML_RA_HD_Block_Info, HD_Block_Info>(all, "record/HD_Block_Info");
    AddRecord<XML_RA_Exp_Info, Exp_Info>(all, "record/Exp_Info");
    AddRecord<XML_RA_Block_Info, Block_Info>(all, "record/Block_Info");
    AddRecord<XML_RA_LD_Info, LD_Info>(all, "record/LD_Info");
    AddRecord<XML_RA_DG_Info, DG_Info>(all, "record/DG_Info");
    return all;
}

}  // namespace

extern "C" [[gnu::noinline]] std::size_t Counted(const Work& work) {
    const std::size_t bytes = work();
    benchmark::ClobberMemory();  // the call is no tail call: collection ends behind the work
    return bytes;
}

int main(int argc, char** argv) {
    bench::PrepareController();
    const std::vector<Entry> entries = Entries();
    for (const auto& [name, work] : entries) {
        if (argc != 2 || name != argv[1]) continue;
        // Twice, so that it is counted warm: the allocator settles at the second document.
        work();
        work();
        std::printf("%zu\n", Counted(work));
        return 0;
    }
    if (argc == 2 && std::strcmp(argv[1], "--list") == 0) {
        for (const Entry& entry : entries) std::printf("%s\n", entry.name.c_str());
        return 0;
    }
    std::fprintf(stderr, "usage: %s --list | WORK\n", argv[0]);
    return 2;
}
