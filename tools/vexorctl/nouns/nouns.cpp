#include "nouns/nouns.h"

namespace vexorctl {

std::span<const NounRow> Nouns() {
    static const NounRow nouns[] = {
        {"overview", "Everything on one screen", overview_noun::Commands()},
        {"adapter", "The controllers and their settings", adapter_noun::Commands()},
        {"enclosure", "Enclosures, their elements, expanders and port multipliers",
         enclosure_noun::Commands()},
        {"disk", "Physical disks", disk_noun::Commands()},
        {"vd", "Virtual disks", vd_noun::Commands()},
        {"dg", "Disk groups", dg_noun::Commands()},
        {"task", "Background activities", task_noun::Commands()},
        {"battery", "The batteries of the adapters' caches", battery_noun::Commands()},
        {"flash", "Images in the adapters' flash", flash_noun::Commands()},
        {"event", "What has happened", event_noun::Commands()},
        {"alert", "What the event service tells", alert_noun::Commands()},
        {"user", "Logons and user groups", user_noun::Commands()},
        {"counters", "What kind of object has changed", counters_noun::Commands()},
        {"config", "Versions and the library's configuration", config_noun::Commands()},
        {"apply", "Plans that have been reviewed", apply_noun::Commands()},
        {"check", "Health, for monitoring", check_noun::Commands()},
        {"risk", "What the virtual disks still survive", risk_noun::Commands()},
        {"timeline", "What lasted, and how long", timeline_noun::Commands()},
        {"call", "Any function of the library", call_noun::Commands()},
        {"xml", "Command texts as they stand", xml_noun::Commands()},
        {"tape", "Recorded calls of the controller library", tape_noun::Commands()},
        {"support-bundle", "All that support asks for, in one file",
         support_bundle_noun::Commands()},
        {"completion", "Completion for bash, zsh and fish", completion_noun::Commands()},
        {"help", "How the program is used", help_noun::Commands()},
        {"version", "The version of the program", version_noun::Commands()},
    };
    return nouns;
}

}  // namespace vexorctl
