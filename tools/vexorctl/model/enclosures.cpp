#include "model/enclosures.h"

#include <string>
#include <utility>

#include "model/exit_code.h"
#include "model/library_record.h"

namespace vexorctl {

namespace {

constexpr ListSource kEnclosureList = ListOf(calls::HX_ENC_GetEnclosureInfo::Result::Enclosure_Info,
                                             &DeviceId<fields::Enclosure_Info>);

// The thresholds of the element of that number; unknown when it has none.
Record<fields::EncElement_Config> Find(
    const std::vector<Record<fields::EncElement_Config>>& configs, std::uint64_t id) {
    for (const auto& config : configs) {
        if (config[fields::EncElement_Config::ElementID] == id) return config;
    }
    return {};
}

void LoadElementsOf(Controller& controller, const Address& enclosure,
                    std::vector<Element>& elements) {
    using Info = calls::HX_ENC_GetElementInfo;
    using Config = calls::HX_ENC_GetElementConfig;
    const std::string address = enclosure.Text();
    const auto infos = controller.Get(
        address, Request<Info>{{Info::AdapterID, enclosure.adapter}, {Info::ENC_ID, enclosure.id}});
    if (!infos) return;
    std::vector<Record<fields::EncElement_Config>> configs;
    if (const auto answer =
            controller.Get(address, Request<Config>{{Config::AdapterID, enclosure.adapter},
                                                    {Config::ENC_ID, enclosure.id}})) {
        configs = (*answer)[Config::Result::EncElement_Config];
    }
    for (auto& info : (*infos)[Info::Result::EncElementType_Info]) {
        const auto id = info[fields::EncElementType_Info::ElementID];
        if (!id) {
            controller.Note({.address = address,
                             .function = std::string(Info::kName),
                             .name = "unreadable",
                             .message = "an element was left out: it has no ID"},
                            Exit::kRefused);
            continue;
        }
        const Address place{.adapter = enclosure.adapter,
                            .kind = ObjectKind::kElement,
                            .id = enclosure.id,
                            .element = static_cast<unsigned>(*id)};
        elements.push_back({place, std::move(info), Find(configs, *id)});
    }
}

}  // namespace

std::vector<Enclosure> LoadEnclosures(Controller& controller) {
    std::vector<Enclosure> enclosures;
    for (const unsigned adapter : controller.Selected()) {
        for (auto& [id, info] : controller.ReadList(adapter, kEnclosureList).items) {
            const Address address{.adapter = adapter,
                                  .kind = ObjectKind::kEnclosure,
                                  .id = static_cast<unsigned>(id)};
            enclosures.push_back({address, std::move(info)});
        }
    }
    return enclosures;
}

std::vector<Element> LoadElements(Controller& controller) {
    return LoadElements(controller, LoadEnclosures(controller));
}

std::vector<Element> LoadElements(Controller& controller,
                                  const std::vector<Enclosure>& enclosures) {
    std::vector<Element> elements;
    for (const Enclosure& enclosure : enclosures) {
        LoadElementsOf(controller, enclosure.address, elements);
    }
    return elements;
}

}  // namespace vexorctl
