#include "nouns/nouns.h"

namespace vexorctl {

std::span<const NounRow> Nouns() {
    static const NounRow nouns[] = {
        {"overview", "Everything on one screen", OverviewCommands()},
        {"adapter", "The controllers and their settings", AdapterCommands()},
        {"enclosure", "Enclosures, their elements, expanders and port multipliers",
         EnclosureCommands()},
        {"disk", "Physical disks", DiskCommands()},
        {"vd", "Virtual disks", VirtualDiskCommands()},
        {"dg", "Disk groups", DiskGroupCommands()},
        {"task", "Background activities", TaskCommands()},
        {"battery", "The batteries of the adapters' caches", BatteryCommands()},
        {"flash", "Images in the adapters' flash", FlashCommands()},
        {"event", "What has happened", EventCommands()},
        {"user", "Logons and user groups", UserCommands()},
        {"counters", "What kind of object has changed", CountersCommands()},
        {"config", "Versions and the library's configuration", ConfigCommands()},
        {"check", "Health, for monitoring", CheckCommands()},
        {"risk", "What the virtual disks still survive", RiskCommands()},
        {"call", "Any function of the library", CallCommands()},
        {"xml", "Command texts as they stand", XmlCommands()},
        {"completion", "Completion for bash, zsh and fish", CompletionCommands()},
        {"help", "How the program is used", HelpCommands()},
        {"version", "The version of the program", VersionCommands()},
    };
    return nouns;
}

}  // namespace vexorctl
