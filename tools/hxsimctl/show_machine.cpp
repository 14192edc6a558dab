#include "show_machine.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <ostream>
#include <string>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/level.h"
#include "codes/state.h"
#include "common/terminal_text.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_home.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_battery.h"

namespace hxsimctl {

namespace {

using hxsim::Activity;
using hxsim::Adapter;
using hxsim::Disk;
using hxsim::DiskGroup;
using hxsim::Element;
using hxsim::Owner;
using hxsim::Time;
using hxsim::VirtualDisk;

// A device's text made printable and without the padding of its field.
std::string Shown(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return vexortools::Printable(text);
}

// A size in the largest unit in which it is 1 or more.
std::string SizeText(hxsim::Sectors sectors) {
    struct Unit {
        const char* name;
        hxsim::Sectors sectors;
    };
    constexpr Unit kUnits[] = {{"TiB", 2147483648}, {"GiB", 2097152}, {"MiB", 2048}, {"KiB", 2}};
    const Unit* unit = kUnits;
    while (unit->sectors > 2 && sectors < unit->sectors) ++unit;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f %s",
                  static_cast<double>(sectors) / static_cast<double>(unit->sectors), unit->name);
    return text.data();
}

std::string ReadingOf(const Element& element) {
    switch (element.type) {
        case hxcodes::ElementType::kFan:
            return ", " + std::to_string(element.reading) + " rpm";
        case hxcodes::ElementType::kTemperature:
            // SES sends degrees Celsius plus 20; 0 means unknown.
            return element.reading == 0 ? "" : ", " + std::to_string(element.reading - 20) + " C";
        case hxcodes::ElementType::kVoltage: {
            std::array<char, 32> text{};
            std::snprintf(text.data(), text.size(), ", %.2f V", element.reading / 100.0);
            return text.data();
        }
        case hxcodes::ElementType::kAlarm:
            return element.muted ? ", muted" : "";
        case hxcodes::ElementType::kPowerSupply:
        case hxcodes::ElementType::kDoor:
            break;
    }
    return "";
}

class Tree {
public:
    Tree(const Adapter& adapter, Time now, std::ostream& out)
        : adapter_(adapter), now_(now), out_(out), roles_(adapter) {}

    void Print() {
        Line(0, "") << ": adapter, serial " << Shown(hxsim::TextOf(adapter_.info.SerialNo))
                    << (adapter_.alarm ? ", alarm sounding" : "")
                    << (adapter_.muted ? ", alarm muted" : "") << ", " << adapter_.events.size()
                    << " events waiting\n";
        PrintDevices(1, hxcodes::Device::kAdapter, adapter_.id);
        for (const DiskGroup& group : adapter_.disk_groups) PrintGroup(group);
        for (const VirtualDisk& virtual_disk : adapter_.virtual_disks) {
            if (virtual_disk.group == hxsim::kNoId) PrintVirtualDisk(1, virtual_disk);
        }
        for (const hxsim::Battery& battery : adapter_.batteries) PrintBattery(battery);
    }

private:
    std::ostream& Line(int depth, const std::string& address) {
        out_ << std::string(2 * static_cast<std::size_t>(depth), ' ') << 'a' << int{adapter_.id};
        if (!address.empty()) out_ << '/' << address;
        return out_;
    }

    // Prints the devices below a device. The depth is limited, because expanders may form a cycle
    // in a damaged machine, which check reports.
    void PrintDevices(int depth, hxcodes::Device parent, HX_U16 parent_id) {
        constexpr int kDeepest = 16;
        if (depth > kDeepest) return;
        const auto hangs = [&](const hxsim::Attachment& device) {
            return device.parent == parent && device.parent_id == parent_id;
        };
        for (const hxsim::Expander& expander : adapter_.expanders) {
            if (!hangs(expander)) continue;
            Line(depth, "exp" + std::to_string(expander.id))
                << ": expander, " << Shown(expander.vendor) << ' ' << Shown(expander.product)
                << ", " << int{expander.phy_count} << " phys\n";
            PrintDevices(depth + 1, hxcodes::Device::kExpander, expander.id);
        }
        for (const hxsim::PortMultiplier& multiplier : adapter_.port_multipliers) {
            if (!hangs(multiplier)) continue;
            Line(depth, "pm" + std::to_string(multiplier.id))
                << ": port multiplier, " << int{multiplier.ports} << " ports\n";
            PrintDevices(depth + 1, hxcodes::Device::kPortMultiplier, multiplier.id);
        }
        for (const hxsim::Enclosure& enclosure : adapter_.enclosures) {
            if (hangs(enclosure)) PrintEnclosure(depth, enclosure);
        }
        for (const Disk& disk : adapter_.disks) {
            if (hangs(disk)) PrintDisk(depth, disk);
        }
    }

