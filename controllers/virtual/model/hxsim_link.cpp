// World wide names and links: which device is attached to which.
#include "model/hxsim_link.h"

#include <algorithm>
#include <iterator>

#include "model/hxsim_record_bytes.h"

namespace hxsim {
namespace {

// A world wide name of type NAA 5: 4 bits with the value 5, 24 bits of company ID, 36 bits that the
// company assigns. The company ID is marked as locally administered, so that no real device has the
// same name. The assigned bits are the kind of device, its ID, its adapter's number and the port.
constexpr std::uint64_t kCompany = 0x0A4858;

// The kind for disks added later: their name has a random number in place of the ID.
constexpr std::uint64_t kNewDisk = 8;

std::uint64_t Name(std::uint64_t kind, HX_U8 adapter, HX_U16 number, unsigned port) {
    return std::uint64_t{5} << 60 | kCompany << 36 | kind << 32 | std::uint64_t{number} << 16 |
           std::uint64_t{adapter} << 8 | port;
}

void SetEndpoint(Link_Endpoint& end, Device kind, HX_U16 id, HX_U8 phy, HX_U8 phys,
                 HX_U16 enclosure, std::uint64_t address) {
    end.DevID = id;
    end.DevType = NumberOf(kind);
    end.PhyCnt = std::min(phys, static_cast<HX_U8>(std::size(end.PhyID)));
    SetZero(end.PhyID);
    for (HX_U8 i = 0; i < end.PhyCnt; ++i) end.PhyID[i] = static_cast<HX_U8>(phy + i);
    SetWorldWideName(end.SAS_Address, address);
    end.EnclosureID = enclosure;
    SetZero(end.Reserved);
}

void SetParent(Link_Endpoint& parent, const Adapter& adapter, const Attachment& at) {
    HX_U16 enclosure = kNoId;
    std::uint64_t address = 0;
    const Expander* const expander =
        at.parent == Device::kExpander ? Find(adapter.expanders, at.parent_id) : nullptr;
    if (expander != nullptr) {
        enclosure = expander->enclosure;
        address = WorldWideName(Device::kExpander, adapter.id, at.parent_id, 0);
    } else if (at.parent == Device::kAdapter) {
        address = WorldWideName(Device::kAdapter, adapter.id, 0, at.phy + 1U);
    }
    SetEndpoint(parent, at.parent, at.parent_id, at.phy, at.phys, enclosure, address);
}

std::uint64_t AddressOf(const Adapter& adapter, const Disk& disk) {
    if (disk.sas) return disk.wwn + 1;  // of its first port
    if (disk.parent != Device::kExpander) return 0;
    return WorldWideName(Device::kExpander, adapter.id, disk.parent_id, disk.phy + 1U);
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

void SetLink(Link_Entity& link, const Adapter& adapter, const Disk& disk) {
    SetParent(link.Parent, adapter, disk);
    SetEndpoint(link.Self, Device::kDisk, disk.id, 0, disk.phys, disk.enclosure,
                AddressOf(adapter, disk));
}

void SetLink(Link_Entity& link, const Adapter& adapter, const Expander& expander) {
    SetParent(link.Parent, adapter, expander);
    SetEndpoint(link.Self, Device::kExpander, expander.id, 0, expander.phys, expander.enclosure,
                WorldWideName(Device::kExpander, adapter.id, expander.id, 0));
}

void SetLink(Link_Entity& link, const Adapter& adapter, const PortMultiplier& port_multiplier) {
    SetParent(link.Parent, adapter, port_multiplier);
    SetEndpoint(link.Self, Device::kPortMultiplier, port_multiplier.id, 0, port_multiplier.phys,
                kNoId, 0);
}

void SetLink(Link_Entity& link, const Adapter& adapter, const Enclosure& enclosure) {
    SetParent(link.Parent, adapter, enclosure);
    SetEndpoint(link.Self, Device::kEnclosure, enclosure.id, 0, enclosure.phys, enclosure.id,
                WorldWideName(Device::kEnclosure, adapter.id, enclosure.id, 0));
}

}  // namespace hxsim
