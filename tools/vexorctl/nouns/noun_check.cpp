// vexorctl check: the health of everything, in one line and one exit code.
#include <algorithm>
#include <utility>

#include "codes/battery.h"
#include "codes/enclosure.h"
#include "codes/state.h"
#include "common/address.h"
#include "common/terminal_text.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/batteries.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/enclosures.h"
#include "model/exit_code.h"
#include "model/fault.h"
#include "model/virtual_disks.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

// As monitoring systems have them; they are this command's exit codes too.
enum Level : unsigned { kOk = 0, kWarning = 1, kCritical = 2, kUnknown = 3 };
constexpr hxcodes::Named kLevelNames[] = {
    {kOk, "ok"},
    {kWarning, "warning"},
    {kCritical, "critical"},
    {kUnknown, "unknown"},
};
constexpr std::string_view kLevelWords[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};

// What cannot be told is graver than nothing and less grave than a warning.
constexpr Level kBySeriousness[] = {kCritical, kWarning, kUnknown, kOk};

std::size_t RankOf(Level level) {
    return static_cast<std::size_t>(std::ranges::find(kBySeriousness, level) - kBySeriousness);
}

struct Finding {
    Level level;
    std::string address;
    std::string message;
};

using enum Kind;
using enum Place;

constexpr Column<Finding> kColumns[] = {
    {{"level", "LEVEL", kCode, kTable, "How grave it is"},
     [](const Finding& it) { return CodeCell(kLevelNames, it.level); }},
    {{"address", "ADDRESS", kText, kTable, "The object"},
     [](const Finding& it) { return TextCell(it.address); }},
    {{"message", "MESSAGE", kText, kTable, "What is wrong with it"},
     [](const Finding& it) { return TextCell(it.message); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

void CheckState(std::vector<Finding>& findings, const Address& address, std::uint64_t state) {
    const std::string_view name = hxcodes::NameOf(hxcodes::kStateNames, static_cast<HX_U32>(state));
    Level level = kUnknown;
    switch (state) {
        case hxcodes::State::kOptimal:
            return;
        case hxcodes::State::kPartiallyOptimal:
        case hxcodes::State::kRebuilding:
        case hxcodes::State::kForeign:
            level = kWarning;
            break;
        case hxcodes::State::kDegraded:
        case hxcodes::State::kOffline:
            level = kCritical;
            break;
        default:
            break;
    }
    findings.push_back({level, address.Text(),
                        name.empty() ? "state " + std::to_string(state) : std::string(name)});
}

void CheckDisks(std::vector<Finding>& findings, const std::vector<Disk>& disks) {
    for (const Disk& disk : disks) {
        const std::string state = DiskState(disk);
        const std::string address = disk.address.Text();
        if (state == "failed" || state == "missing") {
            findings.push_back({kCritical, address, state});
        } else if (state == "offline" || state == "foreign" || state == "rebuilding") {
            findings.push_back({kWarning, address, state});
        }
        if (disk.smart.Number("SmartThresholdExceeded") != 0) {
            findings.push_back({kWarning, address, "a SMART threshold is exceeded"});
        }
    }
}

void CheckBatteries(std::vector<Finding>& findings, const std::vector<Battery>& batteries) {
    struct Complaint {
        unsigned bit;
        Level level;
        const char* message;
    };
    constexpr Complaint kComplaints[] = {
        {hxcodes::BatteryBit::kNeedsReplacement, kCritical, "the battery needs to be replaced"},
        {hxcodes::BatteryBit::kTemperatureOutOfBounds, kWarning,
         "the battery's temperature is out of bounds"},
        {hxcodes::BatteryBit::kVoltageOutOfBounds, kWarning,
         "the battery's voltage is out of bounds"},
    };
    for (const Battery& battery : batteries) {
        const std::uint64_t status = battery.info.Number("status");
        for (const Complaint& complaint : kComplaints) {
            if ((status & complaint.bit) == 0) continue;
            findings.push_back({complaint.level, battery.address.Text(), complaint.message});
        }
        if ((status & hxcodes::BatteryBit::kPresent) != 0 &&
            (status & hxcodes::BatteryBit::kSafeForWriteBack) == 0) {
            findings.push_back({kWarning, battery.address.Text(),
                                "the battery does not allow write-back caching"});
        }
    }
}

void CheckElements(std::vector<Finding>& findings, const std::vector<Element>& elements) {
    for (const Element& element : elements) {
        const HX_U32 status = static_cast<HX_U32>(element.info.Number("Status"));
        if (status == hxcodes::ElementStatus::kOk ||
            status == hxcodes::ElementStatus::kNotInstalled ||
            status == hxcodes::ElementStatus::kUnsupported ||
            status == hxcodes::ElementStatus::kNotAvailable) {
            continue;
        }
        const bool grave = status == hxcodes::ElementStatus::kCritical ||
                           status == hxcodes::ElementStatus::kUnrecoverable;
        const Level level = grave                                            ? kCritical
                            : status == hxcodes::ElementStatus::kNoncritical ? kWarning
                                                                             : kUnknown;
        const std::string type(hxcodes::NameOf(hxcodes::kElementTypeNames,
                                               static_cast<HX_U32>(element.info.Number("Type"))));
        const std::string_view name = hxcodes::NameOf(hxcodes::kElementStatusNames, status);
        findings.push_back(
            {level, element.address.Text(),
             type + " " + (name.empty() ? "state " + std::to_string(status) : std::string(name))});
    }
}

std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

Exit Check(Invocation& invocation) {
    SelectAdapters(invocation);
    Controller& controller = invocation.controller();
    std::vector<Finding> findings;
    const std::vector<Adapter> adapters = LoadAdapters(controller);
    for (const Adapter& adapter : adapters) {
        if (adapter.info.Find("img_health") != nullptr && adapter.info.Number("img_health") == 0) {
            findings.push_back(
                {kWarning, adapter.address.Text(), "an image in the flash is damaged"});
        }
    }
    const std::vector<Disk> disks = LoadDisks(controller);
    CheckDisks(findings, disks);
    const std::vector<VirtualDisk> virtual_disks = LoadVirtualDisks(controller);
    for (const VirtualDisk& disk : virtual_disks) {
        CheckState(findings, disk.address, disk.info.Number("Status"));
    }
    for (const DiskGroup& group : LoadDiskGroups(controller)) {
        CheckState(findings, group.address, group.info.Number("Status"));
    }
    CheckBatteries(findings, LoadBatteries(controller));
    CheckElements(findings, LoadElements(controller));
    for (const Fault& fault : controller.faults()) {
        findings.push_back({kUnknown, fault.address, fault.message});
    }
    if (adapters.empty() && findings.empty()) findings.push_back({kUnknown, "", "no adapter"});
    std::ranges::stable_sort(findings, {}, [](const Finding& it) { return RankOf(it.level); });
    const Level worst = findings.empty() ? kOk : findings.front().level;

    if (invocation.Has("--output")) {
        Report report;
        Tabulate(report, kColumns, findings);
        report.command = invocation.row().Name();
        const Style style = StyleOf(invocation, "table");
        Arrange(invocation, style, report);
        report.faults = controller.faults();
        Print(report, style);
    } else {
        std::string line(kLevelWords[worst]);
        line += ": ";
        for (std::size_t i = 0; i < findings.size(); ++i) {
            line += (i == 0 ? "" : "; ") + findings[i].address +
                    (findings[i].address.empty() ? "" : " ") + findings[i].message;
        }
        if (!findings.empty()) line += "; ";
        line += Counted(adapters.size(), "adapter") + ", " + Counted(disks.size(), "disk") + ", " +
                Counted(virtual_disks.size(), "virtual disk");
        PrintText(Printable(line) + "\n");
    }
    // The levels are the codes 0 to 3, whatever these mean elsewhere.
    return static_cast<Exit>(worst);
}

constexpr OptionRow kOptions[] = {{"--adapter", "NUMBER", "Only this adapter"}};

constexpr CommandRow kCommands[] = {
    {.noun = "check",
     .verb = "",
     .summary = "Tell the health of everything in one line",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .options = kOptions,
     .functions = "HX_Adapter_GetInfo HX_PD_GetHDInfo_Ext HX_PD_GetSmartStatus HX_LD_GetInfo "
                  "HX_DG_GetInfo HX_BBU_GetInfo HX_ENC_GetElementInfo",
     .examples = {"vexorctl check", "vexorctl check a0 -o json"},
     .run = Check,
     .columns = Columns,
     .note = "The line begins with OK, WARNING, CRITICAL or UNKNOWN and names what is wrong, the "
             "gravest first. The exit code is 0, 1, 2 or 3 accordingly, but for wrong usage (2) "
             "and for a library or controller that cannot be used (5)."},
};

}  // namespace

std::span<const CommandRow> CheckCommands() { return kCommands; }

}  // namespace vexorctl