    void PrintEnclosure(int depth, const hxsim::Enclosure& enclosure) {
        const std::string address = "enc" + std::to_string(enclosure.id);
        Line(depth, address) << ": enclosure, " << Shown(enclosure.vendor) << ' '
                             << Shown(enclosure.product) << '\n';
        for (const Element& element : adapter_.elements) {
            if (element.enclosure != enclosure.id) continue;
            Line(depth + 1, address + "/el" + std::to_string(element.number))
                << ": " << NameOf(element.type) << ", " << NameOf(element.status)
                << ReadingOf(element) << '\n';
        }
    }

    void PrintDisk(int depth, const Disk& disk) {
        const hxsim::DiskRole& role = roles_.Of(disk);
        Line(depth, "pd" + std::to_string(disk.id)) << ": ";
        if (!hxsim::IsListed(disk, role)) {
            out_ << "empty\n";
            return;
        }
        out_ << hxcodes::DiskWordOf(role.status) << ", " << Shown(disk.model) << ", "
             << SizeText(disk.sectors) << ", serial " << Shown(disk.serial);
        if (disk.smart_exceeded) out_ << ", SMART threshold exceeded";
        if (disk.locate_light) out_ << ", located";
        PrintActivity(Owner::kDisk, disk.id);
    }

    void PrintGroup(const DiskGroup& group) {
        Line(1, "dg" + std::to_string(group.id))
            << ": " << NameOf(hxsim::StateOf(adapter_, group)) << ", " << NameOf(group.level)
            << " \"" << Shown(group.name) << "\" on";
        PrintDisks(Owner::kDiskGroup, group.id, group.width);
        PrintActivity(Owner::kDiskGroup, group.id);
        for (const VirtualDisk& virtual_disk : adapter_.virtual_disks) {
            if (virtual_disk.group == group.id) PrintVirtualDisk(2, virtual_disk);
        }
    }

    void PrintVirtualDisk(int depth, const VirtualDisk& virtual_disk) {
        Line(depth, "vd" + std::to_string(virtual_disk.id))
            << ": " << NameOf(hxsim::StateOf(adapter_, virtual_disk)) << ", "
            << NameOf(virtual_disk.level) << " \"" << Shown(virtual_disk.name) << "\", "
            << SizeText(virtual_disk.size);
        if (virtual_disk.group == hxsim::kNoId) {
            out_ << " on";
            PrintDisks(Owner::kVirtualDisk, virtual_disk.id, virtual_disk.width);
        }
        PrintActivity(Owner::kVirtualDisk, virtual_disk.id);
    }

    // Prints the disks that serve the positions; a dash for a lost position.
    void PrintDisks(Owner of, HX_U16 owner, HX_U8 width) {
        for (HX_U8 position = 0; position < width; ++position) {
            const hxsim::Home* const home = hxsim::HomeOf(adapter_, of, owner, position);
            if (home == nullptr || home->disk == hxsim::kNoId) {
                out_ << " -";
            } else {
                out_ << " pd" << home->disk;
            }
        }
    }

    void PrintActivity(Owner of, HX_U16 owner) {
        if (const Activity* const activity = hxsim::ActivityOf(adapter_, of, owner)) {
            out_ << ", " << NameOf(activity->kind) << ' ' << hxsim::Percentage(*activity, now_)
                 << '%';
            if (activity->state != hxcodes::ActivityState::kRunning) {
                out_ << ' ' << NameOf(activity->state);
            }
        }
        out_ << '\n';
    }

    void PrintBattery(const hxsim::Battery& battery) {
        const BBU_Info info = hxsim::Describe(battery, now_);
        Line(1, "bbu") << ": battery";
        for (const hxcodes::Named& bit : hxcodes::kBatteryBits) {
            if ((info.status & bit.code) != 0) out_ << ", " << bit.name;
        }
        if (battery.present) {
            out_ << ", " << int{info.percentage} << "%, " << info.temperature << " C, "
                 << info.voltage << " mV";
        }
        out_ << '\n';
    }

    const Adapter& adapter_;
    const Time now_;
    std::ostream& out_;
    const hxsim::DiskRoles roles_;
};

}  // namespace

std::string TimeText(Time time) {
    const std::time_t seconds = time / 1000;
    std::tm date{};
    gmtime_r(&seconds, &date);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &date);
    return text.data();
}

void ShowMachine(const hxsim::Machine& machine, Time now, std::ostream& out) {
    out << "topology " << Shown(machine.topology) << ", seed " << machine.seed << '\n';
    ShowClock(machine.clock, now, out);
    for (const Adapter& adapter : machine.adapters) Tree(adapter, now, out).Print();
}

void ShowClock(const hxsim::Clock& clock, Time now, std::ostream& out) {
    out << TimeText(now);
    if (clock.speed == 0) {
        out << ", frozen\n";
    } else if (clock.speed == 1) {
        out << ", at the speed of real time\n";
    } else {
        out << ", " << clock.speed << " times as fast as real time\n";
    }
}

}  // namespace hxsimctl
