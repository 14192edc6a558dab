#include "model/enclosures.h"

#include <map>
#include <string>
#include <utility>

namespace vexorctl {

std::vector<Enclosure> LoadEnclosures(Controller& controller) {
    std::vector<Enclosure> enclosures;
    for (const unsigned adapter : controller.Selected()) {
        for (Value& info : controller.List(
                 adapter, {"HX_ENC_GetEnclosureInfo", "Enclosure_Info", "Link/Self/DevID"})) {
            const Address address{.adapter = adapter,
                                  .kind = ObjectKind::kEnclosure,
                                  .id = static_cast<unsigned>(info.Number("Link/Self/DevID"))};
            enclosures.push_back({address, std::move(info)});
        }
    }
    return enclosures;
}

std::vector<Element> LoadElements(Controller& controller) {
    std::vector<Element> elements;
    for (const Enclosure& enclosure : LoadEnclosures(controller)) {
        const Fields fields{{"AdapterID", std::to_string(enclosure.address.adapter)},
                            {"ENC_ID", std::to_string(enclosure.address.id)}};
        const std::string address = enclosure.address.Text();
        auto infos = controller.Get(address, {"HX_ENC_GetElementInfo", fields});
        if (!infos) continue;
        auto configs = controller.Get(address, {"HX_ENC_GetElementConfig", fields});
        std::map<std::uint64_t, Value> by_element;
        if (configs) {
            for (Value& config : configs->children) {
                if (config.name != "EncElement_Config") continue;
                const std::uint64_t id = config.Number("ElementID");
                by_element.insert_or_assign(id, std::move(config));
            }
        }
        for (Value& info : infos->children) {
            if (info.name != "EncElementType_Info") continue;
            const std::uint64_t id = info.Number("ElementID");
            const Address place{.adapter = enclosure.address.adapter,
                                .kind = ObjectKind::kElement,
                                .id = enclosure.address.id,
                                .element = static_cast<unsigned>(id)};
            elements.push_back({place, std::move(info), std::move(by_element[id])});
        }
    }
    return elements;
}

}  // namespace vexorctl
