// vexorctl config ...
#include <utility>

#include "command.h"
#include "objects.h"
#include "output.h"
#include "session.h"

namespace {

struct Setting {
    std::string name;
    std::string value;
};

using enum Kind;
using enum Place;

constexpr Column<Setting> kColumns[] = {
    {{"setting", "SETTING", kText, kTable, "What it is"},
     [](const Setting& it) { return TextCell(it.name); }},
    {{"value", "VALUE", kText, kTable, "Its value"},
     [](const Setting& it) { return TextCell(it.value); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

// The modules whose versions the library knows, as its record calls them.
constexpr std::pair<const char*, const char*> kModules[] = {
    {"product", "product_version"},
    {"vexorapi", "library_version"},
    {"hxraidsvc", "event_service_version"},
    {"php_vexorapi", "php_module_version"},
};

Exit ShowConfig(Invocation& invocation) {
    Controller& controller = invocation.controller();
    std::vector<Setting> settings{{"vexorctl_version", VEXORCTL_VERSION}};
    if (const auto result = controller.Get("", {"VX_Module_GetInfo", {}})) {
        for (const auto& [element, name] : kModules) {
            settings.push_back({name, VersionAt(*result, element).text});
        }
    }
    if (const auto result = controller.Get("", {"HX_API_Version", {}})) {
        settings.push_back({"controller_library_version", result->Text("RetVal")});
    }
    settings.push_back({"configuration_file", ConfigurationPath()});
    for (auto& [name, value] : ReadConfiguration()) {
        settings.push_back({std::move(name), std::move(value)});
    }
    Report report;
    Tabulate(report, kColumns, settings);
    return Show(invocation, std::move(report), "table");
}

constexpr CommandRow kCommands[] = {
    {.noun = "config",
     .verb = "show",
     .summary = "Show versions and the library's configuration",
     .functions = "VX_Module_GetInfo HX_API_Version",
     .examples = {"vexorctl config show", "vexorctl config show -o jsonl"},
     .run = ShowConfig,
     .columns = Columns},
};

}  // namespace

std::span<const CommandRow> ConfigCommands() { return kCommands; }
