#include "nouns/find_object.h"

#include "library_fields.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/enclosures.h"
#include "model/exit_code.h"
#include "model/fault.h"
#include "model/virtual_disks.h"

namespace vexorctl {

namespace {

struct Candidate {
    Address address;
    std::string name;
    std::string serial;
};

std::vector<Candidate> Candidates(Controller& controller, ObjectKind kind) {
    std::vector<Candidate> all;
    switch (kind) {
        case ObjectKind::kAdapter:
            for (const Adapter& each : LoadAdapters(controller)) {
                all.push_back(
                    {each.address, "", each.info[fields::Adapter_Info::SerialNo].value_or("")});
            }
            break;
        case ObjectKind::kDisk:
            for (const Disk& each : LoadDisks(controller)) {
                all.push_back(
                    {each.address, "", each.info[fields::HD_Info::SerialNo].value_or("")});
            }
            break;
        case ObjectKind::kVirtualDisk:
            for (const VirtualDisk& each : LoadVirtualDisks(controller)) {
                all.push_back({each.address, each.info[fields::LD_Info::Name].value_or(""), ""});
            }
            break;
        case ObjectKind::kDiskGroup:
            for (const DiskGroup& each : LoadDiskGroups(controller)) {
                all.push_back({each.address, each.info[fields::DG_Info::Name].value_or(""), ""});
            }
            break;
        case ObjectKind::kEnclosure:
            for (const Enclosure& each : LoadEnclosures(controller)) {
                all.push_back({each.address, "", ""});
            }
            break;
        case ObjectKind::kElement:
            for (const Element& each : LoadElements(controller)) {
                all.push_back({each.address, "", ""});
            }
            break;
    }
    return all;
}

bool Matches(const Candidate& candidate, const Selector& selector) {
    switch (selector.form) {
        case Selector::Form::kAddress:
            return candidate.address == selector.address;
        case Selector::Form::kName:
            return !candidate.name.empty() && candidate.name == selector.text;
        case Selector::Form::kSerial:
            return !candidate.serial.empty() && candidate.serial == selector.text;
    }
    return false;
}

// A fault that was met while looking up explains why the object was not found.
[[noreturn]] void ThrowAbsent(Controller& controller, ObjectKind kind, const std::string& typed) {
    for (const Fault& fault : controller.faults()) {
        throw Failure(controller.exit(), fault.address + ": " + fault.message);
    }
    throw Failure(Exit::kNoObject, typed + ": there is no such " + std::string(NameOf(kind)));
}

}  // namespace

Address FindObject(Invocation& invocation, ObjectKind kind, const std::string& typed) {
    const Selector selector = ParseSelector(typed, kind);
    Controller& controller = invocation.controller();
    if (selector.form == Selector::Form::kAddress) {
        controller.Select({selector.address.adapter});
    } else if (const auto adapter = invocation.Number("--adapter", 254)) {
        controller.Select({static_cast<unsigned>(*adapter)});
    }
    std::vector<Candidate> found = Candidates(controller, kind);
    std::erase_if(found, [&](const Candidate& each) { return !Matches(each, selector); });
    if (found.empty()) ThrowAbsent(controller, kind, typed);
    if (found.size() > 1) {
        std::string addresses;
        for (const Candidate& each : found) {
            addresses.append(addresses.empty() ? "" : ", ").append(each.address.Text());
        }
        throw UsageError(typed + " means several: " + addresses + "; give an address");
    }
    return found.front().address;
}

Address FindTarget(Invocation& invocation, ObjectKind kind, std::size_t which) {
    return FindObject(invocation, kind, invocation.targets()[which]);
}

std::vector<std::string> AddressTexts(unsigned adapter, ObjectKind kind,
                                      const std::vector<std::uint64_t>& ids) {
    std::vector<std::string> texts;
    for (const std::uint64_t id : ids) {
        const Address address{.adapter = adapter, .kind = kind, .id = static_cast<unsigned>(id)};
        texts.push_back(address.Text());
    }
    return texts;
}

unsigned FindAdapter(Invocation& invocation) {
    Controller& controller = invocation.controller();
    const std::vector<unsigned>& all = controller.Adapters();
    if (const auto number = invocation.Number("--adapter", 254)) {
        controller.Select({static_cast<unsigned>(*number)});
        if (controller.Selected().empty()) {
            throw Failure(Exit::kNoObject, controller.faults().front().message);
        }
        return static_cast<unsigned>(*number);
    }
    if (all.empty()) throw Failure(Exit::kNoObject, "there is no adapter");
    if (all.size() > 1) {
        throw UsageError("there are " + std::to_string(all.size()) +
                         " adapters; say which with --adapter");
    }
    controller.Select({all.front()});
    return all.front();
}

}  // namespace vexorctl
