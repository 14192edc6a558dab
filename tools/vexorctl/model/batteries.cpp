#include "model/batteries.h"

#include "model/library_record.h"
#include "model/result_tree.h"

namespace vexorctl {

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
    }
    return batteries;
}

}  // namespace vexorctl
