// vexorctl config ...
#include <algorithm>
#include <utility>

#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/controller_choice.h"
#include "model/exit_code.h"
#include "model/library_record.h"
#include "model/library_session.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::config_noun {

namespace {

struct Setting {
    std::string name;
    std::optional<std::string> value;
    std::string source;  // where a setting of the library comes from; empty for what is none
};

using enum Kind;
using enum Place;

constexpr Column<Setting> kColumns[] = {
    {Always({"setting", "SETTING", kText, kTable, "What it is"}),
     [](const Setting& it) { return TextCell(it.name); }},
    {{"value", "VALUE", kText, kTable, "Its value"},
     [](const Setting& it) { return TextCell(it.value); }},
    {{"source", "SOURCE", kText, kTable,
      "Of a setting: the file, or the library's default; of the controller library: who chose it"},
     [](const Setting& it) { return TextCell(it.source); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// The modules whose versions the library knows, and what we call them.
using Modules = calls::VX_Module_GetInfo::Result;
constexpr std::pair<RecordField<Modules, fields::VX_VER_INFO>, const char*> kModules[] = {
    {Modules::product, "product_version"},
    {Modules::vexorapi, "library_version"},
    {Modules::hxraidsvc, "event_service_version"},
    {Modules::php_vexorapi, "php_module_version"},
};

// What holds where the file says nothing.
constexpr std::pair<const char*, const char*> kDefaults[] = {
    {"EventLogConfig.LogEnable", "0"},         {"EventLogConfig.MaxNumOfEvent", "50000"},
    {"EventLogConfig.Filename", ""},           {"XmlWrapperLogConfig.InLogEnable", "0"},
    {"XmlWrapperLogConfig.OutLogEnable", "0"}, {"XmlWrapperLogConfig.Filename", ""},
    {"DebugLogConfig.LogEnable", "0"},         {"DebugLogConfig.Filename", ""},
};

void AddConfiguration(std::vector<Setting>& settings) {
    std::vector<std::pair<std::string, std::string>> written = ReadConfiguration();
    for (const auto& fallback : kDefaults) {
        const bool is_written = std::ranges::any_of(
            written, [&](const auto& setting) { return setting.first == fallback.first; });
        if (!is_written) settings.push_back({fallback.first, fallback.second, "default"});
    }
    for (auto& [name, value] : written) {
        settings.push_back({std::move(name), std::move(value), "file"});
    }
    std::ranges::stable_sort(settings, {}, [](const Setting& setting) {
        return setting.source.empty() ? std::string() : setting.name;
    });
}

Exit ShowConfig(Invocation& invocation) {
    Controller& controller = invocation.controller();
    std::vector<Setting> settings{{"vexorctl_version", VEXORCTL_VERSION, {}}};
    if (const auto answer = controller.Get("", Request<calls::VX_Module_GetInfo>{})) {
        for (const auto& [module, name] : kModules) {
            settings.push_back({name, VersionText((*answer)[module]), {}});
        }
    }
    if (const auto answer = controller.Get("", Request<calls::HX_API_Version>{})) {
        settings.push_back(
            {"controller_library_version", (*answer)[calls::HX_API_Version::Result::RetVal], {}});
    }
    settings.push_back({"configuration_file", ConfigurationPath(), {}});
    AddConfiguration(settings);
    settings.insert(settings.begin() + 1,
                    {"controller_library", UsedController(), WhyThisController()});
    return Show(invocation, Tabulated(invocation, kColumns, settings), "table");
}

constexpr CommandRow kCommands[] = {
    {.noun = "config",
     .verb = "show",
     .summary = "Show versions and the library's configuration",
     .functions = kNamesOf<calls::VX_Module_GetInfo, calls::HX_API_Version>,
     .examples = {"vexorctl config show", "vexorctl config show -o jsonl"},
     .run = ShowConfig,
     .columns = Columns,
     .note = "The library has no function that changes its configuration: edit the file that is "
             "named, and run this again to see what holds. Logs are on where the value is not 0."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::config_noun
