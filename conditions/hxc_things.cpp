// Identities: an adapter has its serial number, a disk its world wide name or serial number, a
// virtual disk or disk group its adapter, number, name and size, an element its enclosure's logical
// identifier and its number.
#include "conditions/hxc_things.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace hxconditions {

namespace {

std::string IdentityOf(const Adapter& adapter, const KnownAdapters& known) {
    const std::string serial = Harmless(adapter.serial);
    // A serial number that begins with "0" counts as none.
    if (!serial.empty() && serial.front() != '0') return "adapter " + serial;
    if (!adapter.info.IsRead()) {
        const auto found = known.find(adapter.number);
        if (found != known.end()) return found->second;
    }
    return "adapter number " + std::to_string(adapter.number);
}

bool IsAllZero(const std::string& text) {
    return std::ranges::all_of(text, [](char each) { return each == '0'; });
}

template <class Item>
const Item* FindItem(const std::vector<Item>& items, std::optional<unsigned> id) {
    const auto found =
        std::ranges::find_if(items, [&](const Item& each) { return id && each.id == *id; });
    return found == items.end() ? nullptr : &*found;
}

}  // namespace

const Disk* FindDisk(const Adapter& adapter, std::optional<unsigned> id) {
    return FindItem(adapter.disks, id);
}

const DiskGroup* FindGroup(const Adapter& adapter, std::optional<unsigned> id) {
    return FindItem(adapter.groups, id);
}

Things::Things(const Answers& answers, const KnownAdapters& known) : answers_(answers) {
    for (const Adapter& adapter : answers.adapters) {
        identities_[adapter.number] = IdentityOf(adapter, known);
    }
    for (const Adapter& adapter : answers.adapters) {
        all_.push_back(Of(adapter));
        if (adapter.battery) all_.push_back(BatteryOf(adapter));
        for (const VirtualDisk& each : adapter.virtual_disks) all_.push_back(Of(adapter, each));
        for (const DiskGroup& each : adapter.groups) all_.push_back(Of(adapter, each));
        for (const Disk& each : adapter.disks) all_.push_back(Of(adapter, each));
        for (const Enclosure& each : adapter.enclosures) {
            all_.push_back(Of(adapter, each));
            for (const Element& element : each.elements) {
                all_.push_back(Of(adapter, each, element));
            }
        }
    }
}

Object Things::Machine() const {
    Object object;
    object.identity = "machine";
    return object;
}

Object Things::OfStore() const {
    Object object;
    object.kind = Kind::kStore;
    object.name = Harmless(answers_.store.path);
    object.identity = "store";
    return object;
}

Object Things::OfService() const {
    Object object;
    object.kind = Kind::kService;
    object.name = "hxraidsvc";
    object.identity = "service";
    return object;
}

Object Things::OfSink(const Sink& sink) const {
    Object object;
    object.kind = Kind::kSink;
    object.name = Harmless(sink.name);
    object.identity = "sink " + object.name;
    return object;
}

Object Things::Of(const Adapter& adapter) const {
    Object object;
    object.kind = Kind::kAdapter;
    object.adapter = adapter.number;
    object.address = AddressOf(adapter.number);
    object.serial = Harmless(adapter.serial);
    object.identity = identities_.at(adapter.number);
    object.adapter_identity = object.identity;
    object.is_known = adapter.info.IsRead() || !object.identity.starts_with("adapter number");
    return object;
}

Object Things::BatteryOf(const Adapter& adapter) const {
    Object object = Of(adapter);
    object.kind = Kind::kBattery;
    object.serial.clear();
    object.identity = "battery of " + object.adapter_identity;
    return object;
}

Object Things::OfNumbered(const Adapter& adapter, Kind kind, unsigned id) const {
    Object object = Of(adapter);
    object.kind = kind;
    object.id = id;
    object.address = AddressOf(adapter.number, kind, id);
    return object;
}

