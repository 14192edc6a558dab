// The good machine, and faults for it.
#include "machine.h"

#include <algorithm>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/state.h"
#include "conditions/hxc_redundancy.h"

namespace hxconditions {

namespace {

using hxcodes::BatteryBit;
using hxcodes::DiskBit;
using hxcodes::ElementStatus;
using hxcodes::ElementType;
using ArrayState = hxcodes::State;

constexpr std::uint64_t kDiskSectors = 3907029168;  // 2 TB
constexpr std::uint64_t kBlockSectors = 209715200;  // 100 GiB

Query Read() {
    Query query;
    query.result = Query::Result::kRead;
    return query;
}

Disk NewDisk(unsigned id, unsigned status) {
    Disk disk;
    disk.id = id;
    disk.serial = "QD-" + std::to_string(id);
    disk.status = status;
    disk.sectors = kDiskSectors;
    disk.free_sectors =
        (status & NumberOf(DiskBit::kConfigured)) != 0 ? kBlockSectors : kDiskSectors;
    disk.enclosure = 0;
    disk.bay = "slot " + std::to_string(id);
    disk.smart_alarm = false;
    disk.smart_on = true;
    disk.is_online = true;
    disk.phys = 2;
    disk.speed = 12;
    disk.remapped = 0;
    return disk;
}

VirtualDisk NewVirtualDisk(unsigned id, const char* name, unsigned level,
                           const std::vector<unsigned>& disks) {
    VirtualDisk made;
    made.id = id;
    made.name = name;
    made.sectors = kBlockSectors;
    made.level = level;
    made.state = NumberOf(ArrayState::kOptimal);
    made.cache = 0;
    made.activity = Activity{};
    made.auto_rebuild = true;
    for (const unsigned disk : disks)
        made.members.push_back({disk, NumberOf(ArrayState::kOptimal), kBlockSectors});
    return made;
}

Adapter NewAdapter(unsigned number, const char* serial) {
    Adapter adapter;
    adapter.number = number;
    adapter.serial = serial;
    adapter.info = adapter.settings = adapter.virtual_disks_query = adapter.disks_query = Read();
    adapter.smart = adapter.groups_query = adapter.enclosures_query = Read();
    adapter.battery_query = Read();
    adapter.flash = {true, true, true, true, true, true};
    adapter.auto_rebuild = true;
    adapter.poll_smart = true;
    return adapter;
}

Element NewElement(unsigned id, unsigned type, int reading) {
    Element element;
    element.id = id;
    element.type = type;
    element.status = NumberOf(ElementStatus::kOk);
    element.reading = reading;
    return element;
}

Battery NewBattery() {
    Battery battery;
    battery.status = NumberOf(BatteryBit::kPresent) | NumberOf(BatteryBit::kSafeForWriteBack);
    battery.percent = 96;
    battery.percent_to_charge = 40;
    battery.celsius = 29;
    battery.low_celsius = 5;
    battery.high_celsius = 50;
    battery.millivolts = 3900;
    battery.low_millivolts = 3000;
    battery.high_millivolts = 4200;
    battery.capacity_mah = 1350;
    battery.new_mah = 1500;
    battery.cycles = 12;
    return battery;
}

template <class Take>
void Walk(const Condition& condition, Take take) {
    take(condition);
    for (const Condition& folded : condition.folded) Walk(folded, take);
}

}  // namespace

Answers GoodMachine() {
    constexpr unsigned kMember = NumberOf(DiskBit::kOnline) | NumberOf(DiskBit::kConfigured);
    Answers answers;
    answers.machine = Read();
    answers.service.is_here = true;
    answers.store.state = Store::State::kGood;
    answers.store.path = "/var/lib/events";
    Adapter adapter = NewAdapter(0, "SN-A");
    for (unsigned id = 0; id < 8; ++id) {
        adapter.disks.push_back(NewDisk(id, id == 7 ? NumberOf(DiskBit::kOnline) + 0U : kMember));
    }
    adapter.disks[2].group = adapter.disks[3].group = 0;
    adapter.virtual_disks.push_back(NewVirtualDisk(0, "SYS", 0x01, {0, 1}));
    adapter.virtual_disks.push_back(NewVirtualDisk(1, "DATA", 0x05, {4, 5, 6}));
    DiskGroup group;
    group.name = "SPACE";
    group.state = NumberOf(ArrayState::kOptimal);
    group.disks = {2, 3};
    adapter.groups.push_back(group);
    Enclosure enclosure;
    enclosure.logical_id = "5000C50000000001";
    enclosure.elements = {NewElement(0, NumberOf(ElementType::kPowerSupply), 1),
                          NewElement(2, NumberOf(ElementType::kFan), 2500),
                          NewElement(5, NumberOf(ElementType::kTemperature), 27)};
    enclosure.elements[2].low_warning = 5;
    enclosure.elements[2].high_warning = 45;
    enclosure.elements[2].low_critical = 0;
    enclosure.elements[2].high_critical = 55;
    adapter.enclosures.push_back(enclosure);
    adapter.battery = NewBattery();
    answers.adapters.push_back(adapter);
    answers.adapters.push_back(NewAdapter(1, "SN-B"));
    answers.adapters[1].battery_query.result = Query::Result::kNone;
    return answers;
}

Answers DegradedMachine() {
    Answers answers = GoodMachine();
    Fail(answers, 5);
    return answers;
}

Disk& DiskAt(Answers& answers, unsigned id) {
    return *std::ranges::find(answers.adapters[0].disks, id, &Disk::id);
}

VirtualDisk& VirtualDiskAt(Answers& answers, unsigned id) {
    return *std::ranges::find(answers.adapters[0].virtual_disks, id, &VirtualDisk::id);
}

Element& ElementAt(Answers& answers, unsigned id) {
    return *std::ranges::find(answers.adapters[0].enclosures[0].elements, id, &Element::id);
}

void Lose(Answers& answers, unsigned virtual_disk, unsigned position) {
    VirtualDisk& degraded = VirtualDiskAt(answers, virtual_disk);
    degraded.members[position].state = NumberOf(ArrayState::kOffline);
    const Redundancy left = RedundancyOf(degraded, answers.adapters[0].disks);
    degraded.state = left.is_offline      ? NumberOf(ArrayState::kOffline)
                     : *left.survives > 0 ? NumberOf(ArrayState::kPartiallyOptimal)
                                          : NumberOf(ArrayState::kDegraded);
}

namespace {

void Break(Answers& answers, unsigned disk, unsigned status) {
    DiskAt(answers, disk).status = status;
    for (VirtualDisk& each : answers.adapters[0].virtual_disks) {
        for (unsigned i = 0; i < each.members.size(); ++i) {
            if (each.members[i].disk == disk) Lose(answers, each.id, i);
        }
    }
}

}  // namespace

void Fail(Answers& answers, unsigned disk) {
    Break(answers, disk,
          NumberOf(DiskBit::kConfigured) | NumberOf(DiskBit::kFailed) |
              NumberOf(DiskBit::kUnavailable));
}

void Pull(Answers& answers, unsigned disk) {
    Break(answers, disk, NumberOf(DiskBit::kConfigured) | NumberOf(DiskBit::kUnavailable));
}

void Rebuild(Answers& answers, unsigned virtual_disk, unsigned percent, unsigned state) {
    VirtualDisk& rebuilt = VirtualDiskAt(answers, virtual_disk);
    rebuilt.activity = Activity{NumberOf(hxcodes::ActivityKind::kRebuild), state, percent, 3600};
    for (Member& member : rebuilt.members) {
        if (member.state == NumberOf(ArrayState::kOptimal)) continue;
        member.state = NumberOf(ArrayState::kRebuilding);
        DiskAt(answers, *member.disk).status = NumberOf(DiskBit::kOnline) |
                                               NumberOf(DiskBit::kConfigured) |
                                               NumberOf(DiskBit::kRebuilding);
    }
}

Query Failed(const std::string& call, unsigned code) {
    Query query;
    query.result = Query::Result::kFailed;
    query.call = call;
    query.code = code;
    return query;
}

void FailAll(Adapter& adapter) {
    const Query failed = Failed("HX_Adapter_GetInfo", 7);
    const unsigned number = adapter.number;
    adapter = Adapter{};
    adapter.number = number;
    adapter.info = adapter.settings = adapter.virtual_disks_query = adapter.disks_query = failed;
    adapter.smart = adapter.groups_query = adapter.enclosures_query = failed;
    adapter.battery_query = failed;
}

Event EventOf(unsigned event_class, unsigned code, unsigned device, std::uint32_t param) {
    Event event;
    event.event_class = event_class;
    event.code = code;
    event.device = device;
    event.time = 1'800'000'000;
    event.params[0] = param;
    return event;
}

const Overview& Watcher::Look(const Answers& answers, const std::vector<Event>& events) {
    hxconditions::Look look = LookAt(std::move(state), answers, events, now, settings);
    state = std::move(look.state);
    messages = std::move(look.messages);
    overview = std::move(look.overview);
    return overview;
}

void Watcher::Wait(std::int64_t seconds) {
    now.real += seconds;
    now.boot += seconds;
}

const Overview& Watcher::LookFor(std::int64_t seconds, const Answers& answers) {
    Look(answers);
    Wait(seconds);
    return Look(answers);
}

Answers DiskFails(Watcher& watcher) {
    watcher.LookFor(60, GoodMachine());
    Answers answers = DegradedMachine();
    watcher.LookFor(5, answers);
    return answers;
}

std::string CodesOf(const Overview& overview) {
    std::vector<std::string> codes;
    for (const Condition& head : overview.heads) {
        Walk(head, [&](const Condition& each) {
            if (each.level != Level::kInfo) codes.emplace_back(RowOf(each.code).name);
        });
    }
    std::ranges::sort(codes);
    std::string text;
    for (const std::string& code : codes) text += (text.empty() ? "" : " ") + code;
    return text;
}

std::string HeadsOf(const Overview& overview) {
    std::string text;
    for (const Condition& head : overview.heads) {
        text += (text.empty() ? "" : " ") + std::string(RowOf(head.code).name);
    }
    return text;
}

const Condition* Find(const Overview& overview, Code code) {
    const Condition* found = nullptr;
    for (const Condition& head : overview.heads) {
        Walk(head, [&](const Condition& each) {
            if (each.code == code && found == nullptr) found = &each;
        });
    }
    return found;
}

std::string ChangesOf(const std::vector<Message>& messages) {
    std::string text;
    for (const Message& message : messages) {
        if (message.condition.level == Level::kInfo) continue;
        text += (text.empty() ? "" : "; ") + std::string(NameOf(message.change)) + " " +
                std::string(RowOf(message.condition.code).name);
    }
    return text;
}

}  // namespace hxconditions
