#include "model/adapters.h"

#include <string>
#include <utility>

#include "model/library_record.h"
#include "model/sightings.h"

namespace vexorctl {

namespace {

Sighting SightingOf(const Adapter& adapter) {
    using fields::Adapter_Info;
    Sighting sighting;
    sighting.facts = {
        TextFact("serial number", adapter.info[Adapter_Info::SerialNo]),
        NumbersFact("WWN", adapter.info[Adapter_Info::WWN]),
        NumberFact("device", adapter.info[Adapter_Info::DevID]),
        NumberFact("slot", adapter.info[Adapter_Info::SlotNumber]),
        SettingsFact(adapter.config.value()),
    };
    return sighting;
}

}  // namespace

std::vector<Adapter> LoadAdapters(Controller& controller) {
    using Info = calls::HX_Adapter_GetInfo;
    using Config = calls::HX_Adapter_GetConfig;
    std::vector<Adapter> adapters;
    for (const unsigned number : controller.Selected()) {
        Adapter adapter{.address = {.adapter = number}, .info = {}, .config = {}};
        const std::string address = adapter.address.Text();
        const auto info = controller.Get(address, Request<Info>{{Info::AdapterID, number}});
        if (!info) continue;
        adapter.info = First((*info)[Info::Result::AdapterInfo]);
        const auto config = controller.Get(address, Request<Config>{{Config::AdapterID, number}});
        if (config) adapter.config = First((*config)[Config::Result::AdapterInfo]);
        if (Sightings* const sightings = controller.sightings()) {
            sightings->Note(address, SightingOf(adapter));
        }
        adapters.push_back(std::move(adapter));
    }
    return adapters;
}

}  // namespace vexorctl
