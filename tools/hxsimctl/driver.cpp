#include "driver.h"

#include <utility>

#include "codes/status.h"
#include "rules/hxsim_settle.h"
#include "topology/hxsim_topology.h"

namespace hxsimctl {

Driver::Driver(std::string path, std::ostream& out) : path_(std::move(path)), out_(out) {}

Driver::~Driver() { Restart(); }

hxsim::Store& Driver::State() {
    if (store_ == nullptr)
        store_ = std::make_unique<hxsim::Store>(path_, hxsim::DefaultMachine,
                                                hxsim::WhenStateIsMissing());
    return *store_;
}

const hxsim::Machine& Driver::Current() { return State().Current(); }

hxsim::Time Driver::Now() { return hxsim::Now(Current().clock, hxsim::RealNow()); }

void Driver::Happen(const Target& target, const Incident& incident) {
    hxsim::Outcome outcome;
    Object object;
    State().Change([&](hxsim::Machine& machine, hxsim::Time now) {
        object = RequireObject(machine, target);
        hxsim::Adapter& adapter = AdapterAt(machine, object);
        outcome = incident(machine, adapter, now, object);
        if (!outcome) return false;
        hxsim::Settle(adapter, now);
        return true;
    });
    if (!outcome) throw Refused(object.text + ": " + outcome.refusal);
}

void Driver::Change(const std::function<void(hxsim::Machine&, hxsim::Time)>& work) {
    State().Change([&](hxsim::Machine& machine, hxsim::Time now) {
        work(machine, now);
        return true;
    });
}

void Driver::Call(const std::string& name, const std::function<HX_U8()>& call) {
    HX_U8 status = library_open_ ? HX_U8{HX_SUCCESS} : HX_API_Initialize();
    library_open_ = status == HX_SUCCESS;
    if (library_open_) status = call();
    if (status == HX_SUCCESS) return;
    const hxcodes::StatusRow* const refusal = hxcodes::FindCode(hxcodes::kRefusals, status);
    throw CallRefused(
        name + " was refused with " + std::to_string(status) +
            (refusal == nullptr
                 ? std::string(", an injected code; hxsimctl inject list names it")
                 : " (" + std::string(refusal->name) + "): " + std::string(refusal->sentence)),
        status);
}

void Driver::Restart() {
    if (library_open_) HX_API_Finalize();
    library_open_ = false;
    store_.reset();
}

void Driver::SetClock(std::int64_t speed, hxsim::Time forward) {
    constexpr hxsim::Time kLast = 253402300799999;  // of the year 9999
    Change([&](hxsim::Machine& machine, hxsim::Time now) {
        if (forward > 0 && (now > kLast || forward > kLast - now)) {
            throw Refused("no clock goes beyond the year 9999; let less time pass");
        }
        machine.clock = {now + forward, hxsim::RealNow(), speed};
    });
    Current();  // performs all transitions due by the new time
}

}  // namespace hxsimctl
