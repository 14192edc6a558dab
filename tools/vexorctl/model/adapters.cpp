#include "model/adapters.h"

#include <optional>
#include <string>
#include <utility>

namespace vexorctl {

std::vector<Adapter> LoadAdapters(Controller& controller) {
    std::vector<Adapter> adapters;
    for (const unsigned number : controller.Selected()) {
        Adapter adapter{{.adapter = number}, {}, {}};
        const std::string address = adapter.address.Text();
        const Fields fields{{"AdapterID", std::to_string(number)}};
        const std::optional<Value> info = controller.Get(address, {"HX_Adapter_GetInfo", fields});
        if (!info) continue;
        if (const Value* const record = info->Find("AdapterInfo")) adapter.info = *record;
        const auto config = controller.Get(address, {"HX_Adapter_GetConfig", fields});
        if (config && config->Find("AdapterInfo") != nullptr) {
            adapter.config = *config->Find("AdapterInfo");
        }
        adapters.push_back(std::move(adapter));
    }
    return adapters;
}

}  // namespace vexorctl
