// World wide names, and what hangs on what.
#include "hxsim_link.h"

#include <cstdint>

namespace hxsim {
namespace {

// A world wide name in the form NAA 5: 4 bits 5, 24 bits company, 36 bits of the company's own. The
// company has the bit set that marks an identifier as locally administered, so that no maker's
// device has the same name. The company's own bits are the kind of device, its ID, its adapter's
// number and the port's.
constexpr std::uint64_t kCompany = 0x0A4858;

Link_Endpoint Endpoint(HxsimDevice kind, HX_U16 id, HX_U8 phy, HX_U8 phys, HX_U16 enclosure) {
    Link_Endpoint end{};
    end.DevID = id;
    end.DevType = kind;
    end.PhyCnt = phys;
    for (HX_U8 i = 0; i < phys; ++i) end.PhyID[i] = static_cast<HX_U8>(phy + i);
    end.EnclosureID = enclosure;
    return end;
}

Link_Endpoint Parent(HX_U8 adapter, const Attachment& at) {
    const Expander* const expander =
        at.parent == HXSIM_DEVICE_EXPANDER ? Find(adapter, kExpanders, at.id) : nullptr;
    Link_Endpoint parent = Endpoint(at.parent, at.id, at.phy, at.phys,
                                    expander == nullptr ? kNoId : expander->enclosure);
    if (expander != nullptr) {
        SetWorldWideName(parent.SAS_Address, at.parent, adapter, at.id, 0);
    } else if (at.parent == HXSIM_DEVICE_ADAPTER) {
        SetWorldWideName(parent.SAS_Address, at.parent, adapter, 0, at.phy + 1U);
    }
    return parent;
}

}  // namespace

void SetWorldWideName(HX_U8 (&name)[8], HxsimDevice kind, HX_U8 adapter, HX_U16 id, unsigned port) {
    const std::uint64_t own = std::uint64_t{kind} - HXSIM_DEVICE_ADAPTER;
    const std::uint64_t number = std::uint64_t{5} << 60 | kCompany << 36 | own << 32 |
                                 std::uint64_t{id} << 16 | std::uint64_t{adapter} << 8 | port;
    for (unsigned byte = 0; byte < sizeof name; ++byte) {
        name[byte] = static_cast<HX_U8>(number >> (56 - 8 * byte));
    }
}

Link_Entity LinkOf(HX_U8 adapter, const Disk& disk) {
    const Link_Endpoint parent = Parent(adapter, disk.at);
    Link_Endpoint self = Endpoint(HXSIM_DEVICE_DISK, disk.id, 0, disk.at.phys, parent.EnclosureID);
    if (disk.model->sas) {
        SetWorldWideName(self.SAS_Address, HXSIM_DEVICE_DISK, adapter, disk.id, 1);
    } else if (disk.at.parent == HXSIM_DEVICE_EXPANDER) {
        SetWorldWideName(self.SAS_Address, HXSIM_DEVICE_EXPANDER, adapter, disk.at.id,
                         disk.at.phy + 1U);
    }
    return {parent, self};
}

Link_Entity LinkOf(HX_U8 adapter, const Expander& expander) {
    Link_Endpoint self =
        Endpoint(HXSIM_DEVICE_EXPANDER, expander.id, 0, expander.at.phys, expander.enclosure);
    SetWorldWideName(self.SAS_Address, HXSIM_DEVICE_EXPANDER, adapter, expander.id, 0);
    return {Parent(adapter, expander.at), self};
}

Link_Entity LinkOf(HX_U8 adapter, const PortMultiplier& port_multiplier) {
    return {Parent(adapter, port_multiplier.at),
            Endpoint(HXSIM_DEVICE_PORT_MULTIPLIER, port_multiplier.id, 0, port_multiplier.at.phys,
                     kNoId)};
}

Link_Entity LinkOf(HX_U8 adapter, const Enclosure& enclosure) {
    Link_Endpoint self =
        Endpoint(HXSIM_DEVICE_ENCLOSURE, enclosure.id, 0, enclosure.at.phys, enclosure.id);
    SetWorldWideName(self.SAS_Address, HXSIM_DEVICE_ENCLOSURE, adapter, enclosure.id, 0);
    return {Parent(adapter, enclosure.at), self};
}

}  // namespace hxsim
