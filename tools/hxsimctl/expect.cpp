// The expectations of scenarios: what is to be seen of a machine, word for word.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "codes/hxraid_codes.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_redundancy.h"
#include "rules/hxsim_activity_end.h"
#include "rules/hxsim_battery.h"
#include "rules/hxsim_event_kinds.h"
#include "scenario.h"
#include "vxevent_text.h"
#include "words.h"

namespace {

using hxsim::Adapter;
using hxsim::Owner;
using Words = std::vector<std::string>;

// What is, as the word that would have been right.
using Found = std::function<std::string(const Adapter&, const Address&, hxsim::Time)>;

[[noreturn]] void Fail(const std::string& what, const std::string& is, const std::string& wanted) {
    throw Refused(what + " is " + is + "; " + wanted + " was expected");
}

void RequireWords(const Words& words, std::size_t count, const std::string& form) {
    if (words.size() != count) throw UsageError("write expect " + form);
}

// An expectation that one word of an object is the last of the words.
Step OneWord(const Words& words, Kind kind, const Found& found) {
    const Address address = ParseAddress(words[1], kind);
    const std::string& wanted = words[2];
    return [address, wanted, found](Story& story) {
        Driver& driver = story.TheDriver();
        const Adapter& adapter = AdapterAt(driver.Current(), address);
        const std::string is = found(adapter, address, driver.Now());
        if (is != wanted) Fail(address.text, is, wanted);
    };
}

void RequireOneOf(std::string_view word, std::vector<std::string_view> words,
                  const std::string& what) {
    if (std::ranges::find(words, word) != words.end()) return;
    std::string list;
    for (const std::string_view each : words) {
        list += list.empty() ? "" : ", ";
        list += each;
    }
    throw UsageError('"' + std::string(word) + "\" is no " + what + "; take one of " + list);
}

std::vector<std::string_view> NamesAnd(std::span<const HxraidName> names, std::string_view more) {
    std::vector<std::string_view> words;
    for (const HxraidName& each : names) words.push_back(each.name);
    words.push_back(more);
    return words;
}

// ---- States ----

Step ExpectDisk(const Words& words) {
    RequireWords(words, 3, "disk ADDRESS STATE");
    RequireOneOf(words[2],
                 {"failed", "foreign", "offline", "missing", "rebuilding", "global_spare",
                  "group_spare", "configured", "free", "gone"},
                 "state of a disk");
    return OneWord(
        words, Kind::kDisk, [](const Adapter& adapter, const Address& address, hxsim::Time) {
            const hxsim::Disk* const disk = hxsim::FindListed(adapter, address.id);
            if (disk == nullptr) return std::string("gone");
            return std::string(HxsimDiskStateName(hxsim::DiskRoles(adapter).Of(*disk).status));
        });
}

Step ExpectVirtualDisk(const Words& words) {
    RequireWords(words, 3, "vd ADDRESS STATE");
    RequireOneOf(words[2], NamesAnd(kHxsimStateNames, "gone"), "state of a virtual disk");
    return OneWord(words, Kind::kVirtualDisk,
                   [](const Adapter& adapter, const Address& address, hxsim::Time) {
                       const auto* const row = hxsim::Find(adapter.virtual_disks, address.id);
                       if (row == nullptr) return std::string("gone");
                       return NameText(kHxsimStateNames, hxsim::StateOf(adapter, *row));
                   });
}

Step ExpectDiskGroup(const Words& words) {
    RequireWords(words, 3, "dg ADDRESS STATE");
    RequireOneOf(words[2], NamesAnd(kHxsimStateNames, "gone"), "state of a disk group");
    return OneWord(words, Kind::kDiskGroup,
                   [](const Adapter& adapter, const Address& address, hxsim::Time) {
                       const auto* const row = hxsim::Find(adapter.disk_groups, address.id);
                       if (row == nullptr) return std::string("gone");
                       return NameText(kHxsimStateNames, hxsim::StateOf(adapter, *row));
                   });
}

Step ExpectLevel(const Words& words) {
    RequireWords(words, 3, "level ADDRESS LEVEL");
    ParseName(kHxsimLevelNames, words[2], "level");
    return OneWord(words, Kind::kVirtualDisk,
                   [](const Adapter& adapter, const Address& address, hxsim::Time) {
                       const auto* const row = hxsim::Find(adapter.virtual_disks, address.id);
                       if (row == nullptr) return std::string("gone");
                       return NameText(kHxsimLevelNames, row->level);
                   });
}

Step ExpectElement(const Words& words) {
    RequireWords(words, 3, "element ADDRESS STATUS");
    ParseName(kHxsimElementStatusNames, words[2], "status of an element");
    return OneWord(
        words, Kind::kElement, [](const Adapter& adapter, const Address& address, hxsim::Time) {
            for (const hxsim::Element& element : adapter.elements) {
                if (element.enclosure == address.id && element.number == address.element) {
                    return NameText(kHxsimElementStatusNames, element.status);
                }
            }
            return std::string("gone");
        });
}

Step ExpectAlarm(const Words& words) {
    RequireWords(words, 3, "alarm ADDRESS sounding|silent");
    RequireOneOf(words[2], {"sounding", "silent"}, "state of an alarm");
    return OneWord(words, Kind::kAdapter, [](const Adapter& adapter, const Address&, hxsim::Time) {
        return std::string(adapter.alarm ? "sounding" : "silent");
    });
}

Step ExpectSize(const Words& words) {
    RequireWords(words, 3, "size ADDRESS SIZE");
    const Address address = ParseAddress(words[1], Kind::kVirtualDisk);
    const hxsim::Sectors wanted = ParseSize(words[2]);
    return [address, wanted](Story& story) {
        const hxsim::Machine& machine = story.TheDriver().Current();
        RequireObject(machine, address);
        const hxsim::Sectors is =
            hxsim::Find(AdapterAt(machine, address).virtual_disks, address.id)->size;
        if (is != wanted) {
            Fail(address.text, "of " + std::to_string(is) + " sectors",
                 std::to_string(wanted) + " sectors");
        }
    };
}

// ---- The battery ----

// A bit of its status, which is to be set or, behind "no", is not; or its charge in percent.
Step ExpectBattery(const Words& words) {
    const bool no = words.size() == 4 && words[2] == "no";
    if (!no) RequireWords(words, 3, "battery ADDRESS [no] STATUS|PERCENT%");
    const Address address = ParseAddress(words[1], Kind::kAdapter);
    const std::string& wanted = words.back();
    std::optional<std::uint64_t> percent;
    HX_U32 bit = 0;
    if (!no && wanted.ends_with('%')) {
        percent = ParseNumber(std::string_view(wanted).substr(0, wanted.size() - 1), 100, "charge");
    } else {
        bit = ParseName(kHxsimBatteryStatusBits, wanted, "status of a battery");
    }
    return [address, wanted, percent, bit, no](Story& story) {
        Driver& driver = story.TheDriver();
        const Adapter& adapter = AdapterAt(driver.Current(), address);
        if (adapter.batteries.empty()) {
            throw NoObject(address.text + ": the adapter has no battery; hxsimctl show lists them");
        }
        const BBU_Info info = hxsim::Describe(adapter.batteries[0], driver.Now());
        if (percent) {
            if (info.percentage == *percent) return;
            Fail(address.text + "'s battery", "at " + std::to_string(info.percentage) + '%',
                 wanted);
        }
        const bool is = (info.status & bit) != 0;
        if (is == no) {
            Fail(address.text + "'s battery", (is ? "" : "not ") + wanted,
                 (no ? "not " : "") + wanted);
        }
    };
}

// ---- Activities ----

std::string DescribeActivity(const hxsim::Activity* activity, hxsim::Time now) {
    if (activity == nullptr) return "none";
    return NameText(kHxsimActivityNames, activity->kind) + ' ' +
           NameText(kHxsimActivityStateNames, activity->state) + ' ' +
           std::to_string(hxsim::Percentage(*activity, now)) + '%';
}

Owner OwnerOf(const Address& address) {
    switch (address.kind) {
        case Kind::kVirtualDisk:
            return Owner::kVirtualDisk;
        case Kind::kDiskGroup:
            return Owner::kDiskGroup;
        case Kind::kDisk:
            return Owner::kDisk;
        default:
            throw UsageError(address.text +
                             " has no activities; write the address of a disk, virtual disk or "
                             "disk group");
    }
}

// "none", or the kind and after it, if they matter, state and percent.
Step ExpectActivity(const Words& words) {
    if (words.size() < 3 || words.size() > 5) {
        throw UsageError("write expect activity ADDRESS KIND [STATE] [PERCENT%]");
    }
    const Address address = ParseAddress(words[1]);
    const Owner of = OwnerOf(address);
    const HX_U32 kind = ParseName(kHxsimActivityNames, words[2], "activity");
    std::optional<HX_U32> state;
    std::optional<std::uint64_t> percent;
    std::string wanted = words[2];
    for (std::size_t i = 3; i < words.size(); ++i) {
        const std::string& word = words[i];
        wanted += ' ' + word;
        if (word.ends_with('%')) {
            percent = ParseNumber(std::string_view(word).substr(0, word.size() - 1), 100,
                                  "progress of an activity");
        } else {
            state = ParseName(kHxsimActivityStateNames, word, "state of an activity");
        }
    }
    return [address, of, kind, state, percent, wanted](Story& story) {
        Driver& driver = story.TheDriver();
        const hxsim::Activity* const activity =
            hxsim::ActivityOf(AdapterAt(driver.Current(), address), of, address.id);
        const hxsim::Time now = driver.Now();
        const HX_U32 is = activity == nullptr ? HX_U32{HXSIM_ACTIVITY_NONE} : activity->kind;
        const bool right =
            is == kind && (!state || (activity && activity->state == *state)) &&
            (!percent || (activity && hxsim::Percentage(*activity, now) == *percent));
        if (!right) {
            Fail("the activity of " + address.text, DescribeActivity(activity, now), wanted);
        }
    };
}

// ---- Events ----

// The key of an event's text; class and code for one that has no text of its own.
std::string KeyOf(const Event& event) {
    std::vector<char> line(kEventTextSize);
    VX_HX_EVT_Sprintf(&event, line.data());
    const std::string_view text = line.data();
    const std::size_t key = text.find("EVT_CODE_");
    if (key == std::string_view::npos) {
        return std::to_string(event.Class) + '.' + std::to_string(event.Code);
    }
    return std::string(text.substr(key, text.find('|', key) - key));
}

// Whether any event has that key: a wrong letter would make "expect no event" true for ever.
bool IsKey(const std::string& key) {
    constexpr HX_U16 kClasses = 14;
    constexpr HX_U16 kCodes = 128;
    for (HX_U16 type = 0; type < kClasses; ++type) {
        Event event{};
        event.Class = type;
        for (HX_U16 code = 0; code < kCodes; ++code) {
            event.Code = code;
            if (KeyOf(event) == key) return true;
        }
    }
    Event error{};  // the one code that stands apart
    error.Code = hxsim::kEventError.code;
    return KeyOf(error) == key;
}

struct WantedEvent {
    HX_U8 adapter = 0;
    std::string key;
    std::optional<HX_U16> device;

