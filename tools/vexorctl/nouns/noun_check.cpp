// vexorctl check: the health of everything, in one line and one exit code.
#include <algorithm>
#include <utility>

#include "codes/code_table.h"
#include "codes/enclosure.h"
#include "codes/named.h"
#include "common/address.h"
#include "common/terminal_text.h"
#include "library_fields.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/batteries.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/enclosures.h"
#include "model/exit_code.h"
#include "model/fault.h"
#include "model/library_record.h"
#include "model/virtual_disks.h"
#include "nouns/creation_options.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

// The levels of monitoring systems, which are also this command's exit codes.
enum Level : unsigned { kOk = 0, kWarning = 1, kCritical = 2, kUnknown = 3 };
constexpr hxcodes::Named kLevelNames[] = {
    {kOk, "ok"},
    {kWarning, "warning"},
    {kCritical, "critical"},
    {kUnknown, "unknown"},
};
constexpr std::string_view kLevelWords[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};

// UNKNOWN is more serious than OK and less serious than a warning.
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

// How grave a state is, by its name.
struct Grave {
    std::string_view state;
    Level level;
};
constexpr Grave kOfVirtualDisks[] = {
    {"optimal", kOk},      {"partially_optimal", kWarning}, {"rebuilding", kWarning},
    {"foreign", kWarning}, {"degraded", kCritical},         {"offline", kCritical},
};
constexpr Grave kOfDisks[] = {
    {"free", kOk},          {"configured", kOk},   {"global_spare", kOk},    {"group_spare", kOk},
    {"offline", kWarning},  {"foreign", kWarning}, {"rebuilding", kWarning}, {"failed", kCritical},
    {"missing", kCritical},
};
constexpr Grave kOfElements[] = {
    {"ok", kOk},
    {"unsupported", kOk},
    {"not_installed", kOk},
    {"not_available", kOk},
    {"noncritical", kWarning},
    {"critical", kCritical},
    {"unrecoverable", kCritical},
    {"unknown", kUnknown},
};

// Null for a state that has no row.
std::optional<Level> LevelOf(std::span<const Grave> rows, std::string_view state) {
    for (const Grave& row : rows) {
        if (row.state == state) return row.level;
    }
    return std::nullopt;
}

// What the checks find, and what they look at.
class Findings {
public:
    explicit Findings(const hxcodes::CodeTable& codes) : codes_(codes) {}

    const hxcodes::CodeTable& codes() const { return codes_; }
    std::vector<Finding>& all() { return all_; }

    void Add(Level level, const Address& address, std::string message) {
        if (level != kOk) all_.push_back({level, address.Text(), std::move(message)});
    }
    /// What was not seen is not well.
    void AddUnseen(const Address& address, const std::string& what) {
        Add(kUnknown, address, what + " is not known");
    }
    /// A state by its name, or by its number where it has none; `what` says what it is the state
    /// of.
    void AddState(std::span<const Grave> rows, const Address& address,
                  const std::optional<std::string>& state, const std::string& what = {}) {
        if (!state) {
            AddUnseen(address, what + "its state");
        } else if (const auto level = LevelOf(rows, *state)) {
            Add(*level, address, what + *state);
        } else {
            Add(kUnknown, address, what + "state " + *state);
        }
    }
    void AddState(std::span<const Grave> rows, CodeNames names, const Address& address,
                  std::optional<std::uint64_t> state, const std::string& what = {}) {
        std::optional<std::string> word;
        if (state) word = hxcodes::NameOf(codes_.*names, *state);
        if (word == "") word = std::to_string(*state);
        AddState(rows, address, word, what);
    }

private:
    const hxcodes::CodeTable& codes_;
    std::vector<Finding> all_;
};

void CheckAdapters(Findings& findings, const std::vector<Adapter>& adapters) {
    for (const Adapter& adapter : adapters) {
        const auto health = adapter.info[fields::Adapter_Info::img_health];
        if (!health) findings.AddUnseen(adapter.address, "the state of its flash");
        if (health == 0) {
            findings.Add(kWarning, adapter.address, "an image in the flash is damaged");
        }
    }
}

void CheckDisks(Findings& findings, const std::vector<Disk>& disks) {
    for (const Disk& disk : disks) {
        findings.AddState(kOfDisks, disk.address, disk.state);
        // A missing disk cannot be asked.
        if (disk.smart.presence() == Presence::kNotOffered || disk.state == kMissingState) continue;
        const auto exceeded = disk.smart[fields::HD_SMART_Status::SmartThresholdExceeded];
        if (!exceeded) findings.AddUnseen(disk.address, "its SMART state");
        if (exceeded.value_or(0) != 0) {
            findings.Add(kWarning, disk.address, "a SMART threshold is exceeded");
        }
    }
}

