// The machine that hxsimctl drives: its state file, and the library opened on the same file.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "failure.h"
#include "find_object.h"
#include "hxraid.h"
#include "incidents/hxsim_incident.h"
#include "model/hxsim_machine.h"
#include "store/hxsim_store.h"

namespace hxsimctl {

/// A call of the library was refused.
struct CallRefused : Refused {
    CallRefused(const std::string& message, HX_U8 refusal) : Refused(message), code(refusal) {}
    HX_U8 code;
};

class Driver {
public:
    /// Works on the state file of that path and prints to `out`. Nothing is opened yet.
    Driver(std::string path, std::ostream& out);
    ~Driver();
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    const std::string& Path() const { return path_; }
    std::ostream& Out() { return out_; }

    /// The machine, brought up to now.
    const hxsim::Machine& Current();

    /// The virtual time.
    hxsim::Time Now();

    /// Applies an incident to an object and settles its consequences. Throws NoObject, or Refused
    /// when the incident is refused.
    using Incident =
        std::function<hxsim::Outcome(hxsim::Machine&, hxsim::Adapter&, hxsim::Time, const Object&)>;
    void Happen(const Target& target, const Incident& incident);

    /// Changes the machine itself: its clock and its injections.
    void Change(const std::function<void(hxsim::Machine&, hxsim::Time)>& work);

    /// Calls the library, which is opened before the first call. `name` is the function's.
    /// Throws CallRefused.
    void Call(const std::string& name, const std::function<HX_U8()>& call);

    /// Closes the library and the state file, as if the program ended. The next use opens them
    /// again.
    void Restart();

    /// Advances the clock by `forward` and sets its speed. Throws Refused beyond the year 9999.
    void SetClock(std::int64_t speed, hxsim::Time forward = 0);

private:
    hxsim::Store& State();

    std::string path_;
    std::ostream& out_;
    std::unique_ptr<hxsim::Store> store_;
    bool library_open_ = false;
};

/// The action of a parsed command.
using Action = std::function<void(Driver&)>;

}  // namespace hxsimctl
