// A machine with one thing of every kind and nothing wrong, to which tests add faults; and somebody
// who watches it with a clock of his own.
#pragma once

#include <string>
#include <vector>

#include "conditions/hxc_look.h"

namespace hxconditions {

/// Two adapters. a0 has a0/vd0 SYS (RAID 1 on pd0 and pd1), a0/vd1 DATA (RAID 5 on pd4 to pd6), the
/// disk group a0/dg0 SPACE (pd2 and pd3, nothing on it), the free disk pd7, an enclosure and a
/// battery; a1 has nothing.
Answers GoodMachine();
/// The same after disk 5, which a0/vd1 DATA is on, has failed.
Answers DegradedMachine();

Disk& DiskAt(Answers& answers, unsigned id);
VirtualDisk& VirtualDiskAt(Answers& answers, unsigned id);
Element& ElementAt(Answers& answers, unsigned id);

/// The disk fails, and with it its block.
void Fail(Answers& answers, unsigned disk);
/// Pulled out.
void Pull(Answers& answers, unsigned disk);
/// The block of a position is lost or being made, and the virtual disk's word for it follows.
void Lose(Answers& answers, unsigned virtual_disk, unsigned position);
/// A rebuild of the virtual disk at so many percent.
void Rebuild(Answers& answers, unsigned virtual_disk, unsigned percent, unsigned state = 1);

Query Failed(const std::string& call, unsigned code);
/// Every query of the adapter fails.
void FailAll(Adapter& adapter);

Event EventOf(unsigned event_class, unsigned code, unsigned device = 0, std::uint32_t param = 0);

class Watcher {
public:
    /// One look; what it tells is kept in `messages` until the next.
    const Overview& Look(const Answers& answers, const std::vector<Event>& events = {});
    void Wait(std::int64_t seconds);
    /// Waits, and looks before and after.
    const Overview& LookFor(std::int64_t seconds, const Answers& answers);

    State state;
    Now now{1'800'000'000, 5000, "first boot"};
    Settings settings;
    std::vector<Message> messages;
    Overview overview;
};

/// Somebody watches the good machine for a minute, and sees for five seconds that disk 5 has
/// failed. Returns what was answered last.
Answers DiskFails(Watcher& watcher);

/// Names of all conditions, heads and folded ones, sorted, with blanks between them; information is
/// left out.
std::string CodesOf(const Overview& overview);
/// Names of the heads in their order, information included.
std::string HeadsOf(const Overview& overview);
/// Null when no condition has the code.
const Condition* Find(const Overview& overview, Code code);
/// "raised VD_OFFLINE; cleared DISK_FAILED", information left out.
std::string ChangesOf(const std::vector<Message>& messages);

}  // namespace hxconditions
