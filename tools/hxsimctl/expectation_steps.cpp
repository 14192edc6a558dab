#include "expectation_steps.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "code_names.h"
#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/level.h"
#include "codes/state.h"
#include "common/number.h"
#include "common/size.h"
#include "event_expectations.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_redundancy.h"
#include "rules/hxsim_battery.h"

namespace hxsimctl {

namespace {

using hxsim::Adapter;
using hxsim::Owner;
using vexortools::ParseNumber;

constexpr std::string_view kGone = "gone";

[[noreturn]] void Fail(const std::string& what, const std::string& is, const std::string& wanted) {
    throw Refused(what + " is " + is + "; " + wanted + " was expected");
}

void RequireForm(bool is_right, const std::string& form) {
    if (!is_right) throw UsageError("write expect " + form);
}

// ---- One word about one object ----

std::vector<std::string_view> StateWords() {
    std::vector<std::string_view> words = WordsOf(hxcodes::kStateNames);
    words.push_back(kGone);
    return words;
}

std::vector<std::string_view> DiskWords() {
    std::vector<std::string_view> words;
    for (const hxcodes::DiskWord& each : hxcodes::kDiskWords) words.push_back(each.name);
    words.push_back(kGone);
    return words;
}

std::vector<std::string_view> LevelWords() { return WordsOf(hxcodes::kLevelNames); }
std::vector<std::string_view> ElementWords() { return WordsOf(hxcodes::kElementStatusNames); }
std::vector<std::string_view> AlarmWords() { return {"sounding", "silent"}; }

// The text of a row, or "gone" when there is no row.
template <class Row, class Text>
std::string OrGone(const Row* row, Text text) {
    return row == nullptr ? std::string(kGone) : std::string(text(*row));
}

std::string DiskWord(const Adapter& adapter, const Object& object) {
    return OrGone(hxsim::FindListed(adapter, object.id), [&](const hxsim::Disk& disk) {
        return hxcodes::DiskWordOf(hxsim::DiskRoles(adapter).Of(disk).status);
    });
}

std::string VirtualDiskWord(const Adapter& adapter, const Object& object) {
    return OrGone(hxsim::Find(adapter.virtual_disks, object.id),
                  [&](const auto& row) { return NameOf(hxsim::StateOf(adapter, row)); });
}

std::string DiskGroupWord(const Adapter& adapter, const Object& object) {
    return OrGone(hxsim::Find(adapter.disk_groups, object.id),
                  [&](const auto& row) { return NameOf(hxsim::StateOf(adapter, row)); });
}

std::string LevelWord(const Adapter& adapter, const Object& object) {
    return OrGone(hxsim::Find(adapter.virtual_disks, object.id),
                  [](const auto& row) { return NameOf(row.level); });
}

std::string ElementWord(const Adapter& adapter, const Object& object) {
    return OrGone(FindElement(adapter, object),
                  [](const hxsim::Element& element) { return NameOf(element.status); });
}

std::string AlarmWord(const Adapter& adapter, const Object&) {
    return adapter.alarm ? "sounding" : "silent";
}

struct WordRow {
    std::string_view word;
    const char* form;
    ObjectKind kind;
    const char* what;
    std::vector<std::string_view> (*words)();  // the words that can be expected
    std::string (*is)(const Adapter&, const Object&);
};
constexpr WordRow kWordRows[] = {
    {"disk", "disk ADDRESS STATE", ObjectKind::kDisk, "state of a disk", DiskWords, DiskWord},
    {"vd", "vd ADDRESS STATE", ObjectKind::kVirtualDisk, "state of a virtual disk", StateWords,
     VirtualDiskWord},
    {"dg", "dg ADDRESS STATE", ObjectKind::kDiskGroup, "state of a disk group", StateWords,
     DiskGroupWord},
    {"level", "level ADDRESS LEVEL", ObjectKind::kVirtualDisk, "level", LevelWords, LevelWord},
    {"element", "element ADDRESS STATUS", ObjectKind::kElement, "status of an element",
     ElementWords, ElementWord},
    {"alarm", "alarm ADDRESS sounding|silent", ObjectKind::kAdapter, "state of an alarm",
     AlarmWords, AlarmWord},
};

// An object that is not found is gone, whether the step gives its name or its address.
std::string WordNow(Driver& driver, const Target& target, const WordRow& row) {
    const hxsim::Machine& machine = driver.Current();
    const std::optional<Object> object = FindObject(machine, target);
    return object ? row.is(AdapterAt(machine, *object), *object) : std::string(kGone);
}

Step ExpectWord(const Words& words) {
    const WordRow& row = *std::ranges::find(kWordRows, words[0], &WordRow::word);
    RequireForm(words.size() == 3, row.form);
    RequireOneOf(words[2], row.words(), row.what);
    const Target target = ParseTarget(words[1], row.kind);
    return [target, wanted = words[2], row](Story& story) {
        const std::string is = WordNow(story.driver(), target, row);
        if (is != wanted) Fail(target.selector.typed, is, wanted);
    };
}

// ---- Numbers ----

// How many events wait in an adapter's queue.
Step ExpectQueue(const Words& words) {
    RequireForm(words.size() == 3, "queue ADDRESS NUMBER");
    const std::uint64_t wanted =
        ParseNumber(words[2], hxsim::kMostEvents, "number of events in a queue");
    const Target target = ParseTarget(words[1], ObjectKind::kAdapter);
    return [target, wanted](Story& story) {
        const hxsim::Machine& machine = story.driver().Current();
        const Object object = NameObject(machine, target);
        const std::size_t is = AdapterAt(machine, object).events.size();
        if (is != wanted) Fail(object.text, std::to_string(is), std::to_string(wanted));
    };
}

Step ExpectSize(const Words& words) {
    RequireForm(words.size() == 3, "size ADDRESS SIZE");
    const Target target = ParseTarget(words[1], ObjectKind::kVirtualDisk);
    const hxsim::Sectors wanted = vexortools::ParseSize(words[2]) / vexortools::kSectorBytes;
    return [target, wanted](Story& story) {
        const hxsim::Machine& machine = story.driver().Current();
        const Object object = RequireObject(machine, target);
        const hxsim::Sectors is =
            hxsim::Find(AdapterAt(machine, object).virtual_disks, object.id)->size;
        if (is != wanted) {
            Fail(object.text, "of " + std::to_string(is) + " sectors",
                 std::to_string(wanted) + " sectors");
        }
    };
}

// The number before a percent sign; null when there is no such sign.
std::optional<std::uint64_t> PercentIn(std::string_view word, const std::string& what) {
    if (!word.ends_with('%')) return std::nullopt;
    word.remove_suffix(1);
    return ParseNumber(word, 100, what);
}

// ---- The battery ----

// Expects a status bit to be set (after "no": not set), or a charge in percent.
Step ExpectBattery(const Words& words) {
    const bool no = words.size() == 4 && words[2] == "no";
    RequireForm(no || words.size() == 3, "battery ADDRESS [no] STATUS|PERCENT%");
    const Target target = ParseTarget(words[1], ObjectKind::kAdapter);
    const std::string& wanted = words.back();
    const auto percent = no ? std::nullopt : PercentIn(wanted, "charge");
    const HX_U32 bit =
        percent ? 0 : ParseName(hxcodes::kBatteryBits, wanted, "status of a battery");
    return [target, wanted, percent, bit, no](Story& story) {
        Driver& driver = story.driver();
        const Object object = NameObject(driver.Current(), target);
        const Adapter& adapter = AdapterAt(driver.Current(), object);
        if (adapter.batteries.empty()) {
            throw NoObject(object.text + ": the adapter has no battery; hxsimctl show lists them");
        }
        const BBU_Info info = hxsim::Describe(adapter.batteries[0], driver.Now());
        const std::string battery = object.text + "'s battery";
        if (percent) {
            if (info.percentage == *percent) return;
            Fail(battery, "at " + std::to_string(info.percentage) + '%', wanted);
        }
        const bool is = (info.status & bit) != 0;
        if (is == no) Fail(battery, (is ? "" : "not ") + wanted, (no ? "not " : "") + wanted);
    };
}

// ---- Activities ----

std::string DescribeActivity(const hxsim::Activity* activity, hxsim::Time now) {
    if (activity == nullptr) return "none";
    return std::string(NameOf(activity->kind)) + ' ' + std::string(NameOf(activity->state)) + ' ' +
           std::to_string(hxsim::Percentage(*activity, now)) + '%';
}

Owner OwnerOf(const Target& target) {
    switch (target.kind) {
        case ObjectKind::kVirtualDisk:
            return Owner::kVirtualDisk;
        case ObjectKind::kDiskGroup:
            return Owner::kDiskGroup;
        case ObjectKind::kDisk:
            return Owner::kDisk;
        case ObjectKind::kAdapter:
        case ObjectKind::kEnclosure:
        case ObjectKind::kElement:
            break;
    }
    throw UsageError(target.selector.typed +
                     " has no activities; write the address of a disk, virtual disk or disk group");
}

struct WantedActivity {
    hxcodes::ActivityKind kind;
    std::optional<hxcodes::ActivityState> state;  // null: any
    std::optional<std::uint64_t> percent;         // null: any