    bool Is(const Event& event) const {
        return event.AdapterID == adapter && (!device || event.DeviceID == *device) &&
               KeyOf(event) == key;
    }
    std::string Text() const {
        return 'a' + std::to_string(adapter) + ": " + key +
               (device ? " of device " + std::to_string(*device) : "");
    }
};

WantedEvent ParseEvent(const Words& words, const std::string& form) {
    if (words.size() < 2 || words.size() > 3) throw UsageError("write expect " + form);
    WantedEvent wanted;
    wanted.adapter = ParseAddress(words[0], Kind::kAdapter).adapter;
    wanted.key = words[1];
    const bool numbered = wanted.key.find('.') != std::string::npos;
    if (!numbered && !wanted.key.starts_with("EVT_CODE_")) wanted.key.insert(0, "EVT_CODE_");
    if (!IsKey(wanted.key)) {
        throw UsageError('"' + words[1] +
                         "\" is the key of no event; write one that event texts have, such as "
                         "LD_CREATE, or class and code, such as 8.0, for one that has no text");
    }
    if (words.size() == 3) {
        wanted.device = static_cast<HX_U16>(ParseNumber(words[2], 65535, "number of a device"));
    }
    return wanted;
}

// The last few events, so that a failed expectation shows what was there instead.
std::string LastEvents(const std::vector<Story::Seen>& events) {
    constexpr std::size_t kShown = 5;
    if (events.empty()) return "nothing happened so far";
    std::string text = "the last events are";
    const std::size_t first = events.size() > kShown ? events.size() - kShown : 0;
    for (std::size_t i = first; i < events.size(); ++i) {
        text += (i == first ? " " : ", ") + KeyOf(events[i].event) + ' ' +
                std::to_string(events[i].event.DeviceID);
    }
    return text;
}

Step ExpectEvent(const Words& words) {
    const WantedEvent wanted =
        ParseEvent({words.begin() + 1, words.end()}, "event a0 KEY [DEVICE]");
    return [wanted](Story& story) {
        std::vector<Story::Seen>& events = story.Events();
        const auto found = std::ranges::find_if(events, [&](const Story::Seen& each) {
            return !each.expected && wanted.Is(each.event);
        });
        if (found == events.end()) {
            throw Refused("no event " + wanted.Text() +
                          ", which was expected, has happened since the last one; " +
                          LastEvents(events));
        }
        found->expected = true;
    };
}

Step ExpectNoEvent(const Words& words) {
    if (words[1] != "event") throw UsageError("write expect no event a0 KEY [DEVICE]");
    const WantedEvent wanted =
        ParseEvent({words.begin() + 2, words.end()}, "no event a0 KEY [DEVICE]");
    return [wanted](Story& story) {
        for (const Story::Seen& each : story.Events()) {
            if (each.expected || !wanted.Is(each.event)) continue;
            throw Refused("an event " + wanted.Text() + " has happened; none was expected");
        }
    };
}

// How many events wait in an adapter's queue.
Step ExpectQueue(const Words& words) {
    RequireWords(words, 3, "queue ADDRESS NUMBER");
    ParseNumber(words[2], hxsim::kMostEvents, "number of events in a queue");
    return OneWord(words, Kind::kAdapter, [](const Adapter& adapter, const Address&, hxsim::Time) {
        return std::to_string(adapter.events.size());
    });
}

struct Expectation {
    std::string_view word;
    Step (*parse)(const Words& words);
};
constexpr Expectation kExpectations[] = {
    {"disk", ExpectDisk},       {"vd", ExpectVirtualDisk},  {"dg", ExpectDiskGroup},
    {"level", ExpectLevel},     {"size", ExpectSize},       {"activity", ExpectActivity},
    {"event", ExpectEvent},     {"no", ExpectNoEvent},      {"queue", ExpectQueue},
    {"battery", ExpectBattery}, {"element", ExpectElement}, {"alarm", ExpectAlarm},
};

}  // namespace

Step ParseExpectation(const std::vector<std::string>& words) {
    const std::string_view word = words.size() < 2 ? "" : std::string_view(words[0]);
    const auto* const row = std::ranges::find(kExpectations, word, &Expectation::word);
    if (row != std::end(kExpectations)) return row->parse(words);
    std::string list;
    for (const Expectation& each : kExpectations) {
        list += list.empty() ? "" : ", ";
        list += each.word;
    }
    throw UsageError("expect needs what is expected: one of " + list + ", and what follows it");
}
