// What the controller answers about its health, as the table of conditions takes it.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/address.h"
#include "conditions/hxc_answers.h"
#include "library_fields.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/batteries.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/enclosures.h"
#include "model/library_record.h"
#include "model/virtual_disks.h"

namespace vexorctl {

/// The functions that a look asks.
inline constexpr std::span<const std::string_view> kLookFunctions =
    kNamesOf<calls::HX_Adapter_GetInfo, calls::HX_Adapter_GetConfig, calls::HX_PD_GetHDInfo_Ext,
             calls::HX_PD_GetConfig, calls::HX_PD_GetSmartStatus, calls::HX_PD_GetHDRaidStatus,
             calls::HX_PD_GetBGAStatus, calls::HX_PD_GetFreeSpaceInfo, calls::HX_LD_GetInfo,
             calls::HX_LD_GetConfig, calls::HX_LD_GetStatus, calls::HX_BLK_GetInfo,
             calls::HX_DG_GetInfo, calls::HX_DG_GetConfig, calls::HX_BBU_GetInfo,
             calls::HX_ENC_GetEnclosureInfo, calls::HX_ENC_GetElementInfo,
             calls::HX_ENC_GetElementConfig>;

/// One look at the adapters that the controller has selected: the records as they came, and what
/// the table of conditions takes from them.
struct MachineLook {
    std::vector<Adapter> adapters;
    std::vector<Disk> disks;
    std::vector<VirtualDisk> virtual_disks;
    std::vector<DiskGroup> groups;
    std::vector<Battery> batteries;
    std::vector<Enclosure> enclosures;
    std::vector<Element> elements;
    hxconditions::Answers answers;
};

/// What cannot be read is noted as a fault. Throws Failure and Unavailable for a machine that
/// cannot be asked at all.
MachineLook LookAtMachine(Controller& controller);

/// What the table of conditions takes from these virtual disks and their disks, or from these disks
/// and the virtual disks that there are. The others are read here, and what cannot be read is no
/// fault: what follows from it is not known.
hxconditions::Answers AnswersFor(Controller& controller,
                                 const std::vector<VirtualDisk>& virtual_disks);
hxconditions::Answers AnswersFor(Controller& controller, const std::vector<Disk>& disks);

/// What it takes from these batteries, or from these enclosures and their elements, alone.
hxconditions::Answers AnswersFor(Controller& controller, const std::vector<Battery>& batteries);
hxconditions::Answers AnswersFor(Controller& controller, const std::vector<Enclosure>& enclosures,
                                 const std::vector<Element>& elements);

/// The adapter with that number; null when it is not among the answers.
const hxconditions::Adapter* AdapterIn(const hxconditions::Answers& answers, unsigned number);
const hxconditions::VirtualDisk* VirtualDiskIn(const hxconditions::Answers& answers,
                                               const Address& address);

/// How well an adapter itself is, by its own conditions: "ok", "warning" or "critical"; null when
/// something was not told on which they rest.
std::optional<std::string_view> HealthOf(const Adapter& adapter);
/// All that it can be.
std::vector<std::string_view> HealthWords();

/// One look at the adapters that the controller has selected. What could not be read, or cannot be
/// understood because nobody has said what its codes mean, is told as such in the queries; a
/// controller that cannot be asked at all as the machine's. Throws nothing for what a controller
/// says.
hxconditions::Answers LoadHealth(Controller& controller);

/// The same with the records, of which there are none when the machine cannot be asked.
MachineLook LoadMachine(Controller& controller);

/// The same of adapters, disks, virtual disks and disk groups alone. What cannot be read is told in
/// the queries and noted as no fault.
hxconditions::Answers LoadArrays(Controller& controller);

/// Adds how many sectors each disk has remapped, which takes a question for each. What is not
/// answered stays unknown.
void TakeRemapped(Controller& controller, hxconditions::Answers& answers);

/// The answers of a machine that cannot be asked at all, and why.
hxconditions::Answers UnreachableHealth(Exit exit, const std::string& reason);

}  // namespace vexorctl