    bool Is(const hxsim::Activity* activity, hxsim::Time now) const {
        if (activity == nullptr) {
            return kind == hxcodes::ActivityKind::kNone && !state && !percent;
        }
        return activity->kind == kind && (!state || activity->state == *state) &&
               (!percent || hxsim::Percentage(*activity, now) == *percent);
    }
};

// Parses "none", or a kind with optional state and percentage.
Step ExpectActivity(const Words& words) {
    RequireForm(words.size() >= 3 && words.size() <= 5, "activity ADDRESS KIND [STATE] [PERCENT%]");
    const Target target = ParseTarget(words[1]);
    const Owner of = OwnerOf(target);
    WantedActivity wanted{ParseCode<hxcodes::ActivityKind>(words[2], "activity"), {}, {}};
    std::string text = words[2];
    for (std::size_t i = 3; i < words.size(); ++i) {
        text += ' ' + words[i];
        if (const auto percent = PercentIn(words[i], "progress of an activity")) {
            wanted.percent = percent;
        } else {
            wanted.state = ParseCode<hxcodes::ActivityState>(words[i], "state of an activity");
        }
    }
    return [target, of, wanted, text](Story& story) {
        Driver& driver = story.driver();
        const Object object = NameObject(driver.Current(), target);
        const hxsim::Activity* const activity =
            hxsim::ActivityOf(AdapterAt(driver.Current(), object), of, object.id);
        const hxsim::Time now = driver.Now();
        if (wanted.Is(activity, now)) return;
        Fail("the activity of " + object.text, DescribeActivity(activity, now), text);
    };
}

struct Expectation {
    std::string_view word;
    Step (*parse)(const Words& words);
};
constexpr Expectation kExpectations[] = {
    {"disk", ExpectWord},       {"vd", ExpectWord},      {"dg", ExpectWord},
    {"level", ExpectWord},      {"size", ExpectSize},    {"activity", ExpectActivity},
    {"event", ExpectEvent},     {"no", ExpectNoEvent},   {"queue", ExpectQueue},
    {"battery", ExpectBattery}, {"element", ExpectWord}, {"alarm", ExpectWord},
};

}  // namespace

Step ParseExpectation(const Words& words) {
    const std::string_view word = words.size() < 2 ? "" : std::string_view(words[0]);
    const auto* const row = std::ranges::find(kExpectations, word, &Expectation::word);
    if (row != std::end(kExpectations)) return row->parse(words);
    std::vector<std::string_view> known;
    for (const Expectation& each : kExpectations) known.push_back(each.word);
    throw UsageError("expect needs what is expected: one of " + ListOf(known) +
                     ", and what follows it");
}

}  // namespace hxsimctl
