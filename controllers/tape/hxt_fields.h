// Which fields of the interface's records say whose machine it is: serial numbers, world wide
// names, SAS addresses and the names that people have given.
#pragma once

#include <cstddef>
#include <iterator>
#include <span>

#include "hxraid.h"
#include "tape/hxt_pseudonym.h"

namespace hxtape {

struct Field {
    std::size_t offset;
    std::size_t size;
    Identity identity;
};

/// The fields of a record of that type; none for a type that has none.
template <class Record>
inline constexpr std::span<const Field> kFieldsOf{};

inline constexpr std::size_t kParentAddress =
    offsetof(Link_Entity, Parent) + offsetof(Link_Endpoint, SAS_Address);
inline constexpr std::size_t kSelfAddress =
    offsetof(Link_Entity, Self) + offsetof(Link_Endpoint, SAS_Address);
static_assert(offsetof(HD_Info, Link) == 0 && offsetof(Exp_Info, Link) == 0 &&
                  offsetof(PM_Info, Link) == 0 && offsetof(Enclosure_Info, Link) == 0,
              "the addresses are counted from the beginning of the record");

inline constexpr Field kLinkFields[] = {{kParentAddress, 8, Identity::kAddress},
                                        {kSelfAddress, 8, Identity::kAddress}};
template <>
inline constexpr std::span<const Field> kFieldsOf<Exp_Info>{kLinkFields};
template <>
inline constexpr std::span<const Field> kFieldsOf<PM_Info>{kLinkFields};

inline constexpr Field kEnclosureFields[] = {
    {kParentAddress, 8, Identity::kAddress},
    {kSelfAddress, 8, Identity::kAddress},
    {offsetof(Enclosure_Info, LogicalID), sizeof(Enclosure_Info::LogicalID),
     Identity::kHexAddress}};
template <>
inline constexpr std::span<const Field> kFieldsOf<Enclosure_Info>{kEnclosureFields};

inline constexpr Field kDiskFields[] = {
    {kParentAddress, 8, Identity::kAddress},
    {kSelfAddress, 8, Identity::kAddress},
    {offsetof(HD_Info, SerialNo), sizeof(HD_Info::SerialNo), Identity::kSerial},
    {offsetof(HD_Info, WWN), 8, Identity::kAddress}};
template <>
inline constexpr std::span<const Field> kFieldsOf<HD_Info>{kDiskFields};

constexpr Field PortAddress(std::size_t port) {
    return {offsetof(Adapter_Info, PortSasAddress) + 8 * port, 8, Identity::kAddress};
}
inline constexpr Field kAdapterFields[] = {
    {offsetof(Adapter_Info, WWN), 8, Identity::kAddress},
    {offsetof(Adapter_Info, SerialNo), sizeof(Adapter_Info::SerialNo), Identity::kSerial},
    PortAddress(0),
    PortAddress(1),
    PortAddress(2),
    PortAddress(3),
    PortAddress(4),
    PortAddress(5),
    PortAddress(6),
    PortAddress(7)};
static_assert(std::size(kAdapterFields) == 2 + HX_MAX_PORTS);
template <>
inline constexpr std::span<const Field> kFieldsOf<Adapter_Info>{kAdapterFields};

/// The one field of a record that has a name.
template <class Record>
inline constexpr Field kNameField[] = {{offsetof(Record, Name), HX_NAME_SIZE, Identity::kName}};
template <>
inline constexpr std::span<const Field> kFieldsOf<LD_Info>{kNameField<LD_Info>};
template <>
inline constexpr std::span<const Field> kFieldsOf<LD_Config>{kNameField<LD_Config>};
template <>
inline constexpr std::span<const Field> kFieldsOf<DG_Info>{kNameField<DG_Info>};
template <>
inline constexpr std::span<const Field> kFieldsOf<DG_Config>{kNameField<DG_Config>};
template <>
inline constexpr std::span<const Field> kFieldsOf<Create_LD_Param>{kNameField<Create_LD_Param>};
template <>
inline constexpr std::span<const Field> kFieldsOf<CreateOrModify_DG_Param>{
    kNameField<CreateOrModify_DG_Param>};
template <>
inline constexpr std::span<const Field> kFieldsOf<CreateOrModify_VD_Param>{
    kNameField<CreateOrModify_VD_Param>};

// The serial number of an adapter that was found, or SCSI sense data.
inline constexpr Field kEventFields[] = {
    {offsetof(Event, SenseData), sizeof(Event::SenseData), Identity::kSenseData}};
template <>
inline constexpr std::span<const Field> kFieldsOf<Event>{kEventFields};

}  // namespace hxtape
