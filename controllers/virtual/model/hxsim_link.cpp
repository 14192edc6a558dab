// World wide names, and what hangs on what.
#include "model/hxsim_link.h"

#include <algorithm>
#include <iterator>

namespace hxsim {
namespace {

// A world wide name in the form NAA 5: 4 bits 5, 24 bits company, 36 bits of the company's own. The
// company has the bit set that marks an identifier as locally administered, so that no maker's
// device has the same name. The company's own bits are the kind of device, its ID, its adapter's
// number and the port's.
constexpr std::uint64_t kCompany = 0x0A4858;

// The kind of a disk that came later, whose name has a drawn number in place of the ID.
constexpr std::uint64_t kNewDisk = 8;

std::uint64_t Name(std::uint64_t kind, HX_U8 adapter, HX_U16 number, unsigned port) {
    return std::uint64_t{5} << 60 | kCompany << 36 | kind << 32 | std::uint64_t{number} << 16 |
           std::uint64_t{adapter} << 8 | port;
}

Link_Endpoint Endpoint(Device kind, HX_U16 id, HX_U8 phy, HX_U8 phys, HX_U16 enclosure) {
    Link_Endpoint end{};
    end.DevID = id;
    end.DevType = NumberOf(kind);
    end.PhyCnt = std::min<HX_U8>(phys, std::size(end.PhyID));
    for (HX_U8 i = 0; i < end.PhyCnt; ++i) end.PhyID[i] = static_cast<HX_U8>(phy + i);
    end.EnclosureID = enclosure;
    return end;
}

Link_Endpoint Parent(const Adapter& adapter, const Attachment& at) {
    const Expander* const expander =
        at.parent == Device::kExpander ? Find(adapter.expanders, at.parent_id) : nullptr;
    Link_Endpoint parent = Endpoint(at.parent, at.parent_id, at.phy, at.phys,
                                    expander == nullptr ? kNoId : expander->enclosure);
    if (expander != nullptr) {
        SetWorldWideName(parent.SAS_Address,
                         WorldWideName(Device::kExpander, adapter.id, at.parent_id, 0));
    } else if (at.parent == Device::kAdapter) {
        SetWorldWideName(parent.SAS_Address,
                         WorldWideName(Device::kAdapter, adapter.id, 0, at.phy + 1U));
    }
    return parent;
}

}  // namespace

std::uint64_t WorldWideName(Device kind, HX_U8 adapter, HX_U16 id, unsigned port) {
    const std::uint64_t number = NumberOf(kind);
    return Name(number - NumberOf(Device::kAdapter), adapter, id, port);
}

std::uint64_t WorldWideNameOfNewDisk(HX_U8 adapter, HX_U16 drawn) {
    return Name(kNewDisk, adapter, drawn, 0);
}

void SetWorldWideName(HX_U8 (&field)[8], std::uint64_t name) {
    for (unsigned byte = 0; byte < sizeof field; ++byte) {
        field[byte] = static_cast<HX_U8>(name >> (56 - 8 * byte));
    }
}

Link_Entity LinkOf(const Adapter& adapter, const Disk& disk) {
    Link_Endpoint self = Endpoint(Device::kDisk, disk.id, 0, disk.phys, disk.enclosure);
    if (disk.sas) {
        SetWorldWideName(self.SAS_Address, disk.wwn + 1);  // of its first port
    } else if (disk.parent == Device::kExpander) {
        SetWorldWideName(self.SAS_Address, WorldWideName(Device::kExpander, adapter.id,
                                                         disk.parent_id, disk.phy + 1U));
    }
    return {Parent(adapter, disk), self};
}

Link_Entity LinkOf(const Adapter& adapter, const Expander& expander) {
    Link_Endpoint self =
        Endpoint(Device::kExpander, expander.id, 0, expander.phys, expander.enclosure);
    SetWorldWideName(self.SAS_Address,
                     WorldWideName(Device::kExpander, adapter.id, expander.id, 0));
    return {Parent(adapter, expander), self};
}

Link_Entity LinkOf(const Adapter& adapter, const PortMultiplier& port_multiplier) {
    return {Parent(adapter, port_multiplier),
            Endpoint(Device::kPortMultiplier, port_multiplier.id, 0, port_multiplier.phys, kNoId)};
}

Link_Entity LinkOf(const Adapter& adapter, const Enclosure& enclosure) {
    Link_Endpoint self =
        Endpoint(Device::kEnclosure, enclosure.id, 0, enclosure.phys, enclosure.id);
    SetWorldWideName(self.SAS_Address,
                     WorldWideName(Device::kEnclosure, adapter.id, enclosure.id, 0));
    return {Parent(adapter, enclosure), self};
}

}  // namespace hxsim
