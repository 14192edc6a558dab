// The models of disks that a topology names.
#include "topology/hxsim_topology_disk_models.h"

#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

// The sectors of a disk of `gigabytes` (10^9 bytes) by the formula that disk makers share.
constexpr Sectors SectorsOf(std::uint64_t gigabytes) {
    return 97696368 + 1953504 * (gigabytes - 50);
}

}  // namespace

DiskModels ReadDiskModels(TopologyObject& text) {
    DiskModels models;
    text.ForEach("disk_models", [&](TopologyObject& object) {
        std::string name;
        object.TakeNeeded("name", name);
        DiskModel model;
        object.Take("firmware", model.firmware);
        object.Take("serials", model.serials);
        HX_U32 gigabytes = 0;
        if (object.Take("gigabytes", gigabytes)) {
            if (gigabytes < 50) object.Refuse("gigabytes", "at least 50");
            model.sectors = SectorsOf(gigabytes);
        }
        object.Take("sectors", model.sectors);
        if (model.sectors <= kMetadata || model.sectors > kMostSectors) {
            object.Refuse("sectors", "gigabytes, or sectors from " + std::to_string(kMetadata + 1) +
                                         " to " + std::to_string(kMostSectors));
        }
        auto type = DiskType::kSata;
        object.TakeCode("interface", type);
        model.sas = type == DiskType::kSas;
        object.TakeCode("speed", model.speed);
        models[name] = model;
    });
    return models;
}

}  // namespace hxsim
