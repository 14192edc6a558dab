#include "scenario_runner.h"

#include <exception>
#include <ostream>

#include "common/duration.h"
#include "common/terminal_text.h"
#include "model/hxsim_invariants.h"

namespace hxsimctl {

namespace {

using hxsim::Time;

// Stops the clock during its lifetime and then restores its speed.
class StillClock {
public:
    explicit StillClock(Driver& driver) : driver_(driver), speed_(driver.Current().clock.speed) {
        driver_.SetClock(0);
    }
    ~StillClock() {
        try {
            driver_.SetClock(speed_);
        } catch (const std::exception&) {
            // The state file cannot be used: the run has reported that, or the next one will.
        }
    }
    StillClock(const StillClock&) = delete;
    StillClock& operator=(const StillClock&) = delete;

private:
    Driver& driver_;
    const std::int64_t speed_;
};

std::string TextOf(Time duration) {
    return vexortools::DurationText(vexortools::Duration(duration));
}

void RequireSound(Driver& driver) {
    const std::vector<std::string> broken = hxsim::Check(driver.Current());
    if (!broken.empty()) {
        throw Refused("after it the machine is not sound: " + broken[0] +
                      " hxsimctl check lists all that is wrong");
    }
}

void Run(Story& story, const Line& line, Time begin, Time& passed, bool verbose) {
    Driver& driver = story.driver();
    const Time time = line.at ? line.time : passed + line.time;
    if (time < passed) {
        throw Refused("at " + TextOf(line.time) + " is over; " + TextOf(passed) +
                      " have passed. Put the step further up");
    }
    passed = time;
    driver.SetClock(0, begin + passed - driver.Now());
    if (verbose) {
        driver.Out() << TextOf(passed) << ' ' << vexortools::Printable(line.text) << std::endl;
    }
    if (line.step) line.step(story);
    story.Events();  // notes new events before a full queue drops them
    RequireSound(driver);
}

}  // namespace

void RunScenario(Driver& driver, const Scenario& scenario, bool verbose) {
    const StillClock still(driver);
    Story story(driver);
    const Time begin = driver.Now();
    Time passed = 0;
    for (const Line& line : scenario.lines) {
        try {
            Run(story, line, begin, passed, verbose);
        } catch (const Failure& failure) {
            throw Failure(failure.exit, PlaceOf(scenario.file, line.number) + failure.what());
        }
    }
}

}  // namespace hxsimctl
