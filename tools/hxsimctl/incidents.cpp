// The commands that break and mend parts of the machine.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "commands.h"
#include "incidents/hxsim_incident.h"
#include "incidents/hxsim_incident_battery.h"
#include "incidents/hxsim_incident_disk.h"
#include "incidents/hxsim_incident_enclosure.h"
#include "incidents/hxsim_incident_power.h"
#include "rules/hxsim_settle.h"
#include "words.h"

namespace {

using hxsim::Adapter;
using hxsim::Machine;
using hxsim::Outcome;
using hxsim::Time;

using OnAddress = std::function<Outcome(const Address&, Machine&, Adapter&, Time)>;
using OnAddressAndNumber = std::function<Outcome(const Address&, std::uint64_t, Adapter&, Time)>;

// A command with the address of one object.
void AddOnAddress(CLI::App& app, const std::string& name, const std::string& help, Kind kind,
                  const std::string& example, Action& action, OnAddress work) {
    CLI::App* const command = app.add_subcommand(name, help);
    const auto word = std::make_shared<std::string>();
    command->add_option("ADDRESS", *word, "such as " + example)->required();
    command->callback([word, kind, work, &action] {
        const Address address = ParseAddress(*word, kind);
        action = [address, work](Driver& driver) {
            driver.Happen(address, [&](Machine& machine, Adapter& adapter, Time now) {
                return work(address, machine, adapter, now);
            });
        };
    });
}

struct NumberWord {
    std::string name;  // as help shows it
    std::string what;
    std::uint64_t most;
};

// A command with the address of one object and a number.
void AddOnAddressAndNumber(CLI::App& app, const std::string& name, const std::string& help,
                           Kind kind, const std::string& example, const NumberWord& number,
                           Action& action, OnAddressAndNumber work) {
    CLI::App* const command = app.add_subcommand(name, help);
    const auto word = std::make_shared<std::string>();
    const auto digits = std::make_shared<std::string>();
    command->add_option("ADDRESS", *word, "such as " + example)->required();
    command->add_option(number.name, *digits, number.what)->required();
    command->callback([word, digits, number, kind, work, &action] {
        const Address address = ParseAddress(*word, kind);
        const std::uint64_t value = ParseNumber(*digits, number.most, number.what);
        action = [address, value, work](Driver& driver) {
            driver.Happen(address, [&](Machine&, Adapter& adapter, Time now) {
                return work(address, value, adapter, now);
            });
        };
    });
}

void AddDisk(CLI::App& app, Action& action) {
    CLI::App* const disk = app.add_subcommand("disk", "Let something happen to a disk");
    disk->require_subcommand(1);
    const auto add = [&](const char* name, const char* help,
                         Outcome (*happens)(Adapter&, Time, HX_U16)) {
        AddOnAddress(*disk, name, help, Kind::kDisk, "a0/pd12", action,
                     [happens](const Address& address, Machine&, Adapter& adapter, Time now) {
                         return happens(adapter, now, address.id);
                     });
    };
    add("fail", "It breaks", hxsim::FailDisk);
    add("remove", "It is pulled out", hxsim::RemoveDisk);
    add("insert", "The one that was pulled out is put back", hxsim::InsertDisk);

    const auto foreign = std::make_shared<bool>(false);
    const auto sectors = std::make_shared<hxsim::Sectors>(0);  // 0: as many as the old one
    AddOnAddress(
        *disk, "replace", "A new one of the same model is put in its place", Kind::kDisk, "a0/pd12",
        action, [=](const Address& address, Machine& machine, Adapter& adapter, Time now) {
            return hxsim::ReplaceDisk(adapter, now, address.id, machine.random, *foreign, *sectors);
        });
    disk->get_subcommand("replace")->add_option_function<std::string>(
        "--size", [sectors](const std::string& word) { *sectors = ParseSize(word); },
        "of another size, such as 300GiB");
    disk->get_subcommand("replace")->add_flag("--foreign", *foreign,
                                              "with another controller's metadata on it");
    AddOnAddressAndNumber(
        *disk, "damage", "A sector of it can no longer be read", Kind::kDisk, "a0/pd12",
        {"SECTOR", "number of a sector", INT64_MAX}, action,
        [](const Address& address, std::uint64_t sector, Adapter& adapter, Time now) {
            return hxsim::DamageSector(adapter, now, address.id, sector);
        });

    CLI::App* const smart = app.add_subcommand("smart", "What disks say of themselves");
    smart->require_subcommand(1);
    AddOnAddress(*smart, "trip", "A disk announces its failure", Kind::kDisk, "a0/pd12", action,
                 [](const Address& address, Machine&, Adapter& adapter, Time now) {
                     return hxsim::TripSmart(adapter, now, address.id);
                 });
}

void AddBattery(CLI::App& app, Action& action) {
    CLI::App* const battery = app.add_subcommand("battery", "Let something happen to the battery");
    battery->require_subcommand(1);
    const auto add = [&](const char* name, const char* help, const NumberWord& number, auto set) {
        AddOnAddressAndNumber(*battery, name, help, Kind::kAdapter, "a0", number, action,
                              [set](const Address&, std::uint64_t value, Adapter& adapter,
                                    Time now) { return set(adapter, now, value); });
    };
    add("charge", "Set its charge", {"PERCENT", "charge in percent", 100},
        [](Adapter& adapter, Time now, std::uint64_t percent) {
            return hxsim::SetBatteryCharge(adapter, now, static_cast<HX_U8>(percent));
        });
    add("temperature", "Set its temperature", {"CELSIUS", "temperature in degrees Celsius", 200},
        [](Adapter& adapter, Time now, std::uint64_t celsius) {
            return hxsim::SetBatteryTemperature(adapter, now, static_cast<HX_U16>(celsius));
        });
    add("voltage", "Set its voltage", {"MILLIVOLTS", "voltage in millivolts", 65535},
        [](Adapter& adapter, Time now, std::uint64_t millivolts) {
            return hxsim::SetBatteryVoltage(adapter, now, static_cast<HX_U16>(millivolts));
        });
    AddOnAddress(*battery, "remove", "It is taken out", Kind::kAdapter, "a0", action,
                 [](const Address&, Machine&, Adapter& adapter, Time now) {
                     return hxsim::RemoveBattery(adapter, now);
                 });
    AddOnAddress(*battery, "replace", "A new one is put in", Kind::kAdapter, "a0", action,
                 [](const Address&, Machine&, Adapter& adapter, Time now) {
                     return hxsim::ReplaceBattery(adapter, now);
                 });
}

void AddPowerSupply(CLI::App& app, Action& action) {
    CLI::App* const command =
        app.add_subcommand("psu", "A power supply of an enclosure breaks or works again");
    const auto word = std::make_shared<std::string>();
    const auto state = std::make_shared<std::string>();
    command->add_option("ADDRESS", *word, "such as a0/enc0/el3")->required();
    command->add_option("STATE", *state, "fail or ok")->required();
    command->callback([word, state, &action] {
        const Address address = ParseAddress(*word, Kind::kElement);
        if (*state != "fail" && *state != "ok") {
            throw UsageError('"' + *state + "\" is no state of a power supply; write fail or ok");
        }
        const bool works = *state == "ok";
        action = [address, works](Driver& driver) {
            driver.Happen(address, [&](Machine&, Adapter& adapter, Time now) {
                return hxsim::SetPowerSupply(adapter, now, address.id, address.element, works);
            });
        };
    });
}

void AddElements(CLI::App& app, Action& action) {
    AddOnAddressAndNumber(
        app, "fan", "Set the speed of an enclosure's fan", Kind::kElement, "a0/enc0/el3",
        {"RPM", "speed in turns per minute", 65535}, action,
        [](const Address& address, std::uint64_t rpm, Adapter& adapter, Time now) {
            return hxsim::SetFanSpeed(adapter, now, address.id, address.element,
                                      static_cast<HX_U16>(rpm));
        });
    AddOnAddressAndNumber(
        app, "temp", "Set what an enclosure's temperature sensor measures", Kind::kElement,
        "a0/enc0/el3", {"CELSIUS", "temperature in degrees Celsius", 235}, action,
        [](const Address& address, std::uint64_t celsius, Adapter& adapter, Time now) {
            return hxsim::SetTemperature(adapter, now, address.id, address.element,
                                         static_cast<int>(celsius));
        });
    AddPowerSupply(app, action);
}

void AddPowerCut(CLI::App& app, Action& action) {
    CLI::App* const command =
        app.add_subcommand("power-cut", "The power of all adapters fails and comes back");
    command->callback([&action] {
        action = [](Driver& driver) {
            driver.Change([](Machine& machine, Time now) {
                for (Adapter& adapter : machine.adapters) {
                    hxsim::CutPower(adapter, now);
                    hxsim::Settle(adapter, now);
                }
            });
        };
    });
}

}  // namespace

void AddIncidents(CLI::App& app, Action& action) {
    AddDisk(app, action);
    AddBattery(app, action);
    AddElements(app, action);
    AddPowerCut(app, action);
    AddInject(app, action);
}

void Parse(CLI::App& app, std::vector<std::string> words) {
    std::ranges::reverse(words);  // the parser takes them from the end
    try {
        app.parse(words);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) throw;  // help was asked for, and is the caller's to show
        throw UsageError(error.what());
    }
}
