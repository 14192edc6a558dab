#include "incident_commands.h"

#include <memory>

#include "common/number.h"
#include "common/size.h"
#include "incidents/hxsim_incident_battery.h"
#include "incidents/hxsim_incident_disk.h"
#include "incidents/hxsim_incident_enclosure.h"
#include "incidents/hxsim_incident_power.h"
#include "inject_commands.h"
#include "rules/hxsim_settle.h"

namespace hxsimctl {

namespace {

using hxsim::Adapter;
using hxsim::Machine;
using hxsim::Outcome;
using hxsim::Time;
using vexortools::Command;
using vexortools::CommandParser;

// A command with the address of one object.
Command AddOnObject(const Command& app, const std::string& name, const std::string& help,
                    ObjectKind kind, const std::string& example, Action& action,
                    const Driver::Incident& incident) {
    const Command command = app.AddCommand(name, help);
    const auto word = std::make_shared<std::string>();
    command.AddRequiredText("ADDRESS", *word, "such as " + example);
    command.WhenTyped([word, kind, incident, &action] {
        const Target target = ParseTarget(*word, kind);
        action = [target, incident](Driver& driver) { driver.Happen(target, incident); };
    });
    return command;
}

struct NumberWord {
    std::string name;  // in the help
    std::string what;
    std::uint64_t most;
};

using NumberIncident = std::function<Outcome(Adapter&, Time, const Object&, std::uint64_t number)>;

// A command with the address of one object and a number.
void AddOnObjectAndNumber(const Command& app, const std::string& name, const std::string& help,
                          ObjectKind kind, const std::string& example, const NumberWord& number,
                          Action& action, const NumberIncident& incident) {
    const Command command = app.AddCommand(name, help);
    const auto word = std::make_shared<std::string>();
    const auto digits = std::make_shared<std::string>();
    command.AddRequiredText("ADDRESS", *word, "such as " + example);
    command.AddRequiredText(number.name, *digits, number.what);
    command.WhenTyped([word, digits, number, kind, incident, &action] {
        const Target target = ParseTarget(*word, kind);
        const std::uint64_t value = vexortools::ParseNumber(*digits, number.most, number.what);
        action = [target, value, incident](Driver& driver) {
            driver.Happen(target, [&](Machine&, Adapter& adapter, Time now, const Object& object) {
                return incident(adapter, now, object, value);
            });
        };
    });
}

// ---- disk and smart ----

void AddDiskReplace(const Command& disk, Action& action) {
    const auto foreign = std::make_shared<bool>(false);
    const auto sectors = std::make_shared<hxsim::Sectors>(0);  // 0: those of the old disk
    const Command replace = AddOnObject(
        disk, "replace", "A new one of the same model is put in its place", ObjectKind::kDisk,
        "a0/pd12", action, [=](Machine& machine, Adapter& adapter, Time now, const Object& object) {
            return hxsim::ReplaceDisk(adapter, now, object.id, machine.random, *foreign, *sectors);
        });
    const auto take_size = [sectors](const std::string& word) {
        *sectors = vexortools::ParseSize(word) / vexortools::kSectorBytes;
    };
    replace.AddText("--size", take_size, "of another size, such as 300GiB");
    replace.AddFlag("--foreign", *foreign, "with another controller's metadata on it");
}

void AddDisk(const Command& app, Action& action) {
    const Command disk = app.AddCommand("disk", "Let something happen to a disk");
    disk.RequireCommands(1, 1);
    const auto add = [&](const Command& to, const char* name, const char* help,
                         Outcome (*happens)(Adapter&, Time, HX_U16)) {
        AddOnObject(to, name, help, ObjectKind::kDisk, "a0/pd12", action,
                    [happens](Machine&, Adapter& adapter, Time now, const Object& object) {
                        return happens(adapter, now, object.id);
                    });
    };
    add(disk, "fail", "It breaks", hxsim::FailDisk);
    add(disk, "remove", "It is pulled out", hxsim::RemoveDisk);
    add(disk, "insert", "The one that was pulled out is put back", hxsim::InsertDisk);
    AddDiskReplace(disk, action);
    AddOnObjectAndNumber(
        disk, "damage", "A sector of it can no longer be read", ObjectKind::kDisk, "a0/pd12",
        {"SECTOR", "number of a sector", INT64_MAX}, action,
        [](Adapter& adapter, Time now, const Object& object, std::uint64_t sector) {
            return hxsim::DamageSector(adapter, now, object.id, sector);
        });

    const Command smart = app.AddCommand("smart", "What disks say of themselves");
    smart.RequireCommands(1, 1);
    add(smart, "trip", "A disk announces its failure", hxsim::TripSmart);
}

// ---- battery ----

void AddBattery(const Command& app, Action& action) {
    const Command battery = app.AddCommand("battery", "Let something happen to the battery");
    battery.RequireCommands(1, 1);
    const auto add = [&](const char* name, const char* help, const NumberWord& number, auto set) {
        AddOnObjectAndNumber(battery, name, help, ObjectKind::kAdapter, "a0", number, action,
                             [set](Adapter& adapter, Time now, const Object&, std::uint64_t value) {
                                 return set(adapter, now, static_cast<HX_U16>(value));
                             });
    };
    add("charge", "Set its charge", {"PERCENT", "charge in percent", 100},
        [](Adapter& adapter, Time now, HX_U16 percent) {
            return hxsim::SetBatteryCharge(adapter, now, static_cast<HX_U8>(percent));
        });
    add("temperature", "Set its temperature", {"CELSIUS", "temperature in degrees Celsius", 200},
        hxsim::SetBatteryTemperature);
    add("voltage", "Set its voltage", {"MILLIVOLTS", "voltage in millivolts", 65535},
        hxsim::SetBatteryVoltage);
    const auto add_plain = [&](const char* name, const char* help,
                               Outcome (*happens)(Adapter&, Time)) {
        AddOnObject(battery, name, help, ObjectKind::kAdapter, "a0", action,
                    [happens](Machine&, Adapter& adapter, Time now, const Object&) {
                        return happens(adapter, now);
                    });
    };
    add_plain("remove", "It is taken out", hxsim::RemoveBattery);
    add_plain("replace", "A new one is put in", hxsim::ReplaceBattery);
}

// ---- fan, temp and psu ----

// The number fits, because the machine has this element.
HX_U8 ElementOf(const Object& object) { return static_cast<HX_U8>(object.element); }

void AddPowerSupply(const Command& app, Action& action) {
    const Command command =
        app.AddCommand("psu", "A power supply of an enclosure breaks or works again");
    const auto word = std::make_shared<std::string>();
    const auto state = std::make_shared<std::string>();
    command.AddRequiredText("ADDRESS", *word, "such as a0/enc0/el3");
    command.AddRequiredText("STATE", *state, "fail or ok");
    command.WhenTyped([word, state, &action] {
        const Target target = ParseTarget(*word, ObjectKind::kElement);
        if (*state != "fail" && *state != "ok") {
            throw UsageError('"' + *state + "\" is no state of a power supply; write fail or ok");
        }
        const bool works = *state == "ok";
        action = [target, works](Driver& driver) {
            driver.Happen(target, [&](Machine&, Adapter& adapter, Time now, const Object& object) {
                return hxsim::SetPowerSupply(adapter, now, object.id, ElementOf(object), works);
            });
        };
    });
}

void AddElements(const Command& app, Action& action) {
    AddOnObjectAndNumber(app, "fan", "Set the speed of an enclosure's fan", ObjectKind::kElement,
                         "a0/enc0/el3", {"RPM", "speed in turns per minute", 65535}, action,
                         [](Adapter& adapter, Time now, const Object& object, std::uint64_t rpm) {
                             return hxsim::SetFanSpeed(adapter, now, object.id, ElementOf(object),
                                                       static_cast<HX_U16>(rpm));
                         });
    AddOnObjectAndNumber(
        app, "temp", "Set what an enclosure's temperature sensor measures", ObjectKind::kElement,
        "a0/enc0/el3", {"CELSIUS", "temperature in degrees Celsius", 235}, action,
        [](Adapter& adapter, Time now, const Object& object, std::uint64_t celsius) {
            return hxsim::SetTemperature(adapter, now, object.id, ElementOf(object),
                                         static_cast<int>(celsius));
        });
    AddPowerSupply(app, action);
}

// ---- power-cut ----

void CutPower(Driver& driver) {
    driver.Change([](Machine& machine, Time now) {
        for (Adapter& adapter : machine.adapters) {
            hxsim::CutPower(adapter, now);
            hxsim::Settle(adapter, now);
        }
    });
}

}  // namespace

void AddIncidentCommands(const Command& app, Action& action) {
    AddDisk(app, action);
    AddBattery(app, action);
    AddElements(app, action);
    app.AddCommand("power-cut", "The power of all adapters fails and comes back")
        .WhenTyped([&action] { action = CutPower; });
    AddInjectCommands(app, action);
}

Action ParseIncident(const std::vector<std::string>& words) {
    const CommandParser parser;
    const Command& program = parser.Program();
    program.RequireCommands(1, 1);
    Action action;
    AddIncidentCommands(program, action);
    if (!program.HasCommand(words[0])) return {};
    parser.Parse(words);
    return action;
}

}  // namespace hxsimctl
