// The second look, immediately before the act: whether the objects that a change is about are still
// those that it was planned for.
#pragma once

#include <set>
#include <string>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/failure.h"
#include "nouns/plan_and_act.h"

namespace vexorctl {

/// Something has changed between look and act; nothing was done.
struct Outdated : Failure {
    using Failure::Failure;
    /// "not what the plan was made for: DIFFERENCES; nothing was done"
    explicit Outdated(const std::string& differences);
};

/// What a change is about, found in its commands: every object whose number one of them carries,
/// and what changes with it. A new command of the tree gets its second look by sending its
/// commands.
class SecondLook {
public:
    /// What has not been read while the plan was made is read now. The change outlives it.
    SecondLook(Controller& controller, const Change& change);

    /// Their names, as sightings have them.
    const std::set<std::string>& objects() const { return objects_; }

    /// Reads all of them again. Throws Outdated, which names the differences.
    void Check();

private:
    void Want(const Address& address);
    void WantTargetsOf(const Command& command);
    void WantRelated();
    void WantEveryDisk();
    void Load();

    Controller& controller_;
    const Change& change_;
    std::set<std::string> objects_;
    std::set<ObjectKind> kinds_;
    std::set<unsigned> adapters_;
    bool of_batteries_ = false;
};

}  // namespace vexorctl