// The bit of that name in the battery's status: null when it is not known.
std::optional<bool> BatteryBit(const Findings& findings, std::uint64_t status,
                               std::string_view name) {
    const auto* const row = hxcodes::FindName(findings.codes().battery_bits, name);
    if (row == nullptr) return std::nullopt;
    return (status & row->code) != 0;
}

void CheckBattery(Findings& findings, const Battery& battery) {
    struct Complaint {
        std::string_view bit;
        Level level;
        const char* message;
    };
    constexpr Complaint kComplaints[] = {
        {"needs_replacement", kCritical, "the battery needs to be replaced"},
        {"temperature_out_of_bounds", kWarning, "the battery's temperature is out of bounds"},
        {"voltage_out_of_bounds", kWarning, "the battery's voltage is out of bounds"},
    };
    const auto status = battery.info[fields::BBU_Info::status];
    if (!status) {
        findings.AddUnseen(battery.address, "the battery's state");
        return;
    }
    bool is_known = true;
    for (const Complaint& complaint : kComplaints) {
        const auto bit = BatteryBit(findings, *status, complaint.bit);
        is_known = is_known && bit;
        if (bit.value_or(false)) {
            findings.Add(complaint.level, battery.address, complaint.message);
        }
    }
    const auto present = BatteryBit(findings, *status, "present");
    const auto safe = BatteryBit(findings, *status, "safe_for_write_back");
    if (!is_known || !present || !safe) {
        findings.Add(kUnknown, battery.address, "battery state " + std::to_string(*status));
    } else if (*present && !*safe) {
        findings.Add(kWarning, battery.address, "the battery does not allow write-back caching");
    }
}

void CheckElements(Findings& findings, const std::vector<Element>& elements) {
    using fields::EncElementType_Info;
    for (const Element& element : elements) {
        const auto type = element.info[EncElementType_Info::Type];
        const std::string name(type ? hxcodes::NameOf(hxcodes::kElementTypeNames, *type)
                                    : std::string_view());
        findings.AddState(kOfElements, &hxcodes::CodeTable::element_states, element.address,
                          element.info[EncElementType_Info::Status],
                          name.empty() ? std::string() : name + " ");
    }
}

std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// "CRITICAL: a1/pd3 failed; 2 adapters, 24 disks, 4 virtual disks"
std::string LineOf(const std::vector<Finding>& findings, Level worst, const std::string& counts) {
    std::string line(kLevelWords[worst]);
    line += ": ";
    for (const Finding& finding : findings) {
        if (!finding.address.empty()) line += finding.address + " ";
        line += finding.message + "; ";
    }
    return Printable(line + counts) + "\n";
}

Exit Check(Invocation& invocation) {
    SelectAdapters(invocation);
    Controller& controller = invocation.controller();
    Findings seen(controller.codes().table());
    const std::vector<Adapter> adapters = LoadAdapters(controller);
    CheckAdapters(seen, adapters);
    const std::vector<Disk> disks = LoadDisks(controller);
    CheckDisks(seen, disks);
    const std::vector<VirtualDisk> virtual_disks = LoadVirtualDisks(controller);
    for (const VirtualDisk& disk : virtual_disks) {
        seen.AddState(kOfVirtualDisks, &hxcodes::CodeTable::states, disk.address,
                      disk.info[fields::LD_Info::Status]);
    }
    for (const DiskGroup& group : LoadDiskGroups(controller)) {
        seen.AddState(kOfVirtualDisks, &hxcodes::CodeTable::states, group.address,
                      group.info[fields::DG_Info::Status]);
    }
    for (const Battery& battery : LoadBatteries(controller)) CheckBattery(seen, battery);
    CheckElements(seen, LoadElements(controller));
    std::vector<Finding>& findings = seen.all();
    for (const Fault& fault : controller.faults()) {
        findings.push_back({kUnknown, fault.address, fault.message});
    }
    if (adapters.empty() && findings.empty()) findings.push_back({kUnknown, "", "no adapter"});
    std::ranges::stable_sort(findings, {}, [](const Finding& it) { return RankOf(it.level); });
    const Level worst = findings.empty() ? kOk : findings.front().level;

    if (invocation.Has("--output")) {
        Present(invocation, Tabulated(invocation, kColumns, findings), "table");
    } else {
        PrintText(LineOf(findings, worst,
                         Counted(adapters.size(), "adapter") + ", " +
                             Counted(disks.size(), "disk") + ", " +
                             Counted(virtual_disks.size(), "virtual disk")));
    }
    // check exits with its level, 0 to 3; for other commands these exit codes mean something else.
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
     .functions = kNamesOf<calls::HX_Adapter_GetInfo, calls::HX_PD_GetHDInfo_Ext,
                           calls::HX_PD_GetSmartStatus, calls::HX_LD_GetInfo, calls::HX_DG_GetInfo,
                           calls::HX_BBU_GetInfo, calls::HX_ENC_GetElementInfo>,
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
