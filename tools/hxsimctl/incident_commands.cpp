#include "incident_commands.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>

#include "code_names.h"
#include "codes/enclosure.h"
#include "codes/event.h"
#include "common/event_object.h"
#include "common/number.h"
#include "common/size.h"
#include "incidents/hxsim_incident_activity.h"
#include "incidents/hxsim_incident_battery.h"
#include "incidents/hxsim_incident_disk.h"
#include "incidents/hxsim_incident_enclosure.h"
#include "incidents/hxsim_incident_power.h"
#include "inject_commands.h"
#include "rules/hxsim_event_queue.h"
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

using StateIncident = std::function<Outcome(Adapter&, Time, const Object&)>;

// A command with the address of an element and the word of a state, which the reader turns into
// what happens.
void AddOnElementState(const Command& app, const std::string& name, const std::string& help,
                       const std::string& states, Action& action,
                       const std::function<StateIncident(const std::string& state)>& read) {
    const Command command = app.AddCommand(name, help);
    const auto word = std::make_shared<std::string>();
    const auto state = std::make_shared<std::string>();
    command.AddRequiredText("ADDRESS", *word, "such as a0/enc0/el3");
    command.AddRequiredText("STATE", *state, states);
    command.WhenTyped([word, state, read, &action] {
        const Target target = ParseTarget(*word, ObjectKind::kElement);
        action = [target, incident = read(*state)](Driver& driver) {
            driver.Happen(target, [&](Machine&, Adapter& adapter, Time now, const Object& object) {
                return incident(adapter, now, object);
            });
        };
    });
}

StateIncident PowerSupplyIncident(const std::string& state) {
    if (state != "fail" && state != "ok") {
        throw UsageError('"' + state + "\" is no state of a power supply; write fail or ok");
    }
    return [works = state == "ok"](Adapter& adapter, Time now, const Object& object) {
        return hxsim::SetPowerSupply(adapter, now, object.id, ElementOf(object), works);
    };
}

StateIncident ElementStateIncident(const std::string& state) {
    const auto status = ParseCode<hxcodes::ElementStatus>(state, "state of an element");
    return [status](Adapter& adapter, Time now, const Object& object) {
        return hxsim::SetElementStatus(adapter, now, object.id, ElementOf(object), status);
    };
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
    AddOnElementState(app, "psu", "A power supply of an enclosure breaks or works again",
                      "fail or ok", action, PowerSupplyIncident);
    AddOnElementState(app, "element",
                      "An element of an enclosure has a state, whatever it measures",
                      "such as not_installed, unknown or ok", action, ElementStateIncident);
}

void AddEnclosure(const Command& app, Action& action) {
    const Command enclosure = app.AddCommand("enclosure", "Let something happen to an enclosure");
    enclosure.RequireCommands(1, 1);
    const auto add = [&](const char* name, const char* help,
                         Outcome (*happens)(Adapter&, Time, HX_U16)) {
        AddOnObject(enclosure, name, help, ObjectKind::kEnclosure, "a0/enc0", action,
                    [happens](Machine&, Adapter& adapter, Time now, const Object& object) {
                        return happens(adapter, now, object.id);
                    });
    };
    add("unplug", "It loses its power or its cable, with all disks in it", hxsim::UnplugEnclosure);
    add("plug", "It is connected again, with all disks in it", hxsim::PlugEnclosure);
}

// ---- event ----

struct EventWords {
    std::string address, key, params;
};

const hxcodes::EventRow& ParseKey(const std::string& key) {
    const auto* const row = std::ranges::find(hxcodes::kEvents, key, &hxcodes::EventRow::key);
    if (!key.empty() && row != std::end(hxcodes::kEvents)) return *row;
    throw UsageError('"' + key +
                     "\" is the key of no event; write one that event texts have, such as "
                     "HD_TIMEOUT");
}

// "800000,3": numbers with commas between them.
std::array<HX_U32, 4> ParseParams(std::string_view text) {
    std::array<HX_U32, 4> params{};
    for (std::size_t i = 0; !text.empty(); ++i) {
        if (i == params.size()) throw UsageError("an event has 4 parameters at most");
        const std::size_t end = std::min(text.find(','), text.size());
        params[i] = static_cast<HX_U32>(
            vexortools::ParseNumber(text.substr(0, end), UINT32_MAX, "parameter of an event"));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return params;
}

void AddEvent(const Command& app, Action& action) {
    const Command command =
        app.AddCommand("event", "The adapter tells an event, and nothing else happens");
    const auto words = std::make_shared<EventWords>();
    command.AddRequiredText("ADDRESS", words->address, "of the object that the event names");
    command.AddRequiredText("KEY", words->key, "such as HD_TIMEOUT");
    command.AddText("PARAMETERS", words->params, "its numbers, with commas between them");
    command.WhenTyped([words, &action] {
        const hxcodes::EventRow& row = ParseKey(words->key);
        const Target target = ParseTarget(words->address, vexortools::KindOf(row.subject));
        const std::array<HX_U32, 4> params = ParseParams(words->params);
        action = [target, kind = row.code, params](Driver& driver) {
            driver.Happen(target, [&](Machine&, Adapter& adapter, Time now, const Object& object) {
                hxsim::Queue(adapter, now, kind, object.id, params);
                return Outcome{};
            });
        };
    });
}

void AddStall(const Command& app, Action& action) {
    AddOnObject(app, "stall", "What runs on a virtual disk gets nowhere, until a rate is set",
                ObjectKind::kVirtualDisk, "a0/vd0", action,
                [](Machine&, Adapter& adapter, Time now, const Object& object) {
                    return hxsim::StallActivity(adapter, now, object.id);
                });
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
    AddEnclosure(app, action);
    AddEvent(app, action);
    AddStall(app, action);
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