template <class Array>
Object Things::OfArray(const Adapter& adapter, Kind kind, const char* word,
                       const Array& array) const {
    Object object = OfNumbered(adapter, kind, array.id);
    object.name = Harmless(array.name);
    object.serial.clear();
    object.is_known = true;
    object.identity = std::string(word) + " " + std::to_string(array.id) + " " +
                      std::to_string(array.sectors) + " \"" + object.name + "\" of " +
                      object.adapter_identity;
    return object;
}

Object Things::Of(const Adapter& adapter, const VirtualDisk& virtual_disk) const {
    return OfArray(adapter, Kind::kVirtualDisk, "vd", virtual_disk);
}

Object Things::Of(const Adapter& adapter, const DiskGroup& group) const {
    return OfArray(adapter, Kind::kDiskGroup, "dg", group);
}

Object Things::Of(const Adapter& adapter, const Disk& disk) const {
    Object object = OfNumbered(adapter, Kind::kDisk, disk.id);
    object.serial = Harmless(disk.serial);
    const std::string wwn = Harmless(disk.wwn);
    object.is_known = true;
    if (!IsAllZero(wwn)) {
        object.identity = "disk " + wwn;
    } else if (!object.serial.empty()) {
        object.identity = "disk " + object.serial;
    } else {
        object.is_known = false;
        object.identity = "disk " + std::to_string(disk.id) + " of " + object.adapter_identity;
    }
    return object;
}

Object Things::Of(const Adapter& adapter, const Enclosure& enclosure) const {
    Object object = OfNumbered(adapter, Kind::kEnclosure, enclosure.id);
    object.serial = Harmless(enclosure.logical_id);
    object.is_known = !object.serial.empty();
    object.identity = object.is_known ? "enclosure " + object.serial
                                      : "enclosure " + std::to_string(enclosure.id) + " of " +
                                            object.adapter_identity;
    return object;
}

Object Things::Of(const Adapter& adapter, const Enclosure& enclosure,
                  const Element& element) const {
    Object object = Of(adapter, enclosure);
    object.kind = Kind::kElement;
    object.element = element.id;
    object.address += "/el" + std::to_string(element.id);
    object.identity = "element " + std::to_string(element.id) + " of " + object.identity;
    return object;
}

const Adapter* Things::FindAdapter(const std::string& identity) const {
    for (const Adapter& adapter : answers_.adapters) {
        if (identities_.at(adapter.number) == identity) return &adapter;
    }
    return nullptr;
}

const Adapter* Things::FindAdapter(unsigned number) const {
    const auto found = std::ranges::find(answers_.adapters, number, &Adapter::number);
    return found == answers_.adapters.end() ? nullptr : &*found;
}

bool Things::IsRead(const Object& object, unsigned rests_on) const {
    if ((rests_on & Source::kMachine) != 0 && !answers_.machine.IsRead()) return false;
    if ((rests_on & Source::kStore) != 0 &&
        (answers_.store.state == Store::State::kNotLooked ||
         answers_.store.state == Store::State::kUnreadable) &&
        object.kind == Kind::kStore) {
        return false;
    }
    constexpr unsigned kOfAdapter = ~static_cast<unsigned>(Source::kMachine | Source::kStore |
                                                           Source::kService | Source::kEvents);
    if ((rests_on & kOfAdapter) == 0) return true;
    if (!answers_.machine.IsRead()) return false;
    const Adapter* const adapter = FindAdapter(object.adapter_identity);
    if (adapter == nullptr) return false;
    const std::pair<unsigned, const Query*> queries[] = {
        {Source::kInfo, &adapter->info},
        {Source::kSettings, &adapter->settings},
        {Source::kVirtualDisks, &adapter->virtual_disks_query},
        {Source::kDisks, &adapter->disks_query},
        {Source::kSmart, &adapter->smart},
        {Source::kGroups, &adapter->groups_query},
        {Source::kEnclosures, &adapter->enclosures_query},
        {Source::kBattery, &adapter->battery_query},
    };
    return std::ranges::all_of(queries, [&](const auto& query) {
        return (rests_on & query.first) == 0 || query.second->IsRead();
    });
}

}  // namespace hxconditions
