#include "model/batteries.h"

#include <string>

namespace vexorctl {

std::vector<Battery> LoadBatteries(Controller& controller) {
    std::vector<Battery> batteries;
    for (const unsigned adapter : controller.Selected()) {
        const Address address{.adapter = adapter};
        const auto result = controller.Get(
            address.Text(), {"HX_BBU_GetInfo", {{"AdapterID", std::to_string(adapter)}}});
        if (!result || result->Find("BBU_Info") == nullptr) continue;
        batteries.push_back({address, *result->Find("BBU_Info")});
    }
    return batteries;
}

}  // namespace vexorctl
