#include "find_object.h"

#include <algorithm>
#include <vector>

#include "failure.h"
#include "model/hxsim_text.h"

namespace hxsimctl {

namespace {

using vexortools::Address;
using vexortools::NameOf;
using vexortools::Selector;

template <class Machine>
auto& FindAdapter(Machine& machine, const Object& object) {
    if (object.adapter >= machine.adapters.size()) {
        throw NoObject(object.text + ": the machine has " +
                       std::to_string(machine.adapters.size()) +
                       " adapters, numbered from 0; hxsimctl show lists them");
    }
    return machine.adapters[object.adapter];
}

Object ObjectAt(const Address& address) {
    return {address.kind, static_cast<HX_U8>(address.adapter), static_cast<HX_U16>(address.id),
            static_cast<HX_U16>(address.element), address.Text()};
}

// Removes the trailing blanks of fixed fields and device texts, which nobody types.
std::string WithoutBlanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// Finds the addresses of an adapter's objects that match the kind and the name or serial number of
// a target.
class Search {
public:
    Search(const hxsim::Adapter& adapter, const Target& target)
        : adapter_(adapter), target_(target) {}

    void AddTo(std::vector<Address>& found) const {
        const bool by_name = target_.selector.form == Selector::Form::kName;
        switch (target_.kind) {
            case ObjectKind::kAdapter:
                if (!by_name) Add(found, 0, hxsim::TextOf(adapter_.info.SerialNo));
                break;
            case ObjectKind::kDisk:
                for (const hxsim::Disk& disk : adapter_.disks) {
                    if (!by_name) Add(found, disk.id, disk.serial);
                }
                break;
            case ObjectKind::kVirtualDisk:
                for (const hxsim::VirtualDisk& virtual_disk : adapter_.virtual_disks) {
                    if (by_name) Add(found, virtual_disk.id, virtual_disk.name);
                }
                break;
            case ObjectKind::kDiskGroup:
                for (const hxsim::DiskGroup& group : adapter_.disk_groups) {
                    if (by_name) Add(found, group.id, group.name);
                }
                break;
            case ObjectKind::kEnclosure:
            case ObjectKind::kElement:
                break;  // without names and serial numbers
        }
    }

private:
    void Add(std::vector<Address>& found, HX_U16 id, const std::string& text) const {
        if (WithoutBlanks(text) != target_.selector.text) return;
        found.push_back({adapter_.id, target_.kind, id, 0});
    }

    const hxsim::Adapter& adapter_;
    const Target& target_;
};

bool Has(const hxsim::Adapter& adapter, const Object& object) {
    switch (object.kind) {
        case ObjectKind::kAdapter:
            return true;
        case ObjectKind::kDisk:
            return hxsim::Find(adapter.disks, object.id) != nullptr;
        case ObjectKind::kVirtualDisk:
            return hxsim::Find(adapter.virtual_disks, object.id) != nullptr;
        case ObjectKind::kDiskGroup:
            return hxsim::Find(adapter.disk_groups, object.id) != nullptr;
        case ObjectKind::kEnclosure:
            return hxsim::Find(adapter.enclosures, object.id) != nullptr;
        case ObjectKind::kElement:
            return FindElement(adapter, object) != nullptr;
    }
    return false;
}

}  // namespace

Target ParseTarget(std::string_view word, ObjectKind kind) {
    return {kind, vexortools::ParseSelector(word, kind)};
}

Target ParseTarget(std::string_view word) {
    Target target{ObjectKind::kAdapter, vexortools::ParseSelector(word)};
    switch (target.selector.form) {
        case Selector::Form::kAddress:
            target.kind = target.selector.address.kind;
            break;
        case Selector::Form::kName:
            target.kind = ObjectKind::kVirtualDisk;
            break;
        case Selector::Form::kSerial:
            target.kind = ObjectKind::kDisk;
            break;
    }
    return target;
}

std::optional<Object> FindObject(const hxsim::Machine& machine, const Target& target) {
    const Selector& selector = target.selector;
    if (selector.form == Selector::Form::kAddress) return ObjectAt(selector.address);
    std::vector<Address> found;
    for (const hxsim::Adapter& adapter : machine.adapters) Search(adapter, target).AddTo(found);
    if (found.empty()) return std::nullopt;
    if (found.size() > 1) {
        std::string addresses;
        for (const Address& each : found) {
            addresses.append(addresses.empty() ? "" : ", ").append(each.Text());
        }
        throw UsageError(selector.typed + " means several: " + addresses + "; give an address");
    }
    return ObjectAt(found.front());
}

Object NameObject(const hxsim::Machine& machine, const Target& target) {
    if (const std::optional<Object> object = FindObject(machine, target)) return *object;
    throw NoObject(target.selector.typed + ": the machine has no such " +
                   std::string(NameOf(target.kind)) + "; hxsimctl show lists what there is");
}

Object RequireObject(const hxsim::Machine& machine, const Target& target) {
    Object object = NameObject(machine, target);
    if (!Has(AdapterAt(machine, object), object)) {
        throw NoObject(object.text + ": adapter a" + std::to_string(object.adapter) +
                       " has none of that number; hxsimctl show lists what there is");
    }
    return object;
}

const hxsim::Adapter& AdapterAt(const hxsim::Machine& machine, const Object& object) {
    return FindAdapter(machine, object);
}

hxsim::Adapter& AdapterAt(hxsim::Machine& machine, const Object& object) {
    return FindAdapter(machine, object);
}

const hxsim::Element* FindElement(const hxsim::Adapter& adapter, const Object& object) {
    const auto found = std::ranges::find_if(adapter.elements, [&](const hxsim::Element& element) {
        return element.enclosure == object.id && element.number == object.element;
    });
    return found == adapter.elements.end() ? nullptr : &*found;
}

}  // namespace hxsimctl
