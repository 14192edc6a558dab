#include "model/event_catalogue.h"

namespace vexorctl {

namespace {

struct Row {
    std::string_view key;
    std::string_view phrase;
};

constexpr std::string_view kPrefix = "EVT_CODE_";

// Keys without their prefix. {1} is the number that stands in every line, {2} and on what follows
// it.
constexpr Row kRows[] = {
    {"SMART_FROM_OFF_TO_ON", "SMART polling of {object} was switched on"},
    {"SMART_FROM_ON_TO_OFF", "SMART polling of {object} was switched off"},
    {"ALARM_TURN_ON", "The alarm of {object} was switched on"},
    {"ALARM_TURN_OFF", "The alarm of {object} was switched off"},
    {"AUTO_REBUILD_ON", "Automatic rebuild on {object} was switched on"},
    {"AUTO_REBUILD_OFF", "Automatic rebuild on {object} was switched off"},
    {"HD_MP_RATE_CHANGE", "The media patrol rate of {object} was changed"},
    {"COPY_BACK_ON", "Copyback on {object} was switched on"},
    {"COPY_BACK_OFF", "Copyback on {object} was switched off"},
    {"ADAPTER_FOUND", "Adapter {object} was found, serial number {2}"},
    {"ADAPTER_FOUND_NO_SERIAL", "Adapter {object} was found; it has no serial number"},
    {"EVT_ERR", "Event number {1} could not be recorded (error {2})"},

    {"LD_OFFLINE", "Virtual disk {object} is offline"},
    {"LD_ONLINE", "Virtual disk {object} is online"},
    {"LD_CREATE", "Virtual disk {object} was created"},
    {"LD_DELETE", "Virtual disk {object} was deleted"},
    {"LD_DEGRADE", "Virtual disk {object} is degraded: no redundancy is left"},
    {"LD_PARTIALLYOPTIMAL", "Virtual disk {object} has lost disks; some redundancy is left"},
    {"LD_CACHE_MODE_CHANGE", "The cache mode of virtual disk {object} was changed"},
    {"LD_FIXED", "Virtual disk {object} was repaired"},
    {"LD_FOUND_ERROR", "Errors were found on virtual disk {object}"},
    {"LD_IMPORTED", "Virtual disk {object} was imported (it was {2})"},
    {"LD_INCONSISTENT_LBA", "Virtual disk {object} is inconsistent at block 0x{2}"},

    {"HD_OFFLINE", "Disk {object} is offline"},
    {"HD_ONLINE", "Disk {object} is online"},
    {"HD_SETDOWN", "Disk {object} was set down: it takes part in nothing any more"},
    {"HD_TIMEOUT", "Disk {object} did not answer in time"},
    {"HD_RW_ERROR", "Disk {object} reported a read or write error"},
    {"HD_SMART", "Disk {object} reported a SMART event"},
    {"HD_ERROR_FIXED", "An error on disk {object} was repaired"},
    {"HD_ASSIGN_SPARE", "Disk {object} was made a spare"},
    {"HD_REMOVE_SPARE", "Disk {object} is no spare any more"},
    {"HD_SMART_THRESHOLD_OVER", "A SMART threshold of disk {object} is exceeded"},
    {"HD_SMART_POLLING_FAIL", "The SMART state of disk {object} could not be read"},
    {"BAD_BLOCK_TBL_80_FULL", "The bad block table of disk {object} is 80 percent full"},
    {"BAD_BLOCK_TBL_FULL", "The bad block table of disk {object} is full"},
    {"BAD_BLOCK_REASSIGNED", "A bad block of disk {object} was reassigned"},
    {"HD_CACHE_MODE_CHANGE", "The cache mode of disk {object} was changed"},
    {"HD_MP_START", "A media patrol of disk {object} has started"},
    {"HD_MP_RESTART", "A media patrol of disk {object} has started again"},
    {"HD_MP_PAUSE", "The media patrol of disk {object} was paused"},
    {"HD_MP_RESUME", "The media patrol of disk {object} was resumed"},
    {"HD_MP_ABORT", "The media patrol of disk {object} was aborted"},
    {"HD_MP_COMPLETE", "The media patrol of disk {object} is complete"},
    {"HD_MP_PROGRESS", "The media patrol of disk {object} is {2} percent done"},
    {"HD_MP_ERROR", "The media patrol of disk {object} has failed"},
    {"HD_MP_AUTO_PAUSED", "The media patrol of disk {object} gave way to something more urgent"},
    {"HD_MP_AUTO_RESUME", "The media patrol of disk {object} goes on"},
    {"HD_SC_ERROR", "Disk {object} answered command 0x{2} with a sense code (0x{3} 0x{4} 0x{5})"},
    {"HD_RCT_ADD", "Sectors of disk {object} were remapped (0x{2} 0x{3}, {4}, 0x{5})"},
    {"HD_RCT_REMOVE", "A remapping on disk {object} was taken back (0x{2} 0x{3}, {4}, 0x{5})"},
    {"HD_SETFREE", "Disk {object} was set free"},

    {"EXPANDER_PLUG_IN", "Expander {1} was plugged in"},
    {"EXPANDER_PLUG_OUT", "Expander {1} was unplugged"},

    {"BAT_PRESENT", "The battery of {object} is present"},
    {"BAT_NOT_PRESENT", "The battery of {object} is not present"},
    {"BAT_NEW_BAT_DETECTED", "A new battery was detected on {object}"},
    {"BAT_NEED_REPLACE", "The battery of {object} needs to be replaced"},
    {"BAT_REPLACED", "The battery of {object} was replaced"},
    {"BAT_REMOVED", "The battery of {object} was removed"},
    {"BAT_RELEARN_STARTED", "A relearn cycle of the battery of {object} has started"},
    {"BAT_RELEARN_IN_PGRS", "A relearn cycle of the battery of {object} is in progress"},
    {"BAT_RELEARN_COMPLETED", "The relearn cycle of the battery of {object} is complete"},
    {"BAT_RELEARN_TIMED_OUT", "The relearn cycle of the battery of {object} timed out"},
    {"BAT_RELEARN_PENDING", "A relearn cycle of the battery of {object} is pending"},
    {"BAT_RELEARN_POSTPONED", "The relearn cycle of the battery of {object} was postponed"},
    {"BAT_START_IN_4_DAYS", "A relearn cycle of the battery of {object} starts in 4 days"},
    {"BAT_START_IN_2_DAYS", "A relearn cycle of the battery of {object} starts in 2 days"},
    {"BAT_START_IN_1_DAY", "A relearn cycle of the battery of {object} starts in 1 day"},
    {"BAT_START_IN_5_HOURS", "A relearn cycle of the battery of {object} starts in 5 hours"},
    {"BAT_DISCHARGING", "The battery of {object} is discharging"},
    {"BAT_STARTED_CHARGING", "The battery of {object} has started charging"},
    {"BAT_CHARGE_CMPLT", "The battery of {object} is charged"},
    {"BAT_CHARGER_PROBLEM_DETECTED", "The charger of the battery of {object} has a problem"},
    {"BAT_CAPACITY_BELOW_THRESHOLD",
     "The capacity of the battery of {object} is below its threshold"},
    {"BAT_CAPACITY_ABOVE_THRESHOLD",
     "The capacity of the battery of {object} is above its threshold"},
    {"BAT_TEMP_IS_LOW", "The battery of {object} is too cold"},
    {"BAT_TEMP_IS_NORMAL", "The temperature of the battery of {object} is normal"},
    {"BAT_TEMP_IS_HIGH", "The battery of {object} is too hot"},
    {"BAT_VOLTAGE_LOW", "The voltage of the battery of {object} is low"},
    {"BAT_VOLTAGE_NORMAL", "The voltage of the battery of {object} is normal"},
    {"BAT_VOLTAGE_HIGH", "The voltage of the battery of {object} is high"},
    {"BAT_FORCE_WRITE_THROUGH", "The battery of {object} does not allow write-back caching"},
    {"BAT_SAFE_TO_USE_WRITE_BACK", "The battery of {object} allows write-back caching"},

    {"MISC_CHANGE_BACK_ACTIVITY_RATE", "The background rate was changed to {1} percent"},
    // The key is spelt MUTLI; so the library writes it.
    {"MISC_MUTLI_BIT_ECC_ERR",
     "A memory error of several bits that could not be corrected "
     "(syndrome {1}, address 0x{2}, count {3})"},
    {"MISC_SINGLE_BIT_ECC_ERR", "A memory error of one bit was corrected ({1})"},
    {"MISC_GET_SHUTDOWN_CMD", "The controller was told to shut down"},
    {"MISC_PD_MISSING_FROM_CONFIG_AT_BOOT", "Disk {1} of the configuration was missing at boot"},
    {"MISC_VD_MISSING_DRIVES", "Virtual disk {object}/vd{1} misses disks"},
    {"MISC_VD_MISSING_AT_BOOT", "Virtual disk {1} was missing at boot"},
    {"MISC_PREVIOUS_CONFIG_MISSING_AT_BOOT", "The previous configuration was missing at boot"},
    {"MISC_PD_TOO_SMALL_FOR_AUTOREBUILD", "Disk {1} is too small for an automatic rebuild"},
    {"MISC_PD_TOO_SMALL_FOR_COPYBACK", "Disk {1} is too small for a copyback"},
    {"MISC_CHANGE_SYNC_RATE", "The consistency check rate was changed to {1} percent"},
    {"MISC_CHANGE_INIT_RATE", "The initialisation rate was changed to {1} percent"},
    {"MISC_CHANGE_REBUILD_RATE", "The rebuild rate was changed to {1} percent"},
    {"MISC_CHANGE_MIGRATION_RATE", "The migration rate was changed to {1} percent"},
    {"MISC_CHANGE_COPYBACK_RATE", "The copyback rate was changed to {1} percent"},
    {"MISC_CHANGE_MP_RATE", "The media patrol rate was changed to {1} percent"},

    {"ARRAY_CREATE", "Disk group {object} was created"},
    {"ARRAY_DELETE", "Disk group {object} was deleted"},
};

// What the library writes for codes that it does not know.
constexpr Row kUnknownRows[] = {
    {"EVT_Unknown_Adpt", "An adapter event of unknown code {1} (device {2})"},
    {"EVT_Unknown_LD", "A virtual disk event of unknown code {1} (device {2})"},
    {"EVT_Unknown_HD", "A disk event of unknown code {1} (device {2})"},
    {"EVT_Unknown_EXPANDER", "An expander event of unknown code {1}"},
    {"EVT_Unknown_SAS", "A SAS event of code {1} (device {2})"},
    {"EVT_Unknown_ENCL", "An enclosure event of code {1} (device {2})"},
    {"EVT_Unknown_BAT", "A battery event of unknown code {1}"},
    {"EVT_Unknown_FLASH", "A flash event of code {1} (device {2})"},
    {"EVT_Unknown_CACHE", "A cache event of code {1} (device {2})"},
    {"EVT_Unknown_MISC", "A miscellaneous event of unknown code {1} (device {2})"},
    {"EVT_Unknown", "An event of unknown class {1} on adapter {2}"},
};

// The background activities of virtual disks: every activity takes every step.
constexpr std::string_view kActivityPrefix = "EVT_CODE_LD_";
constexpr Row kActivities[] = {
    {"CHECK", "The consistency check"},
    {"FIX", "The consistency repair"},
    {"INIT_QUICK", "The quick initialisation"},
    {"INIT_BACK", "The background initialisation"},
    {"INIT_FORE", "The foreground initialisation"},
    {"REBUILD", "The rebuild"},
    {"MIGRATION", "The migration"},
    {"COPYBACK", "The copyback"},
};
constexpr Row kSteps[] = {
    {"START", "has started"},
    {"RESTART", "has started again"},
    {"PAUSE", "was paused"},
    {"RESUME", "was resumed"},
    {"ABORT", "was aborted"},
    {"COMPLETE", "is complete"},
    {"PROGRESS", "is {2} percent done"},
    {"ERROR", "has failed"},
    {"AUTO_PAUSED", "gave way to something more urgent"},
    {"AUTO_RESUME", "goes on"},
};

std::string ActivityPhrase(const Row& activity, const Row& step) {
    return std::string(activity.phrase) + " of virtual disk {object} " + std::string(step.phrase);
}

}  // namespace

std::vector<EventPhrase> EventCatalogue() {
    std::vector<EventPhrase> all;
    for (const Row& row : kRows) {
        all.push_back({std::string(kPrefix) + std::string(row.key), std::string(row.phrase)});
    }
    for (const Row& activity : kActivities) {
        for (const Row& step : kSteps) {
            all.push_back({std::string(kActivityPrefix) + std::string(activity.key) + "_" +
                               std::string(step.key),
                           ActivityPhrase(activity, step)});
        }
    }
    for (const Row& row : kUnknownRows) {
        all.push_back({std::string(row.key), std::string(row.phrase)});
    }
    return all;
}

std::string FindEventPhrase(std::string_view key) {
    for (const Row& row : kUnknownRows) {
        if (row.key == key) return std::string(row.phrase);
    }
    if (key.starts_with(kPrefix)) {
        for (const Row& row : kRows) {
            if (row.key == key.substr(kPrefix.size())) return std::string(row.phrase);
        }
    }
    if (!key.starts_with(kActivityPrefix)) return {};
    const std::string_view rest = key.substr(kActivityPrefix.size());
    for (const Row& activity : kActivities) {
        if (!rest.starts_with(activity.key) || rest.size() <= activity.key.size()) continue;
        const std::string_view name = rest.substr(activity.key.size());
        for (const Row& step : kSteps) {
            if (name.front() == '_' && name.substr(1) == step.key) {
                return ActivityPhrase(activity, step);
            }
        }
    }
    return {};
}

std::string FillEventPhrase(std::string_view phrase, const std::string& object,
                            const std::vector<std::string>& values) {
    std::string text;
    while (!phrase.empty()) {
        const std::size_t open = phrase.find('{');
        text += phrase.substr(0, open);
        if (open == std::string_view::npos) break;
        const std::size_t close = phrase.find('}', open);
        const std::string_view place = phrase.substr(open + 1, close - open - 1);
        if (place == "object") {
            text += object;
        } else {
            const std::size_t index = static_cast<std::size_t>(place.front() - '1');
            text += index < values.size() ? values[index] : std::string("?");
        }
        phrase.remove_prefix(close + 1);
    }
    return text;
}

}  // namespace vexorctl
