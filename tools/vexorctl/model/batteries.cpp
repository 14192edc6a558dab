#include "model/batteries.h"

#include "model/library_record.h"
#include "model/result_tree.h"
#include "model/sightings.h"

namespace vexorctl {

namespace {

Sighting SightingOf(const Battery& battery) {
    using fields::BBU_Info;
    Sighting sighting;
    sighting.facts = {
        NumberFact("number of charge cycles", battery.info[BBU_Info::recharge_cycle]),
        NumberFact("capacity", battery.info[BBU_Info::maxCapacity]),
        NumberFact("lowest voltage", battery.info[BBU_Info::volt_lowerbound]),
        NumberFact("highest voltage", battery.info[BBU_Info::volt_upperbound]),
        NumberFact("lowest temperature", battery.info[BBU_Info::temp_lowerbound]),
        NumberFact("highest temperature", battery.info[BBU_Info::temp_upperbound]),
    };
    return sighting;
}

}  // namespace

std::string BatteryName(const Address& adapter) { return "the battery of " + adapter.Text(); }

std::vector<Battery> LoadBatteries(Controller& controller) {
    using Info = calls::HX_BBU_GetInfo;
    std::vector<Battery> batteries;
    for (const unsigned adapter : controller.Selected()) {
        const Address address{.adapter = adapter};
        const auto answer =
            controller.Get(address.Text(), Request<Info>{{Info::AdapterID, adapter}});
        if (!answer) continue;
        const Value* const info = answer->result.Find(Info::Result::BBU_Info.name);
        batteries.push_back({address, info == nullptr ? Record<fields::BBU_Info>()
                                                      : Record<fields::BBU_Info>(*info)});
        if (Sightings* const sightings = controller.sightings()) {
            sightings->Note(BatteryName(address), SightingOf(batteries.back()));
        }
    }
    return batteries;
}

}  // namespace vexorctl
