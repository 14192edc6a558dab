// What a change does to the virtual disks of its adapter, by the rules of the table of conditions:
// the adapter as it is is compared with the adapter as it will be.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_answers.h"
#include "model/ask_controller.h"

namespace vexorctl {

/// Makes of the adapter as it is what it will be.
using Alteration = std::function<void(hxconditions::Adapter&)>;

struct Foreseen {
    std::vector<std::string> effects;  // a sentence each
    // The virtual disks that can be used now and cannot afterwards, as in "a0/vd0 (DATABASE)".
    std::vector<std::string> unusable;

    bool operator==(const Foreseen&) const = default;
};

/// Reads the adapter and tells what the alteration does. What cannot be read or understood makes
/// the effects "not known" and is noted as no fault.
Foreseen Foresee(Controller& controller, unsigned adapter, const Alteration& alter);

/// The same for answers of one adapter that are known.
Foreseen Compare(const hxconditions::Answers& now, const Alteration& alter);

// ---- Alterations ----

/// The disk is switched off or on; what it carries stays.
void SwitchDisk(hxconditions::Adapter& adapter, unsigned disk, bool on);
/// What virtual disks have on the disk is lost, and the disk is free.
void EmptyDisk(hxconditions::Adapter& adapter, unsigned disk);
/// The disk is a spare of the group, or of the whole adapter; or a spare no more.
void MakeSpare(hxconditions::Adapter& adapter, unsigned disk, std::optional<unsigned> group);
void MakeNoSpare(hxconditions::Adapter& adapter, unsigned disk);

/// The disks of the foreign virtual disk are those of this controller.
void ImportDisks(hxconditions::Adapter& adapter, unsigned virtual_disk);

/// There is one more virtual disk; `title` is what effects call it.
void AddVirtualDisk(hxconditions::Adapter& adapter, const std::string& title, unsigned level,
                    unsigned legs, const std::vector<unsigned>& disks);
/// The virtual disk has that level and lies, whole, on these disks.
void LayOut(hxconditions::VirtualDisk& virtual_disk, unsigned level, unsigned legs,
            const std::vector<unsigned>& disks);
/// The lost members of the virtual disk are on these disks, whole.
void Rebuild(hxconditions::VirtualDisk& virtual_disk, const std::vector<hxconditions::Disk>& disks,
             const std::vector<unsigned>& onto);
/// The virtual disk of that number; null when there is none.
hxconditions::VirtualDisk* FindIn(hxconditions::Adapter& adapter, unsigned id);

}  // namespace vexorctl
